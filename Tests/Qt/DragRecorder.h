// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSString.h>
#include <ZRUIKit/BaseSliderView.h>

#include <functional>
#include <string>
#include <vector>

namespace zr::test {

// Writes down what a slider tells of a drag.
class DragRecorder : public SliderViewDelegate {
public:
    void sliderView_beginDragAt(BaseSliderView&, double value) override {
        log.push_back(stringWithFormat("begin %g", value));
    }
    void sliderView_didChangeValue(BaseSliderView&, double value) override {
        log.push_back(stringWithFormat("change %g", value));
        if (onChange) onChange();
    }
    void sliderView_endDragAt(BaseSliderView&, double value) override {
        log.push_back(stringWithFormat("end %g", value));
    }
    std::function<void()> onChange;
    std::vector<std::string> log;
};

} // namespace zr::test
