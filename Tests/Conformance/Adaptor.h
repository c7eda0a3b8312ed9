// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSApplication.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSString.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zr::conformance {

enum class Button { left, right, other };
enum class Key { a, b, space, escape, up, down, tab };

struct Modifiers {
    unsigned flags = 0;
    int clicks = 1;
};

// One implementation of the port, with the user in front of it and the screen behind it. Each program of the
// suite brings one; the tests are the same. Windows are told apart by their titles; points are in window
// coordinates.
class Adaptor {
public:
    virtual ~Adaptor() = default;

    // Everything that is due now happens: input, layout, drawing, the main queue.
    virtual void settle() = 0;
    // Lets time pass until the condition holds; false when that takes too long.
    virtual bool passUntil(const std::function<bool()>& condition) = 0;
    // Each step comes in an event of its own while the program waits in the middle of one.
    virtual void during(std::vector<std::function<void()>> steps) = 0;

    virtual void press(NSWindow& window, NSPoint point, Button button = Button::left,
                       Modifiers modifiers = {}) = 0;
    virtual void drag(NSWindow& window, NSPoint point, Button button = Button::left) = 0;
    virtual void release(NSWindow& window, NSPoint point, Button button = Button::left) = 0;
    virtual void wheel(NSWindow& window, NSPoint point, double deltaY) = 0; // notches
    virtual void type(NSWindow& window, Key key) = 0;
    virtual void resize(NSWindow& window, NSSize size) = 0;
    // The items of a menu of the window's menu bar, as it is opened now; the bar's own without a title.
    virtual std::vector<std::string> openMenu(NSWindow& window, const std::string& title) = 0;
    virtual void move(NSWindow& window, NSPoint contentOriginFromTopLeftOfScreen) = 0;
    virtual void close(NSWindow& window) = 0;         // asks, as the user does
    virtual void takeAway(NSWindow& window) = 0;      // the real window is destroyed behind the kit's back
    virtual void blockByDialog(NSWindow& window) = 0; // somebody else's modal dialog opens
    virtual void setDesktopAppearance(Appearance appearance) = 0;

    // Where the real view stands, from the top left of the window's content; nothing when there is none.
    virtual std::optional<CGRect> place(NSWindow& window, const std::string& view) = 0;
    // What a view drew last as recorded lines, or nothing where drawing makes pixels.
    virtual std::optional<std::vector<std::string>> lines(NSWindow& window, const std::string& view) = 0;
    // The colour at a point of the window, or nothing where drawing makes lines.
    virtual std::optional<Colour> pixel(NSWindow& window, NSPoint point) = 0;
};

// Made by each program of the suite. With `mainBundle` as the application's folder.
std::unique_ptr<Adaptor> makeAdaptor();

// Skips a test for a reason that lies in the adaptor; the reasons of a run are printed as the list of
// differences.
#define ZR_DIFFERS(reason) GTEST_SKIP() << (reason)

// Writes down what happens to it.
class Probe : public NSView {
public:
    ZR_CLASS(Probe, NSView)
    bool isFlipped() const override { return flipped; }
    bool acceptsFirstResponder() const override { return acceptsFocus; }
    bool becomeFirstResponder() override {
        note("become");
        return true;
    }
    bool resignFirstResponder() override {
        note("resign");
        return resigns;
    }
    void drawRect(const NSRect& dirty) override {
        ++draws;
        lastDirty = dirty;
        if (traces) note("draw");
        if (painter) painter();
    }
    void layout() override {
        ++layouts;
        if (traces) note("layout");
        if (layouter) layouter();
    }
    void mouseDown(const NSEvent& event) override {
        mouse("down", event);
        if (onMouseDown) onMouseDown(event);
    }
    void mouseDragged(const NSEvent& event) override { mouse("drag", event); }
    void mouseUp(const NSEvent& event) override { mouse("up", event); }
    void rightMouseDown(const NSEvent& event) override { mouse("right down", event); }
    void rightMouseDragged(const NSEvent& event) override { mouse("right drag", event); }
    void rightMouseUp(const NSEvent& event) override { mouse("right up", event); }
    void otherMouseDown(const NSEvent& event) override { mouse("other down", event); }
    void otherMouseUp(const NSEvent& event) override { mouse("other up", event); }
    void scrollWheel(const NSEvent& event) override { mouse("wheel", event); }
    void keyDown(const NSEvent& event) override { note("key " + event.characters()); }
    void viewDidChangeEffectiveAppearance() override { note("appearance"); }

