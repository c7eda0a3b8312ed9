// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace zr::qt {

// The edge of a window that has no frame of its own.
class SheetEdge final : public QWidget {
public:
    explicit SheetEdge(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void fit();
};

} // namespace zr::qt
