// SPDX-License-Identifier: MIT
#include "Bookmark.h"
#include "FileQuestions.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <string_view>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace zr {

namespace {

// The data: these eight bytes, of which the last is the version; path, document and identity, each after its
// length in four bytes; a sum over all that in eight. Numbers begin with their lowest byte.
constexpr std::string_view kBeginning = "ZRUIBKM\x01";
constexpr std::size_t kLengthSize = 4, kSumSize = 8;

void appendNumber(std::string& bytes, std::uint64_t number, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>(number >> (8 * i) & 0xFF);
}

std::uint64_t numberAt(std::string_view bytes, std::size_t size) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number |= std::uint64_t(static_cast<unsigned char>(bytes[i])) << (8 * i);
    return number;
}

// 64-bit FNV-1a: a change of any one byte changes it.
std::uint64_t sum(std::string_view bytes) {
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char byte : bytes) {
        hash ^= static_cast<unsigned char>(byte);
        hash *= 0x100000001B3;
    }
    return hash;
}

void appendText(std::string& bytes, const std::string& text) {
    appendNumber(bytes, text.size(), kLengthSize);
    bytes += text;
}

std::optional<std::string> takeText(std::string_view& bytes) {
    if (bytes.size() < kLengthSize) return std::nullopt;
    const auto length = numberAt(bytes, kLengthSize);
    bytes.remove_prefix(kLengthSize);
    if (length > bytes.size()) return std::nullopt;
    std::string text(bytes.substr(0, length));
    bytes.remove_prefix(length);
    return text;
}

// Whether an item has the same number, and the same handle, the next time its file system is mounted. Some make
// them up as they go.
bool hasLastingNumbers(const struct statfs& system) {
    constexpr std::array<std::uint32_t, 3> kMadeUp = {FUSE_SUPER_MAGIC, MSDOS_SUPER_MAGIC,
                                                      0x2011BAB0 /* exFAT */};
    return std::ranges::find(kMadeUp, static_cast<std::uint32_t>(system.f_type)) == kMadeUp.end();
}

// Some give the number of their device out as their id, which is another one where they are plugged in next.
bool isDeviceNumber(std::uint64_t id, std::uint64_t device) {
    const std::uint64_t high = major(device), low = minor(device);
    return id == ((low & 0xFF) | high << 8 | (low & ~std::uint64_t(0xFF)) << 12);
}

std::optional<std::string> handleOf(int descriptor) {
    alignas(file_handle) std::array<char, sizeof(file_handle) + MAX_HANDLE_SZ> room{};
    auto* const handle = new (room.data()) file_handle;
    handle->handle_bytes = MAX_HANDLE_SZ;
    int mount = 0;
    if (name_to_handle_at(descriptor, "", handle, &mount, AT_EMPTY_PATH) != 0) return std::nullopt;
    std::string bytes = "handle";
    appendNumber(bytes, static_cast<std::uint32_t>(handle->handle_type), 4);
    bytes.append(room.data() + sizeof(file_handle), handle->handle_bytes);
    return bytes;
}

struct Birth {
    std::string number;
    std::string time;
};

std::optional<Birth> birthOf(int descriptor) {
    struct statx item {};
    if (statx(descriptor, "", AT_EMPTY_PATH, STATX_BTIME | STATX_INO, &item) != 0) return std::nullopt;
    if (!(item.stx_mask & STATX_BTIME)) return std::nullopt;
    Birth birth{"number", "birth"};
    appendNumber(birth.number, item.stx_ino, 8);
    appendNumber(birth.time, static_cast<std::uint64_t>(item.stx_btime.tv_sec), 8);
    appendNumber(birth.time, item.stx_btime.tv_nsec, 4);
    return birth;
}

// The disks that stay as long as the program can run.
std::vector<std::uint64_t> lastingDevices() {
    std::vector<std::uint64_t> devices;
    const char* const home = std::getenv("HOME");
    for (const std::string path : {"/", home ? home : "/"}) {
        const auto device = FileQuestions::shared().ask<std::optional<std::uint64_t>>(path, [path] {
            struct stat item {};
            return stat(path.c_str(), &item) == 0 ? std::optional<std::uint64_t>(item.st_dev) : std::nullopt;
        });
        if (device && *device) devices.push_back(**device);
    }
    return devices;
}

std::size_t mostKept() {
    constexpr std::size_t kMost = 4096;
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return 0;
    return std::min<std::size_t>(limit.rlim_cur / 4, kMost);
}

