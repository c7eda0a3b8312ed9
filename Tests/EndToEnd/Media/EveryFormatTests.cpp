// SPDX-License-Identifier: MIT
#include "Media.h"

#include <algorithm>
#include <iterator>

namespace {

using namespace mediatest;
using namespace trimstudio;

// A kind of file that can be trimmed, and how exactly.
struct Format {
    const char* name;
    const char* file;
    const char* encoding;
    bool sound;
    bool video;
    double packet;     // Seconds: the longest packet of sound or picture.
    bool keyFrames;    // Can only begin at key frames, which are 2 s apart.
    const char* shown; // How the format is called.
};

std::ostream& operator<<(std::ostream& out, const Format& format) { return out << format.name; }

const Format formats[] = {
    {"Wav", "x.wav", "-c:a pcm_s16le", true, false, 1.0 / 48000, false, "WAV audio"},
    {"Wav24Bit", "x.wav", "-c:a pcm_s24le", true, false, 1.0 / 48000, false, "WAV audio"},
    {"Flac", "x.flac", "-c:a flac", true, false, 4608 / 48000.0, false, "FLAC audio"},
    {"Vorbis", "x.ogg", "-c:a libvorbis", true, false, 1024 / 48000.0, false, "Ogg Vorbis audio"},
    {"VorbisOga", "x.oga", "-c:a libvorbis", true, false, 1024 / 48000.0, false, "Ogg Vorbis audio"},
    {"Opus", "x.opus", "-c:a libopus", true, false, 0.02, false, "Opus audio"},
    {"OpusOgg", "x.ogg", "-c:a libopus", true, false, 0.02, false, "Opus audio"},
    {"FlacOgg", "x.oga", "-c:a flac", true, false, 4608 / 48000.0, false, "Ogg FLAC audio"},
    {"Mp3", "x.mp3", "-c:a libmp3lame", true, false, 1152 / 48000.0, false, "MP3 audio"},
    {"Mp3Vbr", "x.mp3", "-c:a libmp3lame -q:a 4", true, false, 1152 / 48000.0, false, "MP3 audio"},
    {"AacM4a", "x.m4a", "-c:a aac", true, false, 1024 / 48000.0, false, "M4A audio"},
    {"AlacM4a", "x.m4a", "-c:a alac", true, false, 4096 / 48000.0, false, "M4A audio"},
    {"Aac", "x.aac", "-c:a aac", true, false, 1024 / 48000.0, false, "AAC audio"},
    {"MkvSound", "x.mka", "-f matroska -c:a aac", true, false, 0.022, false, "Matroska audio"},
    {"MkvOpusSound", "x.mka", "-f matroska -c:a libopus", true, false, 0.021, false, "Matroska audio"},
    {"MovSound", "x.mov", "-c:a pcm_s16le", true, false, 1.0 / 48000, false, "QuickTime audio"},
    {"Mp4", "x.mp4", "-c:v libx264 -preset veryfast -sc_threshold 0 -bf 3 -g 50 -c:a aac", true, true, 0.04,
     false, "MP4 video"},
    {"Mp4WithoutSound", "x.mp4", "-c:v libx264 -preset veryfast -sc_threshold 0 -bf 3 -g 50", false, true, 0.04,
     false, "MP4 video"},
    {"Mp4Part2", "x.mp4", "-c:v mpeg4 -bf 2 -g 50 -c:a libmp3lame", true, true, 0.04, false, "MP4 video"},
    {"Mov", "x.mov", "-c:v libx264 -preset veryfast -sc_threshold 0 -bf 3 -g 50 -c:a aac", true, true, 0.04,
     false, "QuickTime video"},
    {"Mkv", "x.mkv", "-c:v libx264 -preset veryfast -sc_threshold 0 -bf 3 -g 50 -c:a aac", true, true, 0.04,
     true, "Matroska video"},
    {"MkvWithoutSound", "x.mkv", "-c:v libx264 -preset veryfast -sc_threshold 0 -bf 3 -g 50", false, true, 0.04,
     true, "Matroska video"},
    {"MkvPart2", "x.mkv", "-c:v mpeg4 -g 50 -c:a libmp3lame", true, true, 0.04, true, "Matroska video"},
    {"WebM", "x.webm", "-c:v libvpx -deadline realtime -cpu-used 8 -g 50 -c:a libopus", true, true, 0.04, true,
     "WebM video"},
    {"WebMVorbis", "x.webm", "-c:v libvpx -deadline realtime -cpu-used 8 -g 50 -c:a libvorbis", true, true,
     0.04, true, "WebM video"},
    {"Ogv", "x.ogv", "-c:v libtheora -g 50 -c:a libvorbis", true, true, 0.04, true, "Ogg video"},
};

class EveryFormat : public testing::TestWithParam<Format> {
protected:
    void SetUp() override {
        source_ = folder_.path() / GetParam().file;
        fs::copy_file(made(GetParam()), source_);
        const Outcome<MediaFile> opened = openMedia(source_);
        ASSERT_TRUE(opened) << opened.error();
        file_ = opened.value();
    }

