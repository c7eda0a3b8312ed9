#!/usr/bin/env python3
"""Makes the pictures of the documentation. Arguments: the program, the folder for them."""

import os
import shutil
import subprocess
import sys
import tempfile
import time

from desktop import DEADLINE, Desktop, TrimStudio
from trimming import background_work_held

RECORDING = "/usr/share/sounds/freedesktop/stereo/alarm-clock-elapsed.oga"
program, folder = sys.argv[1:]


def prepared(desktop, file, *arguments, **options):
    """TrimStudio with the middle of the file chosen."""
    studio = TrimStudio(desktop, program, *arguments, "--", file, **options)
    studio.wait_until_ready()
    x, _, width, _ = studio.slider()["track"]
    studio.drag("leftHandle", x + width * 0.3)
    studio.drag("rightHandle", x + width * 0.8)
    end = studio.last["duration"] * 0.82
    studio.wait("the clip", lambda d: d["views"]["splitSlider"]["start"] > 1 and
                d["views"]["splitSlider"]["start"] + d["views"]["splitSlider"]["length"] < end)
    desktop.move(1, 1)
    return studio


def take(desktop, rect, name):
    x, y, width, height = (round(number) for number in rect)
    path = os.path.join(folder, name)
    desktop.screenshot(path)
    subprocess.run(["mogrify", "-crop", f"{width}x{height}+{x}+{y}", "+repage", "-strip", path], check=True, timeout=DEADLINE)


with tempfile.TemporaryDirectory(prefix="zruikit-pictures-") as media:
    file = os.path.join(media, "Alarm clock.oga")
    shutil.copy(RECORDING, file)
    for appearance in ("light", "dark"):
        with Desktop() as desktop:
            studio = prepared(desktop, file, "--appearance", appearance)
            take(desktop, studio.last["views"]["window"]["rect"], f"trimstudio-{appearance}.png")
            if appearance == "light":
                with background_work_held(studio.process):
                    studio.click("saveButton")
                    studio.wait("the sheet", lambda d: d["sheet"])
                    desktop.move(1, 1)
                    time.sleep(1)  # until it is painted, too
                    take(desktop, studio.last["views"]["window"]["rect"], "trimstudio-saving.png")
    with Desktop(1800, 900) as desktop:
        studio = prepared(desktop, file, "--appearance", "light", environment={"QT_SCALE_FACTOR": "2"})
        take(desktop, studio.last["views"]["splitSlider"]["rect"], "split-slider.png")
