// SPDX-License-Identifier: MIT
#include "Muxer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <new>
#include <string_view>

extern "C" {
#include <libavutil/base64.h>
#include <libavutil/intreadwrite.h>
}

namespace trimstudio {

namespace {

std::string lowerExtension(const std::filesystem::path& path) {
    std::string text = path.extension().string();
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

const char* mp4Muxer(const AVFormatContext& input, std::string_view extension) {
    const AVDictionaryEntry* brand = av_dict_get(input.metadata, "major_brand", nullptr, 0);
    if (brand && std::string_view(brand->value).substr(0, 2) == "qt") return "mov";
    return extension == ".m4a" || extension == ".m4b" ? "ipod" : "mp4";
}

const char* muxerName(const AVFormatContext& input, std::string_view extension) {
    switch (av::container(input)) {
    case av::Container::Wav:
        return "wav";
    case av::Container::Flac:
        return "flac";
    case av::Container::Ogg:
        return "ogg";
    case av::Container::Mp3:
        return "mp3";
    case av::Container::Aac:
        return "adts";
    case av::Container::Mp4:
        return mp4Muxer(input, extension);
    case av::Container::Matroska:
        break;
    }
    return extension == ".webm" ? "webm" : "matroska";
}

bool accepts(const AVOutputFormat& format, const AVStream& stream) {
    return avformat_query_codec(&format, stream.codecpar->codec_id, FF_COMPLIANCE_EXPERIMENTAL) != 0;
}

bool acceptsAll(const AVOutputFormat& format, const AVFormatContext& input) {
    for (unsigned i = 0; i < input.nb_streams; ++i) {
        const AVStream& stream = *input.streams[i];
        if ((av::isAudio(stream) || av::isVideo(stream)) && !accepts(format, stream)) return false;
    }
    return true;
}

const AVOutputFormat* chooseFormat(const AVFormatContext& input, std::string_view extension) {
    const AVOutputFormat* format = av_guess_format(muxerName(input, extension), nullptr, nullptr);
    if (format && acceptsAll(*format, input)) return format;
    // QuickTime takes some kinds of sound that are found in MP4 files but that the MP4 muxer refuses.
    const bool mp4 = av::container(input) == av::Container::Mp4;
    format = mp4 ? av_guess_format("mov", nullptr, nullptr) : nullptr;
    return format && acceptsAll(*format, input) ? format : nullptr;
}

// Tags that tell how long the original is, or were computed from all of it.
bool tellsOldLength(std::string_view key) {
    static constexpr std::array<std::string_view, 9> starts{"TLEN",    "iTunSMPB",         "DURATION",
                                                            "BPS",     "NUMBER_OF_FRAMES", "NUMBER_OF_BYTES",
                                                            "_STATIS", "SOURCE_ID",        "encoder-delay"};
    return std::any_of(starts.begin(), starts.end(),
                       [&](auto start) { return key.substr(0, start.size()) == start; });
}

void copyTags(AVDictionary** to, const AVDictionary* from) {
    const AVDictionaryEntry* tag = nullptr;
    while ((tag = av_dict_get(from, "", tag, AV_DICT_IGNORE_SUFFIX)) != nullptr)
        if (!tellsOldLength(tag->key)) av_dict_set(to, tag->key, tag->value, 0);
}

void copySideData(AVStream& to, const AVStream& from) {
    for (int i = 0; i < from.nb_side_data; ++i) {
        const AVPacketSideData& data = from.side_data[i];
        uint8_t* copy = av_stream_new_side_data(&to, data.type, data.size);
        if (!copy) throw std::bad_alloc();
        std::memcpy(copy, data.data, data.size);
    }
}

bool knowsTag(const AVOutputFormat& format, const AVCodecParameters& codec) {
    return format.codec_tag && av_codec_get_id(format.codec_tag, codec.codec_tag) == codec.codec_id;
}

AVStream& newStream(AVFormatContext& context, const AVStream& source) {
    AVStream* stream = avformat_new_stream(&context, nullptr);
    if (!stream || avcodec_parameters_copy(stream->codecpar, source.codecpar) < 0) throw std::bad_alloc();
    if (!knowsTag(*context.oformat, *source.codecpar)) stream->codecpar->codec_tag = 0;
    stream->disposition = source.disposition;
    copyTags(&stream->metadata, source.metadata);
    return *stream;
}

const char* pictureType(AVCodecID codec) {
    switch (codec) {
    case AV_CODEC_ID_PNG:
        return "image/png";
    case AV_CODEC_ID_GIF:
        return "image/gif";
    case AV_CODEC_ID_WEBP:
        return "image/webp";
    case AV_CODEC_ID_BMP:
        return "image/bmp";
    default:
        return "image/jpeg";
    }
}

bool fitsMp4Cover(AVCodecID codec) {
    return codec == AV_CODEC_ID_MJPEG || codec == AV_CODEC_ID_PNG || codec == AV_CODEC_ID_BMP;
}

void setDefaultTag(AVDictionary** tags, const char* key, const char* value) {
    av_dict_set(tags, key, value, AV_DICT_DONT_OVERWRITE);
}

void append32(std::vector<uint8_t>& bytes, std::size_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<uint8_t>(value >> shift));
}

// A cover picture in the form that FLAC and Ogg files share.
std::vector<uint8_t> pictureBlock(const AVStream& stream) {
    constexpr std::size_t frontCover = 3;
    const std::string_view type = pictureType(stream.codecpar->codec_id);
    const AVDictionaryEntry* title = av_dict_get(stream.metadata, "title", nullptr, 0);
    const std::string_view name = title ? title->value : "";
    std::vector<uint8_t> bytes;
    append32(bytes, frontCover);
    append32(bytes, type.size());
    bytes.insert(bytes.end(), type.begin(), type.end());
    append32(bytes, name.size());
    bytes.insert(bytes.end(), name.begin(), name.end());
    append32(bytes, static_cast<std::size_t>(std::max(0, stream.codecpar->width)));
    append32(bytes, static_cast<std::size_t>(std::max(0, stream.codecpar->height)));
    append32(bytes, 24); // bits per pixel
    append32(bytes, 0);  // no palette
    append32(bytes, static_cast<std::size_t>(stream.attached_pic.size));
    bytes.insert(bytes.end(), stream.attached_pic.data, stream.attached_pic.data + stream.attached_pic.size);
    return bytes;
}

std::string base64(const std::vector<uint8_t>& bytes) {
    std::string text(AV_BASE64_SIZE(bytes.size()), '\0');
    av_base64_encode(text.data(), static_cast<int>(text.size()), bytes.data(), static_cast<int>(bytes.size()));
    text.resize(std::strlen(text.c_str()));
    return text;
}

} // namespace

Outcome<std::unique_ptr<Muxer>> Muxer::create(const AVFormatContext& input, OutputFile& file,
                                              const std::filesystem::path& source) {
    const AVOutputFormat* format = chooseFormat(input, lowerExtension(source));
    if (!format) return Failure{av::quoted(source) + " holds a kind of sound or picture that cannot be saved."};
    AVFormatContext* context = nullptr;
    if (avformat_alloc_output_context2(&context, format, nullptr, nullptr) < 0) throw std::bad_alloc();
    return std::unique_ptr<Muxer>(new Muxer(input, context, file));
}

Muxer::Muxer(const AVFormatContext& input, AVFormatContext* context, OutputFile& file)
    : input_(input), context_(context), outputs_(input.nb_streams) {
    context_->pb = file.io();
    context_->flags |= AVFMT_FLAG_CUSTOM_IO;
    // The tracks have put the times where they belong, some of them before 0.
    context_->avoid_negative_ts = AVFMT_AVOID_NEG_TS_DISABLED;
    context_->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
    copyTags(&context_->metadata, input.metadata);
    addStreams();
}

Muxer::~Muxer() { avformat_free_context(context_); }

AVCodecParameters* Muxer::codec(int stream) const {
    const auto index = static_cast<std::size_t>(stream);
    if (index >= outputs_.size() || !outputs_[index].stream) return nullptr;
    return outputs_[index].stream->codecpar;
}

void Muxer::addStreams() {
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
        const AVStream& source = *input_.streams[i];
        const AVMediaType type = source.codecpar->codec_type;
        if (av::isPicture(source)) addPicture(source, outputs_[i]);
        if (av::isAudio(source) || av::isVideo(source)) addStream(source, outputs_[i]);
        if (type == AVMEDIA_TYPE_SUBTITLE &&
            avformat_query_codec(context_->oformat, source.codecpar->codec_id, FF_COMPLIANCE_EXPERIMENTAL) == 1)
            addStream(source, outputs_[i]);
        if (type == AVMEDIA_TYPE_ATTACHMENT && av::container(input_) == av::Container::Matroska)
            newStream(*context_, source);
    }
}

