// SPDX-License-Identifier: MIT
#pragma once

#include "Outcome.h"

#include <filesystem>
#include <string>

namespace trimstudio {

// Facts about a media file. A plain value: it keeps no file open and may be copied between threads.
// All times are seconds, counted from what is heard or seen first.
struct MediaFile {
    std::filesystem::path path;
    std::string name;   // File name as shown to people.
    std::string format; // For people, such as "FLAC audio" or "MP4 video".
    double duration = 0;
    bool hasAudio = false;
    bool hasVideo = false; // Moving pictures; a cover picture does not count.
    // The steps in which the format can be cut: one sample, one packet of sound or one picture.
    double packetDuration = 0;
    // A copy of this file can only begin at a key frame; see StartFinder.
    bool startsAtKeyFrames = false;
};

// Opens and examines a file. Reads a little at both ends, or all of an MP3 or AAC stream, for these do not
// tell their length reliably; so call it where a moment of waiting does no harm. The duration is what can
// really be read: a file that is cut off gives less than its header promises.
Outcome<MediaFile> openMedia(const std::filesystem::path& path);

} // namespace trimstudio
