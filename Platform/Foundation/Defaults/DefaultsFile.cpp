// SPDX-License-Identifier: MIT
#include "DefaultsFile.h"

#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace zr {

namespace fs = std::filesystem;

namespace {

constexpr mode_t kOnlyForTheUser = 0600;
constexpr mode_t kFolderOnlyForTheUser = 0700;

[[noreturn]] void fail(const char* what, const fs::path& path, int error = errno) {
    std::string text = what;
    text += ' ';
    text += path.string();
    throw std::system_error(error, std::generic_category(), text);
}

fs::path withSuffix(fs::path path, const std::string& suffix) {
    path += suffix;
    return path;
}

// A folder is on disk with its names once it is flushed itself.
void flushFolder(const fs::path& folder) {
    const FileDescriptor opened(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.number() < 0 || fsync(opened.number()) != 0) fail("flush", folder);
}

void makeFolder(const fs::path& folder) {
    std::error_code ignored;
    if (folder.empty() || fs::is_directory(folder, ignored)) return;
    makeFolder(folder.parent_path());
    if (mkdir(folder.c_str(), kFolderOnlyForTheUser) != 0 && errno != EEXIST) fail("make", folder);
    flushFolder(folder.parent_path());
}

bool isSame(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino && a.st_size == b.st_size &&
           a.st_mtim.tv_sec == b.st_mtim.tv_sec && a.st_mtim.tv_nsec == b.st_mtim.tv_nsec;
}

NSData readAll(const FileDescriptor& file, std::size_t expected, const fs::path& path) {
    NSData bytes(expected + 1); // one more tells the end
    std::size_t size = 0;
    while (true) {
        const ssize_t count = ::read(file.number(), bytes.data() + size, bytes.size() - size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail("read", path);
        if (count == 0 || size > kLargestPropertyList) break;
        size += static_cast<std::size_t>(count);
        if (size == bytes.size()) bytes.resize(2 * size);
    }
    bytes.resize(size);
    return bytes;
}

void writeAll(const FileDescriptor& file, const NSData& bytes, const fs::path& path) {
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = ::write(file.number(), bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail("write", path);
        done += static_cast<std::size_t>(count);
    }
    if (fsync(file.number()) != 0) fail("flush", path);
}

} // namespace

FileDescriptor::~FileDescriptor() {
    if (number_ >= 0) close(number_);
}

DefaultsFile::DefaultsFile(const fs::path& path) {
    std::error_code missing;
    path_ = fs::canonical(path, missing);
    if (missing) path_ = fs::absolute(path, missing);
}

void DefaultsFile::remember(FileDescriptor file) {
    if (fstat(file.number(), &seenAs_) != 0) fail("look at", path_);
    seen_ = std::move(file);
}

DefaultsFile::Reading DefaultsFile::read() {
    struct stat now {};
    if (seen_.number() >= 0 && stat(path_.c_str(), &now) == 0 && isSame(now, seenAs_))
        return {.state = State::asLastSeen};
    FileDescriptor file(open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (file.number() < 0) {
        if (errno == ENOENT) return {.state = State::missing};
        fail("open", path_);
    }
    if (fstat(file.number(), &now) != 0) fail("look at", path_);
    if (!S_ISREG(now.st_mode)) fail("read", path_, EINVAL);
    if (static_cast<std::uint64_t>(now.st_size) > kLargestPropertyList)
        return {.state = State::damaged, .contents = {.values = {}, .fault = "it is too large"}};
    auto contents = readBinaryPropertyList(readAll(file, static_cast<std::size_t>(now.st_size), path_));
    if (!contents.fault.empty()) return {.state = State::damaged, .contents = std::move(contents)};
    remember(std::move(file));
    return {.state = State::changed, .contents = std::move(contents)};
}

DefaultsFile::Lock::Lock(const DefaultsFile& file, std::chrono::milliseconds patience) {
    makeFolder(file.path_.parent_path());
    const fs::path path = withSuffix(file.path_, ".lock");
    file_ = FileDescriptor(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kOnlyForTheUser));
    if (file_.number() < 0) fail("open", path);
    const auto end = std::chrono::steady_clock::now() + patience;
    while (flock(file_.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) fail("lock", path);
        if (std::chrono::steady_clock::now() >= end) fail("lock", path, ETIMEDOUT);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

DefaultsFile::Lock::~Lock() {
    // Closing is not enough while a child process has the file open as well.
    flock(file_.number(), LOCK_UN);
}

void DefaultsFile::write(const SharedValues& values) {
    NSData bytes;
    try {
        bytes = writeBinaryPropertyList(values);
    } catch (const std::length_error&) {
        fail("write", path_, EFBIG);
    }
    const fs::path fresh = withSuffix(path_, ".new"); // under the lock there is one writer at most
    if (unlink(fresh.c_str()) != 0 && errno != ENOENT) fail("remove", fresh);
    FileDescriptor file(
        open(fresh.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, kOnlyForTheUser));
    if (file.number() < 0) fail("make", fresh);
    try {
        if (seen_.number() >= 0 && fchmod(file.number(), seenAs_.st_mode & 0777) != 0) fail("write", fresh);
        writeAll(file, bytes, fresh);
        if (rename(fresh.c_str(), path_.c_str()) != 0) fail("replace", path_);
    } catch (const std::system_error&) {
        unlink(fresh.c_str());
        throw;
    }
    remember(std::move(file));
    flushFolder(path_.parent_path());
}

fs::path DefaultsFile::setAside() {
    fs::path aside = withSuffix(path_, ".unreadable");
    struct stat taken {};
    for (int number = 2; lstat(aside.c_str(), &taken) == 0; ++number)
        aside = withSuffix(path_, ".unreadable-" + std::to_string(number));
    if (rename(path_.c_str(), aside.c_str()) != 0) fail("set aside", path_);
    flushFolder(path_.parent_path());
    return aside;
}

} // namespace zr
