// SPDX-License-Identifier: MIT
#include "TimeText.h"
#include "WaveformView.h"

#include <AppKit/NSBezierPath.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSStringDrawing.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace trimstudio {

using namespace zr;

ZR_CLASS_TABLE(WaveformView)

namespace {

constexpr double kRulerHeight = 20;
constexpr double kTickHeight = 4;
constexpr double kCornerRadius = 6;
constexpr double kPadding = 6;        // above and below the loudest sound
constexpr double kClosestLabels = 90; // points
constexpr double kQuietest = 0.5;     // half the height, in points, of silence

NSColor clipColour() { return NSColor::colorWithDeviceRed_green_blue_alpha(0.118, 0.663, 0.337, 1.0); }

// The outline of the sound within the area: along the top to the right, back along the bottom.
NSBezierPath outline(const std::vector<float>& peaks, const NSRect& area) {
    auto path = NSBezierPath::bezierPath();
    const auto columns = static_cast<std::size_t>(std::max(1.0, area.size.width));
    const double middle = NSMidY(area), reach = area.size.height / 2;
    std::vector<NSPoint> below;
    below.reserve(columns);
    for (std::size_t column = 0; column <= columns; ++column) {
        const std::size_t first = column * peaks.size() / (columns + 1);
        const std::size_t last = std::max(first + 1, (column + 1) * peaks.size() / (columns + 1));
        float loudest = 0;
        for (std::size_t i = first; i < std::min(last, peaks.size()); ++i)
            loudest = std::max(loudest, peaks[i]);
        const double height = std::max(kQuietest, double(loudest) * reach);
        const double x = area.origin.x + area.size.width * double(column) / double(columns);
        if (column == 0)
            path.moveToPoint({x, middle + height});
        else
            path.lineToPoint({x, middle + height});
        below.push_back({x, middle - height});
    }
    for (std::size_t i = below.size(); i-- > 0;) path.lineToPoint(below[i]);
    path.closePath();
    return path;
}

// A step between labels that people count in, so that they do not come too close.
double rulerStep(double secondsPerPoint) {
    constexpr std::array steps = {0.1,  0.2,  0.5,   1.0,   2.0,   5.0,   10.0,   15.0,
                                  30.0, 60.0, 120.0, 300.0, 600.0, 900.0, 1800.0, 3600.0};
    for (const double step : steps)
        if (step / secondsPerPoint >= kClosestLabels) return step;
    return steps.back() * std::ceil(kClosestLabels * secondsPerPoint / steps.back());
}

std::string rulerText(double seconds, double step) {
    const std::string text = timeText(seconds);
    return step < 1 ? text.substr(0, text.size() - 2) : text.substr(0, text.size() - 4);
}

} // namespace

void WaveformView::setDuration(double seconds) {
    duration_ = seconds;
    setNeedsDisplay(true);
}

void WaveformView::setPeaks(std::vector<float> peaks) {
    peaks_ = std::move(peaks);
    setNeedsDisplay(true);
}

void WaveformView::setClip(double start, double length) {
    clipStart_ = start;
    clipLength_ = length;
    setNeedsDisplay(true);
}

void WaveformView::setNotice(const std::string& text) {
    notice_ = text;
    setNeedsDisplay(true);
}

NSRect WaveformView::area() const {
    return NSInsetRect({{0, kRulerHeight}, {bounds().size.width, bounds().size.height - kRulerHeight}}, inset_,
                       kPadding);
}

double WaveformView::xAt(double seconds) const {
    return inset_ + (bounds().size.width - 2 * inset_) * seconds / duration_;
}

void WaveformView::drawRect(const NSRect&) {
    NSColor::controlBackgroundColor().set();
    NSBezierPath::bezierPathWithRoundedRect_xRadius_yRadius(bounds(), kCornerRadius, kCornerRadius).fill();
    if (duration_ > 0) {
        drawSound();
        drawRuler();
    }
    drawNotice();
}

void WaveformView::drawSound() const {
    if (peaks_.empty()) return;
    const NSBezierPath sound = outline(peaks_, area());
    const double left = xAt(clipStart_), right = xAt(clipStart_ + clipLength_), height = bounds().size.height;
    const auto fillWithin = [&](double from, double to, const NSColor& colour) {
        if (!(to > from)) return;
        NSGraphicsContext::saveGraphicsState_();
        NSBezierPath::bezierPathWithRect({{from, 0}, {to - from, height}}).addClip();
        colour.set();
        sound.fill();
        NSGraphicsContext::restoreGraphicsState_();
    };
    fillWithin(0, left, NSColor::tertiaryLabelColor());
    fillWithin(left, right, clipColour());
    fillWithin(right, bounds().size.width, NSColor::tertiaryLabelColor());
}

void WaveformView::drawRuler() const {
    const double width = bounds().size.width - 2 * inset_;
    if (!(width > 0)) return;
    const double step = rulerStep(duration_ / width);
    const TextAttributes attributes = {NSFont::systemFontOfSize(NSFont::smallSystemFontSize()),
                                       NSColor::secondaryLabelColor()};
    for (int i = 0; step * i <= duration_; ++i) {
        const double x = std::round(xAt(step * i));
        NSColor::tertiaryLabelColor().set();
        NSBezierPath::fillRect({{x, kRulerHeight - kTickHeight}, {1, kTickHeight}});
        const std::string text = rulerText(step * i, step);
        const NSSize size = sizeWithAttributes(text, attributes);
        const double left =
            std::clamp(x - size.width / 2, 2.0, std::max(2.0, bounds().size.width - size.width - 2));
        drawAtPoint_withAttributes(text, {left, 1}, attributes);
    }
}

void WaveformView::drawNotice() const {
    if (notice_.empty()) return;
    const TextAttributes attributes = {NSFont::systemFontOfSize(0), NSColor::secondaryLabelColor()};
    const NSSize size = sizeWithAttributes(notice_, attributes);
    const NSRect inside = area();
    drawAtPoint_withAttributes(notice_, {NSMidX(inside) - size.width / 2, NSMidY(inside) - size.height / 2},
                               attributes);
}

} // namespace trimstudio
