// SPDX-License-Identifier: MIT
#include <ZRUIKit/KitVersion.h>

const double ZRUIKitVersionNumber = 1.0;
const unsigned char ZRUIKitVersionString[] = "PROGRAM:ZRUIKit  PROJECT:ZRUIKit-1";
