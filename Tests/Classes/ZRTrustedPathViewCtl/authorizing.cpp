// SPDX-License-Identifier: MIT
#include "Support/RootsPowers.h"
#include "TrustedFoldersTest.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSWindow.h>

namespace zr {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const bool wasNoneAtFirst = ZRTrustedPathViewCtl::sharedInstance() == nullptr;

class Item : public NSObject, public FileItem {
public:
    ZR_CLASS(Item, NSObject)
    std::string filePath() const override { return path; }
    std::string path;
};
ZR_CLASS_TABLE(Item)

} // namespace

class Authorizing : public test::TrustedFoldersTest {
protected:
    void SetUp() override {
        test::giveUpRootsPowers();
        TrustedFoldersTest::SetUp();
    }
    void TearDown() override {
        for (const auto& path : closed_) fs::permissions(path, fs::perms::owner_all);
        TrustedFoldersTest::TearDown();
    }
    std::string close(const std::string& name) {
        auto path = make(name);
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_exec);
        closed_.push_back(path);
        return path;
    }
    std::vector<std::string> close(const std::vector<std::string>& names) {
        std::vector<std::string> paths;
        paths.reserve(names.size());
        for (const auto& name : names) paths.push_back(close(name));
        return paths;
    }
    // Each step of the user's, in turn.
    void answerAlert(bool authorizes) {
        platform_->script([this, authorizes] {
            auto* const window = platform_->windows().back();
            message_ = window->labelText("alertMessage");
            information_ = window->labelText("alertInformation");
            platform_->display();
            icon_ = window->drawing("alertIcon");
            std::ranges::replace(information_, '\n', ' '); // as it is broken into lines
            for (const auto& view : NSApplication::sharedApplication().keyWindow()->contentView()->subviews())
                if (auto* const button = dynamic_cast<NSButton*>(view.get()))
                    titles_[button->tag()] = button->title();
            happened_.push_back("alert");
            if (authorizes)
                window->keyDown(36, "\r");
            else
                window->keyDown(53, "\x1b");
        });
    }
    // With the folder that the panel shows, if there is no other.
    void choose(const std::string& path = "") {
        platform_->script([this, path] {
            auto& panel = onlyPanel();
            happened_.push_back("panel " + nameOf(panel.folder()));
            panel.choose({path.empty() ? panel.folder() : path});
        });
    }
    void cancelPanel() {
        platform_->script([this] {
            happened_.push_back("panel " + nameOf(onlyPanel().folder()));
            onlyPanel().cancel();
        });
    }
    headless::OpenPanel& onlyPanel() {
        if (platform_->openPanels().size() != 1) throw std::logic_error("there is not one panel");
        return *platform_->openPanels()[0];
    }
    bool authorize(const std::vector<std::string>& folders) {
        const bool result = ZRTrustedPathViewCtl::tryToAuthorizeDirs(folders);
        EXPECT_FALSE(platform_->starved());
        EXPECT_THAT(platform_->windows(), IsEmpty());
        EXPECT_THAT(platform_->openPanels(), IsEmpty());
        return result;
    }

    std::vector<std::string> closed_, happened_;
    std::string message_, information_;
    std::vector<std::string> icon_;
    std::map<long, std::string> titles_;
    std::shared_ptr<ZRTrustedPathViewCtl> pane_;
};

TEST_F(Authorizing, IsNotNeededForWritableMissingAndEmptyPaths) {
    EXPECT_TRUE(authorize({}));
    EXPECT_TRUE(authorize({make("a"), at("missing"), "", make("b")}));
    EXPECT_THAT(happened_, IsEmpty());
}

TEST_F(Authorizing, AsksInItsOwnWords) {
    answerAlert(false);
    EXPECT_FALSE(authorize({close("a")}));
    EXPECT_EQ(message_, "Warnning!");
    EXPECT_EQ(information_,
              "The origin folder of output file is not accessable by the app,Please authorize it");
    EXPECT_THAT(titles_, ElementsAre(std::pair(1000L, "Authorize"), std::pair(1001L, "Cancel")));
    EXPECT_THAT(icon_, testing::Contains(testing::HasSubstr("0.93, 0.62, 0.09"))) << "a warning's";
    EXPECT_THAT(happened_, ElementsAre("alert"));
}

TEST_F(Authorizing, IsRefusedWhenTheAlertIsAborted) {
    platform_->script([] { NSApplication::sharedApplication().abortModal(); });
    EXPECT_FALSE(authorize({close("a")}));
}

// Neither is the words nor the key for "Cancel" the application's.
TEST_F(Authorizing, AsksUntranslated) {
    folder_.write("de.lproj/Localizable.strings", R"("Cancel" = "Abbrechen"; "Authorize" = "Erlauben";)");
    headless::Options options;
    options.preferredLanguages = {"de"};
    options.mainBundle = folder_.path();
    launch(options);
    answerAlert(false);
    EXPECT_FALSE(authorize({close("a")}));
    EXPECT_EQ(titles_[1001], "Cancel");

    platform_->script([&] { EXPECT_FALSE(platform_->windows().back()->closeByUser()); });
    EXPECT_FALSE(authorize({at("a")})) << "closing it cancels, too";
}

