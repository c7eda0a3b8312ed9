// SPDX-License-Identifier: MIT
#include "Media.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace {

using namespace mediatest;
using namespace trimstudio;

class Content : public testing::Test {
protected:
    // Copies a recording from the system into the folder.
    fs::path recording(const fs::path& path) {
        fs::copy_file(path, folder_.path() / path.filename());
        return folder_.path() / path.filename();
    }
    fs::path make(const std::string& words, const std::string& name) {
        std::string all = words;
        all += name;
        ffmpeg(folder_.path(), all);
        return folder_.path() / name;
    }

    TemporaryFolder folder_;
};

const fs::path alsa = "/usr/share/sounds/alsa";
const fs::path freedesktop = "/usr/share/sounds/freedesktop/stereo";

std::string md5Of(const fs::path& file, const std::string& filter) {
    return run({"ffmpeg", "-nostdin", "-v", "error", "-i", file.string(), "-map", "0:a", "-af", filter, "-f",
                "md5", "-"})
        .output;
}

using CuttingWav = Content;
using CuttingFlac = Content;
using CuttingOgg = Content;
using Keeping = Content;
using Cutting = Content;

TEST_F(CuttingWav, CopiesExactlyTheSamplesAskedFor) {
    const fs::path source = recording(alsa / "Front_Center.wav");
    const std::vector<int16_t> all = decodedSound(source, 48000);
    const Trimmed copy = saved(source, 0.5, 0.25);
    EXPECT_DOUBLE_EQ(copy.start, 0.5);
    EXPECT_DOUBLE_EQ(copy.length, 0.25);
    const std::vector<int16_t> part = decodedSound(copy.path, 48000);
    ASSERT_EQ(part.size(), 12000U);
    EXPECT_TRUE(std::equal(part.begin(), part.end(), all.begin() + 24000));
}

TEST_F(CuttingWav, CanCopyASingleSample) {
    const fs::path source = recording(alsa / "Noise.wav");
    const std::vector<int16_t> all = decodedSound(source, 48000);
    const std::vector<int16_t> part = decodedSound(saved(source, 1234.0 / 48000, 1.0 / 48000).path, 48000);
    ASSERT_EQ(part.size(), 1U);
    EXPECT_EQ(part[0], all[1234]);
}

TEST_F(CuttingWav, RefusesLessThanASample) {
    const fs::path source = recording(alsa / "Noise.wav");
    const auto outcome = save(source, 0.5 + 0.2 / 48000, 0.1 / 48000);
    ASSERT_FALSE(outcome);
    EXPECT_EQ(outcome.error(), "There is nothing to copy in that part of “Noise.wav”.");
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"Noise.wav"});
}

TEST_F(CuttingWav, FindsItsPlaceInCompressedSoundToo) {
    const fs::path source = make(markedSound() + "-c:a adpcm_ima_wav ", "a.wav");
    const Trimmed copy = saved(source, 1.234, 3);
    const double packet = openMedia(source).value().packetDuration;
    EXPECT_NEAR(copy.start, 1.234, packet);
    EXPECT_NEAR(probedDuration(copy.path), 3, packet);
    EXPECT_NEAR(loudAt(decodedSound(copy.path, 48000), 48000), marked - copy.start, 0.01);
}

TEST_F(CuttingFlac, TellsTheNewLengthInItsHeader) {
    const fs::path source = make(markedSound() + "-c:a flac ", "x.flac");
    const Trimmed copy = saved(source, 1.234, 2.345);
    const std::string bytes = contents(copy.path);
    ASSERT_EQ(bytes.substr(0, 4), "fLaC");
    uint64_t total = static_cast<unsigned char>(bytes[8 + 13]) & 0x0FU;
    for (std::size_t i = 22; i < 26; ++i) total = total << 8 | static_cast<unsigned char>(bytes[i]);
    EXPECT_EQ(total, decodedSound(copy.path, 48000).size());
    EXPECT_NEAR(static_cast<double>(total) / 48000, copy.length, 1e-6);
    EXPECT_EQ(bytes.substr(26, 16), std::string(16, '\0')) << "a checksum of the whole does not fit a part";
}

TEST_F(CuttingFlac, KeepsTheChecksumInAWholeCopy) {
    const fs::path source = make(markedSound() + "-c:a flac ", "x.flac");
    const Trimmed copy = saved(source, 0, openMedia(source).value().duration);
    const std::string sum = contents(source).substr(26, 16);
    EXPECT_NE(sum, std::string(16, '\0'));
    EXPECT_EQ(contents(copy.path).substr(26, 16), sum);
}

