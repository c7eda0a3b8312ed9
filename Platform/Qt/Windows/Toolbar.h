// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Windows.h>

#include <QToolBar>

#include <optional>
#include <vector>

namespace zr::qt {

// Items with an icon above a label, one of which may be selected.
class Toolbar final : public QToolBar {
public:
    Toolbar(QWidget* window, const std::vector<port::ToolbarItem>& items, port::ToolbarClient* client);
    void select(std::optional<std::size_t> index);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QIcon iconOf(const port::ToolbarItem& item) const;

    std::vector<QAction*> actions_; // null for spaces
    std::optional<std::size_t> selected_;
};

} // namespace zr::qt
