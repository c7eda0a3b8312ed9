// SPDX-License-Identifier: MIT
#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSString.h>
#include <HostLibraries/GlobalFun.h>
#include <ZRUIKit/SWTimeEditView.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <fstream>
#include <limits>

#include <Support/TemporaryFolder.h>

namespace zr {

using testing::ElementsAre;

namespace {

class Judge : public SWTimeEditViewDelegate {
public:
    bool SWTimeEditView_isValid(SWTimeEditView&, double seconds) override {
        log.push_back(stringWithFormat("valid? %g", seconds));
        return seconds <= limit;
    }
    void SWTimeEditView_didChangeValue(SWTimeEditView&, double seconds) override {
        log.push_back(stringWithFormat("changed %g", seconds));
    }
    double limit = 1e9;
    std::vector<std::string> log;
};

// An application with its own texts.
class Texts {
public:
    Texts() {
        std::filesystem::create_directories(folder_.path() / "en.lproj");
        std::ofstream(folder_.path() / "en.lproj" / "Localizable.strings")
            << "\"WrongTimeInput\" = \"That time does not fit\";\n\"OK\" = \"Fine\";\n";
    }
    std::filesystem::path path() const { return folder_.path(); }

private:
    test::TemporaryFolder folder_;
};

} // namespace

class TimeEditViewEditing : public testing::Test {
protected:
    void SetUp() override {
        view_ = make<SWTimeEditView>(NSMakeRect(0, 0, 190, 24));
        view_->awakeFromNib();
        view_->setIdentifier("time");
        view_->lblHour()->setIdentifier("hours");
        view_->lblMinite()->setIdentifier("minutes");
        view_->lblSecond()->setIdentifier("seconds");
        view_->setDelegate(judge_);
        window_ =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 200, 60),
                           NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
        window_->contentView()->addSubview(view_);
        window_->makeKeyAndOrderFront(nullptr);
        EXPECT_EQ(window_->firstResponder(), view_->lblHour().get());
        window_->makeFirstResponder(nullptr);
        taken();
        platform_.display();
        user_ = platform_.windows().at(0);
    }
    void TearDown() override { window_->close(); }

    std::array<std::string, 3> shown() const {
        return {view_->lblHour()->stringValue(), view_->lblMinite()->stringValue(),
                view_->lblSecond()->stringValue()};
    }
    void clickSeconds() { user_->mouseDown({155, 12}); }
    void typeOver(const std::string& text) {
        view_->lblSecond()->selectText(nullptr);
        user_->type(text);
    }
    std::vector<std::string> taken() { return std::exchange(judge_->log, {}); }
    // What the alert shows; then it is answered by Return.
    void answerTheAlert() {
        platform_.script([this] {
            ASSERT_EQ(platform_.windows().size(), 2u);
            auto* const alert = platform_.windows().at(1);
            alerts_.push_back(alert->labelText("alertMessage"));
            fieldsDuringAlert_ = shown();
            EXPECT_FALSE(user_->mouseDown({30, 12})) << "the alert is modal";
            alert->keyDown(kKeyCodeReturn, "\r");
        });
    }

    Texts texts_;
    headless::Platform platform_{{.mainBundle = texts_.path()}};
    std::shared_ptr<Judge> judge_ = std::make_shared<Judge>();
    std::shared_ptr<SWTimeEditView> view_;
    std::shared_ptr<NSWindow> window_;
    headless::Window* user_ = nullptr;
    std::vector<std::string> alerts_;
    std::array<std::string, 3> fieldsDuringAlert_;
};

TEST(TimeEditView, HasNoFieldsBeforeItIsWokenAndIgnoresWhatIsAskedOfThem) {
    headless::Platform platform;
    const auto view = make<SWTimeEditView>(NSMakeRect(0, 0, 190, 24));
    EXPECT_EQ(view->lblHour(), nullptr);
    EXPECT_TRUE(view->subviews().empty());
    view->flushWithSeconds(3725);
    view->setEditable(false);
    EXPECT_EQ(view->secondsValue(), 0.0);
    EXPECT_EQ(view->delegate(), nullptr);
}