void Muxer::addStream(const AVStream& source, Output& output) {
    AVStream& stream = newStream(*context_, source);
    stream.time_base = source.time_base;
    stream.avg_frame_rate = source.avg_frame_rate;
    stream.r_frame_rate = source.r_frame_rate;
    stream.sample_aspect_ratio = source.sample_aspect_ratio;
    copySideData(stream, source);
    output.stream = &stream;
}

void Muxer::addPicture(const AVStream& source, Output& output) {
    if (source.attached_pic.size <= 0) return;
    switch (av::container(input_)) {
    case av::Container::Matroska:
        addPictureAsAttachment(source);
        break;
    case av::Container::Ogg:
        addPictureAsComment(source);
        break;
    case av::Container::Mp4:
        if (fitsMp4Cover(source.codecpar->codec_id)) addStream(source, output);
        break;
    case av::Container::Flac:
    case av::Container::Mp3:
        if (accepts(*context_->oformat, source)) addStream(source, output);
        break;
    default:
        break;
    }
}

void Muxer::addPictureAsAttachment(const AVStream& source) {
    AVStream& stream = newStream(*context_, source);
    AVCodecParameters& codec = *stream.codecpar;
    const auto size = static_cast<std::size_t>(source.attached_pic.size);
    codec.codec_type = AVMEDIA_TYPE_ATTACHMENT;
    stream.disposition = 0;
    av_freep(&codec.extradata);
    codec.extradata = static_cast<uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!codec.extradata) throw std::bad_alloc();
    std::memcpy(codec.extradata, source.attached_pic.data, size);
    codec.extradata_size = source.attached_pic.size;
    setDefaultTag(&stream.metadata, "mimetype", pictureType(codec.codec_id));
    setDefaultTag(&stream.metadata, "filename", "cover");
}

