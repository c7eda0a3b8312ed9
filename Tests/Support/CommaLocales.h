// SPDX-License-Identifier: MIT
#pragma once

#include "TemporaryFolder.h"

#include <clocale>
#include <cstdlib>
#include <locale>
#include <string>

// Languages that write a comma where programs write a point. Each holds for as long as it lives.
namespace zr::test {

// For the streams of the C++ library.
class CommaInStreams {
public:
    CommaInStreams() : before_(std::locale::global(std::locale(std::locale::classic(), new Point))) {}
    ~CommaInStreams() { std::locale::global(before_); }
    CommaInStreams(const CommaInStreams&) = delete;
    CommaInStreams& operator=(const CommaInStreams&) = delete;

private:
    class Point : public std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale before_;
};

// For the C library: German, which is made where the system has none.
class CommaInC {
public:
    CommaInC() : before_(std::setlocale(LC_ALL, nullptr)) {
        constexpr const char* kGerman = "de_DE.UTF-8";
        bool set = std::setlocale(LC_ALL, kGerman) != nullptr;
        if (!set) {
            const auto own = (folder_.path() / kGerman).string();
            const int made = std::system(("localedef -i de_DE -f UTF-8 '" + own + "' >/dev/null 2>&1").c_str());
            setenv("LOCPATH", folder_.path().c_str(), 1);
            set = made == 0 && std::setlocale(LC_ALL, kGerman);
            unsetenv("LOCPATH");
        }
        isSet_ = set && std::string(std::localeconv()->decimal_point) == ",";
    }
    ~CommaInC() { std::setlocale(LC_ALL, before_.c_str()); }
    CommaInC(const CommaInC&) = delete;
    CommaInC& operator=(const CommaInC&) = delete;

    bool isSet() const { return isSet_; }
    static const char* whyNot() { return "the system has no German locale and cannot make one"; }

private:
    std::string before_;
    TemporaryFolder folder_;
    bool isSet_ = false;
};

} // namespace zr::test