bool hasZero(const std::string& path) { return path.find('\0') != std::string::npos; }

// Whether a relative path leads nowhere but below where it begins.
bool staysBelow(const std::string& path) {
    const std::string text = "/" + path + "/";
    return !path.starts_with('/') && text.find("/../") == std::string::npos;
}

} // namespace

NSData encoded(const Bookmark& bookmark) {
    std::string bytes(kBeginning);
    for (const std::string* text : {&bookmark.path, &bookmark.document, &bookmark.identity})
        appendText(bytes, *text);
    appendNumber(bytes, sum(bytes), kSumSize);
    return {bytes.begin(), bytes.end()};
}

std::optional<Bookmark> decoded(const NSData& data) {
    std::string_view bytes(reinterpret_cast<const char*>(data.data()), data.size());
    if (!bytes.starts_with(kBeginning) || bytes.size() < kBeginning.size() + kSumSize) return std::nullopt;
    const auto sumAt = bytes.size() - kSumSize;
    if (numberAt(bytes.substr(sumAt), kSumSize) != sum(bytes.substr(0, sumAt))) return std::nullopt;
    bytes = bytes.substr(kBeginning.size(), sumAt - kBeginning.size());
    Bookmark bookmark;
    for (std::string* text : {&bookmark.path, &bookmark.document, &bookmark.identity}) {
        auto taken = takeText(bytes);
        if (!taken) return std::nullopt;
        *text = std::move(*taken);
    }
    if (!bytes.empty() || !bookmark.path.starts_with('/') || hasZero(bookmark.path)) return std::nullopt;
    if (!staysBelow(bookmark.document) || hasZero(bookmark.document)) return std::nullopt;
    return bookmark;
}

std::shared_ptr<const ItemHandle> ItemHandle::open(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_PATH | O_CLOEXEC);
    if (descriptor < 0) return nullptr;
    struct stat item {};
    if (fstat(descriptor, &item) != 0) {
        close(descriptor);
        return nullptr;
    }
    return std::make_shared<ItemHandle>(descriptor, item.st_dev, S_ISDIR(item.st_mode));
}

ItemHandle::~ItemHandle() { close(descriptor_); }

std::optional<std::string> ItemHandle::identity() const {
    struct statfs system {};
    if (fstatfs(descriptor_, &system) != 0) return std::nullopt;
    static_assert(sizeof system.f_fsid == 8);
    const auto id = std::bit_cast<std::uint64_t>(system.f_fsid);
    const bool hasId = !isDeviceNumber(id, device_);
    std::string identity = "system";
    appendNumber(identity, hasId ? id : 0, 8);
    const auto handle = hasLastingNumbers(system) ? handleOf(descriptor_) : std::nullopt;
    if (handle) identity += *handle;
    if (handle && hasId) return identity;
    const auto birth = birthOf(descriptor_);
    if (!birth) return std::nullopt;
    if (!handle && hasLastingNumbers(system)) identity += birth->number;
    return identity + birth->time;
}

std::optional<std::string> ItemHandle::path() const {
    struct stat item {};
    if (fstat(descriptor_, &item) != 0 || item.st_nlink == 0) return std::nullopt;
    std::array<char, 16384> text{};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor_);
    const ssize_t length = readlink(link.c_str(), text.data(), text.size());
    if (length <= 0 || text[0] != '/' || static_cast<std::size_t>(length) == text.size()) return std::nullopt;
    return std::string(text.data(), static_cast<std::size_t>(length));
}

KeptItems::KeptItems() : devices_(lastingDevices()), most_(mostKept()) {}

// Leaked on purpose: background threads may use it until the process is gone.
KeptItems& KeptItems::shared() {
    static auto* const items = new KeptItems;
    return *items;
}

void KeptItems::keep(const std::string& identity, const std::shared_ptr<const ItemHandle>& item) {
    if (std::ranges::find(devices_, item->device()) == devices_.end()) return;
    const std::lock_guard guard(lock_);
    if (most_ == 0 || items_.contains(identity)) return;
    if (items_.size() == most_) {
        items_.erase(oldestFirst_.front());
        oldestFirst_.pop_front();
    }
    items_.emplace(identity, item);
    oldestFirst_.push_back(identity);
}

std::shared_ptr<const ItemHandle> KeptItems::find(const std::string& identity) const {
    const std::lock_guard guard(lock_);
    const auto found = items_.find(identity);
    return found == items_.end() ? nullptr : found->second;
}

} // namespace zr
