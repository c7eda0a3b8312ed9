// SPDX-License-Identifier: MIT
#pragma once

#include "WaveformView.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSTextField.h>
#include <ZRUIKit/ProgressSliderView.h>
#include <ZRUIKit/SWTimeEditView.h>
#include <ZRUIKit/SplitSliderView.h>

#include <functional>
#include <memory>
#include <string>

namespace trimstudio {

// A slider of the kit that tells when it has been drawn: only then are its parts where its rectangles say.
class ClipSlider : public zr::SplitSliderView {
public:
    ZR_CLASS(ClipSlider, zr::SplitSliderView)
    void setDidDraw(std::function<void()> didDraw) { didDraw_ = std::move(didDraw); }
    void drawRect(const zr::NSRect& dirty) override;

private:
    std::function<void()> didDraw_;
};

class PositionSlider : public zr::ProgressSliderView {
public:
    ZR_CLASS(PositionSlider, zr::ProgressSliderView)
    void setDidDraw(std::function<void()> didDraw) { didDraw_ = std::move(didDraw); }
    void drawRect(const zr::NSRect& dirty) override;

private:
    std::function<void()> didDraw_;
};

// The window's content: it makes the views and places them.
class EditorView : public zr::NSView {
public:
    ZR_CLASS(EditorView, zr::NSView)

    bool initWithFrame(const zr::NSRect& frame) override;
    void layout() override;
    bool acceptsFirstResponder() const override { return true; }
    void keyDown(const zr::NSEvent& event) override; // Space plays

    // What Space does.
    void setTogglePlaying(std::function<void()> toggle) { togglePlaying_ = std::move(toggle); }

    // Without a file there is nothing to edit: only the message remains.
    void setEditing(bool editing);
    void setMessage(const std::string& text, bool isError);

    const std::shared_ptr<zr::NSTextField>& nameLabel() const { return nameLabel_; }
    const std::shared_ptr<zr::NSTextField>& lengthLabel() const { return lengthLabel_; }
    const std::shared_ptr<WaveformView>& waveform() const { return waveform_; }
    const std::shared_ptr<ClipSlider>& slider() const { return slider_; }
    const std::shared_ptr<PositionSlider>& positionSlider() const { return positionSlider_; }
    const std::shared_ptr<zr::NSTextField>& positionLabel() const { return positionLabel_; }
    const std::shared_ptr<zr::NSButton>& splitButton() const { return splitButton_; }
    const std::shared_ptr<zr::NSTextField>& startLabel() const { return startLabel_; }
    const std::shared_ptr<zr::NSTextField>& clipLabel() const { return clipLabel_; }
    const std::shared_ptr<zr::NSTextField>& endLabel() const { return endLabel_; }
    // The clip's start and length, in whole seconds.
    const std::shared_ptr<zr::SWTimeEditView>& startField() const { return startField_; }
    const std::shared_ptr<zr::SWTimeEditView>& lengthField() const { return lengthField_; }
    const std::shared_ptr<zr::NSTextField>& messageLabel() const { return messageLabel_; }
    const std::shared_ptr<zr::NSButton>& saveButton() const { return saveButton_; }

private:
    std::shared_ptr<zr::NSTextField> addLabel(const std::string& identifier, const zr::NSFont& font,
                                              zr::NSTextAlignment alignment);

    std::shared_ptr<zr::SWTimeEditView> addTimeField(const std::string& identifier);
    std::shared_ptr<zr::NSButton> addButton(const std::string& identifier, const std::string& title,
                                            const zr::SEL& action);

    std::function<void()> togglePlaying_;
    std::shared_ptr<zr::NSTextField> nameLabel_, lengthLabel_, positionLabel_, startLabel_, clipLabel_,
        endLabel_;
    std::shared_ptr<zr::NSTextField> messageLabel_;
    std::shared_ptr<PositionSlider> positionSlider_;
    std::shared_ptr<zr::NSButton> splitButton_;
    std::shared_ptr<WaveformView> waveform_;
    std::shared_ptr<ClipSlider> slider_;
    std::shared_ptr<zr::NSButton> saveButton_;
    std::shared_ptr<zr::SWTimeEditView> startField_, lengthField_;
};

} // namespace trimstudio
