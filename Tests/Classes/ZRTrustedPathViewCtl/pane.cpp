// SPDX-License-Identifier: MIT
#include "TrustedFoldersTest.h"

#include <AppKit/NSButton.h>
#include <AppKit/NSImage.h>
#include <AppKit/NSWindow.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace zr {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Where the background waits for the main thread, entry by entry.
class Stops {
public:
    void stop(int entry) {
        std::unique_lock guard(lock_);
        stoppedAt_ = entry;
        changed_.notify_all();
        changed_.wait_for(guard, kDeadline, [&] { return !stoppedAt_; });
    }
    void waitFor(int entry) {
        std::unique_lock guard(lock_);
        if (!changed_.wait_for(guard, kDeadline, [&] { return stoppedAt_ == entry; }))
            throw std::runtime_error("the background did not come to entry " + std::to_string(entry));
    }
    void go() {
        const std::lock_guard guard(lock_);
        stoppedAt_.reset();
        changed_.notify_all();
    }

private:
    static constexpr auto kDeadline = std::chrono::seconds(60);
    std::mutex lock_;
    std::condition_variable changed_;
    std::optional<int> stoppedAt_;
};

} // namespace

class TrustedPane : public test::TrustedFoldersTest {
protected:
    void create() { pane_ = zr::make<test::WatchedPane>(); }
    // The pane in a window.
    void show() {
        window_ = zr::make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer,
                                     NSRect{NSZeroPoint, pane_->view()->frame().size}, NSWindowStyleMaskTitled,
                                     NSBackingStoreBuffered, false);
        window_->setContentView(pane_->view());
        window_->makeKeyAndOrderFront(nullptr);
        platform_->display();
        user_ = platform_->windows().back();
    }
    void createAndShow() {
        create();
        pane_->view();
        pane_->tableView()->setIdentifier("folders");
        pane_->loadingIndicator()->setIdentifier("spinner");
        show();
    }
    void letRestoreEnd() {
        platform_->advance(0.3);
        platform_->runUntilIdle();
    }
    bool overlayIsShown() const { return !pane_->loadingBgView()->isHidden(); }
    std::vector<std::string> rows() {
        platform_->display();
        std::vector<std::string> all;
        for (const auto& row : user_->visibleRows("folders")) all.push_back(nameOf(row.at(0)));
        return all;
    }
    std::shared_ptr<NSButton> button(const std::string& title) const {
        for (const auto& parent : {pane_->view(), pane_->loadingBgView()})
            for (const auto& view : parent->subviews())
                if (auto found = std::dynamic_pointer_cast<NSButton>(view); found && found->title() == title)
                    return found;
        throw std::logic_error("no button " + title);
    }
    void click(const std::string& title) {
        const auto target = button(title);
        const NSRect frame = target->convertRect_toView(target->bounds(), nullptr);
        EXPECT_TRUE(user_->mouseDown({NSMidX(frame), NSMidY(frame)}));
        user_->mouseUp({NSMidX(frame), NSMidY(frame)});
    }
    headless::OpenPanel& panel() { return *platform_->openPanels().at(0); }

    // A background that is a thread of its own, and stops at every entry.
    void launchWithStops() {
        headless::Options options;
        options.workerThread = true;
        launch(options);
    }
    void stopAtEveryEntry() {
        pane_->atEntry = [this](int entry) { stops_.stop(entry); };
    }

    Stops stops_;
    std::shared_ptr<test::WatchedPane> pane_;
    std::shared_ptr<NSWindow> window_;
    headless::Window* user_ = nullptr;
};

TEST_F(TrustedPane, TellsWhoItIs) {
    folder_.write("de.lproj/Localizable.strings", R"("Trusted Paths" = "Ordner";)");
    headless::Options options;
    options.preferredLanguages = {"de"};
    options.mainBundle = folder_.path();
    launch(options);
    create();
    EXPECT_EQ(pane_->identifier(), "TrustedViewController");
    EXPECT_EQ(pane_->toolbarItemLabel(), "Ordner");
    ASSERT_NE(pane_->toolbarItemImage(), nullptr);
    EXPECT_EQ(pane_->toolbarItemImage()->size(), (NSSize{32, 32}));
    EXPECT_EQ(pane_->nibName(), "ZRTrustedPathViewCtl");
}

