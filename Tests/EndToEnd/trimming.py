#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""TrimStudio in a real window, driven by a real pointer; what it writes is read by ffprobe. Argument: the program."""

import contextlib
import ctypes
import hashlib
import os
import pathlib
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

from desktop import DEADLINE, SANITIZERS_REPORT, Desktop, TrimStudio, WaylandDesktop, media_length, wait_until

PROGRAM = os.environ.get("TRIMSTUDIO", "")
RECORDING = "/usr/share/sounds/freedesktop/stereo/alarm-clock-elapsed.oga"
WITHOUT_ROOTS_POWERS = ("setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--inh-caps", "-all")

SOUND = ["-f", "lavfi", "-i", "sine=frequency=440:duration=8:sample_rate=44100"]
LONG_SOUND = ["-f", "lavfi", "-i", "sine=frequency=440:duration=60:sample_rate=44100"]
PICTURES = ["-f", "lavfi", "-i", "testsrc=size=160x120:rate=25:duration=8"]
VIDEO = [*PICTURES, *SOUND, "-c:v", "libx264", "-g", "50", "-bf", "2", "-pix_fmt", "yuv420p", "-c:a", "aac", "-shortest"]
SILENT_VIDEO = [*PICTURES, "-c:v", "libx264", "-pix_fmt", "yuv420p"]

# From the headers of the system, which Python does not have.
PTRACE_DETACH, PTRACE_SEIZE, PTRACE_INTERRUPT = 17, 0x4206, 0x4207
WAIT_FOR_A_THREAD = 0x40000000

# How the file is made, and the longest packet in seconds.
FORMATS = {
    "wav": (SOUND, 0.001),
    "flac": ([*SOUND, "-c:a", "flac"], 0.11),
    "ogg": ([*SOUND, "-c:a", "libvorbis"], 0.05),
    "mp3": ([*SOUND, "-c:a", "libmp3lame"], 0.03),
    "m4a": ([*SOUND, "-c:a", "aac"], 0.03),
    "mp4": (VIDEO, 0.045),
    "mov": (VIDEO, 0.045),
    "mkv": (VIDEO, 0.045),
    "mka": ([*SOUND, "-c:a", "aac"], 0.03),
}


def digest(path):
    return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()


@contextlib.contextmanager
def background_work_held(process, idle=True):
    """What the program does, or begins, in the background meanwhile waits until the end of this."""
    tasks = pathlib.Path(f"/proc/{process.pid}/task")
    pooled = [task for task in tasks.iterdir() if (task / "comm").read_text() == "ZRUIKit queue\n"]
    wait_until("idle threads", lambda: pooled and all(not idle or "State:\tS" in (task / "status").read_text() for task in pooled))
    threads = [int(task.name) for task in pooled]
    libc = ctypes.CDLL(None, use_errno=True)

    def ptrace(request, thread):
        if libc.ptrace(request, thread, None, None) != 0:
            raise OSError(ctypes.get_errno(), "ptrace")
    held = []
    try:
        for thread in threads:
            ptrace(PTRACE_SEIZE, thread)
            held.append(thread)
            ptrace(PTRACE_INTERRUPT, thread)
            os.waitpid(thread, WAIT_FOR_A_THREAD)
        yield
    finally:
        for thread in held:
            ptrace(PTRACE_DETACH, thread)


