#pragma once

#include <WindowSystem/Canvas.h>

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPainter>

namespace zr::qt {

class QtBitmap final : public port::Bitmap {
public:
    explicit QtBitmap(QImage image) : image_(std::move(image)) {}
    CGSize pixelSize() const override { return {double(image_.width()), double(image_.height())}; }
    const QImage& image() const { return image_; }

private:
    QImage image_;
};

QColor colourFor(const Colour& colour, Appearance appearance);
// Sizes are relative to the desktop's own font: 13 points, the system's size, is as large as that.
QFont fontFor(const FontDescription& description);

// Paints a drawing pass of one view. Bars and pictures of natural size are moved to whole device pixels, so
// that they are crisp at any scale; everything else is painted where it is.
class QtCanvas final : public port::Canvas {
public:
    struct Geometry {
        double height = 0; // of the view, points
        bool yUp = true;
        QPointF shift; // from the view's corner to the widget's
        Appearance appearance = Appearance::light;
    };
    QtCanvas(QPainter& painter, const Geometry& geometry);

    void save() override { painter_.save(); }
    void restore() override { painter_.restore(); }
    void clip(const Path& path) override;
    void fill(const Path& path, const Colour& colour, NSCompositingOperation operation) override;
    void stroke(const Path& path, const Colour& colour, const port::StrokeStyle& style) override;
    void image(const std::vector<port::ImageRepresentation>& representations, CGSize imageSize,
               const CGRect& destination, const CGRect& source, NSCompositingOperation operation,
               double fraction) override;
    void text(std::string_view text, const FontDescription& font, const Colour& colour,
              CGPoint origin) override;

private:
    QPointF mapped(CGPoint point) const;
    QRectF mapped(const CGRect& rect) const;
    QPainterPath mapped(const Path& path) const;
    double snapped(double position) const; // to the nearest edge between device pixels
    QRectF bar(const CGRect& rect) const;

    QPainter& painter_;
    Geometry geometry_;
    double scale_;
};

} // namespace zr::qt
