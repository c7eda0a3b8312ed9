// SPDX-License-Identifier: MIT
#include "Support/CommaLocales.h"

#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace zr {

namespace {

constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr auto kMostNatural = std::numeric_limits<std::uint64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

class Thing : public NSObject {
public:
    ZR_CLASS(Thing, NSObject)
};
ZR_CLASS_TABLE(Thing)

class SmallThing : public Thing {
public:
    ZR_CLASS(SmallThing, Thing)
};
ZR_CLASS_TABLE(SmallThing)

enum Plain { zero, one, seven = 7 };
enum class Scoped : std::int64_t { negative = -3 };

// What C makes of it; the C library is told the size of the argument.
template <class Number>
std::string inC(std::string format, Number number) {
    if constexpr (sizeof(Number) == 8 && std::is_integral_v<Number>) format.insert(format.size() - 1, "ll");
    char buffer[2000];
    if constexpr (std::is_integral_v<Number> && sizeof(Number) == 8)
        std::snprintf(buffer, sizeof buffer, format.c_str(), static_cast<long long>(number));
    else
        std::snprintf(buffer, sizeof buffer, format.c_str(), number);
    return buffer;
}

template <class Number>
void expectAsInC(const std::string& flagLetters, const std::string& conversions,
                 const std::vector<Number>& numbers) {
    for (unsigned mask = 0; mask < (1u << flagLetters.size()); ++mask) {
        std::string flags;
        for (std::size_t i = 0; i < flagLetters.size(); ++i)
            if ((mask & (1u << i)) != 0) flags += flagLetters[i];
        for (const char letter : conversions)
            for (const auto* width : {"", "1", "4", "12", "30"})
                for (const auto* precision : {"", ".", ".0", ".1", ".3", ".15"})
                    for (const Number number : numbers) {
                        const std::string format = "%" + flags + width + precision + letter;
                        EXPECT_EQ(stringWithFormat(format, number), inC(format, number))
                            << format << " of " << +number;
                    }
    }
}

} // namespace

TEST(Formats, ObjectsAndTexts) {
    EXPECT_EQ(stringWithFormat("%@", "text"), "text");
    EXPECT_EQ(stringWithFormat("%@ and %@", std::string("one"), std::string_view("two")), "one and two");
    EXPECT_EQ(stringWithFormat("%@", std::optional<std::string>("there")), "there");
    EXPECT_EQ(stringWithFormat("%@", std::optional<std::string>("")), "");
    EXPECT_EQ(stringWithFormat("[%@]", ""), "[]");
    EXPECT_EQ(stringWithFormat("%@", "已经存在"), "已经存在");
}

TEST(Formats, NilOfAnyKind) {
    EXPECT_EQ(stringWithFormat("%@", nullptr), "(null)");
    EXPECT_EQ(stringWithFormat("%@", std::optional<std::string>()), "(null)");
    EXPECT_EQ(stringWithFormat("%@", static_cast<const char*>(nullptr)), "(null)");
    EXPECT_EQ(stringWithFormat("%s", static_cast<const char*>(nullptr)), "(null)");
    EXPECT_EQ(stringWithFormat("%@", std::shared_ptr<Thing>()), "(null)");
    EXPECT_EQ(stringWithFormat("%@", static_cast<Thing*>(nullptr)), "(null)");
    EXPECT_EQ(stringWithFormat("%d", nullptr), "0");
    EXPECT_EQ(stringWithFormat("%.1f", nullptr), "0.0");
}

TEST(Formats, AnObjectPrintsTheNameOfItsClass) {
    const std::shared_ptr<Thing> thing = make<SmallThing>();
    EXPECT_EQ(stringWithFormat("%@ %@", thing, thing.get()), "SmallThing SmallThing");
}

TEST(Formats, NumbersAsObjects) {
    EXPECT_EQ(stringWithFormat("%@ %@ %@", 0, -17, 17u), "0 -17 17");
    EXPECT_EQ(stringWithFormat("%@ %@ %@", kLeast, kMost, kMostNatural),
              "-9223372036854775808 9223372036854775807 18446744073709551615");
    EXPECT_EQ(stringWithFormat("%@ %@", true, false), "1 0");
    EXPECT_EQ(stringWithFormat("%@ %@ %@ %@", 0.1, 1.0, -2.5, 0.0), "0.1 1 -2.5 0");
    EXPECT_EQ(stringWithFormat("%@ %@", 0.1 + 0.2, 1.0 / 3), "0.30000000000000004 0.3333333333333333");
    EXPECT_EQ(stringWithFormat("%@ %@ %@", 100000.0, 1000000.0, 1e16), "100000 1000000 10000000000000000");
    EXPECT_EQ(stringWithFormat("%@ %@ %@", 1e17, 1e-4, 1e-5), "1e+17 0.0001 1e-05");
    EXPECT_EQ(stringWithFormat("%@ %@ %@", kInfinity, -kInfinity, std::nan("")), "inf -inf nan");
}

