// SPDX-License-Identifier: MIT
#include "Saving.h"

#include <Foundation/NSString.h>
#include <ZRUIKit/KitFoundation.h>

#include <cmath>
#include <filesystem>
#include <system_error>
#include <utility>

namespace trimstudio {

using namespace zr;

ZR_CLASS_TABLE(SavingSheet)

namespace {

// Seconds. What is shorter shows no sheet; one that was shown can be seen, however little was left to do.
constexpr double kPatience = 0.3;
constexpr double kGlance = 0.5;

} // namespace

void SavingSheet::cancelDown(NSObject* sender) {
    const auto held = retained(this);
    ZRLoadingWndCtl::cancelDown(sender);
    if (const auto didCancel = didCancel_) didCancel();
}

Saving::Saving(TrimRequest request, const std::shared_ptr<NSWindow>& window, Notices notices)
    : request_(std::move(request)), window_(window), notices_(std::move(notices)) {}

void Saving::begin() {
    const auto self = shared_from_this();
    const std::weak_ptr<Saving> weak = self;
    const auto report = [weak](double fraction) {
        OnMainQueue([weak, fraction] {
            if (const auto saving = weak.lock()) saving->progressed(fraction);
        });
    };
    InBackground([request = request_, cancelled = cancelled_,
                  report] { return saveTrimmed(request, *cancelled, report); },
                 [self](const Outcome<Trimmed>& outcome) { self->ended(outcome); });
    AfterDelay(kPatience, [weak] {
        if (const auto saving = weak.lock()) saving->showSheet();
    });
}

void Saving::showSheet() {
    const auto window = window_.lock();
    if (ended_ || isCancelled() || !window || !window->isVisible()) return;
    sheet_ = make<SavingSheet>();
    sheet_->setDidCancel([weak = weak_from_this()] {
        if (const auto saving = weak.lock()) saving->cancel();
    });
    sheet_->startLoading_parent(
        stringWithFormat(AppLocalizedString("Saving “%@”"), request_.source.filename().string()), window.get());
    shownAt_ = dispatch_time(DISPATCH_TIME_NOW, 0);
    showProgress();
}

void Saving::showProgress() {
    if (sheet_)
        sheet_->updateProgress_ing(fraction_, isCancelled() ? AppLocalizedString("Cancelling…")
                                                            : stringWithFormat(AppLocalizedString("%d %%"),
                                                                               std::lround(fraction_ * 100)));
    if (notices_.changed) notices_.changed();
}

void Saving::progressed(double fraction) {
    if (ended_) return;
    fraction_ = fraction;
    showProgress();
}

void Saving::cancel() {
    if (ended_) return;
    *cancelled_ = true;
    showProgress();
}

void Saving::abandon() {
    const auto self = shared_from_this();
    *cancelled_ = true;
    ended_ = true;
    notices_ = {};
    closeSheet();
}

void Saving::ended(const Outcome<Trimmed>& outcome) {
    if (isCancelled() && outcome) {
        // It was done before it heard of it; nobody has been told of the file.
        std::error_code ignored;
        std::filesystem::remove(outcome.value().path, ignored);
        ended(Failure{"cancelled"});
        return;
    }
    if (std::exchange(ended_, true)) return;
    const std::uint64_t seen = dispatch_time(DISPATCH_TIME_NOW, 0) - shownAt_;
    const double left = kGlance - static_cast<double>(seen) / static_cast<double>(NSEC_PER_SEC);
    if (!sheet_ || !outcome || isCancelled() || left <= 0) {
        finish(outcome);
        return;
    }
    fraction_ = 1;
    showProgress();
    AfterDelay(left, [self = shared_from_this(), outcome] { self->finish(outcome); });
}

void Saving::finish(const Outcome<Trimmed>& outcome) {
    closeSheet();
    const auto done = std::exchange(notices_, {}).done;
    if (done) done(outcome);
}

void Saving::closeSheet() {
    const auto sheet = std::exchange(sheet_, nullptr);
    if (!sheet) return;
    sheet->endLoading();
    sheet->close();
}

} // namespace trimstudio
