#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""User defaults under processes that are killed, race each other, and meet disks that refuse, read by a reader of
property lists that is not ours; and what a process sees that may not do everything. FILES_PROBE is the program."""

import datetime
import math
import os
import pathlib
import plistlib
import random
import resource
import signal
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["FILES_PROBE"]
DEADLINE = 50
WITHOUT_ROOTS_POWERS = ("setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--inh-caps", "-all")
SINCE = datetime.datetime(2001, 1, 1)


class UserDefaults(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory(prefix="zruikit-defaults-")
        self.addCleanup(temporary.cleanup)
        self.folder = pathlib.Path(temporary.name) / "config"
        self.file = self.folder / "app.plist"

    def start(self, *words, **options):
        return subprocess.Popen([PROGRAM, self.file, *map(str, words)], stdout=subprocess.PIPE, text=True, **options)

    def run_probe(self, *words, prefix=(), environment=None, **options):
        return subprocess.run([*prefix, PROGRAM, self.file, *map(str, words)], text=True, capture_output=True,
                              timeout=DEADLINE, env={**os.environ, **(environment or {})}, **options)

    def load(self):
        with self.file.open("rb") as file:
            return plistlib.load(file, fmt=plistlib.FMT_BINARY)

    def put(self, key, value):
        result = self.run_probe("set", key, value)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "stored\n", ""))

    def names(self):
        return sorted(path.name for path in self.folder.iterdir())

    # What others read

    def test_types(self):
        self.assertEqual(self.run_probe("types").returncode, 0)
        flat = {
            "yes": True, "no": False, "zero": 0, "negative": -5, "least": -2**63, "most": 2**63 - 1,
            "whole real": 3.0, "real": 0.1, "infinite": math.inf,
            "text": "text", "empty text": "", "wide text": "Größe 日本 😀", "": "of the empty key",
            "date": SINCE + datetime.timedelta(seconds=700_000_000, microseconds=123456),
            "early date": SINCE - datetime.timedelta(microseconds=500_000),
            "far date": datetime.datetime(4001, 1, 1, 0, 0, 0, 250_000),
            "data": b"\x00\x01\xff", "empty data": b"", "empty array": [], "empty dictionary": {},
        }
        nested = [{"id": "a", "date": SINCE + datetime.timedelta(seconds=1)}, flat, b"\x01" * 70_000]
        found = self.load()
        self.assertEqual(found, {**flat, "nested": nested})
        for key, value in [*flat.items(), *((key, found["nested"][1][key]) for key in flat)]:
            self.assertIs(type(found[key]), type(value), key)

    def test_values_that_another_program_wrote(self):
        self.folder.mkdir()
        values = {"text": "ü", "list": [1, 2.5, True, b"\x00"], "when": datetime.datetime(2024, 2, 29, 12, 0, 0, 5)}
        with self.file.open("wb") as file:
            plistlib.dump(values, file, fmt=plistlib.FMT_BINARY)
        self.put("new", "value")
        self.assertEqual(self.load(), {**values, "new": "value"})

    # Nothing is lost

    def test_killed_five_hundred_times(self):
        moments = random.Random(1)
        last = 0
        for kill in range(500):
            process = self.start("loop")
            first = process.stdout.readline()
            self.assertTrue(first, "the writer ended by itself")
            try:
                process.wait(moments.uniform(0, 0.012))
            except subprocess.TimeoutExpired:
                pass
            process.kill()
            printed = (first + process.communicate()[0]).split("\n")[:-1]
            self.assertEqual(process.returncode, -signal.SIGKILL)
            numbers = [int(line) for line in printed]
            self.assertIn(numbers[0], (last + 1, last + 2), "the writer had not seen the last value")
            found = self.load()
            count = found["count"]
            # The writer may have written once more than it could say.
            self.assertIn(count, (numbers[-1], numbers[-1] + 1), f"after kill {kill}")
            self.assertEqual(found, {"count": count, "payload": bytes([count % 256]) * (count * 37 % 20_000),
                                     "list": [count, str(count)]})
            last = numbers[-1]
            self.assertLessEqual(set(self.names()), {"app.plist", "app.plist.lock", "app.plist.new"})

    def test_two_processes_lose_nothing(self):
        writers = [self.start("write", name, 10_000, 100) for name in ("left ", "right ")]
        for writer in writers:
            writer.communicate(timeout=DEADLINE)
            self.assertEqual(writer.returncode, 0)
        expected = {f"{name} {i}": i for name in ("left", "right") for i in range(1, 10_001)}
        self.assertEqual(self.load(), expected)

    def test_leaving_the_program_writes(self):
        self.assertEqual(self.run_probe("exit", "k", "v").returncode, 0)
        self.assertEqual(self.load(), {"k": "v"})

    def test_flushed_before_and_after_it_takes_the_files_place(self):
        self.folder.mkdir()
        result = self.run_probe("calls")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout.splitlines(), ["flush app.plist.new", "rename app.plist", "flush config"])

    def test_new_folders_are_flushed_too(self):
        self.assertEqual(self.run_probe("calls").stdout.splitlines()[0], f"flush {self.folder.parent.name}")

    # Disks that refuse

    def refused(self, result, reason, before):
        """The writer said why, kept the value in memory, and left what there was."""
        self.assertEqual((result.returncode, result.stdout), (0, "not stored\n"), result.stderr)
        self.assertIn("are not stored", result.stderr)
        self.assertIn(reason, result.stderr)
        self.assertEqual(self.file.read_bytes(), before)

    def test_full_disk(self):
        self.put("small", "value")
        before = self.file.read_bytes()

        def no_large_files():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))

        result = self.run_probe("set", "large", "x" * 10_000, preexec_fn=no_large_files, restore_signals=False)
        self.refused(result, "File too large", before)
        self.assertEqual(self.names(), ["app.plist", "app.plist.lock"])

    def test_disk_that_does_not_keep(self):
        self.put("old", "value")
        before = self.file.read_bytes()
        result = self.run_probe("set", "new", "value", environment={"FAIL_FLUSH": "app.plist.new"})
        self.refused(result, "Input/output error", before)
        result = self.run_probe("set", "new", "value", environment={"FAIL_FLUSH": "config"})
        self.assertEqual(result.stdout, "not stored\n")
        self.assertEqual(self.load(), {"old": "value", "new": "value"})

    def test_read_only_folder(self):
        self.put("old", "value")
        before = self.file.read_bytes()
        self.folder.chmod(0o500)
        self.addCleanup(self.folder.chmod, 0o700)
        result = self.run_probe("set", "new", "value", prefix=WITHOUT_ROOTS_POWERS)
        self.refused(result, "Permission denied", before)

    def test_unreadable_file_is_neither_set_aside_nor_overwritten(self):
        self.put("old", "value")
        before = self.file.read_bytes()
        self.file.chmod(0)
        result = self.run_probe("set", "new", "value", prefix=WITHOUT_ROOTS_POWERS)
        self.file.chmod(0o600)
        self.refused(result, "Permission denied", before)
        self.assertEqual(self.names(), ["app.plist", "app.plist.lock"])
        self.put("new", "value")
        self.assertEqual(self.load(), {"old": "value", "new": "value"})

    def test_damaged_file_in_a_read_only_folder_stays(self):
        self.put("old", "value")
        self.file.write_bytes(b"damaged")
        self.folder.chmod(0o500)
        self.addCleanup(self.folder.chmod, 0o700)
        result = self.run_probe("set", "new", "value", prefix=WITHOUT_ROOTS_POWERS)
        self.refused(result, "no binary property list", b"damaged")

    def test_other_forms_of_file_are_set_aside(self):
        self.folder.mkdir()
        xml = plistlib.dumps({"k": "v"}, fmt=plistlib.FMT_XML)
        self.file.write_bytes(xml)
        result = self.run_probe("set", "new", "value")
        self.assertEqual((result.returncode, result.stdout), (0, "stored\n"))
        self.assertIn(f"The file is now {self.file}.unreadable.", result.stderr)
        self.assertEqual((self.folder / "app.plist.unreadable").read_bytes(), xml)
        self.assertEqual(self.load(), {"new": "value"})

    # Rights

    def test_writable(self):
        def look(path):
            return self.run_probe("look", path, prefix=WITHOUT_ROOTS_POWERS).stdout

        self.folder.mkdir()
        file = self.folder / "file"
        file.touch()
        self.assertEqual(look(self.folder), "there, writable\n")
        self.assertEqual(look(file), "there, writable\n")
        file.chmod(0o400)
        self.assertEqual(look(file), "there, not writable\n")
        self.folder.chmod(0o500)
        self.addCleanup(self.folder.chmod, 0o700)
        self.assertEqual(look(self.folder), "there, not writable\n")
        self.assertEqual(look(f"{self.folder}/"), "there, not writable\n")
        link = self.folder.parent / "link"
        link.symlink_to(self.folder)
        self.assertEqual(look(link), "there, not writable\n")
        self.folder.chmod(0o600)
        self.assertEqual(look(file), "not there, not writable\n")


if __name__ == "__main__":
    unittest.main()
