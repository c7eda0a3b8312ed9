// SPDX-License-Identifier: MIT
#pragma once

#include "Av.h"

#include <memory>
#include <optional>
#include <vector>

namespace trimstudio {

// An MP3 file with less than this is not recognised as one.
constexpr int fewestMp3Packets = 2;

// The part to be copied. Times are seconds of the source's own clock, its time stamps.
struct Cut {
    av::Container container{};
    double start = 0;
    double end = 0;
    bool fromBeginning = false;  // Leave nothing out before `start`.
    bool toEnd = false;          // Leave nothing out after `end`.
    double keyFrame = 0;         // Where the pictures to be copied begin, if there are moving pictures.
    bool onlySound = false;      // A single stream of sound.
    std::optional<double> shift; // The time that becomes 0 in the copy. The first track that begins sets it.
    std::optional<double> heard; // What is heard or seen first in the copy; set likewise.
};

// Picks the packets of one stream that belong to the copy, changed where the cut asks for it; their time
// stamps stay those of the source. For one thread; the context, stream and cut must outlive it.
class Track {
public:
    virtual ~Track() = default;

    // Takes the next packet of the stream and gives those that are to be written now.
    virtual std::vector<av::Packet> take(av::Packet packet) = 0;
    // What is left to write after the last packet.
    virtual std::vector<av::Packet> finish() { return {}; }
    // Nothing that comes later belongs to the copy.
    virtual bool done() const = 0;
    // Where what has been given out so far ends.
    virtual double end() const = 0;
};

// `codec` describes the stream in the copy. Tracks of sound may change it until they give out their first
// packet.
std::unique_ptr<Track> makeTrack(const AVFormatContext& input, int stream, AVCodecParameters& codec, Cut& cut);

} // namespace trimstudio
