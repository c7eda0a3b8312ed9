#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes the pictures of the documentation. Arguments: the program, the folder for them."""

import os
import shutil
import subprocess
import sys
import tempfile
import time

from desktop import DEADLINE, Desktop, TrimStudio, keep_mounts_private, mount, wait_until
from trimming import background_work_held

RECORDING = "/usr/share/sounds/freedesktop/stereo/alarm-clock-elapsed.oga"
program, folder = sys.argv[1:]


def prepared(desktop, file, *arguments, **options):
    """TrimStudio with the middle of the file chosen."""
    studio = TrimStudio(desktop, program, *arguments, "--", file, **options)
    studio.wait_until_ready()
    x, _, width, _ = studio.slider()["track"]
    studio.drag_along_track("leftHandle", x + width * 0.3)
    studio.drag_along_track("rightHandle", x + width * 0.8)
    desktop.move(1, 1)
    return studio


def take(desktop, rect, name):
    x, y, width, height = (round(number) for number in rect)
    path = os.path.join(folder, name)
    desktop.screenshot(path)
    subprocess.run(["mogrify", "-crop", f"{width}x{height}+{x}+{y}", "+repage", "-strip", path], check=True, timeout=DEADLINE)


def trust(desktop, studio, folder):
    """Adds a folder to the open preferences, through the real dialog."""
    os.makedirs(folder, exist_ok=True)
    shown = studio.preferences
    x, y, width, height = next(button["rect"] for button in shown["buttons"] if button["title"] == "+")
    desktop.move(shown["rect"][0] + x + width / 2, shown["rect"][1] + y + height / 2)
    desktop.press()
    desktop.release()
    wait_until("the dialog", lambda: desktop.run("xdotool", "search", "--onlyvisible", "--all", "--pid",
                                                 str(studio.process.pid), "--name", "^Open$").split())
    desktop.pointer("type", folder)
    desktop.pointer("key", "Return")
    studio.wait_for_preferences("the folder", lambda p: p and p["key"] and folder in p["rows"])


keep_mounts_private()
mount("tmpfs", "tmpfs", "/home")  # the folders of the pictures
with tempfile.TemporaryDirectory(prefix="zruikit-pictures-") as media:
    file = os.path.join(media, "Alarm clock.oga")
    shutil.copy(RECORDING, file)
    for appearance in ("light", "dark"):
        with Desktop() as desktop:
            studio = prepared(desktop, file, "--appearance", appearance)
            take(desktop, desktop.client_area(studio.window), f"trimstudio-{appearance}.png")
            if appearance == "light":
                with background_work_held(studio.process):
                    studio.click("saveButton")
                    studio.wait("the sheet", lambda d: d["sheet"])
                    desktop.move(1, 1)
                    time.sleep(1)  # until it is painted, too
                    take(desktop, desktop.client_area(studio.window), "trimstudio-saving.png")
                studio.wait("the saved file", lambda d: d["saved"])
            desktop.pointer("key", "ctrl+comma")
            studio.wait_for_preferences("the preferences", lambda p: p and p["key"])
            for trusted in ("/home/kim/Recordings", "/home/kim/Music/Live at the Harbour", "/home/kim/Videos"):
                trust(desktop, studio, trusted)
            desktop.move(1, 1)
            window, _ = desktop.find(studio.process, studio.preferences["rect"])
            take(desktop, desktop.client_area(window), f"preferences-{appearance}.png")
    with Desktop(1800, 900) as desktop:
        studio = prepared(desktop, file, "--appearance", "light", environment={"QT_SCALE_FACTOR": "2"})
        take(desktop, studio.last["views"]["splitSlider"]["rect"], "split-slider.png")
