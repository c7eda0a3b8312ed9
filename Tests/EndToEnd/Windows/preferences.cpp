// SPDX-License-Identifier: MIT
#include "Preferences.h"
#include "SaveFolder.h"
#include "WindowWithFile.h"

#include <AppKit/NSTableView.h>
#include <Foundation/NSUserDefaults.h>
#include <HostLibraries/GlobalFun.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>

namespace trimstudio {

using namespace zr;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace fs = std::filesystem;

namespace {

class Quits : public NSApplicationDelegate {
public:
    std::optional<bool> applicationShouldTerminateAfterLastWindowClosed(NSApplication&) override {
        return true;
    }
    void applicationWillTerminate(NSApplication&) override { ended = true; }
    bool ended = false;
};

} // namespace

class PreferencesTest : public WindowWithFile {
protected:
    void SetUp() override {
        WindowWithFile::SetUp();
        std::filesystem::create_directory(folder_ / "clips");
        application().setDelegate(quits_);
        NSUserDefaults::standardUserDefaults()->setObject_forKey("GeneralViewController",
                                                                 "MASPreferences Selected Identifier View");
        preferences_->showPreferences(nullptr);
        platform_.display();
        ASSERT_EQ(platform_.windows().size(), 2u);
    }
    static NSApplication& application() { return NSApplication::sharedApplication(); }
    headless::Window& shown() const { return *platform_.windows().at(1); }
    std::string folderShown() const { return shown().labelText("folderLabel"); }
    bool click(const char* button) const {
        const auto frame = shown().frameInContent(button).value();
        const NSPoint middle = {NSMidX(frame), shown().contentSize().height - NSMidY(frame)};
        return shown().mouseDown(middle) && shown().mouseUp(middle);
    }
    void choose(const std::filesystem::path& folder) const {
        click("chooseButton");
        ASSERT_EQ(platform_.openPanels().size(), 1u);
        platform_.openPanels().front()->choose({folder.string()});
    }
    // The trusted folders are shown, and these stored; then something happens, and the restore.
    std::shared_ptr<ZRTrustedPathViewCtl> restoredPane(const std::vector<std::string>& names,
                                                       const std::function<void()>& before) {
        PropertyList::Array bookmarks;
        for (const auto& name : names) {
            fs::create_directory(folder_ / name);
            bookmarks.emplace_back(
                GlobalFun::BookmarkDataForURL(NSURL::fileURLWithPath((folder_ / name).string())).value());
        }
        NSUserDefaults::standardUserDefaults()->setObject_forKey(std::move(bookmarks), "BookmarksKey");
        EXPECT_TRUE(shown().clickToolbarItem("Trusted Paths"));
        before();
        platform_.advance(0.3);
        platform_.runUntilIdle();
        return ZRTrustedPathViewCtl::sharedInstance();
    }
    static std::vector<std::string> trustedNames() {
        std::vector<std::string> names;
        const auto stored = NSUserDefaults::standardUserDefaults()->arrayForKey("BookmarksKey");
        for (const auto& entry : *stored) {
            const auto values =
                NSURL::resourceValuesForKeys_fromBookmarkData({NSURLPathKey}, *entry.get<NSData>());
            names.push_back(fs::path(values->at(NSURLPathKey).description()).filename());
        }
        return names;
    }
    void save() {
        window_->saveTrimmed(nullptr);
        platform_.runUntilIdle();
    }
    static std::optional<std::string> stored() {
        return NSUserDefaults::standardUserDefaults()->stringForKey("SaveFolder");
    }

