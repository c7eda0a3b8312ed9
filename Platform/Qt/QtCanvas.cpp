#include "QtCanvas.h"

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

QtCanvas::QtCanvas(QPainter& painter, const Geometry& geometry)
    : painter_(painter), geometry_(geometry), scale_(painter.device()->devicePixelRatioF()) {
    painter_.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    painter_.setPen(Qt::NoPen);
}

QPointF QtCanvas::mapped(CGPoint point) const {
    const double y = geometry_.yUp ? geometry_.height - point.y : point.y;
    return {point.x + geometry_.shift.x(), y + geometry_.shift.y()};
}

QRectF QtCanvas::mapped(const CGRect& rect) const {
    const CGPoint topLeft = {rect.origin.x, geometry_.yUp ? NSMaxY(rect) : NSMinY(rect)};
    return {mapped(topLeft), QSizeF(rect.size.width, rect.size.height)};
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

double QtCanvas::snapped(double position) const { return std::round(position * scale_) / scale_; }

// Top and height on whole device pixels, one at least; the sides as they are.
QRectF QtCanvas::bar(const CGRect& rect) const {
    QRectF result = mapped(rect);
    result.moveTop(snapped(result.top()));
    result.setHeight(std::max(1.0, std::round(rect.size.height * scale_)) / scale_);
    return result;
}

void QtCanvas::clip(const Path& path) { painter_.setClipPath(mapped(path), Qt::IntersectClip); }

void QtCanvas::fill(const Path& path, const Colour& colour, NSCompositingOperation operation) {
    const Mode mode(painter_, operation);
    painter_.setBrush(colourFor(colour, geometry_.appearance));
    switch (path.shape) {
    case PathShape::rectangle:
        painter_.drawRect(bar(path.bounds));
        break;
    case PathShape::roundedRectangle: {
        const QRectF rect = bar(path.bounds);
        painter_.drawRoundedRect(rect, std::min(path.xRadius, rect.width() / 2),
                                 std::min(path.yRadius, rect.height() / 2));
        break;
    }
    case PathShape::oval:
        painter_.drawEllipse(mapped(path.bounds));
        break;
    case PathShape::elements:
        painter_.drawPath(mapped(path));
        break;
    }
}

void QtCanvas::stroke(const Path& path, const Colour& colour, const port::StrokeStyle& style) {
    QPen pen(colourFor(colour, geometry_.appearance), style.lineWidth, Qt::SolidLine, Qt::FlatCap,
             Qt::MiterJoin);
    painter_.setBrush(Qt::NoBrush);
    painter_.setPen(pen);
    painter_.drawPath(mapped(path));
    painter_.setPen(Qt::NoPen);
}

void QtCanvas::image(const std::vector<port::ImageRepresentation>& representations, CGSize imageSize,
                     const CGRect& destination, const CGRect& source, NSCompositingOperation operation,
                     double fraction) {
    const auto* chosen = port::bestRepresentation(representations, scale_, geometry_.appearance);
    const auto* bitmap = chosen ? dynamic_cast<const QtBitmap*>(chosen->bitmap.get()) : nullptr;
    if (!bitmap || NSIsEmptyRect({{}, imageSize})) return;
    QRectF target = mapped(destination);
    if (destination.size == source.size) target.moveTopLeft({snapped(target.left()), snapped(target.top())});
    const double px = bitmap->image().width() / imageSize.width,
                 py = bitmap->image().height() / imageSize.height;
    const QRectF part(source.origin.x * px, (imageSize.height - NSMaxY(source)) * py, source.size.width * px,
                      source.size.height * py);
    const Mode mode(painter_, operation);
    painter_.setOpacity(fraction);
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

void QtCanvas::text(std::string_view text, const FontDescription& description, const Colour& colour,
                    CGPoint origin) {
    const QFont font = fontFor(description);
    const QFontMetricsF metrics(font, painter_.device());
    QPointF baseline = mapped(origin);
    baseline.ry() += geometry_.yUp ? -metrics.descent() : metrics.ascent();
    painter_.setFont(font);
    painter_.setPen(colourFor(colour, geometry_.appearance));
    painter_.drawText(baseline, QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    painter_.setPen(Qt::NoPen);
}

} // namespace zr::qt
