// SPDX-License-Identifier: MIT
#pragma once

#include "Av.h"

#include <vector>

namespace trimstudio {

// Makes the frames of a part of a FLAC stream into a stream of its own: they are numbered from 0 again, and
// the stream header tells how many samples there are. For one thread.
class FlacStream {
public:
    // Reads the stream header from the codec's extra data.
    explicit FlacStream(const AVCodecParameters& codec);

    // A stream header for writing before the frames are known: length and checksum are "unknown".
    static void clearLength(AVCodecParameters& codec);

    // Renumbers the frame in the packet. A packet that holds no whole frame is left as it is.
    void take(AVPacket& packet);

    // The stream header for the frames taken so far.
    std::vector<uint8_t> header() const;

private:
    std::vector<uint8_t> original_;
    uint64_t samples_ = 0;
    uint64_t frames_ = 0;
    uint32_t smallest_ = 0xFFFFFF; // Bytes of the smallest frame.
    uint32_t largest_ = 0;
};

} // namespace trimstudio
