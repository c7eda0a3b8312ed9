// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>
#include <QEvent>

#include <cstdio>
#include <cstdlib>

namespace zr::bench {

// Until what was posted, and what that posted, is done, and what is to be deleted is gone.
inline void settle() {
    for (int i = 0; i < 3; ++i) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// What does not do its work is not measured: the program ends.
inline void require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "not measured: %s\n", what);
    std::exit(1);
}

} // namespace zr::bench
