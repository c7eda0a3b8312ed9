#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""The real portals of the desktop, on a session bus, a runtime folder and a home of their own: documents that were
handed to a program, from one run to the next, and the portal's dialog, shown for a program that is inside of a sandbox.
PORTAL_PROBE is the program that asks them. What cannot be had on a machine fails."""

import contextlib
import ctypes
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

from desktop import DEADLINE, Desktop, wait_until

PROGRAM = pathlib.Path(os.environ["PORTAL_PROBE"])
NO_SUCH_FILE, UNKNOWN = "error 260", "error 256"
APPLICATION = "org.example.PortalProbe"

libc = ctypes.CDLL(None, use_errno=True)


class Session(contextlib.ExitStack):
    """A session bus on which nothing starts by itself, and the services that are started on it. Ends what it started."""

    def __init__(self, environment):
        super().__init__()
        self.root = pathlib.Path(self.enter_context(tempfile.TemporaryDirectory(prefix="zruikit-portal-")))
        runtime, home = self.root / "runtime", self.root / "home"
        runtime.mkdir(mode=0o700)
        home.mkdir()
        self.documents = runtime / "doc"
        settings = self.root / "bus.conf"
        settings.write_text(f"""<busconfig><type>session</type><listen>unix:path={runtime}/bus</listen><policy context="default">
            <allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy></busconfig>""")
        self.environment = {**environment, "DBUS_SESSION_BUS_ADDRESS": f"unix:path={runtime}/bus", "HOME": str(home),
                            "XDG_RUNTIME_DIR": str(runtime), "XDG_DATA_HOME": str(home / "data"),
                            "XDG_CONFIG_HOME": str(home / "config"), "XDG_CACHE_HOME": str(home / "cache"),
                            "XDG_CURRENT_DESKTOP": "GNOME", "GSETTINGS_BACKEND": "memory", "GIO_USE_VFS": "local",
                            "NO_AT_BRIDGE": "1", "LC_ALL": "C.UTF-8"}
        self.callback(self._unmount)
        try:
            bus = self.start("dbus-daemon", "--nofork", "--print-address", f"--config-file={settings}", stdout=subprocess.PIPE)
            if not bus.stdout.readline():
                raise RuntimeError("the bus did not start")
            self.service("org.freedesktop.impl.portal.PermissionStore", "xdg-permission-store")
        except BaseException:
            self.close()
            raise

    def start(self, *command, **options):
        process = subprocess.Popen(command, env=self.environment, stderr=subprocess.DEVNULL, **options)
        self.callback(self.end, process)
        return process

    def service(self, name, program):
        process = self.start(f"/usr/libexec/{program}", stdout=subprocess.DEVNULL)

        def is_there():
            if process.poll() is not None:
                raise RuntimeError(f"{program} ended with {process.returncode}")
            return "true" in subprocess.run(
                ["gdbus", "call", "--session", "--dest=org.freedesktop.DBus", "--object-path=/org/freedesktop/DBus",
                 "--method=org.freedesktop.DBus.NameHasOwner", name],
                env=self.environment, text=True, capture_output=True, timeout=DEADLINE).stdout
        wait_until(name, is_there)
        return process

    def start_documents(self):
        process = self.service("org.freedesktop.portal.Documents", "xdg-document-portal")
        wait_until("the documents' folder", lambda: self.documents.is_mount() or process.poll() is not None)
        if not self.documents.is_mount():
            raise RuntimeError("the document portal could not mount its folder: is there /dev/fuse?")
        return process

    def end(self, process, number=signal.SIGTERM):
        if process.poll() is None:
            process.send_signal(number)
            process.send_signal(signal.SIGCONT)
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        if process.stdout:
            process.stdout.close()

    def _unmount(self):
        """What a portal that was killed leaves behind."""
        libc.umount2(str(self.documents).encode(), 2)


class Test(unittest.TestCase):
    def probe(self, *words):
        result = subprocess.run([PROGRAM, "--sandboxed", *map(str, words)], env=self.session.environment, text=True, capture_output=True,
                                timeout=DEADLINE)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout.splitlines()

    def bookmark(self, path):
        data, = self.probe("bookmark", path)
        self.assertNotEqual(data, "none")
        return data

    def folder(self, name):
        path = self.session.root / name
        path.mkdir(parents=True)
        return path


class Documents(Test):
    def setUp(self):
        self.session = Session({**os.environ, "QT_QPA_PLATFORM": "offscreen"})
        self.addCleanup(self.session.close)
        self.portal = self.session.start_documents()

    def granted(self, path):
        """The id, and where the program finds the folder."""
        document, = self.probe("grant", path)
        return document, self.session.documents / document / path.name

    def resolve(self, *data):
        begin = time.monotonic()
        answers = self.probe("resolve", *data)
        self.took = time.monotonic() - begin
        return answers

    def test_next_run(self):
        path = self.folder("original/Größe und mehr")
        (path / "inner").mkdir()
        document, place = self.granted(path)
        bookmarks = [self.bookmark(place), self.bookmark(place / "inner")]
        self.assertEqual(self.resolve(*bookmarks), [str(place), str(place / "inner")])
        self.assertIn(document.encode(), bytes.fromhex(bookmarks[0]))

        self.session.end(self.portal)
        self.session.start_documents()
        self.assertEqual(self.resolve(*bookmarks), [str(place), str(place / "inner")])
        # It is the folder itself, which can be written to.
        (place / "file").write_text("text")
        self.assertEqual((path / "file").read_text(), "text")

    def test_outside_of_a_sandbox(self):
        _, place = self.granted(self.folder("folder"))
        plain = subprocess.run([PROGRAM, "bookmark", place], env=self.session.environment, text=True, capture_output=True,
                               timeout=DEADLINE)
        self.assertEqual(plain.stdout, "none\n")

    def test_taken_back(self):
        document, place = self.granted(self.folder("folder"))
        data = self.bookmark(place)
        self.probe("revoke", document)
        self.assertEqual(self.resolve(data), [NO_SUCH_FILE])
        self.session.end(self.portal)
        self.session.start_documents()
        self.assertEqual(self.resolve(data), [NO_SUCH_FILE])

    def test_gone_moved_or_replaced(self):
        path = self.folder("folder")
        _, place = self.granted(path)
        data = self.bookmark(place)
        path.rename(self.session.root / "moved")
        self.assertEqual(self.resolve(data), [NO_SUCH_FILE])
        path.mkdir()
        self.assertEqual(self.resolve(data), [NO_SUCH_FILE])
        self.session.end(self.portal)
        self.session.start_documents()
        self.assertEqual(self.resolve(data), [NO_SUCH_FILE])
        path.rmdir()
        (self.session.root / "moved").rename(path)
        self.assertEqual(self.resolve(data), [str(place)])

    def test_portal_not_running(self):
        _, place = self.granted(self.folder("folder"))
        data = self.bookmark(place)
        self.session.end(self.portal)
        self.assertEqual(self.resolve(data), [UNKNOWN])
        self.assertLess(self.took, 2)
        # Nor is what is in its place a document.
        place.mkdir(parents=True)
        self.assertEqual(self.resolve(data), [UNKNOWN])
        shutil.rmtree(place.parent)

    def test_portal_killed(self):
        _, place = self.granted(self.folder("folder"))
        data = self.bookmark(place)
        self.session.end(self.portal, signal.SIGKILL)
        self.assertEqual(self.resolve(data), [UNKNOWN])
        self.assertLess(self.took, 2)

    def test_portal_that_does_not_answer(self):
        _, place = self.granted(self.folder("folder"))
        data = self.bookmark(place)
        self.portal.send_signal(signal.SIGSTOP)
        # All of them wait for it together, and the program ends.
        self.assertEqual(self.resolve(*[data] * 200), [UNKNOWN] * 200)
        self.assertGreater(self.took, 1)
        self.assertLess(self.took, 5)
        print(f"200 bookmarks of a portal that does not answer: {self.took:.2f} s, the program's start and end included")
        self.portal.send_signal(signal.SIGCONT)
        self.assertEqual(self.resolve(data), [str(place)])

    def test_no_bus(self):
        _, place = self.granted(self.folder("folder"))
        data = self.bookmark(place)
        self.session.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.session.root}/none"
        self.assertEqual(self.resolve(data), [UNKNOWN])
        self.assertLess(self.took, 2)


class FileChooser(Test):
    """The program finds out by itself that it is inside of a sandbox, and so does the portal."""

    def setUp(self):
        self.desktop = Desktop()
        self.addCleanup(self.desktop.close)
        self.session = Session(self.desktop.environment)
        self.addCleanup(self.session.close)
        self.documents = self.session.start_documents()
        self.dialogs = self.session.service("org.freedesktop.impl.portal.desktop.gtk", "xdg-desktop-portal-gtk")
        self.portal = self.session.service("org.freedesktop.portal.Desktop", "xdg-desktop-portal")

    def inside(self, *words):
        """Of the system there are the programs, of the user's files none, and of the documents those handed to this program."""
        runtime = self.session.environment["XDG_RUNTIME_DIR"]
        read_end, write_end = os.pipe()
        os.write(write_end, f"[Application]\nname={APPLICATION}\n[Instance]\ninstance-id=1\n".encode())
        os.close(write_end)
        build = PROGRAM.parent.parent
        command = ["bwrap", "--die-with-parent", "--ro-bind", "/usr", "/usr", "--ro-bind", "/etc", "/etc", "--symlink", "usr/lib",
                   "/lib", "--symlink", "usr/lib64", "/lib64", "--symlink", "usr/bin", "/bin", "--proc", "/proc", "--dev", "/dev",
                   "--ro-bind", "/tmp/.X11-unix", "/tmp/.X11-unix", "--ro-bind", str(build), str(build),
                   "--bind", f"{runtime}/bus", f"{runtime}/bus",
                   "--bind", f"{self.session.documents}/by-app/{APPLICATION}", str(self.session.documents),
                   "--file", str(read_end), "/.flatpak-info", PROGRAM, *map(str, words)]
        process = self.session.start(*command, stdout=subprocess.PIPE, text=True, pass_fds=[read_end])
        os.close(read_end)
        return process

    def choose(self, kind):
        process = self.inside("choose", kind, "/")
        return process, wait_until("the portal's dialog", lambda: self.windows("--pid", self.dialogs.pid))[0]

    def windows(self, *which):
        return self.desktop.run("xdotool", "search", "--onlyvisible", *map(str, which)).split()

    def keys(self, window, *names):
        self.desktop.run("xdotool", "windowfocus", "--sync", window, "key", *names)

    def answer(self, process):
        output, _ = process.communicate(timeout=DEADLINE)
        self.assertEqual(process.returncode, 0)
        return output.splitlines()

    def pick(self, kind, path):
        process, window = self.choose(kind)

        def picked():
            self.keys(window, "alt+Home", "ctrl+l", "ctrl+a")
            self.desktop.run("xdotool", "type", str(path))
            self.keys(window, "Return")
            # The dialog may not have been listening.
            with contextlib.suppress(subprocess.TimeoutExpired):
                process.wait(3)
            return process.poll() is not None
        wait_until(f"{path} to be chosen", picked)
        place, = self.answer(process)
        return pathlib.Path(place)

    def resolve(self, data):
        return self.answer(self.inside("resolve", data))

    def test_folder_that_is_trusted_at_the_next_run(self):
        path = self.folder("mine/a folder")
        place = self.pick("folders", path)
        self.assertEqual((place.name, place.parent.parent), ("a folder", self.session.documents))
        (path / "inner").mkdir()
        data, inner = self.answer(self.inside("bookmark", place, place / "inner"))
        self.assertIn(f"{place.parent.name}/a folder".encode(), bytes.fromhex(data))
        self.assertEqual(self.answer(self.inside("bookmark", path)), ["none"])  # it cannot be seen from there

        self.session.end(self.documents)
        self.documents = self.session.start_documents()
        self.assertEqual(self.resolve(data), [str(place)])
        self.assertEqual(self.resolve(inner), [str(place / "inner")])
        self.probe("revoke", place.parent.name)
        self.assertEqual(self.resolve(data), [NO_SUCH_FILE])

    def test_file(self):
        path = self.folder("mine") / "file.txt"
        path.write_text("text")
        place = self.pick("files", path)
        self.assertEqual((place.name, place.parent.parent), ("file.txt", self.session.documents))
        data, = self.answer(self.inside("bookmark", place))
        self.assertEqual(self.resolve(data), [str(place)])

    def test_what_the_dialog_says(self):
        process, window = self.choose("folders")
        self.assertEqual(self.desktop.run("xdotool", "getwindowname", window), "Trust_it\n")
        below, = self.windows("--name", "^portal probe$")
        properties = self.desktop.run("xprop", "-id", window, "WM_TRANSIENT_FOR")
        self.assertIn(f"window id # {int(below):#x}", properties)
        self.keys(window, "Escape")
        self.assertEqual(self.answer(process), ["cancelled"])

    def test_window_closed_meanwhile(self):
        process, window = self.choose("folders")
        below, = self.windows("--name", "^portal probe$")
        self.desktop.ask_to_close(below)
        self.assertEqual(self.answer(process), ["cancelled"])
        wait_until("the dialog to go", lambda: not self.windows("--pid", self.dialogs.pid))

    def test_dialog_that_dies(self):
        process, _ = self.choose("folders")
        self.session.end(self.dialogs, signal.SIGKILL)
        self.assertEqual(self.answer(process), ["cancelled"])

    def test_portal_that_dies(self):
        process, _ = self.choose("folders")
        self.session.end(self.portal, signal.SIGKILL)
        self.assertEqual(self.answer(process), ["cancelled"])


if __name__ == "__main__":
    unittest.main()
