// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Drawing.h>

#include <map>
#include <memory>
#include <string>
#include <utility>

namespace zr {

class NSBundle;
class NSImage;

// What drawing needs of the window system in use, and the pictures that are shared while it is.
struct DrawingSystem {
    port::Graphics& graphics;
    std::map<std::pair<const NSBundle*, std::string>, std::weak_ptr<NSImage>> images{};
};

// Null while none is installed.
DrawingSystem* drawingSystem();
void installDrawing(port::Graphics* graphics); // null: none any more

} // namespace zr
