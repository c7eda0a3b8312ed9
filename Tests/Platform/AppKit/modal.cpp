// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSButton.h>

namespace zr {

using testing::ElementsAre;

class ModalSessions : public test::WindowTest {
protected:
    void SetUp() override { show(probe("root", NSMakeRect(0, 0, 200, 100))); }
    static NSApplication& application() { return NSApplication::sharedApplication(); }
    std::shared_ptr<NSAlert> alert(const std::vector<std::string>& titles) {
        auto result = make<NSAlert>();
        result->setMessageText("Title");
        for (const auto& title : titles) result->addButtonWithTitle(title);
        return result;
    }
};

TEST_F(ModalSessions, EndWithTheCodeThatTheyAreGivenTheInnermostFirst) {
    const auto outer = makeWindow(nullptr), inner = makeWindow(nullptr);
    std::vector<int> codes;
    platform_.script([&] {
        platform_.script([&] { application().stopModalWithCode(7); });
        codes.push_back(application().runModalForWindow(*inner));
        inner->orderOut(nullptr);
        application().stopModal();
    });
    codes.push_back(application().runModalForWindow(*outer));
    EXPECT_THAT(codes, ElementsAre(7, -1000));
    EXPECT_TRUE(outer->isVisible()) << "it is the program's to order it out";
}

TEST_F(ModalSessions, AreAbortedWhenTheWindowClosesOrIsHiddenOrTheApplicationQuits) {
    const auto window = makeWindow(nullptr);
    platform_.script([&] { window->close(); });
    EXPECT_EQ(application().runModalForWindow(*window), -1001);
    platform_.script([&] { window->orderOut(nullptr); });
    EXPECT_EQ(application().runModalForWindow(*window), -1001);
    platform_.script([&] { application().abortModal(); });
    EXPECT_EQ(application().runModalForWindow(*window), -1001);
    EXPECT_FALSE(platform_.starved());
    platform_.script([&] { application().terminate(nullptr); });
    EXPECT_EQ(application().runModalForWindow(*window), -1001);
    EXPECT_EQ(application().runModalForWindow(*window), -1001) << "nor does another begin";
}

TEST_F(ModalSessions, AButtonPressedTwiceAnswersOnlyItsOwnAlert) {
    const auto outer = alert({"Delete all", "Keep"}), inner = alert({"Yes", "No"});
    std::vector<int> answers;
    platform_.script([&] {
        platform_.script([&] {
            const auto yes = inner->buttons()[0];
            yes->performClick(nullptr);
            yes->performClick(nullptr);
        });
        answers.push_back(inner->runModal());
        platform_.script([&] { outer->buttons()[1]->performClick(nullptr); });
    });
    answers.push_back(outer->runModal());
    EXPECT_THAT(answers, ElementsAre(1000, 1001));
}

TEST_F(ModalSessions, AnAlertIsNoReasonToQuitAndNoneToGoOn) {
    struct Quits : NSApplicationDelegate {
        std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(NSApplication&) override {
            ++asked;
            return false;
        }
        int asked = 0;
    };
    const auto delegate = std::make_shared<Quits>();
    application().setDelegate(delegate);
    const auto question = alert({"OK"});
    platform_.script([&] {
        window_->close();
        EXPECT_EQ(delegate->asked, 1) << "the last window but for the alert";
        question->buttons()[0]->performClick(nullptr);
    });
    question->runModal();
    EXPECT_EQ(delegate->asked, 1);
}

TEST_F(ModalSessions, TheKeyboardComesBackToTheWindowThatHadIt) {
    const auto question = alert({"OK"});
    platform_.script([&] {
        EXPECT_FALSE(window_->isKeyWindow());
        question->buttons()[0]->performClick(nullptr);
    });
    question->runModal();
    EXPECT_TRUE(window_->isKeyWindow());
}

TEST_F(ModalSessions, AnAlertsKeysCanBeChangedBeforeItRuns) {
    const auto question = alert({"Delete", "Cancel"});
    EXPECT_EQ(question->buttons()[0]->keyEquivalent(), "\r");
    EXPECT_EQ(question->buttons()[1]->keyEquivalent(), "\x1b");
    question->buttons()[0]->setKeyEquivalent("");
    question->buttons()[1]->setKeyEquivalent("\r");
    platform_.script([&] { platform_.windows().back()->keyDown(kKeyCodeReturn, "\r"); });
    EXPECT_EQ(question->runModal(), 1001);
    // It may be run again.
    platform_.script([&] { question->buttons()[0]->performClick(nullptr); });
    EXPECT_EQ(question->runModal(), 1000);
}

TEST_F(ModalSessions, DoNotSaveHasAKeyOfItsOwnUnlessItIsFirst) {
    const auto question = alert({"Save", "Cancel", "Don't Save"});
    platform_.script([&] {
        platform_.windows().back()->keyDown(0, "d");
        EXPECT_NE(application().modalWindow(), nullptr) << "with Command only";
        platform_.windows().back()->keyDown(0, "d", NSEventModifierFlagCommand);
    });
    EXPECT_EQ(question->runModal(), 1002);
    EXPECT_EQ(alert({"Don't Save", "Cancel"})->buttons()[0]->keyEquivalent(), "\r");
}

TEST_F(ModalSessions, APanelAnswersByItsPlaceAndFormatsItsMessage) {
    const auto press = [&](int index) {
        platform_.script([this, index] {
            std::vector<NSButton*> buttons;
            for (const auto& view : application().keyWindow()->contentView()->subviews())
                if (auto* const button = dynamic_cast<NSButton*>(view.get())) buttons.push_back(button);
            std::ranges::sort(buttons, {}, &NSButton::tag);
            EXPECT_EQ(platform_.windows().back()->labelText("alertInformation"), "3 of 4 %");
            buttons.at(std::size_t(index))->performClick(nullptr);
        });
    };
    const auto run = [] { return NSRunAlertPanel("Title", "%d of %@ %%", "Yes", "No", "Maybe", 3, "4"); };
    press(0);
    EXPECT_EQ(run(), NSAlertDefaultReturn);
    press(1);
    EXPECT_EQ(run(), NSAlertAlternateReturn);
    press(2);
    EXPECT_EQ(run(), NSAlertOtherReturn);
    platform_.script([] { application().abortModal(); });
    EXPECT_EQ(run(), NSAlertErrorReturn);
}

} // namespace zr
