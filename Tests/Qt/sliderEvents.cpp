// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <ZRUIKit/SplitSliderView.h>

namespace zr {

class SliderEvents : public test::QtTest {
protected:
    void SetUp() override {
        slider_ = make<SplitSliderView>(NSMakeRect(0, 0, 300, 61));
        slider_->setSliderXOffset(50);
        slider_->setIdentifier("slider");
        show(slider_, {300, 61});
    }
    double start() const { return slider_->selectionItem()->dStart(); }
    double length() const { return slider_->selectionItem()->dLength(); }

    std::shared_ptr<SplitSliderView> slider_;
};

TEST_F(SliderEvents, ARealPressTakesAHandleAndADragMovesIt) {
    EXPECT_EQ(slider_->rcClipLeft(), NSMakeRect(26, 32, 24, 28));
    press({40, 50});
    EXPECT_TRUE(slider_->bDraggingLeftClip());
    EXPECT_EQ(slider_->dDragXoffset(), 10.0);
    EXPECT_EQ(start(), 0.0);
    drag({140, 50});
    EXPECT_EQ(start(), 500.0);
    EXPECT_EQ(length(), 500.0);
    release({140, 50});
    EXPECT_FALSE(slider_->bDraggingLeftClip());
    settle();
    EXPECT_EQ(slider_->rcClipLeft(), NSMakeRect(126, 32, 24, 28)); // drawn where it is now
}

TEST_F(SliderEvents, ADragGoesOnOutsideTheWindow) {
    press({260, 50});
    EXPECT_TRUE(slider_->bDraggingRightClip());
    drag({-900, -700});
    EXPECT_EQ(length(), 5.0);
    drag({160, 2000});
    EXPECT_EQ(length(), 500.0);
    release({160, 2000});
    EXPECT_FALSE(slider_->bDraggingRightClip());
}

TEST_F(SliderEvents, ASwitchedOffSliderIgnoresThePointer) {
    slider_->setEnabled(false);
    press({40, 50});
    drag({140, 50});
    release({140, 50});
    EXPECT_EQ(start(), 0.0);
}

TEST_F(SliderEvents, TheWindowMayCloseInTheMiddleOfADrag) {
    press({40, 50});
    drag({60, 50});
    window_->close();
    EXPECT_FALSE(window_->isVisible());
    settle();
    EXPECT_FALSE(topLevel());
    EXPECT_EQ(start(), 100.0);
}

TEST_F(SliderEvents, TheWidgetMayBeDeletedInTheMiddleOfADrag) {
    press({40, 50});
    delete topLevel();
    settle();
    EXPECT_FALSE(window_->isVisible());
    EXPECT_EQ(start(), 0.0);
    // The same window can be shown again.
    window_->makeKeyAndOrderFront(nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(topLevel()));
    settle();
    press({40, 50});
    EXPECT_TRUE(slider_->bDraggingLeftClip());
}

namespace {
struct Remover : SliderViewDelegate {
    void splitSliderViewDragClipTo_bLeftClip(SplitSliderView& view, bool) override {
        view.window()->setContentView(nullptr);
    }
};
} // namespace

TEST_F(SliderEvents, TheDelegateMayRemoveTheSliderInTheMiddleOfADrag) {
    const auto remover = std::make_shared<Remover>();
    slider_->setDelegate(remover);
    press({40, 50});
    drag({60, 50});
    EXPECT_FALSE(slider_->window());
    drag({160, 50});
    release({160, 50});
    settle();
    EXPECT_EQ(start(), 100.0);
    EXPECT_FALSE(widget("slider"));
}

} // namespace zr
