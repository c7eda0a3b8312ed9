// SPDX-License-Identifier: MIT
#include "FlacStream.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>

extern "C" {
#include <libavutil/crc.h>
}

namespace trimstudio {

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::size_t headerSize = 34;
constexpr std::size_t frameSizesAt = 4; // two numbers of 3 bytes
constexpr std::size_t lengthAt = 13;    // 4 low bits and 4 more bytes
constexpr std::size_t checksumAt = 18;  // 16 bytes

uint64_t lengthIn(const uint8_t* header) {
    uint64_t length = header[lengthAt] & 0x0FU;
    for (std::size_t i = 1; i <= 4; ++i) length = length << 8 | header[lengthAt + i];
    return length;
}

void setLength(uint8_t* header, uint64_t length) {
    if (length >> 36) length = 0; // more than the field holds: "unknown"
    header[lengthAt] = static_cast<uint8_t>((header[lengthAt] & 0xF0U) | (length >> 32));
    for (std::size_t i = 1; i <= 4; ++i) header[lengthAt + i] = static_cast<uint8_t>(length >> (32 - 8 * i));
}

void setFrameSizes(uint8_t* header, uint32_t smallest, uint32_t largest) {
    for (std::size_t i = 0; i < 3; ++i) {
        header[frameSizesAt + i] = static_cast<uint8_t>(smallest >> (16 - 8 * i));
        header[frameSizesAt + 3 + i] = static_cast<uint8_t>(largest >> (16 - 8 * i));
    }
}

// What is needed of the header of a frame.
struct Frame {
    bool countsSamples = false; // Numbered by its first sample, not by frames.
    std::size_t numberSize = 0;
    std::size_t headerSize = 0; // Without its checksum.
    uint64_t samples = 0;
};

constexpr std::size_t numberAt = 4;

std::size_t sizeOfNumber(uint8_t first) {
    std::size_t ones = 0;
    while (ones < 8 && (first & (0x80U >> ones))) ++ones;
    return ones == 0 ? 1 : ones;
}

std::optional<Frame> parse(const uint8_t* data, std::size_t size) {
    if (size < 16 || data[0] != 0xFF || (data[1] & 0xFEU) != 0xF8) return std::nullopt;
    const unsigned blockCode = data[2] >> 4U;
    const unsigned rateCode = data[2] & 0x0FU;
    Frame frame;
    frame.countsSamples = (data[1] & 1U) != 0;
    frame.numberSize = sizeOfNumber(data[numberAt]);
    if (frame.numberSize > 7 || blockCode == 0) return std::nullopt;

    std::size_t at = numberAt + frame.numberSize;
    if (blockCode == 1) frame.samples = 192;
    if (blockCode >= 2 && blockCode <= 5) frame.samples = 576U << (blockCode - 2);
    if (blockCode >= 8) frame.samples = 256U << (blockCode - 8);
    if (blockCode == 6) frame.samples = data[at] + 1U;
    if (blockCode == 7) frame.samples = (static_cast<unsigned>(data[at]) << 8 | data[at + 1]) + 1U;
    if (blockCode == 6 || blockCode == 7) at += blockCode - 5;
    if (rateCode == 12) at += 1;
    if (rateCode == 13 || rateCode == 14) at += 2;
    frame.headerSize = at;
    return at + 3 < size ? std::optional(frame) : std::nullopt;
}

// The variable length code of frame numbers: like UTF-8, up to 36 bits.
void appendNumber(Bytes& bytes, uint64_t number) {
    if (number < 0x80) {
        bytes.push_back(static_cast<uint8_t>(number));
        return;
    }
    unsigned more = 1; // bytes after the first, six bits in each
    while (number >> (6 * more + (6 - more))) ++more;
    const unsigned lead = 0xFFU << (7 - more) & 0xFFU;
    bytes.push_back(static_cast<uint8_t>((lead & ~(1U << (6 - more))) | number >> (6 * more)));
    for (unsigned i = more; i-- > 0;)
        bytes.push_back(static_cast<uint8_t>(0x80U | (number >> (6 * i) & 0x3FU)));
}

uint8_t headerChecksum(const Bytes& bytes) {
    return static_cast<uint8_t>(av_crc(av_crc_get_table(AV_CRC_8_ATM), 0, bytes.data(), bytes.size()));
}

void appendChecksum(Bytes& bytes) {
    // av_crc computes this one with the bytes swapped.
    const uint32_t crc = av_crc(av_crc_get_table(AV_CRC_16_ANSI), 0, bytes.data(), bytes.size());
    bytes.push_back(static_cast<uint8_t>(crc));
    bytes.push_back(static_cast<uint8_t>(crc >> 8));
}

Bytes renumbered(const uint8_t* data, std::size_t size, const Frame& frame, uint64_t number) {
    Bytes bytes(data, data + numberAt);
    bytes.reserve(size + 8);
    appendNumber(bytes, number);
    bytes.insert(bytes.end(), data + numberAt + frame.numberSize, data + frame.headerSize);
    bytes.push_back(headerChecksum(bytes));
    bytes.insert(bytes.end(), data + frame.headerSize + 1, data + size - 2);
    appendChecksum(bytes);
    return bytes;
}

void replaceData(AVPacket& packet, const Bytes& bytes) {
    AVBufferRef* buffer = av_buffer_alloc(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE);
    if (!buffer) throw std::bad_alloc();
    std::memcpy(buffer->data, bytes.data(), bytes.size());
    std::memset(buffer->data + bytes.size(), 0, AV_INPUT_BUFFER_PADDING_SIZE);
    av_buffer_unref(&packet.buf);
    packet.buf = buffer;
    packet.data = buffer->data;
    packet.size = static_cast<int>(bytes.size());
}

} // namespace

FlacStream::FlacStream(const AVCodecParameters& codec) {
    if (codec.extradata_size == static_cast<int>(headerSize))
        original_.assign(codec.extradata, codec.extradata + headerSize);
}

void FlacStream::clearLength(AVCodecParameters& codec) {
    if (codec.extradata_size != static_cast<int>(headerSize)) return;
    setLength(codec.extradata, 0);
    setFrameSizes(codec.extradata, 0, 0);
    std::memset(codec.extradata + checksumAt, 0, headerSize - checksumAt);
}

void FlacStream::take(AVPacket& packet) {
    const auto size = static_cast<std::size_t>(packet.size);
    const std::optional<Frame> frame = parse(packet.data, size);
    if (!frame) return;
    replaceData(packet, renumbered(packet.data, size, *frame, frame->countsSamples ? samples_ : frames_));
    samples_ += frame->samples;
    frames_ += 1;
    smallest_ = std::min(smallest_, static_cast<uint32_t>(packet.size));
    largest_ = std::max(largest_, static_cast<uint32_t>(packet.size));
}

std::vector<uint8_t> FlacStream::header() const {
    Bytes header = original_;
    if (header.empty() || lengthIn(header.data()) == samples_) return header; // a whole copy keeps its checksum
    setLength(header.data(), samples_);
    setFrameSizes(header.data(), frames_ > 0 ? smallest_ : 0, largest_);
    std::fill(header.begin() + checksumAt, header.end(), uint8_t{0});
    return header;
}

} // namespace trimstudio
