// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <Foundation/FileQuestions.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <future>
#include <string>
#include <thread>
#include <vector>

namespace zr {

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kTable = R"(22 1 253:0 / / rw,relatime shared:1 - ext4 /dev/vda rw
23 22 0:21 / /proc rw - proc proc rw
24 23 0:22 / /proc/sys/fs/binfmt_misc rw shared:2 - autofs systemd-1 rw
25 22 0:30 / /mnt/nas rw,relatime shared:3 master:4 - nfs4 nas:/export rw
26 25 0:31 / /mnt/nas/inner rw - tmpfs tmpfs rw
27 22 0:32 / /mnt/with\040blank\011and\134 rw - fuse.sshfs host: rw
broken line
28 22 0:33
)";

TEST(MountTables, KnowWhoMayNotAnswer) {
    const test::TemporaryFolder folder;
    MountTable table(folder.write("mounts", kTable));
    EXPECT_THAT(table.doubtfulPlaces(), ElementsAre("/mnt/nas", "/mnt/with blank\tand\\"));
}

TEST(MountTables, DoWithoutATable) {
    MountTable table("/nowhere");
    EXPECT_THAT(table.doubtfulPlaces(), IsEmpty());
}

TEST(MountTables, AreReadWhenTheyCanBe) {
    const test::TemporaryFolder folder;
    MountTable table((folder.path() / "mounts").string());
    EXPECT_THAT(table.doubtfulPlaces(), IsEmpty());
    folder.write("mounts", kTable);
    EXPECT_EQ(table.doubtfulPlaces().size(), 2u);
}

TEST(PlacesOnTheWay, AreFoundThroughLinks) {
    namespace fs = std::filesystem;
    const test::TemporaryFolder folder;
    const auto at = [&](const char* name) { return (folder.path() / name).string(); };
    fs::create_directories(at("local/deep"));
    fs::create_directories(at("nas"));
    fs::create_directory_symlink(at("nas/share"), at("absolute"));
    fs::create_directory_symlink("../nas", at("local/relative"));
    fs::create_directory_symlink("deep", at("local/inner"));
    fs::create_directory_symlink("absolute", at("twice"));
    fs::create_directory_symlink("circle", at("circle"));
    const std::vector<std::string> places = {at("elsewhere"), at("nas")};
    const auto place = [&](const std::string& path) { return placeOnTheWay(path, places).value_or("none"); };
    for (const char* path :
         {"nas", "nas/", "nas/a/b", "absolute", "absolute/x", "local/relative/x", "twice/x", "local/../nas",
          "local/./deep/../../nas/x", "local/inner/../../nas", "nas/../local"})
        EXPECT_EQ(place(at(path)), at("nas")) << path;
    for (const char* path : {"local", "local/deep/x/y", "nasal", "local/inner/x", "circle/x", "missing/../nas",
                             "nas2/x", "local/nas"})
        EXPECT_EQ(place(at(path)), "none") << path;
    EXPECT_EQ(placeOnTheWay(at("nas"), {}), std::nullopt);
    EXPECT_EQ(placeOnTheWay(at("local"), {"/"}), "/");

    const auto before = fs::current_path();
    fs::current_path(at("local"));
    EXPECT_EQ(place("relative/x"), at("nas"));
    EXPECT_EQ(place("../nas"), at("nas"));
    EXPECT_EQ(place("deep"), "none");
    EXPECT_EQ(place(""), "none");
    fs::current_path(before);
}

class Questions : public testing::Test {
protected:
    ~Questions() override { letAnswer(); }

    std::string table(std::string_view text) const { return folder.write("mounts", text).string(); }
    // A question that is answered when letAnswer() is called.
    std::function<int()> silent() const {
        return [open = open_, asked = asked_] {
            ++*asked;
            open.wait();
            return 1;
        };
    }
    int asked() const { return *asked_; }
    void letAnswer() {
        if (!isOpen_) gate_.set_value();
        isOpen_ = true;
    }

