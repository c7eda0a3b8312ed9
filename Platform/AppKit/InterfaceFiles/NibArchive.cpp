// SPDX-License-Identifier: MIT
#include "NibArchive.h"

#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSString.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <pugixml.hpp>
#include <span>
#include <utility>

namespace zr::nib {

namespace {

// Where an attribute stands: on the element of any object, on its cell, or on elements of one name.
constexpr std::string_view kAny;
constexpr std::string_view kCell = "cell";
constexpr std::string_view kHeaderCell = "headerCell";

struct TextRow {
    std::string_view key;
    std::string_view place;
    const char* attribute; // or <string key="..."> within the same element
};
constexpr TextRow kTexts[] = {
    {"NSIdentifier", kAny, "identifier"},
    {"NSWindowTitle", "window", "title"},
    {"NSToolbarIdentifier", "toolbar", "implicitIdentifier"},
    {"NSHeaderTitle", kHeaderCell, "title"},
    {"NSTitle", kCell, "title"},
    {"NSContents", kCell, "title"},
    {"NSPlaceholderString", kCell, "placeholderString"},
    {"NSKeyEquivalent", kCell, "keyEquivalent"},
    {"NSImageName", kCell, "image"},
};

// Interface Builder leaves out what has its own default.
struct FlagRow {
    std::string_view key;
    std::string_view place;
    const char* attribute;
    bool whenLeftOut;
};
constexpr FlagRow kFlags[] = {
    {"NSHidden", kAny, "hidden", false},
    {"NSEnabled", kCell, "enabled", true},
    {"NSEditable", kCell, "editable", false},
    {"NSSelectable", kCell, "selectable", false},
    {"NSDrawsBackground", kCell, "drawsBackground", false},
    {"NSSendsActionOnEndEditing", kCell, "sendsActionOnEndEditing", false},
    {"NSIndeterminate", "progressIndicator", "indeterminate", false},
    {"NSDisplayedWhenStopped", "progressIndicator", "displayedWhenStopped", true},
    {"NSAllowsMultipleSelection", "tableView", "multipleSelection", true},
    {"NSAllowsEmptySelection", "tableView", "emptySelection", true},
};

struct NumberRow {
    std::string_view key;
    std::string_view place;
    const char* attribute;
};
constexpr NumberRow kNumbers[] = {
    {"NSMinValue", "progressIndicator", "minValue"},
    {"NSMaxValue", "progressIndicator", "maxValue"},
    {"NSDoubleValue", "progressIndicator", "doubleValue"},
    {"NSWidth", "tableColumn", "width"},
    {"NSMinWidth", "tableColumn", "minWidth"},
    {"NSMaxWidth", "tableColumn", "maxWidth"},
};

using Word = std::pair<std::string_view, double>;
constexpr Word kAlignments[] = {
    {"natural", NSTextAlignmentLeft},
    {"left", NSTextAlignmentLeft},
    {"right", NSTextAlignmentRight},
    {"center", NSTextAlignmentCenter},
};
constexpr Word kLineBreakModes[] = {
    {"wordWrapping", NSLineBreakByWordWrapping},
    {"charWrapping", NSLineBreakByCharWrapping},
    {"clipping", NSLineBreakByClipping},
    {"truncatingHead", NSLineBreakByTruncatingHead},
    {"truncatingTail", NSLineBreakByTruncatingTail},
    {"truncatingMiddle", NSLineBreakByTruncatingMiddle},
};
constexpr Word kProgressStyles[] = {{"bar", 0}, {"spinning", 1}};
constexpr Word kBorderTypes[] = {{"none", 0}, {"line", 1}, {"bezel", 2}, {"groove", 3}};
constexpr Word kImageScalings[] = {
    {"proportionallyDown", 0},
    {"axesIndependently", 1},
    {"none", 2},
    {"proportionallyUpOrDown", 3},
};
struct WordRow {
    std::string_view key;
    std::string_view place;
    const char* attribute;
    std::span<const Word> words;
    std::optional<double> whenLeftOut;
};
const WordRow kWords[] = {
    {"NSAlignment", kCell, "alignment", kAlignments, NSTextAlignmentLeft},
    {"NSLineBreakMode", kCell, "lineBreakMode", kLineBreakModes, NSLineBreakByWordWrapping},
    {"NSProgressStyle", "progressIndicator", "style", kProgressStyles, 0},
    {"NSBorderType", "scrollView", "borderType", kBorderTypes, 2},
    {"NSImageScaling", kCell, "imageScaling", kImageScalings, std::nullopt},
};

// <autoresizingMask key="autoresizingMask" widthSizable="YES"/>
using Bit = std::pair<const char*, unsigned>;
constexpr Bit kAutoresizingBits[] = {
    {"flexibleMinX", NSViewMinXMargin},     {"widthSizable", NSViewWidthSizable},
    {"flexibleMaxX", NSViewMaxXMargin},     {"flexibleMinY", NSViewMinYMargin},
    {"heightSizable", NSViewHeightSizable}, {"flexibleMaxY", NSViewMaxYMargin},
};
constexpr Bit kStyleBits[] = {
    {"titled", NSWindowStyleMaskTitled},
    {"closable", NSWindowStyleMaskClosable},
    {"miniaturizable", NSWindowStyleMaskMiniaturizable},
    {"resizable", NSWindowStyleMaskResizable},
    // Known, and without effect.
    {"utility", 16},
    {"documentModal", 64},
    {"nonactivatingPanel", 128},
    {"texturedBackground", 256},
    {"unifiedTitleAndToolbar", 4096},
    {"HUD", 8192},
    {"fullSizeContentView", 32768},
};
struct MaskRow {
    std::string_view key;
    const char* element; // its key is the same
    std::span<const Bit> bits;
};
const MaskRow kMasks[] = {
    {"NSAutoresizingMask", "autoresizingMask", kAutoresizingBits},
    {"NSWindowStyleMask", "styleMask", kStyleBits},
};

struct ElementRow {
    std::string_view key;
    std::string_view place;
    const char* element; // the key that the element has
};
constexpr ElementRow kRects[] = {{"NSFrame", kAny, "frame"}, {"NSWindowRect", "window", "contentRect"}};
constexpr ElementRow kSizes[] = {{"NSWindowContentMinSize", "window", "minSize"},
                                 {"NSWindowContentMaxSize", "window", "maxSize"}};
constexpr ElementRow kColours[] = {{"NSTextColor", kCell, "textColor"},
                                   {"NSBackgroundColor", kCell, "backgroundColor"}};
constexpr ElementRow kFonts[] = {{"NSFont", kCell, "font"}};

struct MetaFont {
    std::string_view name;
    double size;
    bool bold;
};
constexpr MetaFont kMetaFonts[] = {
    {"system", 13, false},         {"systemBold", 13, true},     {"smallSystem", 11, false},
    {"smallSystemBold", 11, true}, {"miniSystem", 9, false},     {"miniSystemBold", 9, true},
    {"label", 10, false},          {"cellTitle", 12, false},     {"controlContent", 12, false},
    {"user", 12, false},           {"message", 13, false},       {"toolTip", 11, false},
    {"menu", 13, false},           {"systemSemibold", 13, true}, {"titleBar", 13, true},
};

pugi::xml_node childWithKey(const pugi::xml_node& element, const char* key) {
    return element.find_child_by_attribute("key", key);
}

pugi::xml_node at(const pugi::xml_node& object, std::string_view place) {
    if (place == kCell || place == kHeaderCell) return childWithKey(object, place.data());
    return place == kAny || place == object.name() ? object : pugi::xml_node();
}

NSSize sizeOf(const pugi::xml_node& element) {
    const NSSize size = {numberOf(element, "width"), numberOf(element, "height")};
    if (size.width < 0 || size.height < 0) throw Broken(describe(element) + ": a negative size");
    return size;
}

std::string allText(const pugi::xml_node& element) {
    std::string text;
    for (const auto& part : element.children())
        if (part.type() == pugi::node_pcdata || part.type() == pugi::node_cdata) text += part.value();
    return text;
}

int base64Digit(char c) {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+') return 62;
    return c == '/' ? 63 : -1;
}

// Interface Builder leaves the padding out.
std::optional<std::string> fromBase64(std::string_view text) {
    std::string bytes;
    unsigned bits = 0;
    int count = 0;
    for (const char c : text) {
        if (c == '=' || c == '\n' || c == '\r' || c == '\t' || c == ' ') continue;
        const int digit = base64Digit(c);
        if (digit < 0) return std::nullopt;
        bits = (bits << 6 | static_cast<unsigned>(digit)) & 0xFFFF;
        count += 6;
        if (count < 8) continue;
        count -= 8;
        bytes += static_cast<char>(bits >> count & 0xFF);
    }
    return bytes;
}

std::optional<std::string> textAt(const pugi::xml_node& element, const char* attribute) {
    if (const auto given = element.attribute(attribute)) return given.value();
    if (const auto child = childWithKey(element, attribute)) return contentsOf(child);
    return std::nullopt;
}

std::optional<FontDescription> fontOf(const pugi::xml_node& element, const Notes& note) {
    FontDescription font;
    if (const std::string_view meta = element.attribute("metaFont").value(); !meta.empty()) {
        const auto* const found = std::ranges::find(kMetaFonts, meta, &MetaFont::name);
        if (found == std::end(kMetaFonts)) {
            note(stringWithFormat("%@: there is no font %@", describe(element), meta));
            return std::nullopt;
        }
        font.size = found->size;
        font.bold = found->bold;
    } else if (const std::string_view name = element.attribute("name").value(); !name.empty()) {
        const auto dash = std::min(name.find('-'), name.size());
        const std::string_view family = element.attribute("family").value();
        font.family = family.empty() ? name.substr(0, dash) : family;
        font.bold = name.substr(dash).find("Bold") != std::string_view::npos;
    } else {
        return std::nullopt; // the font of the appearance
    }
    if (element.attribute("size")) font.size = numberOf(element, "size");
    if (font.size <= 0) throw Broken(describe(element) + ": a size that is not positive");
    return font;
}

} // namespace

std::string describe(const pugi::xml_node& element) {
    std::string text = element.name();
    pugi::xml_node named = element;
    if (!element.attribute("id") && element.parent().attribute("id")) {
        named = element.parent();
        text += " of ";
        text += named.name();
    }
    if (const auto id = named.attribute("id")) {
        text += " \"";
        text += id.value();
        text += '"';
    }
    return text;
}

double numberOf(const pugi::xml_node& element, const char* attribute) {
    const std::string_view text = element.attribute(attribute).value();
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number))
        throw Broken(stringWithFormat("%@: %@ \"%@\" is no number", describe(element), attribute, text));
    return number;
}

