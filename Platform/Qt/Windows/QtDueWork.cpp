// SPDX-License-Identifier: MIT
#include "QtDueWork.h"

#include <QAbstractEventDispatcher>
#include <QPointer>

#include <array>
#include <utility>
#include <vector>

namespace zr::qt {

namespace {

struct Item {
    QPointer<QWidget> widget;
    void (*work)(QWidget*);
};
using Items = std::vector<Item>;

// Widgets live on the main thread.
struct State {
    std::array<Items, 2> due; // by kind
    Items spare;
    int working = 0; // more than one where the work runs an event loop
};

State& state() {
    static auto& only = *new State;
    return only;
}

} // namespace

void addDueWork(DueWork kind, QWidget* widget, void (*work)(QWidget*)) {
    auto& [due, spare, working] = state();
    due[static_cast<std::size_t>(kind)].push_back({widget, work});
    if (working == 0) return;
    // The loop may be about to wait.
    if (auto* const dispatcher = QAbstractEventDispatcher::instance()) dispatcher->wakeUp();
}

void doDueWork() {
    auto& [due, spare, working] = state();
    ++working;
    for (auto& items : due) {
        if (items.empty()) continue;
        Items current = std::exchange(items, std::exchange(spare, {}));
        for (const auto& [widget, work] : current)
            if (widget) work(widget);
        current.clear();
        spare = std::move(current);
    }
    --working;
}

} // namespace zr::qt
