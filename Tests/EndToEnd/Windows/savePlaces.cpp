// SPDX-License-Identifier: MIT
#include "SaveFolder.h"
#include "Support/RootsPowers.h"
#include "WindowWithFile.h"

#include <Foundation/NSUserDefaults.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>

#include <algorithm>

namespace trimstudio {

using namespace zr;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace fs = std::filesystem;

class SavePlaces : public WindowWithFile {
protected:
    void SetUp() override {
        zr::test::giveUpRootsPowers();
        WindowWithFile::SetUp();
        trusted_ = make<ZRTrustedPathViewCtl>();
        platform_.advance(0.3);
        platform_.runUntilIdle();
        fs::create_directory(folder_ / "open");
        fs::create_directory(folder_ / "closed");
        close(folder_);
        close(folder_ / "closed");
    }
    void TearDown() override {
        for (const auto& path : {folder_, folder_ / "closed"}) open(path);
        WindowWithFile::TearDown();
    }
    static void close(const fs::path& path) {
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_exec);
    }
    static void open(const fs::path& path) { fs::permissions(path, fs::perms::owner_all); }

    // What the user does, in turn: an alert is answered by its first button, or cancelled.
    void answer(bool goesOn) {
        platform_.script([this, goesOn] {
            auto* const alert = platform_.windows().back();
            happened_.push_back(alert->labelText("alertMessage"));
            std::ranges::replace(happened_.back(), '\n', ' '); // as it is broken into lines
            if (goesOn)
                alert->keyDown(kKeyCodeReturn, "\r");
            else
                alert->keyDown(kKeyCodeEscape, "\x1b");
        });
    }
    void choose(const fs::path& folder) {
        platform_.script([this, folder] {
            auto* const panel = platform_.openPanels().at(0);
            happened_.push_back(panel->prompt());
            panel->choose({folder.string()});
        });
    }
    void cancelPanel() {
        platform_.script([this] {
            happened_.push_back(platform_.openPanels().at(0)->prompt());
            platform_.openPanels().at(0)->cancel();
        });
    }
    void save() {
        window_->saveTrimmed(nullptr);
        EXPECT_FALSE(platform_.starved());
        platform_.runUntilIdle();
    }
    std::vector<std::string> trustedNames() const {
        std::vector<std::string> names;
        for (const auto& url : trusted_->itemList()) names.push_back(fs::path(url.path()).filename());
        return names;
    }
    void expectNothingSaved() const {
        EXPECT_THAT(files(), UnorderedElementsAre("closed", "open", "take.wav"));
        EXPECT_THAT(filesIn(folder_ / "open"), IsEmpty());
        EXPECT_THAT(message(), testing::HasSubstr("Nothing was written"));
        EXPECT_FALSE(window_->failed());
    }
    std::string refusal(const fs::path& folder) const {
        return "“take.wav” cannot be saved in “" + folder.string() + "”.";
    }

    std::shared_ptr<ZRTrustedPathViewCtl> trusted_;
    std::vector<std::string> happened_;
};

TEST_F(SavePlaces, AreNotAskedForWhereTheFolderCanBeWrittenTo) {
    open(folder_);
    save();
    EXPECT_THAT(happened_, IsEmpty());
    EXPECT_TRUE(files().contains("take-trimmed.wav"));
}

TEST_F(SavePlaces, AreNotTakenWithoutTheUser) {
    answer(false);
    save();
    EXPECT_THAT(happened_, ElementsAre("Warnning!"));
    expectNothingSaved();

    answer(true);
    cancelPanel();
    save();
    EXPECT_THAT(happened_, ElementsAre("Warnning!", "Warnning!", "Authorize"));
    expectNothingSaved();
}

TEST_F(SavePlaces, AreTestedAgainWhenTheyAreAuthorized) {
    answer(true);
    platform_.script([this] {
        EXPECT_EQ(platform_.openPanels().at(0)->folder(), folder_.string());
        open(folder_);
        platform_.openPanels().at(0)->choose({folder_.string()});
    });
    save();
    EXPECT_THAT(happened_, ElementsAre("Warnning!"));
    EXPECT_TRUE(files().contains("take-trimmed.wav"));
    EXPECT_THAT(trustedNames(), ElementsAre(folder_.filename().string()));
}

TEST_F(SavePlaces, AreWhatTheUserPicksForAuthorizing) {
    answer(true);
    choose(folder_ / "open");
    save();
    EXPECT_THAT(happened_, ElementsAre("Warnning!", "Authorize"));
    EXPECT_THAT(filesIn(folder_ / "open"), UnorderedElementsAre("take-trimmed.wav"));
    EXPECT_THAT(trustedNames(), ElementsAre("open"));
    EXPECT_EQ(saveFolder(), std::nullopt) << "this time only";
}

TEST_F(SavePlaces, AreNotTheFolderAboveThatWasAuthorized) {
    const fs::path recordings = folder_ / "open" / "recordings";
    fs::create_directory(recordings);
    close(recordings);
    setSaveFolder(recordings);
    answer(true);
    choose(folder_ / "open");
    answer(false);
    save();
    EXPECT_THAT(happened_, ElementsAre("Warnning!", "Authorize", refusal(recordings)));
    EXPECT_THAT(filesIn(folder_ / "open"), UnorderedElementsAre("recordings"));
    EXPECT_THAT(trustedNames(), ElementsAre("open"));
    open(recordings);
}

// A plain folder stays as it is, however much it is authorised.
TEST_F(SavePlaces, MayBeOthersInstead) {
    answer(true);
    choose(folder_);
    answer(true);
    choose(folder_ / "open");
    save();
    EXPECT_THAT(happened_, ElementsAre("Warnning!", "Authorize", refusal(folder_), "Choose"));
    EXPECT_THAT(filesIn(folder_ / "open"), UnorderedElementsAre("take-trimmed.wav"));
    EXPECT_THAT(message(), StartsWith("Saved “take-trimmed.wav”"));
    EXPECT_EQ(saveFolder(), std::nullopt) << "this time only";
}

TEST_F(SavePlaces, AreAskedForUntilOneCanBeWrittenToOrTheUserCancels) {
    answer(true);
    choose(folder_ / "closed");
    answer(true);
    choose(folder_ / "closed");
    answer(false);
    save();
    EXPECT_THAT(happened_,
                ElementsAre("Warnning!", "Authorize", refusal(folder_), "Choose", refusal(folder_ / "closed")));
    expectNothingSaved();
    EXPECT_THAT(trustedNames(), ElementsAre("closed")) << "what was picked for authorising stays trusted";
}

TEST_F(SavePlaces, AreAskedForWhereTheFolderOfThePreferencesIsGone) {
    setSaveFolder(folder_ / "gone");
    answer(true);
    choose(folder_ / "open");
    save();
    EXPECT_THAT(happened_, ElementsAre(refusal(folder_ / "gone"), "Choose")) << "there is nothing to authorise";
    EXPECT_THAT(filesIn(folder_ / "open"), UnorderedElementsAre("take-trimmed.wav"));
    EXPECT_EQ(saveFolder(), folder_ / "gone");
}

TEST_F(SavePlaces, AreNoMatterToAProgramThatEnds) {
    platform_.script([] { NSApplication::sharedApplication().terminate(nullptr); });
    save();
    EXPECT_THAT(files(), UnorderedElementsAre("closed", "open", "take.wav"));
}

} // namespace trimstudio
