// SPDX-License-Identifier: MIT
#include "TextField.h"

#include <ZRUIKitHeadless/RealWindow.h>

#include <array>
#include <utility>

namespace zr::headless {

void TextField::setLook(const port::TextFieldLook& look) {
    look_ = look;
    dirty = true;
}

void TextField::setEditing(bool editable, bool selectable) {
    editable_ = editable;
    selectable_ = selectable;
}

View::Press TextField::press() {
    const std::weak_ptr<bool> here = alive;
    const bool goesOn = pressMayGoOn();
    // The caret goes to where the press was.
    if (goesOn && !here.expired() && window && window->focused == this) allSelected_ = false;
    return Press::own;
}

bool TextField::key(const InputEvent& event) {
    constexpr auto kShortcutFlags =
        NSEventModifierFlagCommand | NSEventModifierFlagOption | NSEventModifierFlagControl;
    switch (event.keyCode) {
    case kKeyCodeReturn:
    case kKeyCodeKeypadEnter:
        field_.peerReturn();
        return true;
    case kKeyCodeTab:
        field_.peerTab((event.modifierFlags & NSEventModifierFlagShift) != 0);
        return true;
    case kKeyCodeEscape:
        return field_.peerEscape();
    default:
        break;
    }
    if ((event.modifierFlags & kShortcutFlags) != 0) return false;
    if (enabled_ && editable_) type(event);
    return true;
}

void TextField::type(const InputEvent& event) {
    std::string text = std::exchange(allSelected_, false) ? std::string() : text_;
    if (event.keyCode == kKeyCodeDelete) {
        // The last character goes, with all its bytes; or what was selected has gone already.
        const bool selected = text.empty() && !text_.empty();
        while (!selected && !text.empty()) {
            const auto byte = static_cast<unsigned char>(text.back());
            text.pop_back();
            if ((byte & 0xC0) != 0x80) break;
        }
    } else {
        text += event.characters;
    }
    if (text == text_) return;
    text_ = text;
    field_.peerTextEdited(text);
}

std::vector<std::string> TextField::traits() const {
    const std::array<std::pair<bool, const char*>, 7> all = {{
        {!enabled_, "disabled"},
        {editable_, "editable"},
        {selectable_, "selectable"},
        {look_.bezeled, "bezel"},
        {look_.drawsBackground, "background"},
        {look_.showsFocus, "ring"},
        {allSelected_, "all selected"},
    }};
    std::vector<std::string> names;
    for (const auto& [holds, trait] : all)
        if (holds) names.emplace_back(trait);
    return names;
}

} // namespace zr::headless
