// SPDX-License-Identifier: MIT
#include <Foundation/BinaryPropertyList.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

namespace zr {

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using testing::HasSubstr;

NSData bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

SharedValues shared(const PropertyList::Dictionary& dictionary) {
    SharedValues values;
    for (const auto& [key, value] : dictionary)
        values.emplace(key, std::make_shared<const PropertyList>(value));
    return values;
}

// As it comes back from a file under the key "k".
PropertyList back(const PropertyList& value) {
    const auto read = readBinaryPropertyList(writeBinaryPropertyList(shared({{"k", value}})));
    EXPECT_EQ(read.fault, "");
    EXPECT_EQ(read.values.size(), 1u);
    return read.values.contains("k") ? *read.values.at("k") : PropertyList("nothing");
}

std::string fault(const NSData& bytes) {
    const auto read = readBinaryPropertyList(bytes);
    EXPECT_TRUE(read.fault.empty() || read.values.empty());
    return read.fault;
}

PropertyList nested(int depth, bool inDictionaries = false) {
    PropertyList value("core");
    for (int i = 1; i < depth; ++i) {
        if (inDictionaries)
            value = PropertyList(PropertyList::Dictionary{{"k", std::move(value)}});
        else
            value = PropertyList(PropertyList::Array{std::move(value)});
    }
    return value;
}

NSDate dateAt(std::int64_t microseconds) {
    return PropertyList::kReferenceDate + std::chrono::microseconds(microseconds);
}

// A file put together by hand: objects, which point to each other by one byte each; the first is the root.
NSData fileOf(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string offsets;
    const auto add16 = [](std::string& to, std::size_t number) {
        to += static_cast<char>(number >> 8);
        to += static_cast<char>(number & 0xFF);
    };
    for (const auto& object : objects) {
        add16(offsets, bytes.size());
        bytes += object;
    }
    const std::size_t table = bytes.size();
    bytes += offsets;
    bytes += "\0\0\0\0\0\0\2\1"s;
    for (const std::size_t number : {objects.size(), std::size_t{0}, table}) {
        bytes += "\0\0\0\0\0\0"s;
        add16(bytes, number);
    }
    return bytesOf(bytes);
}

// The dictionary {k: the third object}.
std::string root() { return "\xD1\1\2"s; }
std::string key() { return "\x51k"s; }

} // namespace

