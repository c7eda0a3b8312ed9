// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <vector>

namespace zr::qt {

// Keeps a foreign view where its widget is: in the window of its top level, in its frame, hidden as it is.
// Belongs to the widget and holds the view.
class Follower final : public QObject {
public:
    Follower(QWidget* widget, std::shared_ptr<NSView> view);
    ~Follower() override;

    static Follower* of(const QWidget* widget); // null where there is none

    const std::shared_ptr<NSView>& view() const { return view_; }
    void follow();
    void leave(); // until the next event

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void watchParents();

    QWidget* const widget_;
    std::shared_ptr<NSView> view_;
    std::vector<QPointer<QWidget>> watched_; // the widget, its parents, and the top level at the end
};

} // namespace zr::qt
