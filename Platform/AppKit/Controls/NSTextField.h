// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSColor.h>
#include <AppKit/NSControl.h>
#include <Base/Compiler.h>
#include <Foundation/NSNotification.h>
#include <Foundation/Unretained.h>

#include <memory>
#include <optional>
#include <string>

namespace zr {

class NSTextField;

namespace port {
class LabelPeer;
class TextFieldPeer;
} // namespace port

// How an editing ended: the number under NSTextMovement in the notification.
enum NSTextMovement : int {
    NSOtherTextMovement = 0,
    NSReturnTextMovement = 16,
    NSTabTextMovement = 17,
    NSBacktabTextMovement = 18
};

enum NSFocusRingType : int { NSFocusRingTypeDefault = 0, NSFocusRingTypeNone = 1, NSFocusRingTypeExterior = 2 };

// Follows the editing of a field. The notifications have the field as their object. There is no field editor of
// its own here: where one is an argument, it is the field.
class NSTextFieldDelegate {
public:
    virtual ~NSTextFieldDelegate() = default;
    // Before the first change by the user; false refuses it.
    virtual std::optional<bool> control_textShouldBeginEditing(NSControl&, NSTextField& /*fieldEditor*/) {
        return std::nullopt;
    }
    // The field still has the text from before the first change.
    virtual void controlTextDidBeginEditing(const NSNotification&) {}
    virtual void controlTextDidChange(const NSNotification&) {} // after the first change, too
    // The editing is to end; sent also when nothing was typed. False keeps the field editing, with the text
    // that it then has. It is not asked again while it is being asked.
    virtual std::optional<bool> control_textShouldEndEditing(NSControl&, NSTextField& /*fieldEditor*/) {
        return std::nullopt;
    }
    virtual void controlTextDidEndEditing(const NSNotification&) {}
};

// Text that the user reads, or edits. Return, Tab, Shift-Tab, a press elsewhere that takes the keyboard, and
// the program end an editing, where the delegate lets them; Return then sends the action and the field stays
// first responder, with its text selected. Escape puts back the text from before the editing, and sends
// nothing; where nothing has been typed it goes on to the window. The setters send nothing.
class ZR_EXPORT NSTextField : public NSControl {
public:
    ZR_CLASS(NSTextField, NSControl)
    NSTextField();
    ~NSTextField() override;

    // Editable, with a bezel and a background.
    bool initWithFrame(const NSRect& frame) override;
    // A label: one line, shortened where it does not fit.
    static std::shared_ptr<NSTextField> labelWithString(const std::string& text);
    // As many lines as there is room for.
    static std::shared_ptr<NSTextField> wrappingLabelWithString(const std::string& text);

    bool initWithCoder(NSCoder& coder) override;

    // Not retained.
    std::shared_ptr<NSTextFieldDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const Unretained<NSTextFieldDelegate>& delegate) {
        delegate_ = delegate.givenTo("-[NSTextField setDelegate:]");
    }

    // During an editing, the text as edited so far. Setting it replaces that: the next key begins a new
    // editing.
    const std::string& stringValue() const { return text_; }
    void setStringValue(const std::string& text);
    // Numbers that the text begins with, 0 without one.
    double doubleValue() const;
    float floatValue() const;
    std::int32_t intValue() const;

    const NSColor& textColor() const { return textColor_; }
    void setTextColor(const NSColor& colour);
    NSTextAlignment alignment() const { return alignment_; }
    void setAlignment(NSTextAlignment alignment);
    void setFont(const NSFont& font) override;
    // An editable field is selectable, and one that is not selectable is not editable.
    bool isEditable() const { return editable_; }
    void setEditable(bool editable);
    bool isSelectable() const { return selectable_; }
    void setSelectable(bool selectable);
    bool drawsBackground() const { return drawsBackground_; }
    void setDrawsBackground(bool draws);
    const NSColor& backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(const NSColor& colour);
    bool isBezeled() const { return bezeled_; }
    void setBezeled(bool bezeled);
    NSFocusRingType focusRingType() const { return focusRingType_; }
    void setFocusRingType(NSFocusRingType type);
    // The user has changed the text, and the editing has not ended.
    bool isEditing() const { return editing_; }
    // Of a label of several lines: what does not fit can be scrolled to, with the wheel, a bar and the keys. To
    // be set before the label is shown.
    void setScrolls(bool scrolls) { scrolls_ = scrolls; }
    void selectText(NSObject* sender); // all of it; an action too: "selectText:"
    void sizeToFit() override;         // the text's size, whole points, and 4 points of width for the padding

    bool acceptsFirstResponder() const override { return isEnabled() && selectable_; }
    bool needsPanelToBecomeKey() const override { return editable_; }
    bool becomeFirstResponder() override;
    bool resignFirstResponder() override; // asks the delegate
    bool usesFieldEditor() const override { return true; }
    bool endEditingUnasked(bool afterRefusal) override;

protected:
    std::unique_ptr<port::ViewPeer> makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                             port::ViewClient& client) override;
    void tellPeerEnabled() override;
    void peerWillGo() override {
        label_ = nullptr;
        field_ = nullptr;
    }

private:
    struct Client;

    void tellPeer();
    void edited(const std::string& text);
    bool endEditing(NSTextMovement movement); // false when the delegate refused
    void didEndEditing(NSTextMovement movement);
    void returned();
    bool escaped();
    void tabbed(bool backwards);
    NSNotification notification(const char* name);

    std::weak_ptr<NSTextFieldDelegate> delegate_;
    std::unique_ptr<Client> fieldClient_;
    std::string text_;
    std::string textBefore_; // the editing
    NSColor textColor_ = NSColor::labelColor();
    NSColor backgroundColor_ = NSColor::controlBackgroundColor();
    NSTextAlignment alignment_ = NSTextAlignmentLeft;
    NSFocusRingType focusRingType_ = NSFocusRingTypeDefault;
    NSTextMovement movement_ = NSOtherTextMovement; // of the end that is under way
    bool isLabel_ = false;
    bool wraps_ = false;
    bool scrolls_ = false;
    bool editable_ = true;
    bool selectable_ = true;
    bool drawsBackground_ = true;
    bool bezeled_ = true;
    bool editing_ = false;
    bool asking_ = false;
    bool ending_ = false; // the delegate is being told
    // The peer, as what it is: one of the two.
    port::LabelPeer* label_ = nullptr;
    port::TextFieldPeer* field_ = nullptr;
};

} // namespace zr
