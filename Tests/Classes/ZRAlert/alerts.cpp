// SPDX-License-Identifier: MIT
#include "Support/LoggedTexts.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <ZRUIKit/ZRAlert.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include <Support/TemporaryFolder.h>

namespace zr {

using testing::ElementsAre;

class ZRAlertTest : public testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(folder_.path() / "en.lproj");
        std::ofstream(folder_.path() / "en.lproj" / "Localizable.strings")
            << R"("OK" = "Fine"; "Cancel" = "Never mind"; "Exit" = "Leave"; "Confirm" = "Do it"; "Discard" = "Drop";)";
        platform_ = std::make_unique<headless::Platform>(headless::Options{.mainBundle = folder_.path()});
    }
    // What the alert shows while it runs; then the button at the index is pressed, by a click.
    void answer(std::size_t index) {
        platform_->script([this, index] {
            look();
            auto& application = NSApplication::sharedApplication();
            const auto buttons = shownButtons(*application.keyWindow());
            const NSRect frame = buttons.at(index)->frame();
            auto* const user = platform_->windows().back();
            user->mouseDown({NSMidX(frame), NSMidY(frame)});
            user->mouseUp({NSMidX(frame), NSMidY(frame)});
        });
    }
    void press(std::uint16_t key, const char* characters) {
        platform_->script([this, key, characters] {
            look();
            platform_->windows().back()->keyDown(key, characters);
        });
    }
    void look() {
        message_ = platform_->windows().back()->labelText("alertMessage");
        const auto names = platform_->windows().back()->viewNames();
        hasInformation_ = std::ranges::find(names, "alertInformation") != names.end();
        titles_.clear();
        for (const auto& button : shownButtons(*NSApplication::sharedApplication().keyWindow()))
            titles_.push_back(button->title());
    }
    // By their tags.
    static std::vector<NSButton*> shownButtons(NSWindow& window) {
        std::vector<NSButton*> buttons;
        for (const auto& view : window.contentView()->subviews())
            if (auto* const button = dynamic_cast<NSButton*>(view.get())) buttons.push_back(button);
        std::ranges::sort(buttons, {}, &NSButton::tag);
        return buttons;
    }
    ZRAlertAction::Block note(const char* what) {
        return [this, what] { log_.emplace_back(what); };
    }
    ZRAlert::ClickHandler noteClick() {
        return [this](ZRAlertAction& action) { log_.push_back("clicked " + action.title()); };
    }

    test::TemporaryFolder folder_;
    std::unique_ptr<headless::Platform> platform_;
    std::vector<std::string> log_, titles_;
    std::string message_;
    bool hasInformation_ = false;
};

TEST_F(ZRAlertTest, ActionsHaveTheApplicationsTitlesAndTheirBlocks) {
    const auto block = note("ran");
    const std::vector<std::pair<std::shared_ptr<ZRAlertAction>, std::string>> all = {
        {ZRAlertAction::OK(block), "Fine"},      {ZRAlertAction::CANCEL(block), "Never mind"},
        {ZRAlertAction::EXIT(block), "Leave"},   {ZRAlertAction::CONFIRM(block), "Do it"},
        {ZRAlertAction::DISCARD(block), "Drop"}, {ZRAlertAction::actionWithTitle_block("Own", block), "Own"},
    };
    for (const auto& [action, title] : all) {
        EXPECT_EQ(action->title(), title);
        action->actionBlock()();
    }
    EXPECT_EQ(log_.size(), all.size());
    EXPECT_FALSE(ZRAlertAction::OK(nullptr)->actionBlock());
}

TEST_F(ZRAlertTest, ThePressedButtonsBlockRunsThenTheClickHandler) {
    answer(1);
    ZRAlert::Actions_title_info_alertStyle_accessoryView_clickHander(
        {ZRAlertAction::DISCARD(note("discard")), ZRAlertAction::CANCEL(note("cancel"))}, "Discard changes?",
        "They are lost.", NSAlertStyleCritical, nullptr, noteClick());
    EXPECT_EQ(message_, "Discard changes?");
    EXPECT_TRUE(hasInformation_);
    EXPECT_THAT(titles_, ElementsAre("Drop", "Never mind"));
    EXPECT_THAT(log_, ElementsAre("cancel", "clicked Never mind"));
    EXPECT_TRUE(platform_->windows().empty()) << "the alert has gone";
}

