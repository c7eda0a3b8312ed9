// SPDX-License-Identifier: MIT
#include "TrustedFoldersTest.h"

#include <Foundation/Bookmark.h>
#include <Foundation/NSRunLoop.h>

#include <thread>

namespace zr {

namespace fs = std::filesystem;

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace test {
ZR_CLASS_TABLE(WatchedPane)
} // namespace test

class TrustedFolders : public test::TrustedFoldersTest {
protected:
    void SetUp() override {
        TrustedFoldersTest::SetUp();
        pane_ = make_();
    }
    static std::shared_ptr<test::WatchedPane> make_() { return zr::make<test::WatchedPane>(); }
    std::vector<NSURL> restore() { return ZRTrustedPathViewCtl::restoreDefaultsBookmarks(*pane_); }
    // In the background, as at launch.
    std::vector<NSURL> restoreInBackground() {
        std::vector<NSURL> found;
        pane_->asyncLoadDefaultsBookmarks([&](const auto& restored) { found = restored; });
        platform_->runUntilIdle();
        return found;
    }

    std::shared_ptr<test::WatchedPane> pane_;
};

TEST_F(TrustedFolders, AreNoneWhereNothingIsStored) {
    pane_->setLoadingItems({url("before")});
    EXPECT_THAT(restore(), IsEmpty());
    EXPECT_THAT(pane_->loadingItems(), IsEmpty());
    for (const PropertyList& value : {PropertyList("text"), PropertyList(PropertyList::Array()),
                                      PropertyList(PropertyList::Dictionary()), PropertyList(NSData{1})}) {
        defaults().setObject_forKey(value, "BookmarksKey");
        EXPECT_THAT(restore(), IsEmpty());
        EXPECT_EQ(*defaults().objectForKey("BookmarksKey"), value);
    }
    EXPECT_THAT(log_->records(), IsEmpty());
    EXPECT_EQ(pane_->lastRecoverIndex(), 0);
    EXPECT_EQ(pane_->lastRecoverPath(), std::nullopt);
}

TEST_F(TrustedFolders, AreRestoredInTheirOrder) {
    storeFolders({"b", "a", "Größe 日本"});
    const auto before = stored();
    EXPECT_THAT(names(restoreInBackground()), ElementsAre("b", "a", "Größe 日本"));
    EXPECT_THAT(names(pane_->loadingItems()), ElementsAre("b", "a", "Größe 日本"));
    EXPECT_THAT(pane_->reached, ElementsAre("0 b", "1 a", "2 Größe 日本"));
    EXPECT_EQ(pane_->lastRecoverIndex(), 2);
    EXPECT_EQ(pane_->lastRecoverPath(), at("Größe 日本"));
    EXPECT_THAT(pane_->aryItems(), IsEmpty()) << "the completion's business";
    EXPECT_EQ(stored(), before);
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(TrustedFolders, TellInTheLogWhatEachEntryHolds) {
    storeFolders({"a"});
    restore();
    DDLog::flushLog();
    ASSERT_EQ(log_->records().size(), 1u);
    const auto record = log_->records()[0];
    EXPECT_EQ(record.message,
              "[TRUST PATH] resolved values : {\n    \"_NSURLPathKey\" = \"" + at("a") + "\";\n}");
    EXPECT_EQ(record.format, "[TRUST PATH] resolved values : %@");
    EXPECT_EQ(record.function, "+[ZRTrustedPathViewCtl restoreDefaultsBookmarks:]");
    EXPECT_TRUE(record.asynchronous);
    EXPECT_EQ(record.flag, 4);
    EXPECT_EQ(record.level, 7);
    EXPECT_EQ(record.context, 0);
    EXPECT_EQ(record.fileName, "ZRTrustedPathViewCtl");
    EXPECT_GT(record.line, 0);
    EXPECT_EQ(record.tag, nullptr);
}

TEST_F(TrustedFolders, SkipWhatIsNotData) {
    storeFolders({"a", "b", "c"});
    auto bookmarks = stored();
    bookmarks[1] = "text";
    store(bookmarks);
    EXPECT_THAT(names(restoreInBackground()), ElementsAre("a", "c"));
    EXPECT_THAT(errors(), ElementsAre("[TRUST PATH]: resolve returned with not data type"));
    EXPECT_THAT(pane_->reached, ElementsAre("0 a", "2 c"));
    EXPECT_EQ(stored(), bookmarks);
    const auto records = log_->records();
    const auto& error = *std::ranges::find(records, int(DDLogFlagError), &DDLogMessage::flag);
    EXPECT_FALSE(error.asynchronous);
    EXPECT_EQ(error.level, 7);
    EXPECT_EQ(error.function, "+[ZRTrustedPathViewCtl restoreDefaultsBookmarks:]");
}

TEST_F(TrustedFolders, SkipDataThatAreNoBookmarks) {
    storeFolders({"a"});
    auto bookmarks = stored();
    bookmarks.insert(bookmarks.begin(), NSData{1, 2, 3});
    bookmarks.insert(bookmarks.begin(), NSData{});
    auto changed = *stored()[0].get<NSData>();
    ++changed.back();
    bookmarks.emplace_back(changed);
    store(bookmarks);
    EXPECT_THAT(names(restoreInBackground()), ElementsAre("a"));
    EXPECT_THAT(errors(), testing::Each("[TRUST PATH]: resolve returned with values empty"));
    EXPECT_EQ(errors().size(), 3u);
    EXPECT_THAT(pane_->reached, ElementsAre("2 a"));
    EXPECT_EQ(stored(), bookmarks);
}

TEST_F(TrustedFolders, SkipWhatHasGone) {
    storeFolders({"a", "b", "c"});
    fs::remove(at("b"));
    const auto before = stored();
    EXPECT_THAT(names(restoreInBackground()), ElementsAre("a", "c"));
    EXPECT_THAT(errors(), ElementsAre("[TRUST PATH]: resolve returned with path not exsit : " + at("b")));
    EXPECT_THAT(pane_->reached, ElementsAre("0 a", "1 b", "2 c")) << "told before it is looked for";
    EXPECT_EQ(stored(), before);
}

TEST_F(TrustedFolders, SkipALinkThatLeadsNowhere) {
    make("a");
    fs::create_directory_symlink("a", at("link"));
    store({bookmark(at("link"))});
    fs::remove(at("a"));
    EXPECT_THAT(restore(), IsEmpty());
    EXPECT_THAT(errors(), ElementsAre("[TRUST PATH]: resolve returned with path not exsit : " + at("link")));
}

TEST_F(TrustedFolders, SkipAnotherFolderOfTheSameName) {
    storeFolders({"a"});
    fs::remove(at("a"));
    make("a");
    EXPECT_THAT(restore(), IsEmpty());
    EXPECT_THAT(errors(),
                ElementsAre(AllOf(StartsWith("[TRUST PATH]: resolve returned with error : Error Domain="
                                             "NSCocoaErrorDomain Code=256 \""),
                                  HasSubstr(at("a")), testing::EndsWith("\" | stale : 0"))));
}

// Moved, with another in its old place: it is found, but not restored before it is stored anew.
TEST_F(TrustedFolders, SkipWhatIsStaleAndKeepItStored) {
    storeFolders({"a", "b"});
    fs::rename(at("a"), at("moved"));
    make("a");
    const auto before = stored();
    EXPECT_THAT(names(restoreInBackground()), ElementsAre("b"));
    EXPECT_THAT(errors(), ElementsAre("[TRUST PATH]: resolve returned with error : (null) | stale : 1"));
    EXPECT_EQ(stored(), before);
}

TEST_F(TrustedFolders, AreOneWhereTwoEntriesLeadToTheSamePath) {
    storeFolders({"a", "b"});
    auto bookmarks = stored();
    bookmarks.push_back(bookmarks[0]);
    store(bookmarks);
    EXPECT_THAT(names(restoreInBackground()), ElementsAre("a", "b"));
    EXPECT_THAT(names(pane_->loadingItems()), ElementsAre("a", "b"));
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_EQ(pane_->reached.back(), "2 a");
}

TEST_F(TrustedFolders, KeepTheThreadsRunLoopAlive) {
    std::size_t before = 1, after = 1;
    std::thread([&] {
        auto& loop = NSRunLoop::currentRunLoop();
        before = loop.portsForMode(NSDefaultRunLoopMode).size();
        restore();
        after = loop.portsForMode(NSDefaultRunLoopMode).size();
    }).join();
    EXPECT_EQ(before, 0u);
    EXPECT_EQ(after, 1u);
}

// Access lasts: a folder whose bookmark was resolved is followed where it moves, though it was made in a run of
// the program that has ended.
TEST_F(TrustedFolders, AreAccessibleUntilTheProgramEnds) {
    PropertyList::Array bookmarks;
    for (const auto* name : {"a", "b"})
        bookmarks.emplace_back(encoded({make(name), "", ItemHandle::open(at(name))->identity().value()}));
    store(bookmarks);
    restore();
    for (const auto& [name, entry] : {std::pair{"a", 0}, {"b", 1}}) {
        const std::string moved = at(name + std::string(" moved"));
        fs::rename(at(name), moved);
        bool isStale = false;
        const auto found = NSURL::URLByResolvingBookmarkData_options_relativeToURL_bookmarkDataIsStale_error(
            *stored()[std::size_t(entry)].get<NSData>(), 1024, std::nullopt, &isStale, nullptr);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->path(), moved);
    }
}

// A disk that is not the system's can be unmounted as long as nothing on it is held.
TEST_F(TrustedFolders, AreNotHeldByTheirList) {
    storeFolders({"a"});
    const auto restored = restore();
    ASSERT_EQ(restored.size(), 1u);
    EXPECT_FALSE(restored[0].startAccessingSecurityScopedResource());
    ASSERT_EQ(pane_->loadingItems().size(), 1u);
    EXPECT_FALSE(pane_->loadingItems()[0].startAccessingSecurityScopedResource());
}

// Adding

TEST_F(TrustedFolders, AreAddedAndStoredAtOnce) {
    make("a");
    make("b");
    pane_->addToBookmarkWithURL(url("a"));
    EXPECT_THAT(names(pane_->itemList()), ElementsAre("a"));
    EXPECT_THAT(storedNames(), ElementsAre("a"));
    pane_->addToBookmarkWithPath(at("b") + "/");
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("a", "b"));
    EXPECT_THAT(storedNames(), ElementsAre("a", "b"));
    EXPECT_EQ(*stored()[0].get<NSData>(), bookmark(at("a")));
}

