#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""GNUstep's NSNib opens every interface file of the kit, and one with a table, and finds every outlet and action in it."""

import collections
import copy
import itertools
import json
import pathlib
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as xml

from desktop import DEADLINE, Desktop

HERE = pathlib.Path(__file__).resolve().parent
ASSETS = HERE.parent.parent / "Assets"
FILES = {path.name: path for folder in (ASSETS, HERE.parent / "Support/InterfaceFiles") for path in folder.rglob("*.xib")}

# What the kit counts on in a file, by class: (the one that has it, its name, the one that it leads to).
Contract = collections.namedtuple("Contract", "owner outlets actions attributes")
CONTRACTS = {
    "FolderList.xib": Contract(
        owner="FolderList",
        outlets={("FolderList", "view", "NSView"),
                 ("FolderList", "tableView", "NSTableView"),
                 ("FolderList", "busy", "NSProgressIndicator"),
                 ("NSTableView", "dataSource", "FolderList"),
                 ("NSTableView", "delegate", "FolderList")},
        actions=set(),
        attributes=set()),
    "ZRLoadingWndCtl.xib": Contract(
        owner="ZRLoadingWndCtl",
        outlets={("ZRLoadingWndCtl", "window", "NSWindow"),
                 ("ZRLoadingWndCtl", "lblPrgTip", "NSTextField"),
                 ("ZRLoadingWndCtl", "lblSaveProgress", "NSTextField"),
                 ("ZRLoadingWndCtl", "prgSaving", "NSProgressIndicator"),
                 ("ZRLoadingWndCtl", "btnCancel", "NSButton")},
        actions={("NSButton", "cancelDown:", "ZRLoadingWndCtl")},
        attributes=set()),
    "ZRTrustedPathViewCtl.xib": Contract(
        owner="ZRTrustedPathViewCtl",
        outlets={("ZRTrustedPathViewCtl", "view", "NSView"),
                 ("ZRTrustedPathViewCtl", "tableView", "NSTableView"),
                 ("ZRTrustedPathViewCtl", "loadingBgView", "NSView"),
                 ("ZRTrustedPathViewCtl", "loadingIndicator", "NSProgressIndicator"),
                 ("ZRTrustedPathViewCtl", "lblLoadingTips", "NSTextField"),
                 ("ZRTrustedPathViewCtl", "lblLoadingPath", "NSTextField")},
        actions={("NSButton", "addFolderDown:", "ZRTrustedPathViewCtl"),
                 ("NSButton", "removeFolderDown:", "ZRTrustedPathViewCtl"),
                 ("NSButton", "loadingCancelClick:", "ZRTrustedPathViewCtl")},
        attributes=set()),
    "MASPreferencesWindow.xib": Contract(
        owner="MASPreferencesWindowController",
        outlets={("MASPreferencesWindowController", "window", "NSWindow"),
                 ("NSWindow", "delegate", "MASPreferencesWindowController"),
                 ("NSToolbar", "delegate", "MASPreferencesWindowController")},
        actions=set(),
        attributes=set()),
}


def run(*words, **options):
    return subprocess.run([str(word) for word in words], text=True, capture_output=True, timeout=2 * DEADLINE,
                          stdin=subprocess.DEVNULL, **options)


def flags(kind):
    return run("gnustep-config", kind, check=True).stdout.split()


def difference(what, found, expected):
    return [f"{what} {item} is {'missing' if item in expected else 'not expected'}" for item in sorted(found ^ expected)]


