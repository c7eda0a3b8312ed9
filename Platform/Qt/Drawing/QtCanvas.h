// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Drawing.h>

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>

namespace zr::qt {

class QtBitmap final : public port::Bitmap {
public:
    explicit QtBitmap(QImage image) : image_(std::move(image)) {}
    Size pixelSize() const override { return {double(image_.width()), double(image_.height())}; }
    const QImage& image() const { return image_; }

private:
    QImage image_;
};

QColor colourFor(const Colour& colour, Appearance appearance);
// Sizes are relative to the desktop's own font: 13 points, the system's size, is as large as that.
QFont fontFor(const FontDescription& description);

// Paints a drawing pass of one view, in device pixels. Bars and pictures of natural size are moved to whole
// ones, so that they are crisp at any scale; everything else is painted where it is, to a quarter of a pixel.
class QtCanvas final {
public:
    struct Geometry {
        double height = 0; // of the view, points
        bool yUp = true;
        QPointF shift; // from the view's corner to the widget's
        Appearance appearance = Appearance::light;
    };
    QtCanvas(QPainter& painter, const Geometry& geometry);

    // Paints what touches the part, in the view's coordinates.
    void paint(const port::OperationList& list, const Rect& part);

private:
    void paint(const port::Save&) { painter_.save(); }
    void paint(const port::Restore&) { painter_.restore(); }
    void paint(const port::Clip& clip);
    void paint(const port::Fill& fill);
    void paint(const port::Stroke& stroke);
    void paint(const port::Image& image);
    void paint(const port::Text& text);

    QPointF mapped(Point point) const;
    QRectF mapped(const Rect& rect) const;
    QPainterPath mapped(const Path& path) const;
    QRectF bar(const Rect& rect) const;
    void fillRectangle(const QRectF& rect, const QColor& colour);
    void fillRounded(const QRectF& rect, double xRadius, double yRadius, const QColor& colour);
    void fillOval(const QRectF& oval, const QColor& colour);
    template <class Shape>
    void paintSmooth(const QPen& pen, const QBrush& brush, const Shape& shape);
    bool copies() const; // pixels of a kept picture can simply be copied

    QPainter& painter_;
    Geometry geometry_;
    QPointF origin_; // of the widget, device pixels
    double scale_;   // device pixels for a point
    bool plain_;     // the painter neither rotates nor stretches
};

// The operations' y runs up.
std::shared_ptr<QtBitmap> paintedBitmap(Size size, double scale, Appearance appearance,
                                        const port::OperationList& list);

} // namespace zr::qt
