#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Installs the kit, builds the hosts that the README shows against it, runs a host made of Qt's own widgets, and looks at
the kit's library.
Arguments: the build folder, the source folder."""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

from desktop import DEADLINE, Desktop, wait_until

build, source = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])


def run(*command, **environment):
    result = subprocess.run([str(word) for word in command], text=True, capture_output=True, timeout=300,
                            env={**os.environ, **environment})
    if result.returncode:
        sys.exit(f"{command}\n{result.stdout}{result.stderr}")
    return result.stdout


# Window coordinates: from the lower left, x, y, width, height. The button hangs below the slider, 5 points apart.
KIT_SEES = """\
window: A plain window, 576 by 200, key 1, of 1
slider in it: 1
slider: 10 129 556 61
button: 10 94 120 30
button on screen, from where Qt has it: 0 0
begin left: 1000 from 0
end left: 900 from 100
presses: 1, text: typed
slider: 10 169 556 61
button: 10 134 120 30
windows: 0
"""

with tempfile.TemporaryDirectory(prefix="zruikit-consumer-") as name:
    folder = pathlib.Path(name)
    prefix = folder / "prefix"
    run("cmake", "--install", build, "--prefix", prefix)
    private = {"InstalledHost.h", "Program.h", "Waiting.h", "ObjectClasses.h", "FileClasses.h", "StringsTable.h", "Unicode.h",
               "BinaryPropertyList.h", "Bookmark.h", "FileQuestions.h", "UserLanguages.h", "DefaultsFile.h", "InstalledSystem.h",
               "DrawingSystem.h", "Drawing.h", "Windows.h", "Controls.h", "ViewWidget.h", "RealWindow.h"}
    assert not private & {header.name for header in prefix.rglob("*.h")}, "private headers are installed"

    hosts = re.findall(r"```cpp\n(.*?)```", (source / "README.md").read_text(), re.DOTALL)
    names = ["host.cpp", "embedding_host.cpp"]
    assert len(hosts) == len(names), "the README shows other hosts than these"
    for name, host in zip(names, hosts):
        (folder / name).write_text(host)
    run("cmake", "-S", source / "Tests/EndToEnd/Consumer", "-B", folder / "build", "-G", "Ninja",
        f"-DCMAKE_PREFIX_PATH={prefix}", f"-DHOST_SOURCE={folder / names[0]}",
        f"-DEMBEDDING_HOST_SOURCE={folder / names[1]}")
    run("cmake", "--build", folder / "build")

    seen = run(folder / "build/qt_host", QT_QPA_PLATFORM="offscreen", QT_SCALE_FACTOR="1", LC_ALL="C.UTF-8")
    assert seen == KIT_SEES, f"the kit in a host of Qt's widgets sees\n{seen}"

    with Desktop() as desktop:
        host = desktop.start([str(folder / "build/host")], env=desktop.environment)
        window = wait_until("the host's window", lambda: desktop.run("xdotool", "search", "--onlyvisible", "--pid", str(host.pid)).split())
        desktop.ask_to_close(window[0])
        assert host.wait(DEADLINE) == 0, "the first host of the README does not end with its window"

    library = next(prefix.rglob("libZRUIKit.so"))
    symbols = {line.split()[-1]: line.split()[-2] for line in run("nm", "-D", "--defined-only", library).splitlines()}
    for symbol in ("ZRUIKitVersionNumber", "ZRUIKitVersionString"):
        assert symbols.get(symbol) in ("R", "D"), f"{symbol} is not an exported data symbol"
    resources = prefix / "share/ZRUIKit"
    assert (resources / "SliderTrimLeft@2x.png").is_file() and (resources / "en.lproj/Localized.strings").is_file()
    linked = run("ldd", library)
    assert "Qt6" not in linked, "the kit itself needs Qt"
print("installed, built against, and looked at")
