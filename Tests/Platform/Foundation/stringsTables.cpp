// SPDX-License-Identifier: MIT
#include <Foundation/StringsTable.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace zr {

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Entries = std::map<std::string, std::string, std::less<>>;

Entries entries(std::string_view bytes) {
    const auto table = parseStringsTable(bytes);
    EXPECT_EQ(table.error, "") << bytes << ", line " << table.errorLine;
    EXPECT_EQ(table.errorLine, 0);
    return table.entries;
}

// The value of the only key, "k".
std::string value(std::string_view written) {
    const auto all = entries("k = " + std::string(written) + ";");
    return all.size() == 1 && all.contains("k") ? all.find("k")->second : "no value";
}

void expectError(std::string_view bytes, int line, std::string_view text) {
    const auto table = parseStringsTable(bytes);
    EXPECT_EQ(table.error, text) << bytes;
    EXPECT_EQ(table.errorLine, line) << bytes;
    EXPECT_THAT(table.entries, IsEmpty()) << bytes;
}

std::string wide(std::u32string_view text, std::size_t width, bool bigEndian) {
    std::string bytes;
    for (const char32_t unit : text)
        for (std::size_t i = 0; i < width; ++i)
            bytes += static_cast<char>((unit >> (8 * (bigEndian ? width - 1 - i : i))) & 0xFF);
    return bytes;
}

} // namespace

TEST(StringsTables, EntriesWithEitherQuoteOrNone) {
    EXPECT_THAT(
        entries("\"a key\" = \"a value\";\n'b' = 'it is \"b\"';\n\"c\" = \"it's c\";d=e;"),
        ElementsAre(Pair("a key", "a value"), Pair("b", "it is \"b\""), Pair("c", "it's c"), Pair("d", "e")));
}

TEST(StringsTables, BareWordsAreMadeOfLettersDigitsAndSomeSigns) {
    EXPECT_THAT(entries("aZ09_$/:.- = http://host/a-b_c$d.e:80;"),
                ElementsAre(Pair("aZ09_$/:.-", "http://host/a-b_c$d.e:80")));
    for (const char c : "+*?!@#%&|~^<>[]`\\"s) expectError("a = b"s + c + "c;", 1, "a semicolon is missing");
    expectError("a = é;", 1, "a string is expected");
}

TEST(StringsTables, CommentsStandBetweenAnyTwoTokens) {
    EXPECT_THAT(entries("/* one */ \"a\" /**/ = // two\n /* \"x\" = \"y\"; */ \"b\" /* ; */ ; // the end"),
                ElementsAre(Pair("a", "b")));
    EXPECT_THAT(entries("//\"a\" = \"b\";\r\"c\"=\"d\";//\u2028\"e\"=\"f\";/***/ /*/ */"),
                ElementsAre(Pair("c", "d"), Pair("e", "f")));
    EXPECT_EQ(value("\"/* kept */ // kept\""), "/* kept */ // kept");
}

TEST(StringsTables, AllWhiteSpaceCounts) {
    EXPECT_THAT(entries(" \t\n\v\f\r\u2028\u2029a\u2028=\u2029\vb\f;\t"), ElementsAre(Pair("a", "b")));
    expectError("a\u00A0= b;", 1, "a semicolon is missing");
}

TEST(StringsTables, EscapesOfOneLetter) {
    EXPECT_EQ(value(R"("\a\b\f\n\r\t\v")"), "\a\b\f\n\r\t\v");
    EXPECT_EQ(value(R"("\"\'\\")"), "\"'\\");
    EXPECT_EQ(value(R"('\'\"')"), "'\"");
    EXPECT_EQ(value(R"("\q\/\u00e9\x41\N")"), "q/u00e9x41N");
    EXPECT_EQ(value("\"\\é\""), "é");
}

TEST(StringsTables, ALineBreakAfterABackslashIsALineBreak) {
    EXPECT_EQ(value("\"one\\\ntwo\""), "one\ntwo");
    EXPECT_EQ(value("\"one\\\r\ntwo\""), "one\r\ntwo");
}

