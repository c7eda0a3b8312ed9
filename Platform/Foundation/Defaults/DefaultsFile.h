// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/BinaryPropertyList.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <utility>

#include <sys/stat.h>

// The file of the user defaults. Private to Foundation.
namespace zr {

class FileDescriptor {
public:
    explicit FileDescriptor(int number = -1) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor();

    int number() const { return number_; }

private:
    int number_;
};

// Any process may replace the file at any time, but only whole, and only while it holds the lock. What goes
// wrong with the file system is thrown as std::system_error and leaves the file as it was. One thread at a
// time.
class DefaultsFile {
public:
    // A link is followed, so that the file it leads to is the one that is replaced.
    explicit DefaultsFile(const std::filesystem::path& path);

    const std::filesystem::path& path() const { return path_; }

    enum class State { asLastSeen, changed, missing, damaged };
    struct Reading {
        State state;
        ReadPropertyList contents{}; // of a file that has changed, or with the fault of a damaged one
    };
    Reading read();

    // Keeps other processes from writing. A process that holds it for longer than the patience is an error.
    class Lock {
    public:
        explicit Lock(const DefaultsFile& file, std::chrono::milliseconds patience = std::chrono::seconds(10));
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        FileDescriptor file_;
    };

    // Both under the lock. What they have done lasts, also when the machine stops at once.
    void write(const SharedValues& values);
    std::filesystem::path setAside(); // answers where the file is now

private:
    void remember(FileDescriptor file);

    std::filesystem::path path_;
    // As it was last read or written here. While it is open no other file gets its number.
    FileDescriptor seen_;
    struct stat seenAs_ {};
};

} // namespace zr
