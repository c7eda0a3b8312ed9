// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSMenu.h>

namespace zr {

using testing::ElementsAre;

namespace {

class Answers : public NSApplicationDelegate {
public:
    std::optional<NSApplicationTerminateReply> applicationShouldTerminate(NSApplication& application) override {
        log.emplace_back("should");
        if (asksAgain) application.terminate(nullptr);
        return reply;
    }
    void applicationWillTerminate(NSApplication&) override { log.emplace_back("will"); }
    std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(NSApplication&) override {
        return true;
    }
    std::optional<NSApplicationTerminateReply> reply;
    bool asksAgain = false;
    std::vector<std::string> log;
};

// Takes two commands.
class Commanded : public NSView {
public:
    ZR_CLASS(Commanded, NSView)
    void open(NSObject*) { log.emplace_back("open"); }
    void closeIt(NSObject*) { log.emplace_back("close"); }
    bool acceptsFirstResponder() const override { return true; }
    std::vector<std::string> log;
};

ZR_CLASS_TABLE(Commanded, .actions = {actionNamed<&Commanded::open>("open:"),
                                      actionNamed<&Commanded::closeIt>("closeIt:")})

} // namespace

class Applications : public test::WindowTest {
protected:
    static NSApplication& application() { return NSApplication::sharedApplication(); }
    static std::shared_ptr<NSWindow> sheet() {
        return make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 100, 50),
                              NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    }
    void beginSheet(NSWindow& sheet) {
        application().beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(sheet, window_.get(),
                                                                                         nullptr, {}, nullptr);
    }
};

TEST_F(Applications, TheDelegateMayRefuseToTerminateAndIsNotAskedWhileItAnswers) {
    show(probe("root", NSMakeRect(0, 0, 200, 100)));
    const auto answers = std::make_shared<Answers>();
    application().setDelegate(answers);
    answers->reply = NSTerminateCancel;
    answers->asksAgain = true;
    application().terminate(nullptr);
    EXPECT_THAT(answers->log, ElementsAre("should"));
    answers->reply = NSTerminateNow;
    application().terminate(nullptr);
    EXPECT_THAT(answers->log, ElementsAre("should", "should", "will"));
    application().terminate(nullptr);
    EXPECT_THAT(answers->log, ElementsAre("should", "should", "will")) << "it is on its way out";
}

TEST_F(Applications, ADelegateWithoutAnOpinionLetsItTerminate) {
    const auto answers = std::make_shared<Answers>();
    application().setDelegate(answers);
    application().terminate(nullptr);
    EXPECT_THAT(answers->log, ElementsAre("should", "will"));
}

TEST_F(Applications, AWindowThatIsAskedToCloseIsAskedUnderItsSheetToo) {
    show(probe("root", NSMakeRect(0, 0, 200, 100)));
    const auto over = sheet();
    beginSheet(*over);
    auto* const shown = platform_.windows().back();
    ASSERT_TRUE(shown->isSheet());
    class Refuses : public NSWindowDelegate {
    public:
        std::optional<bool> windowShouldClose(NSWindow& window) override {
            asked.push_back(&window);
            return answer;
        }
        std::vector<NSWindow*> asked;
        bool answer = false;
    };
    const auto refuses = std::make_shared<Refuses>();
    window_->setDelegate(refuses);
    EXPECT_FALSE(user_->closeByUser());
    EXPECT_FALSE(shown->closeByUser()) << "a sheet and its window are one to the user";
    EXPECT_THAT(refuses->asked, ElementsAre(window_.get(), window_.get()));
    EXPECT_TRUE(over->isVisible());

    refuses->answer = true;
    EXPECT_TRUE(user_->closeByUser());
    EXPECT_FALSE(window_->isVisible());
    EXPECT_FALSE(over->isVisible()) << "no sheet stays without its window";
    EXPECT_FALSE(over->isSheet());
}

TEST_F(Applications, ASecondSheetStandsOverTheFirst) {
    show(probe("root", NSMakeRect(0, 0, 200, 100)));
    const auto first = sheet(), second = sheet();
    beginSheet(*first);
    beginSheet(*second);
    EXPECT_EQ(window_->attachedSheet(), first.get());
    EXPECT_EQ(first->attachedSheet(), second.get());
    second->close();
    EXPECT_FALSE(second->isSheet());
    EXPECT_EQ(first->attachedSheet(), nullptr) << "a sheet that closes ends";
    EXPECT_EQ(window_->attachedSheet(), first.get());
    beginSheet(*second);
    window_->close();
    EXPECT_FALSE(first->isVisible());
    EXPECT_FALSE(second->isVisible());
    EXPECT_THAT(application().windows(), testing::IsEmpty());
}