    // By ffprobe; but that only guesses the length of a bare AAC stream, so there it is what ffmpeg decodes.
    double lengthReadByOthers(const fs::path& file) const {
        if (file_.format != "AAC audio") return probedDuration(file);
        return static_cast<double>(decodedSound(file, 48000).size()) / 48000;
    }
    double askedLength(double start, double length, const Trimmed& copy) const {
        return GetParam().keyFrames ? start + length - copy.start : length;
    }
    // One packet, and a millisecond for formats that round to that.
    double tolerance() const { return GetParam().packet + 0.0011; }

    // The media of each format are made once per process.
    static fs::path made(const Format& format) {
        static const TemporaryFolder all;
        const fs::path folder = all.path() / format.name;
        if (fs::create_directory(folder)) {
            std::string words;
            if (format.video) words += pictures();
            if (format.sound) words += markedSound();
            words += format.encoding;
            words += " ";
            words += format.file;
            ffmpeg(folder, words);
        }
        return folder / format.file;
    }

    TemporaryFolder folder_;
    fs::path source_;
    MediaFile file_;
};

TEST_P(EveryFormat, IsOpenedWithItsFacts) {
    const Format& format = GetParam();
    EXPECT_EQ(file_.name, format.file);
    EXPECT_EQ(file_.format, format.shown);
    EXPECT_EQ(file_.hasAudio, format.sound);
    EXPECT_EQ(file_.hasVideo, format.video);
    EXPECT_EQ(file_.startsAtKeyFrames, format.keyFrames);
    EXPECT_NEAR(file_.packetDuration, format.packet, 0.0011);
    EXPECT_NEAR(file_.duration, 6, 3 * format.packet + 0.01);
    EXPECT_NEAR(file_.duration, lengthReadByOthers(source_), 0.001);
}

TEST_P(EveryFormat, APartHasTheLengthAndThePlaceAsked) {
    const std::string original = contents(source_);
    const Trimmed copy = saved(source_, 1.234, 2.345);
    const double asked = askedLength(1.234, 2.345, copy);
    EXPECT_NEAR(copy.start, GetParam().keyFrames ? 0 : 1.234, GetParam().keyFrames ? 0.025 : tolerance());
    EXPECT_NEAR(copy.length, asked, tolerance());
    EXPECT_NEAR(lengthReadByOthers(copy.path), asked, tolerance());
    const std::string start = probe(copy.path, "format=start_time");
    if (start != "N/A") {
        EXPECT_NEAR(std::stod(start), 0, tolerance());
    }
    // The first packets of MP3 refer to data before them; decoders say so and go on.
    if (std::string(GetParam().encoding).find("mp3") == std::string::npos) {
        EXPECT_EQ(decodingComplaints(copy.path), "");
    }
    EXPECT_EQ(contents(source_), original);
    EXPECT_EQ(folder_.names().size(), 2U);
}

TEST_P(EveryFormat, AWholeCopyDecodesLikeTheOriginal) {
    const Trimmed copy = saved(source_, 0, file_.duration);
    EXPECT_NEAR(copy.start, 0, 1e-6);
    EXPECT_NEAR(copy.length, file_.duration, tolerance());
    EXPECT_NEAR(lengthReadByOthers(copy.path), lengthReadByOthers(source_), tolerance());
    for (const char* kind : {"a", "v"}) {
        const bool there = *kind == 'a' ? GetParam().sound : GetParam().video;
        if (!there) continue;
        const std::string sum = decodedChecksum(source_, kind);
        EXPECT_EQ(sum.substr(0, 4), "MD5=");
        EXPECT_EQ(decodedChecksum(copy.path, kind), sum) << kind;
    }
}

TEST_P(EveryFormat, TheLastPartReachesTheEndAndAMomentGivesAFewPackets) {
    const double start = 4.4;
    const Trimmed copy = saved(source_, start, file_.duration - start);
    EXPECT_NEAR(copy.start + copy.length, file_.duration, 3 * tolerance());
    EXPECT_NEAR(lengthReadByOthers(copy.path), copy.length, tolerance());

    for (const double moment : {4.001, file_.duration - 0.0031}) {
        const Trimmed small = saved(source_, moment, 0.003);
        EXPECT_LE(small.length, askedLength(moment, 0.003, small) + 4 * tolerance());
        EXPECT_GT(small.length, 0);
        EXPECT_GT(lengthReadByOthers(small.path), 0);
    }
}

TEST_P(EveryFormat, ACopyCanBeTrimmedAgain) {
    const Trimmed first = saved(source_, 1, 4);
    const Outcome<MediaFile> opened = openMedia(first.path);
    ASSERT_TRUE(opened) << opened.error();
    EXPECT_NEAR(opened.value().duration, first.length, tolerance());
    EXPECT_EQ(opened.value().format, file_.format);
    const Trimmed second = saved(first.path, 1, 1.5);
    EXPECT_NEAR(second.length, askedLength(1, 1.5, second), tolerance());
    EXPECT_NEAR(lengthReadByOthers(second.path), second.length, tolerance());
}

class EveryFormatWithSound : public EveryFormat {};

TEST_P(EveryFormatWithSound, AMarkedMomentIsFoundAtItsPlaceInTheCopy) {
    const double before = loudAt(decodedSound(source_, 48000), 48000);
    ASSERT_NEAR(before, marked, 0.05);
    const Trimmed copy = saved(source_, 1.234, 2.345);
    const std::vector<int16_t> sound = decodedSound(copy.path, 48000);
    EXPECT_NEAR(loudAt(sound, 48000), before - copy.start, tolerance());
    EXPECT_NEAR(static_cast<double>(sound.size()) / 48000, askedLength(1.234, 2.345, copy), tolerance());
}

class EveryFormatWithPictures : public EveryFormat {};

TEST_P(EveryFormatWithPictures, ExactlyThePicturesOfThePartAreShown) {
    const std::vector<std::string> all = decodedPictures(source_);
    ASSERT_EQ(all.size(), 150U);
    const Trimmed copy = saved(source_, 2.4, 1.4);
    const std::vector<std::string> shown = decodedPictures(copy.path);
    const std::size_t first = GetParam().keyFrames ? 50 : 60;
    const std::size_t count = 95 - first; // up to 3.8 s
    // A format without edit lists may end with up to three pictures more that others are computed from.
    // Pictures that are off the round times by some milliseconds may make it one less.
    ASSERT_GE(shown.size() + 1, count);
    EXPECT_LE(shown.size(), GetParam().keyFrames ? count + 3 : count);
    const auto from = all.begin() + static_cast<std::ptrdiff_t>(first);
    EXPECT_TRUE(std::equal(from, from + static_cast<std::ptrdiff_t>(count) - 1, shown.begin()));
}

std::vector<Format> formatsWith(bool Format::*part) {
    std::vector<Format> some;
    std::copy_if(std::begin(formats), std::end(formats), std::back_inserter(some),
                 [&](const Format& format) { return format.*part; });
    return some;
}

std::string nameOf(const testing::TestParamInfo<Format>& parameter) { return parameter.param.name; }

INSTANTIATE_TEST_SUITE_P(Media, EveryFormat, testing::ValuesIn(formats), nameOf);
INSTANTIATE_TEST_SUITE_P(Media, EveryFormatWithSound, testing::ValuesIn(formatsWith(&Format::sound)), nameOf);
INSTANTIATE_TEST_SUITE_P(Media, EveryFormatWithPictures, testing::ValuesIn(formatsWith(&Format::video)),
                         nameOf);

} // namespace
