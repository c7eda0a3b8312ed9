// SPDX-License-Identifier: MIT
#include "FileQuestions.h"

#include <FoundationBackends/Waiting.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <condition_variable>
#include <cstdlib>
#include <map>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <unistd.h>

namespace zr {

namespace {

// File systems that answer from this machine's own memory or disks. Every other one is doubtful.
constexpr std::array<std::string_view, 41> kOwnFileSystems = {
    "bcachefs", "binfmt_misc", "bpf",     "btrfs",    "cgroup",   "cgroup2",    "configfs",
    "cramfs",   "debugfs",     "devpts",  "devtmpfs", "efivarfs", "erofs",      "exfat",
    "ext2",     "ext3",        "ext4",    "f2fs",     "fusectl",  "hfsplus",    "hugetlbfs",
    "iso9660",  "jfs",         "mqueue",  "nilfs2",   "nsfs",     "ntfs3",      "overlay",
    "proc",     "pstore",      "ramfs",   "reiserfs", "rootfs",   "securityfs", "squashfs",
    "sysfs",    "tmpfs",       "tracefs", "udf",      "vfat",     "xfs",
};

// "\040" is a blank, and so on.
std::string unescaped(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 3 >= text.size()) {
            plain += text[i];
            continue;
        }
        plain += static_cast<char>(std::strtol(std::string(text.substr(i + 1, 3)).c_str(), nullptr, 8));
        i += 3;
    }
    return plain;
}

std::string wholeText(int file) {
    std::string text;
    std::array<char, 16384> part{};
    if (lseek(file, 0, SEEK_SET) != 0) return text;
    for (;;) {
        const ssize_t count = read(file, part.data(), part.size());
        if (count <= 0) return text;
        text.append(part.data(), static_cast<std::size_t>(count));
    }
}

// A line is "36 35 98:0 /root /mount/point options [more options...] - type source options".
std::optional<std::string> doubtfulPlace(std::string_view line) {
    std::vector<std::string_view> words;
    while (!line.empty()) {
        const auto blank = std::min(line.find(' '), line.size());
        words.push_back(line.substr(0, blank));
        line.remove_prefix(std::min(line.size(), blank + 1));
    }
    const auto dash = std::ranges::find(words, std::string_view("-"));
    if (words.size() < 5 || words[4].starts_with("/proc/") || words[4].starts_with("/sys/"))
        return std::nullopt;
    if (dash == words.end() || dash + 1 == words.end()) return std::nullopt;
    static_assert(std::ranges::is_sorted(kOwnFileSystems));
    if (std::ranges::binary_search(kOwnFileSystems, *(dash + 1))) return std::nullopt;
    return unescaped(words[4]);
}

bool liesIn(std::string_view path, std::string_view place) {
    if (place == "/") return true;
    return path.starts_with(place) && (path.size() == place.size() || path[place.size()] == '/');
}

} // namespace

MountTable::~MountTable() {
    if (file_ >= 0) close(file_);
}

const std::vector<std::string>& MountTable::doubtfulPlaces() {
    if (file_ < 0) file_ = open(name_.c_str(), O_RDONLY | O_CLOEXEC);
    if (file_ < 0) return places_;
    // The kernel tells by an error condition that the table has changed since it was read.
    pollfd change{file_, POLLPRI, 0};
    if (isRead_ && poll(&change, 1, 0) == 0) return places_;
    isRead_ = true;
    places_.clear();
    const std::string text = wholeText(file_);
    for (std::string_view rest = text; !rest.empty();) {
        const auto end = std::min(rest.find('\n'), rest.size());
        if (auto place = doubtfulPlace(rest.substr(0, end))) places_.push_back(std::move(*place));
        rest.remove_prefix(std::min(rest.size(), end + 1));
    }
    return places_;
}

