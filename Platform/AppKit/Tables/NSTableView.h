// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <AppKit/NSTableColumn.h>
#include <AppKit/NSTableHeaderView.h>
#include <Base/Compiler.h>
#include <Foundation/NSIndexSet.h>
#include <Foundation/NSNotification.h>
#include <Foundation/Unretained.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zr {

class NSScrollView;
class NSTableView;

namespace port {
struct TableColumn;
class TablePeer;
} // namespace port

// Posted by tables, about themselves.
inline const NSNotificationName NSTableViewSelectionDidChangeNotification =
    "NSTableViewSelectionDidChangeNotification";

// Has the rows of a table, which are numbered from the top.
class NSTableViewDataSource {
public:
    virtual ~NSTableViewDataSource() = default;
    virtual long numberOfRowsInTableView(NSTableView& table) = 0;
    // Only of cells that are seen, whenever they are drawn.
    virtual std::string tableView_objectValueForTableColumn_row(NSTableView& table, NSTableColumn& column,
                                                                long row) = 0;
};

class NSTableViewDelegate {
public:
    virtual ~NSTableViewDelegate() = default;
    // By the user or by the program.
    virtual void tableViewSelectionDidChange(const NSNotification&) {}
    // Asked for rows that the user is about to select. Nothing: it may be.
    virtual std::optional<bool> tableView_shouldSelectRow(NSTableView&, long /*row*/) { return std::nullopt; }
};

// Rows of text in columns, the window system's own table, which scrolls itself. It stands in a scroll view
// where it is to have its header. Its coordinates begin at the upper left corner of the first row, wherever
// that has been scrolled to, with y down. The last column takes what width the others leave.
//
// A click selects a row; with Command it selects or deselects one more; with Shift, and while dragging, it
// selects all from the row clicked before. The arrows, Page Up, Page Down, Home and End select a row, with
// Shift all up to it; Command-A selects all. The action is sent after a click. Main thread only.
class ZR_EXPORT NSTableView : public NSControl {
public:
    ZR_CLASS(NSTableView, NSControl)
    NSTableView();
    ~NSTableView() override;

    bool initWithFrame(const NSRect& frame) override; // no columns, with a header
    bool initWithCoder(NSCoder& coder) override;      // without a header; how much may be selected

    // Not retained. The rows are counted before the next drawing, or when they are asked for.
    std::shared_ptr<NSTableViewDataSource> dataSource() const { return dataSource_.lock(); }
    void setDataSource(const Unretained<NSTableViewDataSource>& source);
    std::shared_ptr<NSTableViewDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const Unretained<NSTableViewDelegate>& delegate) {
        delegate_ = delegate.givenTo("-[NSTableView setDelegate:]");
    }

    // Counts the rows, and asks again for the texts that are seen. The selection keeps its row numbers, without
    // those that are no more; whoever follows it is told only if that changed it.
    virtual void reloadData();
    // As counted last; 0 without a data source.
    long numberOfRows();

    long numberOfColumns() const { return static_cast<long>(columns_.size()); }
    const std::vector<std::shared_ptr<NSTableColumn>>& tableColumns() const { return columns_; }
    void addTableColumn(const std::shared_ptr<NSTableColumn>& column);
    void sizeLastColumnToFit();
    const std::shared_ptr<NSTableHeaderView>& headerView() const { return headerView_; }
    void setHeaderView(const std::shared_ptr<NSTableHeaderView>& header); // nil: none is shown
    NSScrollView* enclosingScrollView() const;

    bool allowsMultipleSelection() const { return allowsMultipleSelection_; } // false at first
    void setAllowsMultipleSelection(bool allows) { allowsMultipleSelection_ = allows; }
    bool allowsEmptySelection() const { return allowsEmptySelection_; } // true at first
    void setAllowsEmptySelection(bool allows) { allowsEmptySelection_ = allows; }

    const NSIndexSet& selectedRowIndexes() const { return selected_; }
    long selectedRow() const { return selected_.empty() ? -1 : static_cast<long>(*selected_.rbegin()); } // last
    bool isRowSelected(long row) const;
    // Where only one may be selected, the last counts. Asks nobody, scrolls nothing and sends no action. Throws
    // std::out_of_range, the selection unchanged, for rows that there are not.
    void selectRowIndexes_byExtendingSelection(const NSIndexSet& rows, bool extend);
    void deselectAll(NSObject* sender); // where that is allowed
    void selectAll(NSObject* sender);   // where several may be

    // In the table's coordinates; -1 below the last row and outside of what is seen.
    long rowAtPoint(const NSPoint& point);
    long columnAtPoint(const NSPoint& point) const;
    NSRect rectOfRow(long row); // as wide as the table; empty for a row that there is not
    void scrollRowToVisible(long row);

    bool isFlipped() const override { return true; }
    bool acceptsFirstResponder() const override { return isEnabled(); }
    bool needsPanelToBecomeKey() const override { return true; }
    void layout() override;
    void mouseDown(const NSEvent& event) override;
    void mouseDragged(const NSEvent& event) override;
    void mouseUp(const NSEvent& event) override;
    void keyDown(const NSEvent& event) override;

protected:
    std::unique_ptr<port::ViewPeer> makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                             port::ViewClient& client) override;
    void tellPeerEnabled() override;
    void peerWillGo() override;

private:
    friend class NSTableColumn;
    friend class NSTableHeaderView;
    struct Client;

    void columnsChanged();
    std::vector<port::TableColumn> shownColumns() const;
    long columnAt(double x) const;
    double rowHeight() const;
    std::string text(std::size_t row, std::size_t column);
    void scrolled(const NSRect& visible);
    void setSelection(NSIndexSet rows);
    void selectByUser(long row, bool extends);
    bool mayBeSelected(long row);

    std::weak_ptr<NSTableViewDataSource> dataSource_;
    std::weak_ptr<NSTableViewDelegate> delegate_;
    std::unique_ptr<Client> tableClient_;
    port::TablePeer* table_ = nullptr; // the peer, as what it is
    std::vector<std::shared_ptr<NSTableColumn>> columns_;
    std::shared_ptr<NSTableHeaderView> headerView_;
    std::optional<long> rowCount_; // nothing: to be counted
    NSIndexSet selected_;
    long anchor_ = -1; // where the user's selection begins,
    long moving_ = -1; // and where it ends
    NSSize visibleSize_;
    bool allowsMultipleSelection_ = false;
    bool allowsEmptySelection_ = true;
    bool dragging_ = false; // rows are selected until the release
};

} // namespace zr
