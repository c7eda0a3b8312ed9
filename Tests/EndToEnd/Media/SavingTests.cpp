// SPDX-License-Identifier: MIT
#include "Media.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iterator>
#include <limits>
#include <thread>

#include <sys/stat.h>

namespace {

using namespace mediatest;
using namespace trimstudio;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double endless = std::numeric_limits<double>::infinity();

class Saving : public testing::Test {
protected:
    void SetUp() override {
        ffmpeg(folder_.path(), markedSound() + "take.wav");
        source_ = folder_.path() / "take.wav";
    }
    // The first line that a process of its own prints when it saves.
    std::string savedElsewhere(std::vector<std::string> command, const fs::path& file,
                               const std::string& limit = {}) {
        command.insert(command.end(), {MEDIA_OUTCOME, "save", file.string(), "1", "4"});
        if (!limit.empty()) command.push_back(limit);
        const std::string output = run(command).output;
        return output.substr(0, output.find('\n'));
    }
    // A sound file of this many bytes that takes no room on the disk.
    fs::path silence(const char* name, uint32_t bytes) {
        std::string header = contents(source_).substr(0, 36); // up to the name of the samples
        header += "data";
        for (int shift = 0; shift < 32; shift += 8) header += static_cast<char>(bytes >> shift & 0xFF);
        fs::path file = folder_.path() / name;
        write(file, header);
        fs::resize_file(file, header.size() + bytes);
        return file;
    }

    TemporaryFolder folder_;
    fs::path source_;
};

TEST_F(Saving, TheCopyIsNamedAfterTheOriginalAndLiesBesideIt) {
    EXPECT_EQ(saved(source_, 1, 2).path, folder_.path() / "take-trimmed.wav");
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"take-trimmed.wav", "take.wav"}));
}

TEST_F(Saving, TheExtensionKeepsItsLetterCase) {
    fs::copy_file(source_, folder_.path() / "B.tar.WaV");
    EXPECT_EQ(saved(folder_.path() / "B.tar.WaV", 1, 2).path.filename(), "B.tar-trimmed.WaV");
    fs::copy_file(source_, folder_.path() / "bare");
    EXPECT_EQ(saved(folder_.path() / "bare", 1, 2).path.filename(), "bare-trimmed");
}

TEST_F(Saving, ANameThatIsTakenIsNeverUsed) {
    write(folder_.path() / "take-trimmed.wav", "first");
    fs::create_directory(folder_.path() / "take-trimmed 2.wav");
    fs::create_symlink("nowhere", folder_.path() / "take-trimmed 3.wav");
    EXPECT_EQ(saved(source_, 1, 2).path.filename(), "take-trimmed 4.wav");
    EXPECT_EQ(contents(folder_.path() / "take-trimmed.wav"), "first");
    EXPECT_FALSE(fs::exists(folder_.path() / "nowhere"));
    EXPECT_TRUE(fs::is_symlink(folder_.path() / "take-trimmed 3.wav"));
}

TEST_F(Saving, ANameThatIsTakenAtTheLastMomentIsNotUsedEither) {
    const std::atomic<bool> cancelled{false};
    bool taken = false;
    const auto outcome = saveTrimmed({source_, 0, 6}, cancelled, [&](double) {
        if (!taken) write(folder_.path() / "take-trimmed.wav", "someone else's");
        taken = true;
    });
    ASSERT_TRUE(taken);
    ASSERT_TRUE(outcome) << outcome.error();
    EXPECT_EQ(outcome.value().path.filename(), "take-trimmed 2.wav");
    EXPECT_EQ(contents(folder_.path() / "take-trimmed.wav"), "someone else's");
}

TEST_F(Saving, ManyAtOnceGetANameEach) {
    constexpr std::size_t count = 6;
    std::vector<fs::path> paths(count);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < count; ++i)
        threads.emplace_back([&, i] { paths[i] = saved(source_, 1, 2).path; });
    for (std::thread& thread : threads) thread.join();
    std::sort(paths.begin(), paths.end());
    EXPECT_EQ(std::unique(paths.begin(), paths.end()), paths.end());
    EXPECT_EQ(folder_.names().size(), count + 1);
    for (const fs::path& path : paths) EXPECT_NEAR(probedDuration(path), 2, 1e-6);
}

