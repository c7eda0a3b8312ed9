// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

#include <stdlib.h>

namespace zr::test {

// An empty folder that goes, with all that is in it, at the end.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& place = std::filesystem::temp_directory_path()) {
        std::string pattern = (place / "zruikit-XXXXXX").string();
        if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
        path_ = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    // With the folders that lead to it.
    std::filesystem::path write(const std::filesystem::path& name, std::string_view bytes) const {
        auto file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << bytes;
        return file;
    }

private:
    std::filesystem::path path_;
};

} // namespace zr::test
