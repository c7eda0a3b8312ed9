// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Controls.h>
#include <ZRUIKitQt/PeerOf.h>

#include <QPushButton>

namespace zr::qt {

class ButtonWidget final : public WidgetOf<QPushButton> {
public:
    ButtonWidget(port::ViewPeer& superview, port::ViewClient& viewClient, port::ButtonClient& buttonClient);

protected:
    void mousePressEvent(QMouseEvent* event) override;
};

class ButtonPeer final : public PeerOf<port::ButtonPeer, ButtonWidget> {
public:
    ButtonPeer(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts& parts)
        : PeerOf(new ButtonWidget(superview, viewClient, parts.button)) {}
    void setTitle(const std::string& title) override;
    void setEnabled(bool enabled) override;
    void setDefault(bool isDefault) override;
    Size naturalSize() const override;
};

} // namespace zr::qt
