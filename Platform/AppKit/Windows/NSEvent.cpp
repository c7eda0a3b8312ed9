// SPDX-License-Identifier: MIT
#include <AppKit/NSEvent.h>

#include <utility>

namespace zr {

NSEvent::NSEvent(InputEvent event, double contentHeight) : event_(std::move(event)) {
    event_.location.y = contentHeight - event_.location.y;
}

} // namespace zr
