// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSError.h>
#include <Foundation/PropertyList.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

struct ScopedItem;

// A value that a bookmark's data hold: the path, as text, at which the item was.
inline const std::string NSURLPathKey = "_NSURLPathKey";

enum NSURLBookmarkResolutionOptions : unsigned long {
    NSURLBookmarkResolutionWithSecurityScope = 1UL << 10,
};

// The place of a file or folder. A value.
class ZR_EXPORT NSURL {
public:
    // A relative path is taken from the working directory, which an empty one stands for. Nothing in it is
    // resolved: ".", "..", "~", links and double slashes stay. A path that ends in a slash, or at which there
    // is a folder now, is a folder's. Looks at the file system, as bookmarkData does. From any thread.
    static NSURL fileURLWithPath(std::string_view path);

    // The absolute path, without slashes at its end. The bytes are those of the file's name, whatever they
    // mean.
    std::string path() const;
    // "file://" and the path, a folder's with a slash at the end; bytes that have no place in a URL are
    // escaped.
    std::string absoluteString() const;

    // Data by which the item is known again in later runs of the program, wherever it was moved to on its file
    // system and whatever took its name. Nothing, with an error, where there is no item, and where its file
    // system has nothing that tells it from another at the same path.
    //
    // From any thread, like the two that follow; may wait two seconds for a file system that does not answer.
    std::optional<NSData> bookmarkData(std::optional<NSError>* error = nullptr) const;
    // The values that the data hold for the keys, without a look at the file system; nothing for other data.
    static std::optional<PropertyList::Dictionary>
    resourceValuesForKeys_fromBookmarkData(const std::vector<std::string>& keys, const NSData& data);
    // Where the item is now; stale when that is another place than the data say, so that they should be made
    // again. It is found there only while the program holds it: since this run made its bookmark, or started
    // access to it. Nothing, with an error, when it is gone, when another has its place, when its file system
    // does not answer, and for data that are no bookmark's or were changed. Data hold absolute paths: the
    // relative URL does not count.
    static std::optional<NSURL> URLByResolvingBookmarkData_options_relativeToURL_bookmarkDataIsStale_error(
        const NSData& data, unsigned long options, const std::optional<NSURL>& relativeToURL, bool* isStale,
        std::optional<NSError>* error);
    // Of a URL that was resolved with its security scope: true; the item is found again wherever it is moved,
    // until the program ends. Of any other false, and nothing happens.
    bool startAccessingSecurityScopedResource() const;

    // A place told to be a folder's differs from the same one that was not.
    friend bool operator==(const NSURL& a, const NSURL& b) { return a.path_ == b.path_; }

private:
    explicit NSURL(std::string path, std::shared_ptr<const ScopedItem> scope = nullptr)
        : path_(std::move(path)), scope_(std::move(scope)) {}

    std::string path_; // absolute; a folder's ends in a slash
    std::shared_ptr<const ScopedItem> scope_;
};

} // namespace zr