TEST_F(CuttingFlac, CopiesARangeOfTheSamples) {
    const fs::path source = make(markedSound() + "-c:a flac ", "x.flac");
    const std::vector<int16_t> all = decodedSound(source, 48000);
    const Trimmed copy = saved(source, 1.234, 2.345);
    const std::vector<int16_t> part = decodedSound(copy.path, 48000);
    const auto first = std::llround(copy.start * 48000);
    ASSERT_LE(static_cast<std::size_t>(first) + part.size(), all.size());
    ASSERT_GT(part.size(), 100000U);
    EXPECT_TRUE(std::equal(part.begin(), part.end(), all.begin() + first));
}

TEST_F(CuttingFlac, NumbersTheFramesAnew) {
    // So many frames that their numbers take two and three bytes.
    const fs::path source = make("-f lavfi -i sine=d=10:r=48000 -c:a flac -frame_size 192 ", "x.flac");
    for (const double start : {0.4, 3.0, 8.5}) {
        const Trimmed copy = saved(source, start, 1.5);
        EXPECT_EQ(decodingComplaints(copy.path), "");
        EXPECT_EQ(probe(copy.path, "format=start_time"), "0.000000");
        EXPECT_EQ(decodedSound(copy.path, 48000).size(), 72000U);
    }
    const Trimmed longer = saved(source, 0.004, 9.992);
    EXPECT_EQ(decodingComplaints(longer.path), "");
    EXPECT_NEAR(probedDuration(longer.path), 9.992, 0.004);
}

TEST_F(CuttingOgg, WorksForRealRecordings) {
    for (const char* name : {"audio-test-signal.oga", "alarm-clock-elapsed.oga", "complete.oga"}) {
        const fs::path source = recording(freedesktop / name);
        const double duration = openMedia(source).value().duration;
        EXPECT_NEAR(duration, probedDuration(source), 0.001) << name;
        const Trimmed copy = saved(source, duration / 4, duration / 2);
        EXPECT_NEAR(copy.start, duration / 4, 0.024) << name;
        EXPECT_NEAR(probedDuration(copy.path), duration / 2, 0.024) << name;
        EXPECT_EQ(decodingComplaints(copy.path), "") << name;
    }
}

TEST_F(CuttingOgg, DecodesToTheSameSamplesAsTheOriginalFromItsFirstPacketOn) {
    const fs::path source = recording(freedesktop / "alarm-clock-elapsed.oga");
    const std::vector<int16_t> all = decodedSound(source, 48000);
    const Trimmed copy = saved(source, 0.3, 0.5);
    const std::vector<int16_t> part = decodedSound(copy.path, 48000);
    const auto first = std::llround(copy.start * 48000);
    ASSERT_GT(part.size(), 20000U);
    EXPECT_TRUE(std::equal(part.begin(), part.end(), all.begin() + first));
}

TEST_F(Keeping, TitleAndArtistStay) {
    const char* const tags = "-metadata title='A title' -metadata artist='Some Öne' ";
    for (const auto* format :
         {"-c:a flac |x.flac", "-c:a libmp3lame |x.mp3", "-c:a aac |x.m4a", "-c:a libvorbis |x.ogg",
          "-c:a libopus |x.opus", "-c:a pcm_s16le |x.wav", "-f matroska -c:a aac |x.mka"}) {
        const std::string text(format);
        const std::size_t bar = text.find('|');
        const fs::path source = make(markedSound() + tags + text.substr(0, bar), text.substr(bar + 1));
        const Trimmed copy = saved(source, 1, 2);
        std::string entries = "format_tags:stream_tags";
        const std::string found = probe(copy.path, entries);
        EXPECT_NE(found.find("A title"), std::string::npos) << text << found;
        EXPECT_NE(found.find("Some Öne"), std::string::npos) << text << found;
    }
}