TEST_F(Authorizing, ShowsAPanelForEachFolderInOrder) {
    pane_ = zr::make<ZRTrustedPathViewCtl>();
    const auto folders = close({"b", "a", "c"});
    answerAlert(true);
    platform_->script([&] {
        auto& panel = onlyPanel();
        EXPECT_EQ(panel.prompt(), "Authorize");
        EXPECT_TRUE(panel.choosesFolders());
        EXPECT_FALSE(panel.choosesFiles());
        EXPECT_FALSE(panel.choosesSeveral());
        EXPECT_EQ(panel.folder(), at("b"));
        EXPECT_EQ(panel.window(), nullptr);
        panel.choose({at("b")});
    });
    choose();
    choose();
    EXPECT_TRUE(authorize(folders));
    EXPECT_THAT(happened_, ElementsAre("alert", "panel a", "panel c"));
    EXPECT_THAT(names(pane_->itemList()), ElementsAre("b", "a", "c"));
    EXPECT_THAT(storedNames(), ElementsAre("b", "a", "c"));
}

TEST_F(Authorizing, AsksForFiveFoldersAtMost) {
    pane_ = zr::make<ZRTrustedPathViewCtl>();
    auto folders = close({"1", "2", "3", "4", "5", "6"});
    folders.insert(folders.begin() + 2, make("writable"));
    folders.insert(folders.begin() + 2, at("1"));
    answerAlert(true);
    for (int i = 0; i < 5; ++i) choose();
    EXPECT_TRUE(authorize(folders));
    EXPECT_THAT(happened_, ElementsAre("alert", "panel 1", "panel 2", "panel 3", "panel 4", "panel 5"));
}

TEST_F(Authorizing, RecordsWhatTheUserPicked) {
    pane_ = zr::make<ZRTrustedPathViewCtl>();
    make("other");
    answerAlert(true);
    choose(at("other"));
    EXPECT_TRUE(authorize({close("a")}));
    EXPECT_THAT(names(pane_->itemList()), ElementsAre("other"));
}

TEST_F(Authorizing, EndsWithTheFirstPanelThatIsCancelledAndKeepsWhatWasGranted) {
    pane_ = zr::make<ZRTrustedPathViewCtl>();
    answerAlert(true);
    choose();
    cancelPanel();
    EXPECT_FALSE(authorize(close({"a", "b", "c"})));
    EXPECT_THAT(happened_, ElementsAre("alert", "panel a", "panel b"));
    EXPECT_THAT(names(pane_->itemList()), ElementsAre("a"));
    EXPECT_THAT(storedNames(), ElementsAre("a"));
}

TEST_F(Authorizing, RecordsWithTheInstanceThatWasMadeLast) {
    pane_ = zr::make<ZRTrustedPathViewCtl>();
    const auto last = zr::make<ZRTrustedPathViewCtl>();
    EXPECT_EQ(ZRTrustedPathViewCtl::sharedInstance(), last);
    answerAlert(true);
    choose();
    EXPECT_TRUE(authorize({close("a")}));
    EXPECT_THAT(pane_->itemList(), IsEmpty());
    EXPECT_THAT(names(last->itemList()), ElementsAre("a"));
}

TEST_F(Authorizing, FindsNoSharedInstanceBeforeThereIsOne) { EXPECT_TRUE(wasNoneAtFirst); }

TEST_F(Authorizing, HoldsTheSharedInstance) {
    const std::weak_ptr<ZRTrustedPathViewCtl> weak = zr::make<ZRTrustedPathViewCtl>();
    platform_->runUntilIdle();
    EXPECT_EQ(weak.lock(), ZRTrustedPathViewCtl::sharedInstance());
    EXPECT_FALSE(weak.expired());
}

// In a process of its own, in which there has been no instance.
TEST_F(Authorizing, RecordsNothingWithoutAnInstance) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            answerAlert(true);
            choose();
            const bool authorized = authorize({close("a")});
            TearDown();
            fs::remove_all(folder_.path());
            const bool isClean = !ZRTrustedPathViewCtl::sharedInstance() && storedNames().empty();
            std::exit(authorized && isClean && !HasFailure() ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Authorizing, TakesTheFoldersOfFiles) {
    pane_ = zr::make<ZRTrustedPathViewCtl>();
    close("a");
    close("b");
    const auto item = zr::make<Item>();
    item->path = at("b/film.mp4");
    answerAlert(true);
    choose();
    choose();
    EXPECT_TRUE(ZRTrustedPathViewCtl::tryToAuthorizeFoldeWithFileList(
        {at("a/one.mp4"), at("a/two.mp4"), item, zr::make<NSObject>(), std::shared_ptr<NSObject>(), "",
         zr::make<Item>(), item}));
    EXPECT_THAT(happened_, ElementsAre("alert", "panel a", "panel b"));
}

TEST_F(Authorizing, CountsFoldersNotFiles) {
    make("writable");
    std::vector<ZRTrustedPathViewCtl::File> files;
    files.reserve(21);
    for (int i = 0; i < 20; ++i) files.push_back(at("writable/" + std::to_string(i)));
    files.push_back(close("a") + "/film.mp4");
    answerAlert(false);
    EXPECT_FALSE(ZRTrustedPathViewCtl::tryToAuthorizeFoldeWithFileList(files));
    EXPECT_THAT(happened_, ElementsAre("alert"));
    EXPECT_TRUE(ZRTrustedPathViewCtl::tryToAuthorizeFoldeWithFileList({}));
}

} // namespace zr