std::optional<std::string> placeOnTheWay(std::string_view path, const std::vector<std::string>& places) {
    if (places.empty()) return std::nullopt;
    constexpr int kMostLinks = 40; // as many as the system follows
    std::array<char, PATH_MAX> text{};
    std::string rest(path), way; // still to go, and gone, without links in it
    if (!rest.starts_with('/') && getcwd(text.data(), text.size())) way = text.data();
    for (int links = 0; !rest.empty();) {
        const auto slash = std::min(rest.find('/'), rest.size());
        const std::string name = rest.substr(0, slash);
        rest.erase(0, slash + 1);
        if (name == "..") way.resize(std::min(way.rfind('/'), way.size()));
        if (name.empty() || name == "." || name == "..") continue;
        const auto before = way.size();
        way += '/';
        way += name;
        const auto place = std::ranges::find_if(places, [&](const auto& each) { return liesIn(way, each); });
        if (place != places.end()) return *place;
        const ssize_t length = readlink(way.c_str(), text.data(), text.size());
        if (length < 0 && errno == EINVAL) continue; // no link
        if (length < 0 || ++links > kMostLinks) return std::nullopt;
        std::string target(text.data(), static_cast<std::size_t>(length));
        way.resize(target.starts_with('/') ? 0 : before);
        target += '/';
        target += rest;
        rest = std::move(target);
    }
    return std::nullopt;
}

// What outlives whoever asks. Everything is guarded by the lock.
struct FileQuestions::Shared {
    std::mutex lock;
    std::condition_variable changed;
    std::map<std::string, int> lostAt; // threads that were left behind, by the place that still owes an answer
    bool waits = true;
};

FileQuestions::FileQuestions(std::chrono::milliseconds patience, std::string mountTable)
    : patience_(patience), mounts_(std::move(mountTable)), shared_(std::make_shared<Shared>()) {}

// Leaked on purpose: threads may ask until the process is gone.
FileQuestions& FileQuestions::shared() {
    static auto* const questions = [] {
        auto* const made = new FileQuestions;
        backend::observeWaiting([made](bool mayWait) { made->setWaits(mayWait); });
        return made;
    }();
    return *questions;
}

std::optional<std::string> FileQuestions::placeFor(std::string_view path) {
    // As long as the few questions that somebody has about one item. The table is looked at each time: what was
    // mounted a moment ago may be what does not answer.
    constexpr auto kLasts = std::chrono::milliseconds(20);
    std::unique_lock guard(lock_);
    const auto& doubtful = mounts_.doubtfulPlaces();
    if (doubtful.empty()) return std::nullopt;
    const auto places = doubtful;
    const auto now = std::chrono::steady_clock::now();
    if (path == lastPath_ && places == lastPlaces_ && now < lastUntil_) return lastPlace_;
    guard.unlock();
    auto place = placeOnTheWay(path, places);
    guard.lock();
    lastPath_ = path;
    lastPlaces_ = places;
    lastPlace_ = place;
    lastUntil_ = now + kLasts;
    return place;
}

void FileQuestions::setWaits(bool waits) {
    const std::lock_guard guard(shared_->lock);
    shared_->waits = waits;
    shared_->changed.notify_all();
}

bool FileQuestions::askElsewhere(const std::string& place, std::function<void()> question) {
    struct Answer {
        bool isThere = false; // guarded by the lock, like isLost
        bool isLost = false;
    };
    std::unique_lock guard(shared_->lock);
    if (!shared_->waits || shared_->lostAt.contains(place)) return false;
    const auto answer = std::make_shared<Answer>();
    try {
        std::thread([answer, shared = shared_, place, question = std::move(question)]() mutable {
            pthread_setname_np(pthread_self(), "ZRUIKit files");
            question();
            question = nullptr;
            const std::lock_guard held(shared->lock);
            answer->isThere = true;
            if (answer->isLost && --shared->lostAt[place] == 0) shared->lostAt.erase(place);
            shared->changed.notify_all();
        }).detach();
    } catch (const std::system_error&) {
        return false; // no thread to be had
    }
    shared_->changed.wait_for(guard, patience_, [&] { return answer->isThere || !shared_->waits; });
    if (answer->isThere) return true;
    answer->isLost = true;
    ++shared_->lostAt[place];
    return false;
}

} // namespace zr
