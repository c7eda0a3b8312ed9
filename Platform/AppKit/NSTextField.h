#pragma once

#include <AppKit/NSColor.h>
#include <AppKit/NSControl.h>

#include <string>

namespace zr {

namespace port {
class LabelPeer;
}

// Text that the user reads: a label, the window system's own.
class NSTextField : public NSControl {
public:
    ZR_CLASS(NSTextField, NSControl)

    // One line, shortened where it does not fit.
    static std::shared_ptr<NSTextField> labelWithString(const std::string& text);
    // As many lines as there is room for.
    static std::shared_ptr<NSTextField> wrappingLabelWithString(const std::string& text);

    bool initWithCoder(NSCoder& coder) override;

    const std::string& stringValue() const { return text_; }
    void setStringValue(const std::string& text);
    const NSColor& textColor() const { return textColor_; }
    void setTextColor(const NSColor& colour);
    NSTextAlignment alignment() const { return alignment_; }
    void setAlignment(NSTextAlignment alignment);
    void setFont(const NSFont& font) override;
    void sizeToFit() override; // the text's size, whole points, and 4 points of width for the padding

protected:
    std::unique_ptr<port::ViewPeer> makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                             port::ViewClient& client) override;
    void peerWillGo() override { label_ = nullptr; }

private:
    void tellPeer();

    std::string text_;
    NSColor textColor_ = NSColor::labelColor();
    NSTextAlignment alignment_ = NSTextAlignmentLeft;
    bool wraps_ = false;
    port::LabelPeer* label_ = nullptr; // the peer, as what it is
};

} // namespace zr
