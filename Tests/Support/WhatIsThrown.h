// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace zr::test {

// The text of the std::logic_error that the work throws, or "nothing".
inline std::string whatIsThrown(const std::function<void()>& work) {
    try {
        work();
    } catch (const std::logic_error& error) {
        return error.what();
    }
    return "nothing";
}

} // namespace zr::test
