#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Folders that TrimStudio is trusted with: authorised in real dialogs, remembered by the next run, restored behind an
overlay, listed, removed, lost. What is kept is read by Python's plistlib."""

import os
import pathlib
import re
import sys
import time
import unittest

from desktop import keep_mounts_private, silence, store, stored, wait_until
from trimming import SOUND, WITHOUT_ROOTS_POWERS, TrimmingTest

PANE = "TrustedViewController"
RESTORING = "Recovering directory permissions, please wait...."


class Trusting(TrimmingTest):
    def setUp(self):
        super().setUp()
        self.closed = self.folder / "closed"
        self.closed.mkdir()
        self.clips = self.folder / "clips"
        self.clips.mkdir()
        self.source = self.make("closed/take.wav", SOUND)

    def close_folder(self):
        self.closed.chmod(0o555)
        self.addCleanup(self.closed.chmod, 0o755)

    def open_source(self, **options):
        studio = self.start(self.source, **options)
        studio.wait_until_ready()
        return studio

    def quit(self, studio, not_restored=()):
        """Nothing is logged but which of these folders was not restored."""
        self.desktop.pointer("key", "ctrl+q")
        self.assertEqual(studio.ended(), 0)
        lines = "".join(studio.errors).splitlines()
        named = [folder for line in lines for folder in not_restored
                 if re.search(rf"\[TRUST PATH\]: resolve returned .*{re.escape(str(folder))}(\"|$)", line)]
        self.assertEqual(len(named), len(lines), lines)
        return named

    def bookmarks(self):
        return stored(self.desktop).get("BookmarksKey", [])

    def assert_stored(self, *folders):
        """Every bookmark holds its path as text."""
        found = self.bookmarks()
        self.assertEqual(len(found), len(folders))
        for data, folder in zip(found, folders):
            self.assertIn(str(folder).encode(), data)

    # The dialogs

    def wait_for_question(self, studio, text):
        asked = studio.wait("the question", lambda d: d["alert"] and d["alert"]["key"] and text in " ".join(d["alert"]["texts"]))
        return asked["alert"]

    def choose_in_dialog(self, studio, title, folder):
        wait_until("the dialog", lambda: self.desktop.run("xdotool", "search", "--onlyvisible", "--all", "--pid",
                                                          str(studio.process.pid), "--name", f"^{title}$").split())
        self.desktop.pointer("type", str(folder))
        self.desktop.pointer("key", "Return")

    def authorize(self, studio, folder):
        studio.click("saveButton")
        asked = self.wait_for_question(studio, "Warnning!")
        self.assertEqual([button["title"] for button in asked["buttons"]], ["Authorize", "Cancel"])
        studio.click_in("alert", "Authorize")
        self.choose_in_dialog(studio, "Authorize", folder)

    # The preferences

    def open_preferences(self, studio):
        self.desktop.pointer("key", "ctrl+comma")
        return studio.wait_for_preferences("the preferences", lambda p: p and p["key"])

    def rows(self, studio, what, wanted):
        studio.wait_for_preferences(what, lambda p: p and p["key"] and RESTORING not in p["texts"] and p["rows"] == [str(row) for row in wanted])

    def click_button(self, studio, title):
        shown = studio.preferences
        x, y, width, height = next(button["rect"] for button in shown["buttons"] if button["title"] == title)
        self.click_at(shown["rect"][0] + x + width / 2, shown["rect"][1] + y + height / 2)

    def click_row(self, studio, number):
        left, top = studio.preferences["rect"][:2]
        self.click_at(left + 60, top + 30 + 18 * number)

    def click_at(self, x, y):
        self.desktop.move(x, y)
        self.desktop.press()
        self.desktop.release()

    # From launch to launch

    def test_a_folder_is_authorised_remembered_and_removed(self):
        self.close_folder()
        studio = self.open_source(wrapper=WITHOUT_ROOTS_POWERS)
        self.authorize(studio, self.closed)
        # A plain folder stays as it is.
        asked = self.wait_for_question(studio, "cannot be saved in")
        self.assertIn(f"“take.wav” cannot be saved in “{self.closed}”.", " ".join(asked["texts"]).replace("\n", " "))
        studio.click_in("alert", "Choose Folder…")
        self.choose_in_dialog(studio, "Choose", self.clips)
        saved = studio.wait("the saved file", lambda d: d["saved"])["saved"]
        self.assertEqual(saved, str(self.clips / "take-trimmed.wav"))
        self.assertTrue(pathlib.Path(saved).is_file())
        self.assertEqual(sorted(path.name for path in self.closed.iterdir()), ["take.wav"])
        shown = self.open_preferences(studio)
        self.assertEqual((shown["pane"], shown["title"]), (PANE, "Preferences"))
        self.rows(studio, "the authorised folder", [self.closed])
        self.quit(studio)
        self.assert_stored(self.closed)

        studio = self.open_source()
        self.open_preferences(studio)
        self.rows(studio, "the restored folder", [self.closed])
        self.click_row(studio, 0)
        self.click_button(studio, "\N{MINUS SIGN}")
        self.rows(studio, "the empty list", [])
        self.desktop.pointer("key", "ctrl+w")
        studio.wait_for_preferences("their end", lambda p: p is None)
        self.quit(studio)
        self.assert_stored()

    def test_cancelling_saves_nothing(self):
        self.close_folder()
        studio = self.open_source(wrapper=WITHOUT_ROOTS_POWERS)
        studio.click("saveButton")
        self.wait_for_question(studio, "Warnning!")
        self.desktop.pointer("key", "Escape")
        studio.wait("the end", lambda d: d["message"] == "Saving was cancelled. Nothing was written.")
        self.authorize(studio, self.closed)
        self.wait_for_question(studio, "cannot be saved in")
        self.desktop.pointer("key", "Escape")
        studio.wait("the end", lambda d: not d["alert"] and d["message"] == "Saving was cancelled. Nothing was written.")
        self.assertTrue(studio.last["views"]["saveButton"]["enabled"])
        self.assertEqual(sorted(path.name for path in self.closed.iterdir()), ["take.wav"])
        self.quit(studio)

    def make_trusted(self, *names):
        """By the program itself, which is asked to add them one by one."""
        folders = [self.folder / name for name in names]
        studio = self.open_source()
        self.open_preferences(studio)
        self.rows(studio, "the empty list", [])
        for number, folder in enumerate(folders):
            folder.mkdir(exist_ok=True)
            self.click_button(studio, "+")
            self.choose_in_dialog(studio, "Open", folder)
            self.rows(studio, "the new folder", folders[:number + 1])
        self.quit(studio)
        self.assert_stored(*folders)
        return folders

    def test_what_is_gone_or_renamed_is_not_restored_and_leaves_with_the_preferences(self):
        one, two, three, four = self.make_trusted("one", "two", "three", "four")
        one.rmdir()
        two.rename(self.folder / "renamed")
        four.rmdir()
        four.mkdir()  # another one
        before = self.bookmarks()
        studio = self.open_source()
        self.open_preferences(studio)
        self.rows(studio, "what is left", [three])
        self.assertEqual(self.bookmarks(), before)
        self.desktop.pointer("key", "ctrl+w")
        studio.wait_for_preferences("their end", lambda p: p is None)
        self.assert_stored(three)
        self.assertEqual(self.quit(studio, not_restored=[one, two, four]), [one, two, four])

    def test_two_programs_at_the_same_time(self):
        one, two = self.make_trusted("one", "two")
        first, second = self.open_source(), self.open_source()
        for studio in first, second:
            self.desktop.pointer("windowactivate", "--sync", studio.window)
            self.open_preferences(studio)
            self.rows(studio, "both folders", [one, two])
            self.desktop.pointer("key", "ctrl+w")
            studio.wait_for_preferences("their end", lambda p: p is None)
        for studio in first, second:
            self.desktop.pointer("windowactivate", "--sync", studio.window)
            self.quit(studio)
        self.assert_stored(one, two)

    def test_the_pane_that_was_shown_last_comes_back(self):
        studio = self.open_source()
        left, top = self.open_preferences(studio)["rect"][:2]
        self.click_at(left + 125, top - 35)  # the second item of the toolbar
        shown = studio.wait_for_preferences("the other pane", lambda p: p["pane"] == "GeneralViewController")
        self.assertEqual(shown["title"], "Preferences")
        self.assert_stored()  # the first one has committed
        self.quit(studio)
        studio = self.open_source()
        self.assertEqual(self.open_preferences(studio)["pane"], "GeneralViewController")
        left, top = studio.preferences["rect"][:2]
        self.click_at(left + 50, top - 35)
        studio.wait_for_preferences("the first pane", lambda p: p["pane"] == PANE)
        self.quit(studio)

    # A store that takes long: file systems that do not answer, each of which is waited for.

    def test_the_overlay_of_a_slow_store_is_cancelled(self):
        names = ["first"] + [f"silent {number}" for number in range(30)] + ["last"]
        folders = [self.folder / name for name in names]
        for folder in folders:
            folder.mkdir()
        self.make_trusted_without_asking(folders)
        for folder in folders[1:-1]:
            silence(self, folder)

        # A leak sanitizer stops all threads before it looks, and would wait for ever for those that wait for an answer.
        sanitizer = self.desktop.environment.get("ASAN_OPTIONS", "") + " detect_leaks=0"
        studio = self.open(restored=False, environment={"ASAN_OPTIONS": sanitizer})
        shown = self.open_preferences(studio)
        self.assertIn(RESTORING, shown["texts"])
        shown = studio.wait_for_preferences("the folder that is waited for", lambda p: str(folders[1]) in p["texts"])
        # The program answers all the same.
        self.desktop.pointer("windowactivate", "--sync", studio.window)
        self.press(5)
        self.desktop.release()
        self.wait_for_position(studio, 5)
        self.open_preferences(studio)
        self.click_button(studio, "Cancel")
        self.rows(studio, "what was restored by then", [folders[0]])
        self.desktop.pointer("key", "ctrl+w")  # which forgets none of the others
        studio.wait_for_preferences("their end", lambda p: p is None)
        self.desktop.pointer("windowactivate", "--sync", studio.window)
        # Quitting waits for none of the others.
        begin = time.monotonic()
        self.quit(studio, not_restored=folders[1:-1])
        self.assertLess(time.monotonic() - begin, 15)
        left = self.bookmarks()
        self.assertEqual(len(left), len(folders) - 1)
        self.assertIn(str(folders[0]).encode(), left[0])

    def make_trusted_without_asking(self, folders):
        """As bookmarks that another program of the kit has made."""
        probe = os.environ["FILES_PROBE"]
        text = self.desktop.run(probe, "", "bookmark", *map(str, folders))
        store(self.desktop, {"BookmarksKey": [bytes.fromhex(line) for line in text.splitlines()]})

    def test_ten_thousand_folders(self):
        parent = self.folder / "many"
        folders = [parent / f"{number:05}" for number in range(10_000)]
        for folder in folders:
            folder.mkdir(parents=True)
        probe = os.environ["FILES_PROBE"]
        lines = []
        for begin in range(0, len(folders), 1000):
            lines += self.desktop.run(probe, "", "bookmark", *map(str, folders[begin:begin + 1000])).splitlines()
        store(self.desktop, {"BookmarksKey": [bytes.fromhex(line) for line in lines]})
        studio = self.open_source()
        self.open_preferences(studio)
        self.rows(studio, "the first hundred", folders[:100])
        self.desktop.pointer("key", "ctrl+w")
        studio.wait_for_preferences("their end", lambda p: p is None)
        self.quit(studio)
        self.assertEqual(self.bookmarks(), [bytes.fromhex(line) for line in lines])


def setUpModule():
    keep_mounts_private()


if __name__ == "__main__":
    unittest.main(argv=sys.argv, verbosity=2)
