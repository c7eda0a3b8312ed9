#include "EditorView.h"

#include <AppKit/NSFont.h>

#include <algorithm>
#include <cmath>

namespace trimstudio {

using namespace zr;

ZR_CLASS_TABLE(ClipSlider)
ZR_CLASS_TABLE(EditorView)

namespace {

constexpr double kMargin = 20;
constexpr double kSpacing = 8;
constexpr double kLine = 20;
// Room for a handle on each side of the track, and above it. Odd, so that track and knob share their middle.
constexpr double kTrackInset = 28;
constexpr double kSliderHeight = 61;

} // namespace

void ClipSlider::drawRect(const NSRect& dirty) {
    SplitSliderView::drawRect(dirty);
    if (didDraw_) didDraw_();
}

std::shared_ptr<NSTextField> EditorView::addLabel(const std::string& identifier, const NSFont& font,
                                                  NSTextAlignment alignment) {
    auto label = NSTextField::labelWithString("");
    label->setIdentifier(identifier);
    label->setFont(font);
    label->setAlignment(alignment);
    addSubview(label);
    return label;
}

bool EditorView::initWithFrame(const NSRect& frame) {
    if (!NSView::initWithFrame(frame)) return false;
    nameLabel_ = addLabel("nameLabel", NSFont::boldSystemFontOfSize(0), NSTextAlignmentLeft);
    lengthLabel_ = addLabel("lengthLabel", NSFont::systemFontOfSize(0), NSTextAlignmentRight);
    lengthLabel_->setTextColor(NSColor::secondaryLabelColor());

    waveform_ = make<WaveformView>(NSZeroRect);
    waveform_->setIdentifier("waveform");
    waveform_->setInset(kTrackInset);
    addSubview(waveform_);

    slider_ = make<ClipSlider>(NSZeroRect);
    slider_->setIdentifier("splitSlider");
    slider_->setSliderXOffset(kTrackInset);
    addSubview(slider_);

    const auto times = NSFont::monospacedDigitSystemFontOfSize(0);
    startLabel_ = addLabel("startLabel", times, NSTextAlignmentLeft);
    clipLabel_ = addLabel("clipLabel", times, NSTextAlignmentCenter);
    endLabel_ = addLabel("endLabel", times, NSTextAlignmentRight);
    messageLabel_ = NSTextField::wrappingLabelWithString("");
    messageLabel_->setIdentifier("messageLabel");
    addSubview(messageLabel_);

    saveButton_ = make<NSButton>();
    saveButton_->setIdentifier("saveButton");
    saveButton_->setTitle("Save Trimmed");
    saveButton_->setAction("saveTrimmed:");
    saveButton_->setEnabled(false);
    addSubview(saveButton_);
    setEditing(false);
    return true;
}

// From the edges inwards; the waveform takes what is left.
void EditorView::layout() {
    const double width = std::max(0.0, bounds().size.width - 2 * kMargin);
    double top = bounds().size.height - kMargin;
    const double half = std::floor(width / 2);
    nameLabel_->setFrame({{kMargin, top - kLine}, {width - half, kLine}});
    lengthLabel_->setFrame({{kMargin + width - half, top - kLine}, {half, kLine}});
    top -= kLine + kSpacing;

    saveButton_->sizeToFit();
    const NSSize button = saveButton_->frame().size;
    double bottom = kMargin;
    saveButton_->setFrameOrigin({kMargin + width - button.width, bottom});
    // Two lines, for messages that name a long path.
    const double twoLines = 2 * kLine;
    messageLabel_->setFrame({{kMargin, bottom + std::floor((button.height - twoLines) / 2)},
                             {std::max(0.0, width - button.width - 2 * kSpacing), twoLines}});
    bottom += button.height + 2 * kSpacing;

    const double third = std::floor(width / 3);
    startLabel_->setFrame({{kMargin, bottom}, {third, kLine}});
    clipLabel_->setFrame({{kMargin + third, bottom}, {width - 2 * third, kLine}});
    endLabel_->setFrame({{kMargin + width - third, bottom}, {third, kLine}});
    bottom += kLine;

    slider_->setFrame({{kMargin, bottom}, {width, kSliderHeight}});
    bottom += kSliderHeight + kSpacing;
    waveform_->setFrame({{kMargin, bottom}, {width, std::max(0.0, top - bottom)}});
}

void EditorView::setEditing(bool editing) {
    for (NSView* view : {static_cast<NSView*>(waveform_.get()), static_cast<NSView*>(slider_.get()),
                         static_cast<NSView*>(startLabel_.get()), static_cast<NSView*>(clipLabel_.get()),
                         static_cast<NSView*>(endLabel_.get())})
        view->setHidden(!editing);
}

void EditorView::setMessage(const std::string& text, bool isError) {
    messageLabel_->setTextColor(isError ? NSColor::systemRedColor() : NSColor::secondaryLabelColor());
    messageLabel_->setStringValue(text);
}

} // namespace trimstudio
