// SPDX-License-Identifier: MIT
#pragma once

// What the kit asks of a compiler. Without it programs would be built that crash.
#if __cplusplus < 202002L
#error "ZRUIKit needs C++20: compile with -std=c++20"
#elif !defined(__cpp_rtti)
#error "ZRUIKit needs run-time type information: compile without -fno-rtti"
#elif !defined(__cpp_exceptions)
#error "ZRUIKit needs exceptions: compile without -fno-exceptions"
#endif

// What programs and adaptors may call. All else stays within its library.
#define ZR_EXPORT __attribute__((visibility("default")))