TEST_F(TrustedPane, LoadsItsViewWhenItIsShown) {
    create();
    EXPECT_FALSE(pane_->isViewLoaded());
    EXPECT_TRUE(pane_->isAsyncLoading());
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
    EXPECT_FALSE(pane_->loadingCanceled());
    EXPECT_EQ(pane_->lastRecoverIndex(), 0);
    EXPECT_EQ(pane_->lastRecoverPath(), std::nullopt);
    show();
    EXPECT_EQ(pane_->tableView()->dataSource(), pane_);
    EXPECT_EQ(pane_->tableView()->delegate(), pane_);
    EXPECT_TRUE(pane_->tableView()->allowsMultipleSelection());
    EXPECT_NE(pane_->loadingIndicator(), nullptr);
    EXPECT_NE(pane_->lblLoadingTips(), nullptr);
    EXPECT_NE(pane_->lblLoadingPath(), nullptr);
}

TEST_F(TrustedPane, ShowsTheOverlayUntilTheRestoreHasEnded) {
    storeFolders({"a", "b"});
    createAndShow();
    EXPECT_TRUE(overlayIsShown());
    EXPECT_EQ(pane_->lblLoadingTips()->stringValue(), "Recovering directory permissions, please wait....");
    EXPECT_EQ(pane_->lblLoadingPath()->stringValue(), "");
    platform_->advance(0.2999);
    EXPECT_EQ(platform_->waitingForGlobalQueue(), 0u);
    platform_->advance(0.0002);
    EXPECT_EQ(platform_->waitingForGlobalQueue(), 1u);
    EXPECT_TRUE(overlayIsShown());
    platform_->runGlobalQueue();
    EXPECT_TRUE(overlayIsShown());
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
    platform_->runMainQueue();
    EXPECT_FALSE(overlayIsShown());
    EXPECT_FALSE(pane_->isAsyncLoading());
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("a", "b"));
    EXPECT_THAT(rows(), ElementsAre("a", "b"));
}

TEST_F(TrustedPane, ShowsTheOverlayWithNothingStored) {
    createAndShow();
    platform_->advance(0.29);
    EXPECT_TRUE(overlayIsShown());
    platform_->advance(0.01);
    platform_->runUntilIdle();
    EXPECT_FALSE(overlayIsShown());
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(TrustedPane, RestoresThoughItIsNeverShown) {
    storeFolders({"a"});
    create();
    letRestoreEnd();
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("a"));
    EXPECT_FALSE(pane_->isViewLoaded());
    show();
    EXPECT_FALSE(overlayIsShown());
    EXPECT_EQ(pane_->tableView()->numberOfRows(), 1);
}

TEST_F(TrustedPane, DoesWithoutItsView) {
    storeFolders({"a"});
    create();
    pane_->awakeFromNib();
    pane_->removeFolderDown(nullptr);
    EXPECT_THAT(storedNames(), ElementsAre("a"));
    EXPECT_FALSE(pane_->isViewLoaded());
}

TEST_F(TrustedPane, SpinsWhileItRestores) {
    createAndShow();
    EXPECT_THAT(user_->traits("spinner"), ElementsAre("running"));
    letRestoreEnd();
    EXPECT_THAT(user_->traits("spinner"), IsEmpty());
}

TEST_F(TrustedPane, ShowsTheOverlayAgainForAnotherRestore) {
    createAndShow();
    letRestoreEnd();
    storeFolders({"a"});
    pane_->asyncLoadDefaultBookMarksWithLaunch();
    EXPECT_TRUE(overlayIsShown());
    EXPECT_TRUE(pane_->commitEditing());
    EXPECT_THAT(storedNames(), ElementsAre("a")) << "not before it has ended";
    platform_->runUntilIdle();
    EXPECT_FALSE(overlayIsShown());
    EXPECT_THAT(rows(), ElementsAre("a"));
}

