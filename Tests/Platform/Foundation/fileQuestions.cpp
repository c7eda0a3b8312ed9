#include "Support/TemporaryFolder.h"

#include <Foundation/FileQuestions.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
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
    MountTable table(folder.write("mounts", kTable).c_str());
    EXPECT_THAT(table.doubtfulPlaces(), ElementsAre("/mnt/nas", "/mnt/with blank\tand\\"));
}

TEST(MountTables, DoWithoutATable) {
    MountTable table("/nowhere");
    EXPECT_THAT(table.doubtfulPlaces(), IsEmpty());
}

class Questions : public testing::Test {
protected:
    ~Questions() override { letAnswer(); }

    const char* table(std::string_view text) {
        path_ = folder.write("mounts", text);
        return path_.c_str();
    }
    // A question that is answered when letAnswer() is called.
    std::function<int()> silent() {
        return [open = open_, this] {
            ++asked;
            open.wait();
            return 1;
        };
    }
    void letAnswer() {
        if (!isOpen_) gate_.set_value();
        isOpen_ = true;
    }

    const test::TemporaryFolder folder;
    std::atomic<int> asked = 0;

private:
    std::filesystem::path path_;
    std::promise<void> gate_;
    std::shared_future<void> open_ = gate_.get_future().share();
    bool isOpen_ = false;
};

std::thread::id here() { return std::this_thread::get_id(); }

TEST_F(Questions, AreAskedOnTheSpotWhereAllAnswer) {
    FileQuestions questions(1h, table("22 1 253:0 / / rw - ext4 /dev/vda rw\n"));
    EXPECT_EQ(questions.ask<std::thread::id>("/home", &here), here());
}

TEST_F(Questions, AreAskedElsewhereWhereSomeMayNot) {
    FileQuestions questions(1h, table(kTable));
    for (const char* path : {"/home", "/mnt/nas/folder", "relative"})
        EXPECT_NE(questions.ask<std::thread::id>(path, &here), here());
}

TEST_F(Questions, EndWithoutAnAnswer) {
    FileQuestions questions(1ms, table(kTable));
    EXPECT_EQ(questions.ask<int>("/mnt/nas/a", silent()), std::nullopt);
}

TEST_F(Questions, AreNotRepeatedToWhoIsStillSilent) {
    FileQuestions questions(1h, table(kTable));
    FileQuestions hasty(1ms, table(kTable));
    EXPECT_EQ(hasty.ask<int>("/mnt/nas/a", silent()), std::nullopt);
    const int before = asked;
    EXPECT_EQ(hasty.ask<int>("/mnt/nas", silent()), std::nullopt);
    EXPECT_EQ(hasty.ask<int>("/mnt/nas/b/c", silent()), std::nullopt);
    EXPECT_LE(asked, std::max(before, 1));
    EXPECT_EQ(questions.ask<int>("/mnt/nasal", [] { return 2; }), 2);
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

// A path that leads there by a link does not tell which file system it was that did not answer.
TEST_F(Questions, LeaveNotMoreThanFourThreadsBehind) {
    FileQuestions questions(1ms, table(kTable));
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(questions.ask<int>("/link/" + std::to_string(i), silent()), std::nullopt);
    EXPECT_LE(asked, 4);
    EXPECT_EQ(questions.ask<int>("/mnt/nas/a", [] { return 1; }), std::nullopt);
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
