// SPDX-License-Identifier: MIT
#include "SaveFolder.h"

#include <Foundation/NSUserDefaults.h>

namespace trimstudio {

using namespace zr;

namespace {
constexpr const char* kSaveFolderKey = "SaveFolder";
}

std::optional<std::filesystem::path> saveFolder() {
    const auto defaults = NSUserDefaults::standardUserDefaults();
    if (const auto bytes = defaults->dataForKey(kSaveFolderKey))
        return std::string(bytes->begin(), bytes->end());
    const auto text = defaults->stringForKey(kSaveFolderKey);
    // Whatever else is stored there is no folder's name.
    return text && text->starts_with('/') ? std::optional<std::filesystem::path>(*text) : std::nullopt;
}

void setSaveFolder(const std::optional<std::filesystem::path>& folder) {
    std::optional<PropertyList> value;
    if (folder) {
        const std::string& name = folder->native();
        value = PropertyList(name);
        if (value->fault()) value = PropertyList(NSData(name.begin(), name.end()));
    }
    NSUserDefaults::standardUserDefaults()->setObject_forKey(value, kSaveFolderKey);
}

} // namespace trimstudio
