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
    std::optional<std::string> message;
};

// One JSON object on one line. Rectangles are [x, y, width, height] in pixels of the screen from its top left,
// times are in seconds. "window" is the window's content. Views that
// are hidden are left out.
std::string describe(const Description& facts, const EditorView& editor);

} // namespace trimstudio
