// SPDX-License-Identifier: MIT
#include "Av.h"
#include "MediaFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace trimstudio {

namespace {

// What reading packets has shown.
struct Extent {
    double first = std::numeric_limits<double>::infinity();
    double end = -std::numeric_limits<double>::infinity();
    double longest = 0; // Longest packet.
};

double stepOf(const AVFormatContext& input, const AVPacket& packet) {
    const AVStream& stream = *input.streams[packet.stream_index];
    return av::isPcm(stream) ? 1.0 / stream.codecpar->sample_rate : av::duration(input, packet);
}

void add(Extent& extent, const AVFormatContext& input, const AVPacket& packet) {
    const AVStream& stream = *input.streams[packet.stream_index];
    const double time = av::time(input, packet);
    if ((!av::isAudio(stream) && !av::isVideo(stream)) || (packet.flags & AV_PKT_FLAG_DISCARD)) return;
    if (std::isnan(time)) return;
    extent.first = std::min(extent.first, time);
    extent.end = std::max(extent.end, time + av::duration(input, packet));
    extent.longest = std::max(extent.longest, stepOf(input, packet));
}

Extent readPackets(AVFormatContext& input, int limit) {
    Extent extent;
    for (int i = 0; i < limit; ++i) {
        const av::Packet packet = av::readPacket(input);
        if (!packet) break;
        add(extent, input, *packet);
    }
    return extent;
}

// Reads what lies around the promised end. A file that is cut off has nothing there, so each attempt
// begins earlier.
Extent readEnd(av::Input& input, const std::filesystem::path& path, double promisedEnd) {
    const double start = av::startTime(*input);
    const int stream = av::mainStream(*input);
    for (double back = 1;; back *= 2) {
        const double place = promisedEnd - back;
        const bool last = place <= start;
        if (!av::moveBefore(input, path, stream, std::max(place, start))) return {};
        const Extent extent = readPackets(*input, std::numeric_limits<int>::max());
        if (extent.longest > 0 || last) return extent;
    }
}

bool lengthIsGuessed(const AVFormatContext& input) {
    const av::Container kind = av::container(input);
    const bool known = input.duration != AV_NOPTS_VALUE && input.duration > 0;
    const bool fromBitRate = known && input.duration_estimation_method == AVFMT_DURATION_FROM_BITRATE;
    return kind == av::Container::Aac || fromBitRate;
}

// Seconds that can really be read, 0 if none.
double realDuration(av::Input& input, MediaFile& file, double promised) {
    const bool guessed = lengthIsGuessed(*input);
    const double start = av::startTime(*input);
    const bool readAll = guessed || av::container(*input) == av::Container::Mp3;
    Extent extent = readPackets(*input, readAll ? std::numeric_limits<int>::max() : 300);
    file.packetDuration = extent.longest;
    if (!readAll) extent = readEnd(input, file.path, start + promised);
    if (!(extent.longest > 0)) return 0;
    file.packetDuration = std::max(file.packetDuration, extent.longest);
    const double read = extent.end - start;
    const bool cutOff = read < promised - 3 * file.packetDuration - 0.05;
    return cutOff || guessed ? read : promised;
}

std::string_view oggKind(AVCodecID audio) {
    switch (audio) {
    case AV_CODEC_ID_VORBIS:
        return "Ogg Vorbis";
    case AV_CODEC_ID_OPUS:
        return "Opus";
    case AV_CODEC_ID_FLAC:
        return "Ogg FLAC";
    case AV_CODEC_ID_SPEEX:
        return "Speex";
    default:
        return "Ogg";
    }
}

std::string_view mp4Kind(const AVFormatContext& input, bool hasVideo) {
    const AVDictionaryEntry* brand = av_dict_get(input.metadata, "major_brand", nullptr, 0);
    if (brand && std::string_view(brand->value).substr(0, 2) == "qt") return "QuickTime";
    return hasVideo ? "MP4" : "M4A";
}

std::string_view kindOf(const AVFormatContext& input, const MediaFile& file) {
    switch (av::container(input)) {
    case av::Container::Wav:
        return "WAV";
    case av::Container::Flac:
        return "FLAC";
    case av::Container::Mp3:
        return "MP3";
    case av::Container::Aac:
        return "AAC";
    case av::Container::Mp4:
        return mp4Kind(input, file.hasVideo);
    case av::Container::Matroska:
        return file.path.extension() == ".webm" ? "WebM" : "Matroska";
    case av::Container::Ogg:
        break;
    }
    const AVStream& main = *input.streams[av::mainStream(input)];
    return file.hasVideo ? "Ogg" : oggKind(main.codecpar->codec_id);
}

std::string formatOf(const AVFormatContext& input, const MediaFile& file) {
    std::string text(kindOf(input, file));
    text += file.hasVideo ? " video" : " audio";
    return text;
}

} // namespace

Outcome<MediaFile> openMedia(const std::filesystem::path& path) {
    Outcome<av::Input> opened = av::openInput(path);
    if (!opened) return Failure{opened.error()};
    av::Input input = std::move(opened.value());

    MediaFile file;
    file.path = path;
    file.name = path.filename().string();
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        file.hasAudio = file.hasAudio || av::isAudio(*input->streams[i]);
        file.hasVideo = file.hasVideo || av::isVideo(*input->streams[i]);
    }
    if (!file.hasAudio && !file.hasVideo)
        return Failure{av::quoted(path) + " holds neither sound nor moving pictures."};
    file.format = formatOf(*input, file);
    file.startsAtKeyFrames = file.hasVideo && av::container(*input) != av::Container::Mp4;

    const bool known = input->duration != AV_NOPTS_VALUE && input->duration > 0;
    if (!known && !lengthIsGuessed(*input))
        return Failure{"The length of " + av::quoted(path) + " is not known."};
    const double promised = known ? static_cast<double>(input->duration) / AV_TIME_BASE : 0;
    file.duration = realDuration(input, file, promised);
    if (!(file.duration > 0)) return Failure{av::quoted(path) + " is damaged: nothing in it can be played."};
    return file;
}

} // namespace trimstudio