class TrimmingTest(unittest.TestCase):
    make_desktop = Desktop

    def setUp(self):
        self.desktop = self.make_desktop()
        self.addCleanup(self.desktop.close)
        folder = tempfile.TemporaryDirectory(prefix="zruikit-media-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def make(self, name, words):
        path = self.folder / name
        subprocess.run(["ffmpeg", "-v", "error", "-y", *words, str(path)], check=True, timeout=DEADLINE)
        return path

    def start(self, *files, **options):
        return TrimStudio(self.desktop, PROGRAM, *map(str, files), **options)

    def save(self, studio):
        studio.wait("the button", lambda d: d["views"]["saveButton"]["enabled"])
        before = studio.last["saved"]
        studio.click("saveButton")
        return studio.wait("the saved file", lambda d: d["saved"] and d["saved"] != before)

    def open(self, name="take.wav", words=SOUND, restored=True, **options):
        """TrimStudio with a file of this kind, and the measures of its position's track."""
        studio = self.start(self.make(name, words), **options)
        self.duration = studio.wait_until_ready(restored)["duration"]
        slider = studio.last["views"]["progressSlider"]
        self.x, y, self.width, height = slider["track"]
        self.y = y + height / 2
        self.second = self.width / self.duration  # in pixels
        return studio

    def at(self, seconds):
        return self.x + seconds * self.second

    def wait_for_position(self, studio, seconds):
        return studio.wait(f"the position {seconds}", lambda d: abs(
            d["views"]["progressSlider"]["value"] - seconds) <= 1.01 / self.second)

    def wait_for_value(self, studio, least):
        return studio.wait(f"the position beyond {least}", lambda d: d["views"]["progressSlider"]["value"] > least)

    @staticmethod
    def value(studio):
        return studio.last["views"]["progressSlider"]["value"]

    def press(self, seconds, beside=0):
        self.desktop.move(self.at(seconds), self.y - beside)
        self.desktop.press()

    def assert_nothing_left_over(self, *names):
        self.assertEqual(sorted(path.name for path in self.folder.iterdir()), sorted(names))


class DragsOfTheHandles:
    def test_both_handles_follow_a_real_pointer_and_the_file_agrees(self):
        source = self.folder / "take.oga"
        shutil.copy(RECORDING, source)
        original = digest(source)
        studio = self.start(source)
        opened = studio.wait_until_ready()
        self.assertAlmostEqual(opened["duration"], media_length(source), delta=0.03)
        self.assertEqual(opened["file"], str(source))
        self.assertIsNone(opened["saved"])
        slider = studio.slider()
        self.assertEqual((slider["start"], slider["length"]), (0, opened["duration"]))
        self.assertEqual(slider["leftHandle"][2], 24)

        # Held in its middle, a handle's inner edge is 12 pixels from the pointer.
        x, _, width, _ = slider["track"]
        studio.drag("leftHandle", x + width * 0.25 - 12)
        quarter = opened["duration"] / 4
        studio.wait("the left end", lambda d: abs(d["views"]["splitSlider"]["start"] - quarter) <= opened["duration"] / width)
        studio.drag("rightHandle", x + width * 0.75 + 12)
        half = studio.wait("the right end",
                           lambda d: abs(d["views"]["splitSlider"]["length"] - 2 * quarter) <= 2 * opened["duration"] / width)

        saved = self.save(studio)
        self.assertEqual(saved["saved"], str(self.folder / "take-trimmed.oga"))
        self.assertAlmostEqual(media_length(saved["saved"]), half["views"]["splitSlider"]["length"], delta=0.05)
        self.assertEqual(digest(source), original)
        self.assertEqual(studio.close(), 0)
        self.assert_nothing_left_over("take.oga", "take-trimmed.oga")

    def test_a_drag_goes_on_beyond_the_window(self):
        source = self.make("long.wav", SOUND)
        studio = self.start(source)
        opened = studio.wait_until_ready()
        slider = studio.slider()
        x, _, width, _ = slider["track"]
        studio.drag("leftHandle", 1270, to_y=790)  # past the right end: five milliseconds remain
        studio.wait("the shortest clip", lambda d: abs(d["views"]["splitSlider"]["length"] - 0.005) < 1e-9)
        studio.drag("leftHandle", 2, to_y=2)
        studio.wait("the whole", lambda d: d["views"]["splitSlider"]["start"] == 0 and
                    abs(d["views"]["splitSlider"]["length"] - opened["duration"]) < 1e-6)
        studio.drag("rightHandle", 2, to_y=790)
        studio.wait("the first five milliseconds", lambda d: d["views"]["splitSlider"]["start"] == 0 and
                    abs(d["views"]["splitSlider"]["length"] - 0.005) < 1e-9)
        self.assertEqual(studio.close(), 0)


class Handles(DragsOfTheHandles, TrimmingTest):
    def test_the_handles_move_with_the_window(self):
        source = self.make("long.wav", SOUND)
        studio = self.start(source)
        studio.wait_until_ready()
        bars = self.desktop.client_area(studio.window)[3] - studio.last["views"]["window"]["rect"][3]
        self.desktop.pointer("windowsize", "--sync", studio.window, 900, 420 + bars)
        wide = studio.wait("the larger window", lambda d: d["views"]["window"]["rect"][2:] == [900, 420] and
                           d["views"]["splitSlider"]["track"][2] == 900 - 2 * 20 - 2 * 28)
        right = wide["views"]["splitSlider"]["rightHandle"]
        self.assertEqual(right[0], wide["views"]["splitSlider"]["track"][0] + wide["views"]["splitSlider"]["track"][2])
        self.assertEqual(studio.close(), 0)

    def test_at_twice_the_scale_rectangles_are_device_pixels(self):
        source = self.make("long.wav", SOUND)
        studio = self.start(source, environment={"QT_SCALE_FACTOR": "2"})
        opened = studio.wait("the opened file", lambda d: "splitSlider" in d["views"])
        self.assertEqual(opened["views"]["splitSlider"]["leftHandle"][2:], [48, 56])
        # The window is wider than this screen: its frame is wherever the window manager put it.
        self.assertEqual(opened["views"]["window"]["rect"][2] % 2, 0)

    def test_an_existing_file_is_never_overwritten(self):
        source = self.make("take.flac", FORMATS["flac"][0])
        taken = self.folder / "take-trimmed.flac"
        taken.write_text("somebody's")
        studio = self.start(source)
        studio.wait_until_ready()
        first = self.save(studio)["saved"]
        self.assertEqual(first, str(self.folder / "take-trimmed 2.flac"))
        kept = digest(first)
        self.assertEqual(self.save(studio)["saved"], str(self.folder / "take-trimmed 3.flac"))
        self.assertEqual(taken.read_text(), "somebody's")
        self.assertEqual(digest(first), kept)
        self.assertEqual(studio.close(), 0)
        self.assert_nothing_left_over("take.flac", "take-trimmed.flac", "take-trimmed 2.flac", "take-trimmed 3.flac")


class DragsOfThePosition:
    def test_a_press_seeks_and_a_drag_scrubs_also_beyond_the_window(self):
        studio = self.open()
        self.press(5)
        self.wait_for_position(studio, 5)
        self.desktop.move(self.at(2), self.y + 300)
        moved = self.wait_for_position(studio, 2)
        knob = moved["views"]["progressSlider"]["knob"]
        self.assertAlmostEqual(knob[0], self.x + (self.width - 12) * moved["views"]["progressSlider"]["value"] / self.duration, delta=0.01)
        self.desktop.move(1279, 5)
        self.wait_for_position(studio, self.duration)
        self.desktop.move(0, 799)
        self.wait_for_position(studio, 0)
        self.desktop.move(self.at(3), self.y)
        self.desktop.release()
        self.wait_for_position(studio, 3)
        self.assertEqual(studio.close(), 0)

    def test_a_key_typed_in_the_middle_of_a_drag_acts_after_it(self):
        studio = self.open(words=LONG_SOUND)
        self.press(20)
        self.wait_for_position(studio, 20)
        self.desktop.pointer("key", "space")
        self.desktop.move(self.at(40), self.y)
        self.wait_for_position(studio, 40)
        self.desktop.move(self.at(10), self.y)
        self.wait_for_position(studio, 10)
        self.desktop.release()
        self.wait_for_value(studio, 10.5)

        # Held beside the track, the position is not sought: it goes on playing, whatever is typed.
        self.press(50, beside=9)
        self.desktop.pointer("key", "space")
        self.wait_for_value(studio, self.value(studio) + 1)
        self.desktop.release()
        stopped = self.value_after_a_drag_of_the_right_handle(studio, 0.98)
        self.assertLess(stopped, 50)
        self.assertEqual(self.value_after_a_drag_of_the_right_handle(studio, 0.96), stopped)
        self.assertEqual(studio.close(), 0)

    def value_after_a_drag_of_the_right_handle(self, studio, fraction):
        track = studio.slider()["track"]
        studio.drag_along_track("rightHandle", track[0] + track[2] * fraction + 12, steps=20)
        return self.value(studio)


class Playing(DragsOfThePosition, TrimmingTest):
    def test_space_plays_inside_the_clip_and_stops(self):
        studio = self.open()
        track = studio.slider()["track"]
        start = studio.drag_along_track("leftHandle", track[0] + track[2] * 0.5 - 12)["views"]["splitSlider"]["start"]
        self.desktop.pointer("key", "space")
        played = studio.wait("playing", lambda d: d["views"]["progressSlider"]["value"] > start + 0.2)
        self.assertLess(played["views"]["progressSlider"]["value"], self.duration)
        self.desktop.pointer("key", "space")
        self.press(1)
        self.desktop.release()
        self.wait_for_position(studio, 1)
        sought = self.value(studio)
        self.assertEqual(self.value_after_a_drag_of_the_right_handle(studio, 0.9), sought)  # as nothing plays
        self.assertEqual(studio.close(), 0)

    def test_the_part_before_and_the_part_after_the_position_are_kept(self):
        studio = self.open()
        self.assertFalse(studio.last["views"]["splitButton"]["enabled"])
        self.press(6)
        self.desktop.release()
        self.wait_for_position(studio, 6)
        self.split(studio, "Cancel")
        self.assertEqual((studio.slider()["start"], studio.slider()["length"]), (0, self.duration))
        self.split(studio)
        self.assertRegex(studio.last["alert"]["texts"][0], r"^Split the clip at 0:0[56]\.\d{3}\?$")
        self.desktop.pointer("key", "Return")
        pixel = 1.01 / self.second
        studio.wait("the part before", lambda d: d["views"]["splitSlider"]["start"] == 0 and
                    abs(d["views"]["splitSlider"]["length"] - 6) <= pixel)
        self.press(2)
        self.desktop.release()
        self.wait_for_position(studio, 2)
        self.split(studio, "Keep After")
        clip = studio.wait("the part after", lambda d: abs(d["views"]["splitSlider"]["start"] - 2) <= pixel and
                           abs(d["views"]["splitSlider"]["length"] - 4) <= 2 * pixel)["views"]["splitSlider"]
        self.assertAlmostEqual(media_length(self.save(studio)["saved"]), clip["length"], delta=0.001)
        self.assertEqual(studio.close(), 0)


    def split(self, studio, answer=None):
        studio.wait("the button", lambda d: d["views"]["splitButton"]["enabled"])
        studio.click("splitButton")
        shown = studio.wait("the question", lambda d: d["alert"] and d["alert"]["key"])["alert"]
        self.assertEqual([button["title"] for button in shown["buttons"]], ["Keep Before", "Keep After", "Cancel"])
        if answer:
            studio.click_in("alert", answer)
            studio.wait("the end of the question", lambda d: not d["alert"])


class Endings:
    def drag_nothing(self, studio):
        pass

    def drag_the_position(self, studio):
        self.press(5)
        self.wait_for_position(studio, 5)
        self.desktop.move(self.at(2), self.y)
        self.wait_for_position(studio, 2)

    def drag_a_handle(self, studio):
        x, y, width, height = studio.slider()["leftHandle"]
        self.desktop.move(x + width / 2, y + height / 3)
        self.desktop.press()
        self.desktop.move(self.at(3), y + height / 3)
        studio.wait("the left end", lambda d: d["views"]["splitSlider"]["start"] > 2.5)

    def assert_clean(self, status, studio, *files):
        self.desktop.release()
        self.assertEqual((status, "".join(studio.errors)), (0, ""))
        self.assert_nothing_left_over(*files)

    def quit_in(self, drag):
        for number in (signal.SIGTERM, signal.SIGINT):
            with self.subTest(number.name):
                studio = self.open()
                drag(studio)
                studio.process.send_signal(number)
                self.assert_clean(studio.ended(), studio, "take.wav")

    def test_quitting(self):
        self.quit_in(self.drag_nothing)

    def test_quitting_in_the_middle_of_a_drag_of_the_position(self):
        self.quit_in(self.drag_the_position)

    def test_quitting_in_the_middle_of_a_drag_of_a_handle(self):
        self.quit_in(self.drag_a_handle)

    def test_closing_while_it_saves_asks_first(self):
        studio = self.open("take.mp4", SILENT_VIDEO)
        with background_work_held(studio.process):
            studio.click("saveButton")
            studio.wait("saving", lambda d: d["message"] == "Saving…")
            studio.ask_to_close()
            asked = studio.wait("the question", lambda d: d["alert"] and d["alert"]["key"])["alert"]
            self.assertEqual(asked["texts"][0], "“take.mp4” is still being saved.")
            self.assertEqual([button["title"] for button in asked["buttons"]], ["Cancel", "Discard"])
            self.desktop.pointer("key", "Escape")
            studio.wait("the end of the question", lambda d: not d["alert"])
            self.assertEqual(studio.last["message"], "Saving…")
        saved = studio.wait("the saved file", lambda d: d["saved"])["saved"]
        self.assertAlmostEqual(media_length(saved), self.duration, delta=0.045)
        self.assert_clean(studio.close(), studio, "take.mp4", "take-trimmed.mp4")


class Ending(Endings, TrimmingTest):
    def close_in(self, drag):
        studio = self.open()
        drag(studio)
        self.assert_clean(studio.close(), studio, "take.wav")

    def test_closing_in_the_middle_of_a_drag_of_the_position(self):
        self.close_in(self.drag_the_position)

    def test_closing_in_the_middle_of_a_drag_of_a_handle(self):
        self.close_in(self.drag_a_handle)


class Saving(Endings, TrimmingTest):
    """Saving is held up in the background wherever the test has to come before its end."""

    def saving(self, *earlier):
        """TrimStudio in the middle of a save, with its sheet up; the second answer lets the save go on."""
        studio = self.open("take.mp4", SILENT_VIDEO)
        for name in earlier:
            (self.folder / name).write_text("somebody's")
        self.original = digest(self.folder / "take.mp4")
        hold = contextlib.ExitStack()
        self.addCleanup(hold.close)
        hold.enter_context(background_work_held(studio.process))
        studio.click("saveButton")
        sheet = studio.wait("the sheet", lambda d: d["sheet"] and d["sheet"]["key"])["sheet"]
        self.assertEqual(sheet["texts"][0], "Saving “take.mp4”")
        return studio, hold.close

    def wait_for_question(self, studio):
        return studio.wait("the question", lambda d: d["alert"] and d["alert"]["key"])["alert"]

    def wait_for_no_question(self, studio):
        studio.wait("the end of the question", lambda d: not d["alert"])

    def test_the_sheet_blocks_its_window_and_goes_when_the_file_is_saved(self):
        studio, go_on = self.saving()
        self.assertEqual(studio.last["sheet"]["progress"], 0)
        before = self.value(studio)
        self.press(5)
        self.desktop.release()
        go_on()
        saved = studio.wait("the saved file", lambda d: d["saved"] and not d["sheet"])
        self.assertEqual(self.value(studio), before)
        self.assertEqual(saved["saved"], str(self.folder / "take-trimmed.mp4"))
        self.press(5)
        self.desktop.release()
        self.wait_for_position(studio, 5)
        self.assert_clean(studio.close(), studio, "take.mp4", "take-trimmed.mp4")

    def cancel(self, how):
        studio, go_on = self.saving("take-trimmed.mp4")
        how(studio)
        studio.wait("its effect", lambda d: d["sheet"] and "Cancelling…" in d["sheet"]["texts"])
        go_on()
        ended = studio.wait("the end of the sheet", lambda d: not d["sheet"])
        self.assertEqual((ended["message"], ended["saved"]), ("Saving was cancelled. Nothing was written.", None))
        self.assertTrue(ended["views"]["saveButton"]["enabled"])
        self.assert_nothing_left_over("take.mp4", "take-trimmed.mp4")
        self.assertEqual(digest(self.folder / "take.mp4"), self.original)
        self.assertEqual((self.folder / "take-trimmed.mp4").read_text(), "somebody's")
        # It can be saved after all.
        self.assertEqual(self.save(studio)["saved"], str(self.folder / "take-trimmed 2.mp4"))
        studio.wait("the end of the sheet", lambda d: not d["sheet"])
        self.assert_clean(studio.close(), studio, "take.mp4", "take-trimmed.mp4", "take-trimmed 2.mp4")

    def test_a_click_on_cancel(self):
        self.cancel(lambda studio: studio.click_in("sheet", "Cancel"))

    def test_escape_cancels(self):
        self.cancel(lambda studio: self.desktop.pointer("key", "Escape"))

    def test_closing_asks_and_discards(self):
        studio, go_on = self.saving()
        for answer in ("Return", "Escape"):
            studio.ask_to_close()
            self.wait_for_question(studio)
            self.desktop.pointer("key", answer)
            self.wait_for_no_question(studio)
        studio.ask_to_close()
        self.wait_for_question(studio)
        studio.click_in("alert", "Discard")
        wait_until("the end of the window", lambda: not self.desktop.find(studio.process, studio.described["views"]["window"]["rect"]))
        go_on()
        self.assert_clean(studio.ended(), studio, "take.mp4")
        self.assertEqual(digest(self.folder / "take.mp4"), self.original)

    def test_a_question_that_is_settled_by_the_end_of_saving_closes_the_window(self):
        studio, go_on = self.saving()
        studio.ask_to_close()
        self.wait_for_question(studio)
        go_on()
        self.assert_clean(studio.ended(), studio, "take.mp4", "take-trimmed.mp4")
        self.assertAlmostEqual(media_length(self.folder / "take-trimmed.mp4"), self.duration, delta=0.045)

    def test_quitting_asks_and_discards(self):
        studio, go_on = self.saving()
        self.desktop.pointer("key", "ctrl+q")
        self.wait_for_question(studio)
        self.desktop.pointer("key", "Return")
        self.wait_for_no_question(studio)
        self.desktop.pointer("key", "ctrl+q")
        self.wait_for_question(studio)
        studio.click_in("alert", "Discard")
        wait_until("the end of the window", lambda: not self.desktop.find(studio.process, studio.described["views"]["window"]["rect"]))
        go_on()
        self.assert_clean(studio.ended(), studio, "take.mp4")

    def test_a_signal_ends_it_without_a_question_and_under_one(self):
        for asked in (False, True):
            with self.subTest(asked=asked):
                studio, go_on = self.saving()
                if asked:
                    self.desktop.pointer("key", "ctrl+q")
                    self.wait_for_question(studio)
                studio.process.send_signal(signal.SIGTERM)
                wait_until("the end of the window", lambda: not self.desktop.find(studio.process, studio.described["views"]["window"]["rect"]))
                go_on()
                self.assert_clean(studio.ended(), studio, "take.mp4")

    def test_a_sheet_on_one_window_leaves_the_other_usable(self):
        first, second = self.make("first.mp4", SILENT_VIDEO), self.make("second.wav", SOUND)
        studio = self.start(first, second)
        for path in (second, first):
            studio.follow(path)
            studio.wait_until_ready()
        self.desktop.pointer("windowactivate", "--sync", studio.window)
        with background_work_held(studio.process):
            studio.click("saveButton")
            studio.wait("the sheet", lambda d: d["sheet"])
            studio.follow(second)
            studio.wait_until_ready()
            self.assertIsNone(studio.last["sheet"])
            self.desktop.pointer("windowactivate", "--sync", studio.window)
            for fraction in (0.7, 0.3):
                x, y, width, height = studio.last["views"]["progressSlider"]["track"]
                self.desktop.move(x + width * fraction, y + height / 2)
                self.desktop.press()
                self.desktop.release()
                studio.wait("the position", lambda d: abs(d["views"]["progressSlider"]["value"] / d["duration"] - fraction) < 0.01)
        studio.follow(first)
        studio.wait("the saved file", lambda d: d["saved"] and not d["sheet"])
        self.desktop.pointer("key", "ctrl+q")
        self.assert_clean(studio.ended(), studio, "first.mp4", "first-trimmed.mp4", "second.wav")


class Large(TrimmingTest):
    """A recording of one gibibyte, most of it not on the disk; what is saved of it is."""

    SIZE = 1 << 30
    SECONDS = SIZE / (2 * 2 * 48000)

    def open_large(self, *others):
        path = self.folder / "large.wav"
        header = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + self.SIZE, b"WAVE", b"fmt ", 16, 1, 2, 48000, 192000, 4, 16,
                             b"data", self.SIZE)
        with path.open("wb") as file:
            file.write(header)
            file.truncate(len(header) + self.SIZE)
        studio = self.start(path, *others)
        studio.follow(path)
        studio.wait_until_ready()
        return studio

    @staticmethod
    def memory(studio, which):
        status = pathlib.Path(f"/proc/{studio.process.pid}/status").read_text()
        return int(re.search(rf"{which}:\s+(\d+) kB", status)[1]) << 10

    @staticmethod
    def waited_for_a_processor(studio):
        """Seconds in which the main thread could have run, had the machine not been busy otherwise."""
        return int(pathlib.Path(f"/proc/{studio.process.pid}/task/{studio.process.pid}/schedstat").read_text().split()[1]) / 1e9

    def test_saving_it_keeps_the_windows_alive_and_the_memory_flat(self):
        other = self.make("other.wav", SOUND)
        studio = self.open_large(other)
        before = self.memory(studio, "VmRSS")
        studio.click("saveButton")
        studio.wait("the sheet", lambda d: d["sheet"])
        begun = len(studio.history)
        studio.follow(other)
        studio.wait_until_ready()
        self.desktop.pointer("windowactivate", "--sync", studio.window)
        x, y, width, height = studio.last["views"]["progressSlider"]["track"]
        answers = []
        saved = lambda: any(d["saved"] for d in studio.history[begun:] if d["file"] != str(other))
        while not saved():
            fraction = 0.2 + 0.1 * (len(answers) % 7)
            self.desktop.move(x + width * fraction, y + height / 2)
            self.desktop.press()
            start, waited = time.monotonic(), self.waited_for_a_processor(studio)
            wait_until("the position", lambda: abs(
                studio.newest()["views"]["progressSlider"]["value"] / studio.last["duration"] - fraction) < 0.01, pause=0.001)
            answers.append(time.monotonic() - start - (self.waited_for_a_processor(studio) - waited))
            self.desktop.release()
        shown = [d["sheet"]["progress"] for d in studio.history[begun:] if d["file"] != str(other) and d["sheet"]]
        print(f"\n{len(answers)} events, the slowest {max(answers) * 1000:.0f} ms; {len(set(shown))} steps of progress; "
              f"memory grew by {(self.memory(studio, 'VmHWM') - before) / (1 << 20):.1f} MiB", file=sys.stderr)
        self.assertGreater(len(answers), 3)
        self.assertLess(max(answers), 0.1)
        self.assertEqual(shown, sorted(shown))
        self.assertGreater(len(set(shown)), 10)
        self.assertLess(self.memory(studio, "VmHWM") - before, 48 << 20)
        self.assertAlmostEqual(media_length(self.folder / "large-trimmed.wav"), self.SECONDS, delta=0.001)
        self.desktop.pointer("key", "ctrl+q")
        self.assertEqual(studio.ended(), 0)

    def test_cancel_in_the_middle_stops_it_promptly(self):
        studio = self.open_large()
        studio.click("saveButton")
        with contextlib.ExitStack() as hold:
            studio.wait("the sheet", lambda d: d["sheet"] and d["sheet"]["progress"] > 0.02)
            hold.enter_context(background_work_held(studio.process, idle=False))
            reached = studio.newest()["sheet"]["progress"]
            self.assertLess(reached, 1)
            self.assertEqual(len(list(self.folder.iterdir())), 2)
            studio.click_in("sheet", "Cancel")
            studio.wait("its effect", lambda d: "Cancelling…" in d["sheet"]["texts"])
        start = time.monotonic()
        ended = studio.wait("the end of the sheet", lambda d: not d["sheet"])
        print(f"\ncancelled at {reached:.0%}, gone after {(time.monotonic() - start) * 1000:.0f} ms", file=sys.stderr)
        self.assertEqual((ended["message"], ended["saved"]), ("Saving was cancelled. Nothing was written.", None))
        self.assert_nothing_left_over("large.wav")
        self.assertEqual(studio.close(), 0)


