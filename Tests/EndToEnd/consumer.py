#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Installs the kit, builds the hosts that the README shows against it, runs a host made of Qt's own widgets and one with a
window system of its own, and looks at the kit's libraries.
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
                            env={**os.environ, **{name: str(value) for name, value in environment.items()}})
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

ADAPTOR_SAYS = """\
shown: Elsewhere
key: 1, 400 by 61
draws: 1, the same when asked itself: 1
dragged to: 131.579
gone
"""


def pkg_config(*words):
    return run("pkg-config", *words, PKG_CONFIG_PATH=next(prefix.rglob("pkgconfig"))).split()


def refused(flag, compiler):
    """What the compiler says to a host that is compiled with the flag."""
    result = subprocess.run([compiler, "-std=c++20", flag, "-fsyntax-only", *pkg_config("--cflags", "zruikit"), "-x", "c++", "-"],
                            input="#include <ZRUIKit/SplitSliderView.h>\n", text=True, capture_output=True, timeout=300)
    assert result.returncode != 0, f"{compiler} {flag} compiles a host"
    return result.stderr


with tempfile.TemporaryDirectory(prefix="zruikit-consumer-") as name:
    folder = pathlib.Path(name)
    prefix = folder / "prefix"
    run("cmake", "--install", build, "--prefix", prefix)
    include = prefix / "include/ZRUIKit"
    headers = {str(header.relative_to(include).relative_to(header.relative_to(include).parts[0])) for header in include.rglob("*.h")}
    private = {"InstalledHost.h", "Program.h", "Waiting.h", "ObjectClasses.h", "FileClasses.h", "StringsTable.h", "Unicode.h",
               "BinaryPropertyList.h", "Bookmark.h", "FileQuestions.h", "UserLanguages.h", "DefaultsFile.h", "InstalledSystem.h",
               "DrawingSystem.h", "WindowFocus.h", "NibFile.h", "ViewWidget.h", "RealWindow.h"}
    assert not private & {header.split("/")[-1] for header in headers}, "private headers are installed"
    for umbrella in "Foundation", "AppKit", "ZRUIKit":
        text = (next(include.rglob(f"{umbrella}/{umbrella}.h"))).read_text()
        missing = {header for header in headers if header.startswith(umbrella + "/") and f"<{header}>" not in text}
        assert missing == {f"{umbrella}/{umbrella}.h"}, f"<{umbrella}/{umbrella}.h> has not {missing}"

    # The README's hosts, by the README's own lines, of which the second block goes on where the first ends.
    readme = (source / "README.md").read_text()
    blocks = {kind: re.findall(rf"```{kind}\n(.*?)```", readme, re.DOTALL) for kind in ("cpp", "cmake")}
    names = ["host.cpp", "embedding_host.cpp"]
    assert len(blocks["cpp"]) == len(blocks["cmake"]) == len(names), "the README shows other hosts than these"
    hosts = folder / "hosts"
    hosts.mkdir()
    for name, host in zip(names, blocks["cpp"]):
        (hosts / name).write_text(host)
    (hosts / "CMakeLists.txt").write_text("".join(blocks["cmake"]))
    # A host of Qt's widgets that looks at itself, and a window system of the host's own.
    for name, project in {"hosts": hosts, "consumer": source / "Tests/EndToEnd/Consumer"}.items():
        # A linker that forgets libraries of which the program itself calls nothing, as many distributions have it.
        run("cmake", "-S", project, "-B", folder / f"build_{name}", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}",
            "-DCMAKE_EXE_LINKER_FLAGS=-Wl,--as-needed")
        run("cmake", "--build", folder / f"build_{name}")
    targets = "".join(script.read_text() for script in prefix.rglob("ZRUIKit*Targets.cmake"))
    named = set(re.findall(r"add_library\((\S+) ", targets))
    assert named == {f"ZRUIKit::{name}" for name in ("Kit", "Headless", "Port", "Qt")}, named

    seen = run(folder / "build_consumer/qt_host", QT_QPA_PLATFORM="offscreen", QT_SCALE_FACTOR="1", LC_ALL="C.UTF-8")
    assert seen == KIT_SEES, f"the kit in a host of Qt's widgets sees\n{seen}"
    needed = run("readelf", "-d", folder / "build_consumer/bare_host")
    assert "libZRUIKitQt.so.1" in needed and "libZRUIKit.so.1" not in needed, needed
    run(folder / "build_consumer/bare_host", QT_QPA_PLATFORM="offscreen", LC_ALL="C.UTF-8")
    said = run(folder / "build_consumer/adaptor", LC_ALL="C.UTF-8")
    assert said == ADAPTOR_SAYS, f"the kit on another window system:\n{said}"
    # The same by pkg-config.
    run("g++", "-std=c++20", source / "Tests/EndToEnd/Consumer/Adaptor.cpp", "-o", folder / "by_pkg_config",
        *pkg_config("--cflags", "--libs", "zruikit-port"), f"-Wl,-rpath,{next(prefix.rglob('libZRUIKit.so')).parent}")
    assert run(folder / "by_pkg_config", LC_ALL="C.UTF-8") == ADAPTOR_SAYS

    # A program needs no package of what a shared library is made with.
    for module in "zruikit", "zruikit-qt", "zruikit-headless", "zruikit-port":
        others = pkg_config("--print-requires", "--print-requires-private", module)
        assert not [other for other in others if not other.startswith("zruikit")], f"{module} requires {others}"

    for compiler in "g++", "clang++-14":
        for flag, wanted in {"-fno-rtti": "run-time type information", "-fno-exceptions": "exceptions", "-std=c++17": "C++20"}.items():
            text = refused(flag, compiler)
            assert f'error "ZRUIKit needs {wanted}' in text or f"error: \"ZRUIKit needs {wanted}" in text, f"{compiler} {flag}: {text}"

    with Desktop() as desktop:
        for name in "host", "embedding_host":
            host = desktop.start([str(folder / "build_hosts" / name)], env=desktop.environment)
            window = wait_until(f"the window of {name}",
                                lambda: desktop.run("xdotool", "search", "--onlyvisible", "--pid", str(host.pid)).split())
            desktop.ask_to_close(window[0])
            assert host.wait(DEADLINE) == 0, f"the README's {name} does not end with its window"

    library = next(prefix.rglob("libZRUIKit.so"))
    symbols = {line.split()[-1]: line.split()[-2] for line in run("nm", "-D", "--defined-only", library).splitlines()}
    for symbol in ("ZRUIKitVersionNumber", "ZRUIKitVersionString"):
        assert symbols.get(symbol) in ("R", "D"), f"{symbol} is not an exported data symbol"
    print(run(sys.executable, source / "Tests/EndToEnd/exports.py", library.parent, include, source / "Tests/EndToEnd/qtExports.txt"))
    resources = prefix / "share/ZRUIKit"
    assert (resources / "SliderTrimLeft@2x.png").is_file() and (resources / "en.lproj/Localized.strings").is_file()
    linked = run("ldd", library)
    assert "Qt6" not in linked, "the kit itself needs Qt"
print("installed, built against, and looked at")