TEST(StringsTables, OctalEscapesAreInTheNextStepEncoding) {
    EXPECT_EQ(value(R"("\101\0601\7")"), "A01\a");
    EXPECT_EQ(value(R"("\1012\18")"), "A2\x01"
                                      "8");
    EXPECT_EQ(value(R"("\200")"), "\u00A0");
    EXPECT_EQ(value(R"("\201\212\237")"), "À\u00CA÷");
    EXPECT_EQ(value(R"("\240\256\257\272\275")"), "©ﬁﬂ”‰");
    EXPECT_EQ(value(R"("\341\350\365\373")"), "ÆŁıß");
    EXPECT_EQ(value(R"("\325\331\335\366")"), "àäéü");
    EXPECT_EQ(value(R"("\374\375\376\377")"), "þÿ\uFFFD\uFFFD");
    EXPECT_EQ(value(R"("\501")"), "A"); // of nine bits, eight count
    EXPECT_EQ(value(R"("\0")"), "\0"s);
}

TEST(StringsTables, EscapesOfCodeUnits) {
    EXPECT_EQ(value(R"("\U0041\U00e9\U00E9\U5df2")"), "Aéé已");
    EXPECT_EQ(value(R"("\U41")"), "A");
    EXPECT_EQ(value(R"("\Ue9x\U00411")"), "éxA1");
    EXPECT_EQ(value(R"("\Ug\U")"), "UgU");
    EXPECT_EQ(value(R"("\UD83D\UDE00")"), "\U0001F600");
}

TEST(StringsTables, HalfACharacterIsReplaced) {
    EXPECT_EQ(value(R"("a\UD83Db")"), "a\uFFFDb");
    EXPECT_EQ(value(R"("a\UDE00")"), "a\uFFFD");
    EXPECT_EQ(value(R"("\UDE00\UD83D")"), "\uFFFD\uFFFD");
    EXPECT_EQ(value(R"("\UD83D\UD83D\UDE00")"), "\uFFFD\U0001F600");
}

TEST(StringsTables, AKeyWithoutValueIsItsOwn) {
    EXPECT_THAT(entries("\"key\";word;'a b' ;"),
                ElementsAre(Pair("a b", "a b"), Pair("key", "key"), Pair("word", "word")));
}

TEST(StringsTables, TheLastOfEqualKeysCounts) {
    EXPECT_THAT(entries("a = 1; b = 2; \"a\" = 3;"), ElementsAre(Pair("a", "3"), Pair("b", "2")));
    EXPECT_THAT(entries("a = 1; a = (2);"), IsEmpty());
    EXPECT_THAT(entries("a = { b = c; }; a = 2;"), ElementsAre(Pair("a", "2")));
}

TEST(StringsTables, KeysAreComparedExactly) {
    EXPECT_THAT(entries("a=1; A=2; \"a \"=3; \"a.\"=4; \"\u00E9\"=5; \"e\u0301\"=6; \"\"=7;"),
                ElementsAre(Pair("", "7"), Pair("A", "2"), Pair("a", "1"), Pair("a ", "3"), Pair("a.", "4"),
                            Pair("e\u0301", "6"), Pair("\u00E9", "5")));
}

TEST(StringsTables, LineBreaksInStringsStay) {
    EXPECT_EQ(value("\"one\ntwo\r\nthree\u2028\""), "one\ntwo\r\nthree\u2028");
}

TEST(StringsTables, WindowsLineEnds) {
    EXPECT_THAT(entries("// first\r\n\"a\" = \"b\";\r\n\r\n\"c\" = \"d\";\r\n"),
                ElementsAre(Pair("a", "b"), Pair("c", "d")));
}

TEST(StringsTables, NothingIsAnEmptyTable) {
    EXPECT_THAT(entries(""), IsEmpty());
    EXPECT_THAT(entries(" \t\r\n\u2029"), IsEmpty());
    EXPECT_THAT(entries("/* nothing */ // at all"), IsEmpty());
    EXPECT_THAT(entries("\xEF\xBB\xBF"), IsEmpty());
    EXPECT_THAT(entries("\xFF\xFE"sv), IsEmpty());
    EXPECT_THAT(entries("\0\0\xFE\xFF"sv), IsEmpty());
    EXPECT_THAT(entries(" { } "), IsEmpty());
}

TEST(StringsTables, BracesMayStandAroundAllEntries) {
    EXPECT_THAT(entries("/* c */ { a = b; \"c\"; }\n"), ElementsAre(Pair("a", "b"), Pair("c", "c")));
    expectError("{ a = b;\n", 2, "a closing brace is missing");
    expectError("{ a = b; }\nc = d;", 2, "text after the end of the table");
    expectError("{ a = b }", 1, "a semicolon is missing");
    expectError("a = b;\n}", 2, "a string is expected");
}