TEST_F(TrustedFolders, AreOnDiskOnceTheyAreAdded) {
    headless::Options options;
    options.userDefaults = at("app.plist");
    launch(options);
    pane_ = make_();
    make("a");
    pane_->addToBookmarkWithURL(url("a"));
    const auto another = zr::make<NSUserDefaults>(&NSUserDefaults::initWithFile, fs::path(at("app.plist")));
    EXPECT_EQ(*another->arrayForKey("BookmarksKey"), stored());
}

TEST_F(TrustedFolders, AreNotAddedWhereThereIsNothing) {
    pane_->addToBookmarkWithURL(url("nothing"));
    pane_->addToBookmarkWithPath("");
    fs::create_symlink("nowhere", at("link"));
    pane_->addToBookmarkWithURL(url("link"));
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre(nameOf(fs::current_path().string())))
        << "no path is the working directory";
    pane_->setAryItems({});
    pane_->addToBookmarkWithURL(url("nothing"));
    EXPECT_THAT(pane_->aryItems(), IsEmpty());
}

TEST_F(TrustedFolders, AreAddedAsTheyAreGiven) {
    const NSURL given = url("a"); // not known to be a folder's
    make("a");
    pane_->addToBookmarkWithURL(given);
    EXPECT_THAT(pane_->aryItems(), ElementsAre(given));
}