TEST_F(TimeEditViewEditing, TheFieldsStandWhereTheViewHasRoom) {
    EXPECT_EQ(view_->lblHour()->frame(), NSMakeRect(10, 2, 50, 20));
    EXPECT_EQ(view_->lblMinite()->frame(), NSMakeRect(70, 2, 50, 20));
    EXPECT_EQ(view_->lblSecond()->frame(), NSMakeRect(130, 2, 50, 20));
    EXPECT_THAT(view_->subviews(), ElementsAre(view_->lblHour(), view_->lblMinite(), view_->lblSecond()));
    for (const auto& field : {view_->lblHour(), view_->lblMinite(), view_->lblSecond()}) {
        EXPECT_EQ(field->font(), NSFont::systemFontOfSize(10));
        EXPECT_EQ(field->focusRingType(), NSFocusRingTypeNone);
        EXPECT_EQ(field->alignment(), NSTextAlignmentCenter);
        EXPECT_EQ(field->delegate(), view_);
        EXPECT_TRUE(field->isEditable());
    }
    EXPECT_THAT(user_->traits("hours"), ElementsAre("editable", "selectable", "bezel", "background"));
}

TEST_F(TimeEditViewEditing, WakingItAgainReplacesTheFields) {
    const auto old = view_->lblHour();
    view_->setFrameSize({220, 34});
    view_->awakeFromNib();
    EXPECT_EQ(view_->subviews().size(), 3u);
    EXPECT_EQ(old->superview(), nullptr);
    EXPECT_EQ(view_->lblHour()->frame(), NSMakeRect(10, 2, 60, 30));
    EXPECT_EQ(view_->lblSecond()->frame(), NSMakeRect(150, 2, 60, 30));
}

TEST_F(TimeEditViewEditing, TheColonsStandBetweenTheFields) {
    EXPECT_THAT(user_->drawing("time"), ElementsAre("text \":\" system 12 labelColor at {63, 4}",
                                                    "text \":\" system 12 labelColor at {123, 4}"));
}

TEST(TimeEditView, WithoutFieldsTheColonsStandAtTheLeftEdge) {
    headless::Platform platform;
    const auto view = make<SWTimeEditView>(NSMakeRect(0, 0, 190, 24));
    view->setIdentifier("time");
    const auto window =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 200, 60),
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    window->contentView()->addSubview(view);
    window->makeKeyAndOrderFront(nullptr);
    platform.display();
    EXPECT_THAT(
        platform.windows().at(0)->drawing("time"),
        ElementsAre("text \":\" system 12 labelColor at {3, 4}", "text \":\" system 12 labelColor at {3, 4}"));
}

TEST_F(TimeEditViewEditing, ADurationIsShownWithTwoDigitsAndReadBack) {
    const std::vector<std::pair<double, std::array<std::string, 3>>> cases = {
        {0, {"00", "00", "00"}},      {5, {"00", "00", "05"}},       {3725, {"01", "02", "05"}},
        {359999, {"99", "59", "59"}}, {360000, {"100", "00", "00"}}, {59.999, {"00", "00", "59"}},
        {3599.5, {"00", "59", "59"}}, {-3725, {"-1", "-2", "-5"}},   {-0.5, {"00", "00", "00"}},
    };
    for (const auto& [seconds, texts] : cases) {
        view_->flushWithSeconds(seconds);
        EXPECT_EQ(shown(), texts) << seconds;
        EXPECT_EQ(view_->secondsValue(), std::trunc(seconds)) << seconds;
    }
    EXPECT_TRUE(taken().empty()) << "nobody is told";
}

