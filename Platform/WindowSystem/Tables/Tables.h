// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Windows.h>

#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace zr::port {

struct TableColumn {
    std::string title{};
    double width = 0;
    bool operator==(const TableColumn&) const = default;
};

class TableClient {
public:
    virtual ~TableClient() = default;
    virtual std::string peerText(std::size_t row, std::size_t column) = 0; // of a cell that is to be shown
    // What is seen of the rows: from the upper left corner of the first one.
    virtual void peerScrolled(const Rect& visible) = 0;
};

// For places before there is a real table.
inline constexpr double kUsualRowHeight = 19;

// Shows rows of texts, all of the same height, and scrolls them. What the user does besides comes to the window
// as events.
class TablePeer : public virtual ViewPeer {
public:
    struct Parts {
        TableClient& table;
    };
    virtual void setColumns(const std::vector<TableColumn>& columns) = 0; // the titles are the header's
    virtual void reload(std::size_t rowCount) = 0; // the texts are asked for again, when they are shown
    virtual void setSelection(const std::set<std::size_t>& rows) = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual void scrollToRow(std::size_t row) = 0; // no further than it takes
    virtual double rowHeight() const = 0;
};

class TableHeaderClient {
public:
    virtual ~TableHeaderClient() = default;
    virtual void peerColumnResized(std::size_t column, double width) = 0; // by the user
};

// The titles above a table.
class TableHeaderPeer : public virtual ViewPeer {
public:
    struct Parts {
        TableHeaderClient& header;
    };
    virtual void setTable(TablePeer* table) = 0; // null while it has none
    virtual void setColumns(const std::vector<TableColumn>& columns) = 0;
    virtual void setOffset(double x) = 0; // as far as the table is scrolled
};

using TableMakers = Makers< //
    TablePeer,              //
    TableHeaderPeer>;

} // namespace zr::port
