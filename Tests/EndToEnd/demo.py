#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Shows TrimStudio where there is no display. Arguments: the program, a folder for pictures, files."""

import os
import pathlib
import sys

from desktop import Desktop, TrimStudio, media_length

program, pictures, *files = sys.argv[1:]
pathlib.Path(pictures).mkdir(parents=True, exist_ok=True)


def picture(desktop, name):
    path = os.path.abspath(os.path.join(pictures, name))
    desktop.screenshot(path)
    print(f"Picture: {path}")


for file in files:
    with Desktop() as desktop:
        studio = TrimStudio(desktop, program, "--", file)
        opened = studio.wait("the file", lambda d: d["message"] != "Opening…")
        if "splitSlider" not in opened["views"]:
            print(opened["message"], file=sys.stderr)
            sys.exit(1)
        opened = studio.wait_until_ready()
        picture(desktop, "1-opened.png")

        x, _, width, _ = studio.slider()["track"]
        studio.drag_along_track("leftHandle", x + width / 3, steps=20)
        clip = studio.wait("the button", lambda d: d["views"]["saveButton"]["enabled"])["views"]["splitSlider"]
        print(f"Chosen:  {clip['length']:.3f} s of {opened['duration']:.3f} s, from {clip['start']:.3f} s")
        picture(desktop, "2-dragged.png")

        studio.click("saveButton")
        saved = studio.wait("the saved file", lambda d: d["saved"])["saved"]
        picture(desktop, "3-saved.png")
        print(f"Saved:   {saved}")
        print(f"Length:  {media_length(saved):.3f} s, as ffprobe reads it")
        studio.close()