// A pane that nobody else holds, since another has become the shared one.
TEST_F(TrustedPane, LivesUntilItsRestoreHasEnded) {
    storeFolders({"a"});
    create();
    std::weak_ptr<test::WatchedPane> before = pane_;
    create();
    EXPECT_FALSE(before.expired()) << "its launch is still to come";
    letRestoreEnd();
    EXPECT_TRUE(before.expired());

    before = pane_;
    std::vector<std::string> got;
    pane_->asyncLoadDefaultsBookmarks([&](const auto& restored) { got = names(restored); });
    create();
    platform_->runUntilIdle();
    EXPECT_THAT(got, ElementsAre("a"));
    EXPECT_TRUE(before.expired());
}

TEST_F(TrustedPane, SpeaksTheUsersLanguage) {
    headless::Options options;
    options.preferredLanguages = {"de"};
    launch(options);
    createAndShow();
    EXPECT_THAT(pane_->lblLoadingTips()->stringValue(), testing::StartsWith("Zugriffsrechte"));
    EXPECT_NO_THROW(button("Abbrechen"));
}

TEST_F(TrustedPane, FollowsTheRestoreFolderByFolder) {
    launchWithStops();
    storeFolders({"a", "b", "c"});
    createAndShow();
    stopAtEveryEntry();
    platform_->advance(0.3);
    std::vector<std::string> shown;
    for (const int entry : {0, 1, 2}) {
        stops_.waitFor(entry); // before it is posted
        platform_->runMainQueue();
        shown.push_back(nameOf(pane_->lblLoadingPath()->stringValue()));
        stops_.go();
    }
    platform_->runUntilIdle();
    EXPECT_THAT(shown, ElementsAre("", "b", "c")) << "what was posted shows where the restore is by then";
    EXPECT_EQ(nameOf(pane_->lblLoadingPath()->stringValue()), "c");
}

TEST_F(TrustedPane, PostsNoMoreThanOneBlockThatShowsWhereTheRestoreIs) {
    storeFolders({"a", "b", "c"});
    createAndShow();
    platform_->advance(0.3);
    platform_->runGlobalQueue();
    EXPECT_EQ(platform_->runMainQueue(), 2u) << "with the one that brings the result";
}

TEST_F(TrustedPane, ShowsAlsoWhatTheRestoreReachesMeanwhile) {
    createAndShow();
    const auto reach = [&](const char* path) {
        std::thread([&] {
            pane_->setLastRecoverPath(path);
            pane_->updateRecoveringPath();
        }).join();
    };
    pane_->onceShown = [&] { reach("/second"); };
    reach("/first");
    platform_->runUntilIdle();
    EXPECT_EQ(pane_->lblLoadingPath()->stringValue(), "/second");
}

TEST_F(TrustedPane, RefreshesTheOverlayOnlyForAnotherState) {
    createAndShow();
    const int before = pane_->refreshes;
    pane_->setIsAsyncLoading(true);
    EXPECT_EQ(pane_->refreshes, before);
    pane_->setIsAsyncLoading(false);
    EXPECT_EQ(pane_->refreshes, before + 1);
    EXPECT_FALSE(overlayIsShown());
    pane_->setLastRecoverPath("/somewhere");
    pane_->setIsAsyncLoading(true);
    EXPECT_TRUE(overlayIsShown());
    EXPECT_EQ(pane_->lblLoadingPath()->stringValue(), "/somewhere");
}

TEST_F(TrustedPane, HandsItsResultToTheCompletion) {
    storeFolders({"a"});
    create();
    std::vector<std::string> got;
    bool wasOnMain = false;
    pane_->asyncLoadDefaultsBookmarks([&](const auto& restored) {
        got = names(restored);
        wasOnMain = NSThread::isMainThread();
    });
    pane_->asyncLoadDefaultsBookmarks(nullptr);
    EXPECT_THAT(got, IsEmpty());
    platform_->runUntilIdle();
    EXPECT_THAT(got, ElementsAre("a"));
    EXPECT_TRUE(wasOnMain);
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
}

TEST_F(TrustedPane, PutsWhatIsRestoredBehindWhatWasAdded) {
    storeFolders({"a"});
    make("b");
    createAndShow();
    pane_->addToBookmarkWithURL(url("b"));
    letRestoreEnd();
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("b", "a", "b")) << "the store had both by then";
}