TEST_F(Keeping, CoverPicturesStayAsTheyWere) {
    make("-f lavfi -i testsrc=s=64x64:d=1 -frames:v 1 ", "cover.png");
    for (const auto* format : {"-c:a flac |x.flac", "-c:a libmp3lame |x.mp3", "-c:a aac |x.m4a"}) {
        const std::string text(format);
        const std::size_t bar = text.find('|');
        const std::string all =
            markedSound() + "-i cover.png -map 0 -map 1 -c:v copy -disposition:v attached_pic ";
        const fs::path source = make(all + text.substr(0, bar), text.substr(bar + 1));
        EXPECT_FALSE(openMedia(source).value().hasVideo) << text;
        const Trimmed copy = saved(source, 1, 2);
        EXPECT_EQ(probe(copy.path, "stream_disposition=attached_pic", "v"), "1") << text;
        EXPECT_EQ(decodedChecksum(copy.path, "v"), decodedChecksum(folder_.path() / "cover.png", "v")) << text;
        EXPECT_NEAR(probedDuration(copy.path), 2, 0.1) << text;
    }
}

TEST_F(Keeping, CoverPicturesInMatroskaStay) {
    make("-f lavfi -i testsrc=s=64x64:d=1 -frames:v 1 ", "cover.png");
    const fs::path source = make(markedSound() + "-attach cover.png -metadata:s:t mimetype=image/png -c:a aac "
                                                 "-f matroska ",
                                 "x.mka");
    const Trimmed copy = saved(source, 1, 2);
    EXPECT_EQ(decodedChecksum(copy.path, "v"), decodedChecksum(folder_.path() / "cover.png", "v"));
    EXPECT_NE(probe(copy.path, "stream_tags=filename").find("cover.png"), std::string::npos);
}

TEST_F(Keeping, CoverPicturesInOggFilesStay) {
    make("-f lavfi -i testsrc=s=64x64:d=1 -frames:v 1 ", "cover.png");
    // The form of such a picture: type, kind, name, width, height, depth, colours, size, data.
    const std::string png = contents(folder_.path() / "cover.png");
    const auto number = [](std::size_t value) {
        std::string bytes;
        for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xFF);
        return bytes;
    };
    std::string block = number(3);
    block += number(9) + "image/png" + number(0) + number(64) + number(64) + number(24) + number(0);
    block += number(png.size()) + png;
    write(folder_.path() / "block", block);
    const std::string coded = run({"base64", "-w0", (folder_.path() / "block").string()}).output;
    const fs::path source =
        make(markedSound() + "-c:a libopus -metadata METADATA_BLOCK_PICTURE=" + coded + " ", "x.opus");
    ASSERT_EQ(probe(source, "stream_disposition=attached_pic", "v"), "1");
    const Trimmed copy = saved(source, 1, 2);
    EXPECT_EQ(decodedChecksum(copy.path, "v"), decodedChecksum(folder_.path() / "cover.png", "v"));
    EXPECT_NEAR(probedDuration(copy.path), 2, 0.021);
}

TEST_F(Keeping, TurnedPicturesStayTurned) {
    for (const char* name : {"x.mp4", "x.mov"}) {
        make(pictures() + "-c:v libx264 -preset ultrafast ", "flat.mp4");
        const fs::path source = make("-i flat.mp4 -c copy -metadata:s:v rotate=90 ", name);
        const std::string turned = probe(source, "stream_side_data=rotation", "v");
        ASSERT_NE(turned, "");
        EXPECT_EQ(probe(saved(source, 1, 2).path, "stream_side_data=rotation", "v"), turned) << name;
    }
}

TEST_F(Keeping, SubtitlesStayAndMoveWithTheCut) {
    write(folder_.path() / "s.srt",
          "1\n00:00:00,500 --> 00:00:01,000\nearly\n\n2\n00:00:02,500 --> 00:00:03,000\nmiddle\n\n"
          "3\n00:00:05,000 --> 00:00:05,500\nlate\n");
    for (const auto* format : {"-c:s mov_text |x.mp4", "-c:s srt |x.mkv"}) {
        const std::string text(format);
        const std::size_t bar = text.find('|');
        const fs::path source = make(
            pictures() + "-i s.srt -map 0 -map 1 -c:v libx264 -preset ultrafast -g 50 " + text.substr(0, bar),
            text.substr(bar + 1));
        const Trimmed copy = saved(source, 2, 2);
        EXPECT_NEAR(copy.start, 2, 0.001) << text;
        const std::string read = run({"ffmpeg", "-nostdin", "-v", "error", "-i", copy.path.string(), "-map",
                                      "0:s", "-f", "srt", "-"})
                                     .output;
        EXPECT_NE(read.find("00:00:00,500 --> 00:00:01,000\nmiddle"), std::string::npos) << text << read;
        EXPECT_EQ(read.find("early"), std::string::npos) << text;
        EXPECT_EQ(read.find("late"), std::string::npos) << text;
    }
}

