// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Controls.h>
#include <ZRUIKitHeadless/View.h>

namespace zr::headless {

template <class Kind>
class LabelOf : public PeerOf<Kind> {
public:
    LabelOf(port::ViewPeer& superview, port::ViewClient& viewClient, const typename Kind::Parts&)
        : PeerOf<Kind>(superview, viewClient) {}

    void setText(const std::string& text) override { text_ = text; }
    void setWraps(bool) override { this->dirty = true; }
    void setAppearance(const FontDescription&, const Colour&, NSTextAlignment) override { this->dirty = true; }

    std::string text() const override { return text_; }

private:
    std::string text_;
};

class Label final : public LabelOf<port::LabelPeer> {
public:
    using LabelOf::LabelOf;
};

class ScrollingText final : public LabelOf<port::ScrollingTextPeer> {
public:
    using LabelOf::LabelOf;
    std::vector<std::string> traits() const override { return {"scrolls"}; }
};

} // namespace zr::headless
