// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>

#include <optional>

namespace zr::qt {

// Small antialiased shapes, painted once for each size, colour and quarter of a device pixel, and then copied:
// much cheaper than painting them each time. Lengths in device pixels. Main thread only.

// Whether the shape is small enough to be kept.
bool canBeStamped(QSizeF size);

struct Stamp {
    QImage image;
    QPoint topLeft; // where it goes
};

Stamp ovalStamp(const QRectF& oval, const QColor& colour);

// The round ends of a bar whose top and height are whole numbers. What lies between them is plain colour.
struct BarStamps {
    Stamp left, right;
    QRect middle; // empty when the ends meet
};
// Nothing for a bar too short for its ends.
std::optional<BarStamps> barStamps(const QRectF& bar, double xRadius, double yRadius, const QColor& colour);

} // namespace zr::qt
