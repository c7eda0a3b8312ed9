// SPDX-License-Identifier: MIT
#include "Media.h"
#include "StartFinder.h"

#include <algorithm>
#include <sstream>

namespace {

using namespace mediatest;
using namespace trimstudio;

std::vector<double> keyFrames(const fs::path& file) {
    std::vector<double> times;
    const double start = std::stod(probe(file, "format=start_time"));
    std::istringstream lines(probe(file, "packet=pts_time,flags", "v:0"));
    for (std::string line; std::getline(lines, line);)
        if (line.find('K') != std::string::npos) times.push_back(std::stod(line) - start);
    return times;
}

double expected(const std::vector<double>& keys, double start) {
    const auto after = std::upper_bound(keys.begin(), keys.end(), start + 0.0005);
    return after == keys.begin() ? keys.front() : *std::prev(after);
}

class FindingStarts : public testing::Test {
protected:
    MediaFile make(const std::string& encoding, const std::string& name) {
        ffmpeg(folder_.path(), pictures() + markedSound() + encoding + " " + name);
        return openMedia(folder_.path() / name).value();
    }

    TemporaryFolder folder_;
};

TEST_F(FindingStarts, TheKeyFrameAtOrBeforeIsFoundInAnyOrder) {
    const std::pair<const char*, const char*> kinds[] = {
        {"-c:v libx264 -preset veryfast -sc_threshold 0 -g 20 -c:a aac", "x.mkv"},
        {"-c:v libvpx -deadline realtime -cpu-used 8 -g 20 -c:a libopus", "x.webm"},
        {"-c:v libtheora -g 20 -c:a libvorbis", "x.ogv"}};
    for (const auto& [encoding, name] : kinds) {
        const MediaFile file = make(encoding, name);
        ASSERT_TRUE(file.startsAtKeyFrames) << name;
        const std::vector<double> keys = keyFrames(file.path);
        ASSERT_GE(keys.size(), 7U) << name;
        StartFinder finder(file);
        for (int i = 0; i < 60; ++i) {
            const double start = (i * 37 % 60) * 0.1 + 0.05;
            EXPECT_NEAR(finder.realStart(start), expected(keys, start), 0.0011) << name << " at " << start;
        }
        for (const double key : keys) EXPECT_NEAR(finder.realStart(key), key, 0.0011) << name;
        EXPECT_EQ(finder.realStart(0), 0) << name;
    }
}

TEST_F(FindingStarts, ACopyBeginsWhereItWasFoundToBegin) {
    const MediaFile file = make("-c:v libx264 -preset veryfast -sc_threshold 0 -g 20 -c:a aac", "x.mkv");
    StartFinder finder(file);
    for (const double start : {0.5, 1.7, 5.9}) {
        const double real = finder.realStart(start);
        EXPECT_NEAR(saved(file.path, start, 0.1).start, real, 1e-6) << start;
        EXPECT_NEAR(saved(file.path, real, 0.1).start, real, 1e-6) << "asking for a key frame gives it";
    }
}

TEST_F(FindingStarts, FormatsThatCanBeCutAnywhereBeginAnywhere) {
    const MediaFile file = make("-c:v libx264 -preset ultrafast -c:a aac", "x.mp4");
    EXPECT_FALSE(file.startsAtKeyFrames);
    StartFinder finder(file);
    EXPECT_EQ(finder.realStart(1.2345), 1.2345);
}

TEST_F(FindingStarts, WhatWasFoundIsRememberedWhenTheFileIsGone) {
    const MediaFile file = make("-c:v libx264 -preset veryfast -sc_threshold 0 -g 50 -c:a aac", "x.mkv");
    StartFinder finder(file);
    const double found = finder.realStart(2.9);
    EXPECT_NEAR(found, 2, 0.03);
    fs::resize_file(file.path, 0);
    EXPECT_EQ(finder.realStart(2.5), found);
    EXPECT_EQ(finder.realStart(3.9), found);
}

TEST_F(FindingStarts, AMissingFileGivesTheStartItself) {
    MediaFile file;
    file.path = folder_.path() / "none.mkv";
    file.startsAtKeyFrames = true;
    EXPECT_EQ(StartFinder(file).realStart(3), 3);
}

} // namespace
