// SPDX-License-Identifier: MIT
#include "Support/SliderTest.h"

#include <functional>

namespace zr {

using testing::ElementsAre;

namespace {

// Looks at the slider from within each message.
struct Onlooker : SliderViewDelegate {
    void sliderView_beginDragAt(BaseSliderView& view, double value) override { look("begin", view, value); }
    void sliderView_didChangeValue(BaseSliderView& view, double value) override { look("change", view, value); }
    void sliderView_endDragAt(BaseSliderView& view, double value) override { look("end", view, value); }
    void look(const char* what, BaseSliderView& view, double value) {
        std::string line = what;
        line += value == view.dCurValue() ? " stored" : " not stored";
        line += view.bDraggingKnob() ? " dragging" : " idle";
        line += view.needsDisplay() ? " marked" : "";
        seen.push_back(std::move(line));
    }
    std::vector<std::string> seen;
};

class Senders : public BaseSliderView {
public:
    void beginDragAt(double value) override { log.push_back("begin " + test::written(value)); }
    void didChangeValue(double value) override { log.push_back("change " + test::written(value)); }
    void endDragAt(double value) override { log.push_back("end " + test::written(value)); }
    std::vector<std::string> log;
};

} // namespace

class BaseSliderViewMessages : public test::SliderTest<BaseSliderView> {
protected:
    void SetUp() override { show(); }
};

TEST_F(BaseSliderViewMessages, FindTheSliderAsItIsThen) {
    const auto onlooker = std::make_shared<Onlooker>();
    slider_->setDelegate(onlooker);
    slider_->mouseDownAt({110, 15});
    slider_->mouseDraggedTo({60, 15});
    slider_->mouseUpAt({160, 15});
    slider_->seekToValue(3);
    EXPECT_THAT(onlooker->seen, ElementsAre("begin stored dragging", "change stored dragging",
                                            "end stored idle", "change stored idle marked"));
}

TEST_F(BaseSliderViewMessages, AreSentByWhatASubclassMakesOfThem) {
    const auto slider = make<Senders>(test::kSliderFrame);
    slider->draw();
    slider->mouseDownAt({110, 15});
    slider->mouseDraggedTo({60, 15});
    slider->mouseUpAt({160, 15});
    slider->seekToValue(3);
    EXPECT_THAT(slider->log, ElementsAre("begin 500", "change 250", "end 750", "change 3"));
}

TEST_F(BaseSliderViewMessages, ASelectionSetToWhatItWasIsDrawnAgain) {
    slider_->setSelection_length(0, -1);
    EXPECT_TRUE(slider_->needsDisplay());
}

} // namespace zr
