# SPDX-License-Identifier: MIT
"""A private X server with a window manager, Wayland inside it, a real pointer, and TrimStudio driven from outside."""

import contextlib
import ctypes
import json
import os
import pathlib
import plistlib
import queue
import re
import stat
import subprocess
import tempfile
import threading
import time

# Seconds, for anything that is waited for. ZR_SLOW says how many times slower than usual the program is.
DEADLINE = 30 * float(os.environ.get("ZR_SLOW", "1"))
SANITIZERS_REPORT = re.compile(r"ERROR: \w+Sanitizer|(?:WARNING|FATAL): ThreadSanitizer|LeakSanitizer|runtime error:")


class Timeout(Exception):
    pass


def wait_until(what, condition, deadline=DEADLINE, pause=0.01):
    """Asks again and again until the condition gives something, and answers that."""
    end = time.monotonic() + deadline
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise Timeout(f"waited {deadline} s for {what}")
        time.sleep(pause)


libc = ctypes.CDLL(None, use_errno=True)


def mount(kind, source, place, options="", flags=0):
    if libc.mount(str(source).encode(), str(place).encode(), kind.encode(), flags, options.encode()) != 0:
        raise OSError(ctypes.get_errno(), f"mount {kind} on {place}")


def unmount(place, flags=0):
    if libc.umount2(str(place).encode(), flags) != 0:
        raise OSError(ctypes.get_errno(), f"unmount {place}")


def keep_mounts_private():
    """What this program mounts nobody else sees, and it goes with the program."""
    new_namespace, private_and_all_below = 0x20000, 1 << 18 | 1 << 14
    if libc.unshare(new_namespace) != 0:
        raise OSError(ctypes.get_errno(), "unshare")
    mount("", "", "/", flags=private_and_all_below)


def silence(test, place):
    """Mounts there a file system whose program has never answered anything, as that of a machine that is switched off."""
    device = os.open("/dev/fuse", os.O_RDWR)
    test.addCleanup(os.close, device)
    mount("fuse", "silent", place, f"fd={device},rootmode={stat.S_IFDIR:o},user_id=0,group_id=0")
    test.addCleanup(lambda: libc.umount2(str(place).encode(), 2))


def store(desktop, values):
    """What TrimStudio will find in its user defaults."""
    folder = pathlib.Path(desktop.environment["XDG_CONFIG_HOME"])
    folder.mkdir(exist_ok=True)
    (folder / "TrimStudio.plist").write_bytes(plistlib.dumps(values, fmt=plistlib.FMT_BINARY))


def stored(desktop):
    """What TrimStudio has left in its user defaults."""
    return plistlib.loads(pathlib.Path(desktop.environment["XDG_CONFIG_HOME"], "TrimStudio.plist").read_bytes())


