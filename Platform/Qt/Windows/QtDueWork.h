// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace zr::qt {

// What has to be done before the event loop waits for the next event: windows lay out first, then views draw.
// Asking for it posts nothing, so that a drag does not pay for an event of its own each step.
enum class DueWork { update, drawing };

// Once for each time it is asked for, unless the widget is gone by then.
void addDueWork(DueWork kind, QWidget* widget, void (*work)(QWidget*));

// Work that comes up meanwhile is done when the event loop turns again.
void doDueWork();

} // namespace zr::qt
