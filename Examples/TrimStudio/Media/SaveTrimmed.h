// SPDX-License-Identifier: MIT
#pragma once

#include "MediaFile.h"

#include <atomic>
#include <functional>
#include <optional>

namespace trimstudio {

// What to copy: `length` seconds from `start`, both counted like MediaFile::duration.
struct TrimRequest {
    std::filesystem::path source;
    double start = 0;
    double length = 0;
    std::optional<std::filesystem::path> folder{}; // for the copy; nothing: the source's
};

// The copy: where in the original it really begins and how long it really is, in seconds.
struct Trimmed {
    std::filesystem::path path;
    double start = 0;
    double length = 0;
};

// Copies a part of a file into a new file beside it, or in the folder that is asked for, "NAME-trimmed.EXT" or
// the next free name. Sound and pictures are copied as they are, so the cut is as exact as the format allows;
// see MediaFile. The new file appears under its name only when it is complete and on the disk. After a failure
// nothing has changed.
//
// Blocks until done, so it belongs on a background thread; `progress` is called on that thread, at most about
// 50 times a second, with a number from 0 to 1. When `cancelled` becomes true it soon ends with a failure.
Outcome<Trimmed> saveTrimmed(const TrimRequest& request, const std::atomic<bool>& cancelled,
                             const std::function<void(double fraction)>& progress);

} // namespace trimstudio
