// SPDX-License-Identifier: MIT
#include <AppKit/HeldClient.h>
#include <AppKit/NSStringDrawing.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSCoder.h>
#include <Foundation/NSString.h>
#include <Foundation/ValueGuard.h>
#include <WindowSystem/Controls.h>

#include <cmath>
#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSTextField, .actions = {actionNamed<&NSTextField::selectText>("selectText:")},
               .outlets = {outletNamed<&NSTextField::setDelegate>("delegate")},
               .attributes = {attributeNamed<&NSTextField::setStringValue>("stringValue")})

struct NSTextField::Client final : HeldClient<NSTextField, port::TextFieldClient> {
    using HeldClient::HeldClient;
    void peerTextEdited(const std::string& text) override { entered(&NSTextField::edited, text); }
    void peerReturn() override { entered(&NSTextField::returned); }
    bool peerEscape() override { return entered(&NSTextField::escaped); }
    void peerTab(bool backwards) override { entered(&NSTextField::tabbed, backwards); }
};

NSTextField::NSTextField() = default;
NSTextField::~NSTextField() = default;

bool NSTextField::initWithFrame(const NSRect& frame) { return NSControl::initWithFrame(frame); }

std::shared_ptr<NSTextField> NSTextField::labelWithString(const std::string& text) {
    auto label = make<NSTextField>();
    label->isLabel_ = true;
    label->editable_ = label->selectable_ = label->drawsBackground_ = label->bezeled_ = false;
    label->setStringValue(text);
    label->sizeToFit();
    return label;
}

std::shared_ptr<NSTextField> NSTextField::wrappingLabelWithString(const std::string& text) {
    auto label = labelWithString(text);
    label->wraps_ = true;
    return label;
}

bool NSTextField::initWithCoder(NSCoder& coder) {
    if (!NSControl::initWithCoder(coder)) return false;
    text_ = coder.decodeStringForKey("NSContents").value_or("");
    if (const auto colour = coder.decodeColourForKey("NSTextColor")) textColor_ = NSColor(*colour);
    alignment_ =
        static_cast<NSTextAlignment>(coder.decodeDoubleForKey("NSAlignment").value_or(NSTextAlignmentLeft));
    wraps_ = coder.decodeDoubleForKey("NSLineBreakMode") == NSLineBreakByWordWrapping;
    if (const auto colour = coder.decodeColourForKey("NSBackgroundColor")) backgroundColor_ = NSColor(*colour);
    editable_ = coder.decodeBoolForKey("NSEditable").value_or(true);
    selectable_ = editable_ || coder.decodeBoolForKey("NSSelectable").value_or(true);
    drawsBackground_ = coder.decodeBoolForKey("NSDrawsBackground").value_or(true);
    bezeled_ = coder.decodeBoolForKey("NSBezeled").value_or(true);
    isLabel_ = !editable_ && !selectable_ && !drawsBackground_ && !bezeled_;
    return true;
}

void NSTextField::setStringValue(const std::string& text) {
    editing_ = false;
    if (text == text_) return;
    text_ = text;
    setNeedsDisplay(true);
    if (label_) label_->setText(text_);
    if (field_) field_->setText(text_);
}

double NSTextField::doubleValue() const { return zr::doubleValue(text_); }
float NSTextField::floatValue() const { return zr::floatValue(text_); }
std::int32_t NSTextField::intValue() const { return zr::intValue(text_); }

void NSTextField::setTextColor(const NSColor& colour) {
    textColor_ = colour;
    tellPeer();
}

void NSTextField::setAlignment(NSTextAlignment alignment) {
    alignment_ = alignment;
    tellPeer();
}

void NSTextField::setFont(const NSFont& font) {
    NSControl::setFont(font);
    tellPeer();
}

void NSTextField::setEditable(bool editable) {
    editable_ = editable;
    if (editable) selectable_ = true;
    tellPeer();
}

void NSTextField::setSelectable(bool selectable) {
    selectable_ = selectable;
    if (!selectable) editable_ = false;
    tellPeer();
}

void NSTextField::setDrawsBackground(bool draws) {
    drawsBackground_ = draws;
    tellPeer();
}

void NSTextField::setBackgroundColor(const NSColor& colour) {
    backgroundColor_ = colour;
    tellPeer();
}

void NSTextField::setBezeled(bool bezeled) {
    bezeled_ = bezeled;
    tellPeer();
}

void NSTextField::setFocusRingType(NSFocusRingType type) {
    focusRingType_ = type;
    tellPeer();
}

void NSTextField::tellPeerEnabled() {
    if (field_) field_->setEnabled(isEnabled());
}

