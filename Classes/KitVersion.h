// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>

extern "C" {
ZR_EXPORT extern const double ZRUIKitVersionNumber;          // 1.0
ZR_EXPORT extern const unsigned char ZRUIKitVersionString[]; // a text that names the framework, zero-terminated
}
