// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSImage.h>
#include <AppKit/NSWindow.h>
#include <ZRUIKit/BaseSliderView.h>
#include <ZRUIKit/SplitSliderView.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <charconv>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace zr::test {

inline std::string written(double value) {
    char buffer[40];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

// Writes down what sliders tell, a line for each message.
class SliderRecorder : public SliderViewDelegate {
public:
    void sliderView_beginDragAt(BaseSliderView&, double value) override { add("begin " + written(value)); }
    void sliderView_didChangeValue(BaseSliderView&, double value) override { add("change " + written(value)); }
    void sliderView_endDragAt(BaseSliderView&, double value) override { add("end " + written(value)); }
    void splitSliderViewBeginDragClip_bLeftClip(SplitSliderView& view, bool left) override {
        clip("begin clip", view, left);
    }
    void splitSliderViewDragClipTo_bLeftClip(SplitSliderView& view, bool left) override {
        clip("drag clip", view, left);
    }
    void splitSliderViewEndDragClip_bLeftClip(SplitSliderView& view, bool left) override {
        clip("end clip", view, left);
    }

    // What came since the last call.
    std::vector<std::string> taken() { return std::exchange(messages_, {}); }

private:
    void add(std::string message) { messages_.push_back(std::move(message)); }
    // With the clip as the delegate finds it.
    void clip(std::string message, SplitSliderView& view, bool left) {
        message += left ? " left " : " right ";
        message += written(view.selectionItem()->dStart()) + " " + written(view.selectionItem()->dLength());
        add(std::move(message));
    }

    std::vector<std::string> messages_;
};

inline constexpr NSRect kSliderFrame = {{0, 0}, {220, 30}};
inline constexpr const char* kTrackLine =
    "fill rounded {{10, 13.5}, {200, 3}} radius {1.5, 1.5} tertiaryLabelColor";

// A slider of 220 by 30 points that fills a window, so that its coordinates are those of the window.
template <class Slider>
class SliderTest : public testing::Test {
protected:
    void TearDown() override { EXPECT_FALSE(platform_.starved()); }

    // Shows the slider, which draws it once.
    void show() {
        window_ = make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, kSliderFrame,
                                 NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
        slider_->setIdentifier("slider");
        slider_->setDelegate(recorder_);
        window_->setContentView(slider_);
        window_->makeKeyAndOrderFront(nullptr);
        platform_.display();
        user_ = platform_.windows().back();
    }

    const std::vector<std::string>& drawing() {
        platform_.display();
        return user_->drawing("slider");
    }
    int drawCount() const { return user_->drawCount("slider"); }
    std::vector<std::string> messages() { return recorder_->taken(); }

    headless::Platform platform_;
    std::shared_ptr<SliderRecorder> recorder_ = std::make_shared<SliderRecorder>();
    std::shared_ptr<Slider> slider_ = make<Slider>(kSliderFrame);
    std::shared_ptr<NSWindow> window_;
    headless::Window* user_ = nullptr;
};

} // namespace zr::test
