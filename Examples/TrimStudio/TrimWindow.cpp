// SPDX-License-Identifier: MIT
#include "SavePlace.h"
#include "TimeText.h"
#include "TrimWindow.h"
#include "Waveform.h"

#include <AppKit/NSApplication.h>
#include <Foundation/NSString.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ZRAlert.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace trimstudio {

using namespace zr;

ZR_CLASS_TABLE(TrimWindow, .actions = {actionNamed<&TrimWindow::saveTrimmed>("saveTrimmed:"),
                                       actionNamed<&TrimWindow::split>("split:")})

namespace {

constexpr NSSize kContentSize = {760, 428};
constexpr NSSize kSmallestContent = {560, 338};
constexpr double kShortestClip = 5; // milliseconds, as for the handles
constexpr std::size_t kPeaks = 4000;
constexpr double kMillisecondsPerSecond = 1000;
constexpr double kFrame = 1.0 / 30; // seconds between the steps of playing

} // namespace

bool TrimWindow::initWithPath_describes(const std::filesystem::path& path, bool describes) {
    path_ = path;
    describes_ = describes;
    editor_ = make<EditorView>(NSRect{NSZeroPoint, kContentSize});
    editor_->nameLabel()->setStringValue(path.filename().string());
    editor_->slider()->setDelegate(retained(this));
    const std::weak_ptr<TrimWindow> weak = retained(this);
    const auto describe = [weak] {
        if (const auto self = weak.lock()) self->describeSoon();
    };
    if (describes) // sheets and alerts, too, may be typed into from then on
        keyWindowObserver_ = NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
            NSWindowDidBecomeKeyNotification, nullptr, [describe](const NSNotification&) { describe(); });
    editor_->startField()->setDelegate(retained(this));
    editor_->lengthField()->setDelegate(retained(this));
    editor_->slider()->setDidDraw(describe);
    editor_->positionSlider()->setDidDraw(describe);
    editor_->positionSlider()->setDelegate(retained(this));
    editor_->setTogglePlaying([weak] {
        if (const auto self = weak.lock()) self->togglePlaying();
    });
    editor_->saveButton()->setTarget(retained(this));
    editor_->splitButton()->setTarget(retained(this));

    constexpr unsigned style = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                               NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable;
    window_ = make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer,
                             NSRect{NSZeroPoint, kContentSize}, style, NSBackingStoreBuffered, false);
    std::string title = path.filename().string();
    title += " – TrimStudio";
    window_->setTitle(title);
    window_->setContentMinSize(kSmallestContent);
    window_->setContentView(editor_);
    window_->setDelegate(retained(this));
    return true;
}

void TrimWindow::dealloc() {
    jobs_->cancelled = true;
    if (saving_) saving_->abandon();
    NSObject::dealloc();
}

void TrimWindow::show() {
    window_->makeFirstResponder(editor_.get());
    window_->makeKeyAndOrderFront(nullptr);
    open();
}

void TrimWindow::open() {
    setStatus(AppLocalizedString("Opening…"));
    InBackground([path = path_] { return openMedia(path); },
                 [self = retained(this)](Outcome<MediaFile> outcome) { self->opened(std::move(outcome)); });
}

void TrimWindow::opened(Outcome<MediaFile> outcome) {
    if (jobs_->cancelled) return;
    if (!outcome) {
        fail(outcome.error());
        return;
    }
    file_ = std::move(outcome.value());
    if (file_->startsAtKeyFrames) jobs_->finder.emplace(*file_);
    editor_->lengthLabel()->setStringValue(
        stringWithFormat("%@ · %@", file_->format, timeText(file_->duration)));
    editor_->slider()->setDLength(file_->duration * kMillisecondsPerSecond);
    editor_->slider()->setSelection_length(0, file_->duration * kMillisecondsPerSecond);
    editor_->positionSlider()->setDLength(file_->duration * kMillisecondsPerSecond);
    moveTo(0);
    editor_->waveform()->setDuration(file_->duration);
    editor_->setEditing(true);
    setStatus("");
    clipChanged();
    readWaveform();
}

