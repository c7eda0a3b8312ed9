// SPDX-License-Identifier: MIT
#include <ZRUIKit/SliderSelectionItem.h>

namespace zr {

ZR_CLASS_TABLE(SliderSelectionItem)

} // namespace zr
