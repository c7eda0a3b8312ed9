// SPDX-License-Identifier: MIT
#pragma once

#include "SaveTrimmed.h"

#include <AppKit/NSWindow.h>
#include <ZRUIKit/ZRLoadingWndCtl.h>

#include <atomic>
#include <functional>
#include <memory>

namespace trimstudio {

// The kit announces Cancel without saying of which sheet: with several windows each sheet tells its own.
class SavingSheet : public zr::ZRLoadingWndCtl {
public:
    ZR_CLASS(SavingSheet, zr::ZRLoadingWndCtl)
    void setDidCancel(std::function<void()> didCancel) { didCancel_ = std::move(didCancel); }
    void cancelDown(zr::NSObject* sender) override;

private:
    std::function<void()> didCancel_;
};

// One copy in the making: the work in the background and, when that takes longer than a moment, a sheet over
// the window that shows how far it is and lets the user cancel it. Main thread only.
class Saving : public std::enable_shared_from_this<Saving> {
public:
    // `changed` comes with each step that can be seen, `done` once, after the sheet has gone. Neither comes
    // after abandon().
    struct Notices {
        std::function<void()> changed;
        std::function<void(const Outcome<Trimmed>&)> done;
    };
    Saving(TrimRequest request, const std::shared_ptr<zr::NSWindow>& window, Notices notices);

    void begin();
    // The work ends soon and leaves nothing behind, unless it is done already. The sheet stays until then.
    void cancel();
    void abandon(); // cancels without waiting for it
    bool isRunning() const { return !ended_; }
    bool isCancelled() const { return *cancelled_; }

private:
    void showSheet();
    void progressed(double fraction);
    void ended(const Outcome<Trimmed>& outcome);
    void finish(const Outcome<Trimmed>& outcome);
    void closeSheet();
    void showProgress();

    TrimRequest request_;
    std::weak_ptr<zr::NSWindow> window_;
    Notices notices_;
    std::shared_ptr<std::atomic<bool>> cancelled_ = std::make_shared<std::atomic<bool>>(false);
    std::shared_ptr<SavingSheet> sheet_;
    std::uint64_t shownAt_ = 0; // nanoseconds of the queues' clock
    double fraction_ = 0;
    bool ended_ = false;
};

} // namespace trimstudio