void TrimWindow::readWaveform() {
    if (!file_->hasAudio) {
        editor_->waveform()->setNotice(AppLocalizedString("This file has no sound."));
        return;
    }
    const std::weak_ptr<TrimWindow> weak = retained(this);
    const auto showPeaks = [weak](const std::vector<float>& peaks, double) {
        OnMainQueue([weak, peaks] {
            if (const auto self = weak.lock()) self->editor_->waveform()->setPeaks(peaks);
        });
    };
    InBackground(
        [file = *file_, jobs = jobs_, showPeaks] { return waveform(file, kPeaks, jobs->cancelled, showPeaks); },
        [weak](Outcome<std::vector<float>> peaks) {
            const auto self = weak.lock();
            if (!self || self->jobs_->cancelled) return;
            if (peaks)
                self->editor_->waveform()->setPeaks(std::move(peaks.value()));
            else
                self->editor_->waveform()->setNotice(peaks.error());
        });
}

void TrimWindow::clipChanged() {
    const auto& selection = *editor_->slider()->selectionItem();
    const double start = selection.dStart() / kMillisecondsPerSecond,
                 length = selection.dLength() / kMillisecondsPerSecond;
    editor_->startLabel()->setStringValue(stringWithFormat(AppLocalizedString("Start %@"), timeText(start)));
    editor_->clipLabel()->setStringValue(stringWithFormat(AppLocalizedString("Length %@"), timeText(length)));
    editor_->endLabel()->setStringValue(
        stringWithFormat(AppLocalizedString("End %@"), timeText(start + length)));
    editor_->waveform()->setClip(start, length);
    const auto show = [](SWTimeEditView& view, double seconds) {
        // What the user is typing stays.
        for (const auto& field : {view.lblHour(), view.lblMinite(), view.lblSecond()})
            if (field->isEditing()) return;
        view.flushWithSeconds(seconds);
    };
    show(*editor_->startField(), start);
    show(*editor_->lengthField(), length);
    updateButtons();
}

double TrimWindow::typedTime(const SWTimeEditView& view, double seconds) const {
    const auto& clip = *editor_->slider()->selectionItem();
    const double before =
        (&view == editor_->startField().get() ? clip.dStart() : clip.dLength()) / kMillisecondsPerSecond;
    const double shown = std::fmod(std::trunc(before), 60);
    const bool sameSeconds = view.lblSecond()->doubleValue() == shown;
    return (seconds + (sameSeconds ? before - std::trunc(before) : 0)) * kMillisecondsPerSecond;
}

bool TrimWindow::SWTimeEditView_isValid(SWTimeEditView& view, double seconds) {
    if (!file_) return true;
    const auto& clip = *editor_->slider()->selectionItem();
    const double time = typedTime(view, seconds);
    if (&view == editor_->startField().get())
        return time >= 0 && time <= clip.dStart() + clip.dLength() - kShortestClip;
    constexpr double kRounding = 0.001;
    return time >= kShortestClip &&
           clip.dStart() + time <= file_->duration * kMillisecondsPerSecond + kRounding;
}

// A new start leaves the end where it is, as its handle does.
void TrimWindow::SWTimeEditView_didChangeValue(SWTimeEditView& view, double seconds) {
    if (!file_ || isSaving()) return;
    const auto& clip = *editor_->slider()->selectionItem();
    const double start = clip.dStart(), length = clip.dLength(), time = typedTime(view, seconds);
    if (&view == editor_->startField().get())
        keep(time, start + length - time);
    else
        keep(start, time);
}

// Positions are in milliseconds, like the sliders'.
void TrimWindow::moveTo(double position) {
    editor_->positionSlider()->setDCurValue(position);
    positionChanged();
}

