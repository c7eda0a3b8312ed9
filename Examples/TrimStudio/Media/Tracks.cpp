// SPDX-License-Identifier: MIT
#include "FlacStream.h"
#include "Tracks.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <new>

extern "C" {
#include <libavutil/intreadwrite.h>
}

namespace trimstudio {

namespace {

using av::Packet;
using Packets = std::vector<Packet>;

constexpr double never = -std::numeric_limits<double>::infinity();
constexpr double rounding = 1e-6;

// When a packet is heard or seen.
struct Span {
    double begin = 0;
    double end = 0;

    double middle() const { return (begin + end) / 2; }
};

// What all tracks need.
class StreamTrack : public Track {
public:
    StreamTrack(const AVFormatContext& input, int stream, Cut& cut)
        : input_(input), stream_(*input.streams[stream]), cut_(cut) {}

    bool done() const override { return done_; }
    double end() const override { return end_; }

protected:
    Span spanOf(const AVPacket& packet) const {
        const double begin = av::time(input_, packet);
        return {begin, begin + av::duration(input_, packet)};
    }
    void reach(double end) { end_ = std::max(end_, end); }

    const AVFormatContext& input_;
    const AVStream& stream_;
    Cut& cut_;
    bool done_ = false;

private:
    double end_ = never;
};

// Plain samples: cut to the sample.
class PcmTrack : public StreamTrack {
public:
    using StreamTrack::StreamTrack;

    Packets take(Packet packet) override {
        const int64_t rate = stream_.codecpar->sample_rate;
        const int64_t first = std::llround(spanOf(*packet).begin * static_cast<double>(rate));
        const int64_t count = packet->size / bytesPerSample();
        const int64_t from =
            cut_.fromBeginning ? 0 : std::clamp(sampleAt(cut_.start) - first, int64_t{0}, count);
        const int64_t to = cut_.toEnd ? count : std::clamp(sampleAt(cut_.end) - first, int64_t{0}, count);
        done_ = done_ || (!cut_.toEnd && first + count >= sampleAt(cut_.end));
        if (from >= to) return {};

        shorten(*packet, from, to);
        const double begin = static_cast<double>(first + from) / static_cast<double>(rate);
        if (!cut_.shift) cut_.shift = begin;
        if (!cut_.heard) cut_.heard = begin;
        reach(static_cast<double>(first + to) / static_cast<double>(rate));
        Packets result;
        result.push_back(std::move(packet));
        return result;
    }

private:
    int bytesPerSample() const {
        const AVCodecParameters& codec = *stream_.codecpar;
        return std::max(1, av_get_exact_bits_per_sample(codec.codec_id) / 8 * codec.ch_layout.nb_channels);
    }
    int64_t sampleAt(double time) const {
        return std::llround(time * static_cast<double>(stream_.codecpar->sample_rate));
    }
    void shorten(AVPacket& packet, int64_t from, int64_t to) const {
        const AVRational perSample{1, stream_.codecpar->sample_rate};
        packet.data += from * bytesPerSample();
        packet.size = static_cast<int>((to - from) * bytesPerSample());
        if (packet.pts != AV_NOPTS_VALUE) packet.pts += av_rescale_q(from, perSample, stream_.time_base);
        packet.dts = packet.pts;
        packet.duration = av_rescale_q(to - from, perSample, stream_.time_base);
    }
};

// Sound in packets. Where the copy cannot hide a part of a packet, the cut is moved to the nearest edge
// between two packets.
class SoundTrack : public StreamTrack {
public:
    SoundTrack(const AVFormatContext& input, int stream, AVCodecParameters& codec, Cut& cut)
        : StreamTrack(input, stream, cut), codec_(codec) {
        if (codec.codec_id != AV_CODEC_ID_FLAC) return;
        flac_.emplace(codec);
        FlacStream::clearLength(codec);
    }

