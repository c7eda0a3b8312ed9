// SPDX-License-Identifier: MIT
#include "Av.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <mutex>
#include <new>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trimstudio::av {

namespace {

constexpr std::array<std::pair<std::string_view, Container>, 7> knownFormats{{
    {"wav", Container::Wav},
    {"flac", Container::Flac},
    {"ogg", Container::Ogg},
    {"mp3", Container::Mp3},
    {"mov,mp4,m4a,3gp,3g2,mj2", Container::Mp4},
    {"matroska,webm", Container::Matroska},
    {"aac", Container::Aac},
}};

void quietLog() {
    static std::once_flag once;
    std::call_once(once, [] { av_log_set_level(AV_LOG_QUIET); });
}

// A sentence if the path is nothing that can be opened and read, else nothing.
std::string problemWith(const std::filesystem::path& path) {
    // O_NONBLOCK: a pipe without a writer must not make us wait.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        if (errno == ENOENT || errno == ENOTDIR) return quoted(path) + " does not exist.";
        if (errno == EACCES || errno == EPERM)
            return "You do not have permission to open " + quoted(path) + ".";
        return quoted(path) + " cannot be opened " + inParentheses(AVERROR(errno)) + ".";
    }
    struct stat facts {};
    const bool known = ::fstat(fd, &facts) == 0;
    ::close(fd);
    if (known && S_ISDIR(facts.st_mode)) return quoted(path) + " is a folder, not a media file.";
    if (!known || !S_ISREG(facts.st_mode)) return quoted(path) + " is not a media file that can be read.";
    if (facts.st_size == 0) return quoted(path) + " is empty.";
    return {};
}

bool isUnclear(const AVStream& stream) {
    const AVCodecParameters& codec = *stream.codecpar;
    if (codec.codec_type == AVMEDIA_TYPE_AUDIO)
        return codec.sample_rate <= 0 || codec.ch_layout.nb_channels <= 0;
    if (codec.codec_type == AVMEDIA_TYPE_VIDEO) return codec.width <= 0 || codec.height <= 0;
    return false;
}

bool allUnclear(const AVFormatContext& input) {
    return std::all_of(input.streams, input.streams + input.nb_streams,
                       [](const auto* s) { return isUnclear(*s); });
}

Packet firstPacketOf(AVFormatContext& input, int stream) {
    const bool video = isVideo(*input.streams[stream]);
    while (Packet packet = readPacket(input))
        if (packet->stream_index == stream && (!video || (packet->flags & AV_PKT_FLAG_KEY))) return packet;
    return nullptr;
}

// Compressed sound in WAV files has no time stamps; after a search they would be computed from the bit rate.
bool tellsTimeAfterSeek(const AVFormatContext& input, int stream) {
    return container(input) != Container::Wav || isPcm(*input.streams[stream]);
}

bool seek(AVFormatContext& input, int stream, double target) {
    return av_seek_frame(&input, stream, ticks(target, input.streams[stream]->time_base),
                         AVSEEK_FLAG_BACKWARD) >= 0;
}

} // namespace

Outcome<Input> openInput(const std::filesystem::path& path) {
    quietLog();
    if (std::string problem = problemWith(path); !problem.empty()) return Failure{std::move(problem)};

    AVDictionary* options = nullptr;
    av_dict_set(&options, "format_whitelist", "wav,flac,ogg,mp3,mov,mp4,m4a,3gp,3g2,mj2,matroska,webm,aac", 0);
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    AVFormatContext* context = nullptr;
    std::string url = "file:";
    url += path.string();
    int error = avformat_open_input(&context, url.c_str(), nullptr, &options);
    av_dict_free(&options);
    Input input(context);
    if (error >= 0) error = avformat_find_stream_info(context, nullptr);
    const bool cannotRead = error == AVERROR(EIO) || error == AVERROR(ENOMEM);
    if (cannotRead) return Failure{quoted(path) + " cannot be read " + inParentheses(error) + "."};
    // The name alone makes some formats take a file for one of theirs; then nothing in it makes sense.
    if (error < 0 || allUnclear(*input))
        return Failure{quoted(path) + " is not a media file that can be read."};
    return input;
}

