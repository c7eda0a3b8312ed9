// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Controls.h>
#include <ZRUIKitQt/PeerOf.h>

#include <QPlainTextEdit>

namespace zr::qt {

// Text on many lines, with a bar to scroll it. It has the keyboard for that alone, and is nobody's first
// responder.
class ScrollingTextWidget final : public QPlainTextEdit, public ViewsWidget {
public:
    ScrollingTextWidget(port::ViewPeer& superview, port::ViewClient& viewClient);
    ~ScrollingTextWidget() override { tellGone(); }
};

class ScrollingTextPeer final : public PeerOf<port::ScrollingTextPeer, ScrollingTextWidget> {
public:
    ScrollingTextPeer(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts&)
        : PeerOf(new ScrollingTextWidget(superview, viewClient)) {}
    void setText(const std::string& text) override;
    void setWraps(bool) override {}
    void setAppearance(const FontDescription& font, const Colour& colour, NSTextAlignment alignment) override;
};

} // namespace zr::qt
