#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Every language of the kit and of TrimStudio has the same texts, with the same places for arguments in the same order."""

import pathlib
import re
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TABLES = {ROOT / "Assets": "Localized.strings", ROOT / "Examples" / "TrimStudio" / "Resources": "Localizable.strings"}
LANGUAGES = {"de", "en", "es", "fr", "ja", "zh-Hans"}

STRING = r'"((?:[^"\\]|\\.)*)"'
COMMENT_OR_PAIR = re.compile(rf"\s*(?:/\*.*?\*/|{STRING}\s*=\s*{STRING}\s*;)\s*", re.DOTALL)
PLACEHOLDER = re.compile(r"%(?:\d+\$)?[-+#0]*\d*(?:\.\d+)?(?:hh?|ll?|q)?[@a-zA-Z%]")


def read(text):
    """The pairs of a table of strings."""
    pairs, at = {}, 0
    while at < len(text):
        match = COMMENT_OR_PAIR.match(text, at)
        if not match:
            raise ValueError(f"not understood: {text[at:at + 40]!r}")
        key, value = match.groups()
        if key in pairs:
            raise ValueError(f"twice: {key}")
        if key is not None:
            pairs[key] = value
        at = match.end()
    return pairs


def problems(tables):
    """How the languages differ. Each text's key says which arguments it takes."""
    keys = {key for table in tables.values() for key in table}
    found = []
    for language, table in sorted(tables.items()):
        found += [f"{language} lacks {key}" for key in sorted(keys - set(table))]
        for key, value in table.items():
            if not value.strip():
                found.append(f"{language} says nothing for {key}")
            if PLACEHOLDER.findall(key) != PLACEHOLDER.findall(value):
                found.append(f"{language} has other placeholders in {key}")
    return found


class Translations(unittest.TestCase):
    def test_all_languages_agree(self):
        for folder, name in TABLES.items():
            tables = {path.parent.stem: read(path.read_text("utf-8")) for path in folder.glob(f"*.lproj/{name}")}
            with self.subTest(name):
                self.assertEqual(set(tables), LANGUAGES)
                self.assertEqual({path.stem for path in folder.glob("*.lproj")}, LANGUAGES)
                self.assertTrue(tables["en"])
                self.assertEqual(problems(tables), [])

    def test_every_text_that_trimstudio_asks_for_is_there(self):
        source = ROOT / "Examples" / "TrimStudio"
        asked = {text for path in source.glob("*.cpp") for text in re.findall(rf'AppLocalizedString\(\s*{STRING}', path.read_text("utf-8"))}
        table = read((source / "Resources" / "en.lproj" / "Localizable.strings").read_text("utf-8"))
        self.assertTrue(asked)
        self.assertEqual(asked - set(table), set())

    def test_what_differs_is_noticed(self):
        english = read('/* One. */ "%@ of %d" = "%@ of %d"; "Stop" = "Stop";')
        self.assertEqual(problems({"en": english, "de": {"%@ of %d": "%@ von %d", "Stop": "Halt"}}), [])
        for german, notice in (({"%@ of %d": "%@ von %d"}, ["de lacks Stop"]),
                               ({**english, "Go": "Los"}, ["en lacks Go"]),
                               ({"%@ of %d": "%d: %@", "Stop": "Halt"}, ["de has other placeholders in %@ of %d"]),
                               ({"%@ of %d": "%@ von %ld", "Stop": "Halt"}, ["de has other placeholders in %@ of %d"]),
                               ({**english, "Stop": "Halt %@"}, ["de has other placeholders in Stop"]),
                               ({**english, "Stop": " "}, ["de says nothing for Stop"])):
            with self.subTest(notice):
                self.assertEqual(problems({"en": english, "de": german}), notice)
        for text in ('"Stop" = "Halt"', '"Stop" = Halt;', '"A" = "B"; "A" = "C";', "/* open"):
            with self.subTest(text), self.assertRaises(ValueError):
                read(text)


if __name__ == "__main__":
    unittest.main(verbosity=2)