void TrimWindow::positionChanged() {
    editor_->positionLabel()->setStringValue(
        timeText(editor_->positionSlider()->dCurValue() / kMillisecondsPerSecond));
    updateButtons();
}

// Both sliders tell this object. A press on the clip's track moves the position, too.
void TrimWindow::sliderView_beginDragAt(BaseSliderView& slider, double value) {
    scrubbing_ = true;
    sliderView_didChangeValue(slider, value);
}

void TrimWindow::sliderView_didChangeValue(BaseSliderView& slider, double value) {
    if (&slider == editor_->positionSlider().get())
        positionChanged();
    else
        moveTo(value);
}

void TrimWindow::sliderView_endDragAt(BaseSliderView&, double value) {
    scrubbing_ = false;
    playedUntil_ = dispatch_time(DISPATCH_TIME_NOW, 0);
    moveTo(value); // the bar, too
    describeSoon();
}

void TrimWindow::togglePlaying() {
    playing_ = !playing_ && file_.has_value();
    if (!playing_) return;
    playedUntil_ = dispatch_time(DISPATCH_TIME_NOW, 0);
    play();
}

// One step: as far as time has gone on, within the clip.
void TrimWindow::play() {
    if (!playing_ || jobs_->cancelled) return;
    const std::uint64_t now = dispatch_time(DISPATCH_TIME_NOW, 0);
    const double passed =
        static_cast<double>(now - playedUntil_) / static_cast<double>(NSEC_PER_SEC) * kMillisecondsPerSecond;
    playedUntil_ = now;
    if (!scrubbing_) {
        const auto& clip = *editor_->slider()->selectionItem();
        const double end = clip.dStart() + clip.dLength();
        double position = editor_->positionSlider()->dCurValue();
        if (position < clip.dStart() || position >= end)
            position = clip.dStart();
        else
            position += passed;
        playing_ = position < end;
        moveTo(std::min(position, end));
    }
    if (!playing_) return;
    const std::weak_ptr<TrimWindow> weak = retained(this);
    AfterDelay(kFrame, [weak] {
        if (const auto self = weak.lock()) self->play();
    });
}

// The position is the one that was asked about, also when playing has gone on meanwhile.
void TrimWindow::split(NSObject*) {
    if (!file_ || isSaving() || findingStart_ || !editor_->slider()->canBeSplited()) return;
    const double position = editor_->positionSlider()->dCurValue();
    describeSoon();
    ZRAlert::Actions_title_info_accessoryView(
        {ZRAlertAction::actionWithTitle_block(AppLocalizedString("Keep Before"), [&] { keepBefore(position); }),
         ZRAlertAction::actionWithTitle_block(AppLocalizedString("Keep After"), [&] { keepAfter(position); }),
         ZRAlertAction::CANCEL(nullptr)},
        stringWithFormat(AppLocalizedString("Split the clip at %@?"),
                         timeText(position / kMillisecondsPerSecond)),
        AppLocalizedString("Choose the part to go on with. The recording itself stays as it is."), nullptr);
    describeSoon();
}

void TrimWindow::keepBefore(double position) {
    auto& slider = *editor_->slider();
    const double wholeLength = slider.dLength();
    slider.setDCurValue(position);
    // The kit's operation makes the range as long as what is kept; the file is still all there.
    slider.splitAtCurPoint();
    slider.setDLength(wholeLength);
    keep(slider.selectionItem()->dStart(), slider.selectionItem()->dLength());
}

void TrimWindow::keepAfter(double position) {
    const auto& clip = *editor_->slider()->selectionItem();
    keep(position, clip.dStart() + clip.dLength() - position);
}

void TrimWindow::keep(double start, double length) {
    const bool startMoved = start != editor_->slider()->selectionItem()->dStart();
    editor_->slider()->setSelection_length(start, length);
    notice_.clear();
    if (startMoved && file_->startsAtKeyFrames) {
        ++jobs_->startRequest;
        findingStart_ = true;
        findRealStart();
    }
    clipChanged();
    showMessage();
}

