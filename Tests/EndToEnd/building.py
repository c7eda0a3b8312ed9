#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Builds the kit in the ways in which others do.
Arguments: Subproject | Static, the source folder."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

group, source = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()


def run(*command, folder=None, **environment):
    result = subprocess.run([str(word) for word in command], text=True, capture_output=True, timeout=1500, cwd=folder,
                            env={**os.environ, **environment})
    if result.returncode:
        sys.exit(f"{command}\n{result.stdout}{result.stderr}")
    return result.stdout


def configure(project, build, *options, **environment):
    run("cmake", "-S", project, "-B", build, "-G", "Ninja", "-DCMAKE_CXX_COMPILER_LAUNCHER=ccache",
        "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", *options, **environment)


def subproject(folder):
    """The kit in another's project, on a machine that has no media libraries: it configures, what it adds is the kit alone,
    its warnings are nobody's errors, and what it wants installed does not come into the project's own installation."""
    (folder / "ZRUIKit").symlink_to(source)
    page = (source / "Documentation/building.md").read_text()
    lines = next(block for block in re.findall(r"```cmake\n(.*?)```", page, re.DOTALL) if "add_subdirectory" in block)
    (folder / "CMakeLists.txt").write_text(lines + """add_library(own own.cpp)
file(GENERATE OUTPUT kind.txt CONTENT "$<TARGET_PROPERTY:own,TYPE>")
install(TARGETS host)
""")
    (folder / "host.cpp").write_text("#include <ZRUIKitQt/Application.h>\nint main() {}\n")
    (folder / "own.cpp").write_text("int own() { return 1; }\n")
    modules = folder / "modules"  # all that pkg-config finds there
    modules.mkdir()
    found = run("pkg-config", "--variable=pcfiledir", "libplist-2.0").strip()
    (modules / "libplist-2.0.pc").symlink_to(pathlib.Path(found) / "libplist-2.0.pc")
    build = folder / "build"
    configure(folder, build, PKG_CONFIG_LIBDIR=str(modules))
    commands = json.loads((build / "compile_commands.json").read_text())
    assert any("SplitSliderView.cpp" in entry["file"] for entry in commands)
    strangers = [entry["file"] for entry in commands if "/Examples/" in entry["file"] or "/Tests/" in entry["file"]]
    assert not strangers, f"the kit brings its own programs: {strangers}"
    assert not any("-Werror" in entry["command"] for entry in commands), "the kit's warnings end another's build"
    assert (build / "kind.txt").read_text() == "STATIC_LIBRARY", "the kit decides how another's libraries are built"
    run("ninja", "-C", build, "zr_base")
    scripts = "".join(script.read_text() for script in build.rglob("cmake_install.cmake"))
    installed = re.findall(r"^ *file\(INSTALL .*", scripts, re.MULTILINE)
    assert len(installed) == 1 and '"/host"' in installed[0].replace(str(build), ""), f"the kit installs itself: {installed}"


HOST = """#include <AppKit/NSImage.h>
#include <ZRUIKit/ZRUIKit.h>
#include <ZRUIKitHeadless/Headless.h>
#include <cstdio>
int main() {
    const zr::headless::Platform platform;
    const auto slider = zr::make<zr::SplitSliderView>(zr::NSMakeRect(0, 0, 600, 61));
    const auto picture = zr::KitImage("SliderTrimLeft");
    std::printf("%s %d %s %g\\n", zr::KitLocalizedString("Got it").c_str(), picture != nullptr,
                slider->selectionItem() ? "slider" : "nothing", ZRUIKitVersionNumber);
}
"""
HOST_SAYS = "Got it 1 slider 1\n"


def static(folder):
    """A project that has the kit and Headless within its program, built with it and then installed; another one that takes the
    installed libraries, and a compiler that is told of them by pkg-config. All find the kit's pictures."""
    whole, build, prefix = folder / "whole", folder / "whole/build", folder / "prefix"
    whole.mkdir()
    (whole / "ZRUIKit").symlink_to(source)
    (whole / "host.cpp").write_text(HOST)
    (whole / "CMakeLists.txt").write_text("""cmake_minimum_required(VERSION 3.25)
project(whole LANGUAGES CXX)
set(BUILD_SHARED_LIBS OFF)
set(ZRUIKIT_QT OFF)
set(ZRUIKIT_INSTALL ON)
add_subdirectory(ZRUIKit)
add_executable(host host.cpp)
target_link_libraries(host PRIVATE ZRUIKit::Headless)
install(TARGETS host)
""")

    def says(program):
        said = run(program, LC_ALL="C.UTF-8", LANGUAGE="en")
        assert said == HOST_SAYS, f"{program} says {said}"
        assert "ZRUIKit" not in run("ldd", program)

    configure(whole, build, f"-DCMAKE_INSTALL_PREFIX={prefix}")
    run("ninja", "-C", build)
    says(build / "host")
    assert not (build / "CPackConfig.cmake").exists(), "the kit packs another's project"
    run("cmake", "--install", build)
    assert not list(prefix.rglob("*.so*")), "a static build has shared libraries"
    shutil.rmtree(build / "ZRUIKit")
    says(prefix / "bin/host")

    other = folder / "other"
    other.mkdir()
    (other / "host.cpp").write_text(HOST)
    (other / "CMakeLists.txt").write_text("""cmake_minimum_required(VERSION 3.25)
project(other LANGUAGES CXX)
find_package(ZRUIKit 1 REQUIRED COMPONENTS Headless OPTIONAL_COMPONENTS Qt)
add_executable(other_host host.cpp)
target_link_libraries(other_host PRIVATE ZRUIKit::Headless)
install(TARGETS other_host)
""")
    configure(other, other / "build", f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_INSTALL_PREFIX={prefix}")
    run("ninja", "-C", other / "build", "install")
    says(prefix / "bin/other_host")
    flags = run("pkg-config", "--cflags", "--libs", "zruikit-headless",
                PKG_CONFIG_PATH=str(next(prefix.rglob("pkgconfig")))).split()
    run("g++", "-std=c++20", other / "host.cpp", "-o", prefix / "bin/by_pkg_config", *flags)
    says(prefix / "bin/by_pkg_config")


with tempfile.TemporaryDirectory(prefix="zruikit-building-") as name:
    {"Subproject": subproject, "Static": static}[group](pathlib.Path(name).resolve())
print(f"{group}: built, and looked at")