TEST_F(TimeEditViewEditing, WhatStandsInTheFieldsIsReadAsDecimalNumbers) {
    const auto read = [&](const char* hours, const char* minutes, const char* seconds) {
        view_->lblHour()->setStringValue(hours);
        view_->lblMinite()->setStringValue(minutes);
        view_->lblSecond()->setStringValue(seconds);
        return view_->secondsValue();
    };
    EXPECT_EQ(read("00", "1.5", "00"), 90.0);
    EXPECT_EQ(read("00", "75", "00"), 4500.0);
    EXPECT_EQ(read("1", "1", "abc"), 3660.0);
    EXPECT_EQ(read("", "", "7 seconds"), 7.0);
    EXPECT_EQ(read("0.5", "-1", "0.25"), 1740.25);
    EXPECT_EQ(view_->lastEnterValue(), 0.0);
}

TEST_F(TimeEditViewEditing, AReadOnlyFieldHasNoBackground) {
    view_->setEditable(false);
    EXPECT_FALSE(view_->lblMinite()->isEditable());
    EXPECT_THAT(user_->traits("minutes"), ElementsAre("selectable", "bezel"));
    view_->setEditable(true);
    EXPECT_THAT(user_->traits("minutes"), ElementsAre("editable", "selectable", "bezel", "background"));
}

TEST_F(TimeEditViewEditing, AnAcceptedValueIsJudgedThenReportedOnce) {
    view_->flushWithSeconds(65);
    clickSeconds();
    typeOver("30");
    EXPECT_TRUE(taken().empty()) << "not while typing";
    EXPECT_TRUE(view_->bTextChanged());
    EXPECT_EQ(view_->lastEnterValue(), 65.0);
    user_->keyDown(kKeyCodeReturn, "\r");
    EXPECT_THAT(taken(), ElementsAre("valid? 90", "changed 90"));
    EXPECT_FALSE(view_->bTextChanged());
    // Return again, without typing: judged, and not reported.
    user_->keyDown(kKeyCodeReturn, "\r");
    EXPECT_THAT(taken(), ElementsAre("valid? 90"));
}

TEST_F(TimeEditViewEditing, MovingThroughTheFieldsWithoutTypingReportsNothing) {
    view_->flushWithSeconds(3725);
    clickSeconds();
    for (int i = 0; i < 6; ++i) user_->keyDown(kKeyCodeTab, "\t");
    user_->keyDown(kKeyCodeTab, "\t", NSEventModifierFlagShift);
    EXPECT_THAT(taken(), testing::Each("valid? 3725"));
    EXPECT_EQ(view_->secondsValue(), 3725.0);
}

TEST_F(TimeEditViewEditing, TabGoesFromFieldToFieldAndBack) {
    clickSeconds();
    EXPECT_EQ(window_->firstResponder(), view_->lblSecond().get());
    user_->keyDown(kKeyCodeTab, "\t");
    EXPECT_EQ(window_->firstResponder(), view_->lblHour().get());
    EXPECT_THAT(user_->traits("hours"), testing::Contains("all selected"));
    user_->keyDown(kKeyCodeTab, "\t");
    EXPECT_EQ(window_->firstResponder(), view_->lblMinite().get());
    user_->keyDown(kKeyCodeTab, "\t", NSEventModifierFlagShift);
    EXPECT_EQ(window_->firstResponder(), view_->lblHour().get());
}

TEST_F(TimeEditViewEditing, ARefusedValueBringsUpAnAlertAndTheOldValueAndGoesOnEditing) {
    judge_->limit = 80;
    view_->flushWithSeconds(65);
    clickSeconds();
    typeOver("30");
    answerTheAlert();
    user_->keyDown(kKeyCodeTab, "\t");
    EXPECT_THAT(alerts_, ElementsAre("That time does not fit"));
    EXPECT_EQ(fieldsDuringAlert_, (std::array<std::string, 3>{"00", "01", "30"})) << "until it is answered";
    EXPECT_EQ(shown(), (std::array<std::string, 3>{"00", "01", "05"}));
    EXPECT_EQ(window_->firstResponder(), view_->lblSecond().get());
    EXPECT_FALSE(view_->bTextChanged());
    EXPECT_THAT(taken(), ElementsAre("valid? 90"));
    // Ending without typing again reports nothing.
    user_->keyDown(kKeyCodeTab, "\t");
    EXPECT_EQ(window_->firstResponder(), view_->lblHour().get());
    EXPECT_THAT(taken(), ElementsAre("valid? 65"));
    EXPECT_EQ(platform_.windows().size(), 1u);
}