void TrimWindow::splitSliderViewBeginDragClip_bLeftClip(SplitSliderView&, bool leftClip) {
    if (!leftClip || !file_->startsAtKeyFrames) return;
    // Until it is known where the copy would begin there is nothing to be saved.
    ++jobs_->startRequest;
    findingStart_ = true;
    notice_.clear();
    if (!isSaving() && !failed_) status_.clear();
    showMessage();
}

void TrimWindow::splitSliderViewDragClipTo_bLeftClip(SplitSliderView&, bool) { clipChanged(); }

void TrimWindow::splitSliderViewEndDragClip_bLeftClip(SplitSliderView&, bool leftClip) {
    clipChanged();
    if (leftClip && file_->startsAtKeyFrames) findRealStart();
    describeSoon();
}

// A file that can only begin at a key frame: the clip's start goes to where the copy will really begin.
void TrimWindow::findRealStart() {
    const double asked = editor_->slider()->selectionItem()->dStart() / kMillisecondsPerSecond;
    const int request = jobs_->startRequest;
    InBackground(
        [jobs = jobs_, asked, request] {
            const std::lock_guard guard(jobs->finderLock);
            return jobs->startRequest == request ? jobs->finder->realStart(asked) : asked;
        },
        [self = retained(this), request, asked](double found) { self->realStartFound(request, asked, found); });
}

void TrimWindow::realStartFound(int request, double asked, double found) {
    if (jobs_->cancelled || request != jobs_->startRequest) return;
    findingStart_ = false;
    const auto& selection = *editor_->slider()->selectionItem();
    const double end = selection.dStart() + selection.dLength();
    editor_->slider()->setSelection_length(found * kMillisecondsPerSecond,
                                           end - found * kMillisecondsPerSecond);
    clipChanged();
    constexpr double kNoticeable = 0.0005;
    if (std::abs(found - asked) > kNoticeable)
        notice_ = stringWithFormat(
            AppLocalizedString("This format can only begin at a key frame: the clip starts at %@."),
            timeText(found));
    showMessage();
}

void TrimWindow::saveTrimmed(NSObject*) {
    if (!file_ || saving_ || findingStart_) return;
    saved_.reset();
    notice_.clear();
    const auto held = retained(this);
    describeSoon();
    const auto folder = askForSavePlace(path_);
    if (jobs_->cancelled) return; // the program ended meanwhile
    if (!folder) {
        setStatus(AppLocalizedString("Saving was cancelled. Nothing was written."));
        return;
    }
    // The handles leave five milliseconds, also of a file that is shorter.
    const auto& selection = *editor_->slider()->selectionItem();
    const double start = std::max(0.0, selection.dStart() / kMillisecondsPerSecond);
    const double length = std::min(selection.dLength() / kMillisecondsPerSecond, file_->duration - start);
    const std::weak_ptr<TrimWindow> weak = retained(this);
    saving_ = std::make_shared<Saving>(TrimRequest{path_, start, length, folder}, window_,
                                       Saving::Notices{.changed =
                                                           [weak] {
                                                               if (const auto self = weak.lock())
                                                                   self->describeSoon();
                                                           },
                                                       .done =
                                                           [weak](const Outcome<Trimmed>& outcome) {
                                                               if (const auto self = weak.lock())
                                                                   self->saveEnded(outcome);
                                                           }});
    setStatus(AppLocalizedString("Saving…"));
    saving_->begin();
}

void TrimWindow::saveEnded(const Outcome<Trimmed>& outcome) {
    const auto ended = std::exchange(saving_, nullptr);
    const bool wasCancelled = ended && ended->isCancelled();
    if (outcome) {
        saved_ = outcome.value().path.string();
        setStatus(stringWithFormat(AppLocalizedString("Saved “%@”, %@ long."),
                                   outcome.value().path.filename().string(), timeText(outcome.value().length)));
    } else if (wasCancelled) {
        setStatus(AppLocalizedString("Saving was cancelled. Nothing was written."));
    } else {
        fail(outcome.error());
    }
    // What was asked is no question any more.
    if (asksToStop_) NSApplication::sharedApplication().stopModal();
}