TEST(Formats, WholeNumbers) {
    EXPECT_EQ(stringWithFormat("%d", 5), "5");
    EXPECT_EQ(stringWithFormat("%02d:%02d:%02d", 1, 23, 456), "01:23:456");
    EXPECT_EQ(stringWithFormat("%02d", -5), "-5");
    EXPECT_EQ(stringWithFormat("%03d", -5), "-05");
    EXPECT_EQ(stringWithFormat("%d %ld %lld %i", kLeast, kMost, kLeast + 1, 3),
              "-9223372036854775808 9223372036854775807 -9223372036854775807 3");
    EXPECT_EQ(stringWithFormat("%u %lu", kMostNatural, 4294967295u), "18446744073709551615 4294967295");
    EXPECT_EQ(stringWithFormat("%d", static_cast<std::int8_t>(-128)), "-128");
    EXPECT_EQ(stringWithFormat("%d", static_cast<std::uint16_t>(51)), "51");
    EXPECT_EQ(stringWithFormat("%d", kMostNatural), "18446744073709551615"); // arguments know their size
}

TEST(Formats, NegativeNumbersWithoutSignHaveTheWidthOfTheArgument) {
    EXPECT_EQ(stringWithFormat("%x %X %u %o", -1, -1, -1, -1), "ffffffff FFFFFFFF 4294967295 37777777777");
    EXPECT_EQ(stringWithFormat("%x", static_cast<std::int8_t>(-1)), "ffffffff");
    EXPECT_EQ(stringWithFormat("%x", std::int64_t{-1}), "ffffffffffffffff");
}

TEST(Formats, TruthAndEnumerationsAreNumbers) {
    EXPECT_EQ(stringWithFormat("%d %d", true, false), "1 0");
    EXPECT_EQ(stringWithFormat("%d %d", seven, Scoped::negative), "7 -3");
    static_assert(!std::is_constructible_v<FormatArgument, void*>);
}

TEST(Formats, ArgumentsOfAnotherKindAreConverted) {
    EXPECT_EQ(stringWithFormat("%d %d", 2.9, -2.9), "2 -2");
    EXPECT_EQ(stringWithFormat("%d", 1e300), "9223372036854775807");
    EXPECT_EQ(stringWithFormat("%d", -1e300), "-9223372036854775808");
    EXPECT_EQ(stringWithFormat("%d", std::nan("")), "0");
    EXPECT_EQ(stringWithFormat("%.1f %.1f", 3, kMostNatural), "3.0 18446744073709551616.0");
    EXPECT_EQ(stringWithFormat("%d", "12"), "0");
    EXPECT_EQ(stringWithFormat("%s", 12), "12");
}

TEST(Formats, SignedNumbersAreAsInC) {
    expectAsInC<int>("-0+ ", "di", {0, 1, -1, 7, -42, 123456, 2147483647, -2147483647 - 1});
    expectAsInC<std::int64_t>("-0+ ", "di", {0, -1, kMost, kLeast});
}

TEST(Formats, UnsignedNumbersAreAsInC) {
    expectAsInC<unsigned>("-0#", "xXo", {0, 1, 8, 255, 4294967295u});
    expectAsInC<unsigned>("-0", "u", {0, 1, 4294967295u});
    expectAsInC<int>("-0#", "xXo", {0, 8, -1, -2147483647 - 1});
    expectAsInC<std::uint64_t>("-0#", "xXo", {0, 1, kMostNatural});
}

TEST(Formats, RealNumbersAreAsInC) {
    expectAsInC<double>("-0+ #", "fFeEgG",
                        {0.0,       -0.0,       1.0,         0.5,       1.5,
                         2.5,       -3.25,      0.1,         99999.95,  123456.789,
                         1234567.0, 1e-4,       1e-5,        9.9999e-5, 1e15,
                         1e22,      1e100,      -1e-100,     5e-324,    1.7976931348623157e308,
                         kInfinity, -kInfinity, std::nan("")});
}

