// SPDX-License-Identifier: MIT
#include "KeyFrames.h"

#include <cmath>
#include <limits>

namespace trimstudio {

namespace {

// Time stamps come in milliseconds in some formats; a start that was taken from one must find it again.
constexpr double rounding = 1e-3;

} // namespace

KeyFrames::KeyFrames(std::filesystem::path path) : path_(std::move(path)) {
    Outcome<av::Input> opened = av::openInput(path_);
    if (!opened) return;
    input_ = std::move(opened.value());
    const int main = av::mainStream(*input_);
    if (main >= 0 && av::isVideo(*input_->streams[main])) stream_ = main;
}

std::optional<double> KeyFrames::atOrBefore(double time) {
    if (!input_ || stream_ < 0) return std::nullopt;
    const std::optional<double> known = remembered(time);
    return known ? known : search(time);
}

std::optional<double> KeyFrames::remembered(double time) const {
    auto after = nextByKeyFrame_.upper_bound(time + rounding);
    if (after == nextByKeyFrame_.begin()) return std::nullopt;
    const auto& [key, next] = *std::prev(after);
    return time + rounding < next ? std::optional(key) : std::nullopt;
}

std::optional<double> KeyFrames::search(double time) {
    const double origin = av::startTime(*input_);
    if (!av::moveBefore(input_, path_, stream_, origin + time)) return std::nullopt;
    av::readOnly(*input_, stream_);
    std::optional<double> found;
    while (const av::Packet packet = av::readPacket(*input_)) {
        if (packet->stream_index != stream_ || !(packet->flags & AV_PKT_FLAG_KEY)) continue;
        const double stamp = av::time(*input_, *packet);
        if (std::isnan(stamp)) continue;
        const double key = stamp - origin;
        if (found) nextByKeyFrame_[*found] = key;
        if (key > time + rounding && found) return found;
        found = key;
        if (key > time + rounding) return found;
    }
    if (found) nextByKeyFrame_[*found] = std::numeric_limits<double>::infinity();
    return found;
}

} // namespace trimstudio
