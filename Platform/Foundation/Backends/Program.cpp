// SPDX-License-Identifier: MIT
#include "Program.h"

#include <dlfcn.h>
#include <unistd.h>

namespace zr::backend {

namespace {

namespace fs = std::filesystem;

fs::path ownLibrary() {
    Dl_info library{};
    if (!dladdr(reinterpret_cast<const void*>(&ownLibrary), &library) || !library.dli_fname) return {};
    std::error_code error;
    return fs::canonical(library.dli_fname, error);
}

std::map<std::string, std::string, std::less<>> wholeEnvironment() {
    std::map<std::string, std::string, std::less<>> variables;
    for (char** entry = environ; entry && *entry; ++entry) {
        const std::string_view text = *entry;
        const auto sign = text.find('=');
        if (sign != std::string_view::npos) variables.emplace(text.substr(0, sign), text.substr(sign + 1));
    }
    return variables;
}

} // namespace

Program Program::now() {
    std::error_code error;
    return {fs::read_symlink("/proc/self/exe", error), ownLibrary(), wholeEnvironment()};
}

std::string_view Program::variable(std::string_view name) const {
    const auto found = environment.find(name);
    return found == environment.end() ? std::string_view() : std::string_view(found->second);
}

} // namespace zr::backend
