// SPDX-License-Identifier: MIT
#pragma once

#include "HeldClient.h"
#include "ViewHost.h"
#include "WindowFocus.h"
#include "WindowFrame.h"
#include "WindowMouse.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <WindowSystem/Windows.h>

namespace zr {

// What the window system, the views and the window's parts see of it.
struct NSWindow::Client final
    : HeldClient<NSWindow, port::WindowClient, ViewHost, WindowFrame::Owner, WindowFocus::Owner> {
    using HeldClient::HeldClient;

    // The window system's
    bool peerEvent(const InputEvent& event) override {
        return entered([&] {
            return NSApplication::sharedApplication().deliver(self, NSEvent(event, self.contentSize().height));
        });
    }
    void peerContentResized(CGSize size) override {
        entered([&] { self.frame_->resized(size); });
    }
    void peerUpdate() override { entered(&NSWindow::update); }
    bool peerShouldClose() override { return entered(&NSWindow::shouldClose); }
    void peerClosed() override { entered(&NSWindow::wasClosed); }
    void peerKeyChanged(bool key) override { entered(&NSWindow::keyChanged, key); }
    void peerMoved() override {
        entered([&] { self.frame_->moved(); });
    }
    void peerBlocked() override { entered(&NSWindow::cancelTracking); }
    void peerGone() override { entered(&NSWindow::wentAway); }
    void peerShown() override { entered(&NSWindow::wasShown); }
    void peerHidden() override { entered(&NSWindow::wasHidden); }
    void peerRetitled(const std::string& title) override { self.title_ = title; }
    void peerFocusLeft() override {
        entered([&] { self.focus_->left(); });
    }

    // The views'
    NSWindow& window() override { return self; }
    void scheduleUpdate() override { self.scheduleUpdate(); }
    void contentLeaves() override {
        holding([&] { self.setContentView(nullptr); });
    }
    void viewWillLeave(NSView& view) override {
        holding([&] {
            self.focus_->viewLeaves(view);
            if (self.mouse_->viewLeaves(view)) self.cancelTracking();
        });
    }
    bool mayTakeFocus(NSView& view) override {
        return holding([&] { return self.closing_ || self.focus_->take(view); });
    }
    void focusConfirmed(NSView& view) override {
        holding([&] {
            if (!self.closing_) self.focus_->confirm(view);
        });
    }

    // The parts'
    port::WindowPeer* peer() override { return self.peer_.get(); }
    double usualInset() override { return self.usualInset(); }
    void frameMoved() override { self.didMove(); }
    void contentResized() override { self.didResize(); }
    NSResponder& asResponder() override { return self; }
    NSView& content() override { return *self.contentView_; }
    bool isHere(const NSView& view) override { return view.host_ == this; }
    void giveKeyboard(NSView& view) override {
        if (view.peer_) view.peer_->focus();
    }
};

} // namespace zr
