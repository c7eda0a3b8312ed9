// SPDX-License-Identifier: MIT
#pragma once

#include "Description.h"
#include "EditorView.h"
#include "MediaFile.h"
#include "Saving.h"
#include "StartFinder.h"

#include <AppKit/NSWindow.h>
#include <ZRUIKit/BaseSliderView.h>

#include <atomic>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace trimstudio {

// One window for one file: opens it, lets the user choose a clip and saves that beside the original, or where
// the preferences say. Reading and writing happen in the background; closing the window ends them. The slider
// counts milliseconds.
class TrimWindow : public zr::NSObject,
                   public zr::SliderViewDelegate,
                   public zr::SWTimeEditViewDelegate,
                   public zr::NSWindowDelegate {
public:
    ZR_CLASS(TrimWindow, zr::NSObject)

    // With `describes`, every change is described on standard output.
    bool initWithPath_describes(const std::filesystem::path& path, bool describes);
    void dealloc() override;

    void show();
    // The buttons' actions.
    void saveTrimmed(zr::NSObject* sender);
    void split(zr::NSObject* sender); // asks which part of the clip to keep: before the position or after it
    // Whether the last thing that was tried with this file did not work.
    bool failed() const { return failed_; }
    // Asks, while it saves, whether that is to be given up. True where nothing is saved, or is to be.
    void describeSoon(); // once for all that happens in an event, when it is over
    bool mayStopSaving();

    void sliderView_beginDragAt(zr::BaseSliderView& slider, double value) override;
    void sliderView_didChangeValue(zr::BaseSliderView& slider, double value) override;
    void sliderView_endDragAt(zr::BaseSliderView& slider, double value) override;
    void splitSliderViewBeginDragClip_bLeftClip(zr::SplitSliderView& slider, bool leftClip) override;
    void splitSliderViewDragClipTo_bLeftClip(zr::SplitSliderView& slider, bool leftClip) override;
    void splitSliderViewEndDragClip_bLeftClip(zr::SplitSliderView& slider, bool leftClip) override;
    // The clip must stay within the file.
    bool SWTimeEditView_isValid(zr::SWTimeEditView& view, double seconds) override;
    void SWTimeEditView_didChangeValue(zr::SWTimeEditView& view, double seconds) override;
    std::optional<bool> windowShouldClose(zr::NSWindow& window) override;
    void windowWillClose(zr::NSWindow& window) override;
    void windowDidResize(zr::NSWindow& window) override;
    void windowDidMove(zr::NSWindow& window) override;

private:
    // Shared with what looks into the file in the background, and an end to that.
    struct Jobs {
        std::atomic<bool> cancelled = false;
        std::atomic<int> startRequest = 0; // counts drags: only the answer to the last one is of use
        std::mutex finderLock;
        std::optional<StartFinder> finder; // guarded by finderLock
    };

    void open();
    void opened(Outcome<MediaFile> outcome);
    void readWaveform();
    void clipChanged();
    void moveTo(double position);
    void positionChanged();
    void togglePlaying();
    void play();
    void keep(double start, double length);
    // The time that a field was given, in milliseconds: as typed, or with the fraction of a second that it had.
    double typedTime(const zr::SWTimeEditView& view, double seconds) const;
    void findRealStart();
    void realStartFound(int request, double asked, double found);
    bool isSaving() const { return saving_ && saving_->isRunning(); }
    void keepBefore(double position);
    void keepAfter(double position);
    void saveEnded(const Outcome<Trimmed>& outcome);
    void setStatus(const std::string& text);
    void fail(const std::string& text);
    void showMessage();
    void updateButtons();

    std::filesystem::path path_;
    std::optional<MediaFile> file_;
    std::optional<std::string> saved_;
    std::shared_ptr<zr::NSWindow> window_;
    std::shared_ptr<EditorView> editor_;
    std::shared_ptr<Jobs> jobs_ = std::make_shared<Jobs>();
    std::string lastDescription_;
    std::string status_;            // of opening and saving
    std::string notice_;            // about the clip that is chosen
    std::uint64_t playedUntil_ = 0; // nanoseconds of the queues' clock
    bool playing_ = false;
    bool scrubbing_ = false;
    bool findingStart_ = false;
    std::shared_ptr<Saving> saving_;
    bool asksToStop_ = false;
    bool failed_ = false;
    bool describes_ = false;
    std::shared_ptr<zr::NSObject> keyWindowObserver_;
    bool descriptionPosted_ = false;
};

} // namespace trimstudio
