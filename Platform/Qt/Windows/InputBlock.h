// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

class QWindow;

namespace zr::qt {

// Keeps the user's input from a window and from what belongs to it, for as long as this lives, and hands its
// activation on to the sheet over it, which is null where another program shows it. Unlike Qt's own window
// modality it lets the wish to close the window through: the window's owner may want to ask what is to become
// of the work.
class InputBlock final : public QObject {
public:
    InputBlock(QWidget* blocked, QWidget* sheet);
    ~InputBlock() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool blocks(QObject* receiver) const;
    void activateSheet() const;
    void notify(int type) const;

    QPointer<QWidget> blocked_, sheet_;
};

} // namespace zr::qt
