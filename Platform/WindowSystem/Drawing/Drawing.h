#pragma once

#include <Base/Colour.h>
#include <Base/Compositing.h>
#include <Base/Font.h>
#include <Base/Geometry.h>
#include <Base/Path.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zr::port {

// Pixels that the window system holds. Made by Graphics, shared freely, never changed while somebody draws
// them.
class Bitmap {
public:
    virtual ~Bitmap() = default;
    virtual CGSize pixelSize() const = 0;
};

// One of the pictures an image consists of. The canvas takes the one that suits its scale and appearance best.
struct ImageRepresentation {
    std::shared_ptr<Bitmap> bitmap;
    double scale = 1; // pixels for a point
    Appearance appearance = Appearance::light;
};

// Shared with whoever keeps what was drawn; never changed.
using ImageRepresentations = std::shared_ptr<const std::vector<ImageRepresentation>>;

// The representation for a canvas of that scale and appearance: of its appearance where there is one, then the
// smallest that has pixels enough, else the largest. Null for none.
const ImageRepresentation* bestRepresentation(const std::vector<ImageRepresentation>& representations,
                                              double scale, Appearance appearance);

struct StrokeStyle {
    double lineWidth = 1; // 0: the thinnest line there is
};

// Where a drawing pass goes. Coordinates are those of the view that draws, in points: the canvas knows the
// height of the pass and whether y runs up, and turns it over where the window system needs that. Colours come
// with each operation.
class Canvas {
public:
    virtual ~Canvas() = default;

    virtual void save() = 0;    // remembers the clip
    virtual void restore() = 0; // brings back the clip last remembered
    virtual void clip(const Path& path) = 0;

    virtual void fill(const Path& path, const Colour& colour, NSCompositingOperation operation) = 0;
    virtual void stroke(const Path& path, const Colour& colour, const StrokeStyle& style) = 0;
    // Draws `source` of the image (points of its own, lower left; never empty) into `destination`.
    virtual void image(const ImageRepresentations& representations, CGSize imageSize, const CGRect& destination,
                       const CGRect& source, NSCompositingOperation operation, double fraction) = 0;
    // One line of text; `origin` is the corner of its line box that has the smallest coordinates on an
    // unflipped canvas (lower left) and on a flipped one (upper left).
    virtual void text(std::string_view text, const FontDescription& font, const Colour& colour,
                      CGPoint origin) = 0;
};

// A picture being drawn: transparent at first, y runs up.
class BitmapCanvas {
public:
    virtual ~BitmapCanvas() = default;
    virtual Canvas& canvas() = 0;
    virtual std::shared_ptr<Bitmap> finish() = 0; // what was drawn; the canvas is not used any more
};

class Graphics {
public:
    virtual ~Graphics() = default;
    virtual std::shared_ptr<Bitmap> loadBitmap(const std::string& path) = 0; // null when it cannot be read
    virtual std::unique_ptr<BitmapCanvas> makeBitmap(CGSize size, double scale) = 0; // points; never empty
    virtual TextSize measure(std::string_view line, const FontDescription& font) = 0;
    virtual double screenScale() const = 0; // device pixels for a point, the largest of all screens
};

} // namespace zr::port
