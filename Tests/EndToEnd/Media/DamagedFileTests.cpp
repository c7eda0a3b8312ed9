// SPDX-License-Identifier: MIT
#include "Media.h"

#include <algorithm>

namespace {

using namespace mediatest;
using namespace trimstudio;

class DamagedFile : public testing::Test {
protected:
    fs::path make(const std::string& words, const std::string& name) {
        std::string all = words;
        all += name;
        ffmpeg(folder_.path(), all);
        return folder_.path() / name;
    }
    fs::path cutOff(const fs::path& file, double part) {
        fs::path half = folder_.path() / "half";
        half += file.extension();
        copyPart(file, half, part);
        return half;
    }

    TemporaryFolder folder_;
};

TEST_F(DamagedFile, AFileThatIsCutOffTellsWhatCanReallyBeRead) {
    for (const auto* format : {"-c:a pcm_s16le |x.wav", "-c:a flac |x.flac", "-c:a libmp3lame |x.mp3",
                               "-c:a aac |x.aac", "-c:a libvorbis |x.ogg", "-c:a libopus |x.opus",
                               "-c:a aac -movflags +faststart |x.m4a", "-f matroska -c:a aac |x.mka"}) {
        const std::string text(format);
        const std::size_t bar = text.find('|');
        const std::string hum = "-f lavfi -i anoisesrc=d=6:a=0.3:seed=1:r=48000 ";
        const fs::path half = cutOff(make(hum + text.substr(0, bar), text.substr(bar + 1)), 0.6);
        const Outcome<MediaFile> opened = openMedia(half);
        ASSERT_TRUE(opened) << text << opened.error();
        const double decoded = static_cast<double>(decodedSound(half, 48000).size()) / 48000;
        EXPECT_GT(decoded, 2) << text;
        EXPECT_LT(opened.value().duration, 5) << text;
        EXPECT_NEAR(opened.value().duration, decoded, 0.16) << text;
        const Trimmed copy = saved(half, 1, 1);
        EXPECT_NEAR(copy.length, 1, opened.value().packetDuration + 0.001) << text;
        const Trimmed whole = saved(half, 0, opened.value().duration);
        EXPECT_NEAR(whole.length, opened.value().duration, 0.06) << text;
    }
}

TEST_F(DamagedFile, APictureFileThatIsCutOffTellsWhatCanReallyBeRead) {
    for (const auto* format : {"-c:a aac -movflags +faststart |x.mp4", "-c:a aac |x.mkv"}) {
        const std::string text(format);
        const std::size_t bar = text.find('|');
        const std::string all = pictures() + markedSound() + "-c:v libx264 -preset veryfast -g 25 ";
        const fs::path half = cutOff(make(all + text.substr(0, bar), text.substr(bar + 1)), 0.6);
        const Outcome<MediaFile> opened = openMedia(half);
        ASSERT_TRUE(opened) << text << opened.error();
        EXPECT_LT(opened.value().duration, 5) << text;
        EXPECT_GT(opened.value().duration, 2) << text;
        const Trimmed copy = saved(half, 0.5, 1);
        EXPECT_NEAR(probedDuration(copy.path), 1.5 - copy.start, 0.041) << text;
    }
}

TEST_F(DamagedFile, AnMp4FileWithoutItsTableIsReported) {
    const fs::path half = cutOff(make(markedSound() + "-c:a aac ", "x.m4a"), 0.6);
    const Outcome<MediaFile> opened = openMedia(half);
    ASSERT_FALSE(opened);
    EXPECT_EQ(opened.error(), "“half.m4a” is not a media file that can be read.");
}

TEST_F(DamagedFile, APartThatIsNoLongerThereIsRefusedAndLeavesNothing) {
    const fs::path source = make(markedSound() + "-c:a flac ", "x.flac");
    const MediaFile before = openMedia(source).value();
    fs::resize_file(source, fs::file_size(source) / 2);
    const auto outcome = save(source, before.duration - 2, 2);
    ASSERT_FALSE(outcome);
    EXPECT_NE(outcome.error().find("“x.flac”"), std::string::npos) << outcome.error();
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"x.flac"});
}

TEST_F(DamagedFile, ACopyIsRefusedIfTheFileShrinksMeanwhile) {
    const fs::path source = make("-f lavfi -i anoisesrc=d=240:r=48000 -c:a pcm_s16le ", "x.wav");
    const std::atomic<bool> cancelled{false};
    bool shrunk = false;
    const auto outcome = saveTrimmed({source, 0, 240}, cancelled, [&](double) {
        if (!shrunk) fs::resize_file(source, 4000000);
        shrunk = true;
    });
    ASSERT_TRUE(shrunk);
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "“x.wav” is damaged: the part to copy cannot be read to its end.");
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"x.wav"});
}

TEST_F(DamagedFile, AMatroskaFileWithoutIndexCanBeCut) {
    const fs::path source = make(pictures() + "-c:v libx264 -preset veryfast -sc_threshold 0 -g 50 ", "x.mkv");
    const std::string all = contents(source);
    const std::size_t index = all.rfind("\x1C\x53\xBB\x6B");
    ASSERT_NE(index, std::string::npos);
    ASSERT_GT(index, all.size() / 2);
    const fs::path bare = folder_.path() / "bare.mkv";
    write(bare, all.substr(0, index));
    const std::vector<std::string> shown = decodedPictures(source);
    const Trimmed copy = saved(bare, 4.4, 1);
    EXPECT_NEAR(copy.start, 4, 0.001);
    EXPECT_NEAR(probedDuration(copy.path), 1.4, 0.041);
    const std::vector<std::string> part = decodedPictures(copy.path);
    ASSERT_GE(part.size(), 35U);
    EXPECT_TRUE(std::equal(part.begin(), part.begin() + 35, shown.begin() + 100));
}

TEST_F(DamagedFile, RubbishInTheMiddleDoesNotKeepTheRestFromBeingCut) {
    for (const auto* format : {"-c:a flac |x.flac", "-c:a libmp3lame |x.mp3", "-c:a libvorbis |x.ogg"}) {
        const std::string text(format);
        const std::size_t bar = text.find('|');
        const fs::path source =
            make("-f lavfi -i anoisesrc=d=6:seed=1:r=48000 " + text.substr(0, bar), text.substr(bar + 1));
        std::string all = contents(source);
        for (std::size_t i = 0; i < 3000; ++i) all[all.size() / 2 + i] = static_cast<char>(i * 7919 >> 4);
        write(source, all);
        const Trimmed copy = saved(source, 0.5, 5);
        EXPECT_NEAR(copy.length, 5, 0.3) << text;
        // The rubbish costs the copy what it costs the original, of which one second is not copied. Where the
        // packets have no time stamps of their own, what is lost does not count and the copy reaches further.
        const auto inSource = static_cast<double>(decodedSound(source, 48000).size());
        const auto inCopy = static_cast<double>(decodedSound(copy.path, 48000).size());
        EXPECT_GT(inSource, 150000) << text;
        EXPECT_GT(inCopy, inSource - 48000 - 10000) << text;
        EXPECT_LT(inCopy, 240000 + 5000) << text;
    }
}

} // namespace
