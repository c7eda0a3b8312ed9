// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSFont.h>
#include <AppKit/NSView.h>
#include <Base/Compiler.h>
#include <Foundation/Unretained.h>

namespace zr {

// A view that the user operates. It can be switched off, and sends its action to its target.
class ZR_EXPORT NSControl : public NSView {
public:
    ZR_CLASS(NSControl, NSView)

    bool initWithCoder(NSCoder& coder) override;

    bool isEnabled() const { return enabled_; }
    // Asks for drawing. A control that is switched off lets go of the keyboard.
    virtual void setEnabled(bool enabled);

    // Not retained. Without a target the action goes along the responder chain; without an action nothing is
    // sent. The log names an action that nobody takes.
    NSObject* target() const { return target_.lock().get(); }
    void setTarget(const Unretained<NSObject>& target);
    const SEL& action() const { return action_; }
    void setAction(const SEL& action) { action_ = action; }
    bool sendAction_to(const SEL& action, NSObject* target);

    const NSFont& font() const { return font_; }
    virtual void setFont(const NSFont& font); // asks for drawing
    // Takes the size that its contents need.
    virtual void sizeToFit() {}

protected:
    virtual void tellPeerEnabled() {}

private:
    std::weak_ptr<NSObject> target_;
    SEL action_;
    NSFont font_ = NSFont::systemFontOfSize(0);
    bool enabled_ = true;
    bool hasTarget_ = false;
};

} // namespace zr
