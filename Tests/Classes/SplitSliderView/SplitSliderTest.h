// SPDX-License-Identifier: MIT
#pragma once

#include "Support/SliderTest.h"

#include <ZRUIKitHeadless/RecordingCanvas.h>

namespace zr::test {

inline std::shared_ptr<NSImage> picture(const std::string& name, NSSize size) {
    auto image = make<NSImage>();
    image->addRepresentation({std::make_shared<headless::NamedBitmap>(name, size), 1, Appearance::light});
    return image;
}

// A split slider with handles of 8 by 12 points and the clip 0 to 1000. The left handle is drawn at (2, 16.5),
// the right one at (210, 16.5).
class SplitSliderTest : public SliderTest<SplitSliderView> {
protected:
    void SetUp() override {
        slider_->setTrimLeftImg(picture("left", {8, 12}));
        slider_->setTrimRightImg(picture("right", {8, 12}));
        show();
    }

    double start() const { return slider_->selectionItem()->dStart(); }
    double length() const { return slider_->selectionItem()->dLength(); }
    void setClip(double start, double length) {
        slider_->setSelection_length(start, length);
        platform_.display();
    }
};

} // namespace zr::test
