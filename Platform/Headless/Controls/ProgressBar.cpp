// SPDX-License-Identifier: MIT
#include "ProgressBar.h"

#include <ZRUIKitHeadless/Headless.h>

namespace zr::headless {

double Window::shownProgress(std::string_view viewName) const {
    const auto& progress = dynamic_cast<ShowsProgress&>(named(viewName)).progress;
    return progress.indeterminate ? -1 : progress.fraction;
}

} // namespace zr::headless
