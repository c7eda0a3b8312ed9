// SPDX-License-Identifier: MIT
// Uses files as its arguments say, for tests that stop it, starve it, race it and take its rights away. The
// first argument is the file of its user defaults.
//
//   files_probe FILE loop               counts, and prints each number once it is on disk
//   files_probe FILE write PREFIX N M   sets N keys, with a synchronize every M
//   files_probe FILE types              sets a value of every type
//   files_probe FILE set KEY VALUE      prints whether it is on disk
//   files_probe FILE calls              prints the calls that matter while it writes once
//   files_probe FILE exit KEY VALUE     sets, and leaves the program by exit()
//   files_probe FILE look PATH          prints whether it is there, and whether it is writable
//   files_probe FILE bookmark PATH...   prints the data of a bookmark of each
//   files_probe FILE resolve DATA...    prints where each leads and whether it is stale, or the error
//   files_probe FILE hold DATA...       the same, and holds them until its input ends
//   files_probe FILE again DATA...      the same, and the same again after a line of input

#include <Foundation/NSFileManager.h>
#include <Foundation/NSURL.h>
#include <Foundation/NSUserDefaults.h>
#include <FoundationBackends/Host.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <limits>
#include <map>
#include <span>
#include <string>
#include <string_view>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool tellsCalls = false;

void tell(std::string_view call, std::string_view what) {
    if (!tellsCalls) return;
    std::printf("%.*s %s\n", static_cast<int>(call.size()), call.data(),
                std::filesystem::path(what).filename().c_str());
}

} // namespace

// These stand before the system's own. FAIL_FLUSH makes a disk that does not keep what it is given: a part of
// the name of what cannot be flushed.
extern "C" int fsync(int file) {
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), error).string();
    tell("flush", path);
    const char* failing = std::getenv("FAIL_FLUSH");
    if (failing && path.ends_with(failing)) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(syscall(SYS_fsync, file));
}

extern "C" int rename(const char* from, const char* to) noexcept {
    tell("rename", to);
    return static_cast<int>(syscall(SYS_rename, from, to));
}