// Cancelling

TEST_F(TrustedPane, ForgetsTheFolderAtWhichItWasCancelled) {
    launchWithStops();
    storeFolders({"a", "b", "c", "d"});
    createAndShow();
    stopAtEveryEntry();
    platform_->advance(0.3);
    for (const int entry : {0, 1}) {
        stops_.waitFor(entry);
        stops_.go();
    }
    stops_.waitFor(2);
    platform_->runMainQueue();
    EXPECT_TRUE(overlayIsShown());
    click("Cancel");
    EXPECT_FALSE(overlayIsShown());
    EXPECT_FALSE(pane_->isAsyncLoading());
    EXPECT_THAT(storedNames(), ElementsAre("a", "b", "d"));
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("a", "b"));
    EXPECT_THAT(rows(), ElementsAre("a", "b"));
    EXPECT_THAT(pane_->loadingItems(), IsEmpty());
    stops_.go();
    stops_.waitFor(3);
    stops_.go();
    platform_->runUntilIdle();
    EXPECT_TRUE(pane_->loadingCanceled());
    EXPECT_FALSE(overlayIsShown()) << "also when the restore has ended";
    EXPECT_THAT(rows(), ElementsAre("a", "b"));
    EXPECT_THAT(names(pane_->loadingItems()), ElementsAre("c", "d")) << "it went on to its end";
    EXPECT_THAT(storedNames(), ElementsAre("a", "b", "d"));
    EXPECT_EQ(pane_->lastRecoverIndex(), 3);
}

TEST_F(TrustedPane, ForgetsTheFirstFolderWhenItIsCancelledBeforeAny) {
    storeFolders({"a", "b"});
    createAndShow();
    platform_->advance(0.3);
    click("Cancel");
    EXPECT_THAT(storedNames(), ElementsAre("b"));
    EXPECT_FALSE(overlayIsShown());
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
    platform_->runUntilIdle();
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
}

// The restore still runs at its time, unseen, and its result does not count.
TEST_F(TrustedPane, StaysCancelledWhenThatWasBeforeItsStart) {
    storeFolders({"a", "b"});
    createAndShow();
    click("Cancel");
    EXPECT_THAT(storedNames(), ElementsAre("b"));
    platform_->advance(0.3);
    EXPECT_EQ(platform_->waitingForGlobalQueue(), 1u);
    EXPECT_FALSE(pane_->isAsyncLoading());
    EXPECT_FALSE(overlayIsShown());
    platform_->runUntilIdle();
    EXPECT_THAT(names(pane_->loadingItems()), ElementsAre("b"));
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
    EXPECT_FALSE(overlayIsShown());
    make("c");
    pane_->addToBookmarkWithURL(url("c"));
    EXPECT_TRUE(pane_->commitEditing());
    EXPECT_THAT(storedNames(), ElementsAre("c")) << "commits are written again";
}

TEST_F(TrustedPane, DropsEveryLaterResultAfterACancel) {
    createAndShow();
    letRestoreEnd();
    pane_->loadingCancelClick(nullptr);
    storeFolders({"a"});
    bool called = false;
    pane_->asyncLoadDefaultsBookmarks([&](const auto&) { called = true; });
    platform_->runUntilIdle();
    EXPECT_FALSE(called);
}

TEST_F(TrustedPane, CancelsWithoutAnythingStored) {
    createAndShow();
    pane_->loadingCancelClick(nullptr);
    EXPECT_EQ(defaults().objectForKey("BookmarksKey"), nullptr);
    pane_->setLastRecoverIndex(-1);
    storeFolders({"a"});
    pane_->loadingCancelClick(nullptr);
    EXPECT_THAT(storedNames(), ElementsAre("a"));
    pane_->setLastRecoverIndex(1);
    pane_->loadingCancelClick(nullptr);
    EXPECT_THAT(storedNames(), ElementsAre("a"));
}

// Committing