class Desktop(contextlib.ExitStack):
    """Everything it starts it ends, by process id."""

    def __init__(self, width=1280, height=800):
        super().__init__()
        self.size = width, height
        try:
            self._start()
        except BaseException:
            self.close()
            raise

    def start(self, command, **options):
        process = subprocess.Popen(command, **options)
        self.callback(self._end, process)
        return process

    def _start(self):
        self.runtime = self.enter_context(tempfile.TemporaryDirectory(prefix="zruikit-runtime-"))
        read_end, write_end = os.pipe()
        # Without -noreset the server would throw out its clients whenever the last one but them leaves.
        self.start(["Xvfb", "-displayfd", str(write_end), "-screen", "0", "{}x{}x24".format(*self.size), "-nolisten", "tcp",
                    "-noreset"], pass_fds=[write_end], stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError("the X server did not start")
        self.environment = {key: value for key, value in os.environ.items()
                            if key not in ("WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "LANGUAGE")}
        self.environment.update(DISPLAY=f":{number}", XDG_RUNTIME_DIR=self.runtime, QT_QPA_PLATFORM="xcb",
                                LC_ALL="C.UTF-8", QT_STYLE_OVERRIDE="fusion", XDG_CONFIG_HOME=f"{self.runtime}/config")
        # It announces itself long before it manages windows, and a window that comes in between may never be shown.
        ready = pathlib.Path(self.runtime, "window-manager-runs")
        self.start(["openbox", "--sm-disable", "--startup", f"touch {ready}"], env=self.environment, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
        wait_until("the window manager", ready.exists)

    @staticmethod
    def _end(process):
        if process.poll() is None:
            process.terminate()
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        for stream in (process.stdout, process.stderr):
            if stream:
                stream.close()

    def run(self, *command):
        return subprocess.run(command, env=self.environment, text=True, capture_output=True, timeout=DEADLINE).stdout

    def pointer(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=True, timeout=DEADLINE,
                       stdout=subprocess.DEVNULL)

    def move(self, x, y):
        self.pointer("mousemove", round(x), round(y))

    def press(self):
        self.pointer("mousedown", 1)

    def release(self):
        self.pointer("mouseup", 1)

    def screenshot(self, path):
        subprocess.run(["import", "-window", "root", path], env=self.environment, check=True, timeout=DEADLINE)

    def find(self, process, rect):
        """The window whose content is described as standing there, and how far from there it stands; nothing if there is none."""
        for window in self.run("xdotool", "search", "--onlyvisible", "--pid", str(process.pid)).split():
            info = self.run("xwininfo", "-id", window)
            numbers = [int(n) for n in re.findall(r"(?:Absolute upper-left [XY]|Width|Height):\s+(-?\d+)", info)]
            if len(numbers) != 4:
                continue
            x, y, width, height = numbers
            # Above the content there may be bars. At twice the scale a window that stands on an odd pixel is known to Qt to
            # the nearest even one.
            if y <= rect[1] + 1 and all(abs(a - b) <= 1 for a, b in zip((x, width, y + height), (rect[0], rect[2], rect[1] + rect[3]))):
                return window, (0, 0)
        return None

    def client_area(self, window):
        """Of a window that was found: without its frame, but with the bars above its content."""
        info = self.run("xwininfo", "-id", window)
        return [int(n) for n in re.findall(r"(?:Absolute upper-left [XY]|Width|Height):\s+(-?\d+)", info)]

    def find_by_size(self, process, size):
        """The upper left corner of the content of a window of this size; nothing if there is none."""
        for window in self.run("xdotool", "search", "--onlyvisible", "--pid", str(process.pid)).split():
            info = self.run("xwininfo", "-id", window)
            x, y, *found = [int(n) for n in re.findall(r"(?:Absolute upper-left [XY]|Width|Height):\s+(-?\d+)", info)] or (0, 0)
            if len(found) == 2 and all(abs(a - b) <= 1 for a, b in zip(found, size)):
                return x, y
        return None

    def ask_to_close(self, window):
        self.run("wmctrl", "-i", "-c", hex(int(window)))


class WaylandDesktop(Desktop):
    """A Wayland compositor that fills the X server's screen, and so has its pointer, its keys and its coordinates."""

    BACKGROUND = 0xb5  # its green, which is all it has
    TITLE_BAR = 30  # that Qt draws
    SETTINGS = f"""
[core]
idle-time=0
[shell]
background-color=0xff00{BACKGROUND:x}00
panel-position=none
locking=false
animation=none
startup-animation=none
close-animation=none
[input-method]
path=
"""

    def _start(self):
        super()._start()
        settings = pathlib.Path(self.runtime, "weston.ini")
        settings.write_text(self.SETTINGS)
        width, height = self.size
        self.start(["weston", "--backend=x11-backend.so", "--use-pixman", "--fullscreen", f"--width={width}", f"--height={height}",
                    "--socket=zruikit", f"--config={settings}"],
                   env=self.environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        # Qt's Wayland plug-ins keep memory when they are unloaded, in places that have no name any more by then.
        sanitizer = self.environment.get("ASAN_OPTIONS", "") + " detect_leaks=0"
        self.environment.update(WAYLAND_DISPLAY="zruikit", QT_QPA_PLATFORM="wayland", ASAN_OPTIONS=sanitizer)
        wait_until("the compositor", lambda: max(self._covered()[1]) < self.size[0] / 2)
        # The compositor moves its pointer as far as the X server's moves: from this corner on they agree.
        self.move(0, 0)

    def _covered(self):
        """How much is not background, in each column and in each row of the screen."""
        width, height = self.size
        picture = subprocess.run(["import", "-window", "root", "-depth", "8", "rgb:-"], env=self.environment, check=True,
                                 timeout=DEADLINE, capture_output=True).stdout
        green = picture[1::3]
        return ([height - green[x::width].count(self.BACKGROUND) for x in range(width)],
                [width - green[y * width:(y + 1) * width].count(self.BACKGROUND) for y in range(height)])

    def find(self, process, rect):
        """Wayland tells nobody where a window is. The frame is as wide below the content as beside it; above it are title and bars."""
        width, height = round(rect[2]), round(rect[3])
        columns, rows = self._covered()
        across = [x for x, covered in enumerate(columns) if covered > height / 2]
        down = [y for y, covered in enumerate(rows) if covered > width / 2]
        if not across or not down:
            return None
        side = (across[-1] + 1 - across[0] - width) // 2
        above = down[-1] + 1 - down[0] - height - side
        if side < 0 or above < self.TITLE_BAR:
            return None
        x, y = across[0] + side, down[0] + above
        close_button = x + width - self.TITLE_BAR / 2, down[0] + self.TITLE_BAR / 2
        return close_button, (x - rect[0], y - rect[1])

    def ask_to_close(self, window):
        self.move(*window)
        self.press()
        self.release()


class TrimStudio:
    """A running TrimStudio, and what one of its windows describes of itself: that of the file it follows, else any.
    The preferences are described beside that."""

    def __init__(self, desktop, program, *arguments, wrapper=(), environment=None):
        self.desktop = desktop
        self.lines = queue.Queue()
        self.last = None
        self.followed = None
        self.described = None
        self.preferences = None
        self.history = []
        self.window = None
        self.offset = (0, 0)
        self.process = desktop.start([*wrapper, program, "--describe", *arguments], text=True,
                                     env={**desktop.environment, **(environment or {})},
                                     stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.errors = []
        self.readers = [threading.Thread(target=self._read), threading.Thread(target=self._read_errors)]
        for reader in self.readers:
            reader.start()
        desktop.callback(self._finish)

    def _read(self):
        for line in self.process.stdout:
            self.lines.put(json.loads(line))

    def _read_errors(self):
        self.errors.extend(self.process.stderr)

    def follow(self, path):
        self.followed = str(path)
        self.described = next((d for d in reversed(self.history) if d["file"] == self.followed), None)
        self.window, self.offset = None, (0, 0)

    def ended(self):
        """The exit status; everything that was said has been read by then."""
        status = self.process.wait(DEADLINE)
        for reader in self.readers:
            reader.join(DEADLINE)
        return status

    def _finish(self):
        if self.process.poll() is None:
            self.process.terminate()
        self.ended()
        errors = "".join(self.errors)
        if SANITIZERS_REPORT.search(errors):
            raise AssertionError(errors)

    def newest(self):
        with contextlib.suppress(queue.Empty):
            while True:
                line = self.lines.get_nowait()
                if "preferences" in line:
                    self.preferences = line["preferences"]
                    continue
                self.history.append(line)
                if self.followed in (None, self.history[-1]["file"]):
                    self.described = self.history[-1]
        return self._placed()

    def _placed(self):
        """The newest description, its rectangles moved to where the window stands on the screen."""
        if not self.described:
            return None

        def placed(value):
            return [value[0] + self.offset[0], value[1] + self.offset[1], *value[2:]] if isinstance(value, list) else value
        views = {name: {key: placed(value) for key, value in view.items()} for name, view in self.described["views"].items()}
        self.last = {**self.described, "views": views}
        return self.last

    def wait(self, what, condition):
        """The newest description, once the condition holds for it."""
        def check():
            newest = self.newest()
            return self._placed() if newest and condition(newest) else None
        try:
            return wait_until(what, check)
        except Timeout as timeout:
            raise Timeout(f"{timeout}; last: {self.last}; errors: {''.join(self.errors)}") from None

    def wait_until_ready(self, restored=True):
        """The file is open, and the window has been found; nothing is done in the background any more."""
        return self.wait("the opened file",
                         lambda d: "splitSlider" in d["views"] and not (restored and d["restoring"]) and self._stands())

    def wait_for_message(self):
        return self.wait("a message", lambda d: d["message"] and d["message"] != "Opening…" and self._stands())

    def _stands(self):
        found = self.desktop.find(self.process, self.described["views"]["window"]["rect"])
        if found:
            self.window, self.offset = found
        return found is not None

    def wait_for_preferences(self, what, condition):
        """What is described of the preferences, once the condition holds for that."""
        def check():
            self.newest()
            return condition(self.preferences)
        try:
            wait_until(what, check)
        except Timeout as timeout:
            raise Timeout(f"{timeout}; last: {self.preferences}; errors: {''.join(self.errors)}") from None
        return self.preferences

    def slider(self):
        return self.newest()["views"]["splitSlider"]

    def drag(self, handle, to_x, to_y=None, steps=5):
        """Takes a handle by its middle, and lets go of it at a position of the pointer."""
        rect = self.slider()[handle]
        x, y = rect[0] + rect[2] / 2, rect[1] + rect[3] / 3
        to_y = y if to_y is None else to_y
        self.desktop.move(x, y)
        self.desktop.press()
        for step in range(1, steps + 1):
            self.desktop.move(x + (to_x - x) * step / steps, y + (to_y - y) * step / steps)
        self.desktop.release()

    def drag_along_track(self, handle, to_x, steps=5):
        """Drags a handle within its track until it stands there, not only on its way, or a message says why it does not."""
        self.drag(handle, to_x, steps=steps)

        def stands(description):
            x, _, width, _ = description["views"]["splitSlider"][handle]
            return description["message"] or abs(x + width / 2 - to_x) <= 1
        return self.wait(f"the {handle} at {to_x}", stands)

    def click(self, view):
        x, y, width, height = self.newest()["views"][view]["rect"]
        self.desktop.move(x + width / 2, y + height / 2)
        self.desktop.press()
        self.desktop.release()

    def click_in(self, panel, title):
        """Presses a button of the sheet or of the alert with the pointer."""
        shown = self.wait(f"the {panel}", lambda d: d[panel])[panel]
        x, y = wait_until(f"the window of the {panel}", lambda: self.desktop.find_by_size(self.process, shown["size"]))
        left, top, width, height = next(button["rect"] for button in shown["buttons"] if button["title"] == title)
        self.desktop.move(x + left + width / 2, y + top + height / 2)
        self.desktop.press()
        self.desktop.release()

    def ask_to_close(self):
        self.desktop.ask_to_close(self.window)

    def close(self):
        """Asks the window to close as a user does; answers the program's exit status."""
        self.ask_to_close()
        return self.ended()


def media_length(path):
    """In seconds, as ffprobe reads it."""
    output = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", path],
                            text=True, capture_output=True, check=True, timeout=DEADLINE).stdout
    return float(output)
