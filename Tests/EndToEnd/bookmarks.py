#!/usr/bin/env python3
"""Bookmarks from one run of a program to the next, over real file systems: what moves, is replaced, is unmounted,
is out of bounds, or does not answer. FILES_PROBE is the program that makes and resolves them."""

import ctypes
import os
import pathlib
import signal
import stat
import subprocess
import tempfile
import time
import unittest

PROGRAM = os.environ["FILES_PROBE"]
DEADLINE = 60
WITHOUT_ROOTS_POWERS = ("setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--inh-caps", "-all")
NO_SUCH_FILE, NO_PERMISSION, UNKNOWN = "error 260", "error 257", "error 256"

libc = ctypes.CDLL(None, use_errno=True)


def mount(kind, source, place, options=""):
    if libc.mount(source.encode(), str(place).encode(), kind.encode(), 0, options.encode()) != 0:
        raise OSError(ctypes.get_errno(), f"mount {kind} on {place}")


def unmount(place, flags=0):
    if libc.umount2(str(place).encode(), flags) != 0:
        raise OSError(ctypes.get_errno(), f"unmount {place}")


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
        print(f"{number_came_back} of 50 had the number of what they replaced")

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
        program = subprocess.Popen([PROGRAM, "", "hold", data], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   text=True)
        try:
            self.assertEqual(program.stdout.readline(), f"{path}\n")
            unmount(place)
        finally:
            program.communicate(timeout=DEADLINE)

    def test_out_of_bounds(self):
        outer = self.folder("outer")
        path = self.folder("outer/folder")
        data = self.bookmark(path)
        outer.chmod(0)
        self.addCleanup(outer.chmod, 0o700)
        self.assertEqual(self.resolve(data, prefix=WITHOUT_ROOTS_POWERS), NO_PERMISSION)
        self.assertEqual(self.probe("bookmark", path, prefix=WITHOUT_ROOTS_POWERS), ["none"])

    # A file system whose program has never answered anything, as that of a machine that is switched off.
    def silent_place(self):
        place = self.folder("silent")
        device = os.open("/dev/fuse", os.O_RDWR)
        self.addCleanup(os.close, device)
        self.mounted("fuse", place, f"fd={device},rootmode={stat.S_IFDIR:o},user_id=0,group_id=0")
        return place

    def test_no_answer(self):
        place = self.folder("silent")
        (place / "sub").mkdir()
        silent = [self.bookmark(place)] + [self.bookmark(place / "sub")] * 300
        place.joinpath("sub").rmdir()
        place.rmdir()
        other = self.folder("other")
        answering = self.bookmark(other)
        place = self.silent_place()
        (self.root / "link").symlink_to(place)

        begin = time.monotonic()
        answers = self.probe("resolve", answering, *silent, answering)
        took = time.monotonic() - begin
        self.assertEqual(answers, [str(other)] + [UNKNOWN] * 301 + [str(other)])
        self.assertGreater(took, 1.5)
        self.assertLess(took, 20)  # and not two seconds for each
        print(f"302 bookmarks, 301 of them without an answer: {took:.2f} s")

        self.assertEqual(self.probe("bookmark", place / "new", self.root / "link" / "new"), ["none", "none"])
        self.assertEqual(self.probe("look", place), ["not there, not writable"])


if __name__ == "__main__":
    unittest.main()
