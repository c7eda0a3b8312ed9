// SPDX-License-Identifier: MIT
#pragma once

#include "MediaFile.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <vector>

namespace trimstudio {

// Gets the peaks so far and how much has been read (0 to 1). Called on the thread that reads, a few times a
// second.
using WaveformProgress = std::function<void(const std::vector<float>& peaks, double fraction)>;

// Peaks for drawing the whole duration: per bucket the loudest sample of all channels, between 0 and 1.
// Decodes the whole file, so it belongs on a background thread. Opens the file for itself and keeps nothing
// but the peaks in memory. A file without sound gives an empty vector; damaged places stay at 0. When
// `cancelled` becomes true it soon ends with a failure.
Outcome<std::vector<float>> waveform(const MediaFile& file, std::size_t buckets,
                                     const std::atomic<bool>& cancelled, const WaveformProgress& progress);

} // namespace trimstudio
