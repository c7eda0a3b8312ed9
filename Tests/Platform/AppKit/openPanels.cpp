// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"
#include "WindowTest.h"

#include <AppKit/NSOpenPanel.h>

#include <stdexcept>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

class OpenPanels : public test::WindowTest {
protected:
    void SetUp() override {
        root_ = probe("root", NSMakeRect(0, 0, 200, 100));
        show(root_);
    }
    // The only one that is shown.
    headless::OpenPanel& user() {
        const auto panels = platform_.openPanels();
        if (panels.size() != 1) throw std::logic_error("there is not one panel");
        return *panels[0];
    }
    std::vector<std::string> chosen() const {
        std::vector<std::string> paths;
        for (const auto& url : panel_->URLs()) paths.push_back(url.path());
        return paths;
    }
    // As a sheet, whose answers go into the list.
    void begin() {
        panel_->beginSheetModalForWindow_completionHandler(
            window_.get(), [this](int response) { responses_.push_back(response); });
    }
    bool windowGetsInput() {
        root_->taken();
        user_->mouseDown({5, 5});
        user_->mouseUp({5, 5});
        return root_->taken().size() == 2;
    }

    std::shared_ptr<test::Probe> root_;
    std::shared_ptr<NSOpenPanel> panel_ = NSOpenPanel::openPanel();
    std::vector<int> responses_;
};

TEST_F(OpenPanels, HaveTheirDefaultsAndAreNotShared) {
    EXPECT_TRUE(panel_->canChooseFiles());
    EXPECT_FALSE(panel_->canChooseDirectories());
    EXPECT_FALSE(panel_->allowsMultipleSelection());
    EXPECT_EQ(panel_->prompt(), "");
    EXPECT_EQ(panel_->directoryURL(), std::nullopt);
    EXPECT_EQ(panel_->URL(), std::nullopt);
    EXPECT_THAT(panel_->URLs(), IsEmpty());
    EXPECT_NE(NSOpenPanel::openPanel(), panel_);
}

TEST_F(OpenPanels, RunUntilSomethingIsChosen) {
    const test::TemporaryFolder folder;
    panel_->setPrompt("Trust");
    panel_->setCanChooseFiles(false);
    panel_->setCanChooseDirectories(true);
    panel_->setDirectoryURL(NSURL::fileURLWithPath(folder.path().string()));
    platform_.script([&] {
        EXPECT_EQ(user().prompt(), "Trust");
        EXPECT_EQ(user().folder(), folder.path().string());
        EXPECT_FALSE(user().choosesFiles());
        EXPECT_TRUE(user().choosesFolders());
        EXPECT_FALSE(user().choosesSeveral());
        EXPECT_EQ(user().window(), nullptr);
        EXPECT_FALSE(windowGetsInput());
        EXPECT_THROW(user().choose({"/a", "/b"}), std::logic_error);
        EXPECT_THROW(user().choose({}), std::logic_error);
        user().choose({folder.path().string()});
    });
    EXPECT_EQ(panel_->runModal(), 1);
    ASSERT_TRUE(panel_->URL().has_value());
    EXPECT_EQ(*panel_->URL(), NSURL::fileURLWithPath(folder.path().string() + "/")) << "a folder's";
    EXPECT_THAT(platform_.openPanels(), IsEmpty());
    EXPECT_TRUE(windowGetsInput());
    EXPECT_FALSE(platform_.starved());
}

TEST_F(OpenPanels, AnswerNothingAfterCancelAlsoWhenRunAgain) {
    panel_->setAllowsMultipleSelection(true);
    platform_.script([&] {
        EXPECT_EQ(user().prompt(), "Open");
        EXPECT_EQ(user().folder(), "");
        EXPECT_TRUE(user().choosesFiles());
        user().choose({"/b", "/a"});
    });
    EXPECT_EQ(panel_->runModal(), 1);
    EXPECT_THAT(chosen(), ElementsAre("/b", "/a"));
    platform_.script([&] { user().cancel(); });
    EXPECT_EQ(panel_->runModal(), 0);
    EXPECT_THAT(chosen(), IsEmpty());
    EXPECT_EQ(panel_->URL(), std::nullopt);
}

TEST_F(OpenPanels, OneThatNobodyAnswersIsCancelledAndNoticed) {
    EXPECT_EQ(panel_->runModal(), 0);
    EXPECT_TRUE(platform_.starved());
    EXPECT_THAT(platform_.openPanels(), IsEmpty());
}