namespace {

using zr::NSData;
using zr::NSUserDefaults;
using zr::PropertyList;

using Words = std::span<char*>;

zr::NSDate dateAt(double secondsSince2001) {
    return PropertyList::kReferenceDate +
           std::chrono::microseconds(static_cast<std::int64_t>(secondsSince2001 * 1e6));
}

int loop(NSUserDefaults& defaults, Words) {
    for (auto i = defaults.integerForKey("count") + 1;; ++i) {
        // A payload whose length tells the number, so that a mixture of two files would be seen.
        const auto length = static_cast<std::size_t>(i * 37 % 20'000);
        defaults.setObject_forKey(i, "count");
        defaults.setObject_forKey(NSData(length, static_cast<std::uint8_t>(i)), "payload");
        defaults.setObject_forKey(PropertyList::Array{i, std::to_string(i)}, "list");
        if (!defaults.synchronize()) return 1;
        std::printf("%lld\n", static_cast<long long>(i));
        std::fflush(stdout);
    }
}

int write(NSUserDefaults& defaults, Words words) {
    const int count = std::atoi(words[1]), each = std::atoi(words[2]);
    for (int i = 1; i <= count; ++i) {
        defaults.setObject_forKey(i, words[0] + std::to_string(i));
        if (i % each == 0 && !defaults.synchronize()) return 1;
    }
    return 0;
}

int types(NSUserDefaults& defaults, Words) {
    const PropertyList::Dictionary all = {{"yes", true},
                                          {"no", false},
                                          {"zero", 0},
                                          {"negative", -5},
                                          {"least", std::numeric_limits<std::int64_t>::min()},
                                          {"most", std::numeric_limits<std::int64_t>::max()},
                                          {"whole real", 3.0},
                                          {"real", 0.1},
                                          {"infinite", std::numeric_limits<double>::infinity()},
                                          {"text", "text"},
                                          {"empty text", ""},
                                          {"wide text", "Größe 日本 😀"},
                                          {"date", dateAt(700'000'000.123456)},
                                          {"early date", dateAt(-0.5)},
                                          {"far date", dateAt(63'113'904'000.25)},
                                          {"data", NSData{0, 1, 255}},
                                          {"empty data", NSData{}},
                                          {"empty array", PropertyList::Array{}},
                                          {"empty dictionary", PropertyList::Dictionary{}},
                                          {"", "of the empty key"}};
    for (const auto& [key, value] : all) defaults.setObject_forKey(value, key);
    defaults.setObject_forKey(
        PropertyList::Array{PropertyList::Dictionary{{"id", "a"}, {"date", dateAt(1)}}, all, NSData(70'000, 1)},
        "nested");
    return defaults.synchronize() ? 0 : 1;
}

int set(NSUserDefaults& defaults, Words words) {
    defaults.setObject_forKey(words[1], words[0]);
    std::puts(defaults.synchronize() ? "stored" : "not stored");
    // It can be read all the same.
    return defaults.stringForKey(words[0]) == std::string(words[1]) ? 0 : 1;
}

int calls(NSUserDefaults& defaults, Words) {
    defaults.setObject_forKey("v", "k");
    tellsCalls = true;
    const bool stored = defaults.synchronize();
    tellsCalls = false;
    return stored ? 0 : 1;
}

int leave(NSUserDefaults& defaults, Words words) {
    defaults.setObject_forKey(words[1], words[0]);
    std::exit(0);
}

int look(NSUserDefaults&, Words words) {
    auto& manager = zr::NSFileManager::defaultManager();
    std::printf("%s, %s\n", manager.fileExistsAtPath(words[0]) ? "there" : "not there",
                manager.isWritableFileAtPath(words[0]) ? "writable" : "not writable");
    return 0;
}

// Data are told as two digits a byte, and the lack of data as "none".
int bookmark(NSUserDefaults&, Words words) {
    for (const char* path : words) {
        const auto data = zr::NSURL::fileURLWithPath(path).bookmarkData();
        for (const int byte : data.value_or(NSData())) std::printf("%02x", static_cast<unsigned>(byte));
        std::puts(data ? "" : "none");
    }
    return 0;
}

int resolve(NSUserDefaults&, Words words) {
    for (const std::string text : words) {
        NSData data;
        for (std::size_t i = 0; i + 1 < text.size(); i += 2)
            data.push_back(static_cast<std::uint8_t>(std::stoi(text.substr(i, 2), nullptr, 16)));
        bool isStale = false;
        std::optional<zr::NSError> error;
        const auto url = zr::NSURL::URLByResolvingBookmarkData_options_relativeToURL_bookmarkDataIsStale_error(
            data, zr::NSURLBookmarkResolutionWithSecurityScope, std::nullopt, &isStale, &error);
        if (url && url->startAccessingSecurityScopedResource())
            std::printf("%s%s\n", url->path().c_str(), isStale ? " (stale)" : "");
        else
            std::printf("error %ld\n", error ? error->code : 0);
    }
    return 0;
}

int hold(NSUserDefaults& defaults, Words words) {
    resolve(defaults, words);
    std::fflush(stdout);
    return std::getchar() == EOF ? 0 : 1;
}

int again(NSUserDefaults& defaults, Words words) {
    resolve(defaults, words);
    std::fflush(stdout);
    while (std::getchar() != '\n')
        if (std::feof(stdin)) return 1;
    return resolve(defaults, words);
}

} // namespace

int main(int argc, char** argv) {
    constexpr auto kAny = std::numeric_limits<std::size_t>::max();
    const std::map<std::string_view, std::pair<int (*)(NSUserDefaults&, Words), std::size_t>> verbs = {
        {"loop", {&loop, 0}},    {"write", {&write, 3}},          {"types", {&types, 0}},
        {"set", {&set, 2}},      {"calls", {&calls, 0}},          {"exit", {&leave, 2}},
        {"look", {&look, 1}},    {"bookmark", {&bookmark, kAny}}, {"resolve", {&resolve, kAny}},
        {"hold", {&hold, kAny}}, {"again", {&again, kAny}}};
    const Words words(argv, static_cast<std::size_t>(argc));
    const auto verb = argc < 3 ? verbs.end() : verbs.find(argv[2]);
    if (verb == verbs.end()) return 2;
    const auto wanted = verb->second.second;
    if (wanted != kAny && words.size() != wanted + 3) return 2;
    zr::backend::Host host;
    host.userDefaults = argv[1];
    zr::backend::install(std::move(host));
    const auto defaults = NSUserDefaults::standardUserDefaults();
    const int result = verb->second.first(*defaults, words.subspan(3));
    zr::backend::uninstall();
    return result;
}
