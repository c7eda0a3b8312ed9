// SPDX-License-Identifier: MIT
#include "Loops.h"
#include "System.h"

#include <utility>

namespace zr::headless {

System::System(Options given)
    : options(std::move(given)), queues(std::make_shared<Queues>(options.workerThread)) {}

TextSize System::measure(std::string_view line, const FontDescription& font) {
    // Every character is half as wide as the font is high; those beyond the alphabets are as wide as high.
    double width = 0;
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        if ((byte & 0xC0) != 0x80) width += byte >= 0xE2 ? font.size : font.size * 0.5;
    }
    return {width, font.size * 0.75, font.size * 0.25};
}

std::unique_ptr<port::WindowPeer> System::makeWindow(port::WindowClient& client, Size contentSize,
                                                     port::WindowStyle style) {
    return std::make_unique<RealWindow>(*this, client, contentSize, style);
}

std::unique_ptr<port::ViewPeer> System::makeContentView(port::WindowPeer& window, port::ViewClient& client) {
    auto& owner = dynamic_cast<RealWindow&>(window);
    auto peer = std::make_unique<PlainView>(owner, client);
    peer->frame = {NSZeroPoint, owner.contentSize()};
    return peer;
}

std::unique_ptr<port::ViewPeer> System::makeView(port::ViewPeer& parent, port::ViewClient& client) {
    return std::make_unique<PlainView>(parent, client);
}

std::vector<port::Screen> System::screens() const {
    const Rect whole{NSZeroPoint, options.screenSize};
    return {{whole, whole}};
}

void System::setAppearance(std::optional<Appearance> appearance) {
    const auto before = this->appearance();
    ownAppearance_ = appearance;
    tellAppearance(before);
}

void System::tellAppearance(Appearance before) {
    if (before != appearance()) application->appearanceChanged();
}

void System::run() {
    stopped = false;
    while (!stopped) {
        const auto ran = queues->runMain(queues->now()) + queues->runGlobal();
        display();
        if (ran > 0 || stopped) continue;
        const auto next = queues->nextOnMain();
        if (!next) return;
        queues->runMain(*next);
    }
}

std::unique_ptr<port::TrackingLoop> System::beginTracking() {
    stopped = false;
    return std::make_unique<Loop>(*this);
}

std::unique_ptr<port::TrackingLoop> System::beginModal(port::WindowPeer& window) {
    stopped = false;
    return std::make_unique<ModalLoop>(*this, dynamic_cast<RealWindow&>(window));
}

void System::windowLeaves(const RealWindow& window) {
    for (auto* const blocker : std::vector(blockers))
        if (std::ranges::find(blockers, blocker) != blockers.end() && blocker->isOver(window))
            blocker->windowLeaves();
}

void System::giveKeyBack() {
    for (auto window = windows.rbegin(); window != windows.rend(); ++window)
        if ((*window)->visible) return (*window)->setKey(true);
}

void System::display() {
    const auto copy = windows;
    for (auto* window : copy)
        if (has(window)) window->display();
}

} // namespace zr::headless