    bool flipped = false;
    bool acceptsFocus = false;
    bool resigns = true;
    bool takesMouse = true;
    bool traces = false; // layout and drawing, too
    int draws = 0;
    int layouts = 0;
    NSRect lastDirty;
    std::function<void()> painter, layouter;
    std::function<void(const NSEvent&)> onMouseDown;
    std::vector<std::string>* log = nullptr; // shared by the views of a test

private:
    void note(const std::string& what) {
        if (log) log->push_back(identifier() + " " + what);
    }
    void mouse(const char* what, const NSEvent& event) {
        if (!takesMouse) {
            if (std::string(what) == "wheel") return NSView::scrollWheel(event);
            return NSView::mouseDown(event);
        }
        const NSPoint point = convertPoint_fromView(event.locationInWindow(), nullptr);
        note(stringWithFormat("%s %g %g", what, point.x, point.y));
    }
};

class Conformance : public testing::Test {
protected:
    std::shared_ptr<NSWindow> makeWindow(const std::string& title, const std::shared_ptr<NSView>& content,
                                         NSSize size = {200, 100}) {
        auto window =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSRect{NSZeroPoint, size},
                           NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskResizable,
                           NSBackingStoreBuffered, false);
        window->setTitle(title);
        window->setContentView(content);
        return window;
    }
    void show(const std::shared_ptr<NSView>& content, NSSize size = {200, 100}) {
        window_ = makeWindow("window under test", content, size);
        window_->makeKeyAndOrderFront(nullptr);
        adaptor_->settle();
    }
    std::shared_ptr<Probe> probe(const char* name, const NSRect& frame, bool flipped = false) {
        auto view = make<Probe>(frame);
        view->setIdentifier(name);
        view->flipped = flipped;
        view->log = &log_;
        return view;
    }
    std::vector<std::string> taken() { return std::exchange(log_, {}); }

    // What a pass drew: the lines on the one kind of adaptor, and on the other the colours at points.
    void expectDrawing(const Probe& view, const std::vector<std::string>& lines,
                       const std::vector<std::pair<NSPoint, Colour>>& pixels) {
        adaptor_->settle();
        if (const auto recorded = adaptor_->lines(*window_, view.identifier())) {
            EXPECT_EQ(*recorded, lines);
            return;
        }
        for (const auto& [point, expected] : pixels) {
            const auto seen = adaptor_->pixel(*window_, view.convertPoint_toView(point, nullptr));
            ASSERT_TRUE(seen.has_value());
            constexpr double kTolerance = 3.0 / 255;
            EXPECT_NEAR(seen->red, expected.red, kTolerance) << "at " << point.x << " " << point.y;
            EXPECT_NEAR(seen->green, expected.green, kTolerance) << "at " << point.x << " " << point.y;
            EXPECT_NEAR(seen->blue, expected.blue, kTolerance) << "at " << point.x << " " << point.y;
        }
    }
    // The colour of a window where nothing draws; black where drawing makes lines.
    Colour background() {
        if (!window_) return {};
        const NSSize size = window_->contentSize();
        return adaptor_->pixel(*window_, {size.width - 0.5, 0.5}).value_or(Colour{});
    }

    std::vector<std::string> log_; // goes last: views that are still shown write to it
    std::unique_ptr<Adaptor> adaptor_ = makeAdaptor();
    std::shared_ptr<NSWindow> window_;
};

// Painted over what is below.
inline Colour over(const Colour& top, const Colour& below) {
    const auto mix = [&](double a, double b) { return a * top.alpha + b * (1 - top.alpha); };
    return {SystemColour::none, mix(top.red, below.red), mix(top.green, below.green), mix(top.blue, below.blue),
            1};
}

} // namespace zr::conformance
