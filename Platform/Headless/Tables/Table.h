// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Tables.h>
#include <ZRUIKitHeadless/View.h>

#include <set>

namespace zr::headless {

class HasColumns {
public:
    virtual ~HasColumns() = default;
    std::vector<port::TableColumn> columns;
};

class Table final : public PeerOf<port::TablePeer>, public HasColumns {
public:
    Table(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts& parts)
        : PeerOf(superview, viewClient), table_(parts.table) {}

    void setFrame(const Rect& newFrame) override;
    void setColumns(const std::vector<port::TableColumn>& now) override { columns = now; }
    void reload(std::size_t rowCount) override;
    void setSelection(const std::set<std::size_t>& rows) override { selectedRows = rows; }
    void setEnabled(bool) override {}
    void scrollToRow(std::size_t row) override;
    double rowHeight() const override { return port::kUsualRowHeight; }

    bool wheel(const InputEvent& event) override;

    std::vector<std::vector<std::string>> visibleRows() const;
    // From the upper left corner of what is seen; negative or beyond the frame for a row that is not.
    double middleOf(std::size_t row) const;

    std::size_t rowCount = 0;
    std::set<std::size_t> selectedRows;

private:
    void scrollTo(Point wanted);

    port::TableClient& table_;
    Point offset_; // as far as it is scrolled
};

class TableHeader final : public PeerOf<port::TableHeaderPeer>, public HasColumns {
public:
    TableHeader(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts& parts)
        : PeerOf(superview, viewClient), header(parts.header) {}

    void setTable(port::TablePeer* table) override { table_ = table; }
    void setColumns(const std::vector<port::TableColumn>& now) override { columns = now; }
    void setOffset(double) override {}

    std::vector<std::string> traits() const override;

    port::TableHeaderClient& header;

private:
    port::TablePeer* table_ = nullptr;
};

} // namespace zr::headless
