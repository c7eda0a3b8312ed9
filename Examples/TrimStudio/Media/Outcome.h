// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace trimstudio {

// Why something could not be done: one sentence that can be shown to people as it is.
struct Failure {
    std::string text;
};

// Either a value or the reason why there is none. Asking for the one that is not there is undefined.
template <class T>
class Outcome {
public:
    Outcome(T value) : value_(std::move(value)) {}
    Outcome(Failure failure) : error_(std::move(failure.text)) {}

    explicit operator bool() const { return value_.has_value(); }
    T& value() { return *value_; }
    const T& value() const { return *value_; }
    const std::string& error() const { return error_; }

private:
    std::optional<T> value_;
    std::string error_;
};

} // namespace trimstudio
