// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSCoder.h>

namespace zr::test {

// An archived view of which nothing but the frame is known.
class FrameArchive : public NSCoder {
public:
    explicit FrameArchive(const NSRect& frame) : frame_(frame) {}
    std::optional<NSRect> decodeRectForKey(std::string_view key) const override {
        return key == "NSFrame" ? std::optional(frame_) : std::nullopt;
    }
    std::optional<double> decodeDoubleForKey(std::string_view) const override { return std::nullopt; }
    std::optional<bool> decodeBoolForKey(std::string_view) const override { return std::nullopt; }

private:
    NSRect frame_;
};

} // namespace zr::test
