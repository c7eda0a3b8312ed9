#include <AppKit/NSStringDrawing.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSCoder.h>
#include <WindowSystem/WindowSystem.h>

#include <cmath>

namespace zr {

ZR_CLASS_TABLE(NSTextField, .attributes = {attributeNamed<&NSTextField::setStringValue>("stringValue")})

std::shared_ptr<NSTextField> NSTextField::labelWithString(const std::string& text) {
    auto label = make<NSTextField>();
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
    return true;
}

void NSTextField::setStringValue(const std::string& text) {
    if (text == text_) return;
    text_ = text;
    setNeedsDisplay(true);
    if (label_) label_->setText(text_);
}

void NSTextField::setTextColor(const NSColor& colour) {
    if (colour == textColor_) return;
    textColor_ = colour;
    setNeedsDisplay(true);
    tellPeer();
}

void NSTextField::setAlignment(NSTextAlignment alignment) {
    alignment_ = alignment;
    setNeedsDisplay(true);
    tellPeer();
}

void NSTextField::setFont(const NSFont& font) {
    NSControl::setFont(font);
    tellPeer();
}

void NSTextField::sizeToFit() {
    const NSSize text = sizeWithAttributes(text_, {font(), textColor_});
    setFrameSize({std::ceil(text.width) + 4, std::ceil(text.height)});
}

std::unique_ptr<port::ViewPeer> NSTextField::makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                                      port::ViewClient& client) {
    auto peer = factory.makeLabel(parent, client);
    label_ = peer.get();
    tellPeer();
    label_->setWraps(wraps_);
    label_->setText(text_);
    return peer;
}

void NSTextField::tellPeer() {
    if (label_) label_->setAppearance(font().description(), textColor_.colour(), alignment_);
}

} // namespace zr