TEST_F(TrustedPane, CommitsNothingWhileItRestores) {
    storeFolders({"a", "b"});
    fs::remove(at("b"));
    const auto before = stored();
    createAndShow();
    EXPECT_TRUE(pane_->commitEditing());
    EXPECT_EQ(stored(), before);
    ASSERT_EQ(log_->records().size(), 1u);
    const auto record = log_->records()[0];
    EXPECT_EQ(record.message, "[TRUST_PATH] isAsyncLoading return, no commit");
    EXPECT_EQ(record.function, "-[ZRTrustedPathViewCtl commitEditing]");
    EXPECT_EQ(record.flag, 1);
    EXPECT_EQ(record.level, 7);
    EXPECT_FALSE(record.asynchronous);
}

TEST_F(TrustedPane, CommitsTheFoldersThatAreThere) {
    storeFolders({"a", "b", "c"});
    fs::remove(at("b"));
    createAndShow();
    letRestoreEnd();
    EXPECT_EQ(stored().size(), 3u);
    fs::remove(at("c"));
    EXPECT_TRUE(pane_->commitEditing());
    EXPECT_THAT(storedNames(), ElementsAre("a"));
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("a", "c")) << "the list stays";
}

TEST_F(TrustedPane, CommitsToDisk) {
    headless::Options options;
    options.userDefaults = at("app.plist");
    launch(options);
    create();
    letRestoreEnd();
    make("a");
    pane_->setAryItems({url("a"), NSURL::fileURLWithPath("/proc/self/task"), url("a")});
    EXPECT_TRUE(pane_->commitEditing());
    const auto another = zr::make<NSUserDefaults>(&NSUserDefaults::initWithFile, fs::path(at("app.plist")));
    EXPECT_EQ(another->arrayForKey("BookmarksKey")->size(), 2u) << "what cannot be stored is left out";
}

// A stale entry stays stored until the first commit.
TEST_F(TrustedPane, CommitsWithoutWhatWasNotRestored) {
    storeFolders({"a", "b"});
    fs::rename(at("a"), at("moved"));
    make("a");
    createAndShow();
    letRestoreEnd();
    EXPECT_THAT(storedNames(), ElementsAre("a", "b"));
    EXPECT_TRUE(pane_->commitEditing());
    EXPECT_THAT(storedNames(), ElementsAre("b"));
}

// Adding and removing

TEST_F(TrustedPane, AddsWhatIsChosenInAPanelOverItsWindow) {
    make("a");
    make("b");
    make("c");
    createAndShow();
    letRestoreEnd();
    pane_->addToBookmarkWithURL(url("b"));
    click("+");
    ASSERT_EQ(platform_->openPanels().size(), 1u);
    EXPECT_FALSE(panel().choosesFiles());
    EXPECT_TRUE(panel().choosesFolders());
    EXPECT_TRUE(panel().choosesSeveral());
    EXPECT_EQ(panel().window(), user_);
    testing::internal::CaptureStderr();
    panel().choose({at("c"), at("b"), at("a"), at("missing")});
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::EndsWith(" 已经存在\n"));
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("b", "c", "a"));
    EXPECT_THAT(storedNames(), ElementsAre("b", "c", "a"));
    EXPECT_THAT(rows(), ElementsAre("b", "c", "a"));
}

TEST_F(TrustedPane, ShowsWhatTheHostAddsOnceTheMainQueueRuns) {
    createAndShow();
    letRestoreEnd();
    make("a");
    pane_->addToBookmarkWithURL(url("a"));
    EXPECT_THAT(rows(), IsEmpty());
    platform_->runMainQueue();
    EXPECT_THAT(rows(), ElementsAre("a"));
}

TEST_F(TrustedPane, AddsNothingWhenThePanelIsCancelled) {
    createAndShow();
    letRestoreEnd();
    click("+");
    panel().cancel();
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
    EXPECT_EQ(defaults().objectForKey("BookmarksKey"), nullptr);
}

TEST_F(TrustedPane, RemovesTheSelectedRows) {
    storeFolders({"a", "b", "c", "d"});
    createAndShow();
    letRestoreEnd();
    ASSERT_THAT(rows(), ElementsAre("a", "b", "c", "d"));
    EXPECT_TRUE(user_->clickRow("folders", 1));
    EXPECT_TRUE(user_->clickRow("folders", 3, NSEventModifierFlagCommand));
    click("\u2212");
    EXPECT_THAT(rows(), ElementsAre("a", "c"));
    EXPECT_THAT(storedNames(), ElementsAre("a", "c"));
    EXPECT_FALSE(pane_->isExsistWithUrl(url("b")));
    EXPECT_TRUE(pane_->isExsistWithUrl(url("c")));
}

