// SPDX-License-Identifier: MIT
#pragma once

#include "SaveTrimmed.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

// Makes media for the tests and reads back what came of it, with separate programs.
namespace mediatest {

namespace fs = std::filesystem;

// A folder that lives as long as the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const fs::path& path() const { return path_; }
    // Names of all that is in it, hidden or not, sorted.
    std::vector<std::string> names() const;

private:
    fs::path path_;
};

struct Finished {
    int exitCode = -1;
    std::string output;
    std::string complaints; // Standard error.
};

// Runs a program, for half a minute at most.
Finished run(const std::vector<std::string>& command);
// What to put before a command so that folders and files can be closed to it, as they are to anyone but root.
std::vector<std::string> withoutPrivileges();
// Runs `ffmpeg -v error -y` with these further words, which are separated by spaces, in `folder`. Fails the
// test if that fails.
void ffmpeg(const fs::path& folder, const std::string& words);
// One value of `ffprobe -show_entries ENTRIES`, or all of them separated by lines.
std::string probe(const fs::path& file, const std::string& entries, const std::string& stream = {});
double probedDuration(const fs::path& file);

// Sound of the first stream as ffmpeg decodes it, mixed to one channel.
std::vector<int16_t> decodedSound(const fs::path& file, int rate);
// One checksum per picture as ffmpeg decodes and shows it.
std::vector<std::string> decodedPictures(const fs::path& file);
// Checksum of all that is decoded of a kind of stream ("a" or "v").
std::string decodedChecksum(const fs::path& file, const std::string& kind);
// What ffmpeg complains about when it decodes the file.
std::string decodingComplaints(const fs::path& file);

std::string contents(const fs::path& file);
void write(const fs::path& file, const std::string& text);
// Copies the first part of a file.
void copyPart(const fs::path& from, const fs::path& to, double part);

// Saves without a cancel flag and progress.
trimstudio::Outcome<trimstudio::Trimmed> save(const fs::path& file, double start, double length);
// Same, and fails the test with the sentence where that does not work.
trimstudio::Trimmed saved(const fs::path& file, double start, double length);

// Seconds at which the sound first gets loud; less than 0 if it never does.
double loudAt(const std::vector<int16_t>& sound, int rate);

// ffmpeg's words for 6 seconds of sound with a loud tone from `marked` to half a second later and a faint hum
// else, and for 6 seconds of pictures that all differ.
constexpr double marked = 2.5;
std::string markedSound();
std::string pictures();

} // namespace mediatest
