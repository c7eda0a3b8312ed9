// SPDX-License-Identifier: MIT
#include <AppKit/NSApplication.h>
#include <AppKit/NSWindow.h>
#include <ZRUIKit/ZRLoadingWndCtl.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace zr {

namespace {

class CountsPresses : public NSView {
public:
    ZR_CLASS(CountsPresses, NSView)
    void mouseDown(const NSEvent&) override { ++presses; }
    int presses = 0;
};

ZR_CLASS_TABLE(CountsPresses)

} // namespace

class LoadingSheet : public testing::Test {
protected:
    void SetUp() override {
        parent_ =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 600, 400),
                           NSWindowStyleMaskTitled | NSWindowStyleMaskClosable, NSBackingStoreBuffered, false);
        parent_->setTitle("parent");
        parent_->makeKeyAndOrderFront(nullptr);
        platform_->display();
        loading_ = make<ZRLoadingWndCtl>();
        canceled_ = NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
            ZRLoadingPrgWndCanceledNotification, nullptr, [this](const NSNotification& notification) {
                EXPECT_EQ(notification.object, nullptr);
                EXPECT_TRUE(notification.userInfo.empty());
                ++cancellations_;
                if (onCancel_) onCancel_();
            });
    }
    void start(const std::string& tip = "Saving") {
        loading_->startLoading_parent(tip, parent_.get());
        loading_->prgSaving()->setIdentifier("bar");
        loading_->lblPrgTip()->setIdentifier("tip");
        loading_->lblSaveProgress()->setIdentifier("progress");
        platform_->display();
        sheet_ = platform_->windows().back();
    }
    void clickCancel() {
        const NSRect frame = loading_->btnCancel()->frame();
        sheet_->mouseDown({NSMidX(frame), NSMidY(frame)});
        sheet_->mouseUp({NSMidX(frame), NSMidY(frame)});
    }

    std::unique_ptr<headless::Platform> platform_ = std::make_unique<headless::Platform>();
    std::shared_ptr<NSWindow> parent_;
    std::shared_ptr<ZRLoadingWndCtl> loading_;
    std::shared_ptr<NSObject> canceled_;
    std::function<void()> onCancel_;
    headless::Window* sheet_ = nullptr;
    int cancellations_ = 0;
};

TEST_F(LoadingSheet, ItsFileIsReadWhenItIsFirstNeededAndGivesEveryOutlet) {
    EXPECT_FALSE(loading_->isWindowLoaded());
    EXPECT_EQ(loading_->windowNibName(), "ZRLoadingWndCtl");
    EXPECT_EQ(loading_->owner(), loading_);
    ASSERT_NE(loading_->window(), nullptr);
    EXPECT_NE(loading_->lblPrgTip(), nullptr);
    EXPECT_NE(loading_->lblSaveProgress(), nullptr);
    EXPECT_NE(loading_->prgSaving(), nullptr);
    ASSERT_NE(loading_->btnCancel(), nullptr);
    EXPECT_EQ(loading_->btnCancel()->target(), loading_.get());
    EXPECT_EQ(loading_->btnCancel()->action(), "cancelDown:");
    EXPECT_FALSE(loading_->lblPrgTip()->isEditable());
}

TEST(LoadingSheetLanguages, TheCancelButtonHasTheKitsTitle) {
    for (const auto& [language, title] :
         {std::pair{"en", "Cancel"}, std::pair{"de", "Abbrechen"}, std::pair{"fr", "Annuler"},
          std::pair{"es", "Cancelar"}, std::pair{"zh-Hans", "取消"}}) {
        headless::Platform platform({.preferredLanguages = {language}});
        const auto loading = make<ZRLoadingWndCtl>();
        ASSERT_NE(loading->window(), nullptr);
        EXPECT_EQ(loading->btnCancel()->title(), title);
    }
}

