// SPDX-License-Identifier: MIT
#include <Foundation/NSString.h>

namespace zr {

std::string stringByDeletingLastPathComponent(std::string_view path) {
    std::string parts;
    for (const char c : path)
        if (c != '/' || !parts.ends_with('/')) parts += c;
    if (parts == "/") return parts;
    if (parts.ends_with('/')) parts.pop_back();
    const auto slash = parts.rfind('/');
    if (slash == std::string::npos) return "";
    parts.resize(slash == 0 ? 1 : slash);
    return parts;
}

} // namespace zr
