// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSApplication.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSString.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zr::test {

// Writes down what happens to it.
class Probe : public NSView {
public:
    ZR_CLASS(Probe, NSView)
    bool isFlipped() const override { return flipped; }
    bool acceptsFirstResponder() const override { return acceptsFocus; }
    bool becomeFirstResponder() override {
        log.push_back("become");
        return becomes;
    }
    bool resignFirstResponder() override {
        log.push_back("resign");
        return resigns;
    }
    void drawRect(const NSRect& dirty) override {
        ++draws;
        lastDirty = dirty;
        if (painter) painter();
    }
    void layout() override {
        ++layouts;
        if (layouter) layouter();
    }
    void mouseDown(const NSEvent& event) override {
        note("down", event);
        if (passesOn) NSView::mouseDown(event);
    }
    void mouseDragged(const NSEvent& event) override {
        note("drag", event);
        if (passesOn) NSView::mouseDragged(event);
    }
    void mouseUp(const NSEvent& event) override {
        note("up", event);
        if (passesOn) NSView::mouseUp(event);
    }
    void scrollWheel(const NSEvent& event) override {
        note("wheel", event);
        if (passesOn) NSView::scrollWheel(event);
    }
    void keyDown(const NSEvent& event) override {
        note("key", event);
        if (passesOn) NSView::keyDown(event);
    }
    void viewDidMoveToWindow() override { log.push_back(window() ? "in window" : "no window"); }
    void viewDidChangeEffectiveAppearance() override { log.push_back("appearance"); }

    std::vector<std::string> taken() { return std::exchange(log, {}); }

    bool flipped = false;
    bool acceptsFocus = false;
    bool becomes = true;
    bool resigns = true;
    bool passesOn = false;
    int draws = 0;
    int layouts = 0;
    NSRect lastDirty;
    std::function<void()> painter, layouter, onMouseDown;
    std::vector<std::string> log;

private:
    void note(const char* what, const NSEvent& event) {
        const NSPoint point = convertPoint_fromView(event.locationInWindow(), nullptr);
        log.push_back(stringWithFormat("%s %g %g", what, point.x, point.y));
        if (onMouseDown && std::string(what) == "down") onMouseDown();
    }
};

class WindowTest : public testing::Test {
protected:
    void show(const std::shared_ptr<NSView>& content, NSSize size = {200, 100}) {
        window_ = makeWindow(content, size);
        window_->makeKeyAndOrderFront(nullptr);
        platform_.display();
        user_ = platform_.windows().back();
    }
    static std::shared_ptr<NSWindow> makeWindow(const std::shared_ptr<NSView>& content,
                                                NSSize size = {200, 100}) {
        auto window =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSRect{NSZeroPoint, size},
                           NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskResizable,
                           NSBackingStoreBuffered, false);
        window->setContentView(content);
        return window;
    }
    static std::shared_ptr<Probe> probe(const char* name, const NSRect& frame, bool flipped = false) {
        auto view = make<Probe>(frame);
        view->setIdentifier(name);
        view->flipped = flipped;
        return view;
    }

    headless::Platform platform_;
    std::shared_ptr<NSWindow> window_;
    headless::Window* user_ = nullptr;
};

} // namespace zr::test
