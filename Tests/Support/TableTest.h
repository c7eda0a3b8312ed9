// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSScrollView.h>
#include <AppKit/NSTableView.h>

#include <memory>
#include <string>
#include <vector>

namespace zr::test {

// Rows for a table, and what was asked and told.
class Rows : public NSTableViewDataSource, public NSTableViewDelegate {
public:
    long numberOfRowsInTableView(NSTableView&) override {
        ++counted;
        return count;
    }
    std::string tableView_objectValueForTableColumn_row(NSTableView&, NSTableColumn& column,
                                                        long row) override {
        ++asked;
        lastAsked = row;
        return prefix + column.identifier() + std::to_string(row);
    }
    void tableViewSelectionDidChange(const NSNotification& notification) override {
        ++changes;
        const auto* const table = dynamic_cast<NSTableView*>(notification.object);
        seen = table ? table->selectedRowIndexes() : NSIndexSet{};
    }
    std::optional<bool> tableView_shouldSelectRow(NSTableView&, long row) override {
        return refused.contains(static_cast<std::size_t>(row)) ? std::optional(false) : std::nullopt;
    }

    long count = 0;
    int counted = 0;
    int asked = 0;
    long lastAsked = -1;
    int changes = 0;
    NSIndexSet seen; // when it was told last
    NSIndexSet refused;
    std::string prefix;
};

// A table in a scroll view, with columns of 100 points each; the last one fills what is left.
inline std::shared_ptr<NSScrollView> scrolledTable(const NSRect& frame, const std::shared_ptr<Rows>& rows,
                                                   const std::vector<std::string>& columns = {"a"}) {
    auto scroll = make<NSScrollView>(frame);
    const auto table = make<NSTableView>(NSRect{});
    table->setIdentifier("table");
    table->headerView()->setIdentifier("header");
    for (const auto& name : columns) {
        const auto column = make<NSTableColumn>(&NSTableColumn::initWithIdentifier, name);
        column->setTitle("title " + name);
        table->addTableColumn(column);
    }
    table->setDataSource(rows);
    table->setDelegate(rows);
    scroll->setDocumentView(table);
    return scroll;
}

} // namespace zr::test
