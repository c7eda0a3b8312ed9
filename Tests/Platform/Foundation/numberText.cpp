// SPDX-License-Identifier: MIT
#include "Support/CommaLocales.h"

#include <Foundation/NSString.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>

namespace zr {

namespace {

using namespace std::string_view_literals;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr float kInfinityF = std::numeric_limits<float>::infinity();
constexpr auto kLeastInt = std::numeric_limits<std::int32_t>::min();
constexpr auto kMostInt = std::numeric_limits<std::int32_t>::max();
constexpr auto kLeastInteger = std::numeric_limits<std::int64_t>::min();
constexpr auto kMostInteger = std::numeric_limits<std::int64_t>::max();

struct Reading {
    std::string_view text;
    double asDouble;
    float asFloat;
    std::int32_t asInt;
    std::int64_t asInteger;
};

// Octal escapes end after three digits, so that a digit may follow.
constexpr Reading kReadings[] = {
    // Nothing to read.
    {"", 0, 0, 0, 0},
    {" ", 0, 0, 0, 0},
    {"\t\n", 0, 0, 0, 0},
    {"abc", 0, 0, 0, 0},
    {"abc12", 0, 0, 0, 0},
    {"e5", 0, 0, 0, 0},
    {".", 0, 0, 0, 0},
    {"-", 0, 0, 0, 0},
    {"+", 0, 0, 0, 0},
    {"-.", 0, 0, 0, 0},
    {"+.", 0, 0, 0, 0},
    {".e5", 0, 0, 0, 0},
    {"-.e5", 0, 0, 0, 0},
    {"e", 0, 0, 0, 0},
    {"-e1", 0, 0, 0, 0},
    {",5", 0, 0, 0, 0},
    {"%", 0, 0, 0, 0},
    {"--1", 0, 0, 0, 0},
    {"++1", 0, 0, 0, 0},
    {"+-1", 0, 0, 0, 0},
    {"-+1", 0, 0, 0, 0},
    {"(5)", 0, 0, 0, 0},
    {"#5", 0, 0, 0, 0},
    {"$5", 0, 0, 0, 0},
    {"'5'", 0, 0, 0, 0},
    {"\\5", 0, 0, 0, 0},
    {"/5", 0, 0, 0, 0},
    {":5", 0, 0, 0, 0},
    // Whole numbers and what follows them.
    {"0", 0, 0, 0, 0},
    {"1", 1, 1, 1, 1},
    {"7", 7, 7, 7, 7},
    {"12", 12, 12, 12, 12},
    {"007", 7, 7, 7, 7},
    {"010", 10, 10, 10, 10},
    {"00000000000000000000000000012", 12, 12, 12, 12},
    {"+5", 5, 5, 5, 5},
    {"-5", -5, -5, -5, -5},
    {"+0", 0, 0, 0, 0},
    {"12abc", 12, 12, 12, 12},
    {"12%", 12, 12, 12, 12},
    {"5-3", 5, 5, 5, 5},
    {"5+3", 5, 5, 5, 5},
    {"1 000", 1, 1, 1, 1},
    {"1,000", 1, 1, 1, 1},
    {"1,5", 1, 1, 1, 1},
    {"1'000", 1, 1, 1, 1},
    {"1_000", 1, 1, 1, 1},
    {"12:30", 12, 12, 12, 12},
    {"5 6", 5, 5, 5, 5},
    {"12\n", 12, 12, 12, 12},
    {"12\t13", 12, 12, 12, 12},
    {"5e", 5, 5, 5, 5},
    {"42m", 42, 42, 42, 42},
    // Zeros have a sign.
    {"-0", -0.0, -0.0f, 0, 0},
    {"-0.0", -0.0, -0.0f, 0, 0},
    {"-.0", -0.0, -0.0f, 0, 0},
    {"-0.", -0.0, -0.0f, 0, 0},
    {"-0abc", -0.0, -0.0f, 0, 0},
    {"0.0", 0, 0, 0, 0},
    {"+0.0", 0, 0, 0, 0},
    {"-0e5", -0.0, -0.0f, 0, 0},
    {"-00", -0.0, -0.0f, 0, 0},
    {"-0x10", -0.0, -0.0f, 0, 0},
    {"0e999999", 0, 0, 0, 0},
    {"-0e-999999", -0.0, -0.0f, 0, 0},
    {"- 0", 0, 0, 0, 0},
    {"\t-0", -0.0, -0.0f, 0, 0},
    // Fractions.
    {".5", 0.5, 0.5f, 0, 0},
    {"-.5", -0.5, -0.5f, 0, 0},
    {"+.5", 0.5, 0.5f, 0, 0},
    {"5.", 5, 5, 5, 5},
    {"-5.", -5, -5, -5, -5},
    {"5.5", 5.5, 5.5f, 5, 5},
    {"1.5abc", 1.5, 1.5f, 1, 1},
    {"3.7", 3.7, 3.7f, 3, 3},
    {"-3.7", -3.7, -3.7f, -3, -3},
    {"0.1", 0.1, 0.1f, 0, 0},
    {"0.10", 0.1, 0.1f, 0, 0},
    {"1..5", 1, 1, 1, 1},
    {"1.2.3", 1.2, 1.2f, 1, 1},
    {".5.5", 0.5, 0.5f, 0, 0},
    {". 5", 0, 0, 0, 0},
    {"1. 5", 1, 1, 1, 1},
    {"1.,5", 1, 1, 1, 1},
    {"01.50", 1.5, 1.5f, 1, 1},
    {"0.3", 0.3, 0.3f, 0, 0},
    {"2.675", 2.675, 2.675f, 2, 2},
    {"3.141592653589793238462643383279", 3.141592653589793, 3.1415927f, 3, 3},
    // Exponents.
    {"1e3", 1000, 1000, 1, 1},
    {"1E3", 1000, 1000, 1, 1},
    {"1e+3", 1000, 1000, 1, 1},
    {"1e-3", 0.001, 0.001f, 1, 1},
    {"-1.5e2", -150, -150, -1, -1},
    {".5e1", 5, 5, 0, 0},
    {"5.e1", 50, 50, 5, 5},
    {"1e", 1, 1, 1, 1},
    {"1E", 1, 1, 1, 1},
    {"1e+", 1, 1, 1, 1},
    {"1e-", 1, 1, 1, 1},
    {"1e+abc", 1, 1, 1, 1},
    {"1ee5", 1, 1, 1, 1},
    {"1e 5", 1, 1, 1, 1},
    {"1 e5", 1, 1, 1, 1},
    {"1e5.5", 100000, 100000, 1, 1},
    {"1e1e1", 10, 10, 1, 1},
    {"1e++5", 1, 1, 1, 1},
    {"1e005", 100000, 100000, 1, 1},
    {"12e0", 12, 12, 12, 12},
    {"2.5e", 2.5, 2.5f, 2, 2},
    {"-2.5E-", -2.5, -2.5f, -2, -2},
    {"1d5", 1, 1, 1, 1},
    {"1p5", 1, 1, 1, 1},
    {"1e5abc", 100000, 100000, 1, 1},
    // No other notations.
    {"inf", 0, 0, 0, 0},
    {"INF", 0, 0, 0, 0},
    {"-inf", 0, 0, 0, 0},
    {"infinity", 0, 0, 0, 0},
    {"nan", 0, 0, 0, 0},
    {"NaN", 0, 0, 0, 0},
    {"-nan", 0, 0, 0, 0},
    {"nan(1)", 0, 0, 0, 0},
    {"0x10", 0, 0, 0, 0},
    {"0X1F", 0, 0, 0, 0},
    {"-0x1p3", -0.0, -0.0f, 0, 0},
    {"0b11", 0, 0, 0, 0},
    {"0o17", 0, 0, 0, 0},
    {"1f", 1, 1, 1, 1},
    {"1L", 1, 1, 1, 1},
    {"1e5f", 100000, 100000, 1, 1},
    {"true", 0, 0, 0, 0},
    {"YES", 0, 0, 0, 0},
    {"\u00bd", 0, 0, 0, 0},
    {"\u22125", 0, 0, 0, 0},
    {"\u221e", 0, 0, 0, 0},
    {"\uff11\uff12", 0, 0, 0, 0},
    {"\u0663\u0664", 0, 0, 0, 0},
    {"\u0967\u0968", 0, 0, 0, 0},
    {"1\uff12", 1, 1, 1, 1},
    {"-\uff13", 0, 0, 0, 0},
    {"5\uff0e5", 5, 5, 5, 5},
    {"1\u066b5", 1, 1, 1, 1},
    // White space.
    {" 5", 5, 5, 5, 5},
    {"\t5", 5, 5, 5, 5},
    {"\n5", 5, 5, 5, 5},
    {"\v5", 5, 5, 5, 5},
    {"\f5", 5, 5, 5, 5},
    {"\r5", 5, 5, 5, 5},
    {"\r\n 5", 5, 5, 5, 5},
    {"\0015", 5, 5, 5, 5},
    {"\0375", 5, 5, 5, 5},
    {"\1775", 5, 5, 5, 5},
    {"\u00805", 5, 5, 5, 5},
    {"\u00855", 5, 5, 5, 5},
    {"\u009f5", 5, 5, 5, 5},
    {"\u00a05", 5, 5, 5, 5},
    {"\u20005", 5, 5, 5, 5},
    {"\u20075", 5, 5, 5, 5},
    {"\u200a5", 5, 5, 5, 5},
    {"\u200b5", 5, 5, 5, 5},
    {"\u30005", 5, 5, 5, 5},
    {" \t\u00a0\u2003\u3000-5", -5, -5, -5, -5},
    {"\u2003.5", 0.5, 0.5f, 0, 0},
    {"\u00a15", 0, 0, 0, 0},
    {"\u200c5", 0, 0, 0, 0},
    {"\u1fff5", 0, 0, 0, 0},
    {"\u2028 5", 0, 0, 0, 0},
    {"\u20605", 0, 0, 0, 0},
    {"\u16805", 0, 0, 0, 0},
    {"\ufeff5", 0, 0, 0, 0},
    {"\u30015", 0, 0, 0, 0},
    {"\u2fff5", 0, 0, 0, 0},
    // White space after the sign.
    {"- 5", 0, 0, -5, -5},
    {"+ 5", 0, 0, 5, 5},
    {"-\t5", 0, 0, -5, -5},
    {"-\n\n5", 0, 0, -5, -5},
    {"-\u00a05", 0, 0, -5, -5},
    {"-\u30005", 0, 0, -5, -5},
    {"- -5", 0, 0, 0, 0},
    {"- .5", 0, 0, 0, 0},
    {"- 5.5", 0, 0, -5, -5},
    {"-  ", 0, 0, 0, 0},
    {" - 5", 0, 0, -5, -5},
    // Embedded zeros.
    {"\000"sv, 0, 0, 0, 0},
    {"5\000"sv, 5, 5, 5, 5},
    {"\0005"sv, 5, 5, 5, 5},
    {"1\0002"sv, 1, 1, 1, 1},
    {"-\0005"sv, 0, 0, -5, -5},
    {"1.\0005"sv, 1, 1, 1, 1},
    {"1e\0005"sv, 1, 1, 1, 1},
    {"\000\000-7"sv, -7, -7, -7, -7},
    // Ends of 32 bits.
    {"2147483646", 2147483646.0, 2147483648.0f, 2147483646, 2147483646},
    {"2147483647", 2147483647.0, 2147483648.0f, kMostInt, 2147483647},
    {"2147483648", 2147483648.0, 2147483648.0f, kMostInt, 2147483648},
    {"2147483649", 2147483649.0, 2147483648.0f, kMostInt, 2147483649},
    {"2147483650", 2147483650.0, 2147483648.0f, kMostInt, 2147483650},
    {"-2147483647", -2147483647.0, -2147483648.0f, -2147483647, -2147483647},
    {"-2147483648", -2147483648.0, -2147483648.0f, kLeastInt, -2147483648},
    {"-2147483649", -2147483649.0, -2147483648.0f, kLeastInt, -2147483649},
    {"-2147483650", -2147483650.0, -2147483648.0f, kLeastInt, -2147483650},
    {"4294967295", 4294967295.0, 4294967296.0f, kMostInt, 4294967295},
    {"4294967296", 4294967296.0, 4294967296.0f, kMostInt, 4294967296},
    {"-4294967297", -4294967297.0, -4294967296.0f, kLeastInt, -4294967297},
    {"21474836470", 21474836470.0, 21474836480.0f, kMostInt, 21474836470},
    {"2147483647.9", 2147483647.9, 2147483648.0f, kMostInt, 2147483647},
    {"2147483648abc", 2147483648.0, 2147483648.0f, kMostInt, 2147483648},
    {"0000002147483648", 2147483648.0, 2147483648.0f, kMostInt, 2147483648},
    // Ends of 64 bits.
    {"9223372036854775806", 9.223372036854776e+18, 9.223372e+18f, kMostInt, 9223372036854775806},
    {"9223372036854775807", 9.223372036854776e+18, 9.223372e+18f, kMostInt, kMostInteger},
    {"9223372036854775808", 9.223372036854776e+18, 9.223372e+18f, kMostInt, kMostInteger},
    {"9223372036854775810", 9.223372036854776e+18, 9.223372e+18f, kMostInt, kMostInteger},
    {"-9223372036854775807", -9.223372036854776e+18, -9.223372e+18f, kLeastInt, -9223372036854775807},
    {"-9223372036854775808", -9.223372036854776e+18, -9.223372e+18f, kLeastInt, kLeastInteger},
    {"-9223372036854775809", -9.223372036854776e+18, -9.223372e+18f, kLeastInt, kLeastInteger},
    {"-9223372036854775810", -9.223372036854776e+18, -9.223372e+18f, kLeastInt, kLeastInteger},
    {"18446744073709551615", 1.8446744073709552e+19, 1.8446744e+19f, kMostInt, kMostInteger},
    {"18446744073709551616", 1.8446744073709552e+19, 1.8446744e+19f, kMostInt, kMostInteger},
    {"-18446744073709551616", -1.8446744073709552e+19, -1.8446744e+19f, kLeastInt, kLeastInteger},
    {"92233720368547758070", 9.223372036854776e+19, 9.223372e+19f, kMostInt, kMostInteger},
    {"99999999999999999999", 1e+20, 1e+20f, kMostInt, kMostInteger},
    {"-99999999999999999999", -1e+20, -1e+20f, kLeastInt, kLeastInteger},
    {"9999999999999999999999999999999999999999", 1e+40, kInfinityF, kMostInt, kMostInteger},
    {"-9999999999999999999999999999999999999999", -1e+40, -kInfinityF, kLeastInt, kLeastInteger},
    {"1000000000000000000000", 1e+21, 1e+21f, kMostInt, kMostInteger},
    // Many digits.
    {"123456789012345678", 1.2345678901234568e+17, 1.2345679e+17f, kMostInt, 123456789012345678},
    {"1234567890123456789", 1.2345678901234568e+18, 1.234568e+18f, kMostInt, 1234567890123456789},
    {"12345678901234567890", 1.2345678901234567e+19, 1.2345679e+19f, kMostInt, kMostInteger},
    {"9007199254740993", 9007199254740992.0, 9007199254740992.0f, kMostInt, 9007199254740993},
    {"9007199254740992.9999999999", 9007199254740992.0, 9007199254740992.0f, kMostInt, 9007199254740992},
    {"9007199254740993.00000000000000000000000000001", 9007199254740994.0, 9007199254740992.0f, kMostInt,
     9007199254740993},
    {"0.1000000000000000055511151231257827021181583404541015625", 0.1, 0.1f, 0, 0},
    {"0.30000000000000004", 0.30000000000000004, 0.3f, 0, 0},
    {"1.00000000000000011102230246251565404236316680908203124", 1, 1, 1, 1},
    {"1.00000000000000011102230246251565404236316680908203125", 1, 1, 1, 1},
    {"1.00000000000000011102230246251565404236316680908203126", 1.0000000000000002, 1, 1, 1},
    {"0.000000000000000000000000000000000000001", 1e-39, 1e-39f, 0, 0},
    {"100000000000000000000000000000000000000000", 1e+41, kInfinityF, kMostInt, kMostInteger},
    // The largest numbers.
    {"1e308", 1e+308, kInfinityF, 1, 1},
    {"1.7976931348623157e308", 1.7976931348623157e+308, kInfinityF, 1, 1},
    {"-1.7976931348623157e308", -1.7976931348623157e+308, -kInfinityF, -1, -1},
    {"1.7976931348623158e308", 1.7976931348623157e+308, kInfinityF, 1, 1},
    {"1.7976931348623159e308", kInfinity, kInfinityF, 1, 1},
    {"1e309", kInfinity, kInfinityF, 1, 1},
    {"-1e309", -kInfinity, -kInfinityF, -1, -1},
    {"1e400", kInfinity, kInfinityF, 1, 1},
    {"-1e400", -kInfinity, -kInfinityF, -1, -1},
    {"1e99999999999999999999", kInfinity, kInfinityF, 1, 1},
    {"-1e99999999999999999999", -kInfinity, -kInfinityF, -1, -1},
    {"123456e9999", kInfinity, kInfinityF, 123456, 123456},
    {"0.00001e400", kInfinity, kInfinityF, 0, 0},
    {".00001e308", 1e+303, kInfinityF, 0, 0},
    {"1e22", 1e+22, 1e+22f, 1, 1},
    {"1e23", 1e+23, 1e+23f, 1, 1},
    // The smallest numbers.
    {"2.2250738585072014e-308", 2.2250738585072014e-308, 0, 2, 2},
    {"2.2250738585072011e-308", 2.225073858507201e-308, 0, 2, 2},
    {"2.225073858507201e-308", 2.225073858507201e-308, 0, 2, 2},
    {"1e-308", 1e-308, 0, 1, 1},
    {"-1e-310", -1e-310, -0.0f, -1, -1},
    {"4.9e-324", 5e-324, 0, 4, 4},
    {"5e-324", 5e-324, 0, 5, 5},
    {"-4.9e-324", -5e-324, -0.0f, -4, -4},
    {"3e-324", 5e-324, 0, 3, 3},
    {"2.4703282292062328e-324", 5e-324, 0, 2, 2},
    {"2.4703282292062327e-324", 0, 0, 2, 2},
    {"2e-324", 0, 0, 2, 2},
    {"-2e-324", -0.0, -0.0f, -2, -2},
    {"1e-400", 0, 0, 1, 1},
    {"-1e-400", -0.0, -0.0f, -1, -1},
    {"1e-99999999999999999999", 0, 0, 1, 1},
    {"-1e-99999999999999999999", -0.0, -0.0f, -1, -1},
    {"123456e-400", 0, 0, 123456, 123456},
    {"100000e-328", 1e-323, 0, 100000, 100000},
    {"0.00001e-320", 0, 0, 0, 0},
    // Ends of single precision.
    {"3.4028234e38", 3.4028234e+38, 3.4028235e+38f, 3, 3},
    {"3.4028235e38", 3.4028235e+38, 3.4028235e+38f, 3, 3},
    {"3.4028235677973366e38", 3.4028235677973366e+38, kInfinityF, 3, 3},
    {"3.4028235677973365e38", 3.4028235677973366e+38, kInfinityF, 3, 3},
    {"3.4028235677973362e38", 3.4028235677973362e+38, 3.4028235e+38f, 3, 3},
    {"-3.4028235677973366e38", -3.4028235677973366e+38, -kInfinityF, -3, -3},
    {"-3.4028235677973362e38", -3.4028235677973362e+38, -3.4028235e+38f, -3, -3},
    {"3.5e38", 3.5e+38, kInfinityF, 3, 3},
    {"-3.5e38", -3.5e+38, -kInfinityF, -3, -3},
    {"1.1754944e-38", 1.1754944e-38, 1.1754944e-38f, 1, 1},
    {"1e-40", 1e-40, 1e-40f, 1, 1},
    {"-1e-40", -1e-40, -1e-40f, -1, -1},
    {"1.4e-45", 1.4e-45, 1e-45f, 1, 1},
    {"7.1e-46", 7.1e-46, 1e-45f, 7, 7},
    {"7e-46", 7e-46, 0, 7, 7},
    {"-7e-46", -7e-46, -0.0f, -7, -7},
    {"1e-46", 1e-46, 0, 1, 1},
    {"16777216", 16777216.0, 16777216.0f, 16777216, 16777216},
    {"16777217", 16777217.0, 16777216.0f, 16777217, 16777217},
    {"16777219", 16777219.0, 16777220.0f, 16777219, 16777219},
    {"0.2", 0.2, 0.2f, 0, 0},
    // Bytes that are no characters, or only the beginning of white space.
    {"\2005", 0, 0, 0, 0},
    {"\2405", 0, 0, 0, 0},
    {"\3775", 0, 0, 0, 0},
    {"5\377", 5, 5, 5, 5},
    {"\302", 0, 0, 0, 0},
    {"\3025", 0, 0, 0, 0},
    {"\302\1775", 0, 0, 0, 0},
    {"\342\200", 0, 0, 0, 0},
    {"\342\2005", 0, 0, 0, 0},
    {"\343\2005", 0, 0, 0, 0},
    {" \342", 0, 0, 0, 0},
    {"\302\00155", 0, 0, 0, 0},
    {"\342\20055", 0, 0, 0, 0},
    {"\343 55", 0, 0, 0, 0},
};

std::string shown(std::string_view text) {
    std::ostringstream out;
    for (const char c : text.substr(0, 80)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && byte < 0x7F)
            out << c;
        else
            out << '<' << std::hex << std::setw(2) << std::setfill('0') << unsigned{byte} << '>';
    }
    return out.str();
}

// Bit by bit: zeros of different sign differ.
void expectReading(const Reading& reading) {
    const auto& [text, asDouble, asFloat, asInt, asInteger] = reading;
    const double gotDouble = doubleValue(text);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(gotDouble), std::bit_cast<std::uint64_t>(asDouble))
        << "doubleValue of " << shown(text) << " is " << gotDouble << ", not " << asDouble;
    const float gotFloat = floatValue(text);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(gotFloat), std::bit_cast<std::uint32_t>(asFloat))
        << "floatValue of " << shown(text) << " is " << gotFloat << ", not " << asFloat;
    EXPECT_EQ(intValue(text), asInt) << shown(text);
    EXPECT_EQ(integerValue(text), asInteger) << shown(text);
}

