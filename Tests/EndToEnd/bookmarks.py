#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Bookmarks from one run of a program to the next, over real file systems: what moves, is replaced, is unmounted,
is out of bounds, or does not answer. FILES_PROBE is the program that makes and resolves them."""

import os
import pathlib
import subprocess
import tempfile
import time
import unittest

from desktop import keep_mounts_private, libc, mount, silence, unmount

PROGRAM = os.environ["FILES_PROBE"]
DEADLINE = 60
WITHOUT_ROOTS_POWERS = ("setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--inh-caps", "-all")
NO_SUCH_FILE, NO_PERMISSION, UNKNOWN = "error 260", "error 257", "error 256"

def setUpModule():
    keep_mounts_private()


class Bookmarks(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="zruikit-bookmarks-")
        self.addCleanup(temporary.cleanup)
        self.root = pathlib.Path(temporary.name)

    def probe(self, *words, prefix=()):
        result = subprocess.run([*prefix, PROGRAM, "", *map(str, words)], text=True, capture_output=True,
                                timeout=DEADLINE)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout.splitlines()

    def folder(self, name):
        path = self.root / name
        path.mkdir(parents=True)
        return path

    def bookmark(self, path, **options):
        data, = self.probe("bookmark", path, **options)
        self.assertNotEqual(data, "none")
        return data

    def resolve(self, data, **options):
        answer, = self.probe("resolve", data, **options)
        return answer

    def mounted(self, kind, place, options=""):
        mount(kind, kind, place, options)
        self.addCleanup(lambda: libc.umount2(str(place).encode(), 2))

    def test_next_run(self):
        path = self.folder("Größe/a folder")
        data = self.bookmark(path)
        self.assertEqual(self.resolve(data), str(path))
        self.assertIn(str(path).encode(), bytes.fromhex(data))

    def test_moved_since_the_last_run(self):
        path = self.folder("folder")
        data = self.bookmark(path)
        path.rename(self.root / "moved")
        self.assertEqual(self.resolve(data), NO_SUCH_FILE)
        (self.root / "moved").rename(path)
        self.assertEqual(self.resolve(data), str(path))

    def test_replaced_by_another_with_the_same_number(self):
        number_came_back = 0
        for _ in range(50):
            path = self.folder("folder")
            number = path.stat().st_ino
            data = self.bookmark(path)
            path.rmdir()
            path.mkdir()
            number_came_back += path.stat().st_ino == number
            self.assertEqual(self.resolve(data), UNKNOWN)
            path.rmdir()
        self.assertGreater(number_came_back, 0, "no number came back: this file system shows nothing")

    def test_contents_do_not_count(self):
        path = self.folder("folder")
        data = self.bookmark(path)
        (path / "file").write_text("text")
        path.chmod(0o750)
        os.utime(path, (1, 1))
        self.assertEqual(self.resolve(data), str(path))

    def test_on_another_file_system(self):
        place = self.folder("place")
        self.mounted("tmpfs", place)
        path = self.folder("place/folder")
        data = self.bookmark(path)
        self.assertEqual(self.resolve(data), str(path))
        of_the_place = self.bookmark(place)
        self.assertEqual(self.resolve(of_the_place), str(place))

        # Nothing of it was kept open, or it would not go.
        unmount(place)
        self.assertEqual(self.resolve(data), NO_SUCH_FILE)
        self.assertEqual(self.resolve(of_the_place), UNKNOWN)
        path.mkdir()
        self.assertEqual(self.resolve(data), UNKNOWN)
        path.rmdir()

    def test_does_not_keep_a_disk_from_being_unmounted(self):
        place = self.folder("place")
        self.mounted("tmpfs", place)
        path = self.folder("place/folder")
        data = self.bookmark(path)
        with subprocess.Popen([PROGRAM, "", "hold", data], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              text=True) as program:
            self.assertEqual(program.stdout.readline(), f"{path}\n")
            unmount(place)

    def test_out_of_bounds(self):
        outer = self.folder("outer")
        path = self.folder("outer/folder")
        data = self.bookmark(path)
        outer.chmod(0)
        self.addCleanup(outer.chmod, 0o700)
        self.assertEqual(self.resolve(data, prefix=WITHOUT_ROOTS_POWERS), NO_PERMISSION)
        self.assertEqual(self.probe("bookmark", path, prefix=WITHOUT_ROOTS_POWERS), ["none"])

    def silence(self, name):
        place = self.root / name
        place.mkdir(exist_ok=True)
        silence(self, place)
        return place

    def bookmarks_in(self, name):
        """Of a folder and of one in it, which goes again."""
        place, inner = self.folder(name), self.folder(f"{name}/inner")
        data = [self.bookmark(place), self.bookmark(inner)]
        inner.rmdir()
        return data

    def test_no_answer(self):
        silent = self.bookmarks_in("silent")
        other = self.folder("other")
        answering = self.bookmark(other)
        place = self.silence("silent")
        (self.root / "link").symlink_to(place)

        begin = time.monotonic()
        answers = self.probe("resolve", answering, *silent * 150, answering)
        took = time.monotonic() - begin
        self.assertEqual(answers, [str(other)] + [UNKNOWN] * 300 + [str(other)])
        self.assertGreater(took, 1.5)
        self.assertLess(took, 20)  # and not two seconds for each

        self.assertEqual(self.probe("bookmark", place / "new", self.root / "link" / "new"), ["none", "none"])
        self.assertEqual(self.probe("look", place), ["not there, not writable"])

    def test_many_places_without_an_answer_silence_no_other(self):
        silent = sum((self.bookmarks_in(f"silent{number}") for number in range(6)), [])
        other = self.folder("other")
        answering = self.bookmark(other)
        for number in range(6):
            self.silence(f"silent{number}")
        self.assertEqual(self.probe("resolve", *silent, answering), [UNKNOWN] * 12 + [str(other)])

    def test_a_home_without_an_answer(self):
        path = self.folder("folder")
        data = self.bookmark(path)
        home = self.silence("home")
        self.assertEqual(self.probe("resolve", data, prefix=("env", f"HOME={home}/user")), [str(path)])

    def test_a_place_that_stops_answering_while_the_program_runs(self):
        silent = self.bookmarks_in("silent")[0]
        with subprocess.Popen([PROGRAM, "", "again", silent], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                              text=True) as program:
            self.assertEqual(program.stdout.readline(), f"{self.root / 'silent'}\n")
            self.silence("silent")
            output, _ = program.communicate("\n", timeout=DEADLINE)
        self.assertEqual((program.returncode, output), (0, f"{UNKNOWN}\n"))

    def attach(self, file):
        device = self.run_tool("losetup", "--find", "--show", file)
        self.addCleanup(lambda: subprocess.run(["losetup", "--detach", device], capture_output=True, timeout=DEADLINE))
        return device

    def run_tool(self, *words):
        return subprocess.run(list(map(str, words)), check=True, capture_output=True, text=True, timeout=DEADLINE).stdout.strip()

    # Some file systems give the number of their device out as their id.
    def test_a_disk_that_comes_back_as_another_device(self):
        for kind, size in (("ext4", 64), ("xfs", 320)):
            with self.subTest(kind=kind):
                disk, other = self.root / f"{kind} disk", self.root / f"{kind} other"
                disk.touch()
                os.truncate(disk, size << 20)
                other.touch()
                os.truncate(other, 1 << 20)
                self.run_tool(f"mkfs.{kind}", "-q", disk)
                place = self.folder(kind)
                path = place / "folder"
                first = self.attach(disk)
                mount(kind, first, place)
                self.addCleanup(lambda place=place: libc.umount2(str(place).encode(), 2))
                path.mkdir()
                data = self.bookmark(path)
                unmount(place)
                self.run_tool("losetup", "--detach", first)
                self.attach(other)
                second = self.attach(disk)
                self.assertNotEqual(second, first)
                mount(kind, second, place)
                self.assertEqual(self.resolve(data), str(path))
                path.rmdir()
                path.mkdir()
                self.assertEqual(self.resolve(data), UNKNOWN)


if __name__ == "__main__":
    unittest.main()