TEST_F(TimeEditViewEditing, AfterARefusalAnotherValueCanBeTypedAndIsReported) {
    judge_->limit = 80;
    view_->flushWithSeconds(65);
    clickSeconds();
    typeOver("30");
    answerTheAlert();
    user_->keyDown(kKeyCodeReturn, "\r");
    typeOver("10");
    EXPECT_EQ(view_->lastEnterValue(), 65.0);
    user_->keyDown(kKeyCodeReturn, "\r");
    EXPECT_THAT(taken(), ElementsAre("valid? 90", "valid? 70", "changed 70"));
}

TEST_F(TimeEditViewEditing, TheAlertHasTheApplicationsButtonAlone) {
    judge_->limit = -1;
    clickSeconds();
    std::vector<std::string> names;
    std::string button;
    platform_.script([&] {
        auto* const panel = NSApplication::sharedApplication().keyWindow();
        for (const auto& view : panel->contentView()->subviews())
            if (const auto* each = dynamic_cast<NSButton*>(view.get())) {
                names.push_back(each->title());
                NSApplication::sharedApplication().stopModalWithCode(1000);
            }
    });
    user_->keyDown(kKeyCodeReturn, "\r");
    EXPECT_THAT(names, ElementsAre("Fine"));
}

TEST_F(TimeEditViewEditing, WithoutADelegateEveryValueIsAcceptedAndNoneReported) {
    view_->setDelegate(nullptr);
    clickSeconds();
    typeOver("99");
    user_->keyDown(kKeyCodeReturn, "\r");
    EXPECT_EQ(view_->secondsValue(), 99.0);
    EXPECT_FALSE(view_->bTextChanged());
    EXPECT_TRUE(taken().empty());
}

TEST_F(TimeEditViewEditing, EscapePutsTheOldTextBack) {
    view_->flushWithSeconds(65);
    clickSeconds();
    typeOver("30");
    user_->keyDown(kKeyCodeEscape, "\x1b");
    EXPECT_EQ(shown(), (std::array<std::string, 3>{"00", "01", "05"}));
    EXPECT_EQ(window_->firstResponder(), view_->lblSecond().get());
    EXPECT_TRUE(taken().empty());
}

TEST(GlobalFunTime, IsSplitIntoWholeSecondsOfTheSameSign) {
    const auto split = [](double seconds) {
        std::int32_t hour = 7, minute = 7, second = 7;
        GlobalFun::getHour_minite_second_withTime(hour, minute, second, seconds);
        return std::array{hour, minute, second};
    };
    EXPECT_EQ(split(0), (std::array{0, 0, 0}));
    EXPECT_EQ(split(59.9999), (std::array{0, 0, 59}));
    EXPECT_EQ(split(3661), (std::array{1, 1, 1}));
    EXPECT_EQ(split(86399), (std::array{23, 59, 59}));
    EXPECT_EQ(split(-3661.9), (std::array{-1, -1, -1}));
    EXPECT_EQ(split(std::nan("")), (std::array{0, 0, 0}));
    EXPECT_EQ(split(1e300)[0], std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(split(std::numeric_limits<double>::infinity()),
              (std::array{std::numeric_limits<std::int32_t>::max(), 0, 0}));
    for (double seconds = 0; seconds < 1e6; seconds += 977) {
        const auto [hour, minute, second] = split(seconds);
        ASSERT_EQ(hour * 3600.0 + minute * 60.0 + second, seconds);
    }
}

} // namespace zr