bool TrimWindow::mayStopSaving() {
    if (!isSaving() || saving_->isCancelled()) return true;
    if (asksToStop_) return false;
    const auto held = retained(this);
    asksToStop_ = true;
    bool stops = false;
    describeSoon();
    ZRAlert::Actions_title_info_accessoryView(
        {ZRAlertAction::CANCEL(nullptr), ZRAlertAction::DISCARD([&] { stops = true; })},
        stringWithFormat(AppLocalizedString("“%@” is still being saved."), path_.filename().string()),
        AppLocalizedString("What has been saved so far can be discarded. The recording itself stays as it is."),
        nullptr);
    asksToStop_ = false;
    describeSoon();
    return stops || (!isSaving() && !failed_);
}

void TrimWindow::setStatus(const std::string& text) {
    failed_ = false;
    status_ = text;
    showMessage();
}

void TrimWindow::fail(const std::string& text) {
    failed_ = true;
    status_ = text;
    std::fprintf(stderr, "TrimStudio: %s\n", text.c_str());
    showMessage();
}

void TrimWindow::showMessage() {
    const char* const between = status_.empty() || notice_.empty() ? "" : " ";
    editor_->setMessage(stringWithFormat("%@%s%@", status_, between, notice_), failed_);
    updateButtons();
    describeSoon();
}

void TrimWindow::updateButtons() {
    const auto enable = [](NSButton& button, bool enabled) {
        if (enabled != button.isEnabled()) button.setEnabled(enabled);
    };
    const bool ready = file_ && !isSaving() && !findingStart_;
    enable(*editor_->saveButton(), ready);
    // canBeSplited() asks about the current value, which follows the position.
    auto& slider = *editor_->slider();
    const double position = editor_->positionSlider()->dCurValue();
    if (slider.dCurValue() != position) slider.setDCurValue(position);
    enable(*editor_->splitButton(), ready && slider.canBeSplited());
}

std::optional<bool> TrimWindow::windowShouldClose(NSWindow&) { return mayStopSaving(); }

void TrimWindow::windowWillClose(NSWindow&) {
    jobs_->cancelled = true;
    if (const auto saving = std::exchange(saving_, nullptr)) saving->abandon();
}

void TrimWindow::windowDidResize(NSWindow&) { describeSoon(); }
void TrimWindow::windowDidMove(NSWindow&) { describeSoon(); }

// Once for all that happens in an event. A slider that is yet to be drawn describes itself when it is.
void TrimWindow::describeSoon() {
    if (!describes_ || std::exchange(descriptionPosted_, true)) return;
    OnMainQueue([self = retained(this)] {
        self->descriptionPosted_ = false;
        const auto& slider = *self->editor_->slider();
        const bool drawn = !slider.needsDisplay() && !self->editor_->positionSlider()->needsDisplay();
        if (!self->window_->isVisible() || (!drawn && !slider.isHidden())) return;
        Description facts = {.file = self->path_.string(),
                             .duration = self->file_ ? self->file_->duration : 0,
                             .saved = self->saved_};
        if (const auto& message = self->editor_->messageLabel()->stringValue(); !message.empty())
            facts.message = message;
        const auto trusted = ZRTrustedPathViewCtl::sharedInstance();
        facts.restoring = trusted && trusted->isAsyncLoading();
        facts.sheet = self->window_->attachedSheet();
        facts.alert = NSApplication::sharedApplication().modalWindow();
        std::string line = describe(facts, *self->editor_);
        if (line == self->lastDescription_) return;
        std::puts(line.c_str());
        std::fflush(stdout);
        self->lastDescription_ = std::move(line);
    });
}

} // namespace trimstudio
