// SPDX-License-Identifier: MIT
#include <AppKit/NSApplication.h>
#include <AppKit/NSControl.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSCoder.h>
#include <Foundation/NSLog.h>

namespace zr {

ZR_CLASS_TABLE(NSControl, .outlets = {outletNamed<&NSControl::setTarget>("target")},
               .attributes = {attributeNamed<&NSControl::setAction>("action"),
                              attributeNamed<&NSControl::setEnabled>("enabled")})

bool NSControl::initWithCoder(NSCoder& coder) {
    if (!NSView::initWithCoder(coder)) return false;
    enabled_ = coder.decodeBoolForKey("NSEnabled").value_or(true);
    if (auto font = coder.decodeFontForKey("NSFont")) font_ = NSFont(std::move(*font));
    return true;
}

void NSControl::setEnabled(bool enabled) {
    const auto held = retained(this);
    enabled_ = enabled;
    setNeedsDisplay(true);
    if (!enabled && window() && window()->firstResponder() == this) window()->makeFirstResponder(nullptr);
    tellPeerEnabled(); // what holds now: whoever had a last word may have changed it
}

void NSControl::setTarget(const Unretained<NSObject>& target) {
    target_ = target.givenTo("-[NSControl setTarget:]");
    hasTarget_ = target.isGiven();
}

bool NSControl::sendAction_to(const SEL& action, NSObject* target) {
    if (action.empty()) return false;
    const auto held = retained(this);
    // A target that is gone takes nothing, and the chain is not asked in its place.
    const bool gone = !target && hasTarget_ && target_.expired();
    if (!gone && NSApplication::sharedApplication().sendAction_to_from(action, target, this)) return true;
    NSLog("Nobody takes %@ of %@: %@", action, held,
          target ? stringWithFormat("its target, %@, does not have it", target)
          : gone ? "its target is gone"
                 : "nobody along the responder chain has it");
    return false;
}

void NSControl::setFont(const NSFont& font) {
    font_ = font;
    setNeedsDisplay(true);
}

} // namespace zr
