// SPDX-License-Identifier: MIT
#include "KeyFrames.h"
#include "StartFinder.h"

#include <algorithm>

namespace trimstudio {

StartFinder::StartFinder(MediaFile file) : file_(std::move(file)) {}
StartFinder::StartFinder(StartFinder&&) noexcept = default;
StartFinder& StartFinder::operator=(StartFinder&&) noexcept = default;
StartFinder::~StartFinder() = default;

double StartFinder::realStart(double start) {
    if (!file_.startsAtKeyFrames || !(start > 0)) return start;
    if (!keyFrames_) keyFrames_ = std::make_unique<KeyFrames>(file_.path);
    const std::optional<double> key = keyFrames_->atOrBefore(start);
    return key ? std::max(0.0, *key) : start;
}

} // namespace trimstudio