class Wayland(DragsOfTheHandles, DragsOfThePosition, Endings, TrimmingTest):
    make_desktop = WaylandDesktop


class Times(TrimmingTest):
    """The clip's ends as times, typed with a real keyboard."""

    def click_into(self, studio, field, part):
        x, y, width, height = studio.last["views"][field][part]["rect"]
        self.desktop.move(x + width / 2, y + height / 2)
        self.desktop.press()
        self.desktop.release()

    def type_over(self, studio, field, part, text, *end):
        self.click_into(studio, field, part)
        self.desktop.pointer("key", "ctrl+a")
        self.desktop.pointer("type", text)
        for key in end:
            self.desktop.pointer("key", key)

    def windows(self):
        return len(self.desktop.run("wmctrl", "-l").splitlines())

    def clip(self, studio):
        slider = studio.last["views"]["splitSlider"]
        return slider["start"], slider["length"]

    @staticmethod
    def shown(description, field):
        return [description["views"][field][part]["text"] for part in ("hours", "minutes", "seconds")]

    def wait_for_clip(self, studio, start, length):
        return studio.wait(f"a clip of {length} s from {start} s", lambda d: abs(
            d["views"]["splitSlider"]["start"] - start) < 1e-6 and abs(d["views"]["splitSlider"]["length"] - length) < 1e-6)

    def test_the_fields_show_the_clip_and_typing_moves_its_ends(self):
        studio = self.open("long.wav", LONG_SOUND)
        self.assertEqual(self.shown(studio.last, "startField"), ["00", "00", "00"])
        self.assertEqual(self.shown(studio.last, "lengthField"), ["00", "01", "00"])
        self.type_over(studio, "startField", "seconds", "10", "Return")
        self.wait_for_clip(studio, 10, 50)
        self.type_over(studio, "lengthField", "minutes", "01", "Tab")
        # Of one minute and fifty seconds there are only fifty left: refused, and the field keeps the keyboard.
        wait_until("the alert", lambda: self.windows() == 2)
        self.desktop.pointer("key", "Return")
        wait_until("the end of the alert", lambda: self.windows() == 1)
        self.assertEqual(self.clip(studio), (10, 50))
        self.desktop.pointer("type", "00")
        self.desktop.pointer("key", "Tab")
        self.desktop.pointer("type", "20")
        self.desktop.pointer("key", "Return")
        done = self.wait_for_clip(studio, 10, 20)
        self.assertEqual(self.shown(done, "lengthField"), ["00", "00", "20"])
        saved = self.save(studio)["saved"]
        self.assertAlmostEqual(media_length(saved), 20, delta=0.001)
        self.assertEqual(studio.close(), 0)
        self.assertEqual("".join(studio.errors), "")

    def test_moving_through_the_fields_moves_nothing_and_fractions_stay(self):
        studio = self.open("long.wav", LONG_SOUND)
        slider = studio.last["views"]["splitSlider"]
        studio.drag_along_track("leftHandle", slider["leftHandle"][0] + slider["leftHandle"][2] / 2 + 61)
        start, length = self.clip(studio)
        self.assertGreater(start % 1, 0.001)
        self.click_into(studio, "startField", "hours")
        for _ in range(6):
            self.desktop.pointer("key", "Tab")
        # Another minute, with the seconds as they were: their fraction stays.
        whole = int(length)
        self.type_over(studio, "lengthField", "minutes", "00", "Return")
        self.wait_for_clip(studio, start, whole % 60 + length % 1)
        # Typed over, the seconds are what was typed.
        self.type_over(studio, "lengthField", "seconds", "7.5", "Return")
        self.wait_for_clip(studio, start, 7.5)
        self.assertEqual(studio.close(), 0)