TEST_F(TrustedPane, RemovesTheSelectedRowsWithDelete) {
    storeFolders({"a", "b"});
    createAndShow();
    window_->setNextResponder(pane_.get()); // as the preferences window does
    user_->keyDown(kKeyCodeDelete, "\b");
    EXPECT_THAT(storedNames(), ElementsAre("a", "b")) << "not under the overlay";
    letRestoreEnd();
    EXPECT_TRUE(user_->clickRow("folders", 0));
    user_->keyDown(kKeyCodeDelete, "\b");
    EXPECT_THAT(rows(), ElementsAre("b"));
    EXPECT_THAT(storedNames(), ElementsAre("b"));
    user_->keyDown(kKeyCodeSpace, " ");
    EXPECT_THAT(storedNames(), ElementsAre("b"));
}

TEST_F(TrustedPane, ItsButtonsAreOffWhileItRestores) {
    createAndShow();
    EXPECT_FALSE(button("+")->isEnabled());
    EXPECT_FALSE(button("\u2212")->isEnabled());
    EXPECT_TRUE(button("Cancel")->isEnabled());
    letRestoreEnd();
    EXPECT_TRUE(button("+")->isEnabled());
    EXPECT_TRUE(button("\u2212")->isEnabled());
}

TEST_F(TrustedPane, RemovesNothingWithoutASelection) {
    storeFolders({"a"});
    createAndShow();
    letRestoreEnd();
    click("\u2212");
    EXPECT_THAT(rows(), ElementsAre("a"));
    EXPECT_THAT(storedNames(), ElementsAre("a"));
}

TEST_F(TrustedPane, RemovesARowThatTheStoreDoesNotHaveFromTheListAlone) {
    createAndShow();
    letRestoreEnd();
    make("a");
    make("b");
    pane_->setAryItems({url("a"), url("b")});
    store({bookmark(at("a"))});
    pane_->tableView()->reloadData();
    pane_->tableView()->selectAll(nullptr);
    pane_->removeFolderDown(nullptr);
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
    EXPECT_THAT(stored(), IsEmpty());

    pane_->setAryItems({url("a"), url("b")});
    store({bookmark(at("a"))});
    pane_->tableView()->reloadData();
    pane_->tableView()->selectRowIndexes_byExtendingSelection({1}, false);
    pane_->removeFolderDown(nullptr);
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("a"));
    EXPECT_THAT(storedNames(), ElementsAre("a"));
}

TEST_F(TrustedPane, RemovesNoRowThatItsListHasNoMore) {
    createAndShow();
    letRestoreEnd();
    pane_->setAryItems({url("a"), url("b")});
    pane_->tableView()->reloadData();
    pane_->tableView()->selectAll(nullptr);
    pane_->setAryItems({url("c")});
    pane_->removeFolderDown(nullptr);
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
}

TEST_F(TrustedPane, LeavesItToTheDefaultsWhenARemovalReachesTheDisk) {
    headless::Options options;
    options.userDefaults = at("app.plist");
    launch(options);
    storeFolders({"a", "b"});
    createAndShow();
    letRestoreEnd();
    const auto onDisk = [&] {
        return zr::make<NSUserDefaults>(&NSUserDefaults::initWithFile, fs::path(at("app.plist")))
            ->arrayForKey("BookmarksKey")
            ->size();
    };
    ASSERT_EQ(onDisk(), 2u);
    EXPECT_TRUE(user_->clickRow("folders", 1));
    pane_->removeFolderDown(nullptr);
    EXPECT_EQ(stored().size(), 1u);
    EXPECT_EQ(onDisk(), 2u);
    pane_->setLastRecoverIndex(0);
    pane_->loadingCancelClick(nullptr);
    EXPECT_THAT(stored(), IsEmpty());
    EXPECT_EQ(onDisk(), 2u);
    platform_->runUntilIdle();
    EXPECT_EQ(onDisk(), 0u);
}

