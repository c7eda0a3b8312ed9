// SPDX-License-Identifier: MIT
#include <AppKit/NSApplication.h>
#include <AppKit/NSWindow.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ZRLoadingWndCtl.h>

namespace zr {

ZR_CLASS_TABLE(ZRLoadingWndCtl, .actions = {actionNamed<&ZRLoadingWndCtl::cancelDown>("cancelDown:")},
               .outlets = {outletNamed<&ZRLoadingWndCtl::setLblPrgTip>("lblPrgTip"),
                           outletNamed<&ZRLoadingWndCtl::setLblSaveProgress>("lblSaveProgress"),
                           outletNamed<&ZRLoadingWndCtl::setPrgSaving>("prgSaving"),
                           outletNamed<&ZRLoadingWndCtl::setBtnCancel>("btnCancel")})

bool ZRLoadingWndCtl::init() { return initWithWindowNibName_owner("ZRLoadingWndCtl", retained(this)); }

void ZRLoadingWndCtl::dealloc() {
    // Nobody else would end the sheet.
    if (isWindowLoaded())
        if (const auto sheet = window(); sheet && sheet->isSheet()) sheet->close();
    NSWindowController::dealloc();
}

void ZRLoadingWndCtl::windowDidLoad() {
    NSWindowController::windowDidLoad();
    if (const auto button = btnCancel()) button->setTitle(KitLocalizedString("Cancel"));
}

void ZRLoadingWndCtl::startLoading_parent(const std::string& tip, NSWindow* parent) {
    const auto sheet = window();
    if (!sheet) return;
    NSApplication::sharedApplication().beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(
        *sheet, parent, this, {}, nullptr);
    if (lblPrgTip_) lblPrgTip_->setStringValue(tip);
    if (!prgSaving_) return;
    prgSaving_->setIndeterminate(false);
    prgSaving_->setMinValue(0.0);
    prgSaving_->setMaxValue(1.0);
    prgSaving_->setDoubleValue(0.0);
}

void ZRLoadingWndCtl::updateProgress_ing(double progress, const std::string& text) {
    if (lblSaveProgress_) lblSaveProgress_->setStringValue(text);
    if (prgSaving_) prgSaving_->setDoubleValue(progress);
}

void ZRLoadingWndCtl::endLoading() {
    if (lblSaveProgress_) lblSaveProgress_->setStringValue("");
    if (prgSaving_) prgSaving_->setDoubleValue(0.0);
    const auto sheet = window();
    if (!sheet) return;
    NSApplication::sharedApplication().endSheet(*sheet);
    sheet->orderOut(nullptr);
}

void ZRLoadingWndCtl::cancelDown(NSObject*) {
    NSNotificationCenter::defaultCenter().postNotificationName_object(ZRLoadingPrgWndCanceledNotification,
                                                                      nullptr);
}

} // namespace zr
