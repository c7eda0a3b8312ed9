#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Looks at what the libraries export: names of classes and functions that the installed headers mark, and nothing else.
Arguments: the folder of the libraries, the include folder, a file with the Qt adaptor's list."""

import ctypes
import pathlib
import re
import subprocess
import sys

libraries, headers, qt_list = (pathlib.Path(argument) for argument in sys.argv[1:])

# Parts of a symbol's demangled name that stand for what the compiler makes of a class.
MADE_OF = re.compile(r"^((vtable|VTT|typeinfo|typeinfo name) for |(non-virtual|virtual) thunk to "
                     r"|construction vtable for .*-in-)")
DATA = {"ZRUIKitVersionNumber", "ZRUIKitVersionString"}


def exported(library):
    listed = subprocess.run(["nm", "-DC", "--defined-only", libraries / f"lib{library}.so"], check=True, text=True,
                            capture_output=True).stdout
    return sorted({line.split(" ", 2)[2] for line in listed.splitlines()})


def marked():
    """Qualified names of the classes and functions that headers mark for export."""
    names = set()
    for header in headers.rglob("*.h"):
        namespaces = []
        opened_at = 0
        for number, line in enumerate(header.read_text().splitlines()):
            if opened := re.match(r"namespace ([\w:]+) \{(.*)", line):
                if not opened[2].endswith("}"):
                    namespaces.append(opened[1])
                    opened_at = number
            # The formatter leaves the end of a namespace of one line without a comment.
            elif line.startswith("} // namespace") or line == "}" and number == opened_at + 2:
                namespaces.pop()
            elif found := re.match(r"(?:class|struct) ZR_EXPORT (\w+)", line) or re.match(r"ZR_EXPORT .*?(\w+)\(", line):
                names.add("::".join([*namespaces, found[1]]))
    return names


def qualified(name):
    """Without arguments, and without the type that a template's instance has before its name."""
    plain = re.sub(r"\[abi:\w+\]", "", MADE_OF.sub("", name))
    while (shorter := re.sub(r"<[^<>]*>", "", plain)) != plain:
        plain = shorter
    return plain.split("(")[0].split(" ")[-1]


public = marked()
assert len(public) > 90, f"only {len(public)} names are marked"
seen = set()
for library in "ZRUIKit", "ZRUIKitHeadless", "ZRUIKitQt":
    names = exported(library)
    if library == "ZRUIKit":
        assert DATA <= set(names), f"{library} does not export its version"
        names = [name for name in names if name not in DATA]
    for name in names:
        plain = qualified(name)
        assert plain.startswith("zr::"), f"{library} exports {name}"
        owners = [owner for owner in public if plain == owner or plain.startswith(owner + "::")]
        assert owners, f"{library} exports {name}, which no public header marks"
        seen.update(owners)
assert public == seen, f"marked, and exported by no library: {sorted(public - seen)}"

kit = ctypes.CDLL(str(libraries / "libZRUIKit.so"))
assert ctypes.c_double.in_dll(kit, "ZRUIKitVersionNumber").value == 1.0
text = ctypes.string_at(ctypes.addressof(ctypes.c_char.in_dll(kit, "ZRUIKitVersionString")))
assert b"ZRUIKit" in text, text

expected = qt_list.read_text().splitlines()
names = exported("ZRUIKitQt")
assert names == expected, "the Qt adaptor exports\n" + "\n".join(names)
print(f"{len(public)} marked names, and no others")
