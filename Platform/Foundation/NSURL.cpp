#include <Foundation/NSURL.h>

#include <filesystem>
#include <system_error>

namespace zr {

namespace {

namespace fs = std::filesystem;

bool staysAsItIs(char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
    return std::string_view("/-._~!$&'()*+,=:@").find(c) != std::string_view::npos;
}

bool isFolder(const std::string& path) {
    std::error_code none;
    return path.find('\0') == std::string::npos && fs::is_directory(path, none);
}

} // namespace

NSURL NSURL::fileURLWithPath(std::string_view path) {
    std::string absolute(path);
    if (!path.starts_with('/')) {
        std::error_code gone;
        absolute = fs::current_path(gone).string();
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

} // namespace zr