    std::shared_ptr<Preferences> preferences_ = make<Preferences>(&Preferences::initWithDescribes, false);
    std::shared_ptr<Quits> quits_ = std::make_shared<Quits>();
};

TEST_F(PreferencesTest, AreOneWindowThatIsKept) {
    EXPECT_EQ(shown().title(), "Preferences");
    EXPECT_THAT(shown().toolbarItems(), ElementsAre("Trusted Paths", "General"));
    EXPECT_EQ(shown().selectedToolbarItem(), "General");
    const auto* const window = application().keyWindow();
    preferences_->showPreferences(nullptr);
    EXPECT_EQ(platform_.windows().size(), 2u);
    EXPECT_TRUE(shown().closeByUser());
    EXPECT_EQ(platform_.windows().size(), 1u);
    preferences_->showPreferences(nullptr);
    EXPECT_EQ(application().keyWindow(), window);
}

TEST_F(PreferencesTest, StandInTheMiddleOfTheScreenAtFirst) {
    const NSRect frame = application().keyWindow()->frame();
    EXPECT_NEAR(NSMidX(frame), 640, 1);
    EXPECT_NEAR(NSMidY(frame), 400, 1);
}

TEST_F(PreferencesTest, TheirEndIsNotTheProgramsButTheLastFilesIsAlsoUnderThem) {
    shown().closeByUser();
    EXPECT_FALSE(quits_->ended);
    preferences_->showPreferences(nullptr);
    user_->closeByUser();
    EXPECT_TRUE(quits_->ended);
}

TEST_F(PreferencesTest, ListTheFoldersThatAreTrusted) {
    ZRTrustedPathViewCtl::sharedInstance()->addToBookmarkWithPath((folder_ / "clips").string());
    EXPECT_TRUE(shown().clickToolbarItem("Trusted Paths"));
    EXPECT_EQ(shown().selectedToolbarItem(), "Trusted Paths");
    EXPECT_EQ(shown().title(), "Preferences");
    const auto pane = ZRTrustedPathViewCtl::sharedInstance();
    EXPECT_EQ(pane->tableView()->numberOfRows(), 1);
    EXPECT_FALSE(pane->loadingBgView()->isHidden());
    platform_.advance(0.3);
    platform_.runUntilIdle();
    EXPECT_TRUE(pane->loadingBgView()->isHidden());
}

TEST_F(PreferencesTest, RemoveFromTheStoreWhatTheyRemoveFromTheList) {
    const auto pane = restoredPane({"gone", "a", "b"}, [this] { fs::remove(folder_ / "gone"); });
    EXPECT_EQ(pane->tableView()->numberOfRows(), 2);
    pane->tableView()->selectRowIndexes_byExtendingSelection({0}, false);
    pane->removeFolderDown(nullptr);
    EXPECT_EQ(pane->tableView()->numberOfRows(), 1);
    EXPECT_THAT(trustedNames(), ElementsAre("gone", "b")) << "a program that ends now has not lost b";
}

TEST_F(PreferencesTest, ForgetNoFolderThatACancelledRestoreHasNotReached) {
    const auto pane = restoredPane({"a", "b", "c"},
                                   [] { ZRTrustedPathViewCtl::sharedInstance()->loadingCancelClick(nullptr); });
    EXPECT_THAT(trustedNames(), ElementsAre("b", "c")) << "the first was being restored";
    EXPECT_TRUE(shown().closeByUser());
    EXPECT_THAT(trustedNames(), ElementsAre("b", "c"));
    pane->addToBookmarkWithPath((folder_ / "clips").string());
    EXPECT_THAT(trustedNames(), ElementsAre("b", "c", "clips"));
    pane->tableView()->reloadData();
    pane->tableView()->selectRowIndexes_byExtendingSelection({0}, false);
    pane->removeFolderDown(nullptr);
    EXPECT_THAT(trustedNames(), ElementsAre("b", "c")) << "clips is the only row";
}

TEST_F(PreferencesTest, RecordingsAreSavedBesideTheirOriginalsUntilAFolderIsChosen) {
    EXPECT_EQ(folderShown(), "The folder of the recording");
    EXPECT_EQ(stored(), std::nullopt);
    save();
    EXPECT_THAT(files(), UnorderedElementsAre("clips", "take.wav", "take-trimmed.wav"));

    click("chooseButton");
    ASSERT_EQ(platform_.openPanels().size(), 1u);
    const auto& panel = *platform_.openPanels().front();
    EXPECT_EQ(panel.window(), &shown());
    EXPECT_EQ(panel.prompt(), "Choose");
    EXPECT_TRUE(panel.choosesFolders());
    EXPECT_FALSE(panel.choosesFiles());
    EXPECT_FALSE(panel.choosesSeveral());
    platform_.openPanels().front()->cancel();
    EXPECT_EQ(stored(), std::nullopt);

    choose(folder_ / "clips");
    EXPECT_EQ(stored(), (folder_ / "clips").string());
    save();
    save();
    EXPECT_THAT(files(), UnorderedElementsAre("clips", "take.wav", "take-trimmed.wav"));
    EXPECT_THAT(filesIn(folder_ / "clips"), UnorderedElementsAre("take-trimmed.wav", "take-trimmed 2.wav"));

    click("chooseButton");
    EXPECT_EQ(platform_.openPanels().front()->folder(), (folder_ / "clips").string());
    platform_.openPanels().front()->cancel();
    EXPECT_EQ(stored(), (folder_ / "clips").string());

    EXPECT_TRUE(click("recordingsButton"));
    EXPECT_EQ(folderShown(), "The folder of the recording");
    EXPECT_EQ(NSUserDefaults::standardUserDefaults()->objectForKey("SaveFolder"), nullptr);
    save();
    EXPECT_TRUE(files().contains("take-trimmed 2.wav"));
}

TEST_F(PreferencesTest, TheKeyboardReachesTheButtonsAndIsNeverLost) {
    shown().keyDown(kKeyCodeSpace, " ");
    ASSERT_EQ(platform_.openPanels().size(), 1u);
    platform_.openPanels().front()->choose({(folder_ / "clips").string()});
    shown().keyDown(kKeyCodeTab, "\t");
    shown().keyDown(kKeyCodeSpace, " ");
    EXPECT_EQ(stored(), std::nullopt);
    shown().keyDown(kKeyCodeSpace, " ");
    EXPECT_EQ(platform_.openPanels().size(), 1u) << "the other button has it now";
    platform_.openPanels().front()->cancel();
}

TEST_F(PreferencesTest, ALongNameIsShortenedInTheMiddleWhereThereIsNoRoom) {
    const auto name =
        folder_ / "übermäßig lange und immer noch längere Namen für Ordner, in denen Ausschnitte landen";
    std::filesystem::create_directory(name);
    choose(name);
    const std::string text = folderShown();
    EXPECT_THAT(text, StartsWith(folder_.string().substr(0, 10)));
    EXPECT_THAT(text, EndsWith("landen"));
    const auto at = text.find("…");
    ASSERT_NE(at, std::string::npos);
    EXPECT_TRUE(name.string().starts_with(text.substr(0, at)));
    EXPECT_TRUE(name.string().ends_with(text.substr(at + std::string("…").size())));
    shown().resizeByUser({1200, 124});
    EXPECT_EQ(folderShown(), name.string());
    shown().resizeByUser({460, 124});
    EXPECT_EQ(folderShown(), text);
}

TEST_F(PreferencesTest, AFolderWhoseNameIsNoTextIsKeptAsBytes) {
    const auto name = folder_ / "clips-\xFF";
    std::filesystem::create_directory(name);
    choose(name);
    EXPECT_EQ(saveFolder(), name);
    save();
    EXPECT_THAT(filesIn(name), UnorderedElementsAre("take-trimmed.wav"));
    NSUserDefaults::standardUserDefaults()->setObject_forKey(PropertyList(5), "SaveFolder");
    EXPECT_EQ(saveFolder(), std::nullopt) << "no folder's name";
}

} // namespace trimstudio