TEST_F(TrustedFolders, ThatHaveGoneAreNotToldToBeThereAlready) {
    pane_->setAryItems({url("gone")});
    testing::internal::CaptureStderr();
    pane_->addToBookmarkWithURL(url("gone"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(TrustedFolders, AreAddedOnce) {
    make("a");
    pane_->addToBookmarkWithURL(url("a"));
    const auto before = stored();
    testing::internal::CaptureStderr();
    pane_->addToBookmarkWithURL(url("a"));
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::EndsWith(" 已经存在\n"));
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("a"));
    EXPECT_EQ(stored(), before);
}

TEST_F(TrustedFolders, AreComparedLetterByLetter) {
    make("a");
    make("A");
    pane_->setAryItems({url("a")});
    EXPECT_TRUE(pane_->isExsistWithUrl(url("a")));
    EXPECT_TRUE(pane_->isExsistWithUrl(NSURL::fileURLWithPath(at("a") + "/")));
    EXPECT_FALSE(pane_->isExsistWithUrl(url("A")));
    EXPECT_FALSE(pane_->isExsistWithUrl(NSURL::fileURLWithPath(at("./a"))));
    EXPECT_FALSE(pane_->isExsistWithUrl(NSURL::fileURLWithPath(at("x/../a"))));
    pane_->addToBookmarkWithURL(url("A"));
    pane_->addToBookmarkWithPath(at("./a"));
    EXPECT_EQ(pane_->aryItems().size(), 3u);
    pane_->setAryItems({});
    EXPECT_FALSE(pane_->isExsistWithUrl(url("a")));
}

// Its list and the store differ by it until the next commit.
TEST_F(TrustedFolders, AreTrustedThoughTheyCannotBeStored) {
    storeFolders({"a"});
    const auto before = stored();
    pane_->addToBookmarkWithPath("/proc/self/task");
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("task"));
    EXPECT_EQ(stored(), before);
    defaults().removeObjectForKey("BookmarksKey");
    pane_->setAryItems({});
    pane_->addToBookmarkWithPath("/proc/self/task");
    EXPECT_NE(defaults().arrayForKey("BookmarksKey"), nullptr) << "an empty list, all the same";
    EXPECT_THAT(stored(), IsEmpty());
}

TEST_F(TrustedFolders, AreAddedToWhatIsStoredNotToWhatIsListed) {
    storeFolders({"a"});
    make("b");
    pane_->addToBookmarkWithURL(url("b"));
    EXPECT_THAT(storedNames(), ElementsAre("a", "b"));
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("b"));
    defaults().setObject_forKey("no list", "BookmarksKey");
    make("c");
    pane_->addToBookmarkWithURL(url("c"));
    EXPECT_THAT(storedNames(), ElementsAre("c"));
}

TEST_F(TrustedFolders, MayBeSetToThemselves) {
    pane_->setAryItems({url("a"), url("b")});
    pane_->setAryItems(pane_->aryItems());
    EXPECT_THAT(names(pane_->aryItems()), ElementsAre("a", "b"));
}

TEST_F(TrustedFolders, GiveACopyOfTheirList) {
    make("a");
    pane_->addToBookmarkWithURL(url("a"));
    auto list = pane_->itemList();
    list.clear();
    EXPECT_EQ(pane_->aryItems().size(), 1u);
}

} // namespace zr
