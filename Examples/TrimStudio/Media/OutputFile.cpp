// SPDX-License-Identifier: MIT
#include "Av.h"
#include "OutputFile.h"

#include <cerrno>
#include <cstdio>
#include <new>
#include <random>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace trimstudio {

namespace {

constexpr int bufferSize = 256 * 1024;
constexpr int64_t writtenAtOnce = int64_t{16} << 20;

std::filesystem::path folderOf(const std::filesystem::path& path) {
    return path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
}

std::filesystem::path temporaryIn(const std::filesystem::path& folder) {
    std::random_device random;
    std::string name = ".trimming-";
    name += std::to_string(::getpid());
    name += "-";
    name += std::to_string(random());
    return folder / name;
}

std::filesystem::path numbered(const std::filesystem::path& path, int number) {
    if (number == 1) return path;
    std::string name = path.stem().string();
    name += " ";
    name += std::to_string(number);
    name += path.extension().string();
    return path.parent_path() / name;
}

Failure cannotCreate(const std::filesystem::path& folder, int error) {
    std::error_code ignored; // leaves the name as it was given
    const std::filesystem::path full = std::filesystem::absolute(folder, ignored).lexically_normal();
    std::string where = "The folder ";
    where += av::quoted(full.empty() ? folder : full);
    switch (error) {
    case EACCES:
    case EPERM:
    case EROFS:
        return Failure{where + " does not allow new files to be saved in it."};
    case ENOENT:
        return Failure{where + " no longer exists."};
    case ENOSPC:
    case EDQUOT:
        return Failure{where + " has no room for another file."};
    default:
        return Failure{where + " does not take a new file " + av::inParentheses(AVERROR(error)) + "."};
    }
}

// For file systems that know neither way of naming without replacing: reserves the name with an empty file
// of our own and then replaces that. Returns 0 or an errno.
int moveOntoReserved(const std::filesystem::path& from, const std::filesystem::path& to) {
    const int reserved = ::open(to.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0666);
    if (reserved < 0) return errno;
    ::close(reserved);
    if (::rename(from.c_str(), to.c_str()) == 0) return 0;
    const int error = errno;
    ::unlink(to.c_str());
    return error;
}

// Moves a file to a name only if that is free. Returns 0 or an errno, EEXIST for a name that is taken.
int moveToFree(const std::filesystem::path& from, const std::filesystem::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    if (::link(from.c_str(), to.c_str()) == 0) {
        ::unlink(from.c_str());
        return 0;
    }
    if (errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS || errno == EMLINK)
        return moveOntoReserved(from, to);
    return errno;
}

void syncFolder(const std::filesystem::path& folder) {
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return;
    ::fsync(fd);
    ::close(fd);
}

} // namespace

Outcome<std::unique_ptr<OutputFile>> OutputFile::create(const std::filesystem::path& wanted) {
    const std::filesystem::path folder = folderOf(wanted);
    for (;;) {
        std::filesystem::path temporary = temporaryIn(folder);
        const int fd = ::open(temporary.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
        if (fd >= 0) return std::unique_ptr<OutputFile>(new OutputFile(wanted, std::move(temporary), fd));
        if (errno != EEXIST && errno != EINTR) return cannotCreate(folder, errno);
    }
}

OutputFile::OutputFile(std::filesystem::path wanted, std::filesystem::path temporary, int fd)
    : wanted_(std::move(wanted)), temporary_(std::move(temporary)), fd_(fd) {
    auto* buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
    if (buffer)
        io_ = avio_alloc_context(buffer, bufferSize, 1, this, nullptr, &OutputFile::write, &OutputFile::seek);
    if (!io_) {
        av_free(buffer);
        ::unlink(temporary_.c_str());
        ::close(fd_);
        throw std::bad_alloc();
    }
}

OutputFile::~OutputFile() {
    av_freep(&io_->buffer);
    avio_context_free(&io_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
    ::close(fd_);
}

int OutputFile::write(void* self, uint8_t* data, int size) {
    auto& file = *static_cast<OutputFile*>(self);
    for (int done = 0; done < size;) {
        const ssize_t count = ::write(file.fd_, data + done, static_cast<std::size_t>(size - done));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) {
            if (file.error_ == 0) file.error_ = errno;
            return AVERROR(errno);
        }
        done += static_cast<int>(count);
    }
    // Else all of a large file would wait for sync(), which cannot be cancelled.
    file.unwritten_ += size;
    if (file.unwritten_ >= writtenAtOnce) {
        ::sync_file_range(file.fd_, 0, 0, SYNC_FILE_RANGE_WRITE);
        file.unwritten_ = 0;
    }
    return size;
}

int64_t OutputFile::seek(void* self, int64_t offset, int whence) {
    const auto& file = *static_cast<OutputFile*>(self);
    if (whence & AVSEEK_SIZE) {
        struct stat facts {};
        return ::fstat(file.fd_, &facts) == 0 ? facts.st_size : AVERROR(errno);
    }
    const off_t place = ::lseek(file.fd_, offset, whence & ~AVSEEK_FORCE);
    return place < 0 ? AVERROR(errno) : place;
}

std::string OutputFile::flush() {
    avio_flush(io_);
    if (error_ != 0) return problem(AVERROR(error_));
    return io_->error < 0 ? problem(io_->error) : std::string();
}

std::string OutputFile::problem(int error) const {
    const int cause = error_ != 0 ? error_ : AVUNERROR(error);
    if (cause == ENOSPC || cause == EDQUOT)
        return "There is not enough free space to save " + av::quoted(wanted_) + ".";
    if (cause == EFBIG) return av::quoted(wanted_) + " would be larger than a file may be here.";
    return av::quoted(wanted_) + " could not be written " + av::inParentheses(AVERROR(cause)) + ".";
}

std::string OutputFile::sync() {
    if (std::string text = flush(); !text.empty()) return text;
    return ::fsync(fd_) == 0 ? std::string() : problem(AVERROR(errno));
}

Outcome<std::filesystem::path> OutputFile::finish() {
    for (int number = 1;; ++number) {
        std::filesystem::path name = numbered(wanted_, number);
        const int error = moveToFree(temporary_, name);
        if (error == EEXIST) continue;
        if (error == ENAMETOOLONG) return Failure{av::quoted(name) + " is too long for a file name here."};
        if (error != 0) return Failure{problem(AVERROR(error))};
        temporary_.clear();
        syncFolder(folderOf(name));
        return name;
    }
}

} // namespace trimstudio
