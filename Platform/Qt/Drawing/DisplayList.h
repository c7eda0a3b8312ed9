#pragma once

#include <WindowSystem/Drawing.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zr::qt {

// Where a drawing differs from the one on the screen. Rectangles that overlap become one, as painting many
// small ones costs more than painting what lies between them.
class DamagedAreas {
public:
    void clear() { areas_.clear(); }
    // What is snapped to device pixels or antialiased reaches a little further than it says.
    void add(const CGRect& area);
    const std::vector<CGRect>& merged() const { return areas_; }

private:
    std::vector<CGRect> areas_;
};

// A drawing pass, kept: it can be painted again without asking the view, and compared with the next one, so
// that only what changed is painted. Coordinates are the view's.
class DisplayList final : public port::Canvas {
public:
    void clear(); // keeps its memory

    void save() override { add(Kind::save); }
    void restore() override { add(Kind::restore); }
    void clip(const Path& path) override { addPath(Kind::clip, path); }
    void fill(const Path& path, const Colour& colour, NSCompositingOperation operation) override;
    void stroke(const Path& path, const Colour& colour, const port::StrokeStyle& style) override;
    void image(const port::ImageRepresentations& representations, CGSize imageSize, const CGRect& destination,
               const CGRect& source, NSCompositingOperation operation, double fraction) override;
    void text(std::string_view text, const FontDescription& font, const Colour& colour,
              CGPoint origin) override;

    // Paints what touches `part`, or all of it where parts depend on each other.
    void replay(port::Canvas& canvas, const CGRect& part) const;
    bool touches(const CGRect& part) const; // whether replay would paint anything

    // Adds the areas outside of which this list and the next one look the same; false when that cannot be told.
    bool compare(const DisplayList& next, DamagedAreas& areas) const;

private:
    enum class Kind : std::uint8_t { save, restore, clip, fill, stroke, image, text };
    // What most operations are; the rest stands in the lists below, in the same order.
    struct Operation {
        Kind kind{};
        PathShape shape{};
        NSCompositingOperation compositing{};
        std::uint32_t detail = 0; // index
        CGRect bounds;            // of the shape or the destination
        double xRadius = 0, yRadius = 0;
        Colour colour;
    };
    struct Picture {
        port::ImageRepresentations representations;
        CGSize size;
        CGRect source;
        double fraction = 1;
        bool operator==(const Picture&) const = default;
    };
    struct Outline {
        std::vector<PathElement> elements;
        double lineWidth = 0;
        bool operator==(const Outline&) const = default;
    };
    struct Text {
        std::string text;
        FontDescription font;
        bool operator==(const Text&) const = default;
    };

    Operation& add(Kind kind);
    Operation& addPath(Kind kind, const Path& path);
    bool same(const Operation& own, const DisplayList& next, const Operation& theirs) const;
    // Where the operation paints; nothing when that is not known.
    static std::optional<CGRect> area(const Operation& operation);
    static bool addDifference(const Operation& a, const Operation& b, DamagedAreas& areas);
    bool touches(const Operation& operation, const CGRect& part) const;
    void paint(const Operation& operation, port::Canvas& canvas) const;

    std::vector<Operation> operations_;
    std::vector<Picture> pictures_;
    std::vector<Outline> outlines_;
    std::vector<Text> texts_;
    bool nests_ = false; // clips, or remembers a clip
};

} // namespace zr::qt