TEST_F(Applications, AViewThatFollowsThePointerGetsItsReleaseWhenASheetComesByItself) {
    const auto root = probe("root", NSMakeRect(0, 0, 200, 100));
    show(root);
    user_->mouseDown({20, 30});
    user_->mouseDragged({50, 60});
    root->taken();
    const auto over = sheet();
    beginSheet(*over);
    EXPECT_THAT(root->taken(), ElementsAre("up 50 60"));
    user_->mouseUp({90, 90});
    EXPECT_THAT(root->taken(), testing::IsEmpty()) << "once";
}

TEST_F(Applications, ASheetThatWasOrderedOutDoesNotKeepTheApplication) {
    show(probe("root", NSMakeRect(0, 0, 200, 100)));
    const auto answers = std::make_shared<Answers>();
    application().setDelegate(answers);
    const auto over = sheet();
    beginSheet(*over);
    application().endSheet(*over);
    over->orderOut(nullptr);
    EXPECT_THAT(answers->log, ElementsAre());
    window_->close();
    EXPECT_THAT(answers->log, ElementsAre("should", "will"));
}

class Menus : public Applications {
protected:
    void SetUp() override {
        view_ = make<Commanded>(NSMakeRect(0, 0, 200, 100));
        show(view_);
        window_->makeFirstResponder(view_.get());
        menu_ = make<NSMenu>(&NSMenu::initWithTitle, std::string("Main"));
        const auto file = make<NSMenu>(&NSMenu::initWithTitle, std::string("File"));
        menu_->addItemWithTitle_action_keyEquivalent("File", "", "")->setSubmenu(file);
        open_ = file->addItemWithTitle_action_keyEquivalent("Open", "open:", "o");
        file->addItem(NSMenuItem::separatorItem());
        file->addItemWithTitle_action_keyEquivalent("Close", "closeIt:", "w")
            ->setKeyEquivalentModifierMask(NSEventModifierFlagCommand | NSEventModifierFlagOption);
        file->addItemWithTitle_action_keyEquivalent("Nobody's", "nobodyTakesThis:", "n");
        application().setMainMenu(menu_);
    }
    bool type(const char* key, unsigned flags = NSEventModifierFlagCommand) {
        return platform_.windows().back()->keyDown(0, key, flags);
    }
    std::shared_ptr<Commanded> view_;
    std::shared_ptr<NSMenu> menu_;
    std::shared_ptr<NSMenuItem> open_;
};

TEST_F(Menus, AKeyEquivalentSendsTheActionAlongTheResponderChain) {
    EXPECT_TRUE(type("o"));
    EXPECT_THAT(view_->log, ElementsAre("open"));
    type("o", 0);
    type("o", NSEventModifierFlagCommand | NSEventModifierFlagOption);
    type("w");
    EXPECT_THAT(view_->log, ElementsAre("open")) << "with exactly its modifiers";
    EXPECT_TRUE(type("w", NSEventModifierFlagCommand | NSEventModifierFlagOption));
    EXPECT_THAT(view_->log, ElementsAre("open", "close"));
    EXPECT_FALSE(type("n")) << "an action that nobody takes leaves the key to others";
    open_->setKeyEquivalentModifierMask(NSEventModifierFlagCommand | NSEventModifierFlagShift);
    EXPECT_FALSE(type("o"));
    EXPECT_TRUE(type("O", NSEventModifierFlagCommand | NSEventModifierFlagShift));
    open_->setKeyEquivalentModifierMask(NSEventModifierFlagCommand);
    EXPECT_EQ(view_->log.size(), 3u);
    view_->log.pop_back();
    open_->setEnabled(false);
    EXPECT_FALSE(type("o"));
    EXPECT_THAT(view_->log, ElementsAre("open", "close"));
}

TEST_F(Menus, AnItemWithATargetSendsThere) {
    const auto target = make<Commanded>(NSMakeRect(0, 0, 1, 1));
    open_->setTarget(target);
    EXPECT_TRUE(type("o"));
    EXPECT_THAT(target->log, ElementsAre("open"));
    EXPECT_THAT(view_->log, ElementsAre());
}

TEST_F(Menus, AreSilentInAModalSession) {
    const auto target = make<Commanded>(NSMakeRect(0, 0, 1, 1));
    open_->setTarget(target);
    const auto modal = makeWindow(nullptr);
    EXPECT_EQ(application().modalWindow(), nullptr);
    platform_.script([&] {
        EXPECT_EQ(application().modalWindow(), modal.get());
        EXPECT_FALSE(type("o"));
        application().stopModal();
    });
    application().runModalForWindow(*modal);
    EXPECT_THAT(target->log, ElementsAre());
    modal->orderOut(nullptr);

    const auto over = sheet();
    beginSheet(*over);
    EXPECT_TRUE(type("o")) << "but not under a sheet";
    EXPECT_THAT(target->log, ElementsAre("open"));
}

} // namespace zr