void Muxer::addPictureAsComment(const AVStream& source) {
    const std::string text = base64(pictureBlock(source));
    for (Output& output : outputs_)
        if (output.stream) {
            av_dict_set(&output.stream->metadata, "METADATA_BLOCK_PICTURE", text.c_str(), AV_DICT_MULTIKEY);
            return;
        }
}

void Muxer::addChapters(const Cut& cut) {
    if (input_.nb_chapters == 0) return;
    context_->chapters = static_cast<AVChapter**>(av_calloc(input_.nb_chapters, sizeof(AVChapter*)));
    if (!context_->chapters) throw std::bad_alloc();
    for (unsigned i = 0; i < input_.nb_chapters; ++i) {
        const AVChapter& source = *input_.chapters[i];
        const double begin = std::max(av::seconds(source.start, source.time_base), *cut.shift);
        const double end = std::min(av::seconds(source.end, source.time_base), cut.end);
        if (!(end > begin)) continue;
        auto* chapter = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
        if (!chapter) throw std::bad_alloc();
        chapter->id = source.id;
        chapter->time_base = source.time_base;
        chapter->start = av::ticks(begin - *cut.shift, source.time_base);
        chapter->end = av::ticks(end - *cut.shift, source.time_base);
        av_dict_copy(&chapter->metadata, source.metadata, 0);
        context_->chapters[context_->nb_chapters++] = chapter;
    }
}