class Formats(TrimmingTest):
    def trim(self, extension):
        words, packet = FORMATS[extension]
        source = self.make(f"clip.{extension}", words)
        original = digest(source)
        studio = self.start(source)
        opened = studio.wait_until_ready()
        x, _, width, _ = studio.slider()["track"]
        studio.drag("leftHandle", x + width * 0.4 - 12)
        asked = opened["duration"] * 0.4
        if extension == "mkv":
            # Key frames every two seconds: the start goes back to the one before, and TrimStudio says so first.
            studio.wait("the key frame", lambda d: d["message"] and "key frame" in d["message"] and
                        abs(d["views"]["splitSlider"]["start"] - 2) < 0.05)
        else:
            studio.wait("the left end", lambda d: abs(d["views"]["splitSlider"]["start"] - asked) <= opened["duration"] / width)
        studio.drag("rightHandle", x + width * 0.8 + 12)
        end = opened["duration"] * 0.8
        selected = studio.wait("the right end", lambda d: abs(
            d["views"]["splitSlider"]["start"] + d["views"]["splitSlider"]["length"] - end) <= opened["duration"] / width)
        saved = self.save(studio)["saved"]
        self.assertEqual(saved, str(self.folder / f"clip-trimmed.{extension}"))
        self.assertAlmostEqual(media_length(saved), selected["views"]["splitSlider"]["length"], delta=packet)
        decoded = subprocess.run(["ffmpeg", "-v", "error", "-i", saved, "-f", "null", "-"], text=True,
                                 capture_output=True, timeout=DEADLINE)
        self.assertEqual((decoded.returncode, decoded.stderr), (0, ""))
        self.assertEqual(digest(source), original)
        self.assertEqual(studio.close(), 0)
        self.assert_nothing_left_over(source.name, pathlib.Path(saved).name)


