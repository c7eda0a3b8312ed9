// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Controls.h>
#include <ZRUIKitHeadless/View.h>

namespace zr::headless {

class Button final : public PeerOf<port::ButtonPeer> {
public:
    Button(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts& parts)
        : PeerOf(superview, viewClient), button_(parts.button) {}

    void setTitle(const std::string& title) override { title_ = title; }
    void setEnabled(bool enabled) override { enabled_ = enabled; }
    void setDefault(bool isDefault) override { isDefault_ = isDefault; }
    Size naturalSize() const override;

    Press press() override;
    void release() override;
    bool key(const InputEvent& event) override;
    std::string text() const override { return title_; }
    std::vector<std::string> traits() const override;

private:
    port::ButtonClient& button_;
    std::string title_;
    bool enabled_ = true;
    bool isDefault_ = false;
};

} // namespace zr::headless