int Muxer::begin(const Cut& cut) {
    begun_ = true;
    addChapters(cut);
    AVDictionary* options = nullptr;
    if (cut.container == av::Container::Wav) av_dict_set(&options, "rf64", "auto", 0);
    // Edit lists count in this unit; with the usual milliseconds they would miss the edges of pictures.
    if (cut.container == av::Container::Mp4) av_dict_set(&options, "movie_timescale", "90000", 0);
    // A source without that header is copied whole without it: it would hide some samples.
    const bool plainMp3 = cut.container == av::Container::Mp3 && cut.toEnd && hidesNothing();
    if (plainMp3) av_dict_set(&options, "write_xing", "0", 0);
    const bool titled = av_dict_count(context_->metadata) > 0;
    if (cut.container == av::Container::Aac && titled) av_dict_set(&options, "write_id3v2", "1", 0);
    const int error = avformat_write_header(context_, &options);
    av_dict_free(&options);
    return error < 0 ? error : writePictures();
}

bool Muxer::hidesNothing() const {
    return std::none_of(outputs_.begin(), outputs_.end(), [](const Output& output) {
        return output.stream && output.stream->codecpar->initial_padding > 0;
    });
}

int Muxer::writePictures() {
    for (std::size_t i = 0; i < outputs_.size(); ++i) {
        const AVStream& source = *input_.streams[i];
        if (!outputs_[i].stream || !av::isPicture(source)) continue;
        const av::Packet packet = av::newPacket();
        if (const int error = av_packet_ref(packet.get(), &source.attached_pic); error < 0) return error;
        packet->stream_index = outputs_[i].stream->index;
        packet->pts = packet->dts = 0;
        if (const int error = av_interleaved_write_frame(context_, packet.get()); error < 0) return error;
    }
    return 0;
}

void Muxer::repairDts(AVPacket& packet, Output& output) const {
    const int64_t step = std::max<int64_t>(1, packet.duration);
    const bool first = output.lastDts == AV_NOPTS_VALUE;
    if (packet.dts == AV_NOPTS_VALUE)
        packet.dts = first ? packet.pts - step * output.stream->codecpar->video_delay : output.lastDts + step;
    packet.dts = std::min(packet.dts, packet.pts);
    if (!first) packet.dts = std::max(packet.dts, output.lastDts + 1);
    packet.pts = std::max(packet.pts, packet.dts);
    output.lastDts = packet.dts;
}

int64_t Muxer::codecDelay(const AVStream& stream, AVRational unit) const {
    // Matroska counts from before what an Opus decoder swallows, and the muxer leaves that to its user.
    const bool counted =
        av::container(input_) == av::Container::Matroska && stream.codecpar->codec_id == AV_CODEC_ID_OPUS;
    return counted ? av_rescale_q(stream.codecpar->initial_padding, AVRational{1, 48000}, unit) : 0;
}

int Muxer::write(av::Packet packet, const Cut& cut) {
    Output& output = outputs_[static_cast<std::size_t>(packet->stream_index)];
    const AVRational unit = input_.streams[packet->stream_index]->time_base;
    if (!begun_)
        if (const int error = begin(cut); error < 0) return error;

    const int64_t shift = av::ticks(*cut.shift, unit);
    if (packet->pts == AV_NOPTS_VALUE) packet->pts = packet->dts;
    if (packet->pts == AV_NOPTS_VALUE) packet->pts = shift;
    packet->pts -= shift;
    if (packet->dts != AV_NOPTS_VALUE) packet->dts -= shift;
    const int64_t swallowed = codecDelay(*output.stream, unit);
    packet->pts += swallowed;
    if (packet->dts != AV_NOPTS_VALUE) packet->dts += swallowed;
    av_packet_rescale_ts(packet.get(), unit, output.stream->time_base);
    repairDts(*packet, output);
    packet->stream_index = output.stream->index;
    packet->pos = -1;
    return av_interleaved_write_frame(context_, packet.get());
}

int Muxer::finish() { return av_write_trailer(context_); }

} // namespace trimstudio