void expectReadings() {
    for (const Reading& reading : kReadings) expectReading(reading);
}

} // namespace

TEST(NumbersOfTexts, AreWhatTheTextBeginsWith) { expectReadings(); }

TEST(NumbersOfTexts, AreTheSameInTheLanguageOfTheProgram) {
    const test::CommaInStreams comma;
    expectReadings();
}

TEST(NumbersOfTexts, AreTheSameInTheLanguageOfTheSystem) {
    const test::CommaInC comma;
    if (!comma.isSet()) GTEST_SKIP() << comma.whyNot();
    expectReadings();
}

TEST(NumbersOfTexts, EndWhereTheTextEndsAndNotWhereItsMemoryDoes) {
    constexpr std::string_view kMore = "12345678.5e10";
    expectReading({kMore.substr(0, 0), 0, 0, 0, 0});
    expectReading({kMore.substr(0, 3), 123, 123, 123, 123});
    expectReading({kMore.substr(0, 9), 12345678, 12345678, 12345678, 12345678});
    expectReading({kMore.substr(0, 10), 12345678.5, 12345678, 12345678, 12345678});
    expectReading({kMore.substr(0, 11), 12345678.5, 12345678, 12345678, 12345678});
    expectReading({kMore.substr(0, 12), 123456785, 123456784, 12345678, 12345678});
    expectReading({kMore.substr(0, 0).substr(0), 0, 0, 0, 0});
    expectReading({std::string_view(), 0, 0, 0, 0});
    // The same of what stands at the end of its memory, for the sanitizer.
    for (const auto* text : {"-", "5.", "1e", "1e+", ".", "\302", "\342\200", "\343"}) {
        const std::string whole = text;
        const auto atTheEnd = std::make_unique<char[]>(whole.size());
        whole.copy(atTheEnd.get(), whole.size());
        const std::string_view view(atTheEnd.get(), whole.size());
        EXPECT_EQ(doubleValue(view), doubleValue(whole)) << shown(whole);
        EXPECT_EQ(integerValue(view), integerValue(whole)) << shown(whole);
    }
}

