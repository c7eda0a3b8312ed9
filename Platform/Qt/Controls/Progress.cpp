// SPDX-License-Identifier: MIT
#include "Progress.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace zr::qt {

ProgressBarWidget::ProgressBarWidget(port::ViewPeer& superview, port::ViewClient& viewClient)
    : WidgetOf(superview, viewClient) {
    setTextVisible(false);
}

void ProgressBarWidget::setProgress(const port::Progress& progress) {
    constexpr int kSteps = 10'000;
    // Qt's bar is busy while its range is empty.
    const bool busy = progress.indeterminate && progress.running;
    setRange(0, busy ? 0 : kSteps);
    if (!busy) setValue(progress.indeterminate ? 0 : qRound(progress.fraction * kSteps));
}

namespace {
constexpr int kSpokes = 12;
}

void SpinnerWidget::setProgress(const port::Progress& progress) {
    constexpr int kMillisecondsForASpoke = 80;
    progress_ = progress;
    const bool turns = progress.indeterminate && progress.running;
    if (turns && timer_ == 0) timer_ = startTimer(kMillisecondsForASpoke);
    if (!turns && timer_ != 0) killTimer(std::exchange(timer_, 0));
    update();
}

void SpinnerWidget::timerEvent(QTimerEvent*) {
    turned_ = (turned_ + 1) % kSpokes;
    update();
}

void SpinnerWidget::paintEvent(QPaintEvent*) {
    if (!progress_.visible) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double size = std::min(width(), height());
    painter.translate(width() / 2.0, height() / 2.0);
    QColor colour = palette().color(QPalette::WindowText);
    if (!progress_.indeterminate) {
        // A slice, clockwise from the top.
        constexpr double kTop = 90 * 16, kWhole = 360 * 16;
        const QRectF circle(-size / 2 + 1, -size / 2 + 1, size - 2, size - 2);
        colour.setAlphaF(0.25f);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawEllipse(circle);
        colour.setAlphaF(0.8f);
        painter.setBrush(colour);
        painter.drawPie(circle, int(kTop), -qRound(kWhole * progress_.fraction));
        return;
    }
    for (int spoke = 0; spoke < kSpokes; ++spoke) {
        // The one it has come to is the darkest.
        const int behind = (turned_ - spoke + kSpokes) % kSpokes;
        colour.setAlphaF(progress_.running ? 0.85f - 0.065f * float(behind) : 0.35f);
        painter.setPen(QPen(colour, size * 0.09, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(360.0 / kSpokes * spoke);
        painter.drawLine(QPointF(0, -size * 0.26), QPointF(0, -size * 0.42));
        painter.restore();
    }
}

} // namespace zr::qt
