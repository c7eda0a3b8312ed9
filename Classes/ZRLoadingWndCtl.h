// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSButton.h>
#include <AppKit/NSProgressIndicator.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSWindowController.h>
#include <Base/Compiler.h>

#include <memory>
#include <string>

namespace zr {

// Posted, about nothing, each time Cancel is pressed.
inline const NSNotificationName ZRLoadingPrgWndCanceledNotification = "ZRLoadingPrgWndCanceledNotification";

// The sheet that a host shows while a long job runs: what is being done, how far it is, and a button to cancel
// it. It neither runs the job nor stops it: who does observes the notification, stops, and calls endLoading.
// May be used again. Main thread only.
class ZR_EXPORT ZRLoadingWndCtl : public NSWindowController {
public:
    ZR_CLASS(ZRLoadingWndCtl, NSWindowController)

    bool init() override;
    void dealloc() override; // closes the sheet
    void windowDidLoad() override;

    // Shows the sheet over the window, with the bar at its beginning.
    void startLoading_parent(const std::string& tip, NSWindow* parent);
    // How far the job is, 0 to 1; it is handed on unlimited. The number comes first, then the text.
    void updateProgress_ing(double progress, const std::string& text);
    // Clears the progress and closes the sheet; the tip stays until the next start.
    void endLoading();
    virtual void cancelDown(NSObject* sender); // an action: "cancelDown:"

    // Outlets.
    const std::shared_ptr<NSTextField>& lblPrgTip() const { return lblPrgTip_; }
    void setLblPrgTip(const std::shared_ptr<NSTextField>& label) { lblPrgTip_ = label; }
    const std::shared_ptr<NSTextField>& lblSaveProgress() const { return lblSaveProgress_; }
    void setLblSaveProgress(const std::shared_ptr<NSTextField>& label) { lblSaveProgress_ = label; }
    const std::shared_ptr<NSProgressIndicator>& prgSaving() const { return prgSaving_; }
    void setPrgSaving(const std::shared_ptr<NSProgressIndicator>& bar) { prgSaving_ = bar; }
    std::shared_ptr<NSButton> btnCancel() const { return btnCancel_.lock(); }
    void setBtnCancel(const std::shared_ptr<NSButton>& button) { btnCancel_ = button; }

private:
    std::shared_ptr<NSTextField> lblPrgTip_;
    std::shared_ptr<NSTextField> lblSaveProgress_;
    std::shared_ptr<NSProgressIndicator> prgSaving_;
    std::weak_ptr<NSButton> btnCancel_;
};

} // namespace zr
