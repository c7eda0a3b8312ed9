// SPDX-License-Identifier: MIT
#pragma once

extern "C" {
extern const double ZRUIKitVersionNumber;          // 1.0
extern const unsigned char ZRUIKitVersionString[]; // a text that names the framework, zero-terminated
}
