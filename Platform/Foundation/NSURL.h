#pragma once

#include <string>
#include <string_view>

namespace zr {

// The place of a file or folder. A value.
class NSURL {
public:
    // A relative path is taken from the working directory, which an empty one stands for. Nothing in it is
    // resolved: ".", "..", "~", links and double slashes stay. A path that ends in a slash, or at which there
    // is a folder now, is a folder's. Looks at the file system.
    static NSURL fileURLWithPath(std::string_view path);

    // The absolute path, without slashes at its end. The bytes are those of the file's name, whatever they
    // mean.
    std::string path() const;
    // "file://" and the path, a folder's with a slash at the end; bytes that have no place in a URL are
    // escaped.
    std::string absoluteString() const;

    // A place told to be a folder's differs from the same one that was not.
    friend bool operator==(const NSURL&, const NSURL&) = default;

private:
    explicit NSURL(std::string path) : path_(std::move(path)) {}

    std::string path_; // absolute; a folder's ends in a slash
};

} // namespace zr