TEST_F(Saving, UntilItIsCompleteTheFileHasAHiddenName) {
    const std::atomic<bool> cancelled{false};
    std::vector<std::string> meanwhile;
    ASSERT_TRUE(saveTrimmed({source_, 0, 6}, cancelled, [&](double) { meanwhile = folder_.names(); }));
    ASSERT_EQ(meanwhile.size(), 2U);
    EXPECT_EQ(meanwhile[0].substr(0, 1), ".");
    EXPECT_EQ(meanwhile[1], "take.wav");
}

TEST_F(Saving, TheCopyGetsTheRightsOfAnyNewFile) {
    const mode_t before = umask(027);
    const Trimmed copy = saved(source_, 1, 2);
    umask(before);
    struct stat facts {};
    ASSERT_EQ(stat(copy.path.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0640U);
}

TEST_F(Saving, SelectionsThatMakeNoSenseAreRefused) {
    const std::pair<std::pair<double, double>, const char*> cases[] = {
        {{-1, 2}, "The part to copy begins before the beginning of “take.wav”."},
        {{6, 1}, "The part to copy begins after the end of “take.wav”."},
        {{60, 1}, "The part to copy begins after the end of “take.wav”."},
        {{5, 2}, "The part to copy goes beyond the end of “take.wav”."},
        {{1, 0}, "The part to copy is empty."},
        {{1, -2}, "The part to copy is empty."},
        {{notANumber, 1}, "The part to copy is not clear."},
        {{1, notANumber}, "The part to copy is not clear."},
        {{endless, 1}, "The part to copy is not clear."},
        {{1, endless}, "The part to copy is not clear."}};
    for (const auto& [part, sentence] : cases) {
        const auto outcome = save(source_, part.first, part.second);
        ASSERT_FALSE(outcome) << part.first << ' ' << part.second;
        EXPECT_EQ(outcome.error(), sentence);
    }
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"take.wav"});
}

TEST_F(Saving, AMissingOriginalIsReported) {
    const auto outcome = save(folder_.path() / "none.wav", 0, 1);
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "“none.wav” does not exist.");
}

TEST_F(Saving, ACancelledCopyLeavesNothing) {
    write(folder_.path() / "take-trimmed.wav", "earlier");
    std::atomic<bool> cancelled{false};
    const auto outcome = saveTrimmed({source_, 0, 6}, cancelled, [&](double) { cancelled = true; });
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "Saving “take.wav” was cancelled.");
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"take-trimmed.wav", "take.wav"}));
    EXPECT_EQ(contents(folder_.path() / "take-trimmed.wav"), "earlier");
}

TEST_F(Saving, ProgressGrowsAndIsNotReportedTooOften) {
    const fs::path large = silence("large.wav", 150000000);
    const std::atomic<bool> cancelled{false};
    int reports = 0;
    double last = 0;
    const auto begin = std::chrono::steady_clock::now();
    const auto outcome = saveTrimmed({large, 0, 1500}, cancelled, [&](double fraction) {
        EXPECT_GE(fraction, last);
        EXPECT_LE(fraction, 1);
        last = fraction;
        ++reports;
    });
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    ASSERT_TRUE(outcome) << outcome.error();
    EXPECT_GE(reports, 1);
    EXPECT_LE(reports, 50 * time.count() + 2);
}

TEST_F(Saving, MemoryDoesNotGrowWithTheFile) {
    const auto memoryFor = [&](const char* what, const fs::path& file) {
        const Finished result =
            run({"env", "ASAN_OPTIONS=quarantine_size_mb=1", MEDIA_OUTCOME, what, file.string(), "0.5", "500"});
        EXPECT_EQ(result.output.find("failure"), std::string::npos) << result.output;
        const std::size_t at = result.output.find("memory: ");
        return at == std::string::npos ? -1.0 : std::stod(result.output.substr(at + 8));
    };
    const fs::path small = silence("small.wav", 50000000);
    const fs::path large = silence("large.wav", 400000000);
    for (const char* what : {"save", "waveform"}) {
        const double base = memoryFor(what, small);
        ASSERT_GT(base, 0);
        EXPECT_LT(memoryFor(what, large), base * 1.2 + 10000) << what;
    }
}