TEST_F(ZRAlertTest, TheAlertHasGoneWhenTheBlockRuns) {
    answer(0);
    std::size_t windows = 99;
    ZRAlert::Actions_title_info_accessoryView(
        {ZRAlertAction::OK([&] { windows = platform_->windows().size(); })}, "Title", "Info", nullptr);
    EXPECT_EQ(windows, 0u);
}

TEST_F(ZRAlertTest, AnActionWithoutABlockStillReachesTheClickHandler) {
    answer(0);
    ZRAlert::Actions_title_info_alertStyle_accessoryView_clickHander({ZRAlertAction::OK(nullptr)}, "Title",
                                                                     std::nullopt, 0, nullptr, noteClick());
    EXPECT_THAT(log_, ElementsAre("clicked Fine"));
    EXPECT_FALSE(hasInformation_) << "nil shows as nothing";
}

TEST_F(ZRAlertTest, WithoutActionsTheAlertRunsAndNothingIsCalled) {
    answer(0);
    ZRAlert::Actions_title_info_alertStyle_accessoryView_clickHander({}, "Title", "Info", 0, nullptr,
                                                                     noteClick());
    EXPECT_THAT(titles_, ElementsAre("Fine")) << "the platform's own button";
    EXPECT_TRUE(log_.empty());
}

TEST_F(ZRAlertTest, AResponseOutsideTheButtonsCallsNothing) {
    for (const int code : {999, 1002, -1000, -1001, 0}) {
        platform_->script([code] { NSApplication::sharedApplication().stopModalWithCode(code); });
        ZRAlert::Actions_title_info_alertStyle_accessoryView_clickHander(
            {ZRAlertAction::OK(note("ok")), ZRAlertAction::CANCEL(note("cancel"))}, "Title", "Info", 0, nullptr,
            noteClick());
        EXPECT_TRUE(log_.empty()) << code;
    }
}

TEST_F(ZRAlertTest, TheBeforeRunBlockSeesTheWholeAlertAndMayChangeIt) {
    const auto accessory = make<NSView>(NSMakeRect(0, 0, 120, 30));
    answer(0);
    ZRAlert::Actions_title_info_alertStyle_accessoryView_clickHander_beforeRun(
        {ZRAlertAction::OK(nullptr), ZRAlertAction::CANCEL(nullptr)}, "Title", std::nullopt,
        NSAlertStyleInformational, accessory, nullptr, [&](NSAlert& alert) {
            EXPECT_EQ(alert.alertStyle(), NSAlertStyleInformational);
            EXPECT_EQ(alert.messageText(), "Title");
            EXPECT_EQ(alert.informativeText(), "");
            EXPECT_EQ(alert.accessoryView(), accessory);
            ASSERT_EQ(alert.buttons().size(), 2u);
            EXPECT_EQ(alert.buttons()[0]->tag(), 1000);
            EXPECT_EQ(alert.buttons()[1]->tag(), 1001);
            EXPECT_TRUE(platform_->windows().empty()) << "not shown yet";
            alert.setMessageText("Changed");
            log_.emplace_back("before");
        });
    EXPECT_EQ(message_, "Changed");
    EXPECT_THAT(log_, ElementsAre("before"));
    EXPECT_EQ(accessory->frame().size, (NSSize{120, 30}));
}

TEST_F(ZRAlertTest, TheShortFormIsAWarningWithoutAHandler) {
    answer(0);
    ZRAlert::Actions_title_info_accessoryView({ZRAlertAction::CONFIRM(note("confirmed"))}, "Title", "Info",
                                              nullptr);
    EXPECT_THAT(log_, ElementsAre("confirmed"));
}

TEST_F(ZRAlertTest, ANoticeHasOneButtonAndLeavesAnEmptyInfoOut) {
    answer(0);
    ZRAlert::OK_info("Saved", "Under another name.");
    EXPECT_EQ(message_, "Saved");
    EXPECT_TRUE(hasInformation_);
    EXPECT_THAT(titles_, ElementsAre("Fine"));
    for (const std::optional<std::string>& info :
         {std::optional<std::string>(""), std::optional<std::string>()}) {
        answer(0);
        ZRAlert::OK_info("Saved", info);
        EXPECT_FALSE(hasInformation_);
    }
}

