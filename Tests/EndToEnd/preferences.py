#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""TrimStudio's menu and preferences, used by a real pointer and a real keyboard; what is kept is read by Python's plistlib."""

import pathlib
import re
import sys
import unittest

from desktop import WaylandDesktop, store, stored, wait_until
from trimming import SOUND, TrimmingTest

PANE = "GeneralViewController"


class PreferencesTest(TrimmingTest):
    def setUp(self):
        super().setUp()
        self.clips = self.folder / "clips"
        self.clips.mkdir()
        store(self.desktop, {"MASPreferences Selected Identifier View": PANE})

    def open_by_key(self, studio):
        self.desktop.pointer("key", "ctrl+comma")
        return self.wait_until_key(studio)

    @staticmethod
    def wait_until_key(studio):
        return studio.wait_for_preferences("the preferences", lambda p: p and p["key"])

    def windows(self, studio, *criteria):
        return set(self.desktop.run("xdotool", "search", "--onlyvisible", "--all", "--pid", str(studio.process.pid), *criteria).split())

    def stored(self):
        return stored(self.desktop)

    def choose_by_keyboard(self, studio, folder):
        """In the dialog, which is open, or about to be."""
        wait_until("the dialog", lambda: self.windows(studio, "--name", "^Choose$"))
        self.type_folder(studio, folder)

    def type_folder(self, studio, folder):
        self.desktop.pointer("type", str(folder))
        self.desktop.pointer("key", "Return")
        studio.wait_for_preferences("the folder", lambda p: p and str(folder) in p["texts"] and p["key"])


class OnX11(PreferencesTest):
    def click_menu_item(self, studio, row):
        """Of the first menu, whose items and separators are counted from its top."""
        before = self.windows(studio)
        x, y, _, height = self.desktop.client_area(studio.window)
        bar = height - studio.last["views"]["window"]["rect"][3]
        self.assertGreater(bar, 10)
        self.click_at(x + 15, y + bar / 2)
        menu = wait_until("the menu", lambda: self.windows(studio) - before).pop()
        x, y, width, height = self.desktop.client_area(menu)
        self.click_at(x + width / 3, y + row(height))

    def click_at(self, x, y):
        self.desktop.move(x, y)
        self.desktop.press()
        self.desktop.release()

    def click_button(self, studio, title):
        shown = studio.preferences
        x, y, width, height = next(button["rect"] for button in shown["buttons"] if button["title"] == title)
        self.click_at(shown["rect"][0] + x + width / 2, shown["rect"][1] + y + height / 2)

    def test_the_menu_opens_them_and_closing_them_leaves_the_file_open(self):
        studio = self.open()
        self.click_menu_item(studio, lambda height: 12)
        shown = self.wait_until_key(studio)
        self.assertEqual((shown["title"], shown["pane"]), ("Preferences", PANE))
        self.assertEqual(shown["texts"], ["Save trimmed recordings in:", "The folder of the recording"])
        self.desktop.pointer("key", "ctrl+w")
        studio.wait_for_preferences("their end", lambda p: p is None)
        self.desktop.pointer("windowactivate", "--sync", studio.window)
        self.press(5)
        self.desktop.release()
        self.wait_for_position(studio, 5)
        self.open_by_key(studio)
        self.desktop.pointer("windowactivate", "--sync", studio.window)
        self.click_menu_item(studio, lambda height: height - 12)  # quits
        self.assertEqual((studio.ended(), "".join(studio.errors)), (0, ""))

    def test_a_folder_is_chosen_with_the_pointer_and_used(self):
        studio = self.open()
        self.open_by_key(studio)
        self.click_button(studio, "Choose…")
        self.choose_by_keyboard(studio, self.clips)
        saved = self.save(studio)["saved"]
        self.assertEqual(saved, str(self.clips / "take-trimmed.wav"))
        self.assertTrue(pathlib.Path(saved).is_file())
        self.desktop.pointer("key", "ctrl+q")
        self.assertEqual(studio.ended(), 0)
        self.assertEqual(self.stored()["SaveFolder"], str(self.clips))
        self.assert_nothing_left_over("clips", "take.wav")

        # The next run uses it, too, and says so when it is gone.
        (self.clips / "take-trimmed.wav").unlink()
        self.clips.rmdir()
        studio = self.open()
        studio.click("saveButton")
        asked = studio.wait("the question", lambda d: d["alert"] and d["alert"]["key"])["alert"]
        self.assertIn(f"“take.wav” cannot be saved in “{self.clips}”.", " ".join(asked["texts"]).replace("\n", " "))
        self.desktop.pointer("key", "Escape")
        studio.wait("the end of the question", lambda d: not d["alert"])
        shown = self.open_by_key(studio)
        self.assertIn(str(self.clips), shown["texts"])
        self.click_button(studio, "Use Recording’s Folder")
        studio.wait_for_preferences("the recording's folder", lambda p: "The folder of the recording" in p["texts"])
        self.assertEqual(self.save(studio)["saved"], str(self.folder / "take-trimmed.wav"))
        self.desktop.pointer("key", "ctrl+q")
        self.assertEqual(studio.ended(), 0)
        self.assertNotIn("SaveFolder", self.stored())

    def test_the_keyboard_goes_from_pane_to_pane(self):
        studio = self.open()
        self.open_by_key(studio)
        for key, pane in (("ctrl+Tab", "TrustedViewController"), ("ctrl+Tab", PANE), ("ctrl+shift+Tab", "TrustedViewController")):
            self.desktop.pointer("key", key)
            studio.wait_for_preferences(pane, lambda p: p["pane"] == pane)
        self.desktop.pointer("key", "ctrl+q")
        self.assertEqual(studio.ended(), 0)

    def test_minimised_they_come_back(self):
        studio = self.open()
        self.open_by_key(studio)
        window = self.windows(studio, "--name", "^Preferences$").pop()
        self.desktop.pointer("windowminimize", "--sync", window)
        self.assertEqual(self.windows(studio, "--name", "^Preferences$"), set())
        self.desktop.pointer("windowactivate", "--sync", studio.window)
        self.desktop.pointer("key", "ctrl+comma")
        wait_until("the preferences", lambda: self.windows(studio, "--name", "^Preferences$"))
        self.wait_until_key(studio)
        self.desktop.pointer("key", "ctrl+q")
        self.assertEqual(studio.ended(), 0)

    def test_a_place_that_is_on_no_screen_is_given_up(self):
        store(self.desktop, {"MASPreferences Selected Identifier View": PANE, "MASPreferences Frame Top Left": "{3000, -500}"})
        studio = self.open()
        x, y, width, height = self.open_by_key(studio)["rect"]
        # How high the title bar will be is not known before the window is there.
        border, title_bar = 2, 40
        self.assertGreaterEqual(x, 0)
        self.assertLessEqual(x + width, 1280 + border)
        self.assertGreaterEqual(y, 0)
        self.assertLessEqual(y + height, 800 + title_bar)
        self.desktop.pointer("key", "ctrl+q")
        self.assertEqual(studio.ended(), 0)

    def test_the_next_run_brings_back_place_size_and_pane(self):
        studio = self.open()
        before = self.open_by_key(studio)["rect"]
        window = self.windows(studio, "--name", "^Preferences$").pop()
        self.desktop.pointer("windowsize", window, before[2] + 100, self.desktop.client_area(window)[3])
        studio.wait_for_preferences("the new size", lambda p: p["rect"][2] == before[2] + 100)
        self.desktop.pointer("windowmove", window, 150, 90)
        placed = studio.wait_for_preferences("the new place", lambda p: p["rect"][1] < before[1] - 50 and p["rect"][0] < 200)["rect"]
        self.desktop.pointer("key", "ctrl+w")
        studio.wait_for_preferences("their end", lambda p: p is None)
        self.desktop.pointer("windowactivate", "--sync", studio.window)
        self.open_by_key(studio)
        studio.wait_for_preferences("the same place", lambda p: p["rect"] == placed)
        self.desktop.pointer("key", "ctrl+q")
        self.assertEqual(studio.ended(), 0)

        stored = self.stored()
        self.assertEqual(stored["MASPreferences Selected Identifier View"], PANE)
        self.assertEqual(stored[f"MASPreferences {PANE} Frame"], f"{{{{0, 0}}, {{{placed[2]:.0f}, {placed[3]:.0f}}}}}")
        left, top = map(float, re.fullmatch(r"{(.*), (.*)}", stored["MASPreferences Frame Top Left"]).groups())
        self.assertLessEqual(abs(left - placed[0]), 10)
        self.assertGreater(top, 800 - placed[1])  # the frame's, from below

        studio = self.open()
        self.open_by_key(studio)
        studio.wait_for_preferences("the same place again", lambda p: p["rect"] == placed)
        self.assertEqual(studio.preferences["pane"], PANE)
        self.desktop.pointer("key", "ctrl+q")
        self.assertEqual(studio.ended(), 0)

    def test_the_last_file_takes_them_along_and_their_dialog_too(self):
        for asks in (False, True):
            with self.subTest(asks=asks):
                studio = self.open()
                self.open_by_key(studio)
                if asks:
                    self.desktop.pointer("key", "space")
                    wait_until("the dialog", lambda: self.windows(studio, "--name", "^Choose$"))
                self.assertEqual((studio.close(), "".join(studio.errors)), (0, ""))


