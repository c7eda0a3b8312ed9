// SPDX-License-Identifier: MIT
#include "Headless.h"
#include "View.h"

#include <stdexcept>

namespace zr::headless {

bool Window::mouseDown(Point point, std::uint32_t modifierFlags, int clickCount) {
    return send({.type = NSEventTypeLeftMouseDown,
                 .location = point,
                 .modifierFlags = modifierFlags,
                 .clickCount = clickCount});
}
bool Window::mouseDragged(Point point, std::uint32_t modifierFlags) {
    return send({.type = NSEventTypeLeftMouseDragged, .location = point, .modifierFlags = modifierFlags});
}
bool Window::mouseUp(Point point, std::uint32_t modifierFlags, int clickCount) {
    return send({.type = NSEventTypeLeftMouseUp,
                 .location = point,
                 .modifierFlags = modifierFlags,
                 .clickCount = clickCount});
}
bool Window::scrollWheel(Point point, double deltaX, double deltaY) {
    return send({.type = NSEventTypeScrollWheel,
                 .location = point,
                 .scrollingDeltaX = deltaX,
                 .scrollingDeltaY = deltaY});
}
bool Window::keyDown(std::uint16_t keyCode, const std::string& characters, std::uint32_t modifierFlags) {
    return send({.type = NSEventTypeKeyDown,
                 .modifierFlags = modifierFlags,
                 .keyCode = keyCode,
                 .characters = characters,
                 .charactersIgnoringModifiers = characters});
}
void Window::type(std::string_view text) {
    while (!text.empty()) {
        std::size_t length = 1;
        while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) ++length;
        keyDown(kKeyCodeUnknown, std::string(text.substr(0, length)));
        text.remove_prefix(length);
    }
}
bool Window::keyUp(std::uint16_t keyCode, const std::string& characters, std::uint32_t modifierFlags) {
    return send({.type = NSEventTypeKeyUp,
                 .modifierFlags = modifierFlags,
                 .keyCode = keyCode,
                 .characters = characters,
                 .charactersIgnoringModifiers = characters});
}

// What is seen

const std::vector<std::string>& Window::drawing(std::string_view viewName) const {
    return named(viewName).lines;
}
int Window::drawCount(std::string_view viewName) const { return named(viewName).drawCount; }
std::string Window::labelText(std::string_view viewName) const { return named(viewName).text(); }
std::vector<std::string> Window::traits(std::string_view viewName) const { return named(viewName).traits(); }

std::optional<Rect> Window::frameInContent(std::string_view viewName) const {
    const View& view = named(viewName);
    if (!view.isShown()) return std::nullopt;
    return Rect{view.originInContent(), view.frame.size};
}

std::vector<std::string> Window::viewNames() const {
    std::vector<std::string> names;
    if (auto* const root = content()) root->walk([&](View& view) { names.push_back(view.name); });
    return names;
}

View& Window::named(std::string_view viewName) const {
    View* found = nullptr;
    if (auto* const root = content())
        root->walk([&](View& view) {
            if (!found && view.name == viewName) found = &view;
        });
    if (!found) throw std::out_of_range("no view of that name");
    return *found;
}

} // namespace zr::headless
