// SPDX-License-Identifier: MIT
#pragma once

#include "InputBlock.h"
#include "QtMenuBar.h"
#include "Toolbar.h"
#include "ViewWidget.h"

#include <QPointer>
#include <QWidget>

#include <memory>

namespace zr::qt {

// The top-level widget of a window; the content view's widget fills it, below the bars.
class WindowWidget final : public QWidget {
public:
    WindowWidget(port::WindowClient& windowClient, port::WindowStyle style);
    ~WindowWidget() override;

    void scheduleUpdate();

    port::WindowClient* client; // null once the peer is gone
    const bool closable;        // by the user
    std::shared_ptr<WindowLink> link = std::make_shared<WindowLink>();
    void placeSheet(); // where it belongs over its parent
    int menuHeight() const { return menuBar ? menuBar->height() : 0; }
    int barHeight() const { return menuHeight() + (toolbar ? toolbar->height() : 0); }
    void placeContent();
    MenuBar* menuBar = nullptr; // above the toolbar
    Toolbar* toolbar = nullptr; // above the content
    QPointer<QWidget> sheetParent;
    std::unique_ptr<InputBlock> parentBlock;
    QPointer<ViewWidget> contentWidget;
    QPointer<QWidget> edge; // of a sheet
    int modalLoops = 0;     // that block all other windows for this one

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override; // what nobody took
};

Size sizeOf(const QSize& size);

} // namespace zr::qt
