// SPDX-License-Identifier: MIT
#include "BinaryPropertyList.h"
#include "Unicode.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include <plist/plist.h>

namespace zr {

namespace {

using Bytes = std::span<const std::uint8_t>;
using Node = std::unique_ptr<void, decltype(&plist_free)>;

// Of all values in memory, one that is referred to twice counted twice.
constexpr std::uint64_t kLargestContents = std::uint64_t{256} << 20;
constexpr std::uint64_t kCostOfAValue = 256;
constexpr std::size_t kTrailerSize = 32;
constexpr std::string_view kMagic = "bplist00";
constexpr double kMicroseconds = 1e6; // in a second

std::uint64_t bigEndian(Bytes bytes) {
    std::uint64_t number = 0;
    for (const auto byte : bytes) number = (number << 8) | byte;
    return number;
}

struct Fault {
    const char* text;
};

// Walks the whole file before the library gets to see it: the library takes its word for how deep it is, and
// for how often it repeats itself.
class Check {
public:
    explicit Check(Bytes bytes) : bytes_(bytes) {}

    void run() {
        if (bytes_.size() > kLargestPropertyList) throw Fault{"it is too large"};
        if (bytes_.size() < kMagic.size() || std::memcmp(bytes_.data(), kMagic.data(), kMagic.size()) != 0)
            throw Fault{"it is no binary property list"};
        if (bytes_.size() < kMagic.size() + kTrailerSize) throw Fault{"it ends too early"};
        const Bytes trailer = bytes_.last(kTrailerSize);
        offsetSize_ = trailer[6];
        referenceSize_ = trailer[7];
        const std::uint64_t count = bigEndian(trailer.subspan(8, 8));
        const std::uint64_t root = bigEndian(trailer.subspan(16, 8));
        const std::uint64_t table = bigEndian(trailer.subspan(24, 8));
        const std::uint64_t tableEnd = bytes_.size() - kTrailerSize;
        if (!isSize(offsetSize_) || !isSize(referenceSize_)) throw Fault{"its trailer is damaged"};
        if (table < kMagic.size() || table > tableEnd || count > (tableEnd - table) / offsetSize_)
            throw Fault{"its table of offsets is damaged"};
        if (count > kLargestContents / kCostOfAValue) throw Fault{"it is too large"};
        objects_ = bytes_.first(table);
        offsets_ = bytes_.subspan(table, count * offsetSize_);
        measures_.resize(count);
        if (root >= count) throw Fault{"it has no values"};
        if (typeOf(root) != 0xD) throw Fault{"it holds no dictionary"};
        measure(root, 0);
    }

private:
    struct Measure {
        std::uint64_t contents = 0;
        int height = 0; // 0: not known yet
        bool isOpen = false;
    };

    static bool isSize(std::size_t size) { return size >= 1 && size <= 8; }

    std::uint64_t offsetOf(std::uint64_t object) const {
        const auto offset = bigEndian(offsets_.subspan(object * offsetSize_, offsetSize_));
        if (offset < kMagic.size() || offset >= objects_.size()) throw Fault{"it points outside itself"};
        return offset;
    }
    std::uint8_t typeOf(std::uint64_t object) const { return objects_[offsetOf(object)] >> 4; }

    Bytes take(std::uint64_t at, std::uint64_t size) const {
        if (at > objects_.size() || size > objects_.size() - at) throw Fault{"a value ends too late"};
        return objects_.subspan(at, size);
    }

    // The length that follows a marker; moves `at` behind it.
    std::uint64_t lengthOf(std::uint8_t marker, std::uint64_t& at) const {
        if ((marker & 0xF) != 0xF) return marker & 0xF;
        const std::uint8_t width = take(at, 1)[0];
        if (width < 0x10 || width > 0x13) throw Fault{"a length is damaged"};
        const std::size_t size = std::size_t{1} << (width & 0xF);
        const auto length = bigEndian(take(at + 1, size));
        at += 1 + size;
        if (length > objects_.size()) throw Fault{"a value ends too late"};
        return length;
    }

    const Measure& measure(std::uint64_t object, int depth) {
        if (object >= measures_.size()) throw Fault{"it points outside itself"};
        Measure& result = measures_[object];
        if (result.isOpen) throw Fault{"a value holds itself"};
        if (result.height != 0) return result;
        if (depth >= PropertyList::kDeepest) throw Fault{"it is nested too deeply"};
        result.isOpen = true;
        result.contents = kCostOfAValue;
        result.height = 1;
        addContents(result, offsetOf(object), depth);
        result.isOpen = false;
        return result;
    }

