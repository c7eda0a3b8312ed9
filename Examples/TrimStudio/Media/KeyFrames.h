// SPDX-License-Identifier: MIT
#pragma once

#include "Av.h"

#include <map>
#include <optional>

namespace trimstudio {

// Finds key frames of the moving pictures of a file and remembers them. Times are seconds from what is heard
// or seen first. For one thread at a time.
class KeyFrames {
public:
    explicit KeyFrames(std::filesystem::path path);

    // The last key frame at or before `time`, else the first one. Nothing if the file has no moving pictures
    // or cannot be read. Less than 0 for a key frame that is there only to compute later pictures from.
    std::optional<double> atOrBefore(double time);

private:
    std::optional<double> remembered(double time) const;
    std::optional<double> search(double time);

    std::filesystem::path path_;
    av::Input input_;
    int stream_ = -1;
    std::map<double, double> nextByKeyFrame_; // From each key frame that is known to the one after it.
};

} // namespace trimstudio
