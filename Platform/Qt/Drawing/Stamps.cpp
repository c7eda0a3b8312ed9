// SPDX-License-Identifier: MIT
#include "Stamps.h"

#include <QPainter>

#include <array>
#include <cmath>
#include <map>

namespace zr::qt {

namespace {

constexpr double kLargest = 96;
constexpr std::size_t kMostStamps = 512;

// The shape that is painted, then where the part to keep begins and how large it is.
using Key = std::array<double, 10>;

// The images are never changed, so what a caller holds stays valid when the table is emptied.
std::map<Key, QImage>& table() {
    static auto& stamps = *new std::map<Key, QImage>;
    return stamps;
}

QImage stamp(const QRectF& shape, double xRadius, double yRadius, QPoint from, QSize size,
             const QColor& colour) {
    auto& stamps = table();
    const auto rgba = static_cast<quint64>(colour.rgba64());
    const Key key = {
        shape.x(), shape.y(),        shape.width(),        shape.height(),     xRadius,
        yRadius,   double(from.x()), double(size.width()), double(rgba >> 32), double(rgba & 0xffffffff)};
    if (const auto found = stamps.find(key); found != stamps.end()) return found->second;
    if (stamps.size() >= kMostStamps) stamps.clear();
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-from);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(shape, xRadius, yRadius);
    painter.end();
    return stamps.emplace(key, std::move(image)).first->second;
}

double quarter(double position) { return std::round(position * 4) / 4; }

} // namespace

bool canBeStamped(QSizeF size) {
    return size.width() > 0 && size.height() > 0 && size.width() <= kLargest && size.height() <= kLargest;
}

Stamp ovalStamp(const QRectF& oval, const QColor& colour) {
    const QPointF corner(quarter(oval.x()), quarter(oval.y()));
    const QPoint topLeft(static_cast<int>(std::floor(corner.x())), static_cast<int>(std::floor(corner.y())));
    const QRectF shape(corner - topLeft, oval.size());
    const QSize size(static_cast<int>(std::ceil(shape.right())), static_cast<int>(std::ceil(shape.bottom())));
    return {stamp(shape, oval.width() / 2, oval.height() / 2, {0, 0}, size, colour), topLeft};
}

std::optional<BarStamps> barStamps(const QRectF& bar, double xRadius, double yRadius, const QColor& colour) {
    const double left = quarter(bar.left()), right = quarter(bar.right());
    const int first = static_cast<int>(std::floor(left)), end = static_cast<int>(std::ceil(right));
    const int round = static_cast<int>(std::ceil(xRadius)) + 1; // columns of an end
    if (end - first < 2 * round) return std::nullopt;
    const int top = static_cast<int>(bar.top()), height = static_cast<int>(bar.height());
    // Each end is cut from a bar just long enough for both.
    const QSize size(round, height);
    const QRectF leftBar(left - first, 0, 2 * round, height);
    const QRectF rightBar(right - end, 0, 2 * round, height);
    return BarStamps{{stamp(leftBar, xRadius, yRadius, {0, 0}, size, colour), {first, top}},
                     {stamp(rightBar, xRadius, yRadius, {round, 0}, size, colour), {end - round, top}},
                     QRect(first + round, top, end - first - 2 * round, height)};
}

} // namespace zr::qt
