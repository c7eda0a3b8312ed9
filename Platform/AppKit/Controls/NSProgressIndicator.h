// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>
#include <Base/Compiler.h>

#include <memory>

namespace zr {

namespace port {
class ProgressPeer;
}

enum NSProgressIndicatorStyle : unsigned {
    NSProgressIndicatorStyleBar = 0,
    NSProgressIndicatorStyleSpinning = 1
};

// How far a job has come, or, while that is not known, that it goes on. The window system's own bar; a spinning
// one is drawn. Main thread only.
class ZR_EXPORT NSProgressIndicator : public NSView {
public:
    ZR_CLASS(NSProgressIndicator, NSView)

    bool initWithFrame(const NSRect& frame) override { return NSView::initWithFrame(frame); }
    bool initWithCoder(NSCoder& coder) override;

    // Indeterminate at first; the range goes from 0 to 100.
    bool isIndeterminate() const { return indeterminate_; }
    void setIndeterminate(bool indeterminate);
    double minValue() const { return minValue_; }
    void setMinValue(double value);
    double maxValue() const { return maxValue_; }
    void setMaxValue(double value);
    // Kept as it was set; shown as the nearest value of the range.
    double doubleValue() const { return doubleValue_; }
    void setDoubleValue(double value);
    NSProgressIndicatorStyle style() const { return style_; } // bar at first; to be set before it is shown
    void setStyle(NSProgressIndicatorStyle style) { style_ = style; }
    // Whether an indicator that has been stopped stays visible; it does at first.
    bool isDisplayedWhenStopped() const { return displayedWhenStopped_; }
    void setDisplayedWhenStopped(bool displayed);
    void startAnimation(NSObject* sender);
    void stopAnimation(NSObject* sender);

protected:
    std::unique_ptr<port::ViewPeer> makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                             port::ViewClient& client) override;
    void peerWillGo() override { progress_ = nullptr; }

private:
    void tellPeer();

    double minValue_ = 0;
    double maxValue_ = 100;
    double doubleValue_ = 0;
    NSProgressIndicatorStyle style_ = NSProgressIndicatorStyleBar;
    bool indeterminate_ = true;
    bool displayedWhenStopped_ = true;
    bool running_ = false;
    port::ProgressPeer* progress_ = nullptr; // the peer, as what it is
};

} // namespace zr
