// SPDX-License-Identifier: MIT
#pragma once

#include "Outcome.h"

#include <filesystem>
#include <memory>

struct AVIOContext;

namespace trimstudio {

// A file that comes into being only when it is complete. Until then it has a hidden name of its own in the
// folder of the wanted name; destroying the object without finish() removes it. For one thread.
class OutputFile {
public:
    static Outcome<std::unique_ptr<OutputFile>> create(const std::filesystem::path& wanted);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    AVIOContext* io() const { return io_; }
    int descriptor() const { return fd_; }

    // Writes out what is buffered. A sentence if this or any earlier writing failed, else nothing.
    std::string flush();
    // A sentence for an FFmpeg error that came up while writing.
    std::string problem(int error) const;

    // Makes sure that everything is on the disk. A sentence if that failed, else nothing.
    std::string sync();
    // After sync(): gives the file the wanted name or, where that is taken, the next free one ("NAME 2.EXT").
    // Never replaces a file. Returns the name.
    Outcome<std::filesystem::path> finish();

private:
    OutputFile(std::filesystem::path wanted, std::filesystem::path temporary, int fd);

    static int write(void* self, uint8_t* data, int size);
    static int64_t seek(void* self, int64_t offset, int whence);

    std::filesystem::path wanted_;
    std::filesystem::path temporary_;
    int fd_ = -1;
    int64_t unwritten_ = 0; // bytes since the disk was last told to write
    int error_ = 0;         // errno of the first write that failed.
    AVIOContext* io_ = nullptr;
};

} // namespace trimstudio
