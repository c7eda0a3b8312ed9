// SPDX-License-Identifier: MIT
#include "Button.h"

#include <ZRUIKitHeadless/System.h>

namespace zr::headless {

Size Button::naturalSize() const {
    const auto size = window->system.measure(title_, {});
    return {size.width + port::kUsualButtonPadding.width,
            size.ascent + size.descent + port::kUsualButtonPadding.height};
}

View::Press Button::press() { return enabled_ && pressMayGoOn() ? Press::untilRelease : Press::own; }

void Button::release() {
    if (enabled_) button_.peerPressed();
}

bool Button::key(const InputEvent& event) {
    if (event.keyCode != kKeyCodeSpace) return false;
    release();
    return true;
}

std::vector<std::string> Button::traits() const {
    return isDefault_ ? std::vector<std::string>{"default"} : std::vector<std::string>();
}

} // namespace zr::headless
