#include "RecordingCanvas.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace zr::headless {

namespace {

std::string written(double number) {
    std::array<char, 40> buffer;
    return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
}

std::string pair(double a, double b) {
    std::string out = "{";
    out += written(a);
    out += ", ";
    out += written(b);
    out += "}";
    return out;
}

std::string written(const CGPoint& point) { return pair(point.x, point.y); }
std::string written(const CGSize& size) { return pair(size.width, size.height); }

std::string written(const CGRect& rect) {
    std::string out = "{";
    out += written(rect.origin);
    out += ", ";
    out += written(rect.size);
    out += "}";
    return out;
}

std::string written(const Colour& colour) {
    if (colour.system != SystemColour::none) return std::string(nameOf(colour.system));
    std::string out = "rgba(";
    out += written(colour.red);
    for (const double component : {colour.green, colour.blue, colour.alpha}) {
        out += ", ";
        out += written(component);
    }
    out += ")";
    return out;
}

std::string written(const std::vector<PathElement>& elements) {
    std::string out = "path";
    for (const auto& element : elements) {
        constexpr std::array<std::string_view, 4> names = {" move", " line", " curve", " close"};
        constexpr std::array<std::size_t, 4> points = {1, 1, 3, 0};
        const auto kind = static_cast<std::size_t>(element.kind);
        out += names[kind];
        for (std::size_t i = 0; i < points[kind]; ++i) {
            out += ' ';
            out += written(element.points[i]);
        }
    }
    return out;
}

std::string written(const Path& path) {
    switch (path.shape) {
    case PathShape::rectangle:
        return "rect " + written(path.bounds);
    case PathShape::oval:
        return "oval " + written(path.bounds);
    case PathShape::roundedRectangle:
        return "rounded " + written(path.bounds) + " radius " + pair(path.xRadius, path.yRadius);
    case PathShape::elements:
        break;
    }
    return written(path.elements);
}

} // namespace

void RecordingCanvas::clip(const Path& path) { lines_.push_back("clip " + written(path)); }

void RecordingCanvas::fill(const Path& path, const Colour& colour, NSCompositingOperation operation) {
    std::string line = "fill " + written(path) + " " + written(colour);
    if (operation != NSCompositingOperationSourceOver) line += " operation " + std::to_string(operation);
    lines_.push_back(std::move(line));
}

void RecordingCanvas::stroke(const Path& path, const Colour& colour, const port::StrokeStyle& style) {
    lines_.push_back("stroke " + written(path) + " " + written(colour) + " width " + written(style.lineWidth));
}

void RecordingCanvas::image(const port::ImageRepresentations& representations, CGSize,
                            const CGRect& destination, const CGRect& source, NSCompositingOperation operation,
                            double fraction) {
    const auto* chosen = port::bestRepresentation(*representations, scale_, appearance_);
    const auto* bitmap = chosen ? dynamic_cast<const NamedBitmap*>(chosen->bitmap.get()) : nullptr;
    std::string line = "image ";
    line += bitmap ? bitmap->name() : "?";
    line += " in " + written(destination) + " from " + written(source) + " operation " +
            std::to_string(operation) + " fraction " + written(fraction);
    lines_.push_back(std::move(line));
}

void RecordingCanvas::text(std::string_view line, const FontDescription& font, const Colour& colour,
                           CGPoint origin) {
    std::string out = "text \"";
    out += line;
    out += "\" ";
    out += font.family.empty() ? "system" : font.family;
    if (font.bold) out += " bold";
    for (const auto& part : {written(font.size), written(colour), std::string("at"), written(origin)}) {
        out += ' ';
        out += part;
    }
    lines_.push_back(std::move(out));
}

std::shared_ptr<port::Bitmap> RecordingBitmapCanvas::finish() {
    std::string name = "[";
    for (const auto& line : canvas_.lines()) {
        if (name.size() > 1) name += "; ";
        name += line;
    }
    name += "]";
    return std::make_shared<NamedBitmap>(std::move(name), pixels_);
}

std::shared_ptr<NamedBitmap> readBitmap(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::array<char, 24> head{};
    if (!file.read(head.data(), head.size())) return nullptr;
    if (std::string_view(head.data(), 8) != "\x89PNG\r\n\x1A\n" ||
        std::string_view(head.data() + 12, 4) != "IHDR")
        return nullptr;
    const auto number = [&](std::size_t at) {
        std::uint32_t value = 0;
        for (std::size_t i = at; i < at + 4; ++i) value = (value << 8) | static_cast<unsigned char>(head[i]);
        return static_cast<double>(value);
    };
    const CGSize pixels = {number(16), number(20)};
    return std::make_shared<NamedBitmap>(std::filesystem::path(path).filename().string(), pixels);
}

} // namespace zr::headless
