// SPDX-License-Identifier: MIT
#include <WindowSystem/Drawing.h>

namespace zr::port {

namespace {

bool suitsBetter(const ImageRepresentation& a, const ImageRepresentation& b, double scale,
                 Appearance appearance) {
    const bool aFits = a.appearance == appearance, bFits = b.appearance == appearance;
    if (aFits != bFits) return aFits;
    const bool aSuffices = a.scale >= scale, bSuffices = b.scale >= scale;
    if (aSuffices != bSuffices) return aSuffices;
    return aSuffices ? a.scale < b.scale : a.scale > b.scale;
}

} // namespace

const ImageRepresentation* bestRepresentation(const std::vector<ImageRepresentation>& representations,
                                              double scale, Appearance appearance) {
    const ImageRepresentation* best = nullptr;
    for (const auto& candidate : representations)
        if (!best || suitsBetter(candidate, *best, scale, appearance)) best = &candidate;
    return best;
}

} // namespace zr::port