bool flagOf(const pugi::xml_node& element, const char* attribute) {
    const std::string_view text = element.attribute(attribute).value();
    if (text != "YES" && text != "NO")
        throw Broken(
            stringWithFormat("%@: %@ \"%@\" is neither YES nor NO", describe(element), attribute, text));
    return text == "YES";
}

NSPoint pointOf(const pugi::xml_node& element) { return {numberOf(element, "x"), numberOf(element, "y")}; }

std::string contentsOf(const pugi::xml_node& stringElement) {
    std::string text = allText(stringElement);
    if (!stringElement.attribute("base64-UTF8")) return text;
    auto decoded = fromBase64(text);
    if (!decoded) throw Broken(describe(stringElement) + ": not in base 64");
    return *decoded;
}

std::optional<Colour> colourOf(const pugi::xml_node& colorElement, const Notes& note) {
    const std::string_view space = colorElement.attribute("colorSpace").value();
    if (space == "catalog") {
        const std::string_view name = colorElement.attribute("name").value();
        if (const auto system = systemColourNamed(name); system != SystemColour::none) return Colour{system};
        note(stringWithFormat("%@: there is no colour %@", describe(colorElement), name));
        return std::nullopt;
    }
    const auto component = [&](const char* name) { return std::clamp(numberOf(colorElement, name), 0.0, 1.0); };
    const double alpha = colorElement.attribute("alpha") ? component("alpha") : 1;
    if (colorElement.attribute("white")) {
        const double white = component("white");
        return Colour{SystemColour::none, white, white, white, alpha};
    }
    if (colorElement.attribute("red"))
        return Colour{SystemColour::none, component("red"), component("green"), component("blue"), alpha};
    note(stringWithFormat("%@: a colour of the space \"%@\" is not read", describe(colorElement), space));
    return std::nullopt;
}

