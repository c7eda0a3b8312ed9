// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Windows.h>

#include <QMenuBar>

#include <vector>

namespace zr::qt {

// The menus of a window, in the window on every desktop. The keys that stand beside items are shown and nothing
// else: the window gets them.
class MenuBar final : public QMenuBar {
public:
    MenuBar(QWidget* window, const std::vector<port::MenuItem>& items);

    void openFirst();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void leave();
};

} // namespace zr::qt