    void addContents(Measure& result, std::uint64_t at, int depth) {
        const std::uint8_t marker = objects_[at++];
        switch (marker >> 4) {
        case 0x0:
            if (marker != 0x08 && marker != 0x09) throw Fault{"it holds what cannot be kept"};
            break;
        case 0x1:
            if (marker > 0x13) throw Fault{"it holds what cannot be kept"};
            take(at, std::uint64_t{1} << (marker & 0xF));
            break;
        case 0x2:
            if (marker != 0x22 && marker != 0x23) throw Fault{"it holds what cannot be kept"};
            take(at, std::uint64_t{1} << (marker & 0xF));
            break;
        case 0x3:
            if (marker != 0x33) throw Fault{"it holds what cannot be kept"};
            checkDate(take(at, 8));
            break;
        case 0x4: {
            const auto length = lengthOf(marker, at);
            result.contents += take(at, length).size();
            break;
        }
        case 0x5: {
            const auto length = lengthOf(marker, at);
            checkAscii(take(at, length));
            result.contents += length;
            break;
        }
        case 0x6: {
            const auto length = lengthOf(marker, at);
            checkUtf16(take(at, 2 * length));
            result.contents += 3 * length;
            break;
        }
        case 0xA: {
            const auto length = lengthOf(marker, at);
            addElements(result, at, length, depth);
            break;
        }
        case 0xD: {
            const auto length = lengthOf(marker, at);
            checkKeys(take(at, length * referenceSize_), length);
            addElements(result, at, 2 * length, depth);
            break;
        }
        default:
            throw Fault{"it holds what cannot be kept"};
        }
    }

    void checkKeys(Bytes keys, std::uint64_t count) const {
        for (std::uint64_t i = 0; i < count; ++i) {
            const auto key = reference(keys, i);
            if (key >= measures_.size()) throw Fault{"it points outside itself"};
            if (typeOf(key) != 0x5 && typeOf(key) != 0x6) throw Fault{"a key is no text"};
        }
    }

    void addElements(Measure& result, std::uint64_t at, std::uint64_t count, int depth) {
        const Bytes elements = take(at, count * referenceSize_);
        for (std::uint64_t i = 0; i < count; ++i) {
            const Measure& element = measure(reference(elements, i), depth + 1);
            result.contents += element.contents;
            result.height = std::max(result.height, element.height + 1);
            if (result.contents > kLargestContents) throw Fault{"it is too large"};
            if (depth + result.height > PropertyList::kDeepest) throw Fault{"it is nested too deeply"};
        }
    }

    std::uint64_t reference(Bytes references, std::uint64_t i) const {
        return bigEndian(references.subspan(i * referenceSize_, referenceSize_));
    }

    static void checkDate(Bytes bytes) {
        if (!(std::abs(std::bit_cast<double>(bigEndian(bytes))) * kMicroseconds <
              static_cast<double>(PropertyList::kFarthestDate.count())))
            throw Fault{"it holds what cannot be kept"};
    }

    static void checkAscii(Bytes text) {
        if (std::ranges::any_of(text, [](auto byte) { return byte == 0 || byte > 0x7F; }))
            throw Fault{"a text is damaged"};
    }

    static void checkUtf16(Bytes text) {
        for (std::size_t at = 0; at < text.size(); at += 2) {
            const auto unit = static_cast<char32_t>(bigEndian(text.subspan(at, 2)));
            if (unit == 0) throw Fault{"a text is damaged"};
            if (!isSurrogate(unit)) continue;
            at += 2;
            const bool pairs = unit < 0xDC00 && at < text.size() && (text[at] & 0xFC) == 0xDC;
            if (!pairs) throw Fault{"a text is damaged"};
        }
    }

