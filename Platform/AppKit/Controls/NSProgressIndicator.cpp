// SPDX-License-Identifier: MIT
#include <AppKit/NSProgressIndicator.h>
#include <Foundation/NSCoder.h>
#include <WindowSystem/Controls.h>

#include <algorithm>

namespace zr {

ZR_CLASS_TABLE(NSProgressIndicator,
               .actions = {actionNamed<&NSProgressIndicator::startAnimation>("startAnimation:"),
                           actionNamed<&NSProgressIndicator::stopAnimation>("stopAnimation:")})

bool NSProgressIndicator::initWithCoder(NSCoder& coder) {
    if (!NSView::initWithCoder(coder)) return false;
    minValue_ = coder.decodeDoubleForKey("NSMinValue").value_or(0);
    maxValue_ = coder.decodeDoubleForKey("NSMaxValue").value_or(100);
    doubleValue_ = coder.decodeDoubleForKey("NSDoubleValue").value_or(0);
    indeterminate_ = coder.decodeBoolForKey("NSIndeterminate").value_or(true);
    displayedWhenStopped_ = coder.decodeBoolForKey("NSDisplayedWhenStopped").value_or(true);
    style_ = coder.decodeDoubleForKey("NSProgressStyle") == NSProgressIndicatorStyleSpinning
                 ? NSProgressIndicatorStyleSpinning
                 : NSProgressIndicatorStyleBar;
    return true;
}

void NSProgressIndicator::setIndeterminate(bool indeterminate) {
    indeterminate_ = indeterminate;
    tellPeer();
}

void NSProgressIndicator::setMinValue(double value) {
    minValue_ = value;
    tellPeer();
}

void NSProgressIndicator::setMaxValue(double value) {
    maxValue_ = value;
    tellPeer();
}

void NSProgressIndicator::setDoubleValue(double value) {
    doubleValue_ = value;
    tellPeer();
}

void NSProgressIndicator::setDisplayedWhenStopped(bool displayed) {
    displayedWhenStopped_ = displayed;
    tellPeer();
}

void NSProgressIndicator::startAnimation(NSObject*) {
    running_ = true;
    tellPeer();
}

void NSProgressIndicator::stopAnimation(NSObject*) {
    running_ = false;
    tellPeer();
}

std::unique_ptr<port::ViewPeer>
NSProgressIndicator::makePeer(port::PeerFactory& factory, port::ViewPeer& parent, port::ViewClient& client) {
    std::unique_ptr<port::ProgressPeer> peer;
    if (style_ == NSProgressIndicatorStyleSpinning)
        peer = factory.make<port::SpinnerPeer>(parent, client);
    else
        peer = factory.make<port::ProgressPeer>(parent, client);
    progress_ = peer.get();
    tellPeer();
    return peer;
}

void NSProgressIndicator::tellPeer() {
    if (!progress_) return;
    // Written so that what is no number shows as nothing done.
    const double range = maxValue_ - minValue_;
    const double fraction = range > 0 ? (doubleValue_ - minValue_) / range : 0;
    progress_->setProgress({.fraction = fraction > 0 ? std::min(fraction, 1.0) : 0,
                            .indeterminate = indeterminate_,
                            .running = running_,
                            .visible = running_ || displayedWhenStopped_});
}

} // namespace zr