    Packets take(Packet packet) override {
        const Span span = spanOf(*packet);
        if (done_ || std::isnan(span.begin)) return {};
        if (!started_ && isBefore(span)) {
            before_ = std::move(packet);
            return {};
        }
        done_ = isAfter(span);
        if (done_ && (started_ || cut_.shift)) return {};
        // A part so small that no edge between packets lies in it: one packet is the best there is.
        if (done_ && before_ && !hidesInHeader() && !isOggVorbis()) packet = std::move(before_);
        Packets result;
        if (!started_) begin(*packet, result);
        give(std::move(packet), result);
        return result;
    }

    Packets finish() override {
        Packets result;
        if (!started_ && before_ && !cut_.shift) {
            cut_.shift = cut_.heard = spanOf(*before_).begin;
            give(std::move(before_), result);
        }
        if (flac_ && cut_.container == av::Container::Flac) result.push_back(flacHeader());
        return result;
    }

private:
    bool isOpus() const { return codec_.codec_id == AV_CODEC_ID_OPUS; }
    bool isOggVorbis() const { return inOgg() && codec_.codec_id == AV_CODEC_ID_VORBIS; }
    bool inOgg() const { return cut_.container == av::Container::Ogg; }
    bool inMp4() const { return cut_.container == av::Container::Mp4; }
    // The last page of an Ogg file tells where to stop within a packet; not all decoders of FLAC heed it.
    bool endsInPacket() const { return inOgg() && !flac_; }
    // Opus tells in its header how many of the first samples are not to be heard.
    bool hidesInHeader() const {
        const bool possible = inOgg() || cut_.container == av::Container::Matroska;
        return possible && isOpus() && cut_.onlySound && codec_.extradata_size >= 19;
    }
    // What a decoder needs before the cut to come into step, where an edit list hides it. A header that hides
    // something counts it as length, so there it is only the beginning of the first packet.
    double lead(Span span) const {
        if (!inMp4()) return 0;
        return isOpus() ? 0.08 : 2 * (span.end - span.begin);
    }

    bool isBefore(Span span) const {
        if (inMp4()) return span.end <= cut_.start - lead(span) + rounding;
        if (cut_.fromBeginning) return false;
        if (hidesInHeader()) return span.end <= cut_.start + rounding;
        if (!cut_.shift) return span.middle() < cut_.start;
        // With pictures, sound follows them; it may begin early only by what the decoder swallows.
        const double swallowed = isOpus() ? codec_.initial_padding / 48000.0 : 0;
        return span.begin < *cut_.shift - swallowed - rounding;
    }

    bool isAfter(Span span) const {
        if (cut_.toEnd) return false;
        return (inMp4() || endsInPacket() ? span.begin : span.middle()) >= cut_.end - rounding;
    }

    void begin(const AVPacket& first, Packets& result) {
        started_ = true;
        const Span span = spanOf(first);
        if (hidesInHeader() && !cut_.fromBeginning) {
            hide(cut_.start - span.begin);
            cut_.shift = cut_.heard = cut_.start;
        }
        // The first packet of Vorbis is not heard, it only leads in.
        if (isOggVorbis() && before_) result.push_back(std::move(before_));
        before_.reset();
        if (!cut_.shift) cut_.shift = cut_.fromBeginning ? std::max(0.0, av::startTime(input_)) : span.begin;
        if (!cut_.heard) cut_.heard = span.begin;
    }

    void hide(double time) {
        const auto samples = std::clamp<int64_t>(std::llround(time * 48000), 0, 0xFFFF);
        codec_.initial_padding = static_cast<int>(samples);
        AV_WL16(codec_.extradata + 10, static_cast<uint16_t>(samples));
    }

    void give(Packet packet, Packets& result) {
        const Span span = spanOf(*packet);
        if (flac_) flac_->take(*packet);
        const bool cutShort = endsInPacket() && !cut_.toEnd && span.end > cut_.end && cut_.end > span.begin;
        if (cutShort)
            packet->duration = std::max<int64_t>(1, av::ticks(cut_.end - span.begin, stream_.time_base));
        reach(cutShort ? cut_.end : span.end);
        result.push_back(std::move(packet));
    }

