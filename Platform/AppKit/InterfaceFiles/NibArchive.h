// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/NSCoder.h>

#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

namespace pugi {
class xml_node;
}

// Values in interface files. Private to AppKit.
namespace zr::nib {

// The file cannot be used. The text names the element and the reason.
struct Broken : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Told what is left out of a file that is used all the same.
using Notes = std::function<void(const std::string&)>;

// `button "f7O-Jn-9sB"`, `rect of button "f7O-Jn-9sB"`
std::string describe(const pugi::xml_node& element);

// What an element says of itself. Throw Broken where it says something else than the kind wanted.
double numberOf(const pugi::xml_node& element, const char* attribute);
bool flagOf(const pugi::xml_node& element, const char* attribute);
NSPoint pointOf(const pugi::xml_node& element);
std::string contentsOf(const pugi::xml_node& stringElement); // decoded where it is in base 64
// Nothing, and a note, for a colour that the layer does not have.
std::optional<Colour> colourOf(const pugi::xml_node& colorElement, const Notes& note);

// What an element of a file says of the object that it stands for, by the keys by which classes ask for it. All
// keys are listed in Documentation/interface-files.md.
class Archive final : public NSCoder {
public:
    Archive(const pugi::xml_node& object, const Notes& note);

    std::optional<NSRect> decodeRectForKey(std::string_view key) const override { return value<NSRect>(key); }
    std::optional<double> decodeDoubleForKey(std::string_view key) const override { return value<double>(key); }
    std::optional<bool> decodeBoolForKey(std::string_view key) const override { return value<bool>(key); }
    std::optional<NSSize> decodeSizeForKey(std::string_view key) const override { return value<NSSize>(key); }
    std::optional<std::string> decodeStringForKey(std::string_view key) const override {
        return value<std::string>(key);
    }
    std::optional<Colour> decodeColourForKey(std::string_view key) const override { return value<Colour>(key); }
    std::optional<FontDescription> decodeFontForKey(std::string_view key) const override {
        return value<FontDescription>(key);
    }

private:
    template <class T>
    std::optional<T> value(std::string_view key) const {
        const auto found = values_.find(key);
        const T* const given = found == values_.end() ? nullptr : std::get_if<T>(&found->second);
        return given ? std::optional<T>(*given) : std::nullopt;
    }

    using Value = std::variant<bool, double, std::string, NSRect, NSSize, Colour, FontDescription>;
    std::map<std::string_view, Value> values_; // the keys are literals
};

} // namespace zr::nib
