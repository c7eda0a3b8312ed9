// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSURL.h>

#include <cstdint>
#include <optional>

namespace zr {

// Small helpers of the base library.
class ZR_EXPORT GlobalFun {
public:
    // The whole seconds of a time, without their fraction, as hours, minutes and seconds. Of a negative time
    // each part is negative or 0, so that hours * 3600 + minutes * 60 + seconds gives the whole seconds back.
    // Hours stay within their range; what is no number gives 0.
    static void getHour_minite_second_withTime(std::int32_t& hour, std::int32_t& minute, std::int32_t& second,
                                               double seconds);

    // Data, made with security scope, by which later runs of the program find the item again; nothing where it
    // cannot be told from others, or is not there.
    static std::optional<NSData> BookmarkDataForURL(const NSURL& url);
};

} // namespace zr