TEST_F(Keeping, ChaptersMoveWithTheCut) {
    write(folder_.path() / "m.txt", ";FFMETADATA1\n[CHAPTER]\nTIMEBASE=1/1000\nSTART=0\nEND=3000\ntitle=One\n"
                                    "[CHAPTER]\nTIMEBASE=1/1000\nSTART=3000\nEND=6000\ntitle=Two\n");
    for (const auto* format : {"-c:a libmp3lame |x.mp3", "-f matroska -c:a aac |x.mka"}) {
        const std::string text(format);
        const std::size_t bar = text.find('|');
        const fs::path source = make(markedSound() + "-i m.txt -map 0 -map_metadata 1 " + text.substr(0, bar),
                                     text.substr(bar + 1));
        const Trimmed copy = saved(source, 2, 2);
        const Finished chapters =
            run({"ffprobe", "-v", "error", "-show_chapters", "-of", "csv=p=0", copy.path.string()});
        std::istringstream lines(chapters.output);
        std::string one, two;
        std::getline(lines, one);
        std::getline(lines, two);
        EXPECT_NE(one.find("One"), std::string::npos) << text << chapters.output;
        EXPECT_NE(two.find("Two"), std::string::npos) << text << chapters.output;
        // id,time_base,start,start_time,end,end_time,title
        std::istringstream fields(two);
        std::string field;
        for (int i = 0; i < 4; ++i) std::getline(fields, field, ',');
        EXPECT_NEAR(std::strtod(field.c_str(), nullptr), 1.0, 0.03) << text << chapters.output;
    }
}

TEST_F(Keeping, AllStreamsOfSoundStay) {
    const std::string two = markedSound() + "-f lavfi -i sine=300:d=6 -map 0 -map 1 -c:a aac ";
    for (const auto* format : {"|x.mp4", "-f matroska |x.mka"}) {
        const std::string text(format);
        const std::size_t bar = text.find('|');
        const fs::path source = make(two + text.substr(0, bar), text.substr(bar + 1));
        const Trimmed copy = saved(source, 1, 2);
        EXPECT_EQ(probe(copy.path, "stream=codec_type"), "audio\naudio") << text;
        EXPECT_NEAR(probedDuration(copy.path), 2, 0.024) << text;
    }
}

TEST_F(Cutting, WorksWhereTheTimeStampsDoNotBeginAtZero) {
    make(pictures() + markedSound() + "-c:v libx264 -preset ultrafast -sc_threshold 0 -g 50 -c:a aac ",
         "plain.mkv");
    const fs::path source = make("-itsoffset 7 -i plain.mkv -c copy -avoid_negative_ts disabled ", "late.mkv");
    ASSERT_NEAR(std::stod(probe(source, "format=start_time")), 7, 0.1);
    const MediaFile file = openMedia(source).value();
    EXPECT_NEAR(file.duration, 6, 0.05);
    const Trimmed copy = saved(source, 2.2, 1);
    EXPECT_NEAR(copy.start, 2.0, 0.03);
    EXPECT_NEAR(std::stod(probe(copy.path, "format=start_time")), 0, 0.03);
    EXPECT_NEAR(probedDuration(copy.path), 3.2 - copy.start, 0.041);
    EXPECT_NEAR(loudAt(decodedSound(copy.path, 48000), 48000), marked - copy.start, 0.05);
}

TEST_F(Cutting, WorksWhereSoundIsShorterThanThePictures) {
    for (const char* name : {"x.mp4", "x.mkv"}) {
        const fs::path source =
            make(pictures() + "-f lavfi -i sine=d=2 -c:v libx264 -preset ultrafast -g 25 -c:a aac ", name);
        EXPECT_NEAR(openMedia(source).value().duration, 6, 0.041) << name;
        const Trimmed both = saved(source, 1, 3);
        EXPECT_NEAR(probedDuration(both.path), 4 - both.start, 0.041) << name;
        const Trimmed silent = saved(source, 3, 2);
        EXPECT_NEAR(probedDuration(silent.path), 5 - silent.start, 0.041) << name;
        EXPECT_GE(decodedPictures(silent.path).size(), 50U) << name;
    }
}