    // An empty packet that makes the muxer write its header anew.
    Packet flacHeader() const {
        const std::vector<uint8_t> header = flac_->header();
        Packet packet = av::newPacket();
        uint8_t* data = av_packet_new_side_data(packet.get(), AV_PKT_DATA_NEW_EXTRADATA, header.size());
        if (!data) throw std::bad_alloc();
        std::memcpy(data, header.data(), header.size());
        packet->stream_index = stream_.index;
        packet->pts = packet->dts = av::ticks(end(), stream_.time_base);
        return packet;
    }

    AVCodecParameters& codec_;
    std::optional<FlacStream> flac_;
    Packet before_; // The packet before the next one, until the copy begins.
    bool started_ = false;
};

// An MP3 file. Its header can hide the beginning of the first packet, but at least what a decoder delays, and
// its length counts whole packets. So the first packet is the one that leaves little more than that to hide,
// and as many follow as make up the length.
class Mp3Track : public StreamTrack {
public:
    Mp3Track(const AVFormatContext& input, int stream, AVCodecParameters& codec, Cut& cut)
        : StreamTrack(input, stream, cut), codec_(codec) {}

    Packets take(Packet packet) override {
        const Span span = spanOf(*packet);
        if (done_ || std::isnan(span.begin)) return {};
        if (!cut_.shift && !cut_.fromBeginning &&
            samples(cut_.start - span.begin) > samples(span.end - span.begin)) {
            before_ = std::move(packet);
            return {};
        }
        if (!cut_.shift) begin(*packet);
        const bool enough = span.begin - *cut_.shift >= cut_.end - cut_.start - rounding;
        done_ = !cut_.toEnd && enough && given_ >= fewestMp3Packets;
        if (done_) return {};
        ++given_;
        reach(span.end);
        Packets result;
        result.push_back(std::move(packet));
        return result;
    }

    Packets finish() override {
        Packets result;
        if (cut_.shift || !before_) return result;
        begin(*before_);
        reach(spanOf(*before_).end);
        result.push_back(std::move(before_));
        return result;
    }

private:
    static constexpr int64_t decoderDelay = 529;

    int64_t samples(double time) const { return std::llround(time * codec_.sample_rate); }

    void begin(const AVPacket& first) {
        const Span span = spanOf(first);
        const int64_t hidden = cut_.fromBeginning ? hiddenInSource(first) : hiddenAtCut(span);
        codec_.initial_padding = static_cast<int>(hidden);
        cut_.shift = span.begin;
        if (!cut_.heard) cut_.heard = span.begin + static_cast<double>(hidden) / codec_.sample_rate;
    }

    int64_t hiddenAtCut(Span span) const {
        const int64_t wanted = samples(cut_.start - span.begin);
        return std::clamp(wanted, decoderDelay, std::max(decoderDelay, samples(span.end - span.begin)));
    }
    int64_t hiddenInSource(const AVPacket& first) const {
        std::size_t size = 0;
        const uint8_t* data = av_packet_get_side_data(&first, AV_PKT_DATA_SKIP_SAMPLES, &size);
        if (data && size >= 10) return AV_RL32(data);
        return cut_.toEnd ? 0 : decoderDelay;
    }

    AVCodecParameters& codec_;
    Packet before_;
    int given_ = 0;
};

// Moving pictures. They come in the order of decoding; one that is shown after the end may still be needed
// for others shown before it.
class PictureTrack : public StreamTrack {
public:
    using StreamTrack::StreamTrack;

