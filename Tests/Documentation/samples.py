#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The samples of the pages, as programs of their own.

A block of C++ begins with the headers it needs. One with a main is a program; any other becomes the body of a function,
which runs on the window system that it names, Qt or a Headless that it makes itself, and without one on a Headless made
here. A comment "given:" right before a block holds what its reader has already. A block of text right after it is what the
sample prints; without one it prints nothing.

samples.py generate FOLDER PAGE...   a source and what it prints for each sample; writes "name=system" for each
samples.py run PROGRAM EXPECTED      fails where the program does, and where it prints anything else
samples.py names SOURCE              fails where a page that lists all of something lacks one of them"""

import difflib
import pathlib
import re
import subprocess
import sys

GIVEN = "<!-- given:\n"
BLOCK = re.compile(r"^(?:<!-- given:\n(?P<given>(?:(?!-->).)*)-->\n)?```cpp\n(?P<code>.*?)^```\n"
                   r"(?:\n?```text\n(?P<prints>.*?)^```\n)?", re.DOTALL | re.MULTILINE)
HEADERS = re.compile(r"(?:#include .*\n|\n)*")

# What follows the sample, so that none of its headers are the sample's.
MAINS = {
    "here": """
#include <ZRUIKitHeadless/Headless.h>
int main() {
    zr::headless::Platform platform;
    sample();
    return platform.starved();
}
""",
    "own": "int main() { sample(); }\n",
    "qt": """
#include <QApplication>
#include <ZRUIKitQt/Application.h>
int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const zr::qt::Platform platform({.userDefaults = ""});
    sample();
}
""",
}


def system_of(text):
    return "qt" if "<ZRUIKitQt/" in text else "own" if "<ZRUIKitHeadless/" in text else "here"


def source_of(page, line, given, code):
    def here(number):
        return f'#line {number} "{page}"\n'

    if "int main(" in code:
        return here(line) + code
    headers = HEADERS.match(code).group()
    given_headers = HEADERS.match(given).group()
    return (f"{here(line)}{headers}{given_headers}static void sample() {{\n{given[len(given_headers):]}"
            f"{here(line + headers.count(chr(10)))}{code[len(headers):]}}}\n{MAINS[system_of(code + given)]}")


def write(path, text):
    if not path.exists() or path.read_text() != text:
        path.write_text(text)


def generate(folder, *pages):
    made = []
    for page in map(pathlib.Path, pages):
        text = page.read_text()
        blocks = list(BLOCK.finditer(text))
        if len(blocks) != text.count("```cpp") or sum(block["given"] is not None for block in blocks) != text.count(GIVEN):
            sys.exit(f"{page}: a sample, or what is given for one, is not where it can be found")
        for number, block in enumerate(blocks, 1):
            name = f"{page.stem}.{number}"
            given, code = block["given"] or "", block["code"]
            if not code.startswith("#include"):
                sys.exit(f"{page}: sample {number} does not begin with its headers")
            line = text.count("\n", 0, block.start("code")) + 1
            write(pathlib.Path(folder) / f"{name}.cpp", source_of(page, line, given, code))
            write(pathlib.Path(folder) / f"{name}.txt", block["prints"] or "")
            made.append(f"{name}={'qt' if system_of(code + given) == 'qt' else 'headless'}")
    print(*made, sep=";", end="")


def run(program, expected):
    wanted = pathlib.Path(expected).read_text()
    result = subprocess.run([program], stdout=subprocess.PIPE, text=True, timeout=60)
    if result.stdout != wanted:
        sys.exit("".join(difflib.unified_diff(wanted.splitlines(True), result.stdout.splitlines(True), "the page", "the sample")))
    if result.returncode:
        sys.exit(f"it ends with {result.returncode}")


PROTOCOLS = re.compile(r"^class (?:\w+ )?(?:\w*(?:Delegate|DataSource)|MASPreferencesViewController|FileItem|DDLogger) \{\n"
                       r"(.*?)^\};", re.DOTALL | re.MULTILINE)


def names(source):
    source = pathlib.Path(source)
    rooms = [source / room for room in ("Platform/Foundation", "Platform/AppKit", "Platform/HostLibraries", "Classes")]

    def found(pattern, suffix):
        return {name for room in rooms for file in room.rglob(suffix) for name in re.findall(pattern, file.read_text())}

    messages = {name for room in rooms for header in room.rglob("*.h") for body in PROTOCOLS.findall(header.read_text())
                for name in re.findall(r"virtual [^~;{]*?(\w+)\(", body)}
    lists = {
        "delegates.md": messages,
        "notifications.md": found(r"inline const NSNotificationName (\w+)", "*.h"),
        "target-action.md": found(r'actionNamed<&\w+::\w+>\("(\w+:)"\)', "*.cpp") - {"pressed:"},  # of alerts alone
    }
    for page, wanted in lists.items():
        text = (source / "Documentation" / page).read_text()
        missing = sorted(name for name in wanted if not re.search(rf"\b{name}(?!\w)", text))
        if not wanted or missing:
            sys.exit(f"{page} lacks {', '.join(missing)}" if wanted else f"nothing was found that {page} could list")

    packages = re.search(r"packages=\(\n(.*?)\n\)", (source / "scripts/setup").read_text(), re.DOTALL)[1]
    page = (source / "Documentation/dependencies.md").read_text()
    unnamed = [name for name in re.sub(r"#.*", "", packages).split() if f"`{name}`" not in page]
    if unnamed:
        sys.exit(f"dependencies.md lacks {', '.join(unnamed)}")


{"generate": generate, "run": run, "names": names}[sys.argv[1]](*sys.argv[2:])