TEST_F(Cutting, DropsStreamsThatTheFormatDoesNotTake) {
    // The time code track of a QuickTime file is data.
    const fs::path source = make(pictures() + "-c:v libx264 -preset ultrafast -timecode 01:00:00:00 ", "x.mov");
    ASSERT_NE(probe(source, "stream=codec_type").find("data"), std::string::npos);
    const Trimmed copy = saved(source, 1, 2);
    EXPECT_NEAR(probedDuration(copy.path), 2, 0.041);
    EXPECT_EQ(decodedPictures(copy.path).size(), 50U);
}

TEST_F(Cutting, HidesInAnMp4FileWhatLiesBetweenTheKeyFrameAndTheStart) {
    const fs::path source =
        make(pictures() + "-c:v libx264 -preset veryfast -sc_threshold 0 -g 150 -bf 3 ", "x.mp4");
    const std::vector<std::string> all = decodedPictures(source);
    for (const int first : {1, 37, 100}) {
        const std::vector<std::string> part = decodedPictures(saved(source, first / 25.0, 1).path);
        ASSERT_EQ(part.size(), 25U) << first;
        EXPECT_TRUE(std::equal(part.begin(), part.end(), all.begin() + first)) << first;
    }
}

TEST_F(Cutting, ASecondCutOfAnMp4FileFindsItsPicturesInWhatTheFirstHid) {
    const fs::path source =
        make(pictures() + "-c:v libx264 -preset veryfast -sc_threshold 0 -g 150 -bf 3 ", "x.mp4");
    const std::vector<std::string> all = decodedPictures(source);
    const fs::path first = saved(source, 2, 3).path;
    const std::vector<std::string> part = decodedPictures(saved(first, 0.4, 1).path);
    ASSERT_EQ(part.size(), 25U);
    EXPECT_TRUE(std::equal(part.begin(), part.end(), all.begin() + 60));
}

TEST_F(Cutting, AMatroskaFileEndsInTimeWhereverTheEndLiesAmongPicturesOutOfOrder) {
    const fs::path source =
        make(pictures() + "-c:v libx264 -preset veryfast -sc_threshold 0 -g 50 -bf 3 ", "x.mkv");
    const std::vector<std::string> all = decodedPictures(source);
    for (int last = 60; last < 70; ++last) {
        const Trimmed copy = saved(source, 2, (last - 50) / 25.0);
        EXPECT_NEAR(probedDuration(copy.path), (last - 50) / 25.0, 0.0021) << last;
        const std::vector<std::string> part = decodedPictures(copy.path);
        const auto count = static_cast<std::size_t>(last - 50);
        ASSERT_GE(part.size(), count) << last;
        EXPECT_LE(part.size(), count + 3) << last;
        EXPECT_TRUE(std::equal(all.begin() + 50, all.begin() + last, part.begin())) << last;
    }
}

TEST_F(Cutting, AWholeCopyOfAWebMFileKeepsEveryTimeStamp) {
    const fs::path source =
        make(pictures() + markedSound() + "-c:v libvpx -deadline realtime -cpu-used 8 -g 50 -c:a libopus ",
             "x.webm");
    const Trimmed copy = saved(source, 0, openMedia(source).value().duration);
    for (const char* stream : {"a:0", "v:0"}) {
        const std::string stamps = probe(source, "packet=pts", stream);
        EXPECT_GT(stamps.size(), 300U);
        EXPECT_EQ(probe(copy.path, "packet=pts", stream), stamps) << stream;
    }
}

TEST_F(Cutting, Mp3TellsItsNewLengthInItsHeader) {
    const fs::path source = make(markedSound() + "-c:a libmp3lame -q:a 3 ", "x.mp3");
    const std::string bytes = contents(saved(source, 1, 3).path);
    const std::size_t xing = std::min(bytes.find("Xing"), bytes.find("Info"));
    ASSERT_NE(xing, std::string::npos);
    uint32_t frames = 0;
    for (std::size_t i = 8; i < 12; ++i) frames = frames << 8 | static_cast<unsigned char>(bytes[xing + i]);
    EXPECT_EQ(frames, 125U); // 3 s of 24 ms
}

TEST_F(Cutting, AnMp3FileWithoutLengthInItsHeaderIsCopiedWhole) {
    const fs::path source = make(markedSound() + "-c:a libmp3lame -write_xing 0 -id3v2_version 0 ", "x.mp3");
    const MediaFile file = openMedia(source).value();
    const Trimmed copy = saved(source, 0, file.duration);
    EXPECT_EQ(md5Of(copy.path, "anull"), md5Of(source, "anull"));
    EXPECT_NEAR(probedDuration(saved(source, 2, 3).path), 3, 0.0245);
}

} // namespace
