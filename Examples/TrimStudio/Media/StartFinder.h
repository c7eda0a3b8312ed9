// SPDX-License-Identifier: MIT
#pragma once

#include "MediaFile.h"

#include <memory>

namespace trimstudio {

class KeyFrames;

// Tells where a copy that is asked to begin somewhere really begins. Remembers what it found, so that
// asking again nearby, as while dragging, costs nothing; a new place costs a seek and reading up to the
// next key frame. Keeps the file open. Use one object from one thread at a time.
class StartFinder {
public:
    explicit StartFinder(MediaFile file);
    StartFinder(StartFinder&&) noexcept;
    StartFinder& operator=(StartFinder&&) noexcept;
    ~StartFinder();

    // `start` itself, or the key frame at or before it where the format needs one. Seconds. If the file can
    // no longer be read, `start`.
    double realStart(double start);

private:
    MediaFile file_;
    std::unique_ptr<KeyFrames> keyFrames_;
};

} // namespace trimstudio
