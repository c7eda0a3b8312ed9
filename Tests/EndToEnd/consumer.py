#!/usr/bin/env python3
"""Installs the kit, builds the host that the README shows against it, and looks at the kit's library.
Arguments: the build folder, the source folder."""

import pathlib
import re
import subprocess
import sys
import tempfile

build, source = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])


def run(*command):
    result = subprocess.run([str(word) for word in command], text=True, capture_output=True, timeout=300)
    if result.returncode:
        sys.exit(f"{command}\n{result.stdout}{result.stderr}")
    return result.stdout


with tempfile.TemporaryDirectory(prefix="zruikit-consumer-") as name:
    folder = pathlib.Path(name)
    prefix = folder / "prefix"
    run("cmake", "--install", build, "--prefix", prefix)
    private = {"HostState.h", "StringsTable.h", "Installation.h", "WindowSystem.h", "QtViews.h"}
    assert not private & {header.name for header in prefix.rglob("*.h")}, "private headers are installed"

    host = re.search(r"```cpp\n(.*?)```", (source / "README.md").read_text(), re.DOTALL).group(1)
    (folder / "host.cpp").write_text(host)
    run("cmake", "-S", source / "Tests/EndToEnd/Consumer", "-B", folder / "build", "-G", "Ninja",
        f"-DCMAKE_PREFIX_PATH={prefix}", f"-DHOST_SOURCE={folder / 'host.cpp'}")
    run("cmake", "--build", folder / "build")

    library = next(prefix.rglob("libZRUIKit.so"))
    symbols = {line.split()[-1]: line.split()[-2] for line in run("nm", "-D", "--defined-only", library).splitlines()}
    for symbol in ("ZRUIKitVersionNumber", "ZRUIKitVersionString"):
        assert symbols.get(symbol) in ("R", "D"), f"{symbol} is not an exported data symbol"
    resources = prefix / "share/ZRUIKit"
    assert (resources / "SliderTrimLeft@2x.png").is_file() and (resources / "en.lproj/Localized.strings").is_file()
    linked = run("ldd", library)
    assert "Qt6" not in linked, "the kit itself needs Qt"
print("installed, built against, and looked at")