TEST(PropertyLists, EveryTypeComesBackAsItWas) {
    const std::vector<PropertyList> values = {
        true,
        false,
        0,
        1,
        -1,
        255,
        256,
        65536,
        std::numeric_limits<std::int64_t>::max(),
        std::numeric_limits<std::int64_t>::min(),
        0.0,
        1.0,
        0.1,
        -2.5e300,
        4.9e-324,
        std::numeric_limits<double>::infinity(),
        "",
        "text",
        "Ä 日本 😀 \xEF\xBF\xBF \xF4\x8F\xBF\xBF",
        std::string(100'000, 'x'),
        std::string(100'000, 'x') + "ü",
        NSData{},
        NSData{0, 255, 0},
        NSData(100'000, 7),
        dateAt(0),
        PropertyList::Array{},
        PropertyList::Dictionary{},
        PropertyList::Array{1, 1.0, true, "1", NSData{1}, dateAt(1'000'000), PropertyList::Array{1}},
        PropertyList::Dictionary{{"", ""},
                                 {"a b.c", PropertyList::Dictionary{{"ü", PropertyList::Array{""}}}}}};
    for (const auto& value : values) {
        EXPECT_EQ(value.fault(), nullptr);
        EXPECT_EQ(back(value), value) << "value " << &value - values.data();
    }
    PropertyList::Array all(values.begin(), values.end());
    EXPECT_EQ(back(all), PropertyList(all));
}

TEST(PropertyLists, ZeroesAndNumbersThatAreNoneKeepTheirBits) {
    const auto list = back(PropertyList::Array{0.0, -0.0, std::numeric_limits<double>::quiet_NaN()});
    const auto* numbers = list.get<PropertyList::Array>();
    ASSERT_TRUE(numbers && numbers->size() == 3);
    EXPECT_FALSE(std::signbit(*numbers->at(0).get<double>()));
    EXPECT_TRUE(std::signbit(*numbers->at(1).get<double>()));
    EXPECT_TRUE(std::isnan(*numbers->at(2).get<double>()));
}

TEST(PropertyLists, DatesKeepTheirMicroseconds) {
    constexpr std::int64_t kSecond = 1'000'000, kYear = 31'556'952 * kSecond;
    std::vector<std::int64_t> moments = {0,
                                         1,
                                         -1,
                                         499'999,
                                         -499'999,
                                         700'000'000'123'456,
                                         -700'000'000'123'456,
                                         (std::int64_t{1} << 31) * kSecond + 1,
                                         2000 * kYear / kSecond * kSecond};
    std::mt19937_64 random(5);
    std::uniform_int_distribution<std::int64_t> within(-250 * kYear, 250 * kYear);
    for (int i = 0; i < 2000; ++i) moments.push_back(within(random));
    PropertyList::Array dates;
    for (const auto moment : moments) dates.emplace_back(dateAt(moment));
    EXPECT_EQ(back(dates), PropertyList(dates));
}

TEST(PropertyLists, NumbersOfOtherWidthsAreTheSameTypes) {
    EXPECT_EQ(PropertyList(std::int8_t{-3}), PropertyList(-3));
    EXPECT_EQ(PropertyList(std::uint32_t{4'000'000'000}), PropertyList(std::int64_t{4'000'000'000}));
    EXPECT_NE(PropertyList(1), PropertyList(true));
    EXPECT_NE(PropertyList(1), PropertyList(1.0));
}

TEST(PropertyLists, WhatCannotBeStoredHasAFault) {
    EXPECT_STREQ(PropertyList("a\0b"s).fault(), "text with the character zero");
    for (const auto* text : {"\xFF", "a\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80"})
        EXPECT_STREQ(PropertyList(text).fault(), "text that is not UTF-8") << text;
    EXPECT_STREQ(PropertyList(PropertyList::Dictionary{{"\xFF", 1}}).fault(), "text that is not UTF-8");
    EXPECT_STREQ(PropertyList(PropertyList::Array{1, PropertyList::Array{"\xFF"}}).fault(),
                 "text that is not UTF-8");
    EXPECT_STREQ(PropertyList(NSDate::max()).fault(), "a date too far away");
    EXPECT_STREQ(PropertyList(NSDate::min()).fault(), "a date too far away");
}

TEST(PropertyLists, TheDeepestCanBeStoredAndReadAndNoneDeeper) {
    for (const bool inDictionaries : {false, true}) {
        EXPECT_STREQ(nested(PropertyList::kDeepest + 1, inDictionaries).fault(), "nested too deeply");
        // The file's own dictionary is a level, too.
        const auto deepest = nested(PropertyList::kDeepest - 1, inDictionaries);
        EXPECT_EQ(deepest.fault(), nullptr);
        EXPECT_EQ(back(deepest), deepest);
    }
}

TEST(PropertyLists, ManyValuesComeBack) {
    PropertyList::Array blobs;
    for (int i = 0; i < 10'000; ++i) blobs.emplace_back(bytesOf("blob " + std::to_string(i)));
    PropertyList::Dictionary keys;
    for (int i = 0; i < 10'000; ++i) keys.emplace("key " + std::to_string(i), i);
    EXPECT_EQ(back(blobs), PropertyList(blobs));
    EXPECT_EQ(back(keys), PropertyList(keys));
}

TEST(PropertyLists, WhatWouldBeTooLargeToReadIsNotWritten) {
    const SharedValues values = shared({{"k", NSData(kLargestPropertyList)}});
    EXPECT_THROW(writeBinaryPropertyList(values), std::length_error);
}

TEST(PropertyLists, AFileMadeByHandIsRead) {
    // So that the damaged ones below are refused for their damage.
    const auto read = readBinaryPropertyList(fileOf({root(), key(), "\x10\x2A"s}));
    EXPECT_EQ(read.fault, "");
    ASSERT_TRUE(read.values.contains("k"));
    EXPECT_EQ(*read.values.at("k"), PropertyList(42));
}

// Damaged files

TEST(DamagedPropertyLists, OtherFilesAreNoPropertyLists) {
    EXPECT_THAT(fault({}), HasSubstr("no binary property list"));
    EXPECT_THAT(fault(bytesOf("hello")), HasSubstr("no binary property list"));
    EXPECT_THAT(fault(bytesOf("<?xml version=\"1.0\"?><plist><dict/></plist>")),
                HasSubstr("no binary property list"));
    EXPECT_THAT(fault(bytesOf("bplist00")), HasSubstr("ends too early"));
    EXPECT_THAT(fault(NSData(10'000, 0)), HasSubstr("no binary property list"));
}

TEST(DamagedPropertyLists, NoBeginningOfAFileIsAFile) {
    const auto whole =
        writeBinaryPropertyList(shared({{"text", "ü"}, {"list", PropertyList::Array{1, 2.5, "x"}}}));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_NE(fault(NSData(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))), "") << size;
}

TEST(DamagedPropertyLists, AValueThatHoldsItselfIsRefused) {
    EXPECT_EQ(fault(fileOf({root(), key(), "\xA1\2"s})), "a value holds itself");
    EXPECT_EQ(fault(fileOf({root(), key(), "\xA1\3"s, "\xA1\2"s})), "a value holds itself");
    EXPECT_EQ(fault(fileOf({"\xD1\1\0"s, key()})), "a value holds itself");
}

TEST(DamagedPropertyLists, DeepNestingIsRefused) {
    constexpr std::size_t kDepth = 100'000;
    std::string bytes = "bplist00\xD1";
    const auto add32 = [](std::string& to, std::size_t number) {
        for (int shift = 24; shift >= 0; shift -= 8) to += static_cast<char>(number >> shift & 0xFF);
    };
    std::vector<std::size_t> places = {8};
    add32(bytes, 1);
    add32(bytes, 2);
    places.push_back(bytes.size());
    bytes += key();
    for (std::size_t i = 0; i < kDepth; ++i) {
        places.push_back(bytes.size());
        bytes += '\xA1';
        add32(bytes, places.size());
    }
    places.push_back(bytes.size());
    bytes += '\x09';
    const std::size_t table = bytes.size();
    for (const auto place : places) add32(bytes, place);
    bytes += "\0\0\0\0\0\0\4\4"s;
    for (const std::size_t number : {places.size(), std::size_t{0}, table}) {
        bytes += "\0\0\0\0"s;
        add32(bytes, number);
    }
    EXPECT_EQ(fault(bytesOf(bytes)), "it is nested too deeply");
}

TEST(DamagedPropertyLists, DepthCountsAlsoWhereAValueIsMetAgain) {
    // A chain of lists: the dictionary holds one in its middle, and then the whole chain.
    const auto chain = [](std::size_t length) {
        const auto reference = [](std::size_t number) {
            return std::string{static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)};
        };
        std::vector<std::string> objects = {"\xD2"s + reference(1) + reference(2) + reference(3 + length / 2) +
                                                reference(3),
                                            "\x51m"s, "\x51n"s};
        for (std::size_t i = 1; i < length; ++i) objects.push_back("\xA1"s + reference(3 + i));
        objects.push_back("\x09"s);
        auto file = fileOf(objects);
        file[file.size() - 25] = 2; // bytes of a reference
        return file;
    };
    constexpr std::size_t kDeepest = PropertyList::kDeepest - 1; // the dictionary is one
    EXPECT_EQ(fault(chain(kDeepest)), "");
    EXPECT_EQ(fault(chain(kDeepest + 1)), "it is nested too deeply");
}

TEST(DamagedPropertyLists, RepetitionThatGrowsIsRefused) {
    // Forty lists that each hold the next one twice stand for a million million values.
    std::vector<std::string> objects = {root(), key()};
    for (int i = 0; i < 40; ++i) {
        const auto next = static_cast<char>(i + 3);
        objects.push_back("\xA2"s + next + next);
    }
    objects.push_back("\x09"s);
    EXPECT_EQ(fault(fileOf(objects)), "it is too large");
}

TEST(DamagedPropertyLists, WhatAPropertyListDoesNotHaveIsRefused) {
    const std::vector<std::string> objects = {"\0"s,                           // null
                                              "\x0F"s,                         // fill
                                              "\x80\1"s,                       // an identifier
                                              "\xC1\1"s,                       // a set
                                              "\x14"s + std::string(16, '\1'), // a number of 128 bits
                                              "\x24"s + std::string(16, '\1'), // a real number of 128 bits
                                              "\x33\x7F\xF8\0\0\0\0\0\0"s,     // a date that is no number
                                              "\x33\x7F\xE0\0\0\0\0\0\0"s,     // a date beyond all time
                                              "\x70"s,
                                              "\xB0"s,
                                              "\xE0"s,
                                              "\xF0"s,
                                              "\x90"s};
    for (const auto& object : objects)
        EXPECT_EQ(fault(fileOf({root(), key(), object})), "it holds what cannot be kept")
            << static_cast<int>(static_cast<unsigned char>(object[0]));
    EXPECT_EQ(fault(fileOf({"\xA1\1"s, "\x09"s})), "it holds no dictionary");
    EXPECT_EQ(fault(fileOf({root(), "\x10\1"s, "\x09"s})), "a key is no text");
}

TEST(DamagedPropertyLists, DamagedTextIsRefused) {
    const std::vector<std::string> texts = {"\x51\x80"s,   "\x51\0"s,        "\x61\xD8\0"s,
                                            "\x61\xDC\0"s, "\x62\xD8\0\0a"s, "\x61\0\0"s};
    for (const auto& text : texts)
        EXPECT_EQ(fault(fileOf({root(), key(), text})), "a text is damaged") << testing::PrintToString(text);
    EXPECT_EQ(fault(fileOf({root(), key(), "\x62\xD8\x3D\xDE\0"s})), "");
}

TEST(DamagedPropertyLists, LengthsBeyondTheFileAreRefused) {
    for (const auto& object :
         {"\x4E"s, "\x5E"s, "\x6E"s, "\xAE"s, "\xDE"s, "\x13"s, "\x23"s, "\x33"s,
          "\x4F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s, "\xAF\x13\x80\0\0\0\0\0\0\0"s,
          "\x6F\x13\x80\0\0\0\0\0\0\0"s, "\xDF\x12\xFF\xFF\xFF\xFF"s, "\x4F"s, "\x4F\x10"s})
        EXPECT_EQ(fault(fileOf({root(), key(), object})), "a value ends too late")
            << testing::PrintToString(object);
    EXPECT_EQ(fault(fileOf({root(), key(), "\x4F\x22\0\0\0\0"s})), "a length is damaged");
    EXPECT_EQ(fault(fileOf({root(), key(), "\xA1\x09"s})), "it points outside itself");
    EXPECT_EQ(fault(fileOf({"\xD1\x09\1"s, key()})), "it points outside itself");
}

TEST(DamagedPropertyLists, ADamagedTrailerIsRefused) {
    const auto good = fileOf({root(), key(), "\x09"s});
    ASSERT_EQ(fault(good), "");
    for (std::size_t i = good.size() - 26; i < good.size(); ++i)
        for (const int value : {0, 3, 5, 9, 127, 128, 255}) {
            auto bad = good;
            if (bad[i] == value) continue;
            bad[i] = static_cast<std::uint8_t>(value);
            // The place of the root may be changed to another dictionary only, of which there is none.
            EXPECT_NE(fault(bad), "") << i - good.size() + 32 << " " << value;
        }
}

TEST(DamagedPropertyLists, RandomDamageIsReadOrRefusedAndWhatIsReadCanBeWritten) {
    const auto good = writeBinaryPropertyList(
        shared({{"truth", true},
                {"number", 70'000},
                {"real", 0.1},
                {"text", "ascii"},
                {"wide", "ünïcödé 😀"},
                {"date", dateAt(700'000'000'123'456)},
                {"data", NSData(300, 9)},
                {"list",
                 PropertyList::Array{1, "x", PropertyList::Array{2.5}, PropertyList::Dictionary{{"k", false}}}},
                {"nest", PropertyList::Dictionary{{"a", PropertyList::Dictionary{{"b", NSData{1, 2}}}}}}}));
    std::mt19937 random(6);
    int read = 0;
    constexpr int kTries = 20'000;
    for (int i = 0; i < kTries; ++i) {
        auto bytes = good;
        for (auto changes = 1 + random() % 4; changes > 0; --changes)
            bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random());
        if (random() % 8 == 0) bytes.resize(random() % bytes.size());
        const auto result = readBinaryPropertyList(bytes);
        if (!result.fault.empty()) {
            ASSERT_TRUE(result.values.empty());
            continue;
        }
        ++read;
        for (const auto& [name, value] : result.values) {
            ASSERT_EQ(PropertyList(name).fault(), nullptr);
            ASSERT_EQ(value->fault(), nullptr);
        }
        const auto again = readBinaryPropertyList(writeBinaryPropertyList(result.values));
        ASSERT_EQ(again.fault, "");
        ASSERT_EQ(again.values.size(), result.values.size());
    }
    // Damage within text and data cannot be seen.
    EXPECT_GT(read, kTries / 20);
    EXPECT_LT(read, kTries);
}

} // namespace zr