TEST(Formats, Characters) {
    EXPECT_EQ(stringWithFormat("%c%c", 'A', 66), "AB");
    EXPECT_EQ(stringWithFormat("[%3c|%-3c]", 'x', 'y'), "[  x|y  ]");
}

TEST(Formats, TextIsPaddedWithBlanksInItsOwnUnits) {
    EXPECT_EQ(stringWithFormat("[%5@|%-5@|%05@|%1@]", "ab", "cd", "ef", "long"), "[   ab|cd   |   ef|long]");
    EXPECT_EQ(stringWithFormat("[%4@|%-4@]", "é", "已"), "[   é|已   ]");
    EXPECT_EQ(stringWithFormat("[%3s]", "\U0001F600"), "[ \U0001F600]");
    EXPECT_EQ(stringWithFormat("[%.2s|%5.1s|%.9s]", "abc", "abc", "abc"), "[ab|    a|abc]");
}

TEST(Formats, APercentSign) {
    EXPECT_EQ(stringWithFormat("100%%"), "100%");
    EXPECT_EQ(stringWithFormat("%d%%%d", 1, 2), "1%2");
    EXPECT_EQ(stringWithFormat("%%d", 1), "%d");
}

TEST(Formats, AConversionWithoutArgumentStays) {
    EXPECT_EQ(stringWithFormat("%@ %02d %-5.3lf"), "%@ %02d %-5.3lf");
    EXPECT_EQ(stringWithFormat("%d and %d", 1), "1 and %d");
}

TEST(Formats, ArgumentsTooManyAreLeftOut) {
    EXPECT_EQ(stringWithFormat("%d", 1, 2, "three"), "1");
    EXPECT_EQ(stringWithFormat("", 1), "");
    EXPECT_EQ(stringWithFormat("plain", 1), "plain");
}

TEST(Formats, AnUnknownConversionStaysAndTakesNoArgument) {
    EXPECT_EQ(stringWithFormat("%y %d", 1), "%y 1");
    EXPECT_EQ(stringWithFormat("%*d", 1), "%*d");
    EXPECT_EQ(stringWithFormat("%5é%d", 1), "%5é1");
    EXPECT_EQ(stringWithFormat("%n%p%a%d", 1), "%n%p%a1");
}

TEST(Formats, AnUnfinishedConversionAtTheEndStays) {
    for (const auto* format : {"%", "a%", "%0", "%-5", "%.", "%5.2", "%ll", "%l", "%%%"}) {
        std::string expected = format;
        if (expected == "%%%") expected = "%%";
        EXPECT_EQ(stringWithFormat(format, 1), expected) << format;
    }
}

TEST(Formats, AHugeWidthIsLimited) {
    EXPECT_EQ(stringWithFormat("%4096d", 1).size(), 4096u);
    for (const auto* format : {"%4097d", "%99999999999999999999d", "%-2147483648d", "%099999d", "%99999@"})
        EXPECT_EQ(stringWithFormat(format, 1).size(), 4096u) << format;
    EXPECT_EQ(stringWithFormat("%.99999d", 1).size(), 4096u);
    EXPECT_EQ(stringWithFormat("%.99999f", 1.0).size(), 4098u);
    EXPECT_EQ(stringWithFormat("%.99999f", -std::numeric_limits<double>::max()).size(), 4096u + 309 + 2);
    EXPECT_EQ(stringWithFormat("%#.99999g", std::numeric_limits<double>::min()).size(), 4096u + 1 + 5);
}

TEST(Formats, TextsOfArgumentsAreNoFormats) {
    EXPECT_EQ(stringWithFormat("%@ %d", "%d%%%@", 1), "%d%%%@ 1");
    using namespace std::string_view_literals;
    EXPECT_EQ(stringWithFormat("a\0%d"sv, 1), std::string("a\0"
                                                          "1",
                                                          3));
    EXPECT_EQ(stringWithFormat("%@", "x\0y"sv), std::string("x\0y", 3));
}

namespace {

void expectPoints() {
    EXPECT_EQ(stringWithFormat("%.2f %g %e %@ %d", 1234.5, 0.5, 2.5, 1234.5, 1234567),
              "1234.50 0.5 2.500000e+00 1234.5 1234567");
}

} // namespace

TEST(Formats, TheLanguageOfTheProgramChangesNoNumber) {
    const test::CommaInStreams comma;
    expectPoints();
}

TEST(Formats, TheLanguageOfTheSystemChangesNoNumber) {
    const test::CommaInC comma;
    if (!comma.isSet()) GTEST_SKIP() << comma.whyNot();
    expectPoints();
}

} // namespace zr
