// SPDX-License-Identifier: MIT
#pragma once

#include "EditorView.h"

#include <optional>
#include <string>

namespace trimstudio {

// What a window shows and where, for programs that drive it from outside.
struct Description {
    std::string file;
    double duration = 0; // seconds
    std::optional<std::string> saved;
    std::optional<std::string> message{};
    bool restoring = false;        // the folders that the user trusts
    zr::NSWindow* sheet = nullptr; // over this window
    zr::NSWindow* alert = nullptr; // over all of them
};

// One JSON object on one line. Rectangles are [x, y, width, height] in pixels of the screen from its top left,
// times are in seconds. "window" is the window's content. Views that are hidden are left out. "sheet" and
// "alert" are null or what such a window shows: its size, whether it has the keyboard, its texts, its progress,
// the rows of its table and its buttons, whose rectangles count from the top left of its content.
std::string describe(const Description& facts, const EditorView& editor);

// The same of the preferences window, under "preferences": null while it is closed, else the place of its
// content, its title, the pane that it shows, and what "sheet" tells of such a window.
std::string describePreferences(const zr::NSWindow& window, const std::string& pane);

} // namespace trimstudio
