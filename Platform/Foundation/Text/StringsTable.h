// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <string_view>

namespace zr {

// A table of strings, read from the bytes of a .strings file: "key" = "value"; with comments, in UTF-8, UTF-16
// or UTF-32 (without a byte-order mark: UTF-8). Values that are arrays or dictionaries are read and left out.
// One mistake makes the whole table unreadable: then there is an error, the line it is in, and no entry.
struct StringsTable {
    std::map<std::string, std::string, std::less<>> entries;
    std::string error;
    int errorLine = 0;
};

StringsTable parseStringsTable(std::string_view bytes);

} // namespace zr
