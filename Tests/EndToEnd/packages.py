#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Packs the kit and TrimStudio for Debian, looks into the packages, and starts TrimStudio from what they hold.
Argument: the build folder."""

import os
import pathlib
import subprocess
import sys
import tempfile

from desktop import DEADLINE, Desktop, wait_until

build = pathlib.Path(sys.argv[1]).resolve()


def run(*command, **options):
    result = subprocess.run([str(word) for word in command], text=True, capture_output=True, timeout=600, **options)
    if result.returncode:
        sys.exit(f"{command}\n{result.stdout}{result.stderr}")
    return result.stdout


def field(package, name):
    return run("dpkg-deb", "--field", package, name).strip()


with tempfile.TemporaryDirectory(prefix="zruikit-packages-") as name:
    folder = pathlib.Path(name)
    run("cpack", "--config", build / "CPackConfig.cmake", "-B", folder / "packing", cwd=folder)
    packages = {path.name.split("_")[0]: path for path in folder.rglob("*.deb")}
    assert sorted(packages) == ["libzruikit-dev", "libzruikit1", "trimstudio"], sorted(packages)

    version = field(packages["libzruikit1"], "Version")
    needs = {package: field(path, "Depends") for package, path in packages.items()}
    for needed in "libqt6widgets6", "libplist3", "libpugixml1v5", "libc6":
        assert needed in needs["libzruikit1"], needs["libzruikit1"]
    assert "libavformat" not in needs["libzruikit1"] and "libavformat" in needs["trimstudio"], needs
    for package in "libzruikit-dev", "trimstudio":
        assert f"libzruikit1 (= {version})" in needs[package], needs[package]

    root = folder / "root"
    holds = {}
    for package, path in packages.items():
        holds[package] = {line.split(" -> ")[0].split()[-1]
                          for line in run("dpkg-deb", "--contents", path).splitlines() if not line.startswith("d")}
        run("dpkg-deb", "--extract", path, root)
    twice = holds["libzruikit1"] & holds["libzruikit-dev"] | holds["libzruikit1"] & holds["trimstudio"]
    assert not twice, f"in two packages: {twice}"
    for package, endings in {"libzruikit1": ["libZRUIKit.so.1", "libZRUIKitQt.so.1", "SliderTrimLeft@2x.png", "ZRUIKit/LICENSE"],
                             "libzruikit-dev": ["libZRUIKit.so", "AppKit/AppKit.h", "zruikit-qt.pc", "ZRUIKitConfig.cmake",
                                                "WindowSystem/Windows.h", "Documentation/hosting.md"],
                             "trimstudio": ["bin/TrimStudio", "TrimStudio.desktop", "TrimStudio/LICENSE",
                                            "TrimStudio/de.lproj/Localizable.strings"]}.items():
        for ending in endings:
            assert any(held.endswith("/" + ending) for held in holds[package]), f"{package} has no {ending}, but {sorted(holds[package])}"
    assert not any(held.endswith(".h") or held.endswith(".so") for held in holds["libzruikit1"])
    run("desktop-file-validate", root / "usr/share/applications/TrimStudio.desktop")

    with Desktop() as desktop:
        recording = "/usr/share/sounds/freedesktop/stereo/alarm-clock-elapsed.oga"
        program = desktop.start([str(root / "usr/bin/TrimStudio"), "--", recording], env={**desktop.environment, "LC_ALL": "C.UTF-8"})
        window = wait_until("TrimStudio's window",
                            lambda: desktop.run("xdotool", "search", "--onlyvisible", "--pid", str(program.pid)).split())
        mapped = pathlib.Path(f"/proc/{program.pid}/maps").read_text()
        assert str(next(root.rglob("libZRUIKitQt.so.1"))) in mapped, "it runs with other libraries than the package's"
        desktop.ask_to_close(window[0])
        assert program.wait(DEADLINE) == 0, "TrimStudio does not end with its window"
print("packed, unpacked, and started")
