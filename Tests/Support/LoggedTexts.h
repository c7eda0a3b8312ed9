// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace zr::test {

// The texts of the lines that the work logs, without time, process and thread.
inline std::vector<std::string> logged(const std::function<void()>& work) {
    testing::internal::CaptureStderr();
    work();
    const std::string lines = testing::internal::GetCapturedStderr();
    std::vector<std::string> texts;
    for (std::size_t at = 0, end; (end = lines.find('\n', at)) != std::string::npos; at = end + 1) {
        const std::string line = lines.substr(at, end - at);
        texts.push_back(line.substr(line.find("] ") + 2));
    }
    return texts;
}

} // namespace zr::test
