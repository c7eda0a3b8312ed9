// SPDX-License-Identifier: MIT
#include "WindowSheet.h"

namespace zr {

void WindowSheet::begin(const std::shared_ptr<NSWindow>& own, const std::shared_ptr<NSWindow>& parent,
                        WindowSheet* ofParent) {
    isSheet_ = true;
    parent_ = parent;
    if (ofParent) ofParent->attached_ = own;
}

void WindowSheet::show(port::WindowSystem& system, port::WindowPeer& own, port::WindowPeer* parent) {
    if (parent)
        own.showAsSheet(*parent);
    else
        blocking_ = system.beginModal(own);
}

void WindowSheet::end(port::WindowPeer* own, WindowSheet* ofParent) {
    isSheet_ = false;
    if (ofParent) ofParent->attached_.reset();
    attached_.reset();
    parent_.reset();
    blocking_.reset();
    if (own) own->endSheet();
}

} // namespace zr
