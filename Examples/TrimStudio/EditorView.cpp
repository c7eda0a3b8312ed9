// SPDX-License-Identifier: MIT
#include "EditorView.h"

#include <AppKit/NSFont.h>
#include <ZRUIKit/KitFoundation.h>

#include <algorithm>
#include <cmath>

namespace trimstudio {

using namespace zr;

ZR_CLASS_TABLE(ClipSlider)
ZR_CLASS_TABLE(PositionSlider)
ZR_CLASS_TABLE(EditorView)

namespace {

constexpr double kMargin = 20;
constexpr double kSpacing = 8;
constexpr double kLine = 20;
// Room for a handle on each side of the track, and above it. Odd, so that track and knob share their middle.
constexpr double kTrackInset = 28;
constexpr double kSliderHeight = 61;
constexpr double kPositionHeight = 23;
constexpr zr::NSSize kTimeField = {190, 24};

} // namespace

void ClipSlider::drawRect(const NSRect& dirty) {
    SplitSliderView::drawRect(dirty);
    if (didDraw_) didDraw_();
}

void PositionSlider::drawRect(const NSRect& dirty) {
    ProgressSliderView::drawRect(dirty);
    if (didDraw_) didDraw_();
}

void EditorView::keyDown(const NSEvent& event) {
    if (event.keyCode() == kKeyCodeSpace && togglePlaying_)
        togglePlaying_();
    else
        NSView::keyDown(event);
}

std::shared_ptr<NSButton> EditorView::addButton(const std::string& identifier, const std::string& title,
                                                const SEL& action) {
    auto button = NSButton::buttonWithTitle_target_action(title, nullptr, action);
    button->setIdentifier(identifier);
    button->setEnabled(false);
    addSubview(button);
    return button;
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

std::shared_ptr<SWTimeEditView> EditorView::addTimeField(const std::string& identifier) {
    auto field = make<SWTimeEditView>(NSRect{NSZeroPoint, kTimeField});
    field->setIdentifier(identifier);
    field->awakeFromNib();
    addSubview(field);
    return field;
}

bool EditorView::initWithFrame(const NSRect& frame) {
    if (!NSView::initWithFrame(frame)) return false;
    nameLabel_ = addLabel("nameLabel", NSFont::boldSystemFontOfSize(0), NSTextAlignmentLeft);
    lengthLabel_ = addLabel("lengthLabel", NSFont::systemFontOfSize(0), NSTextAlignmentRight);
    lengthLabel_->setTextColor(NSColor::secondaryLabelColor());

    positionSlider_ = make<PositionSlider>(NSZeroRect);
    positionSlider_->setIdentifier("progressSlider");
    positionSlider_->setSliderXOffset(kTrackInset);
    addSubview(positionSlider_);

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
    startField_ = addTimeField("startField");
    lengthField_ = addTimeField("lengthField");
    messageLabel_ = NSTextField::wrappingLabelWithString("");
    messageLabel_->setIdentifier("messageLabel");
    addSubview(messageLabel_);

    positionLabel_ = addLabel("positionLabel", times, NSTextAlignmentCenter);
    splitButton_ = addButton("splitButton", AppLocalizedString("Split…"), "split:");
    saveButton_ = addButton("saveButton", AppLocalizedString("Save Trimmed"), "saveTrimmed:");
    setEditing(false);
    return true;
}

// From the edges inwards; the waveform takes what is left.
void EditorView::layout() {
    const double width = std::max(0.0, bounds().size.width - 2 * kMargin);
    double top = bounds().size.height - kMargin;
    const double third = std::floor(width / 3);
    // The name gets what the length leaves.
    const double length = std::min(std::floor(width / 2), 260.0);
    nameLabel_->setFrame({{kMargin, top - kLine}, {std::max(0.0, width - length - kSpacing), kLine}});
    lengthLabel_->setFrame({{kMargin + width - length, top - kLine}, {length, kLine}});
    top -= kLine + kSpacing;

    double right = kMargin + width;
    double buttonHeight = 0;
    for (const auto& button : {saveButton_, splitButton_}) {
        button->sizeToFit();
        const NSSize size = button->frame().size;
        right -= size.width;
        button->setFrameOrigin({right, kMargin});
        right -= kSpacing;
        buttonHeight = std::max(buttonHeight, size.height);
    }
    // Two lines, for messages that name a long path.
    const double twoLines = 2 * kLine;
    messageLabel_->setFrame({{kMargin, kMargin + std::floor((buttonHeight - twoLines) / 2)},
                             {std::max(0.0, right - kSpacing - kMargin), twoLines}});
    double bottom = kMargin + buttonHeight + 2 * kSpacing;

    // Each under its label; the fields begin ten points within.
    startField_->setFrameOrigin({kMargin - 10, bottom});
    lengthField_->setFrameOrigin({std::floor(kMargin + (width - kTimeField.width) / 2), bottom});
    bottom += kTimeField.height + kSpacing / 2;
    startLabel_->setFrame({{kMargin, bottom}, {third, kLine}});
    clipLabel_->setFrame({{kMargin + third, bottom}, {width - 2 * third, kLine}});
    endLabel_->setFrame({{kMargin + width - third, bottom}, {third, kLine}});
    bottom += kLine;

    slider_->setFrame({{kMargin, bottom}, {width, kSliderHeight}});
    bottom += kSliderHeight + kSpacing;
    positionLabel_->setFrame({{kMargin, top - kLine}, {width, kLine}});
    top -= kLine;
    positionSlider_->setFrame({{kMargin, top - kPositionHeight}, {width, kPositionHeight}});
    top -= kPositionHeight;
    waveform_->setFrame({{kMargin, bottom}, {width, std::max(0.0, top - bottom)}});
}

void EditorView::setEditing(bool editing) {
    const std::vector<std::shared_ptr<NSView>> views = {waveform_,      slider_,     positionSlider_,
                                                        positionLabel_, startLabel_, clipLabel_,
                                                        endLabel_,      startField_, lengthField_};
    for (const auto& view : views) view->setHidden(!editing);
}

void EditorView::setMessage(const std::string& text, bool isError) {
    messageLabel_->setTextColor(isError ? NSColor::systemRedColor() : NSColor::secondaryLabelColor());
    messageLabel_->setStringValue(text);
}

} // namespace trimstudio
