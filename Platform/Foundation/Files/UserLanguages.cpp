// SPDX-License-Identifier: MIT
#include "UserLanguages.h"

#include <algorithm>
#include <string_view>

namespace zr {

namespace {

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

std::vector<std::string> environmentLanguages(const backend::Program& program) {
    std::vector<std::string> languages;
    const auto add = [&](std::string_view locale) {
        if (auto tag = languageTag(locale); !tag.empty()) languages.push_back(std::move(tag));
    };
    std::string_view locale;
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        locale = program.variable(name);
        if (!locale.empty()) break;
    }
    // LANGUAGE is a list that counts only where there is a locale other than C.
    if (!languageTag(locale).empty()) {
        std::string_view rest = program.variable("LANGUAGE");
        while (!rest.empty()) {
            const auto colon = std::min(rest.find(':'), rest.size());
            add(rest.substr(0, colon));
            rest.remove_prefix(std::min(rest.size(), colon + 1));
        }
    }
    add(locale);
    return languages;
}

} // namespace

std::vector<std::string> userLanguages(const backend::InstalledHost& installed) {
    const auto& named = installed.host.preferredLanguages;
    return named ? *named : environmentLanguages(installed.program);
}

} // namespace zr
