// SPDX-License-Identifier: MIT
#include "DragRecorder.h"
#include "QtTest.h"

#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ProgressSliderView.h>

#include <QDialog>
#include <QLineEdit>
#include <QShortcut>

namespace zr {

using test::DragRecorder;
using testing::ElementsAre;

// A press does not return until the drag is over: what follows is posted before it.
class QtTracking : public test::QtTest {
protected:
    void SetUp() override {
        root_ = make<NSView>(NSMakeRect(0, 0, 220, 100));
        slider_ = make<ProgressSliderView>(NSMakeRect(0, 40, 220, 31));
        slider_->setIdentifier("slider");
        slider_->setDelegate(recorder_);
        root_->addSubview(slider_);
        show(root_, {220, 100});
    }

    // At the value, on the track.
    static NSPoint at(double value) { return {10 + value / 5, 55}; }

    std::shared_ptr<DragRecorder> recorder_ = std::make_shared<DragRecorder>();
    std::shared_ptr<NSView> root_;
    std::shared_ptr<ProgressSliderView> slider_;
};

TEST_F(QtTracking, ARealDragHappensInsideThePress) {
    bool returned = false;
    then([&] { drag(at(250)); });
    then([&] { drag({2000, -700}); });
    then([&] {
        EXPECT_FALSE(returned);
        release(at(500));
    });
    press(at(700));
    returned = true;
    ASSERT_GE(recorder_->log.size(), 4u);
    EXPECT_EQ(recorder_->log[0], "begin 700");
    EXPECT_EQ(recorder_->log[1], "change 250");
    EXPECT_EQ(recorder_->log[2], "change 1000");
    EXPECT_EQ(recorder_->log.back(), "end 500");
    EXPECT_EQ(slider_->dCurValue(), 500.0);
}

TEST_F(QtTracking, EveryStepIsPaintedAndTimersAndQueuesGoOn) {
    int ticks = 0;
    bool hopped = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { ++ticks; });
    timer.start(0);
    then([&] { OnMainQueue([&] { hopped = true; }); });
    then([&] { drag(at(250)); });
    then([] {});
    then([&] {
        settle();
        EXPECT_FALSE(slider_->needsDisplay());
        EXPECT_EQ(slider_->rcKnob().origin.x, 10 + (200 - 12) * 0.25);
    });
    then([&] { release(at(250)); });
    press(at(700));
    EXPECT_TRUE(hopped);
    EXPECT_GT(ticks, 0);
}

TEST_F(QtTracking, KeysAndShortcutsComeAfterwards) {
    QLineEdit field(topLevel());
    field.show();
    field.setFocus();
    int fired = 0;
    QShortcut shortcut(QKeySequence("Ctrl+K"), topLevel());
    QObject::connect(&shortcut, &QShortcut::activated, [&] { ++fired; });
    settle();
    ASSERT_TRUE(field.hasFocus());
    then([&] { QTest::keyClick(handle(), Qt::Key_A); });
    then([&] { QTest::keyClick(handle(), Qt::Key_K, Qt::ControlModifier); });
    then([&] {
        EXPECT_EQ(field.text(), "");
        EXPECT_EQ(fired, 0);
        release(at(700));
    });
    press(at(700));
    settle();
    EXPECT_EQ(field.text(), "a");
}

TEST_F(QtTracking, ASlowHandlerGetsOneStepForMany) {
    recorder_->onChange = [&] {
        recorder_->onChange = nullptr;
        // While the first step is being handled, three more arrive.
        drag(at(300));
        drag(at(400));
        drag(at(500));
        settle();
    };
    then([&] { drag(at(250)); });
    then([&] { release(at(500)); });
    press(at(700));
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700", "change 250", "change 500", "end 500"));
}

TEST_F(QtTracking, ClosingTheWindowEndsTheDrag) {
    then([&] { topLevel()->close(); });
    press(at(700));
    EXPECT_FALSE(window_->isVisible());
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
}

TEST_F(QtTracking, HidingTheWindowEndsTheDrag) {
    then([&] { window_->orderOut(nullptr); });
    press(at(700));
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
}

TEST_F(QtTracking, DeletingTheWidgetEndsTheDrag) {
    then([&] { delete topLevel(); });
    press(at(700));
    EXPECT_FALSE(window_->isVisible());
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
}

TEST_F(QtTracking, TakingTheSliderOutEndsTheDrag) {
    then([&] { slider_->removeFromSuperview(); });
    press(at(700));
    settle();
    EXPECT_FALSE(widget("slider"));
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
}

TEST_F(QtTracking, AModalDialogEndsTheDrag) {
    QDialog dialog;
    dialog.setModal(true);
    then([&] { dialog.show(); });
    press(at(700));
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
    dialog.close();
}

TEST_F(QtTracking, QuittingEndsTheDragAndTheProgram) {
    then([&] { press(at(700)); });
    then([] { QCoreApplication::quit(); });
    NSApplication::sharedApplication().run();
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
}

TEST_F(QtTracking, LeavingAllEventLoopsEndsTheDragAndTheProgram) {
    then([&] { press(at(700)); });
    then([] { QCoreApplication::exit(3); });
    NSApplication::sharedApplication().run();
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
}

TEST_F(QtTracking, TerminatingEndsTheDragAndTheProgram) {
    then([&] { press(at(700)); });
    then([] { NSApplication::sharedApplication().terminate(nullptr); });
    NSApplication::sharedApplication().run();
    EXPECT_THAT(recorder_->log, ElementsAre("begin 700"));
}

} // namespace zr