Archive::Archive(const pugi::xml_node& object, const Notes& note) {
    const auto keep = [this](std::string_view key, auto value) {
        if (value) values_[key] = *std::move(value);
    };
    for (const auto& row : kTexts) keep(row.key, textAt(at(object, row.place), row.attribute));
    for (const auto& row : kFlags) {
        const auto place = at(object, row.place);
        if (place)
            values_[row.key] = place.attribute(row.attribute) ? flagOf(place, row.attribute) : row.whenLeftOut;
    }
    for (const auto& row : kNumbers) {
        const auto place = at(object, row.place);
        if (place.attribute(row.attribute)) values_[row.key] = numberOf(place, row.attribute);
    }
    for (const auto& row : kWords) {
        const auto place = at(object, row.place);
        if (!place) continue;
        keep(row.key, row.whenLeftOut);
        const auto given = place.attribute(row.attribute);
        if (!given) continue;
        const auto found = std::ranges::find(row.words, std::string_view(given.value()), &Word::first);
        if (found != row.words.end())
            values_[row.key] = found->second;
        else
            note(stringWithFormat("%@: %@ \"%@\" is not known", describe(place), row.attribute, given.value()));
    }
    if (const auto cell = at(object, kCell)) {
        const std::string_view border = cell.attribute("borderStyle").value();
        values_["NSBezeled"] = border == "bezel";
        values_["NSBordered"] = border == "border" || border == "line";
    }
    for (const auto& row : kMasks) {
        const auto element = childWithKey(object, row.element);
        if (!element) continue;
        unsigned mask = 0;
        for (const auto& [attribute, bit] : row.bits)
            if (element.attribute(attribute) && flagOf(element, attribute)) mask |= bit;
        values_[row.key] = static_cast<double>(mask);
    }
    for (const auto& row : kRects)
        if (const auto element = childWithKey(at(object, row.place), row.element))
            values_[row.key] = NSRect{pointOf(element), sizeOf(element)};
    for (const auto& row : kSizes)
        if (const auto element = childWithKey(at(object, row.place), row.element))
            values_[row.key] = sizeOf(element);
    for (const auto& row : kColours)
        if (const auto element = childWithKey(at(object, row.place), row.element))
            keep(row.key, colourOf(element, note));
    for (const auto& row : kFonts)
        if (const auto element = childWithKey(at(object, row.place), row.element))
            keep(row.key, fontOf(element, note));
}

} // namespace zr::nib
