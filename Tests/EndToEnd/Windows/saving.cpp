// SPDX-License-Identifier: MIT
#include "WindowWithFile.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSProgressIndicator.h>

namespace trimstudio {

using namespace zr;
using testing::Contains;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class WindowsThatSave : public WindowWithFile {
protected:
    NSWindow& window() const { return *NSApplication::sharedApplication().windows().front(); }
    headless::Window* sheet() {
        for (auto* const each : platform_.windows())
            if (each->isSheet()) return each;
        return nullptr;
    }
    // What the sheet over a window says: what is done, and how far it is.
    static std::vector<std::string> texts(const NSWindow& window) {
        std::vector<std::string> result;
        for (const auto& view : window.attachedSheet()->contentView()->subviews())
            if (const auto* const label = dynamic_cast<NSTextField*>(view.get()))
                result.push_back(label->stringValue());
        return result;
    }
    double progress() const {
        for (const auto& view : window().attachedSheet()->contentView()->subviews())
            if (const auto* const bar = dynamic_cast<NSProgressIndicator*>(view.get()))
                return bar->doubleValue();
        return -1;
    }
    // The alert that is up is answered by the button of this title.
    static void answer(const std::string& title) {
        auto* const alert = NSApplication::sharedApplication().modalWindow();
        ASSERT_NE(alert, nullptr);
        for (const auto& view : alert->contentView()->subviews())
            if (auto* const button = dynamic_cast<NSButton*>(view.get()); button && button->title() == title) {
                button->performClick(nullptr);
                return;
            }
        FAIL() << "no button " << title;
    }
    static bool asks() { return NSApplication::sharedApplication().modalWindow() != nullptr; }
};

TEST_F(WindowsThatSave, AShortJobShowsNoSheet) {
    window_->saveTrimmed(nullptr);
    EXPECT_EQ(message(), "Saving…");
    platform_.advance(0.299);
    EXPECT_EQ(sheet(), nullptr);
    platform_.runUntilIdle();
    EXPECT_THAT(message(), testing::StartsWith("Saved “take-trimmed.wav”"));
    platform_.advance(1);
    EXPECT_EQ(sheet(), nullptr) << "nor afterwards";
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav", "take-trimmed.wav"));
}

TEST_F(WindowsThatSave, ALongerJobShowsASheetThatStaysAGlanceAndIsFullAtTheEnd) {
    window_->saveTrimmed(nullptr);
    platform_.advance(0.3);
    ASSERT_NE(sheet(), nullptr);
    EXPECT_THAT(texts(window()), UnorderedElementsAre("Saving “take.wav”", "0 %"));
    platform_.advance(0.1);
    platform_.runUntilIdle();
    ASSERT_NE(sheet(), nullptr);
    EXPECT_THAT(texts(window()), Contains("100 %"));
    EXPECT_EQ(progress(), 1);
    EXPECT_EQ(message(), "Saving…");
    platform_.advance(0.399);
    EXPECT_NE(sheet(), nullptr);
    platform_.advance(0.002);
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_THAT(message(), testing::StartsWith("Saved “take-trimmed.wav”"));
}

TEST_F(WindowsThatSave, ALongJobsSheetGoesAtOnceWhenItIsDone) {
    window_->saveTrimmed(nullptr);
    platform_.advance(5);
    EXPECT_NE(sheet(), nullptr);
    platform_.runUntilIdle();
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_THAT(message(), testing::StartsWith("Saved “take-trimmed.wav”"));
}

TEST_F(WindowsThatSave, CancelLeavesNothingAndIsNoFailure) {
    window_->saveTrimmed(nullptr);
    platform_.advance(0.3);
    ASSERT_NE(sheet(), nullptr);
    sheet()->keyDown(kKeyCodeEscape, kEscapeCharacter);
    EXPECT_THAT(texts(window()), Contains("Cancelling…"));
    platform_.runUntilIdle();
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(message(), "Saving was cancelled. Nothing was written.");
    EXPECT_FALSE(window_->failed());
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav"));
}

TEST_F(WindowsThatSave, CancelAfterTheFileIsThereChangesNothing) {
    window_->saveTrimmed(nullptr);
    platform_.advance(0.3);
    platform_.runUntilIdle();
    ASSERT_NE(sheet(), nullptr);
    sheet()->keyDown(kKeyCodeEscape, kEscapeCharacter);
    platform_.advance(1);
    EXPECT_THAT(message(), testing::StartsWith("Saved “take-trimmed.wav”"));
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav", "take-trimmed.wav"));
}

TEST_F(WindowsThatSave, OnlyTheSheetWhoseButtonWasPressedCancels) {
    std::filesystem::copy_file(folder_ / "take.wav", folder_ / "other.wav");
    const auto other = make<TrimWindow>(&TrimWindow::initWithPath_describes, folder_ / "other.wav", false);
    other->show();
    platform_.runUntilIdle();
    window_->saveTrimmed(nullptr);
    other->saveTrimmed(nullptr);
    platform_.advance(0.3);
    std::vector<headless::Window*> sheets;
    for (auto* const each : platform_.windows())
        if (each->isSheet()) sheets.push_back(each);
    ASSERT_EQ(sheets.size(), 2u);
    sheets[0]->keyDown(kKeyCodeEscape, kEscapeCharacter);
    const auto windows = NSApplication::sharedApplication().windows();
    EXPECT_THAT(texts(*windows[0]), Contains("Cancelling…"));
    EXPECT_THAT(texts(*windows[1]), Contains("0 %"));
    platform_.runUntilIdle();
    platform_.advance(1);
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav", "other.wav", "other-trimmed.wav"));
}

TEST_F(WindowsThatSave, ClosingAsksOnlyWhileItSaves) {
    window_->saveTrimmed(nullptr);
    platform_.script([this] {
        EXPECT_EQ(platform_.windows().back()->labelText("alertMessage"), "“take.wav” is still being saved.");
        answer("Cancel");
    });
    EXPECT_FALSE(user_->closeByUser());
    EXPECT_TRUE(window().isVisible());
    platform_.script([] { answer("Discard"); });
    EXPECT_TRUE(user_->closeByUser());
    platform_.runUntilIdle();
    platform_.advance(1);
    EXPECT_THAT(platform_.windows(), IsEmpty()) << "no sheet comes any more";
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav"));
}

TEST_F(WindowsThatSave, ClosingAsksUnderTheSheetToo) {
    window_->saveTrimmed(nullptr);
    platform_.advance(0.3);
    ASSERT_NE(sheet(), nullptr);
    platform_.script([] { answer("Discard"); });
    EXPECT_TRUE(user_->closeByUser());
    EXPECT_THAT(platform_.windows(), IsEmpty());
    platform_.runUntilIdle();
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav"));
}

TEST_F(WindowsThatSave, ASaveThatEndsSettlesTheQuestion) {
    window_->saveTrimmed(nullptr);
    platform_.script([this] {
        EXPECT_TRUE(asks());
        platform_.runUntilIdle();
    });
    EXPECT_TRUE(user_->closeByUser());
    EXPECT_FALSE(asks());
    EXPECT_THAT(platform_.windows(), IsEmpty());
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav", "take-trimmed.wav"));
}

TEST_F(WindowsThatSave, ASaveThatFailsSettlesTheQuestionAndIsTold) {
    window_->saveTrimmed(nullptr);
    std::filesystem::remove(folder_ / "take.wav");
    platform_.script([this] { platform_.runUntilIdle(); });
    EXPECT_FALSE(user_->closeByUser());
    EXPECT_FALSE(asks());
    EXPECT_TRUE(window_->failed());
    EXPECT_THAT(message(), testing::HasSubstr("take.wav"));
}

TEST_F(WindowsThatSave, WhoHasCancelledIsNotAskedAgain) {
    window_->saveTrimmed(nullptr);
    platform_.advance(0.3);
    sheet()->keyDown(kKeyCodeEscape, kEscapeCharacter);
    EXPECT_TRUE(window_->mayStopSaving());
    EXPECT_FALSE(platform_.starved());
}

TEST_F(WindowsThatSave, ADiscardThatComesWhenTheFileIsDoneRemovesIt) {
    window_->saveTrimmed(nullptr);
    platform_.runGlobalQueue(); // its answer is still on the way
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav", "take-trimmed.wav"));
    platform_.script([] { answer("Discard"); });
    EXPECT_TRUE(user_->closeByUser());
    platform_.runUntilIdle();
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav"));
}

TEST_F(WindowsThatSave, ACancelThatComesWhenTheFileIsDoneRemovesIt) {
    window_->saveTrimmed(nullptr);
    platform_.advance(0.3);
    platform_.runGlobalQueue();
    sheet()->keyDown(kKeyCodeEscape, kEscapeCharacter);
    platform_.runUntilIdle();
    EXPECT_EQ(message(), "Saving was cancelled. Nothing was written.");
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav"));
}

TEST_F(WindowsThatSave, QuittingAsksWhetherToStop) {
    EXPECT_TRUE(window_->mayStopSaving()) << "there is nothing to ask";
    window_->saveTrimmed(nullptr);
    platform_.script([] { answer("Cancel"); });
    EXPECT_FALSE(window_->mayStopSaving());
    platform_.script([this] {
        EXPECT_FALSE(window_->mayStopSaving()) << "it asks already";
        answer("Discard");
    });
    EXPECT_TRUE(window_->mayStopSaving());
    EXPECT_FALSE(platform_.starved());
}

TEST_F(WindowsThatSave, AQuestionThatTheEndOfTheProgramTookAwayStopsNothing) {
    window_->saveTrimmed(nullptr);
    platform_.script([] { NSApplication::sharedApplication().abortModal(); });
    EXPECT_FALSE(window_->mayStopSaving());
    platform_.runUntilIdle();
    EXPECT_THAT(files(), UnorderedElementsAre("take.wav", "take-trimmed.wav"));
}

} // namespace trimstudio