    Packets take(Packet packet) override {
        const Span span = spanOf(*packet);
        Packets result;
        if (done_ || (!started_ && !(packet->flags & AV_PKT_FLAG_KEY))) return result;
        if (isBefore(span)) return result;
        started_ = true;
        done_ = gaveSome_ && (isPast(*packet) || waiting_.size() >= mostWaiting);
        if (done_) return result;
        if (isAfter(span) && gaveSome_) {
            waiting_.push_back(std::move(packet));
            return result;
        }
        gaveSome_ = true;
        reach(span.end);
        for (Packet& needed : waiting_) {
            if (!inMp4()) squeeze(*needed);
            result.push_back(std::move(needed));
        }
        waiting_.clear();
        result.push_back(std::move(packet));
        return result;
    }

private:
    static constexpr std::size_t mostWaiting = 64;

    bool inMp4() const { return cut_.container == av::Container::Mp4; }
    bool isMain() const { return av::mainStream(input_) == stream_.index; }

    bool isBefore(Span span) const {
        // The others begin with whatever key frame is met first: what is too early is hidden in an MP4 file.
        if (cut_.fromBeginning || (inMp4() && !isMain())) return false;
        return span.begin < cut_.keyFrame - 1e-3;
    }
    bool isAfter(Span span) const {
        if (cut_.toEnd) return false;
        return (inMp4() ? span.begin : span.middle()) >= cut_.end - rounding;
    }
    // All that follow are shown after the end, as nothing is shown before it is decoded.
    bool isPast(const AVPacket& packet) const {
        return !cut_.toEnd && packet.dts != AV_NOPTS_VALUE &&
               av::seconds(packet.dts, stream_.time_base) >= cut_.end;
    }

    // Gives a picture that is only needed for others a place in the last moment, in the order of time.
    void squeeze(AVPacket& packet) {
        const int64_t end = av::ticks(cut_.end, stream_.time_base);
        const int64_t length = std::max<int64_t>(1, av::ticks(av::duration(input_, packet), stream_.time_base));
        const int64_t places = std::clamp<int64_t>(length / 2 - 1, 1, 16);
        const int64_t place = std::clamp<int64_t>((packet.pts - end) / length, 0, places - 1);
        packet.pts = end - places + place;
        packet.duration = places - place;
        reach(cut_.end);
    }

    std::vector<Packet> waiting_; // Shown after the end, and not yet known whether others need them.
    bool started_ = false;
    bool gaveSome_ = false;
};

// Subtitles: all that are shown at some time within the cut.
class SubtitleTrack : public StreamTrack {
public:
    using StreamTrack::StreamTrack;

    bool done() const override { return true; }

    Packets take(Packet packet) override {
        const double start = cut_.shift.value_or(cut_.start);
        const double limit = cut_.toEnd ? std::numeric_limits<double>::infinity() : cut_.end;
        const Span span = spanOf(*packet);
        const bool shown = span.begin < limit && (span.begin >= start || span.end > start);
        if (!shown || packet->pts == AV_NOPTS_VALUE) return {};
        const int64_t last = av::ticks(std::min(span.end, limit), stream_.time_base);
        packet->pts = std::max(packet->pts, av::ticks(start, stream_.time_base));
        packet->dts = packet->pts;
        packet->duration = last - packet->pts;
        Packets result;
        result.push_back(std::move(packet));
        return result;
    }
};

} // namespace

std::unique_ptr<Track> makeTrack(const AVFormatContext& input, int stream, AVCodecParameters& codec, Cut& cut) {
    const AVStream& source = *input.streams[stream];
    if (av::isVideo(source)) return std::make_unique<PictureTrack>(input, stream, cut);
    if (source.codecpar->codec_type == AVMEDIA_TYPE_SUBTITLE)
        return std::make_unique<SubtitleTrack>(input, stream, cut);
    if (!av::isAudio(source)) return nullptr;
    if (av::isPcm(source)) return std::make_unique<PcmTrack>(input, stream, cut);
    if (cut.container == av::Container::Mp3) return std::make_unique<Mp3Track>(input, stream, codec, cut);
    return std::make_unique<SoundTrack>(input, stream, codec, cut);
}

} // namespace trimstudio
