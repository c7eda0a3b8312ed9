// SPDX-License-Identifier: MIT
#include "WindowTest.h"

namespace zr::test {
ZR_CLASS_TABLE(Probe)
}
