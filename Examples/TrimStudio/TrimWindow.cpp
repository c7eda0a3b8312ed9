#include "TimeText.h"
#include "TrimWindow.h"
#include "Waveform.h"

#include <Foundation/NSString.h>
#include <ZRUIKit/KitFoundation.h>

#include <cmath>
#include <cstdio>

namespace trimstudio {

using namespace zr;

ZR_CLASS_TABLE(TrimWindow, .actions = {actionNamed<&TrimWindow::saveTrimmed>("saveTrimmed:")})

namespace {

constexpr NSSize kContentSize = {760, 340};
constexpr NSSize kSmallestContent = {480, 260};
constexpr std::size_t kPeaks = 4000;
constexpr double kMillisecondsPerSecond = 1000;

} // namespace

bool TrimWindow::initWithPath_describes(const std::filesystem::path& path, bool describes) {
    path_ = path;
    describes_ = describes;
    editor_ = make<EditorView>(NSRect{NSZeroPoint, kContentSize});
    editor_->nameLabel()->setStringValue(path.filename().string());
    editor_->slider()->setDelegate(retained(this));
    const std::weak_ptr<TrimWindow> weak = retained(this);
    editor_->slider()->setDidDraw([weak] {
        if (const auto self = weak.lock()) self->describeSoon();
    });
    editor_->saveButton()->setTarget(retained(this));

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
    NSObject::dealloc();
}

void TrimWindow::show() {
    window_->makeKeyAndOrderFront(nullptr);
    open();
}

void TrimWindow::open() {
    editor_->setMessage("Opening…", false);
    describeSoon();
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
    editor_->waveform()->setDuration(file_->duration);
    editor_->setEditing(true);
    succeed("");
    clipChanged();
    readWaveform();
}

void TrimWindow::readWaveform() {
    if (!file_->hasAudio) {
        editor_->waveform()->setNotice("This file has no sound.");
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
    editor_->startLabel()->setStringValue(stringWithFormat("Start %@", timeText(start)));
    editor_->clipLabel()->setStringValue(stringWithFormat("Length %@", timeText(length)));
    editor_->endLabel()->setStringValue(stringWithFormat("End %@", timeText(start + length)));
    editor_->waveform()->setClip(start, length);
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
    findingStart_ = true;
    updateButton();
    InBackground(
        [jobs = jobs_, asked] {
            const std::lock_guard guard(jobs->finderLock);
            return jobs->finder->realStart(asked);
        },
        [self = retained(this), request = ++startRequest_, asked](double found) {
            self->realStartFound(request, asked, found);
        });
}

void TrimWindow::realStartFound(int request, double asked, double found) {
    if (jobs_->cancelled || request != startRequest_) return;
    findingStart_ = false;
    const auto& selection = *editor_->slider()->selectionItem();
    const double end = selection.dStart() + selection.dLength();
    editor_->slider()->setSelection_length(found * kMillisecondsPerSecond,
                                           end - found * kMillisecondsPerSecond);
    clipChanged();
    constexpr double kNoticeable = 0.0005;
    if (std::abs(found - asked) > kNoticeable)
        succeed(stringWithFormat("This format can only begin at a key frame: the clip starts at %@.",
                                 timeText(found)));
    updateButton();
}

void TrimWindow::saveTrimmed(NSObject*) {
    if (!file_ || saving_ || findingStart_) return;
    saving_ = true;
    saved_.reset();
    updateButton();
    succeed("Saving…");
    const auto& selection = *editor_->slider()->selectionItem();
    const TrimRequest request = {path_, selection.dStart() / kMillisecondsPerSecond,
                                 selection.dLength() / kMillisecondsPerSecond};
    const std::weak_ptr<TrimWindow> weak = retained(this);
    const auto showProgress = [weak](double fraction) {
        OnMainQueue([weak, fraction] {
            const auto self = weak.lock();
            if (self && self->saving_)
                self->succeed(stringWithFormat("Saving… %d %%", std::lround(fraction * 100)));
        });
    };
    InBackground([request, jobs = jobs_,
                  showProgress] { return trimstudio::saveTrimmed(request, jobs->cancelled, showProgress); },
                 [self = retained(this)](const Outcome<Trimmed>& outcome) { self->saveEnded(outcome); });
}

void TrimWindow::saveEnded(const Outcome<Trimmed>& outcome) {
    if (jobs_->cancelled) return;
    saving_ = false;
    if (outcome) {
        saved_ = outcome.value().path.string();
        succeed(stringWithFormat("Saved “%@”, %@ long.", outcome.value().path.filename().string(),
                                 timeText(outcome.value().length)));
    } else {
        fail(outcome.error());
    }
    updateButton();
}

void TrimWindow::succeed(const std::string& message) {
    failed_ = false;
    editor_->setMessage(message, false);
    updateButton();
    describeSoon();
}

void TrimWindow::fail(const std::string& message) {
    failed_ = true;
    editor_->setMessage(message, true);
    std::fprintf(stderr, "TrimStudio: %s\n", message.c_str());
    updateButton();
    describeSoon();
}

void TrimWindow::updateButton() {
    const bool enabled = file_ && !saving_ && !findingStart_;
    if (enabled != editor_->saveButton()->isEnabled()) editor_->saveButton()->setEnabled(enabled);
}

void TrimWindow::windowWillClose(NSWindow&) { jobs_->cancelled = true; }
void TrimWindow::windowDidResize(NSWindow&) { describeSoon(); }
void TrimWindow::windowDidMove(NSWindow&) { describeSoon(); }

// Once for all that happens in an event. A slider that is yet to be drawn describes itself when it is.
void TrimWindow::describeSoon() {
    if (!describes_ || std::exchange(descriptionPosted_, true)) return;
    OnMainQueue([self = retained(this)] {
        self->descriptionPosted_ = false;
        const auto& slider = *self->editor_->slider();
        if (!self->window_->isVisible() || (slider.needsDisplay() && !slider.isHidden())) return;
        Description facts = {self->path_.string(), self->file_ ? self->file_->duration : 0, self->saved_,
                             std::nullopt};
        if (const auto& message = self->editor_->messageLabel()->stringValue(); !message.empty())
            facts.message = message;
        std::string line = describe(facts, *self->editor_);
        if (line == self->lastDescription_) return;
        std::puts(line.c_str());
        std::fflush(stdout);
        self->lastDescription_ = std::move(line);
    });
}

} // namespace trimstudio