Container container(const AVFormatContext& input) {
    for (const auto& [name, kind] : knownFormats)
        if (name == input.iformat->name) return kind;
    return Container::Matroska;
}

std::string quoted(const std::filesystem::path& path) {
    const std::filesystem::path name = path.has_filename() ? path.filename() : path.parent_path().filename();
    std::string text = "“";
    text += name.empty() ? path.string() : name.string();
    text += "”";
    return text;
}

std::string inParentheses(int error) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(error, text.data(), text.size());
    std::string result = "(";
    result += text.data();
    result += ")";
    return result;
}

Packet newPacket() {
    Packet packet(av_packet_alloc());
    if (!packet) throw std::bad_alloc();
    return packet;
}

Packet readPacket(AVFormatContext& input) {
    Packet packet = newPacket();
    return av_read_frame(&input, packet.get()) < 0 ? nullptr : std::move(packet);
}

bool isPicture(const AVStream& stream) { return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0; }

bool isAudio(const AVStream& stream) { return stream.codecpar->codec_type == AVMEDIA_TYPE_AUDIO; }

bool isVideo(const AVStream& stream) {
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isPicture(stream);
}

bool isPcm(const AVStream& stream) {
    const AVCodecParameters& codec = *stream.codecpar;
    return codec.codec_id >= AV_CODEC_ID_FIRST_AUDIO && codec.codec_id < AV_CODEC_ID_ADPCM_IMA_QT &&
           av_get_exact_bits_per_sample(codec.codec_id) >= 8 && codec.sample_rate > 0;
}

int mainStream(const AVFormatContext& input) {
    int found = -1;
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        if (isVideo(*input.streams[i])) return static_cast<int>(i);
        if (isAudio(*input.streams[i]) && found < 0) found = static_cast<int>(i);
    }
    return found;
}

double seconds(int64_t ticks, AVRational timeBase) {
    return static_cast<double>(ticks) * timeBase.num / timeBase.den;
}

int64_t ticks(double seconds, AVRational timeBase) {
    return std::llround(seconds * timeBase.den / timeBase.num);
}

double startTime(const AVFormatContext& input) {
    return input.start_time == AV_NOPTS_VALUE ? 0 : seconds(input.start_time, AVRational{1, AV_TIME_BASE});
}

double time(const AVFormatContext& input, const AVPacket& packet) {
    const int64_t stamp = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
    return stamp == AV_NOPTS_VALUE ? std::nan("")
                                   : seconds(stamp, input.streams[packet.stream_index]->time_base);
}

double duration(const AVFormatContext& input, const AVPacket& packet) {
    const AVStream& stream = *input.streams[packet.stream_index];
    if (packet.duration > 0) return seconds(packet.duration, stream.time_base);
    const AVRational rate = stream.avg_frame_rate;
    return isVideo(stream) && rate.num > 0 && rate.den > 0 ? av_q2d(av_inv_q(rate)) : 0;
}

void readOnly(AVFormatContext& input, int stream) {
    for (unsigned i = 0; i < input.nb_streams; ++i)
        input.streams[i]->discard = static_cast<int>(i) == stream ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

bool moveBefore(Input& input, const std::filesystem::path& path, int stream, double target) {
    // A search may stop a little late: it goes by decoding times, or by an index with gaps.
    for (const double margin : {0.0, 1.0, 8.0, 60.0}) {
        const double place = target - margin;
        if (!tellsTimeAfterSeek(*input, stream)) break;
        if (place <= startTime(*input) || !seek(*input, stream, place)) break;
        const Packet first = firstPacketOf(*input, stream);
        // 0.1 ms: time stamps of some formats are rounded.
        if (first && time(*input, *first) <= target + 1e-4) return seek(*input, stream, place);
    }
    Outcome<Input> again = openInput(path);
    if (again) input = std::move(again.value());
    return static_cast<bool>(again);
}

} // namespace trimstudio::av
