// SPDX-License-Identifier: MIT
#include "QtEvents.h"

#include <array>
#include <utility>

namespace zr::qt {

namespace {

constexpr double kMillisecondsPerSecond = 1000;
constexpr double kNotch = 120; // of a wheel

// The Control key of a PC keyboard is what shortcuts are made with: it is Command.
std::uint32_t modifierFlags(Qt::KeyboardModifiers modifiers) {
    constexpr std::array<std::pair<Qt::KeyboardModifier, NSEventModifierFlags>, 5> table = {{
        {Qt::ShiftModifier, NSEventModifierFlagShift},
        {Qt::ControlModifier, NSEventModifierFlagCommand},
        {Qt::AltModifier, NSEventModifierFlagOption},
        {Qt::MetaModifier, NSEventModifierFlagControl},
        {Qt::KeypadModifier, NSEventModifierFlagNumericPad},
    }};
    std::uint32_t flags = 0;
    for (const auto& [theirs, ours] : table)
        if (modifiers.testFlag(theirs)) flags |= ours;
    return flags;
}

std::uint16_t keyCode(int key) {
    switch (key) {
    case Qt::Key_Return:
        return kKeyCodeReturn;
    case Qt::Key_Enter:
        return kKeyCodeKeypadEnter;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return kKeyCodeTab;
    case Qt::Key_Space:
        return kKeyCodeSpace;
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
        return kKeyCodeDelete;
    case Qt::Key_Escape:
        return kKeyCodeEscape;
    case Qt::Key_Home:
        return kKeyCodeHome;
    case Qt::Key_End:
        return kKeyCodeEnd;
    case Qt::Key_PageUp:
        return kKeyCodePageUp;
    case Qt::Key_PageDown:
        return kKeyCodePageDown;
    case Qt::Key_Left:
        return kKeyCodeLeft;
    case Qt::Key_Right:
        return kKeyCodeRight;
    case Qt::Key_Up:
        return kKeyCodeUp;
    case Qt::Key_Down:
        return kKeyCodeDown;
    default:
        return kKeyCodeUnknown;
    }
}

NSEventType pressType(Qt::MouseButton button) {
    if (button == Qt::LeftButton) return NSEventTypeLeftMouseDown;
    return button == Qt::RightButton ? NSEventTypeRightMouseDown : NSEventTypeOtherMouseDown;
}

NSEventType releaseType(Qt::MouseButton button) {
    if (button == Qt::LeftButton) return NSEventTypeLeftMouseUp;
    return button == Qt::RightButton ? NSEventTypeRightMouseUp : NSEventTypeOtherMouseUp;
}

NSEventType moveType(Qt::MouseButtons buttons) {
    if (buttons.testFlag(Qt::LeftButton)) return NSEventTypeLeftMouseDragged;
    if (buttons.testFlag(Qt::RightButton)) return NSEventTypeRightMouseDragged;
    return buttons ? NSEventTypeOtherMouseDragged : NSEventTypeMouseMoved;
}

} // namespace

std::optional<InputEvent> inputEvent(const QMouseEvent& event) {
    InputEvent result;
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        result.type = pressType(event.button());
        result.clickCount = 1;
        break;
    case QEvent::MouseButtonDblClick:
        result.type = pressType(event.button());
        result.clickCount = 2;
        break;
    case QEvent::MouseButtonRelease:
        result.type = releaseType(event.button());
        result.clickCount = 1;
        break;
    case QEvent::MouseMove:
        result.type = moveType(event.buttons());
        break;
    default:
        return std::nullopt;
    }
    result.modifierFlags = modifierFlags(event.modifiers());
    result.timestamp = static_cast<double>(event.timestamp()) / kMillisecondsPerSecond;
    return result;
}

InputEvent inputEvent(const QWheelEvent& event) {
    InputEvent result;
    result.type = NSEventTypeScrollWheel;
    result.modifierFlags = modifierFlags(event.modifiers());
    result.scrollingDeltaX = event.angleDelta().x() / kNotch;
    result.scrollingDeltaY = event.angleDelta().y() / kNotch;
    result.timestamp = static_cast<double>(event.timestamp()) / kMillisecondsPerSecond;
    return result;
}

InputEvent inputEvent(const QKeyEvent& event) {
    InputEvent result;
    result.type = event.type() == QEvent::KeyRelease ? NSEventTypeKeyUp : NSEventTypeKeyDown;
    result.modifierFlags = modifierFlags(event.modifiers());
    result.keyCode = keyCode(event.key());
    result.isARepeat = event.isAutoRepeat();
    result.timestamp = static_cast<double>(event.timestamp()) / kMillisecondsPerSecond;
    result.characters = event.text().toStdString();
    // Where Control or Alt made another character, or none, of the key.
    const bool printable = event.key() > 0x20 && event.key() < 0x7f;
    QString plain = printable ? QString(QChar(event.key())) : event.text();
    if (result.keyCode == kKeyCodeTab) plain = QLatin1Char('\t');
    if (!event.modifiers().testFlag(Qt::ShiftModifier)) plain = plain.toLower();
    result.charactersIgnoringModifiers = plain.toStdString();
    return result;
}

} // namespace zr::qt
