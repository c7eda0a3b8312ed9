// SPDX-License-Identifier: MIT
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

std::string written(const Point& point) { return pair(point.x, point.y); }
std::string written(const Size& size) { return pair(size.width, size.height); }

std::string written(const Rect& rect) {
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
        out += names[static_cast<std::size_t>(element.kind)];
        for (std::size_t i = 0; i < pointCount(element.kind); ++i) {
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

// Of each operation all members are named, so that one more does not compile until it is written.
class Writer {
public:
    Writer(double scale, Appearance appearance) : scale_(scale), appearance_(appearance) {}

    std::string line(const port::Save&) const { return "save"; }
    std::string line(const port::Restore&) const { return "restore"; }
    std::string line(const port::Clip& clip) const {
        const auto& [path] = clip;
        return "clip " + written(path);
    }
    std::string line(const port::Fill& fill) const {
        const auto& [path, colour, compositing] = fill;
        std::string out = "fill " + written(path) + " " + written(colour);
        if (compositing != NSCompositingOperationSourceOver) out += " operation " + std::to_string(compositing);
        return out;
    }
    std::string line(const port::Stroke& stroke) const {
        const auto& [path, colour, style] = stroke;
        const auto& [lineWidth] = style;
        return "stroke " + written(path) + " " + written(colour) + " width " + written(lineWidth);
    }
    std::string line(const port::Image& image) const;
    std::string line(const port::Text& text) const;

private:
    double scale_;
    Appearance appearance_;
};

std::string Writer::line(const port::Image& image) const {
    const auto& [representations, size, destination, source, compositing, fraction] = image;
    const auto* const chosen = port::bestRepresentation(*representations, scale_, appearance_);
    const auto* const bitmap = chosen ? dynamic_cast<const NamedBitmap*>(chosen->bitmap.get()) : nullptr;
    std::string out = "image ";
    out += bitmap ? bitmap->name() : "?";
    const double scale = chosen ? chosen->scale : 1;
    if (!bitmap || Size{size.width * scale, size.height * scale} != bitmap->pixelSize())
        out += " of " + written(size);
    out += " in " + written(destination) + " from " + written(source) + " operation " +
           std::to_string(compositing) + " fraction " + written(fraction);
    return out;
}

std::string Writer::line(const port::Text& text) const {
    const auto& [shared, font, colour, origin] = text;
    const auto& [family, size, bold, monospacedDigits] = font;
    std::string out = "text \"";
    for (const char character : *shared) {
        if (character == '"' || character == '\\') out += '\\';
        out += character;
    }
    out += "\" ";
    out += family.empty() ? "system" : family;
    if (bold) out += " bold";
    if (monospacedDigits) out += " digits";
    for (const auto& part : {written(size), written(colour), std::string("at"), written(origin)}) {
        out += ' ';
        out += part;
    }
    return out;
}

} // namespace

std::vector<std::string> linesOf(const port::OperationList& list, double scale, Appearance appearance) {
    const Writer writer(scale, appearance);
    std::vector<std::string> lines;
    for (const auto& operation : list.operations())
        lines.push_back(std::visit([&](const auto& one) { return writer.line(one); }, operation));
    return lines;
}

std::shared_ptr<NamedBitmap> drawnBitmap(Size size, double scale, Appearance appearance,
                                         const port::OperationList& list) {
    std::string name = "[";
    for (const auto& line : linesOf(list, scale, appearance)) {
        if (name.size() > 1) name += "; ";
        name += line;
    }
    name += "]";
    return std::make_shared<NamedBitmap>(std::move(name), Size{size.width * scale, size.height * scale});
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
    const Size pixels = {number(16), number(20)};
    return std::make_shared<NamedBitmap>(std::filesystem::path(path).filename().string(), pixels);
}

} // namespace zr::headless
