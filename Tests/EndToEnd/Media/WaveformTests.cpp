// SPDX-License-Identifier: MIT
#include "Media.h"
#include "Waveform.h"

#include <algorithm>
#include <numeric>
#include <thread>

namespace {

using namespace mediatest;
using namespace trimstudio;

class DrawingTheWaveform : public testing::Test {
protected:
    MediaFile make(const std::string& words, const std::string& name) {
        ffmpeg(folder_.path(), words + " " + name);
        const Outcome<MediaFile> opened = openMedia(folder_.path() / name);
        EXPECT_TRUE(opened) << opened.error();
        return opened.value();
    }
    static std::vector<float> draw(const MediaFile& file, std::size_t buckets) {
        const std::atomic<bool> cancelled{false};
        const auto outcome = waveform(file, buckets, cancelled, {});
        EXPECT_TRUE(outcome) << outcome.error();
        return outcome ? outcome.value() : std::vector<float>();
    }

    TemporaryFolder folder_;
};

TEST_F(DrawingTheWaveform, PeaksAreWhereTheSoundIsLoud) {
    for (const char* format : {"-c:a pcm_s16le x.wav", "-c:a pcm_u8 y.wav", "-c:a pcm_s24le z.wav",
                               "-c:a pcm_f32le f.wav", "-c:a flac x.flac", "-c:a libvorbis x.ogg",
                               "-c:a libopus x.opus", "-c:a libmp3lame x.mp3", "-c:a aac x.m4a"}) {
        const std::string name = std::string(format).substr(std::string(format).rfind(' ') + 1);
        const MediaFile file =
            make(markedSound() + std::string(format).substr(0, std::string(format).rfind(' ')), name);
        const std::vector<float> peaks = draw(file, 60);
        ASSERT_EQ(peaks.size(), 60U) << format;
        // The tone lasts from 2.5 to 3 s; what lies at its edges may belong to either side.
        for (std::size_t i = 0; i < 58; ++i) {
            if (i >= 26 && i < 29) {
                EXPECT_NEAR(peaks[i], 0.8, 0.06) << format << " bucket " << i;
            }
            if (i < 24 || i > 31) {
                EXPECT_NEAR(peaks[i], 0.02, 0.02) << format << " bucket " << i;
            }
        }
    }
}

TEST_F(DrawingTheWaveform, EverySampleCountsForItsBucket) {
    // One loud sample at the very end of a bucket, and a negative one at the beginning of another.
    const MediaFile file =
        make("-f lavfi -i \"aevalsrc='if(eq(n,1999),0.5,if(eq(n,7000),-0.75,0))':d=1:s=10000\"", "x.wav");
    const std::vector<float> peaks = draw(file, 10);
    ASSERT_EQ(peaks.size(), 10U);
    for (std::size_t i = 0; i < 10; ++i) EXPECT_NEAR(peaks[i], i == 1 ? 0.5 : i == 7 ? 0.75 : 0, 0.001) << i;
}

TEST_F(DrawingTheWaveform, TheLoudestChannelCounts) {
    const MediaFile file = make("-f lavfi -i \"aevalsrc=0.1*sin(900*t)|0.6*sin(900*t):d=1\"", "x.wav");
    for (const float peak : draw(file, 8)) EXPECT_NEAR(peak, 0.6, 0.01);
}

TEST_F(DrawingTheWaveform, MoreBucketsThanSamplesLeaveNoSampleOut) {
    const MediaFile file = make("-f lavfi -i \"aevalsrc=0.5:d=0.01:s=8000\"", "x.wav");
    const std::vector<float> peaks = draw(file, 1000);
    EXPECT_EQ(std::count_if(peaks.begin(), peaks.end(), [](float peak) { return peak > 0.4F; }), 80);
}

TEST_F(DrawingTheWaveform, SoundOfAPictureFileIsDrawn) {
    const MediaFile file =
        make(pictures() + markedSound() + "-c:v libx264 -preset ultrafast -c:a aac", "x.mp4");
    const std::vector<float> peaks = draw(file, 12);
    ASSERT_EQ(peaks.size(), 12U);
    EXPECT_GT(peaks[5], 0.7F);
    EXPECT_LT(peaks[2], 0.05F);
    EXPECT_LT(peaks[9], 0.05F);
}

TEST_F(DrawingTheWaveform, AFileWithoutSoundGivesNothing) {
    EXPECT_TRUE(draw(make(pictures() + "-c:v libx264 -preset ultrafast", "x.mp4"), 12).empty());
}

TEST_F(DrawingTheWaveform, TimeStampsThatDoNotBeginAtZeroAreTakenOff) {
    make(markedSound() + "-c:a aac", "plain.mkv");
    const MediaFile file = make("-itsoffset 7 -i plain.mkv -c copy -avoid_negative_ts disabled", "late.mkv");
    const std::vector<float> peaks = draw(file, 12);
    EXPECT_GT(peaks[5], 0.7F);
    EXPECT_LT(peaks[3], 0.05F);
}

TEST_F(DrawingTheWaveform, ACancelledDrawingStopsWithASentence) {
    const MediaFile file = make(markedSound(), "x.wav");
    const std::atomic<bool> cancelled{true};
    const auto outcome = waveform(file, 10, cancelled, {});
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "Drawing “x.wav” was cancelled.");
}

TEST_F(DrawingTheWaveform, PartialResultsGrowAndCanBeCancelledFromAnotherThread) {
    // So long that it cannot be read in a tenth of a second.
    const MediaFile file = make("-f lavfi -i sine=d=900:r=48000 -c:a flac -compression_level 0", "x.flac");
    std::atomic<bool> cancelled{false};
    int reports = 0;
    double last = 0;
    float sumBefore = 0;
    Outcome<std::vector<float>> outcome = Failure{};
    std::thread reader([&] {
        outcome = waveform(file, 100, cancelled, [&](const std::vector<float>& peaks, double fraction) {
            EXPECT_EQ(peaks.size(), 100U);
            EXPECT_GE(fraction, last);
            EXPECT_LE(fraction, 1);
            const float sum = std::accumulate(peaks.begin(), peaks.end(), 0.0F);
            EXPECT_GE(sum, sumBefore);
            last = fraction;
            sumBefore = sum;
            if (++reports == 2) cancelled = true;
        });
    });
    reader.join();
    EXPECT_GE(reports, 1);
    if (!outcome) {
        EXPECT_EQ(reports, 2);
    }
}

TEST_F(DrawingTheWaveform, AFileThatIsGoneIsReported) {
    MediaFile file = make(markedSound(), "x.wav");
    fs::remove(file.path);
    const std::atomic<bool> cancelled{false};
    const auto outcome = waveform(file, 10, cancelled, {});
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "“x.wav” does not exist.");
}

} // namespace
