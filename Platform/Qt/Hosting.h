// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>

#include <memory>

class QWidget;

namespace zr {
class NSView;
class NSWindow;
} // namespace zr

// The kit in a program that is built of Qt's widgets: kit views in its layouts, its windows and widgets as the
// kit sees them. For use while a zr::qt::Platform lives; what was made is safe to keep, and to delete, after
// it. Main thread only.
namespace zr::qt {

// A widget for a layout of Qt's, which the view fills. Qt owns the widget, by its parent or its layout; the
// widget holds the view. The view is in the kit's window of the widget's top level as soon as there is one, and
// changes over when the widget does. A view that is embedded already moves to the new widget and leaves the one
// before empty, as the widget for null is; the log names both. Its size hint is the size that the view has now;
// its policy is Expanding where the autoresizing mask says that the size is flexible, Preferred where not.
ZR_EXPORT QWidget* embed(const std::shared_ptr<NSView>& view, QWidget* parent = nullptr);

// The window by which the kit sees the widget's top level: always the same for the same top level. It belongs
// to the top level, and is among the application's windows from when that is first shown until it closes. Null
// without a widget, without a Platform, and for the kit's own windows.
ZR_EXPORT NSWindow* windowOf(QWidget* widget);

// A widget of the host's as a view (a control) of the kit, whose frame and visibility follow the widget's; what
// the kit would change of these has no effect. Always the same for the same widget, which holds it. When the
// widget is deleted the view leaves its window. For a widget made by embed(), its view; for a top level, the
// content view of its window; null without a widget.
ZR_EXPORT std::shared_ptr<NSView> viewOf(QWidget* widget);

} // namespace zr::qt
