// SPDX-License-Identifier: MIT
#pragma once

#include "TrimWindow.h"

#include <AppKit/NSApplication.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <set>

namespace trimstudio {

// Two seconds of silence, 8,000 samples a second.
inline std::string wave() {
    std::string bytes = "RIFF";
    const auto number = [&bytes](std::uint32_t value, int size) {
        for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    };
    constexpr std::uint32_t kRate = 8000, kBytes = 2 * kRate * 2;
    number(36 + kBytes, 4);
    bytes += "WAVEfmt ";
    for (const auto& [value, size] :
         {std::pair{16u, 4}, {1u, 2}, {1u, 2}, {kRate, 4}, {2 * kRate, 4}, {2u, 2}, {16u, 2}})
        number(value, size);
    bytes += "data";
    number(kBytes, 4);
    return bytes + std::string(kBytes, '\0');
}

// A window of TrimStudio with a real file, where time passes and background work is done when the test says so.
class WindowWithFile : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (std::filesystem::temp_directory_path() / "zruikit-windows-XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data());
        std::ofstream(folder_ / "take.wav", std::ios::binary) << wave();
        window_ = zr::make<TrimWindow>(&TrimWindow::initWithPath_describes, folder_ / "take.wav", false);
        window_->show();
        platform_.runUntilIdle();
        ASSERT_FALSE(window_->failed());
        user_ = platform_.windows().front();
    }
    void TearDown() override {
        window_.reset();
        std::filesystem::remove_all(folder_);
    }

    std::string message() const { return user_->labelText("messageLabel"); }
    std::set<std::string> files() const { return filesIn(folder_); }
    static std::set<std::string> filesIn(const std::filesystem::path& folder) {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.insert(entry.path().filename().string());
        return names;
    }

    zr::headless::Platform platform_;
    std::filesystem::path folder_;
    std::shared_ptr<TrimWindow> window_;
    zr::headless::Window* user_ = nullptr;
};

} // namespace trimstudio
