// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Controls.h>
#include <ZRUIKitHeadless/View.h>

namespace zr::headless {

class TextField final : public PeerOf<port::TextFieldPeer> {
public:
    TextField(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts& parts)
        : PeerOf(superview, viewClient), field_(parts.field) {}

    void setText(const std::string& text) override { text_ = text; }
    void setLook(const port::TextFieldLook& look) override;
    void setEditing(bool editable, bool selectable) override;
    void setEnabled(bool enabled) override { enabled_ = enabled; }
    void selectText() override { allSelected_ = true; }

    Press press() override;
    bool key(const InputEvent& event) override;
    std::string text() const override { return text_; }
    std::vector<std::string> traits() const override;

private:
    void type(const InputEvent& event);

    port::TextFieldClient& field_;
    port::TextFieldLook look_;
    std::string text_;
    bool enabled_ = true;
    bool editable_ = false;
    bool selectable_ = false;
    bool allSelected_ = false;
};

} // namespace zr::headless
