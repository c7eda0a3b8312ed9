// SPDX-License-Identifier: MIT
#include "StringsTable.h"
#include "Unicode.h"

#include <array>
#include <cstdint>
#include <optional>

namespace zr {

namespace {

constexpr int kDeepestNesting = 64;

struct SyntaxError {
    const char* text;
    std::size_t at;
};

// Each of these leaves what comes before a mistake in `out`, so that the mistake's line can be told.
void unitsFromUtf8(std::string_view bytes, std::u16string& out) {
    if (!appendUtf16(bytes, out)) throw SyntaxError{"not UTF-8", out.size()};
}

// Units of `width` bytes each.
void unitsFromWide(std::string_view bytes, std::size_t width, bool bigEndian, std::u16string& out) {
    for (std::size_t at = 0; at < bytes.size(); at += width) {
        if (at + width > bytes.size()) throw SyntaxError{"the file ends within a character", out.size()};
        char32_t unit = 0;
        for (std::size_t i = 0; i < width; ++i) {
            const auto byte = static_cast<unsigned char>(bytes[at + (bigEndian ? i : width - 1 - i)]);
            unit = (unit << 8) | byte;
        }
        if (width == 4 && (unit > 0x10FFFF || isSurrogate(unit))) throw SyntaxError{"not UTF-32", out.size()};
        appendUnits(out, unit);
    }
}

void decode(std::string_view bytes, std::u16string& out) {
    using namespace std::string_view_literals;
    const auto without = [&](std::string_view mark) { return bytes.substr(mark.size()); };
    if (bytes.starts_with("\xFF\xFE\0\0"sv)) return unitsFromWide(without("\xFF\xFE\0\0"sv), 4, false, out);
    if (bytes.starts_with("\0\0\xFE\xFF"sv)) return unitsFromWide(without("\0\0\xFE\xFF"sv), 4, true, out);
    if (bytes.starts_with("\xFF\xFE"sv)) return unitsFromWide(without("\xFF\xFE"sv), 2, false, out);
    if (bytes.starts_with("\xFE\xFF"sv)) return unitsFromWide(without("\xFE\xFF"sv), 2, true, out);
    if (bytes.starts_with("\xEF\xBB\xBF"sv)) return unitsFromUtf8(without("\xEF\xBB\xBF"sv), out);
    unitsFromUtf8(bytes, out);
}

std::string utf8(std::u16string_view units) {
    std::string out;
    for (std::size_t at = 0; at < units.size(); ++at) {
        char32_t character = units[at];
        const bool pairs = character >= 0xD800 && character < 0xDC00 && at + 1 < units.size() &&
                           units[at + 1] >= 0xDC00 && units[at + 1] < 0xE000;
        if (pairs)
            character = 0x10000 + ((character - 0xD800) << 10) + (units[++at] - 0xDC00u);
        else if (isSurrogate(character))
            character = 0xFFFD;
        const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((character >> shift) & 0x3F)); };
        if (character < 0x80) {
            out += static_cast<char>(character);
        } else if (character < 0x800) {
            out += static_cast<char>(0xC0 | (character >> 6));
            tail(0);
        } else if (character < 0x10000) {
            out += static_cast<char>(0xE0 | (character >> 12));
            tail(6), tail(0);
        } else {
            out += static_cast<char>(0xF0 | (character >> 18));
            tail(12), tail(6), tail(0);
        }
    }
    return out;
}

// The upper half of the encoding that octal escapes are in.
constexpr std::u16string_view kNextStep =
    u"\u00A0\u00C0\u00C1\u00C2\u00C3\u00C4\u00C5\u00C7\u00C8\u00C9\u00CA\u00CB\u00CC\u00CD\u00CE\u00CF"
    u"\u00D0\u00D1\u00D2\u00D3\u00D4\u00D5\u00D6\u00D9\u00DA\u00DB\u00DC\u00DD\u00DE\u00B5\u00D7\u00F7"
    u"\u00A9\u00A1\u00A2\u00A3\u2044\u00A5\u0192\u00A7\u00A4\u2019\u201C\u00AB\u2039\u203A\uFB01\uFB02"
    u"\u00AE\u2013\u2020\u2021\u00B7\u00A6\u00B6\u2022\u201A\u201E\u201D\u00BB\u2026\u2030\u00AC\u00BF"
    u"\u00B9\u02CB\u00B4\u02C6\u02DC\u00AF\u02D8\u02D9\u00A8\u00B2\u02DA\u00B8\u00B3\u02DD\u02DB\u02C7"
    u"\u2014\u00B1\u00BC\u00BD\u00BE\u00E0\u00E1\u00E2\u00E3\u00E4\u00E5\u00E7\u00E8\u00E9\u00EA\u00EB"
    u"\u00EC\u00C6\u00ED\u00AA\u00EE\u00EF\u00F0\u00F1\u0141\u00D8\u0152\u00BA\u00F2\u00F3\u00F4\u00F5"
    u"\u00F6\u00E6\u00F9\u00FA\u00FB\u0131\u00FC\u00FD\u0142\u00F8\u0153\u00DF\u00FE\u00FF\uFFFD\uFFFD";
static_assert(kNextStep.size() == 128);

int digitValue(char16_t c, int base) {
    const int value = c >= '0' && c <= '9'   ? c - '0'
                      : c >= 'a' && c <= 'f' ? c - 'a' + 10
                      : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                             : 99;
    return value < base ? value : -1;
}

bool isWhiteSpace(char16_t c) { return (c >= 9 && c <= 13) || c == ' ' || c == 0x2028 || c == 0x2029; }

