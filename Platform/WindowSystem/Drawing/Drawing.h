// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Colour.h>
#include <Base/Compiler.h>
#include <Base/Compositing.h>
#include <Base/Font.h>
#include <Base/Geometry.h>
#include <Base/Path.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace zr::port {

// Pixels that the window system holds. Made by Graphics, shared freely, never changed while somebody draws
// them.
class Bitmap {
public:
    virtual ~Bitmap() = default;
    virtual Size pixelSize() const = 0;
};

// One of the pictures an image consists of. Who paints takes the one that suits its scale and appearance best.
struct ImageRepresentation {
    std::shared_ptr<Bitmap> bitmap;
    double scale = 1; // pixels for a point
    Appearance appearance = Appearance::light;
};

// Shared with whoever keeps what was drawn; never changed.
using ImageRepresentations = std::shared_ptr<const std::vector<ImageRepresentation>>;

// The representation for a drawing of that scale and appearance: of its appearance where there is one, then the
// smallest that has pixels enough, else the largest. Null for none.
ZR_EXPORT const ImageRepresentation* bestRepresentation(const std::vector<ImageRepresentation>& representations,
                                                        double scale, Appearance appearance);

// A value that its copies share: copying what holds it is cheap. It is never changed.
template <class T>
class Shared {
public:
    Shared(T value) : value_(std::make_shared<const T>(std::move(value))) {}
    // There is always a value, so that moving copies.
    Shared(const Shared&) = default;
    Shared& operator=(const Shared&) = default;
    ~Shared() = default;

    const T& operator*() const { return *value_; }
    const T* operator->() const { return value_.get(); }
    bool operator==(const Shared& other) const { return value_ == other.value_ || *value_ == *other.value_; }

private:
    std::shared_ptr<const T> value_;
};

class DamagedAreas;

// The operations of drawing. Coordinates are those of the view that draws, in points: who paints knows the
// height of the view and whether y runs up, and turns it over where the window system needs that. Colours come
// with each operation.
//
// bounds() is where an operation paints; snapping to pixels and smooth edges reach a little further. Nothing
// where only the window system knows that, where the operation paints nothing itself, and where numbers are not
// finite. addDifference(), where an operation has it, adds the areas outside of which it and the next one look
// the same, or answers false when it knows nothing better than both their bounds. kNests, where it is there,
// says that what others paint depends on the operation; paintsInParts() that a part of it, painted alone, looks
// as it does in the whole, to the last bit of each pixel.

// Remembers the clip.
struct Save {
    static constexpr bool kNests = true;

    std::optional<Rect> bounds() const { return std::nullopt; }
    bool operator==(const Save&) const = default;
};

// Brings back the clip last remembered.
struct Restore {
    static constexpr bool kNests = true;

    std::optional<Rect> bounds() const { return std::nullopt; }
    bool operator==(const Restore&) const = default;
};

// What follows is painted only within the path, and within the clip there was.
struct Clip {
    static constexpr bool kNests = true;

    Path path;

    std::optional<Rect> bounds() const { return std::nullopt; }
    bool operator==(const Clip&) const = default;
};

struct ZR_EXPORT Fill {
    Path path;
    Colour colour;
    NSCompositingOperation compositing = NSCompositingOperationSourceOver;

    std::optional<Rect> bounds() const;
    bool addDifference(const Fill& next, DamagedAreas& areas) const; // of a bar that grew, its ends
    bool paintsInParts() const { return path.shape != PathShape::elements; }
    bool operator==(const Fill&) const = default;
};

struct StrokeStyle {
    double lineWidth = 1; // 0: the thinnest line there is
    bool operator==(const StrokeStyle&) const = default;
};

struct ZR_EXPORT Stroke {
    Path path;
    Colour colour;
    StrokeStyle style;

    std::optional<Rect> bounds() const;
    bool paintsInParts() const { return false; }
    bool operator==(const Stroke&) const = default;
};

// Draws `source` of the image (points of its own, lower left; never empty) into `destination`.
struct ZR_EXPORT Image {
    ImageRepresentations representations;
    Size size; // of the image, points
    Rect destination;
    Rect source;
    NSCompositingOperation compositing = NSCompositingOperationSourceOver;
    double fraction = 1; // multiplies the alpha

    std::optional<Rect> bounds() const;
    bool operator==(const Image&) const = default;
};

// One line of text; `origin` is the corner of its line box that has the smallest coordinates in an unflipped
// view (lower left) and in a flipped one (upper left).
struct Text {
    Shared<std::string> text;
    FontDescription font;
    Colour colour;
    Point origin;

    std::optional<Rect> bounds() const { return std::nullopt; }
    bool operator==(const Text&) const = default;
};

// To add one: its struct, what paints it and what writes it. Whoever forgets it does not compile.
using Operation = std::variant<Save, Restore, Clip, Fill, Stroke, Image, Text>;

// Where a drawing differs from the one on the screen. Rectangles that overlap become one, as painting many
// small ones costs more than painting what lies between them.
class ZR_EXPORT DamagedAreas {
public:
    void clear() { areas_.clear(); }
    // What is snapped to device pixels or antialiased reaches a little further than it says.
    void add(const Rect& area);
    const std::vector<Rect>& merged() const { return areas_; }

private:
    std::vector<Rect> areas_;
};

// A drawing pass: what a view drew, in its order. It can be painted again without asking the view, and compared
// with the next one, so that only what changed is painted. Assigning a list re-uses the memory of the old one.
class ZR_EXPORT OperationList {
public:
    template <class T>
    requires(!std::is_same_v<T, Operation>) // which does not say at once whether it nests
        void add(T operation) {
        if constexpr (requires { T::kNests; }) nests_ = true;
        operations_.emplace_back(std::move(operation));
    }
    // Keeps its memory.
    void clear() {
        operations_.clear();
        nests_ = false;
    }
    const std::vector<Operation>& operations() const { return operations_; }
    bool operator==(const OperationList&) const = default;

    // Whether the operation has to be painted for `part` to look right. Where a list clips, all of it has.
    bool touches(const Operation& operation, const Rect& part) const;
    bool touches(const Rect& part) const; // any of them

    // Adds the areas outside of which this list and the next one look the same; false when that cannot be told.
    bool compare(const OperationList& next, DamagedAreas& areas) const;

private:
    std::vector<Operation> operations_;
    bool nests_ = false; // clips, or remembers a clip
};

class Graphics {
public:
    virtual ~Graphics() = default;
    virtual std::shared_ptr<Bitmap> loadBitmap(const std::string& path) = 0; // null when it cannot be read
    // Paints the operations, whose y runs up, on a transparent ground. The size, in points, is never empty.
    virtual std::shared_ptr<Bitmap> makeBitmap(Size size, double scale, const OperationList& operations) = 0;
    virtual TextSize measure(std::string_view line, const FontDescription& font) = 0;
    virtual double screenScale() const = 0; // device pixels for a point, the largest of all screens
};

} // namespace zr::port