TEST_F(Saving, AFolderThatTakesNoFilesIsReported) {
    const fs::path inner = folder_.path() / "inner";
    fs::create_directory(inner);
    fs::copy_file(source_, inner / "take.wav");
    fs::permissions(inner, fs::perms::owner_read | fs::perms::owner_exec);
    const std::string sentence = savedElsewhere(withoutPrivileges(), inner / "take.wav");
    fs::permissions(inner, fs::perms::owner_all);
    EXPECT_EQ(sentence, "failure: The folder “inner” does not allow new files to be saved in it.");
    EXPECT_EQ(std::distance(fs::directory_iterator(inner), {}), 1);
}

TEST_F(Saving, AnOriginalThatMayOnlyBeReadIsEnough) {
    fs::permissions(source_, fs::perms::owner_read);
    const std::string sentence = savedElsewhere(withoutPrivileges(), source_);
    EXPECT_EQ(sentence, "saved: " + (folder_.path() / "take-trimmed.wav").string());
}

TEST_F(Saving, AFileThatGetsTooLargeIsReportedAndRemoved) {
    const std::string original = contents(source_);
    for (const char* limit : {"100000", "44", "1"})
        EXPECT_EQ(savedElsewhere({}, source_, limit),
                  "failure: “take-trimmed.wav” would be larger than a file may be here.");
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"take.wav"});
    EXPECT_EQ(contents(source_), original);
}

TEST_F(Saving, AFullDiskIsReportedInEveryFormat) {
    for (const char* name : {"x.flac", "x.mp3", "x.ogg", "x.m4a", "x.mka"}) {
        ffmpeg(folder_.path(), "-f lavfi -i anoisesrc=d=6:seed=1 " + std::string(name));
        const std::string sentence = savedElsewhere({}, folder_.path() / name, "20000");
        EXPECT_NE(sentence.find("would be larger than a file may be here."), std::string::npos)
            << name << sentence;
    }
    for (const std::string& name : folder_.names()) EXPECT_EQ(name.find("trim"), std::string::npos) << name;
}

TEST_F(Saving, ADiskWithoutRoomIsReportedAndLeftClean) {
    // A disk of its own, in a mount namespace of its own, that holds the original and little more.
    const fs::path disk = folder_.path() / "disk";
    fs::create_directory(disk);
    const std::string script =
        "mount -t tmpfs -o size=700k none \"$1\" && cp \"$2\" \"$1/take.wav\" && \"$3\" save "
        "\"$1/take.wav\" 1 4; ls -A \"$1\"";
    const Finished result =
        run({"unshare", "--mount", "sh", "-c", script, "sh", disk.string(), source_.string(), MEDIA_OUTCOME});
    if (result.complaints.find("ermi") != std::string::npos ||
        result.complaints.find("ermitted") != std::string::npos) {
        // Without the right to mount, the limit of a file's size stands for the full disk.
        EXPECT_EQ(savedElsewhere({}, source_, "100000").substr(0, 8), "failure:");
        return;
    }
    EXPECT_EQ(result.output.substr(0, result.output.find('\n')),
              "failure: There is not enough free space to save “take-trimmed.wav”.");
    EXPECT_EQ(result.output.substr(result.output.rfind('\n', result.output.size() - 2) + 1), "take.wav\n");
}

TEST_F(Saving, ANameThatGetsTooLongIsReported) {
    const std::string name = std::string(248, 'n') + ".wav";
    fs::copy_file(source_, folder_.path() / name);
    const auto outcome = save(folder_.path() / name, 1, 2);
    ASSERT_FALSE(outcome);
    EXPECT_NE(outcome.error().find("is too long for a file name here."), std::string::npos) << outcome.error();
    EXPECT_EQ(folder_.names().size(), 2U);
}

TEST_F(Saving, ARelativePathWorks) {
    const Finished result = run(
        {"sh", "-c", "cd \"$1\" && \"$2\" save take.wav 1 4", "sh", folder_.path().string(), MEDIA_OUTCOME});
    EXPECT_EQ(result.output.substr(0, result.output.find('\n')), "saved: take-trimmed.wav");
    EXPECT_TRUE(fs::exists(folder_.path() / "take-trimmed.wav"));
}

} // namespace
