// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <ZRUIKitHeadless/Headless.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace zr::conformance {

namespace {

class HeadlessAdaptor final : public Adaptor {
public:
    void settle() override {
        platform_.runMainQueue();
        platform_.display();
    }
    bool passUntil(const std::function<bool()>& condition) override {
        for (int i = 0; i < 10'000 && !condition(); ++i) {
            platform_.runUntilIdle();
            if (!condition()) platform_.advance(0.01);
        }
        return condition();
    }
    void during(std::vector<std::function<void()>> steps) override {
        for (auto& step : steps) platform_.script(std::move(step));
    }
    void press(NSWindow& window, NSPoint point, Button button, Modifiers modifiers) override {
        send(window, point, button,
             {NSEventTypeLeftMouseDown, NSEventTypeRightMouseDown, NSEventTypeOtherMouseDown}, modifiers);
    }
    void drag(NSWindow& window, NSPoint point, Button button) override {
        send(window, point, button,
             {NSEventTypeLeftMouseDragged, NSEventTypeRightMouseDragged, NSEventTypeOtherMouseDragged}, {0, 0});
    }
    void release(NSWindow& window, NSPoint point, Button button) override {
        send(window, point, button, {NSEventTypeLeftMouseUp, NSEventTypeRightMouseUp, NSEventTypeOtherMouseUp},
             {});
    }
    void wheel(NSWindow& window, NSPoint point, double deltaY) override {
        real(window).scrollWheel(point, 0, deltaY);
    }
    void type(NSWindow& window, Key key) override {
        switch (key) {
        case Key::a:
            real(window).keyDown(0, "a");
            break;
        case Key::b:
            real(window).keyDown(11, "b");
            break;
        case Key::space:
            real(window).keyDown(kKeyCodeSpace, " ");
            break;
        case Key::escape:
            real(window).keyDown(kKeyCodeEscape, "\x1b");
            break;
        case Key::up:
            real(window).keyDown(kKeyCodeUp);
            break;
        case Key::down:
            real(window).keyDown(kKeyCodeDown);
            break;
        case Key::tab:
            real(window).keyDown(kKeyCodeTab, "\t");
            break;
        }
    }
    void resize(NSWindow& window, NSSize size) override { real(window).resizeByUser(size); }
    std::vector<std::string> openMenu(NSWindow& window, const std::string& title) override {
        auto lines = real(window).menuItems(title.empty() ? std::vector<std::string>() : std::vector{title});
        for (auto& line : lines) // without its key, and the mark of a submenu
            for (const char* const rest : {" [", " >"}) line.resize(std::min(line.find(rest), line.size()));
        return lines;
    }
    void move(NSWindow& window, NSPoint origin) override { real(window).moveByUser(origin); }
    void close(NSWindow& window) override { real(window).closeByUser(); }
    void takeAway(NSWindow& window) override { real(window).destroy(); }
    void blockByDialog(NSWindow& window) override { real(window).blockByModalDialog(); }
    void setDesktopAppearance(Appearance appearance) override { platform_.setDesktopAppearance(appearance); }

    std::optional<CGRect> place(NSWindow& window, const std::string& view) override {
        const auto names = real(window).viewNames();
        return std::ranges::find(names, view) == names.end() ? std::nullopt : real(window).frameInContent(view);
    }
    std::optional<std::vector<std::string>> lines(NSWindow& window, const std::string& view) override {
        return real(window).drawing(view);
    }
    std::optional<Colour> pixel(NSWindow&, NSPoint) override { return std::nullopt; }

private:
    headless::Window& real(NSWindow& window) {
        for (auto* const candidate : platform_.windows())
            if (candidate->title() == window.title()) return *candidate;
        throw std::logic_error("the window is not there");
    }
    void send(NSWindow& window, NSPoint point, Button button, std::array<NSEventType, 3> types,
              Modifiers modifiers) {
        InputEvent event;
        event.type = types.at(static_cast<std::size_t>(button));
        event.location = point;
        event.modifierFlags = modifiers.flags;
        event.clickCount = modifiers.clicks;
        real(window).send(event);
    }

    headless::Platform platform_;
};

} // namespace

std::unique_ptr<Adaptor> makeAdaptor() { return std::make_unique<HeadlessAdaptor>(); }
std::shared_ptr<void> prepare(int&, char**) { return nullptr; }
const char* adaptorName() { return "Headless"; }

} // namespace zr::conformance
