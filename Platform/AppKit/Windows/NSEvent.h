// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Base/Event.h>

#include <utility>

namespace zr {

// What the user did. A value. Locations are in window coordinates: points, origin at the lower left of the
// window's content, y up.
class ZR_EXPORT NSEvent {
public:
    // `event` is y-down, from the top left of a content of that height.
    NSEvent(InputEvent event, double contentHeight);
    explicit NSEvent(InputEvent inWindowCoordinates) : event_(std::move(inWindowCoordinates)) {}

    NSEventType type() const { return event_.type; }
    NSPoint locationInWindow() const { return event_.location; }
    std::uint32_t modifierFlags() const { return event_.modifierFlags; }
    int clickCount() const { return event_.clickCount; }
    double scrollingDeltaX() const { return event_.scrollingDeltaX; } // lines
    double scrollingDeltaY() const { return event_.scrollingDeltaY; }
    double timestamp() const { return event_.timestamp; } // seconds of a monotonic clock
    std::uint16_t keyCode() const { return event_.keyCode; }
    bool isARepeat() const { return event_.isARepeat; }
    const std::string& characters() const { return event_.characters; }
    const std::string& charactersIgnoringModifiers() const { return event_.charactersIgnoringModifiers; }

private:
    InputEvent event_;
};

} // namespace zr
