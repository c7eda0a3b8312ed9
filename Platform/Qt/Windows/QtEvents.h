// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Event.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <optional>

// Qt's events as the port's. Locations are left to the caller.
namespace zr::qt {

// Nothing for what has no counterpart.
std::optional<InputEvent> inputEvent(const QMouseEvent& event);
InputEvent inputEvent(const QWheelEvent& event);
InputEvent inputEvent(const QKeyEvent& event);

} // namespace zr::qt
