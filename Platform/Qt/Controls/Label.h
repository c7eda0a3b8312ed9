// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Controls.h>
#include <ZRUIKitQt/PeerOf.h>

#include <QLabel>

namespace zr::qt {

// Text on one line, which is shortened where it does not fit, or on several.
class LabelWidget final : public WidgetOf<QLabel> {
public:
    LabelWidget(port::ViewPeer& superview, port::ViewClient& viewClient);
    void setColour(const Colour& colour);

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void applyColour();
    Colour colour_{SystemColour::label};
};

class LabelPeer final : public PeerOf<port::LabelPeer, LabelWidget> {
public:
    LabelPeer(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts&)
        : PeerOf(new LabelWidget(superview, viewClient)) {}
    void setText(const std::string& text) override;
    void setWraps(bool wraps) override;
    void setAppearance(const FontDescription& font, const Colour& colour, NSTextAlignment alignment) override;
};

} // namespace zr::qt
