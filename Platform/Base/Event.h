// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Geometry.h>

#include <cstdint>
#include <string>

namespace zr {

enum NSEventType : std::uint32_t {
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeLeftMouseUp = 2,
    NSEventTypeRightMouseDown = 3,
    NSEventTypeRightMouseUp = 4,
    NSEventTypeMouseMoved = 5,
    NSEventTypeLeftMouseDragged = 6,
    NSEventTypeRightMouseDragged = 7,
    NSEventTypeKeyDown = 10,
    NSEventTypeKeyUp = 11,
    NSEventTypeScrollWheel = 22,
    NSEventTypeOtherMouseDown = 25,
    NSEventTypeOtherMouseUp = 26,
    NSEventTypeOtherMouseDragged = 27,
};

// Which types are wanted: bit n stands for type n.
using NSEventMask = std::uint64_t;
inline constexpr NSEventMask NSEventMaskLeftMouseUp = 1u << NSEventTypeLeftMouseUp;
inline constexpr NSEventMask NSEventMaskLeftMouseDragged = 1u << NSEventTypeLeftMouseDragged;

enum NSEventModifierFlags : std::uint32_t {
    NSEventModifierFlagCapsLock = 1u << 16,
    NSEventModifierFlagShift = 1u << 17,
    NSEventModifierFlagControl = 1u << 18,
    NSEventModifierFlagOption = 1u << 19,
    NSEventModifierFlagCommand = 1u << 20,
    NSEventModifierFlagNumericPad = 1u << 21,
    NSEventModifierFlagFunction = 1u << 23,
};

// Key codes name positions on the keyboard, not characters.
enum KeyCode : std::uint16_t {
    kKeyCodeReturn = 36,
    kKeyCodeTab = 48,
    kKeyCodeSpace = 49,
    kKeyCodeDelete = 51,
    kKeyCodeEscape = 53,
    kKeyCodeKeypadEnter = 76,
    kKeyCodeHome = 115,
    kKeyCodePageUp = 116,
    kKeyCodeEnd = 119,
    kKeyCodePageDown = 121,
    kKeyCodeLeft = 123,
    kKeyCodeRight = 124,
    kKeyCodeDown = 125,
    kKeyCodeUp = 126,
    kKeyCodeUnknown = 0xffff,
};

// Characters of keys that mean something by themselves.
inline constexpr const char* kReturnCharacter = "\r";
inline constexpr const char* kEscapeCharacter = "\x1b";

// What the user did, as it travels between a window system and a window.
struct InputEvent {
    NSEventType type = NSEventTypeMouseMoved;
    Point location{}; // points; at the port from the top left of the window's content, y down
    std::uint32_t modifierFlags = 0;
    std::uint16_t keyCode = kKeyCodeUnknown;
    bool isARepeat = false;
    int clickCount = 0;         // of presses and releases: 1, 2 for a double click, ...
    double scrollingDeltaX = 0; // lines; positive scrolls towards the left
    double scrollingDeltaY = 0; // lines; positive scrolls towards the top
    double timestamp = 0;       // seconds of a monotonic clock
    std::string characters{};   // of key events, UTF-8
    std::string charactersIgnoringModifiers{};
};

} // namespace zr