TEST_F(OpenPanels, EndWithTheApplication) {
    platform_.script([&] { user().choose({"/a"}); });
    EXPECT_EQ(panel_->runModal(), 1);
    platform_.script([] { NSApplication::sharedApplication().terminate(nullptr); });
    EXPECT_EQ(panel_->runModal(), 0);
    EXPECT_THAT(platform_.openPanels(), IsEmpty());
    EXPECT_EQ(panel_->runModal(), 0) << "and none is shown any more";
    EXPECT_FALSE(platform_.starved());
}

TEST_F(OpenPanels, NestInModalSessions) {
    const auto dialog = makeWindow(probe("inner", NSMakeRect(0, 0, 200, 100)));
    platform_.script([&] {
        platform_.script([&] {
            auto* const real = platform_.windows().back();
            EXPECT_FALSE(real->mouseDown({5, 5}));
            user().choose({"/a"});
            EXPECT_TRUE(real->mouseDown({5, 5}));
        });
        EXPECT_EQ(panel_->runModal(), 1);
        NSApplication::sharedApplication().stopModalWithCode(7);
    });
    EXPECT_EQ(NSApplication::sharedApplication().runModalForWindow(*dialog), 7);
    EXPECT_THAT(chosen(), ElementsAre("/a"));
}

TEST_F(OpenPanels, AsASheetBlockTheirWindowAloneUntilTheyAreAnswered) {
    const auto second = makeWindow(probe("second", NSMakeRect(0, 0, 200, 100)));
    second->makeKeyAndOrderFront(nullptr);
    auto* const secondReal = platform_.windows().back();
    begin();
    EXPECT_THAT(responses_, IsEmpty()) << "it answers at once";
    EXPECT_EQ(user().window(), user_);
    EXPECT_FALSE(windowGetsInput());
    EXPECT_TRUE(secondReal->mouseDown({5, 5}));
    user().choose({"/a"});
    EXPECT_THAT(responses_, ElementsAre(1));
    EXPECT_THAT(chosen(), ElementsAre("/a"));
    EXPECT_TRUE(windowGetsInput());
    begin();
    user().cancel();
    EXPECT_THAT(responses_, ElementsAre(1, 0));
    EXPECT_THAT(chosen(), IsEmpty());
}

TEST_F(OpenPanels, ASheetIsThereWhileItsHandlerRunsAndThePanelMayBeShownAgainInIt) {
    std::vector<std::size_t> shown;
    panel_->beginSheetModalForWindow_completionHandler(window_.get(), [&](int) {
        shown.push_back(platform_.openPanels().size());
        begin();
        shown.push_back(platform_.openPanels().size());
    });
    begin(); // is shown already
    user().choose({"/a"});
    EXPECT_THAT(shown, ElementsAre(1, 2));
    EXPECT_THAT(responses_, IsEmpty());
    user().choose({"/b"});
    EXPECT_THAT(responses_, ElementsAre(1));
    EXPECT_THAT(chosen(), ElementsAre("/b"));
}

TEST_F(OpenPanels, ASheetHoldsItselfAndGoesWhenItIsAnswered) {
    const std::weak_ptr<NSOpenPanel> weak = panel_;
    begin();
    panel_.reset();
    ASSERT_FALSE(weak.expired());
    user().cancel();
    EXPECT_TRUE(weak.expired());
    EXPECT_THAT(responses_, ElementsAre(0));
}

TEST_F(OpenPanels, ASheetIsCancelledWhenItsWindowGoes) {
    begin();
    window_->orderOut(nullptr);
    EXPECT_THAT(responses_, ElementsAre(0));
    EXPECT_THAT(platform_.openPanels(), IsEmpty());
    window_->makeKeyAndOrderFront(nullptr);
    begin();
    window_->close();
    EXPECT_THAT(responses_, ElementsAre(0, 0));
    EXPECT_THAT(platform_.openPanels(), IsEmpty());
}

TEST_F(OpenPanels, OverNoVisibleWindowTheyRunAsAModalDialog) {
    platform_.script([&] {
        EXPECT_EQ(user().window(), nullptr);
        user().choose({"/a"});
    });
    panel_->beginSheetModalForWindow_completionHandler(nullptr,
                                                       [&](int response) { responses_.push_back(response); });
    EXPECT_THAT(responses_, ElementsAre(1));
    window_->close();
    platform_.script([&] { user().cancel(); });
    begin();
    EXPECT_THAT(responses_, ElementsAre(1, 0));
}

TEST_F(OpenPanels, APressUnderWayEndsWhenASheetComes) {
    user_->mouseDown({5, 5});
    begin();
    root_->taken();
    user().cancel();
    user_->mouseUp({5, 5});
    EXPECT_THAT(root_->taken(), IsEmpty());
}

} // namespace zr
