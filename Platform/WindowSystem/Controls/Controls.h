// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Font.h>
#include <WindowSystem/Windows.h>

#include <string>

namespace zr::port {

class LabelPeer : public virtual ViewPeer {
public:
    struct Parts {};
    virtual void setText(const std::string& text) = 0;
    virtual void setWraps(bool wraps) = 0; // lines at the width, instead of shortening the one there is
    virtual void setAppearance(const FontDescription& font, const Colour& colour,
                               NSTextAlignment alignment) = 0;
};

// Of many lines, with a bar to scroll it.
class ScrollingTextPeer : public LabelPeer {
public:
    struct Parts {};
};

struct TextFieldLook {
    FontDescription font{};
    Colour colour{};
    NSTextAlignment alignment = NSTextAlignmentLeft;
    Colour background{};
    bool drawsBackground = true;
    bool bezeled = true;
    bool showsFocus = true; // by a ring or the like
    bool operator==(const TextFieldLook&) const = default;
};

// What the user does in a field. The peer has changed its text already.
class TextFieldClient {
public:
    virtual ~TextFieldClient() = default;
    virtual void peerTextEdited(const std::string& text) = 0;
    virtual void peerReturn() = 0;
    virtual bool peerEscape() = 0; // false: the key is for somebody else
    virtual void peerTab(bool backwards) = 0;
};

class TextFieldPeer : public virtual ViewPeer {
public:
    struct Parts {
        TextFieldClient& field;
    };
    virtual void setText(const std::string& text) = 0;
    virtual void setLook(const TextFieldLook& look) = 0;
    virtual void setEditing(bool editable, bool selectable) = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual void selectText() = 0; // all of it
};

class ButtonClient {
public:
    virtual ~ButtonClient() = default;
    virtual void peerPressed() = 0; // clicked, or pressed by the keyboard
};

// Beside and above a button's title, both sides together; as it usually is, for sizes before there is a real
// one.
inline constexpr Size kUsualButtonPadding{32, 14};

class ButtonPeer : public virtual ViewPeer {
public:
    struct Parts {
        ButtonClient& button;
    };
    virtual void setTitle(const std::string& title) = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual void setDefault(bool isDefault) = 0; // the look of the button that Return presses
    virtual Size naturalSize() const = 0;
};

struct Progress {
    double fraction = 0; // 0 to 1
    bool indeterminate = false;
    bool running = false; // moves, where it is indeterminate
    bool visible = true;
    bool operator==(const Progress&) const = default;
};

// A bar.
class ProgressPeer : public virtual ViewPeer {
public:
    struct Parts {};
    virtual void setProgress(const Progress& progress) = 0;
};

// Something round.
class SpinnerPeer : public ProgressPeer {
public:
    struct Parts {};
};

using ControlMakers = Makers< //
    ButtonPeer,               //
    LabelPeer,                //
    ProgressPeer,             //
    ScrollingTextPeer,        //
    SpinnerPeer,              //
    TextFieldPeer>;

} // namespace zr::port