bool isBareWord(char16_t c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '$' ||
           c == '/' || c == ':' || c == '.' || c == '-';
}

class Parser {
public:
    explicit Parser(std::u16string_view text) : text_(text) {}

    std::map<std::string, std::string, std::less<>> parse() {
        skipBlanks();
        const bool braces = take('{');
        while (!atEnd() && !(braces && peek() == '}')) readPair(0);
        if (braces) {
            expect('}', "a closing brace is missing");
            skipBlanks();
            if (!atEnd()) fail("text after the end of the table");
        }
        return std::move(entries_);
    }

private:
    [[noreturn]] void fail(const char* text) const { throw SyntaxError{text, at_}; }

    bool atEnd() {
        skipBlanks();
        return at_ >= text_.size();
    }
    char16_t peek() {
        skipBlanks();
        return at_ < text_.size() ? text_[at_] : u'\0';
    }
    bool take(char16_t c) {
        if (atEnd() || text_[at_] != c) return false;
        ++at_;
        return true;
    }
    void expect(char16_t c, const char* complaint) {
        if (!take(c)) fail(complaint);
    }

    void skipBlanks() {
        while (at_ < text_.size()) {
            if (isWhiteSpace(text_[at_]))
                ++at_;
            else if (text_.substr(at_).starts_with(u"//"))
                skipLine();
            else if (text_.substr(at_).starts_with(u"/*"))
                skipComment();
            else
                return;
        }
    }
    void skipLine() {
        while (at_ < text_.size() && text_[at_] != '\n' && text_[at_] != '\r' && text_[at_] != 0x2028 &&
               text_[at_] != 0x2029)
            ++at_;
    }
    void skipComment() {
        const auto end = text_.find(u"*/", at_ + 2);
        if (end == std::u16string_view::npos) fail("a comment does not end");
        at_ = end + 2;
    }

    void readPair(int depth) {
        std::u16string key = readString();
        std::optional<std::u16string> value;
        if (take('='))
            value = readValue(depth);
        else
            value = key;
        expect(';', "a semicolon is missing");
        if (depth == 0) {
            if (value)
                entries_.insert_or_assign(utf8(key), utf8(*value));
            else
                entries_.erase(utf8(key));
        }
    }

    // Nothing for a value that is no string.
    std::optional<std::u16string> readValue(int depth) {
        if (depth > kDeepestNesting) fail("too deeply nested");
        if (take('{')) {
            while (peek() != '}') readPair(depth + 1);
            ++at_;
            return std::nullopt;
        }
        if (take('(')) {
            while (peek() != ')') {
                readValue(depth + 1);
                if (!take(',') && peek() != ')') fail("a comma is missing");
            }
            ++at_;
            return std::nullopt;
        }
        return readString();
    }

    std::u16string readString() {
        const char16_t first = peek();
        if (first == '"' || first == '\'') return readQuoted(first);
        const std::size_t start = at_;
        while (at_ < text_.size() && isBareWord(text_[at_])) ++at_;
        if (at_ == start) fail(at_ < text_.size() ? "a string is expected" : "the table ends too early");
        return std::u16string(text_.substr(start, at_ - start));
    }

    std::u16string readQuoted(char16_t quote) {
        const std::size_t start = at_++;
        std::u16string out;
        while (at_ < text_.size() && text_[at_] != quote) {
            const char16_t c = text_[at_++];
            if (c == '\\')
                readEscape(out);
            else
                out += c;
        }
        if (at_ >= text_.size()) {
            at_ = start;
            fail("a string does not end");
        }
        ++at_;
        return out;
    }

    void readEscape(std::u16string& out) {
        if (at_ >= text_.size()) return;
        const char16_t c = text_[at_++];
        constexpr std::u16string_view letters = u"abfnrtv";
        constexpr std::u16string_view meanings = u"\a\b\f\n\r\t\v";
        if (const auto index = letters.find(c); index != std::u16string_view::npos) {
            out += meanings[index];
        } else if (digitValue(c, 8) >= 0) {
            --at_;
            const auto code = readDigits(8, 3) & 0xFF;
            out += code < 0x80 ? static_cast<char16_t>(code) : kNextStep[code - 0x80];
        } else if (c == 'U' && at_ < text_.size() && digitValue(text_[at_], 16) >= 0) {
            out += static_cast<char16_t>(readDigits(16, 4));
        } else {
            out += c;
        }
    }

    unsigned readDigits(int base, int most) {
        unsigned value = 0;
        for (int i = 0; i < most && at_ < text_.size(); ++i) {
            const int digit = digitValue(text_[at_], base);
            if (digit < 0) break;
            value = value * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
            ++at_;
        }
        return value;
    }

    std::u16string_view text_;
    std::size_t at_ = 0;
    std::map<std::string, std::string, std::less<>> entries_;
};

int lineAt(std::u16string_view text, std::size_t at) {
    int line = 1;
    for (std::size_t i = 0; i < at && i < text.size(); ++i) {
        const bool lineFeed = text[i] == '\n' && !(i > 0 && text[i - 1] == '\r');
        if (lineFeed || text[i] == '\r') ++line;
    }
    return line;
}

} // namespace

StringsTable parseStringsTable(std::string_view bytes) {
    StringsTable table;
    std::u16string text;
    try {
        decode(bytes, text);
        table.entries = Parser(text).parse();
    } catch (const SyntaxError& error) {
        table.error = error.text;
        table.errorLine = lineAt(text, error.at);
    }
    return table;
}

} // namespace zr