TEST(StringsTables, NestedValuesAreReadAndLeftOut) {
    EXPECT_THAT(
        entries("a = ( one, 'two;', ( ), { x = y; } ); b = { c = d; e; f = (g,); }; h = i; j = (); k = {};"),
        ElementsAre(Pair("h", "i")));
    expectError("a = ( one two );", 1, "a comma is missing");
    expectError("a = ( ,one );", 1, "a string is expected");
    expectError("a = (\none", 2, "a comma is missing");
    expectError("a = (\none,", 2, "the table ends too early");
    expectError("a = {\nb = c;\n", 3, "the table ends too early");
    expectError("a = { b = c };", 1, "a semicolon is missing");
}

TEST(StringsTables, NestingHasAnEnd) {
    const auto nested = [](std::size_t depth, const std::string& open, const std::string& close) {
        std::string text = "a = ";
        for (std::size_t i = 0; i < depth; ++i) text += open;
        text += "x";
        for (std::size_t i = 0; i < depth; ++i) text += close;
        return text + ";";
    };
    EXPECT_THAT(entries(nested(64, "(", ")")), IsEmpty());
    EXPECT_THAT(entries(nested(64, "{ k = ", "; }")), IsEmpty());
    for (const std::size_t depth : {65u, 1000000u}) {
        expectError(nested(depth, "(", ")"), 1, "too deeply nested");
        expectError(nested(depth, "{ k = ", "; }"), 1, "too deeply nested");
    }
    expectError("a = " + std::string(1000000, '('), 1, "too deeply nested");
}

TEST(StringsTables, EveryMistakeIsToldWithItsLine) {
    expectError("a = b\n", 2, "a semicolon is missing");
    expectError("a = b;\nc = d\ne = f;\n", 3, "a semicolon is missing");
    expectError("a b;", 1, "a semicolon is missing");
    expectError("a = b;\n\n= c;", 3, "a string is expected");
    expectError("a = ;", 1, "a string is expected");
    expectError("a = b;;", 1, "a string is expected");
    expectError("a =\n", 2, "the table ends too early");
    expectError("a = b;\n\"c", 2, "a string does not end");
    expectError("a = b;\nc = \"d\n\n", 2, "a string does not end");
    expectError("a = 'b\\';", 1, "a string does not end");
    expectError("a = \"b\\", 1, "a string does not end");
    expectError("a = \"b';", 1, "a string does not end");
    expectError("a = b;\n\n/* c\n\n*", 3, "a comment does not end");
    expectError("/*/", 1, "a comment does not end");
    expectError("a = b;\n? c", 2, "a string is expected");
    expectError("(a, b)", 1, "a string is expected");
    expectError("a = b;\0"sv, 1, "a string is expected");
    expectError("bplist00\xD1\x01\x02", 1, "not UTF-8");
}

TEST(StringsTables, LinesAreCountedWhateverEndsThem) {
    expectError("a;\r\nb;\r\n?", 3, "a string is expected");
    expectError("a;\rb;\r?", 3, "a string is expected");
    expectError("a;\nb;\n?", 3, "a string is expected");
    expectError("a;\n\rb;\r\r\n\n?", 6, "a string is expected");
}

TEST(StringsTables, Utf8WithAndWithoutMark) {
    EXPECT_THAT(entries("\"é\" = \"已经存在 \U0001F600\";"), ElementsAre(Pair("é", "已经存在 \U0001F600")));
    EXPECT_THAT(entries("\xEF\xBB\xBF\"é\" = \"已\";"), ElementsAre(Pair("é", "已")));
    EXPECT_EQ(value("\"\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF\""),
              "\x7F\u0080\u07FF\u0800\uD7FF\uE000\uFFFF\U00010000\U0010FFFF");
}

TEST(StringsTables, Utf16AndUtf32WithTheirMarks) {
    for (const bool bigEndian : {false, true}) {
        const auto sixteen = U"\uFEFF\"\u00E9\" = \"\u5DF2\";"s;
        EXPECT_THAT(entries(wide(sixteen, 2, bigEndian)), ElementsAre(Pair("é", "已"))) << bigEndian;
        std::u32string pair = U"\uFEFFk = \"";
        pair += {0xD83D, 0xDE00};
        pair += U"\";";
        EXPECT_THAT(entries(wide(pair, 2, bigEndian)), ElementsAre(Pair("k", "\U0001F600"))) << bigEndian;
        const auto thirtyTwo = U"\uFEFF\"\u00E9\" = \"\U0001F600\";"s;
        EXPECT_THAT(entries(wide(thirtyTwo, 4, bigEndian)), ElementsAre(Pair("é", "\U0001F600"))) << bigEndian;
    }
}

