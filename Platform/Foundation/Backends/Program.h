// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace zr::backend {

// Where the program runs, as it was at one moment: what is asked later, and from other threads, sees nothing of
// what has changed since.
struct Program {
    static Program now();

    // The variable's text; empty where there is none.
    std::string_view variable(std::string_view name) const;

    std::filesystem::path executable;
    std::filesystem::path library; // that Foundation is in
    std::map<std::string, std::string, std::less<>> environment;
};

} // namespace zr::backend
