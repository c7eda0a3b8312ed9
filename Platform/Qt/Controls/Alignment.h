// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Font.h>

#include <Qt>

namespace zr::qt {

// Frames stay where they are in a program that is read from right to left, and so do the texts in them.
inline Qt::Alignment alignmentOf(NSTextAlignment alignment) {
    const auto horizontal = alignment == NSTextAlignmentRight    ? Qt::AlignRight
                            : alignment == NSTextAlignmentCenter ? Qt::AlignHCenter
                                                                 : Qt::AlignLeft;
    return horizontal | Qt::AlignAbsolute | Qt::AlignVCenter;
}

} // namespace zr::qt
