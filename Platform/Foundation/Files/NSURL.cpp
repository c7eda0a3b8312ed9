// SPDX-License-Identifier: MIT
#include "Bookmark.h"
#include "FileQuestions.h"

#include <Foundation/NSURL.h>
#include <FoundationBackends/InstalledHost.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <variant>

namespace zr {

namespace {

namespace fs = std::filesystem;

bool staysAsItIs(char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
    return std::string_view("/-._~!$&'()*+,=:@").find(c) != std::string_view::npos;
}

bool isFolder(const std::string& path) {
    if (path.find('\0') != std::string::npos) return false;
    return FileQuestions::shared().ask<bool>(path, [path] {
        std::error_code none;
        return fs::is_directory(path, none);
    }) == true;
}

NSError fileError(long code, std::string text) { return {NSCocoaErrorDomain, code, std::move(text)}; }

NSError silenceAt(const std::string& path) {
    return fileError(NSFileReadUnknownError, "The file system does not answer: " + path);
}

// Of the call that has just failed.
NSError failureAt(const std::string& path) {
    const int number = errno;
    long code = NSFileReadUnknownError;
    if (number == ENOENT || number == ENOTDIR) code = NSFileReadNoSuchFileError;
    if (number == EACCES || number == EPERM) code = NSFileReadNoPermissionError;
    return fileError(code, std::generic_category().message(number) + ": " + path);
}

template <class Value>
using ValueOr = std::variant<NSError, Value>;

// Stores the error, or none, and hands on the value.
template <class Value>
std::optional<Value> split(ValueOr<Value> outcome, std::optional<NSError>* error) {
    auto* const failed = std::get_if<NSError>(&outcome);
    if (error) *error = failed ? std::optional(std::move(*failed)) : std::nullopt;
    if (failed) return std::nullopt;
    return std::get<Value>(std::move(outcome));
}

// The part of the path below the documents' folder; empty when it is none of them.
std::string documentAt(const std::string& path) {
    const auto portal = backend::current()->host.portal;
    const auto folder = portal ? portal->documentsFolder() : std::nullopt;
    if (!folder || !path.starts_with(*folder + "/")) return {};
    return path.substr(folder->size() + 1);
}

ValueOr<NSData> makeBookmark(const std::string& path) {
    const auto item = ItemHandle::open(path);
    if (!item) return failureAt(path);
    Bookmark bookmark{path, documentAt(path), {}};
    if (bookmark.document.empty()) {
        const auto identity = item->identity();
        if (!identity)
            return fileError(NSFileReadUnknownError, "Its file system does not tell it from others: " + path);
        KeptItems::shared().keep(*identity, item);
        bookmark.identity = *identity;
    }
    return encoded(bookmark);
}

struct FoundItem {
    std::string path;
    std::string identity;
    std::shared_ptr<const ItemHandle> handle;
};

ValueOr<FoundItem> findDocument(const Bookmark& bookmark) {
    const auto portal = backend::current()->host.portal;
    const auto folder = portal ? portal->documentsFolder() : std::nullopt;
    if (!folder) return fileError(NSFileReadUnknownError, "No portal hands out documents: " + bookmark.path);
    const std::string path = *folder + "/" + bookmark.document;
    auto item = ItemHandle::open(path);
    if (!item) return failureAt(path);
    return FoundItem{path, {}, std::move(item)};
}

ValueOr<FoundItem> findItem(const Bookmark& bookmark) {
    if (!bookmark.document.empty()) return findDocument(bookmark);
    auto item = ItemHandle::open(bookmark.path);
    const NSError failure = item ? fileError(NSFileReadUnknownError, "Another has its place: " + bookmark.path)
                                 : failureAt(bookmark.path);
    if (item && item->identity() == bookmark.identity)
        return FoundItem{bookmark.path, bookmark.identity, std::move(item)};
    const auto kept = KeptItems::shared().find(bookmark.identity);
    const auto movedTo = kept ? kept->path() : std::nullopt;
    if (!movedTo) return failure;
    item = ItemHandle::open(*movedTo);
    if (!item || item->identity() != bookmark.identity) return failure;
    return FoundItem{*movedTo, bookmark.identity, std::move(item)};
}

} // namespace

// What a resolved URL gives access to.
struct ScopedItem {
    std::string identity; // empty: the portal knows the item
    std::shared_ptr<const ItemHandle> handle;
};

NSURL NSURL::fileURLWithPath(std::string_view path) {
    std::string absolute(path);
    if (!path.starts_with('/')) {
        std::error_code gone;
        absolute = fs::current_path(gone).string();
        if (gone) absolute = "/dev/null"; // below which there is nothing, as in a folder that was removed
        absolute += '/';
        absolute += path;
    }
    if (!absolute.ends_with('/') && isFolder(absolute)) absolute += '/';
    return NSURL(std::move(absolute));
}

std::string NSURL::path() const {
    const auto end = path_.find_last_not_of('/');
    return end == std::string::npos ? "/" : path_.substr(0, end + 1);
}

std::string NSURL::absoluteString() const {
    constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string text = "file://";
    for (const char c : path_) {
        if (staysAsItIs(c)) {
            text += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        text += '%';
        text += kHex[byte >> 4];
        text += kHex[byte & 0xF];
    }
    return text;
}

std::optional<NSData> NSURL::bookmarkData(std::optional<NSError>* error) const {
    using Outcome = ValueOr<NSData>;
    const std::string item = path();
    if (item.find('\0') != std::string::npos)
        return split<NSData>(fileError(NSFileReadNoSuchFileError, "No path has a zero in it"), error);
    auto outcome = FileQuestions::shared().ask<Outcome>(item, [item] { return makeBookmark(item); });
    return split(outcome ? std::move(*outcome) : Outcome(silenceAt(item)), error);
}

std::optional<PropertyList::Dictionary>
NSURL::resourceValuesForKeys_fromBookmarkData(const std::vector<std::string>& keys, const NSData& data) {
    auto bookmark = decoded(data);
    if (!bookmark) return std::nullopt;
    PropertyList::Dictionary values;
    if (std::ranges::find(keys, NSURLPathKey) != keys.end())
        values.emplace(NSURLPathKey, std::move(bookmark->path));
    return values;
}

std::optional<NSURL> NSURL::URLByResolvingBookmarkData_options_relativeToURL_bookmarkDataIsStale_error(
    const NSData& data, unsigned long options, const std::optional<NSURL>&, bool* isStale,
    std::optional<NSError>* error) {
    using Outcome = ValueOr<FoundItem>;
    if (isStale) *isStale = false;
    const auto bookmark = decoded(data);
    Outcome outcome = fileError(NSFileReadCorruptFileError, "The data are no bookmark's, or were changed");
    if (bookmark) {
        auto answer =
            FileQuestions::shared().ask<Outcome>(bookmark->path, [bookmark] { return findItem(*bookmark); });
        outcome = answer ? std::move(*answer) : Outcome(silenceAt(bookmark->path));
    }
    auto found = split(std::move(outcome), error);
    if (!found) return std::nullopt;
    const bool isFolder = found->handle->isFolder();
    if (isStale) *isStale = found->path != bookmark->path;
    std::shared_ptr<const ScopedItem> scope;
    if (options & NSURLBookmarkResolutionWithSecurityScope)
        scope = std::make_shared<ScopedItem>(ScopedItem{std::move(found->identity), std::move(found->handle)});
    return NSURL(isFolder && !found->path.ends_with('/') ? found->path + "/" : found->path, std::move(scope));
}

bool NSURL::startAccessingSecurityScopedResource() const {
    if (!scope_) return false;
    if (!scope_->identity.empty()) KeptItems::shared().keep(scope_->identity, scope_->handle);
    return true;
}

} // namespace zr