class Keyboard:
    def test_the_keyboard_alone_does_it(self):
        studio = self.open()
        self.open_by_key(studio)
        self.desktop.pointer("key", "space")
        self.type_when_open(studio)
        self.desktop.pointer("key", "ctrl+w")
        studio.wait_for_preferences("their end", lambda p: p is None)
        self.assertEqual(self.save(studio)["saved"], str(self.clips / "take-trimmed.wav"))
        self.open_by_key(studio)
        self.desktop.pointer("key", "Tab", "space")
        studio.wait_for_preferences("the recording's folder", lambda p: "The folder of the recording" in p["texts"])
        self.desktop.pointer("key", "ctrl+w")
        studio.wait_for_preferences("their end", lambda p: p is None)
        self.assertEqual(self.save(studio)["saved"], str(self.folder / "take-trimmed.wav"))
        # By F10 into the menu, and to its last item but one: to close the file.
        self.desktop.pointer("key", "F10", "Up", "Up", "Return")
        self.assertEqual((studio.ended(), "".join(studio.errors)), (0, ""))
        self.assertNotIn("SaveFolder", self.stored())


class KeyboardOnX11(Keyboard, PreferencesTest):
    def type_when_open(self, studio):
        self.choose_by_keyboard(studio, self.clips)


class KeyboardOnWayland(Keyboard, PreferencesTest):
    make_desktop = WaylandDesktop

    def type_when_open(self, studio):
        # Which windows there are nobody tells: the preferences have lost the keyboard to the dialog.
        studio.wait_for_preferences("the dialog", lambda p: p and not p["key"])
        self.type_folder(studio, self.clips)


if __name__ == "__main__":
    unittest.main(argv=sys.argv, verbosity=2)
