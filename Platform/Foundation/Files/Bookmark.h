// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/PropertyList.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

// What a bookmark's data say, and how an item is known again. Private to Foundation.
namespace zr {

struct Bookmark {
    std::string path; // absolute
    // Where the item is a document that a sandbox was handed: its place below the folder of all documents,
    // which begins with its id. Else empty.
    std::string document;
    // Of any other item: what tells it from every other that was, is or will be at the path.
    std::string identity;

    friend bool operator==(const Bookmark&, const Bookmark&) = default;
};

NSData encoded(const Bookmark& bookmark);
// Nothing for data that encoded() did not make, or that were changed since.
std::optional<Bookmark> decoded(const NSData& data);

// An item that is held, whatever becomes of its name. Closed with its last holder.
class ItemHandle {
public:
    // Null, and errno set, when there is no item; links are followed.
    static std::shared_ptr<const ItemHandle> open(const std::string& path);
    ItemHandle(int descriptor, std::uint64_t device, bool isFolder)
        : descriptor_(descriptor), device_(device), isFolder_(isFolder) {}
    ~ItemHandle();
    ItemHandle(const ItemHandle&) = delete;
    ItemHandle& operator=(const ItemHandle&) = delete;

    // The file system's id with the item's handle or, where there are no handles, its number with the time of
    // its birth. What does not last from one mounting to the next does not count; where the id does not, the
    // time of birth is wanted, too. Nothing where there is too little: numbers alone are given away again.
    std::optional<std::string> identity() const;
    // Where it is now; nothing once it is removed.
    std::optional<std::string> path() const;
    std::uint64_t device() const { return device_; } // of its file system, as long as that is mounted
    bool isFolder() const { return isFolder_; }

private:
    const int descriptor_;
    const std::uint64_t device_;
    const bool isFolder_;
};

// The items whose handles are kept for the rest of the run, so that they are found where they were moved to.
// Only those on the disk of the system or of the user's home: a handle keeps the user from unmounting any
// other. Not more than a quarter of the files that the program may have open: the oldest goes first. From any
// thread.
class KeptItems {
public:
    static KeptItems& shared();

    void keep(const std::string& identity, const std::shared_ptr<const ItemHandle>& item);
    std::shared_ptr<const ItemHandle> find(const std::string& identity) const;

private:
    KeptItems();

    const std::vector<std::uint64_t> devices_;
    const std::size_t most_;
    mutable std::mutex lock_;
    std::unordered_map<std::string, std::shared_ptr<const ItemHandle>>
        items_; // guarded by lock_, like their order
    std::deque<std::string> oldestFirst_;
};

} // namespace zr