TEST(StringsTables, MalformedUtf8) {
    for (const auto bad : {"\x80"sv, "\xBF"sv, "\xC0\x80"sv, "\xC1\xBF"sv, "\xC3"sv, "\xC3("sv,
                           "\xE0\x80\x80"sv, "\xE0\x9F\xBF"sv, "\xE2\x82"sv, "\xE2(\xA1"sv, "\xED\xA0\x80"sv,
                           "\xED\xBF\xBF"sv, "\xF0\x80\x80\x80"sv, "\xF0\x8F\xBF\xBF"sv, "\xF0\x9F\x98"sv,
                           "\xF4\x90\x80\x80"sv, "\xF5\x80\x80\x80"sv, "\xFE"sv, "\xFF"sv}) {
        expectError("a = b;\n\"" + std::string(bad) + "\" = c;", 2, "not UTF-8");
        expectError("a = b;\n\n" + std::string(bad), 3, "not UTF-8");
    }
    expectError("\xEF\xBB\xBF\n\xFF", 2, "not UTF-8");
}

TEST(StringsTables, MalformedUtf16AndUtf32) {
    for (const bool bigEndian : {false, true}) {
        expectError(wide(U"\uFEFFa;\n"s, 2, bigEndian) + "b", 2, "the file ends within a character");
        expectError(wide(U"\uFEFFa;\n"s, 4, bigEndian) + "b\0c"s, 2, "the file ends within a character");
        for (const char32_t bad :
             {char32_t{0xD800}, char32_t{0xDFFF}, char32_t{0x110000}, char32_t{0xFFFFFFFF}})
            expectError(wide(U"\uFEFFa;\n\n"s + bad, 4, bigEndian), 3, "not UTF-32");
        std::u32string lone = U"\uFEFFk = \"a";
        lone += {0xDE00, 'b', 0xD83D};
        lone += U"\";";
        EXPECT_THAT(entries(wide(lone, 2, bigEndian)), ElementsAre(Pair("k", "a\uFFFDb\uFFFD")));
    }
}

TEST(StringsTables, WithoutMarkUtf16IsNoTable) {
    expectError(wide(U"a = b;"s, 2, false), 1, "a semicolon is missing");
    expectError(wide(U"a = b;"s, 2, true), 1, "a string is expected");
}

// Whatever the bytes are, there is a table or an error with a line of the file, and texts are UTF-8.
TEST(StringsTables, DamagedTablesGiveATableOrAnError) {
    const std::vector<std::string> seeds = {
        "/* c */ \"key\" = \"v\\U00e9\\101\\n\"; // end\n'b' = { c = (d, e); };\n{ a = \"\U0001F600\"; }",
        wide(U"\uFEFF\"\u00E9\" = \"\\UD83D\\UDE00\"; b = (c, {d = e;});\n"s, 2, false),
        wide(U"\uFEFF\"\u00E9\" = \"\U0001F600\"; k;\n"s, 4, true),
    };
    constexpr std::string_view marks = "\"'\\=;{}(),/*\nU7\xFF\0\x80"sv;
    std::mt19937 random(20240229); // the same numbers everywhere
    const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
    int tables = 0, errors = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string bytes = seeds[static_cast<std::size_t>(round) % seeds.size()];
        for (std::size_t changes = 1 + below(4); changes > 0; --changes) {
            const std::size_t at = below(bytes.size());
            switch (below(4)) {
            case 0:
                bytes[at] = marks[below(marks.size())];
                break;
            case 1:
                bytes.insert(at, 1, marks[below(marks.size())]);
                break;
            case 2:
                bytes.erase(at, 1 + below(3));
                break;
            default:
                bytes.insert(at, bytes.substr(below(bytes.size()), below(12)));
                break;
            }
            if (bytes.empty()) bytes = " ";
        }
        const auto table = parseStringsTable(bytes);
        if (table.error.empty()) {
            ++tables;
            ASSERT_EQ(table.errorLine, 0);
            std::string texts = "x";
            for (const auto& [key, text] : table.entries) texts.append(key).append(text);
            ASSERT_NE(parseStringsTable(texts).error, "not UTF-8") << round;
        } else {
            ++errors;
            ASSERT_GE(table.errorLine, 1);
            ASSERT_LE(table.errorLine,
                      1 + std::ranges::count_if(bytes, [](char c) { return c == '\n' || c == '\r'; }));
            ASSERT_THAT(table.entries, IsEmpty());
        }
    }
    EXPECT_GT(tables, 300);
    EXPECT_GT(errors, 1000);
}

} // namespace zr
