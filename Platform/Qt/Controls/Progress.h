// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Controls.h>
#include <ZRUIKitQt/PeerOf.h>

#include <QProgressBar>

namespace zr::qt {

// A bar that fills, or goes to and fro.
class ProgressBarWidget final : public WidgetOf<QProgressBar> {
public:
    ProgressBarWidget(port::ViewPeer& superview, port::ViewClient& viewClient);
    void setProgress(const port::Progress& progress);
};

// Something round that turns, or fills.
class SpinnerWidget final : public WidgetOf<QWidget> {
public:
    using WidgetOf::WidgetOf;
    void setProgress(const port::Progress& progress);

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    port::Progress progress_;
    int timer_ = 0;
    int turned_ = 0; // spokes
};

template <class Kind, class Widget>
class ProgressPeerOf final : public PeerOf<Kind, Widget> {
public:
    ProgressPeerOf(port::ViewPeer& superview, port::ViewClient& viewClient, const typename Kind::Parts&)
        : PeerOf<Kind, Widget>(new Widget(superview, viewClient)) {}
    void setProgress(const port::Progress& progress) override {
        if (this->widget_) this->widget_->setProgress(progress);
    }
};

using ProgressPeer = ProgressPeerOf<port::ProgressPeer, ProgressBarWidget>;
using SpinnerPeer = ProgressPeerOf<port::SpinnerPeer, SpinnerWidget>;

} // namespace zr::qt