void NSTextField::selectText(NSObject*) {
    if (field_ && selectable_) field_->selectText();
}

void NSTextField::sizeToFit() {
    const NSSize text = sizeWithAttributes(text_, {font(), textColor_});
    setFrameSize({std::ceil(text.width) + 4, std::ceil(text.height)});
}

bool NSTextField::becomeFirstResponder() {
    selectText(nullptr);
    return true;
}

bool NSTextField::resignFirstResponder() { return (!editable_ && !editing_) || endEditing(movement_); }

NSNotification NSTextField::notification(const char* name) { return {name, this}; }

void NSTextField::edited(const std::string& text) {
    const auto delegate = this->delegate();
    if (!editing_) {
        if (delegate && !delegate->control_textShouldBeginEditing(*this, *this).value_or(true)) {
            if (field_) field_->setText(text_);
            return;
        }
        textBefore_ = text_;
        editing_ = true;
        if (delegate)
            delegate->controlTextDidBeginEditing(notification("NSControlTextDidBeginEditingNotification"));
        if (!editing_) return; // the text has been set in the meantime
    }
    text_ = text;
    if (delegate) delegate->controlTextDidChange(notification("NSControlTextDidChangeNotification"));
}

bool NSTextField::endEditing(NSTextMovement movement) {
    if (ending_) return true;
    if (asking_) return false; // what is shown in the answer takes the keyboard
    const auto held = retained(this);
    const auto delegate = this->delegate();
    const bool ends = [&] {
        const ValueGuard asking(asking_, true);
        return !delegate || delegate->control_textShouldEndEditing(*this, *this).value_or(true);
    }();
    if (ends)
        didEndEditing(movement);
    else
        selectText(nullptr);
    return ends;
}

void NSTextField::didEndEditing(NSTextMovement movement) {
    const auto held = retained(this);
    editing_ = false;
    auto ended = notification("NSControlTextDidEndEditingNotification");
    ended.userInfo["NSTextMovement"] = double(movement);
    const ValueGuard ending(ending_, true);
    if (const auto delegate = this->delegate()) delegate->controlTextDidEndEditing(ended);
}

bool NSTextField::endEditingUnasked(bool afterRefusal) {
    const bool ends = afterRefusal ? editing_ && !asking_ : editable_ || editing_;
    if (ends) didEndEditing(NSOtherTextMovement);
    return ends;
}

void NSTextField::returned() {
    if (editable_ && !endEditing(NSReturnTextMovement)) return;
    if (!action().empty())
        sendAction_to(action(), target());
    else if (window())
        window()->performKeyEquivalentOf(kReturnCharacter);
    if (window() && window()->firstResponder() == this) selectText(nullptr);
}

bool NSTextField::escaped() {
    if (!editing_) return false;
    const std::string before = textBefore_;
    setStringValue(before);
    return true;
}

void NSTextField::tabbed(bool backwards) {
    if (!window()) return;
    const ValueGuard movement(movement_, backwards ? NSBacktabTextMovement : NSTabTextMovement);
    // The only one ends and goes on at once.
    if (!window()->selectKeyView(this, backwards) && endEditing(movement_)) selectText(nullptr);
}

std::unique_ptr<port::ViewPeer> NSTextField::makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                                      port::ViewClient& client) {
    if (isLabel_) {
        std::unique_ptr<port::LabelPeer> peer;
        if (scrolls_)
            peer = factory.make<port::ScrollingTextPeer>(parent, client);
        else
            peer = factory.make<port::LabelPeer>(parent, client);
        label_ = peer.get();
        tellPeer();
        label_->setWraps(wraps_);
        label_->setText(text_);
        return peer;
    }
    if (!fieldClient_) fieldClient_ = std::make_unique<Client>(*this);
    auto peer = factory.make<port::TextFieldPeer>(parent, client, {*fieldClient_});
    field_ = peer.get();
    tellPeer();
    field_->setText(text_);
    field_->setEnabled(isEnabled());
    return peer;
}

void NSTextField::tellPeer() {
    setNeedsDisplay(true);
    if (label_) label_->setAppearance(font().description(), textColor_.colour(), alignment_);
    if (!field_) return;
    field_->setLook({.font = font().description(),
                     .colour = textColor_.colour(),
                     .alignment = alignment_,
                     .background = backgroundColor_.colour(),
                     .drawsBackground = drawsBackground_,
                     .bezeled = bezeled_,
                     .showsFocus = focusRingType_ != NSFocusRingTypeNone});
    field_->setEditing(editable_, selectable_);
}

} // namespace zr
