// SPDX-License-Identifier: MIT
#include "Av.h"
#include "Waveform.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace trimstudio {

namespace {

struct FreeCodec {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
};
struct FreeFrame {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using Codec = std::unique_ptr<AVCodecContext, FreeCodec>;
using Frame = std::unique_ptr<AVFrame, FreeFrame>;

template <class Sample>
float level(Sample sample) {
    if constexpr (std::is_floating_point_v<Sample>)
        return static_cast<float>(std::abs(sample));
    else if constexpr (std::is_same_v<Sample, uint8_t>)
        return std::abs(static_cast<float>(sample) - 128.0F) / 128.0F;
    else
        return std::abs(static_cast<float>(sample)) / -static_cast<float>(std::numeric_limits<Sample>::min());
}

template <class Sample>
float loudest(const uint8_t* data, int from, int to) {
    const auto* samples = reinterpret_cast<const Sample*>(data);
    float peak = 0;
    for (int i = from; i < to; ++i) peak = std::max(peak, level(samples[i]));
    return peak;
}

float loudest(AVSampleFormat format, const uint8_t* data, int from, int to) {
    switch (av_get_packed_sample_fmt(format)) {
    case AV_SAMPLE_FMT_U8:
        return loudest<uint8_t>(data, from, to);
    case AV_SAMPLE_FMT_S16:
        return loudest<int16_t>(data, from, to);
    case AV_SAMPLE_FMT_S32:
        return loudest<int32_t>(data, from, to);
    case AV_SAMPLE_FMT_S64:
        return loudest<int64_t>(data, from, to);
    case AV_SAMPLE_FMT_FLT:
        return loudest<float>(data, from, to);
    case AV_SAMPLE_FMT_DBL:
        return loudest<double>(data, from, to);
    default:
        return 0;
    }
}

// The loudest sample of all channels in samples [from, to) of a frame.
float loudest(const AVFrame& frame, int from, int to) {
    const auto format = static_cast<AVSampleFormat>(frame.format);
    const int channels = frame.ch_layout.nb_channels;
    if (!av_sample_fmt_is_planar(format))
        return loudest(format, frame.extended_data[0], from * channels, to * channels);
    float peak = 0;
    for (int c = 0; c < channels; ++c) peak = std::max(peak, loudest(format, frame.extended_data[c], from, to));
    return peak;
}

// Collects the peaks of frames by their time.
class Peaks {
public:
    Peaks(double duration, std::size_t buckets)
        : perSecond_(static_cast<double>(buckets) / duration), peaks_(buckets) {}

    void add(const AVFrame& frame, double time) {
        for (int from = 0; from < frame.nb_samples;) {
            const auto rate = static_cast<double>(frame.sample_rate);
            const double place = std::floor((time + from / rate) * perSecond_ + 1e-9);
            const double next = std::ceil(((place + 1) / perSecond_ - time) * rate - 1e-6);
            const int to = static_cast<int>(std::clamp<double>(next, from + 1, frame.nb_samples));
            raise(place, loudest(frame, from, to));
            from = to;
        }
    }

    const std::vector<float>& values() const { return peaks_; }

private:
    void raise(double place, float peak) {
        if (place < 0) return;
        // What sounds past the end of the file's duration is drawn at the end.
        float& bucket = peaks_[std::min(static_cast<std::size_t>(place), peaks_.size() - 1)];
        bucket = std::max(bucket, std::min(peak, 1.0F));
    }

    double perSecond_;
    std::vector<float> peaks_;
};

// Reports at most ten times a second.
class Reporter {
public:
    Reporter(const WaveformProgress& progress, double duration) : progress_(progress), duration_(duration) {}

    void at(const Peaks& peaks, double time) {
        const auto now = std::chrono::steady_clock::now();
        if (!progress_ || now < next_) return;
        next_ = now + std::chrono::milliseconds(100);
        progress_(peaks.values(), std::clamp(time / duration_, 0.0, 1.0));
    }

private:
    const WaveformProgress& progress_;
    double duration_;
    std::chrono::steady_clock::time_point next_ =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
};

int firstSound(const AVFormatContext& input) {
    for (unsigned i = 0; i < input.nb_streams; ++i)
        if (av::isAudio(*input.streams[i])) return static_cast<int>(i);
    return -1;
}

Codec openCodec(const AVStream& stream) {
    const AVCodec* decoder = avcodec_find_decoder(stream.codecpar->codec_id);
    Codec codec(decoder ? avcodec_alloc_context3(decoder) : nullptr);
    if (!codec || avcodec_parameters_to_context(codec.get(), stream.codecpar) < 0) return nullptr;
    codec->pkt_timebase = stream.time_base;
    return avcodec_open2(codec.get(), decoder, nullptr) < 0 ? nullptr : std::move(codec);
}

// Takes all frames the decoder has ready. `time` follows the end of the last one.
void collect(AVCodecContext& codec, AVFrame& frame, double startTime, Peaks& peaks, double& time) {
    while (avcodec_receive_frame(&codec, &frame) >= 0) {
        if (frame.best_effort_timestamp != AV_NOPTS_VALUE)
            time = av::seconds(frame.best_effort_timestamp, codec.pkt_timebase) - startTime;
        if (frame.sample_rate > 0) {
            peaks.add(frame, time);
            time += static_cast<double>(frame.nb_samples) / frame.sample_rate;
        }
        av_frame_unref(&frame);
    }
}

} // namespace

Outcome<std::vector<float>> waveform(const MediaFile& file, std::size_t buckets,
                                     const std::atomic<bool>& cancelled, const WaveformProgress& progress) {
    if (!file.hasAudio || buckets == 0) return std::vector<float>();
    Outcome<av::Input> opened = av::openInput(file.path);
    if (!opened) return Failure{opened.error()};
    AVFormatContext& input = *opened.value();
    const int stream = firstSound(input);
    const Codec codec = stream < 0 ? nullptr : openCodec(*input.streams[stream]);
    const Frame frame(av_frame_alloc());
    if (!codec || !frame) return Failure{"The sound of " + av::quoted(file.path) + " cannot be decoded."};

    av::readOnly(input, stream);
    const double start = av::startTime(input);
    Peaks peaks(file.duration, buckets);
    Reporter reporter(progress, file.duration);
    double time = 0;
    while (const av::Packet packet = av::readPacket(input)) {
        if (cancelled) return Failure{"Drawing " + av::quoted(file.path) + " was cancelled."};
        if (packet->stream_index != stream) continue;
        avcodec_send_packet(codec.get(), packet.get());
        collect(*codec, *frame, start, peaks, time);
        reporter.at(peaks, time);
    }
    avcodec_send_packet(codec.get(), nullptr);
    collect(*codec, *frame, start, peaks, time);
    return peaks.values();
}

} // namespace trimstudio