def add_format_test(extension):
    setattr(Formats, f"test_{extension}", lambda self: self.trim(extension))


for _extension in FORMATS:
    add_format_test(_extension)


class BadInput(TrimmingTest):
    def expect_complaint(self, path, *words, **options):
        studio = self.start(path, **options)
        described = studio.wait_for_message()
        for word in words:
            self.assertIn(word, described["message"])
        self.assertFalse(described["views"]["saveButton"]["enabled"])
        self.assertNotIn("splitSlider", described["views"])
        self.assertEqual(studio.close(), 1)
        self.assertIn(described["message"], "".join(studio.errors))

    def test_a_missing_file(self):
        self.expect_complaint(self.folder / "nowhere.wav", "nowhere.wav", "not exist")

    def test_a_folder(self):
        self.expect_complaint(self.folder, "folder")

    def test_an_empty_file(self):
        empty = self.folder / "empty.wav"
        empty.touch()
        self.expect_complaint(empty, "empty.wav", "empty")

    def test_a_text_file(self):
        text = self.folder / "notes.txt"
        text.write_text("These are words.\n" * 100)
        self.expect_complaint(text, "notes.txt", "not a media file")

    def test_a_truncated_file(self):
        whole = self.make("whole.mp4", VIDEO)
        cut = self.folder / "cut.mp4"
        cut.write_bytes(whole.read_bytes()[:3000])
        self.expect_complaint(cut, "cut.mp4")

    def test_a_file_that_may_not_be_read(self):
        secret = self.make("secret.wav", SOUND)
        secret.chmod(0)
        self.expect_complaint(secret, "secret.wav", wrapper=WITHOUT_ROOTS_POWERS)

    def test_one_bad_file_of_two_does_not_count(self):
        good = self.make("good.wav", SOUND)
        studio = self.start(self.folder / "nowhere.wav", good)
        studio.wait("both files", lambda d: d["file"] == str(good) and "splitSlider" in d["views"])
        studio.process.send_signal(signal.SIGTERM)
        self.assertEqual(studio.ended(), 0)

    def test_without_a_file_it_says_how_it_is_used(self):
        result = subprocess.run([PROGRAM], env=self.desktop.environment, text=True, capture_output=True, timeout=DEADLINE)
        self.assertEqual(result.returncode, 2)
        self.assertIn("Usage:", result.stderr)
        self.assertNotRegex(result.stderr, SANITIZERS_REPORT)


if __name__ == "__main__":
    unittest.main(argv=sys.argv, verbosity=2)