TEST_F(LoadingSheet, StartingShowsASheetThatBlocksItsWindowAlone) {
    const auto other =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 100, 100),
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    other->makeKeyAndOrderFront(nullptr);
    start("Saving “take.wav”");
    EXPECT_TRUE(sheet_->isVisible());
    EXPECT_TRUE(sheet_->isSheet());
    EXPECT_EQ(parent_->attachedSheet(), loading_->window().get());
    EXPECT_EQ(loading_->lblPrgTip()->stringValue(), "Saving “take.wav”");
    EXPECT_EQ(sheet_->labelText("tip"), "Saving “take.wav”");
    EXPECT_FALSE(loading_->prgSaving()->isIndeterminate());
    EXPECT_EQ(loading_->prgSaving()->minValue(), 0.0);
    EXPECT_EQ(loading_->prgSaving()->maxValue(), 1.0);
    EXPECT_EQ(loading_->prgSaving()->doubleValue(), 0.0);
    const std::array views = {make<CountsPresses>(NSMakeRect(0, 0, 100, 100)),
                              make<CountsPresses>(NSMakeRect(0, 0, 100, 100))};
    parent_->setContentView(views[0]);
    other->setContentView(views[1]);
    for (auto* const window : platform_->windows()) window->mouseDown({10, 10});
    EXPECT_EQ(views[0]->presses, 0) << "the parent is blocked";
    EXPECT_EQ(views[1]->presses, 1) << "the other window is not";
}

TEST_F(LoadingSheet, ProgressIsHandedOnUnlimitedAndShownWithinTheBar) {
    start();
    for (const auto& [value, shown] :
         {std::pair{0.25, 0.25}, std::pair{1.0, 1.0}, std::pair{1.75, 1.0}, std::pair{-3.0, 0.0}}) {
        loading_->updateProgress_ing(value, "some of it");
        EXPECT_EQ(loading_->prgSaving()->doubleValue(), value);
        EXPECT_EQ(sheet_->shownProgress("bar"), shown);
        EXPECT_EQ(sheet_->labelText("progress"), "some of it");
    }
}

TEST_F(LoadingSheet, EndingClearsTheProgressKeepsTheTipAndGivesTheWindowBack) {
    start("Saving");
    loading_->updateProgress_ing(0.7, "seventy");
    loading_->endLoading();
    EXPECT_EQ(loading_->prgSaving()->doubleValue(), 0.0);
    EXPECT_EQ(loading_->lblSaveProgress()->stringValue(), "");
    EXPECT_EQ(loading_->lblPrgTip()->stringValue(), "Saving");
    EXPECT_FALSE(loading_->window()->isVisible());
    EXPECT_EQ(parent_->attachedSheet(), nullptr);
    EXPECT_TRUE(platform_->windows()[0]->closeByUser());
}

TEST_F(LoadingSheet, AControllerThatGoesTakesItsSheetAlong) {
    start("Saving");
    const std::weak_ptr<NSWindow> window = loading_->window();
    loading_.reset();
    EXPECT_EQ(parent_->attachedSheet(), nullptr);
    EXPECT_TRUE(window.expired());
    EXPECT_TRUE(platform_->windows()[0]->closeByUser());
}

TEST_F(LoadingSheet, ItCanBeUsedAgainAndBeginsAtTheBeginning) {
    start("first");
    loading_->updateProgress_ing(0.5, "half");
    const auto window = loading_->window();
    start("second"); // while it is shown, too
    EXPECT_EQ(loading_->prgSaving()->doubleValue(), 0.0);
    loading_->endLoading();
    start("third");
    EXPECT_EQ(loading_->window(), window);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(loading_->lblPrgTip()->stringValue(), "third");
    EXPECT_EQ(loading_->lblSaveProgress()->stringValue(), "");
}

TEST_F(LoadingSheet, EachClickOnCancelIsAnnouncedAndTheSheetStays) {
    start();
    clickCancel();
    clickCancel();
    EXPECT_EQ(cancellations_, 2);
    EXPECT_TRUE(loading_->window()->isVisible());
    sheet_->keyDown(kKeyCodeEscape, "\x1b");
    EXPECT_EQ(cancellations_, 3);
}

TEST_F(LoadingSheet, WhoObservesTheCancellationEndsTheSheet) {
    start();
    onCancel_ = [this] { loading_->endLoading(); };
    clickCancel();
    EXPECT_FALSE(loading_->window()->isVisible());
}

TEST_F(LoadingSheet, EndingWhatWasNotStartedDoesNoHarm) {
    loading_->endLoading();
    EXPECT_FALSE(loading_->window()->isVisible());
}

} // namespace zr
