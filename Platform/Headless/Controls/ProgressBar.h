// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Controls.h>
#include <ZRUIKitHeadless/View.h>

namespace zr::headless {

// What both kinds show.
class ShowsProgress {
public:
    virtual ~ShowsProgress() = default;
    port::Progress progress;
};

template <class Kind>
class ProgressOf final : public PeerOf<Kind>, public ShowsProgress {
public:
    ProgressOf(port::ViewPeer& superview, port::ViewClient& viewClient, const typename Kind::Parts&)
        : PeerOf<Kind>(superview, viewClient) {}

    void setProgress(const port::Progress& now) override {
        progress = now;
        this->dirty = true;
    }
    std::vector<std::string> traits() const override {
        return progress.running ? std::vector<std::string>{"running"} : std::vector<std::string>();
    }
};

using ProgressBar = ProgressOf<port::ProgressPeer>;
using Spinner = ProgressOf<port::SpinnerPeer>;

} // namespace zr::headless
