// SPDX-License-Identifier: MIT
#include "UserLanguages.h"

#include <Foundation/NSBundle.h>
#include <Foundation/NSLog.h>
#include <Foundation/StringsTable.h>
#include <FoundationBackends/InstalledHost.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

namespace zr {

namespace fs = std::filesystem;

namespace {

constexpr const char* kDevelopmentLanguage = "en";

// Folders of old bundles carry names of languages.
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kOldNames = {{
    {"English", "en"},
    {"French", "fr"},
    {"German", "de"},
    {"Italian", "it"},
    {"Japanese", "ja"},
    {"Spanish", "es"},
}};

std::string normalised(std::string_view language) {
    for (const auto& [old, tag] : kOldNames)
        if (language == old) return std::string(tag);
    std::string tag(language);
    std::ranges::transform(tag, tag.begin(), [](char c) {
        if (c == '_') return '-';
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    });
    return tag;
}

// Of the languages there are, the one for the wish: itself or what it is a regional variant of.
std::optional<std::string> match(const std::vector<std::string>& available, const std::string& wish) {
    for (std::string tag = normalised(wish); !tag.empty();) {
        const auto found = std::ranges::find(available, tag, normalised);
        if (found != available.end()) return *found;
        const auto dash = tag.rfind('-');
        tag.resize(dash == std::string::npos ? 0 : dash);
    }
    return std::nullopt;
}

std::string firstMatch(const std::vector<std::string>& available, const std::vector<std::string>& wishes) {
    for (const auto& wish : wishes)
        if (auto found = match(available, wish)) return *found;
    return match(available, kDevelopmentLanguage).value_or("Base");
}

std::shared_ptr<NSBundle> bundleAt(const fs::path& path) {
    return make<NSBundle>(&NSBundle::initWithPath, path);
}

fs::path mainBundlePath(const backend::InstalledHost& installed) {
    if (installed.host.mainBundle) return *installed.host.mainBundle;
    const fs::path& program = installed.program.executable;
    return program.parent_path().parent_path() / "share" / program.filename();
}

// The kit's resources lie at a fixed place relative to its library.
fs::path kitBundlePath(const backend::Program& program) {
    fs::path place = (program.library.parent_path() / ZRUIKIT_RESOURCES_FROM_OWN_PLACE).lexically_normal();
#ifdef ZRUIKIT_BUILT_RESOURCES
    std::error_code error;
    if (!fs::exists(place, error)) place = ZRUIKIT_BUILT_RESOURCES;
#endif
    return place;
}

struct Bundles : backend::Part {
    explicit Bundles(const backend::InstalledHost& installed)
        : ofProgram(bundleAt(mainBundlePath(installed)))
        , ofKit(bundleAt(kitBundlePath(installed.program)))
        , languages(userLanguages(installed)) {}

    const std::shared_ptr<NSBundle> ofProgram, ofKit;
    const std::vector<std::string> languages;
};

} // namespace

ZR_CLASS_TABLE(NSBundle)

NSBundle& NSBundle::mainBundle() { return *backend::current()->part<Bundles>().ofProgram; }

NSBundle& NSBundle::bundleForClass(const ClassTable& table) {
    const auto ours = kitClassTables();
    const auto host = backend::current();
    const auto& bundles = host->part<Bundles>();
    return std::ranges::find(ours, &table) != ours.end() ? *bundles.ofKit : *bundles.ofProgram;
}

bool NSBundle::initWithPath(const fs::path& path) {
    path_ = path;
    return true;
}

std::vector<std::string> NSBundle::localizations() const {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(path_, error), end; !error && entry != end; entry.increment(error))
        if (entry->path().extension() == ".lproj") names.push_back(entry->path().stem().string());
    std::erase(names, "Base");
    std::ranges::sort(names);
    return names;
}

std::string NSBundle::preferredLocalization() const {
    const auto host = backend::current();
    const auto& bundles = host->part<Bundles>();
    const auto mainLanguages = bundles.ofProgram->localizations();
    if (mainLanguages.empty() || this == bundles.ofProgram.get())
        return firstMatch(localizations(), bundles.languages);
    return firstMatch(localizations(), {firstMatch(mainLanguages, bundles.languages)});
}

std::string backend::preferredLocalization() {
    const auto host = current();
    return host->part<Bundles>().ofProgram->preferredLocalization();
}

std::optional<fs::path> NSBundle::pathOfTable(const std::string& name) const {
    std::string file = name;
    file += ".strings";
    std::error_code error;
    if (auto path = path_ / file; fs::is_regular_file(path, error)) return path;
    return localizedPath(file);
}

std::optional<fs::path> NSBundle::pathForInterfaceFile(std::string_view name) const {
    std::string file(name);
    file += ".xib";
    if (auto path = localizedPath(file)) return path;
    std::error_code error;
    auto path = path_ / file;
    return fs::is_regular_file(path, error) ? std::optional(path) : std::nullopt;
}

std::optional<fs::path> NSBundle::localizedPath(const std::string& file) const {
    std::error_code error;
    const auto languages = localizations();
    for (const auto& language :
         {preferredLocalization(), match(languages, kDevelopmentLanguage).value_or("Base"),
          std::string("Base")}) {
        std::string folder = language;
        folder += ".lproj";
        if (auto path = path_ / folder / file; fs::is_regular_file(path, error)) return path;
    }
    return std::nullopt;
}

const NSBundle::Table& NSBundle::tableNamed(const std::string& name) const {
    const std::lock_guard guard(lock_);
    if (const auto known = tables_.find(name); known != tables_.end()) return known->second;
    Table& table = tables_[name];
    const auto path = pathOfTable(name);
    if (!path) return table;
    std::ifstream file(*path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    auto parsed = parseStringsTable(bytes);
    if (parsed.error.empty())
        table = std::move(parsed.entries);
    else
        NSLog("The strings table %@ is not used: line %d: %@", path->string(), parsed.errorLine, parsed.error);
    return table;
}

std::string NSBundle::localizedStringForKey_value_table(const std::optional<std::string>& key,
                                                        const std::optional<std::string>& value,
                                                        const std::optional<std::string>& table) const {
    if (!key) return value.value_or("");
    const Table& entries = tableNamed(table && !table->empty() ? *table : "Localizable");
    if (const auto found = entries.find(*key); found != entries.end()) return found->second;
    return value && !value->empty() ? *value : *key;
}

} // namespace zr
