// SPDX-License-Identifier: MIT
#include <AppKit/NSAlert.h>
#include <AppKit/NSStringDrawing.h>
#include <Foundation/NSString.h>
#include <HostLibraries/GlobalFun.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/SWTimeEditView.h>

#include <array>

namespace zr {

ZR_CLASS_TABLE(SWTimeEditView)

bool SWTimeEditView::initWithFrame(const NSRect& frame) { return NSView::initWithFrame(frame); }

// NSView's awakeFromNib is left out on purpose.
void SWTimeEditView::awakeFromNib() {
    const NSSize size = bounds().size;
    const double width = (size.width - 40.0) / 3.0;
    const double height = size.height - 4.0;
    for (const auto& old : {lblHour_, lblMinite_, lblSecond_})
        if (old) old->removeFromSuperview();
    lblHour_ = make<NSTextField>(NSMakeRect(10.0, 2.0, width, height));
    lblMinite_ = make<NSTextField>(NSMakeRect(width + 20.0, 2.0, width, height));
    lblSecond_ = make<NSTextField>(NSMakeRect(2 * width + 30.0, 2.0, width, height));
    const std::array fields = {lblHour_, lblMinite_, lblSecond_};
    for (const auto& field : fields) field->setFont(NSFont::systemFontOfSize(10.0));
    for (const auto& field : fields) field->setFocusRingType(NSFocusRingTypeNone);
    for (const auto& field : fields) field->setAlignment(NSTextAlignmentCenter);
    const auto self = std::static_pointer_cast<SWTimeEditView>(shared_from_this());
    for (const auto& field : fields) addSubview(field);
    for (const auto& field : fields) field->setDelegate(self);
}

void SWTimeEditView::drawRect(const NSRect& dirty) {
    NSView::drawRect(dirty);
    for (const auto& field : {lblHour_, lblMinite_}) {
        const NSRect frame = field ? field->frame() : NSZeroRect;
        drawAtPoint_withAttributes(":", {NSMaxX(frame) + 3.0, 4.0}, {.foregroundColor = NSColor::labelColor()});
    }
}

void SWTimeEditView::flushWithSeconds(double seconds) {
    std::int32_t hours = 0, minutes = 0, rest = 0;
    GlobalFun::getHour_minite_second_withTime(hours, minutes, rest, seconds);
    if (lblHour_) lblHour_->setStringValue(stringWithFormat("%02d", hours));
    if (lblMinite_) lblMinite_->setStringValue(stringWithFormat("%02d", minutes));
    if (lblSecond_) lblSecond_->setStringValue(stringWithFormat("%02d", rest));
    bTextChanged_ = false;
}

double SWTimeEditView::secondsValue() const {
    const auto value = [](const std::shared_ptr<NSTextField>& field) {
        return field ? field->doubleValue() : 0.0;
    };
    return value(lblMinite_) * 60.0 + value(lblHour_) * 3600.0 + value(lblSecond_);
}

void SWTimeEditView::setEditable(bool editable) {
    const std::array fields = {lblHour_, lblMinite_, lblSecond_};
    for (const auto& field : fields)
        if (field) field->setDrawsBackground(editable);
    for (const auto& field : fields)
        if (field) field->setEditable(editable);
}

void SWTimeEditView::controlTextDidBeginEditing(const NSNotification&) {
    bTextChanged_ = false;
    lastEnterValue_ = secondsValue();
}

void SWTimeEditView::controlTextDidChange(const NSNotification&) { bTextChanged_ = true; }

std::optional<bool> SWTimeEditView::control_textShouldEndEditing(NSControl&, NSTextField&) {
    const auto delegate = this->delegate();
    if (!delegate || delegate->SWTimeEditView_isValid(*this, secondsValue())) return true;
    const std::string title = AppLocalizedString("WrongTimeInput");
    const std::string ok = AppLocalizedString("OK");
    NSRunAlertPanel(title, "", ok, std::nullopt, std::nullopt);
    flushWithSeconds(lastEnterValue_);
    return false;
}

void SWTimeEditView::controlTextDidEndEditing(const NSNotification&) {
    const auto delegate = this->delegate();
    if (bTextChanged_ && delegate) delegate->SWTimeEditView_didChangeValue(*this, secondsValue());
    bTextChanged_ = false;
}

} // namespace zr