TEST_F(ZRAlertTest, ReturnPressesTheFirstButtonAndEscapeTheOneForCancelling) {
    const ZRAlert::Actions actions = {ZRAlertAction::DISCARD(note("discard")), ZRAlertAction::OK(note("ok")),
                                      ZRAlertAction::CANCEL(note("cancel"))};
    press(kKeyCodeReturn, "\r");
    ZRAlert::Actions_title_info_accessoryView(actions, "Title", "Info", nullptr);
    press(kKeyCodeEscape, "\x1b");
    ZRAlert::Actions_title_info_accessoryView(actions, "Title", "Info", nullptr);
    platform_->script([&] { platform_->windows().back()->closeByUser(); });
    ZRAlert::Actions_title_info_accessoryView(actions, "Title", "Info", nullptr);
    EXPECT_THAT(log_, ElementsAre("discard", "cancel", "cancel"));
}

TEST_F(ZRAlertTest, WithoutACancelButtonEscapeAndClosingDoNothing) {
    press(kKeyCodeEscape, "\x1b");
    platform_->script([&] { EXPECT_FALSE(platform_->windows().back()->closeByUser()); });
    answer(0);
    ZRAlert::Actions_title_info_accessoryView({ZRAlertAction::OK(note("ok"))}, "Title", "Info", nullptr);
    EXPECT_THAT(log_, ElementsAre("ok"));
}

TEST_F(ZRAlertTest, AFirstButtonForCancellingHasBothKeys) {
    for (const auto& [key, characters] : {std::pair{kKeyCodeReturn, "\r"}, std::pair{kKeyCodeEscape, "\x1b"}}) {

        press(key, characters);
        ZRAlert::Actions_title_info_accessoryView(
            {ZRAlertAction::CANCEL(note("cancel")), ZRAlertAction::OK(nullptr)}, "Title", "Info", nullptr);
    }
    platform_->script([&] { platform_->windows().back()->closeByUser(); });
    ZRAlert::Actions_title_info_accessoryView({ZRAlertAction::CANCEL(note("cancel"))}, "Title", "Info",
                                              nullptr);
    EXPECT_THAT(log_, ElementsAre("cancel", "cancel", "cancel"));
}

TEST_F(ZRAlertTest, AnAlertMayBeAskedWithinAnAlert) {
    answer(0);
    answer(0);
    ZRAlert::Actions_title_info_accessoryView({ZRAlertAction::OK([&] {
                                                  log_.emplace_back("outer");
                                                  ZRAlert::Actions_title_info_accessoryView(
                                                      {ZRAlertAction::OK(note("inner"))}, "Inner", "Info",
                                                      nullptr);
                                              })},
                                              "Outer", "Info", nullptr);
    EXPECT_THAT(log_, ElementsAre("outer", "inner"));
}

TEST_F(ZRAlertTest, QuittingEndsTheQuestionWithoutAnAnswer) {
    platform_->script([] { NSApplication::sharedApplication().terminate(nullptr); });
    ZRAlert::Actions_title_info_alertStyle_accessoryView_clickHander({ZRAlertAction::OK(note("ok"))}, "Title",
                                                                     "Info", 0, nullptr, noteClick());
    EXPECT_TRUE(log_.empty());
}

TEST_F(ZRAlertTest, AnActionThatIsNullIsLeftOutAndNamed) {
    const auto discard = ZRAlertAction::DISCARD(note("discard")),
               cancel = ZRAlertAction::CANCEL(note("cancel"));
    answer(1);
    EXPECT_THAT(test::logged([&] {
                    ZRAlert::Actions_title_info_alertStyle_accessoryView_clickHander(
                        {discard, nullptr, cancel}, "Title", std::nullopt, 0, nullptr, noteClick());
                }),
                ElementsAre("+[ZRAlert Actions:title:info:…]: an action that is null is left out"));
    EXPECT_THAT(titles_, ElementsAre("Drop", "Never mind"));
    EXPECT_THAT(log_, ElementsAre("cancel", "clicked Never mind"));
}

} // namespace zr