    Bytes bytes_;
    Bytes objects_;
    Bytes offsets_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::vector<Measure> measures_;
};

// A date goes through a list of its own: the library's calls for dates cut them to 32 bits of seconds.
constexpr std::size_t kPlaceOfDate = 9;
constexpr std::array<std::uint8_t, 50> kListOfOneDate = {
    'b', 'p', 'l', 'i', 's', 't', '0', '0', 0x33, 0, 0, 0, 0, 0, 0, 0, 0, // the date
    8,                                                                    // the table of offsets
    0,   0,   0,   0,   0,   0,   1,   1,   0,    0, 0, 0, 0, 0, 0, 1, 0,
    0,   0,   0,   0,   0,   0,   0,   0,   0,    0, 0, 0, 0, 0, 17};

plist_t nodeOfDate(NSDate date) {
    auto list = kListOfOneDate;
    const double seconds = static_cast<double>((date - PropertyList::kReferenceDate).count()) / kMicroseconds;
    const auto bits = std::bit_cast<std::uint64_t>(seconds);
    for (std::size_t i = 0; i < 8; ++i)
        list[kPlaceOfDate + i] = static_cast<std::uint8_t>(bits >> (56 - 8 * i));
    plist_t node = nullptr;
    plist_from_bin(reinterpret_cast<const char*>(list.data()), list.size(), &node);
    return node;
}

NSDate dateOfNode(plist_t node) {
    char* list = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(node, &list, &size);
    const std::unique_ptr<char, decltype(&plist_to_bin_free)> held(list, &plist_to_bin_free);
    if (size != kListOfOneDate.size()) throw Fault{"a date is damaged"};
    const Bytes bytes(reinterpret_cast<const std::uint8_t*>(list), size);
    const auto seconds = std::bit_cast<double>(bigEndian(bytes.subspan(kPlaceOfDate, 8)));
    const double whole = std::floor(seconds);
    return PropertyList::kReferenceDate + std::chrono::seconds(std::llround(whole)) +
           std::chrono::microseconds(std::llround((seconds - whole) * kMicroseconds));
}

plist_t nodeOf(const PropertyList& list);

struct NodeMaker {
    plist_t operator()(bool truth) const { return plist_new_bool(truth ? 1 : 0); }
    plist_t operator()(std::int64_t number) const { return plist_new_uint(static_cast<std::uint64_t>(number)); }
    plist_t operator()(double number) const { return plist_new_real(number); }
    plist_t operator()(const std::string& text) const { return plist_new_string(text.c_str()); }
    plist_t operator()(NSDate date) const { return nodeOfDate(date); }
    plist_t operator()(const NSData& data) const {
        const char* bytes = data.empty() ? "" : reinterpret_cast<const char*>(data.data());
        return plist_new_data(bytes, data.size());
    }
    plist_t operator()(const PropertyList::Array& array) const {
        plist_t node = plist_new_array();
        for (const auto& element : array) plist_array_append_item(node, nodeOf(element));
        return node;
    }
    plist_t operator()(const PropertyList::Dictionary& dictionary) const {
        plist_t node = plist_new_dict();
        for (const auto& [key, element] : dictionary) plist_dict_set_item(node, key.c_str(), nodeOf(element));
        return node;
    }
};

plist_t nodeOf(const PropertyList& list) { return std::visit(NodeMaker{}, list.value()); }

PropertyList listOf(plist_t node);

template <class Use>
void forEachInDictionary(plist_t node, const Use& use) {
    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(node, &iterator);
    const std::unique_ptr<void, decltype(&std::free)> held(iterator, &std::free);
    while (true) {
        char* key = nullptr;
        plist_t element = nullptr;
        plist_dict_next_item(node, iterator, &key, &element);
        const std::unique_ptr<char, decltype(&std::free)> heldKey(key, &std::free);
        if (!element) return;
        use(key, element);
    }
}

PropertyList listOf(plist_t node) {
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        std::uint8_t truth = 0;
        plist_get_bool_val(node, &truth);
        return truth != 0;
    }
    case PLIST_UINT: {
        std::uint64_t number = 0;
        plist_get_uint_val(node, &number);
        return static_cast<std::int64_t>(number);
    }
    case PLIST_REAL: {
        double number = 0;
        plist_get_real_val(node, &number);
        return number;
    }
    case PLIST_STRING: {
        std::uint64_t length = 0;
        const char* text = plist_get_string_ptr(node, &length);
        return std::string(text, length);
    }
    case PLIST_DATE:
        return dateOfNode(node);
    case PLIST_DATA: {
        std::uint64_t length = 0;
        const char* data = plist_get_data_ptr(node, &length);
        return NSData(data, data + length);
    }
    case PLIST_ARRAY: {
        PropertyList::Array array;
        array.reserve(plist_array_get_size(node));
        plist_array_iter iterator = nullptr;
        plist_array_new_iter(node, &iterator);
        const std::unique_ptr<void, decltype(&std::free)> held(iterator, &std::free);
        while (true) {
            plist_t element = nullptr;
            plist_array_next_item(node, iterator, &element);
            if (!element) return array;
            array.push_back(listOf(element));
        }
    }
    case PLIST_DICT: {
        PropertyList::Dictionary dictionary;
        forEachInDictionary(
            node, [&](const char* key, plist_t element) { dictionary.insert_or_assign(key, listOf(element)); });
        return dictionary;
    }
    default:
        throw Fault{"it holds what cannot be kept"};
    }
}

} // namespace

ReadPropertyList readBinaryPropertyList(Bytes bytes) {
    ReadPropertyList result;
    try {
        Check(bytes).run();
        plist_t root = nullptr;
        plist_from_bin(reinterpret_cast<const char*>(bytes.data()), static_cast<std::uint32_t>(bytes.size()),
                       &root);
        const Node held(root, &plist_free);
        if (!root || plist_get_node_type(root) != PLIST_DICT) throw Fault{"it is damaged"};
        forEachInDictionary(root, [&](const char* key, plist_t element) {
            result.values.insert_or_assign(key, std::make_shared<const PropertyList>(listOf(element)));
        });
    } catch (const Fault& fault) {
        result.values.clear();
        result.fault = fault.text;
    }
    return result;
}

NSData writeBinaryPropertyList(const SharedValues& values) {
    const Node root(plist_new_dict(), &plist_free);
    for (const auto& [key, value] : values) plist_dict_set_item(root.get(), key.c_str(), nodeOf(*value));
    char* bytes = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(root.get(), &bytes, &size);
    const std::unique_ptr<char, decltype(&plist_to_bin_free)> held(bytes, &plist_to_bin_free);
    NSData result(bytes, bytes + size);
    try {
        Check(result).run();
    } catch (const Fault& fault) {
        throw std::length_error(fault.text);
    }
    return result;
}

} // namespace zr
