// SPDX-License-Identifier: MIT
#include "EditLists.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace trimstudio {

namespace {

constexpr uint32_t code(const char (&name)[5]) {
    return static_cast<uint32_t>(name[0]) << 24 | static_cast<uint32_t>(name[1]) << 16 |
           static_cast<uint32_t>(name[2]) << 8 | static_cast<uint32_t>(name[3]);
}

// Big-endian numbers in a file. After a failure all numbers are 0 and nothing more is written.
class Numbers {
public:
    explicit Numbers(int descriptor) : descriptor_(descriptor) {}

    bool good() const { return good_; }

    uint64_t read(off_t at, std::size_t width) {
        std::array<uint8_t, 8> bytes{};
        good_ = good_ && ::pread(descriptor_, bytes.data(), width, at) == static_cast<ssize_t>(width);
        uint64_t value = 0;
        for (std::size_t i = 0; i < width; ++i) value = value << 8 | bytes[i];
        return good_ ? value : 0;
    }
    void write(off_t at, std::size_t width, uint64_t value) {
        std::array<uint8_t, 8> bytes{};
        for (std::size_t i = width; i-- > 0; value >>= 8) bytes[i] = static_cast<uint8_t>(value);
        good_ = good_ && ::pwrite(descriptor_, bytes.data(), width, at) == static_cast<ssize_t>(width);
    }

private:
    int descriptor_;
    bool good_ = true;
};

struct Box {
    off_t begin = 0; // After size and name.
    off_t end = 0;
};

std::vector<Box> boxes(Numbers& file, Box in, uint32_t name) {
    std::vector<Box> found;
    for (off_t at = in.begin; at + 8 <= in.end;) {
        off_t header = 8;
        auto size = static_cast<off_t>(file.read(at, 4));
        if (size == 1) {
            header = 16;
            size = static_cast<off_t>(file.read(at + 8, 8));
        }
        if (size < header || size > in.end - at) break;
        if (file.read(at + 4, 4) == name) found.push_back({at + header, at + size});
        at += size;
    }
    return found;
}

std::optional<Box> box(Numbers& file, Box in, uint32_t name) {
    const std::vector<Box> found = boxes(file, in, name);
    return found.empty() ? std::nullopt : std::optional(found.front());
}

bool isWide(Numbers& file, Box full) { return file.read(full.begin, 1) == 1; }

// Shortens the edits of one track and returns how long they are together.
uint64_t limitEdits(Numbers& file, Box list, uint64_t limit) {
    const bool wide = isWide(file, list);
    const std::size_t width = wide ? 8 : 4;
    const off_t entry = wide ? 20 : 12;
    const uint64_t count = file.read(list.begin + 4, 4);
    uint64_t total = 0;
    off_t at = list.begin + 8;
    for (uint64_t i = 0; i < count && at + entry <= list.end; ++i, at += entry) {
        const uint64_t length = std::min(file.read(at, width), limit - total);
        file.write(at, width, length);
        total += length;
    }
    return total;
}

// Limits the edits of a track, tells its header, and returns the length.
uint64_t limitTrack(Numbers& file, Box track, uint64_t limit) {
    const std::optional<Box> header = box(file, track, code("tkhd"));
    const std::optional<Box> edits = box(file, track, code("edts"));
    const std::optional<Box> list = edits ? box(file, *edits, code("elst")) : std::nullopt;
    if (!header || !list) return 0;
    const uint64_t length = limitEdits(file, *list, limit);
    const bool wide = isWide(file, *header);
    file.write(header->begin + (wide ? 28 : 20), wide ? 8 : 4, length);
    return length;
}

bool limitMovie(Numbers& file, Box movie, double seconds) {
    const std::optional<Box> header = box(file, movie, code("mvhd"));
    if (!header) return false;
    const bool wide = isWide(file, *header);
    const auto perSecond = static_cast<double>(file.read(header->begin + (wide ? 20 : 12), 4));
    const auto limit = static_cast<uint64_t>(std::llround(seconds * perSecond));
    uint64_t longest = 0;
    for (const Box track : boxes(file, movie, code("trak")))
        longest = std::max(longest, limitTrack(file, track, limit));
    if (longest == 0) return false;
    file.write(header->begin + (wide ? 24 : 16), wide ? 8 : 4, longest);
    return file.good();
}

} // namespace

bool limitEditLists(int descriptor, double seconds) {
    struct stat facts {};
    if (::fstat(descriptor, &facts) != 0) return false;
    Numbers file(descriptor);
    const std::optional<Box> movie = box(file, Box{0, facts.st_size}, code("moov"));
    return movie && limitMovie(file, *movie, seconds);
}

} // namespace trimstudio
