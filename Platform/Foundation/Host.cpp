#include "FileQuestions.h"
#include "HostState.h"

#include <algorithm>
#include <cstdlib>
#include <mutex>

#include <dlfcn.h>

namespace zr::backend {

namespace {

namespace fs = std::filesystem;

std::mutex& lock() {
    static auto* const mutex = new std::mutex;
    return *mutex;
}

// Leaked on purpose: threads may ask for it until the process ends.
std::shared_ptr<HostState>& slot() {
    static auto* const state = new std::shared_ptr<HostState>;
    return *state;
}

fs::path executable() {
    std::error_code error;
    return fs::read_symlink("/proc/self/exe", error);
}

fs::path defaultMainBundle() {
    const fs::path program = executable();
    return program.parent_path().parent_path() / "share" / program.filename();
}

fs::path environmentPath(const char* name) {
    const char* value = std::getenv(name);
    return value && *value == '/' ? value : ""; // others do not count
}

fs::path defaultUserDefaults() {
    fs::path folder = environmentPath("XDG_CONFIG_HOME");
    if (folder.empty()) {
        folder = environmentPath("HOME");
        if (folder.empty()) return {};
        folder /= ".config";
    }
    fs::path file = folder / executable().filename();
    file += ".plist";
    return file;
}

// The kit's resources lie at a fixed place relative to its library.
fs::path kitBundlePath() {
    Dl_info library{};
    if (!dladdr(reinterpret_cast<const void*>(&kitBundlePath), &library) || !library.dli_fname) return {};
    std::error_code error;
    const fs::path file = fs::canonical(library.dli_fname, error);
    return (file.parent_path() / ZRUIKIT_RESOURCES_FROM_LIBRARY).lexically_normal();
}

// "zh_CN.UTF-8" is "zh-Hans-CN": where the script decides, it is named.
std::string languageTag(std::string_view locale) {
    std::string tag(locale.substr(0, locale.find_first_of(".@")));
    std::ranges::replace(tag, '_', '-');
    if (tag == "C" || tag == "POSIX") return {};
    if (tag == "zh" || tag == "zh-CN" || tag == "zh-SG")
        tag.insert(2, "-Hans");
    else if (tag == "zh-TW" || tag == "zh-HK" || tag == "zh-MO")
        tag.insert(2, "-Hant");
    return tag;
}

std::vector<std::string> environmentLanguages() {
    std::vector<std::string> languages;
    const auto add = [&](std::string_view locale) {
        if (auto tag = languageTag(locale); !tag.empty()) languages.push_back(std::move(tag));
    };
    std::string_view locale;
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(name);
        if (!value || !*value) continue;
        locale = value;
        break;
    }
    // LANGUAGE is a list that counts only where there is a locale other than C.
    if (const char* list = std::getenv("LANGUAGE"); list && !languageTag(locale).empty()) {
        std::string_view rest = list;
        while (!rest.empty()) {
            const auto colon = std::min(rest.find(':'), rest.size());
            add(rest.substr(0, colon));
            rest.remove_prefix(std::min(rest.size(), colon + 1));
        }
    }
    add(locale);
    return languages;
}

// Not left to the last reference: a background thread may hold that until the process is gone.
void writeUserDefaults(HostState* state) {
    if (!state) return;
    std::shared_ptr<NSUserDefaults> defaults;
    {
        const std::lock_guard guard(state->lock);
        defaults = state->userDefaults;
    }
    if (defaults) defaults->writeChanges();
}

void writeUserDefaultsAtExit() {
    std::shared_ptr<HostState> state;
    {
        const std::lock_guard guard(lock());
        state = slot();
    }
    writeUserDefaults(state.get());
}

std::shared_ptr<HostState> makeState(Host host) {
    static const int registered = std::atexit(&writeUserDefaultsAtExit);
    static_cast<void>(registered);
    auto state = std::make_shared<HostState>();
    state->queues = std::move(host.queues);
    state->mainBundle =
        make<NSBundle>(&NSBundle::initWithPath, host.mainBundle ? *host.mainBundle : defaultMainBundle());
    state->kitBundle = make<NSBundle>(&NSBundle::initWithPath, kitBundlePath());
    state->preferredLanguages = host.preferredLanguages ? *host.preferredLanguages : environmentLanguages();
    state->notificationCenter = make<NSNotificationCenter>();
    state->userDefaultsFile = host.userDefaults ? *host.userDefaults : defaultUserDefaults();
    state->portal = std::move(host.portal);
    return state;
}

void replace(std::shared_ptr<HostState> state) {
    {
        const std::lock_guard guard(lock());
        slot().swap(state);
    }
    // What was there before goes after the lock: dropped blocks may ask for the host.
    writeUserDefaults(state.get());
}

} // namespace

std::shared_ptr<HostState> current() {
    const std::lock_guard guard(lock());
    auto& state = slot();
    if (!state) state = makeState({});
    return state;
}

void install(Host host) {
    FileQuestions::shared().setWaits(true);
    replace(makeState(std::move(host)));
}

void stopWaiting() { FileQuestions::shared().setWaits(false); }

void uninstall() { replace(nullptr); }

std::string preferredLocalization() { return current()->mainBundle->preferredLocalization(); }

} // namespace zr::backend