// The stored entry of that row may be another folder's, until the next commit.
TEST_F(TrustedPane, RemovesTheSameRowsOfBothListsThoughTheyDiffer) {
    storeFolders({"gone", "a", "b"});
    fs::remove(at("gone"));
    createAndShow();
    letRestoreEnd();
    ASSERT_THAT(rows(), ElementsAre("a", "b"));
    EXPECT_TRUE(user_->clickRow("folders", 0));
    click("\u2212");
    EXPECT_THAT(rows(), ElementsAre("b"));
    EXPECT_THAT(storedNames(), ElementsAre("a", "b"));
    EXPECT_TRUE(pane_->commitEditing());
    EXPECT_THAT(storedNames(), ElementsAre("b"));
}

TEST_F(TrustedPane, ShowsThePathInEveryColumn) {
    createAndShow();
    letRestoreEnd();
    make("a");
    pane_->setAryItems({url("a")});
    const auto second = zr::make<NSTableColumn>();
    pane_->tableView()->addTableColumn(second);
    EXPECT_EQ(pane_->numberOfRowsInTableView(*pane_->tableView()), 1);
    for (const auto& column : pane_->tableView()->tableColumns())
        EXPECT_EQ(pane_->tableView_objectValueForTableColumn_row(*pane_->tableView(), *column, 0), at("a"));

    pane_->tableView()->reloadData();
    platform_->display();
    pane_->setAryItems({});
    user_->resizeByUser({500, 300});
    pane_->tableView()->setNeedsDisplay(true);
    EXPECT_THAT(rows(), ElementsAre("")) << "the table does not know yet";
}

// In the preferences window

TEST_F(TrustedPane, ClosesWithThePreferencesWindowWhileItRestores) {
    storeFolders({"a"});
    const auto before = stored();
    create();
    const auto preferences =
        zr::make<MASPreferencesWindowController>(&MASPreferencesWindowController::initWithViewControllers,
                                                 MASPreferencesWindowController::Controllers{pane_});
    preferences->showWindow(nullptr);
    platform_->display();
    user_ = platform_->windows().back();
    EXPECT_EQ(user_->title(), "Trusted Paths");
    EXPECT_TRUE(overlayIsShown());
    EXPECT_TRUE(user_->closeByUser());
    EXPECT_EQ(stored(), before);
    EXPECT_THAT(errors(), ElementsAre("[TRUST_PATH] isAsyncLoading return, no commit"));

    letRestoreEnd();
    preferences->showWindow(nullptr);
    fs::remove(at("a"));
    EXPECT_TRUE(platform_->windows().back()->closeByUser());
    EXPECT_THAT(stored(), IsEmpty());
}

// With a real thread in the background, which the user cancels in its midst.
TEST_F(TrustedPane, SharesNothingUnguardedWithTheBackground) {
    launchWithStops();
    std::vector<std::string> all;
    all.reserve(300);
    for (int i = 0; i < 300; ++i) all.push_back(std::to_string(i));
    storeFolders(all);
    create();
    static_cast<void>(pane_->view());
    pane_->atEntry = [this](int entry) {
        if (entry == 200) stops_.stop(entry);
    };
    platform_->advance(0.3);
    while (pane_->lastRecoverIndex() < 200) {
        platform_->runMainQueue();
        static_cast<void>(pane_->loadingItems().size());
        static_cast<void>(pane_->lastRecoverPath());
    }
    stops_.waitFor(200);
    stops_.go();
    pane_->loadingCancelClick(nullptr); // while it goes on
    const auto listed = names(pane_->aryItems());
    EXPECT_GE(listed.size(), 200u);
    EXPECT_LE(listed.size(), 300u);
    EXPECT_TRUE(std::equal(listed.begin(), listed.end(), all.begin(), all.begin() + long(listed.size())));
    EXPECT_EQ(stored().size(), 299u);
    platform_->runUntilIdle();
    EXPECT_EQ(names(pane_->aryItems()), listed);
    EXPECT_FALSE(pane_->isAsyncLoading());
}

} // namespace zr
