#include "Unicode.h"

#include <Foundation/PropertyList.h>

namespace zr {

namespace {

const char* faultOfText(const std::string& text) {
    if (text.find('\0') != std::string::npos) return "text with the character zero";
    std::u16string units;
    return appendUtf16(text, units) ? nullptr : "text that is not UTF-8";
}

} // namespace

const char* PropertyList::faultAtDepth(int depth) const {
    if (depth > kDeepest) return "nested too deeply";
    if (const auto* text = get<std::string>()) return faultOfText(*text);
    if (const auto* date = get<NSDate>()) {
        const bool isNear = *date > kReferenceDate - kFarthestDate && *date < kReferenceDate + kFarthestDate;
        return isNear ? nullptr : "a date too far away";
    }
    if (const auto* array = get<Array>()) {
        for (const auto& element : *array)
            if (const char* fault = element.faultAtDepth(depth + 1)) return fault;
    }
    if (const auto* dictionary = get<Dictionary>()) {
        for (const auto& [key, element] : *dictionary) {
            if (const char* fault = faultOfText(key)) return fault;
            if (const char* fault = element.faultAtDepth(depth + 1)) return fault;
        }
    }
    return nullptr;
}

} // namespace zr
