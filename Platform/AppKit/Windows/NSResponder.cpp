// SPDX-License-Identifier: MIT
#include "InstalledSystem.h"

#include <AppKit/NSResponder.h>
#include <Foundation/NSCoder.h>

namespace zr {

ZR_CLASS_TABLE(NSResponder)

bool NSResponder::initWithCoder(NSCoder&) { return init(); }

void NSResponder::setNextResponder(NSResponder* responder) { nextResponder_ = retained(responder); }

void NSResponder::passOn(void (NSResponder::*message)(const NSEvent&), const NSEvent& event) {
    if (const auto next = nextResponder_.lock())
        (next.get()->*message)(event);
    else if (auto* const installed = installedSystem())
        installed->eventWasTaken = false;
}

void NSResponder::mouseDown(const NSEvent& event) { passOn(&NSResponder::mouseDown, event); }
void NSResponder::mouseDragged(const NSEvent& event) { passOn(&NSResponder::mouseDragged, event); }
void NSResponder::mouseUp(const NSEvent& event) { passOn(&NSResponder::mouseUp, event); }
void NSResponder::rightMouseDown(const NSEvent& event) { passOn(&NSResponder::rightMouseDown, event); }
void NSResponder::rightMouseDragged(const NSEvent& event) { passOn(&NSResponder::rightMouseDragged, event); }
void NSResponder::rightMouseUp(const NSEvent& event) { passOn(&NSResponder::rightMouseUp, event); }
void NSResponder::otherMouseDown(const NSEvent& event) { passOn(&NSResponder::otherMouseDown, event); }
void NSResponder::otherMouseDragged(const NSEvent& event) { passOn(&NSResponder::otherMouseDragged, event); }
void NSResponder::otherMouseUp(const NSEvent& event) { passOn(&NSResponder::otherMouseUp, event); }
void NSResponder::scrollWheel(const NSEvent& event) { passOn(&NSResponder::scrollWheel, event); }
void NSResponder::keyDown(const NSEvent& event) { passOn(&NSResponder::keyDown, event); }
void NSResponder::keyUp(const NSEvent& event) { passOn(&NSResponder::keyUp, event); }

} // namespace zr
