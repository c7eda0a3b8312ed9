// SPDX-License-Identifier: MIT
#include <AppKit/HeldClient.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSStringDrawing.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSCoder.h>
#include <WindowSystem/Controls.h>

#include <cmath>

namespace zr {

ZR_CLASS_TABLE(NSButton, .actions = {actionNamed<&NSButton::performClick>("performClick:")},
               .attributes = {attributeNamed<&NSButton::setTitle>("title")})

struct NSButton::Client final : HeldClient<NSButton, port::ButtonClient> {
    using HeldClient::HeldClient;
    void peerPressed() override { entered(&NSButton::performClick, nullptr); }
};

NSButton::NSButton() = default;
NSButton::~NSButton() = default;

std::shared_ptr<NSButton> NSButton::buttonWithTitle_target_action(const std::string& title,
                                                                  const Unretained<NSObject>& target,
                                                                  const SEL& action) {
    auto button = make<NSButton>();
    button->setTitle(title);
    button->setTarget(target);
    button->setAction(action);
    button->sizeToFit();
    return button;
}

bool NSButton::initWithCoder(NSCoder& coder) {
    if (!NSControl::initWithCoder(coder)) return false;
    title_ = coder.decodeStringForKey("NSTitle").value_or("");
    keyEquivalent_ = coder.decodeStringForKey("NSKeyEquivalent").value_or("");
    return true;
}

void NSButton::setTitle(const std::string& title) {
    title_ = title;
    setNeedsDisplay(true);
    if (button_) button_->setTitle(title);
}

void NSButton::tellPeerEnabled() {
    if (button_) button_->setEnabled(isEnabled());
}

void NSButton::performClick(NSObject*) {
    if (!isEnabled()) return;
    const auto held = retained(this);
    const auto heldTarget = retained(target());
    sendAction_to(action(), heldTarget.get());
}

void NSButton::setKeyEquivalent(const std::string& characters) {
    keyEquivalent_ = characters;
    if (button_) button_->setDefault(keyEquivalent_ == kReturnCharacter);
}

bool NSButton::performKeyEquivalent(const NSEvent& event) {
    constexpr unsigned kShortcutFlags =
        NSEventModifierFlagCommand | NSEventModifierFlagOption | NSEventModifierFlagControl;
    // The Enter key of the number pad is as good as Return.
    const bool enters = keyEquivalent_ == kReturnCharacter && event.keyCode() == kKeyCodeKeypadEnter;
    if (keyEquivalent_.empty() || !isEnabled() || isHiddenOrHasHiddenAncestor() ||
        (event.charactersIgnoringModifiers() != keyEquivalent_ && !enters) ||
        (event.modifierFlags() & kShortcutFlags) != keyEquivalentModifierMask_)
        return false;
    performClick(nullptr);
    return true;
}

void NSButton::sizeToFit() {
    if (button_) {
        setFrameSize(button_->naturalSize());
        return;
    }
    const NSSize text = sizeWithAttributes(title_, {font(), NSColor::labelColor()});
    setFrameSize({std::ceil(text.width) + port::kUsualButtonPadding.width,
                  std::ceil(text.height) + port::kUsualButtonPadding.height});
}

std::unique_ptr<port::ViewPeer> NSButton::makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                                   port::ViewClient& client) {
    if (!buttonClient_) buttonClient_ = std::make_unique<Client>(*this);
    auto peer = factory.make<port::ButtonPeer>(parent, client, {*buttonClient_});
    button_ = peer.get();
    button_->setTitle(title_);
    button_->setEnabled(isEnabled());
    button_->setDefault(keyEquivalent_ == kReturnCharacter);
    return peer;
}

} // namespace zr