class SecondLoader(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = cls.enterClassContext(Desktop())
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="zruikit-loader-")))
        cls.environment = {**cls.desktop.environment, "HOME": str(cls.folder)}
        cls.program = cls.folder / "second-loader"
        compiled = run("gcc", "-std=gnu11", "-Werror", *flags("--objc-flags"), HERE / "SecondLoader/main.m",
                       "-o", cls.program, *flags("--gui-libs"), cwd=cls.folder)
        if compiled.returncode:
            raise RuntimeError(compiled.stderr)

    def open(self, path, owner):
        result = run(self.program, path, owner, env=self.environment)
        return (json.loads(result.stdout) if result.returncode == 0 else None), result.stderr

    def problems(self, path, contract):
        """How the file and what became of it differ from what the kit counts on."""
        root = xml.parse(path).getroot()
        named = root.find("objects/customObject[@id='-2']").get("customClass")
        if named != contract.owner:
            return [f"the owner is {named}"]
        opened, errors = self.open(path, contract.owner)
        if opened is None:
            return [f"not opened: {errors}"]

        def kind(place):
            return "nothing in the file" if place is None else opened["objects"][place]["class"]

        outlets = {(kind(outlet["of"]), outlet["name"], kind(outlet["to"])) for outlet in opened["outlets"]}
        actions = {(kind(action["of"]), action["selector"], kind(action["to"])) for action in opened["actions"]}
        attributes = {(attribute["keyPath"], attribute["value"]) for attribute in opened["attributes"]}
        found = difference("outlet", outlets, contract.outlets) + difference("action", actions, contract.actions) + \
            difference("attribute", attributes, contract.attributes)
        found += [f"nothing answers {action['selector']}" for action in opened["actions"] if not action["answered"]]
        for what, arrived in (("outlet", opened["outlets"]), ("action", opened["actions"])):
            written = len(root.findall(f".//{what}"))
            if written != len(arrived):
                found.append(f"{len(arrived)} of {written} {what}s arrived: {errors}")
        return found

    def changed(self, path, change):
        """A copy of the file after the change, which is given the copy's root element."""
        tree = xml.parse(path)
        change(tree.getroot())
        changed = self.folder / path.name
        tree.write(changed, encoding="UTF-8", xml_declaration=True)
        return changed

    def test_each_interface_file_keeps_its_contract(self):
        self.assertEqual(set(FILES), set(CONTRACTS))
        for name, contract in CONTRACTS.items():
            with self.subTest(name):
                self.assertEqual(self.problems(FILES[name], contract), [])
                unchanged = self.changed(FILES[name], lambda root: None)
                self.assertEqual(self.problems(unchanged, contract), [])

    def test_each_outlet_and_action_is_missed_when_it_is_gone_or_misnamed(self):
        for name, contract in CONTRACTS.items():
            root = xml.parse(FILES[name]).getroot()
            for tag, key in (("outlet", "property"), ("action", "selector")):
                for place, element in enumerate(root.iter(tag)):
                    word = element.get(key)

                    def misname(copied):
                        next(itertools.islice(copied.iter(tag), place, None)).set(key, "x" + word)

                    def remove(copied):
                        gone = next(itertools.islice(copied.iter(tag), place, None))
                        next(parent for parent in copied.iter() if gone in list(parent)).remove(gone)

                    for change in (misname, remove):
                        with self.subTest(f"{name}: {change.__name__} {word}"):
                            found = self.problems(self.changed(FILES[name], change), contract)
                            self.assertTrue(any(f"'{word}'" in problem and problem.endswith("missing") for problem in found),
                                            found)

    def test_what_else_may_be_wrong_is_noticed(self):
        name = "ZRLoadingWndCtl.xib"

        def lead_nowhere(root):
            root.find(".//outlet").set("destination", "aaa-aa-aaa")

        def name_another_outlet(root):
            another = copy.deepcopy(root.find(".//outlet"))
            another.attrib.update(property="another", id="bbb-bb-bbb")
            root.find(".//connections").append(another)

        def name_another_owner(root):
            root.find("objects/customObject[@id='-2']").set("customClass", "NSWindowController")

        def name_an_unknown_class(root):
            root.find(".//button").set("customClass", "NoSuchButton")

        def set_an_attribute(root):
            added = xml.SubElement(root.find(".//button"), "userDefinedRuntimeAttributes")
            xml.SubElement(added, "userDefinedRuntimeAttribute", type="string", keyPath="toolTip", value="Stop")

        for change, notice in ((lead_nowhere, "nothing in the file"), (name_another_outlet, "arrived"),
                               (name_another_owner, "the owner is"), (name_an_unknown_class, "not opened"),
                               (set_an_attribute, "attribute ('toolTip', 'Stop') is not expected")):
            with self.subTest(change.__name__):
                found = self.problems(self.changed(FILES[name], change), CONTRACTS[name])
                self.assertTrue(any(notice in problem for problem in found), found)

    def test_the_table_stands_in_its_scroll_view_with_its_columns(self):
        opened, errors = self.open(FILES["FolderList.xib"], "FolderList")
        self.assertIsNotNone(opened, errors)
        table = next(item for item in opened["objects"] if item["class"] == "NSTableView")
        self.assertEqual([column[:2] for column in table["columns"]], [["folder", "Folder"], ["state", "State"]])
        self.assertEqual(table["columns"][0][2], 240)  # the last one is fitted
        clip = opened["objects"][table["superview"]]
        self.assertEqual(clip["class"], "NSClipView")
        self.assertEqual(opened["objects"][clip["superview"]]["class"], "NSScrollView")

    def test_the_progress_sheet_reads_from_the_top_within_its_margins(self):
        opened, errors = self.open(FILES["ZRLoadingWndCtl.xib"], "ZRLoadingWndCtl")
        self.assertIsNotNone(opened, errors)
        parts = {outlet["name"]: opened["objects"][outlet["to"]] for outlet in opened["outlets"]}
        _, _, width, top = opened["objects"][parts["btnCancel"]["superview"]]["frame"]
        gap = 20
        for name in ("lblPrgTip", "prgSaving", "lblSaveProgress", "btnCancel"):
            x, y, w, h = parts[name]["frame"]
            self.assertTrue(x >= 20 and x + w == width - 20 and y + h <= top - gap, (name, x, y, w, h))
            top, gap = y, 8
        self.assertEqual(y, 20)


if __name__ == "__main__":
    unittest.main(verbosity=2)
