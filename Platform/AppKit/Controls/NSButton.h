// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <Base/Compiler.h>

#include <string>

namespace zr {

namespace port {
class ButtonPeer;
}

// A push button, the window system's own. A click, or the keyboard, sends the action to the target.
class ZR_EXPORT NSButton : public NSControl {
public:
    ZR_CLASS(NSButton, NSControl)
    NSButton();
    ~NSButton() override;

    static std::shared_ptr<NSButton> buttonWithTitle_target_action(const std::string& title,
                                                                   const Unretained<NSObject>& target,
                                                                   const SEL& action);

    bool initWithCoder(NSCoder& coder) override;

    const std::string& title() const { return title_; }
    void setTitle(const std::string& title);
    // The key that presses the button wherever the keyboard is: "\r" makes it the default button. Empty for
    // none.
    const std::string& keyEquivalent() const { return keyEquivalent_; }
    void setKeyEquivalent(const std::string& characters);
    unsigned keyEquivalentModifierMask() const { return keyEquivalentModifierMask_; }
    void setKeyEquivalentModifierMask(unsigned mask) { keyEquivalentModifierMask_ = mask; }
    bool performKeyEquivalent(const NSEvent& event) override;
    // Of the host's choice.
    long tag() const { return tag_; }
    void setTag(long tag) { tag_ = tag; }
    bool acceptsFirstResponder() const override { return isEnabled(); }
    // As if the user had clicked it; does nothing while the button is switched off. An action too:
    // "performClick:".
    void performClick(NSObject* sender);
    // The window system's size for the title; without a window, a size from the measure of the text.
    void sizeToFit() override;

protected:
    std::unique_ptr<port::ViewPeer> makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                             port::ViewClient& client) override;
    void tellPeerEnabled() override;
    void peerWillGo() override { button_ = nullptr; }

private:
    struct Client;

    std::string title_;
    std::string keyEquivalent_;
    unsigned keyEquivalentModifierMask_ = 0;
    long tag_ = 0;
    std::unique_ptr<Client> buttonClient_;
    port::ButtonPeer* button_ = nullptr; // the peer, as what it is
};

} // namespace zr
