#pragma once

#include <WindowSystem/Drawing.h>

#include <string>
#include <vector>

namespace zr::headless {

// Writes a line for each operation, in the coordinates it was given. System colours appear by name, pictures by
// the name of the file that was chosen.
class RecordingCanvas final : public port::Canvas {
public:
    RecordingCanvas(double scale, Appearance appearance) : scale_(scale), appearance_(appearance) {}

    void save() override { lines_.emplace_back("save"); }
    void restore() override { lines_.emplace_back("restore"); }
    void clip(const Path& path) override;
    void fill(const Path& path, const Colour& colour, NSCompositingOperation operation) override;
    void stroke(const Path& path, const Colour& colour, const port::StrokeStyle& style) override;
    void image(const port::ImageRepresentations& representations, CGSize imageSize, const CGRect& destination,
               const CGRect& source, NSCompositingOperation operation, double fraction) override;
    void text(std::string_view text, const FontDescription& font, const Colour& colour,
              CGPoint origin) override;

    const std::vector<std::string>& lines() const { return lines_; }

private:
    double scale_;
    Appearance appearance_;
    std::vector<std::string> lines_;
};

// A picture that is known by the name of its file, or by the operations that drew it, and by its size.
class NamedBitmap final : public port::Bitmap {
public:
    NamedBitmap(std::string name, CGSize pixels) : name_(std::move(name)), pixels_(pixels) {}
    CGSize pixelSize() const override { return pixels_; }
    const std::string& name() const { return name_; }

private:
    std::string name_;
    CGSize pixels_;
};

// The name of the picture is the list of its operations.
class RecordingBitmapCanvas final : public port::BitmapCanvas {
public:
    RecordingBitmapCanvas(CGSize size, double scale, Appearance appearance)
        : pixels_{size.width * scale, size.height * scale}, canvas_(scale, appearance) {}
    port::Canvas& canvas() override { return canvas_; }
    std::shared_ptr<port::Bitmap> finish() override;

private:
    CGSize pixels_;
    RecordingCanvas canvas_;
};

// Null for a file that is no PNG picture.
std::shared_ptr<NamedBitmap> readBitmap(const std::string& path);

} // namespace zr::headless
