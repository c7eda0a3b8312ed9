// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSTextField.h>
#include <Base/Compiler.h>
#include <Foundation/Unretained.h>

#include <memory>

namespace zr {

class SWTimeEditView;

// Judges and receives what the user typed. Seconds.
class SWTimeEditViewDelegate {
public:
    virtual ~SWTimeEditViewDelegate() = default;
    // A field is about to end editing; false refuses the value.
    virtual bool SWTimeEditView_isValid(SWTimeEditView& view, double seconds) = 0;
    // A field has ended editing after the user typed into it.
    virtual void SWTimeEditView_didChangeValue(SWTimeEditView& view, double seconds) = 0;
};

// A duration as three fields, for hours, minutes and seconds, with colons between them. It is placed in an
// interface file, or woken by awakeFromNib() after it was made in code; until then it has no fields, shows no
// duration and reads as 0. A value that the delegate refuses brings up an alert with the application's texts
// "WrongTimeInput" and "OK"; then the fields show what they showed before, and the editing goes on. Main thread
// only.
class ZR_EXPORT SWTimeEditView : public NSView, public NSTextFieldDelegate {
public:
    ZR_CLASS(SWTimeEditView, NSView)

    bool initWithFrame(const NSRect& frame) override;
    // Makes the three fields, in place of any that there are, for the size that the view has now.
    void awakeFromNib() override;

    // Not retained; null once the delegate is gone.
    std::shared_ptr<SWTimeEditViewDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const Unretained<SWTimeEditViewDelegate>& delegate) {
        delegate_ = delegate.givenTo("-[SWTimeEditView setDelegate:]");
    }

    // Shows the whole seconds of the duration, each field with two digits at least. Tells nobody.
    void flushWithSeconds(double seconds);
    // What the fields say, read as decimal numbers: fractions, and minutes beyond 59, count as they are typed.
    double secondsValue() const;
    // Off: the fields can be read only, and have no background.
    void setEditable(bool editable);

    void drawRect(const NSRect& dirty) override;

    void controlTextDidBeginEditing(const NSNotification& notification) override;
    void controlTextDidChange(const NSNotification& notification) override;
    std::optional<bool> control_textShouldEndEditing(NSControl& control, NSTextField& fieldEditor) override;
    void controlTextDidEndEditing(const NSNotification& notification) override;

    // State, as subclasses and tests see it.
    const std::shared_ptr<NSTextField>& lblHour() const { return lblHour_; }
    const std::shared_ptr<NSTextField>& lblMinite() const { return lblMinite_; }
    const std::shared_ptr<NSTextField>& lblSecond() const { return lblSecond_; }
    bool bTextChanged() const { return bTextChanged_; }       // typed since the editing began
    double lastEnterValue() const { return lastEnterValue_; } // seconds, when the editing began

protected:
    std::shared_ptr<NSTextField> lblHour_;
    std::shared_ptr<NSTextField> lblMinite_;
    std::shared_ptr<NSTextField> lblSecond_;
    bool bTextChanged_ = false;
    double lastEnterValue_ = 0;
    std::weak_ptr<SWTimeEditViewDelegate> delegate_;
};

} // namespace zr