TEST(NumbersOfTexts, MayHaveManyDigits) {
    const auto zeros = [](std::size_t count) { return std::string(count, '0'); };
    const auto nines = [](std::size_t count) { return std::string(count, '9'); };
    const auto expect = [](const std::string& text, double number, std::int32_t asInt, std::int64_t asInteger) {
        expectReading({text, number, static_cast<float>(number), asInt, asInteger});
    };
    expect(zeros(100000) + "12", 12, 12, 12);
    expect("-" + zeros(100000) + "12.5", -12.5, -12, -12);
    expect(nines(100000), kInfinity, kMostInt, kMostInteger);
    expect("-" + nines(100000), -kInfinity, kLeastInt, kLeastInteger);
    expect("0." + zeros(100000) + "1", 0, 0, 0);
    expect("-0." + zeros(100000) + "1", -0.0, 0, 0);
    expect("1." + zeros(100000) + "1", 1, 1, 1);
    expect("1" + zeros(308), 1e308, kMostInt, kMostInteger);
    expect("1" + zeros(309), kInfinity, kMostInt, kMostInteger);
    // Digits and exponent that make up for one another.
    expect("0." + zeros(399) + "1e400", 1, 0, 0);
    expect("." + zeros(399) + "25e400", 2.5, 0, 0);
    expect("1" + zeros(400) + "e-400", 1, kMostInt, kMostInteger);
    expect("-1" + zeros(60000) + "e-60000", -1, kLeastInt, kLeastInteger);
    expect("1" + zeros(700000) + "e-700000", 1, kMostInt, kMostInteger);
    expect("1" + zeros(700000) + "e-700001", 0.1, kMostInt, kMostInteger);
    expect("0." + zeros(699999) + "1e700000", 1, 0, 0);
    expect("1e" + zeros(100000) + "2", 100, 1, 1);
    expect("1e-" + zeros(100000) + "2", 0.01, 1, 1);
    expect("0" + zeros(1000) + ".0e" + nines(1000), 0, 0, 0);
    // Halfway between two numbers, and a digit beyond, far behind the point.
    constexpr auto kHalfway = "1.00000000000000011102230246251565404236316680908203125";
    expect(kHalfway + zeros(10000), 1, 1, 1);
    expect(kHalfway + zeros(10000) + "1", 1 + std::numeric_limits<double>::epsilon(), 1, 1);
    expect(std::string(100000, ' ') + "5", 5, 5, 5);
}

} // namespace zr
