// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

class NSImage;

// A folder of resources: pictures and, in LANGUAGE.lproj folders, tables of strings. From any thread, but for
// images, which belong to the main thread. The main bundle and the kit's live as long as the installed host.
class ZR_EXPORT NSBundle : public NSObject {
public:
    ZR_CLASS(NSBundle, NSObject)

    static NSBundle& mainBundle();
    // The bundle that holds the class: the kit's for classes of the kit and the layer, the main bundle for any
    // other.
    static NSBundle& bundleForClass(const ClassTable& table);

    bool initWithPath(const std::filesystem::path& path);
    const std::filesystem::path& bundlePath() const { return path_; }

    // The text for the key in table.strings of the best language; a table without a name is "Localizable". An
    // entry with an empty text counts. Without an entry: the value or, where that is empty, the key. Never an
    // error: a table that is missing is an empty one, and so is one with a syntax error, which is logged once.
    // A table is read once.
    std::string localizedStringForKey_value_table(const std::optional<std::string>& key,
                                                  const std::optional<std::string>& value,
                                                  const std::optional<std::string>& table) const;

    // The picture of that name with all its variants (NAME.png, NAME@2x.png, NAME~dark.png, NAME~dark@2x.png),
    // shared by all who ask while it lives; null when there is none. The extension may be given.
    std::shared_ptr<NSImage> imageForResource(std::string_view name) const;

    // NAME.xib of the language in which the user sees the bundle, of the language it was developed in, of
    // Base.lproj, or without a language, in this order.
    std::optional<std::filesystem::path> pathForInterfaceFile(std::string_view name) const;

    // Names of the languages there are strings for, sorted.
    std::vector<std::string> localizations() const;
    // The language in which the user sees this bundle: that of the main bundle where the main bundle has any.
    std::string preferredLocalization() const;

private:
    using Table = std::map<std::string, std::string, std::less<>>;
    const Table& tableNamed(const std::string& name) const;
    std::optional<std::filesystem::path> pathOfTable(const std::string& name) const;
    std::optional<std::filesystem::path> localizedPath(const std::string& file) const;

    std::filesystem::path path_;
    mutable std::mutex lock_;
    mutable std::map<std::string, Table> tables_; // guarded by lock_; entries never change once they are there
};

} // namespace zr
