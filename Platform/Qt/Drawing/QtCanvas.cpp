// SPDX-License-Identifier: MIT
#include "QtCanvas.h"
#include "Stamps.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace zr::qt {

namespace {

QPainter::CompositionMode modeFor(NSCompositingOperation operation) {
    switch (operation) {
    case NSCompositingOperationClear:
        return QPainter::CompositionMode_Clear;
    case NSCompositingOperationCopy:
        return QPainter::CompositionMode_Source;
    case NSCompositingOperationSourceOver:
        break;
    }
    return QPainter::CompositionMode_SourceOver;
}

// Sets the mode for one operation.
class Mode {
public:
    Mode(QPainter& painter, NSCompositingOperation operation) : painter_(painter) {
        painter_.setCompositionMode(modeFor(operation));
    }
    ~Mode() { painter_.setCompositionMode(QPainter::CompositionMode_SourceOver); }
    Mode(const Mode&) = delete;
    Mode& operator=(const Mode&) = delete;

private:
    QPainter& painter_;
};

} // namespace

QColor colourFor(const Colour& colour, Appearance appearance) {
    const Colour c = resolved(colour, appearance);
    return QColor::fromRgbF(static_cast<float>(c.red), static_cast<float>(c.green), static_cast<float>(c.blue),
                            static_cast<float>(c.alpha));
}

QFont fontFor(const FontDescription& description) {
    constexpr double kSystemSize = 13;
    QFont font = QApplication::font();
    const double relative = description.size / kSystemSize;
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * relative);
    else
        font.setPixelSize(std::max(1, static_cast<int>(std::lround(font.pixelSize() * relative))));
    if (!description.family.empty()) font.setFamily(QString::fromStdString(description.family));
    if (description.bold) font.setBold(true);
    return font;
}

// From here on the painter's coordinates are the device's own, or whole pixels away from them: shapes that lie
// on whole pixels stay there, and pictures of natural size are copied.
QtCanvas::QtCanvas(QPainter& painter, const Geometry& geometry) : painter_(painter), geometry_(geometry) {
    const QTransform device = painter_.deviceTransform();
    plain_ = device.type() <= QTransform::TxScale && device.m11() > 0 && device.m11() == device.m22();
    scale_ = plain_ ? device.m11() : 1;
    const bool isDevice =
        scale_ == 1 && device.dx() == std::floor(device.dx()) && device.dy() == std::floor(device.dy());
    if (plain_ && !isDevice) {
        origin_ = {device.dx(), device.dy()};
        painter_.setWorldTransform(device.inverted(), true);
    }
}

QPointF QtCanvas::mapped(Point point) const {
    const double y = geometry_.yUp ? geometry_.height - point.y : point.y;
    return {origin_.x() + (point.x + geometry_.shift.x()) * scale_,
            origin_.y() + (y + geometry_.shift.y()) * scale_};
}

QRectF QtCanvas::mapped(const Rect& rect) const {
    const Point topLeft = {rect.origin.x, geometry_.yUp ? NSMaxY(rect) : NSMinY(rect)};
    return {mapped(topLeft), QSizeF(rect.size.width * scale_, rect.size.height * scale_)};
}

QPainterPath QtCanvas::mapped(const Path& path) const {
    QPainterPath result;
    result.setFillRule(Qt::WindingFill);
    for (const auto& element : elementsOf(path)) {
        const auto& p = element.points;
        switch (element.kind) {
        case PathElement::Kind::move:
            result.moveTo(mapped(p[0]));
            break;
        case PathElement::Kind::line:
            result.lineTo(mapped(p[0]));
            break;
        case PathElement::Kind::curve:
            result.cubicTo(mapped(p[0]), mapped(p[1]), mapped(p[2]));
            break;
        case PathElement::Kind::close:
            result.closeSubpath();
            break;
        }
    }
    return result;
}

// Top and height on whole device pixels, one at least; the sides as they are.
QRectF QtCanvas::bar(const Rect& rect) const {
    QRectF result = mapped(rect);
    result.moveTop(std::round(result.top()));
    result.setHeight(std::max(1.0, std::round(result.height())));
    return result;
}

bool QtCanvas::copies() const {
    return plain_ && painter_.compositionMode() == QPainter::CompositionMode_SourceOver;
}

void QtCanvas::paint(const port::OperationList& list, const Rect& part) {
    for (const auto& operation : list.operations())
        if (list.touches(operation, part)) std::visit([this](const auto& one) { paint(one); }, operation);
}

void QtCanvas::paint(const port::Clip& clip) { painter_.setClipPath(mapped(clip.path), Qt::IntersectClip); }

template <class Shape>
void QtCanvas::paintSmooth(const QPen& pen, const QBrush& brush, const Shape& shape) {
    painter_.setRenderHint(QPainter::Antialiasing);
    painter_.setPen(pen);
    painter_.setBrush(brush);
    shape();
    painter_.setBrush(Qt::NoBrush);
    painter_.setRenderHint(QPainter::Antialiasing, false);
}

namespace {

// Numbers that fit into device coordinates.
bool isReasonable(const QRectF& rect) {
    constexpr double kLimit = 1e6;
    return std::abs(rect.left()) < kLimit && std::abs(rect.right()) < kLimit && std::abs(rect.top()) < kLimit &&
           std::abs(rect.bottom()) < kLimit;
}

} // namespace