    const test::TemporaryFolder folder;

private:
    std::shared_ptr<std::atomic<int>> asked_ = std::make_shared<std::atomic<int>>(0);
    std::promise<void> gate_;
    std::shared_future<void> open_ = gate_.get_future().share();
    bool isOpen_ = false;
};

std::thread::id here() { return std::this_thread::get_id(); }

TEST_F(Questions, AreAskedOnTheSpotWhereAllAnswer) {
    FileQuestions questions(1h, table("22 1 253:0 / / rw - ext4 /dev/vda rw\n"));
    EXPECT_EQ(questions.ask<std::thread::id>("/home", &here), here());
}

TEST_F(Questions, AreAskedElsewhereOnlyOfThoseWhoMayNot) {
    FileQuestions questions(1h, table(kTable));
    for (const char* path : {"/home", "relative", "/", ""})
        EXPECT_EQ(questions.ask<std::thread::id>(path, &here), here()) << path;
    EXPECT_NE(questions.ask<std::thread::id>("/mnt/nas/folder", &here), here());
}

TEST_F(Questions, EndWithoutAnAnswer) {
    FileQuestions questions(1ms, table(kTable));
    EXPECT_EQ(questions.ask<int>("/mnt/nas/a", silent()), std::nullopt);
}

TEST_F(Questions, AreNotRepeatedToWhoIsStillSilent) {
    FileQuestions questions(1ms, table(kTable));
    EXPECT_EQ(questions.ask<int>("/mnt/nas/a", silent()), std::nullopt);
    EXPECT_EQ(questions.ask<int>("/mnt/nas", silent()), std::nullopt);
    EXPECT_EQ(questions.ask<int>("/mnt/nas/b/c", silent()), std::nullopt);
    EXPECT_LE(asked(), 1);
    EXPECT_EQ(questions.ask<int>("/mnt/nasal", [] { return 2; }), 2) << "all others are asked";
}

TEST_F(Questions, AreNotRepeatedThroughLinks) {
    const std::string place = (folder.path() / "nas").string();
    FileQuestions questions(1ms, table("25 22 0:30 / " + place + " rw - nfs4 nas:/export rw\n"));
    for (const char* link : {"one", "two", "three"}) {
        const auto path = folder.path() / link;
        std::filesystem::create_directory_symlink(place, path);
        EXPECT_EQ(questions.ask<int>((path / "x").string(), silent()), std::nullopt);
    }
    EXPECT_LE(asked(), 1);
}

TEST_F(Questions, AreAskedAgainAfterAnAnswer) {
    FileQuestions questions(1ms, table(kTable));
    EXPECT_EQ(questions.ask<int>("/mnt/nas/a", silent()), std::nullopt);
    letAnswer();
    std::optional<int> answer;
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (!answer && std::chrono::steady_clock::now() < deadline)
        answer = questions.ask<int>("/mnt/nas/a", [] { return 3; });
    EXPECT_EQ(answer, 3);
}

TEST_F(Questions, AreGivenUpWhenNobodyWaits) {
    FileQuestions questions(1h, table(kTable));
    std::optional<int> answer = 0;
    std::thread asker([&] { answer = questions.ask<int>("/mnt/nas/a", silent()); });
    while (asked() == 0) std::this_thread::yield();
    questions.setWaits(false);
    asker.join();
    EXPECT_EQ(answer, std::nullopt);
    EXPECT_EQ(questions.ask<int>("/mnt/with blank\tand\\/x", [] { return 1; }), std::nullopt);
    EXPECT_EQ(questions.ask<int>("/home", [] { return 1; }), 1);
    questions.setWaits(true);
    EXPECT_EQ(questions.ask<int>("/mnt/with blank\tand\\/x", [] { return 1; }), 1);
}

TEST_F(Questions, MayOutliveWhoAsked) {
    {
        FileQuestions questions(1ms, table(kTable));
        EXPECT_EQ(questions.ask<int>("/mnt/nas/a", silent()), std::nullopt);
    }
    letAnswer();
}

} // namespace

} // namespace zr
