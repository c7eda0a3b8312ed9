// SPDX-License-Identifier: MIT
#pragma once

#include "Outcome.h"

#include <filesystem>
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

// What the parts of the media engine share about FFmpeg. Not for users of the engine.
namespace trimstudio::av {

struct CloseInput {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

using Input = std::unique_ptr<AVFormatContext, CloseInput>;
using Packet = std::unique_ptr<AVPacket, FreePacket>;

// The kinds of file that can be trimmed.
enum class Container { Wav, Flac, Ogg, Mp3, Mp4, Matroska, Aac };

Outcome<Input> openInput(const std::filesystem::path& path);
Container container(const AVFormatContext& input);

// The file name between quotation marks, for sentences.
std::string quoted(const std::filesystem::path& path);
// FFmpeg's own words for an error, between parentheses.
std::string inParentheses(int error);

Packet newPacket();
// The next packet, or nothing at the end or where the file cannot be read any further.
Packet readPacket(AVFormatContext& input);

bool isPicture(const AVStream& stream); // A cover picture.
bool isAudio(const AVStream& stream);
bool isVideo(const AVStream& stream);         // Moving pictures.
bool isPcm(const AVStream& stream);           // Plain samples, which can be cut anywhere.
int mainStream(const AVFormatContext& input); // First moving pictures, else first sound, else -1.

double seconds(int64_t ticks, AVRational timeBase);
int64_t ticks(double seconds, AVRational timeBase);
// The time stamp of what is heard or seen first, in seconds.
double startTime(const AVFormatContext& input);
// The time at which a packet is heard or seen; NaN if unknown. Seconds.
double time(const AVFormatContext& input, const AVPacket& packet);
// How long a packet lasts, 0 if unknown. Seconds.
double duration(const AVFormatContext& input, const AVPacket& packet);

// Leaves out the packets of all other streams from now on.
void readOnly(AVFormatContext& input, int stream);

// Moves to a place from which reading meets, of the given stream, a packet at or before `target` (for moving
// pictures: a key frame). Reads on from the beginning where the file cannot be searched. False if the file
// can no longer be opened. May replace the input by a new one.
bool moveBefore(Input& input, const std::filesystem::path& path, int stream, double target);

} // namespace trimstudio::av
