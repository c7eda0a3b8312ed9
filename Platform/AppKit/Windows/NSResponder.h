// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSEvent.h>
#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

#include <memory>

namespace zr {

class NSCoder;

// An object that takes events and actions, or passes them on to its next responder. Main thread only.
class ZR_EXPORT NSResponder : public NSObject {
public:
    ZR_CLASS(NSResponder, NSObject)

    virtual bool initWithCoder(NSCoder& coder);

    // Not retained; null once the other is gone. A view's is its superview, the content view's its window,
    // unless set.
    NSResponder* nextResponder() const { return nextResponder_.lock().get(); }
    void setNextResponder(NSResponder* responder);

    virtual bool acceptsFirstResponder() const { return false; }
    virtual bool becomeFirstResponder() { return true; }
    virtual bool resignFirstResponder() { return true; }

    // Each hands the event on to the next responder; at the end of the chain it counts as not taken, and goes
    // back to whoever hosts the window's content.
    virtual void mouseDown(const NSEvent& event);
    virtual void mouseDragged(const NSEvent& event);
    virtual void mouseUp(const NSEvent& event);
    virtual void rightMouseDown(const NSEvent& event);
    virtual void rightMouseDragged(const NSEvent& event);
    virtual void rightMouseUp(const NSEvent& event);
    virtual void otherMouseDown(const NSEvent& event);
    virtual void otherMouseDragged(const NSEvent& event);
    virtual void otherMouseUp(const NSEvent& event);
    virtual void scrollWheel(const NSEvent& event);
    virtual void keyDown(const NSEvent& event);
    virtual void keyUp(const NSEvent& event);

private:
    void passOn(void (NSResponder::*message)(const NSEvent&), const NSEvent& event);

    std::weak_ptr<NSResponder> nextResponder_;
};

} // namespace zr