void QtCanvas::fillRectangle(const QRectF& rect, const QColor& colour) {
    const bool whole = isReasonable(rect) && rect.left() == std::round(rect.left()) &&
                       rect.right() == std::round(rect.right());
    if (plain_ && whole)
        painter_.fillRect(rect.toRect(), colour);
    else
        paintSmooth(Qt::NoPen, colour, [&] { painter_.drawRect(rect); });
}

void QtCanvas::fillRounded(const QRectF& rect, double xRadius, double yRadius, const QColor& colour) {
    if (copies() && isReasonable(rect) && canBeStamped({xRadius, rect.height()})) {
        if (const auto stamps = barStamps(rect, xRadius, yRadius, colour)) {
            painter_.drawImage(stamps->left.topLeft, stamps->left.image);
            painter_.fillRect(stamps->middle, colour);
            painter_.drawImage(stamps->right.topLeft, stamps->right.image);
            return;
        }
    }
    paintSmooth(Qt::NoPen, colour, [&] { painter_.drawRoundedRect(rect, xRadius, yRadius); });
}

void QtCanvas::fillOval(const QRectF& oval, const QColor& colour) {
    if (copies() && isReasonable(oval) && canBeStamped(oval.size())) {
        const Stamp stamp = ovalStamp(oval, colour);
        painter_.drawImage(stamp.topLeft, stamp.image);
    } else {
        paintSmooth(Qt::NoPen, colour, [&] { painter_.drawEllipse(oval); });
    }
}

void QtCanvas::paint(const port::Fill& fill) {
    const Mode mode(painter_, fill.compositing);
    const QColor colour = colourFor(fill.colour, geometry_.appearance);
    const Path& path = fill.path;
    switch (path.shape) {
    case PathShape::rectangle:
        fillRectangle(bar(path.bounds), colour);
        break;
    case PathShape::roundedRectangle: {
        const QRectF rect = bar(path.bounds);
        fillRounded(rect, std::min(path.xRadius * scale_, rect.width() / 2),
                    std::min(path.yRadius * scale_, rect.height() / 2), colour);
        break;
    }
    case PathShape::oval:
        fillOval(mapped(path.bounds), colour);
        break;
    case PathShape::elements:
        paintSmooth(Qt::NoPen, colour, [&] { painter_.drawPath(mapped(path)); });
        break;
    }
}

void QtCanvas::paint(const port::Stroke& stroke) {
    const QPen pen(colourFor(stroke.colour, geometry_.appearance), stroke.style.lineWidth * scale_,
                   Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    paintSmooth(pen, Qt::NoBrush, [&] { painter_.drawPath(mapped(stroke.path)); });
}

void QtCanvas::paint(const port::Image& image) {
    const auto* chosen = port::bestRepresentation(*image.representations, scale_, geometry_.appearance);
    const auto* bitmap = chosen ? static_cast<const QtBitmap*>(chosen->bitmap.get()) : nullptr;
    if (!bitmap || NSIsEmptyRect({{}, image.size})) return;
    const Rect& source = image.source;
    QRectF target = mapped(image.destination);
    if (image.destination.size == source.size)
        target.moveTopLeft({std::round(target.left()), std::round(target.top())});
    const double px = bitmap->image().width() / image.size.width,
                 py = bitmap->image().height() / image.size.height;
    const QRectF part(source.origin.x * px, (image.size.height - NSMaxY(source)) * py, source.size.width * px,
                      source.size.height * py);
    const Mode mode(painter_, image.compositing);
    const QPoint corner = isReasonable(target) ? target.topLeft().toPoint() : QPoint();
    if (plain_ && geometry_.yUp && image.fraction == 1 && target == QRectF(corner, part.size()) &&
        part == part.toRect()) {
        painter_.drawImage(corner, bitmap->image(), part.toRect());
        return;
    }
    painter_.setRenderHint(QPainter::SmoothPixmapTransform);
    painter_.setOpacity(image.fraction);
    if (geometry_.yUp) {
        painter_.drawImage(target, bitmap->image(), part);
    } else {
        // The picture follows the view's y axis.
        painter_.save();
        painter_.translate(0, target.top() + target.bottom());
        painter_.scale(1, -1);
        painter_.drawImage(target, bitmap->image(), part);
        painter_.restore();
    }
    painter_.setOpacity(1);
}

// Fonts are made for the device's points, so text is painted in them.
void QtCanvas::paint(const port::Text& text) {
    const QFont font = fontFor(text.font);
    const QFontMetricsF metrics(font, painter_.device());
    QPointF baseline = mapped(text.origin) / scale_;
    baseline.ry() += geometry_.yUp ? -metrics.descent() : metrics.ascent();
    const QTransform before = painter_.worldTransform();
    painter_.scale(scale_, scale_);
    painter_.setFont(font);
    painter_.setPen(colourFor(text.colour, geometry_.appearance));
    painter_.drawText(baseline, QString::fromStdString(*text.text));
    painter_.setWorldTransform(before);
}

namespace {

QImage transparent(Size size, double scale) {
    QImage image(static_cast<int>(std::ceil(size.width * scale)),
                 static_cast<int>(std::ceil(size.height * scale)), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

std::shared_ptr<QtBitmap> paintedBitmap(Size size, double scale, Appearance appearance,
                                        const port::OperationList& list) {
    QImage image = transparent(size, scale);
    QPainter painter(&image);
    QtCanvas canvas(painter, {.height = size.height, .yUp = true, .shift = {}, .appearance = appearance});
    canvas.paint(list, {NSZeroPoint, size});
    painter.end();
    image.setDevicePixelRatio(1);
    return std::make_shared<QtBitmap>(std::move(image));
}

} // namespace zr::qt
