// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Tables.h>
#include <ZRUIKitQt/PeerOf.h>

#include <QAbstractTableModel>
#include <QHeaderView>
#include <QTableView>

#include <functional>
#include <set>
#include <string>

namespace zr::qt {

// As many rows as it is told, whose texts it gets when they are drawn.
class TableModel final : public QAbstractTableModel {
public:
    using QAbstractTableModel::QAbstractTableModel;

    void setColumns(const std::vector<port::TableColumn>& columns);
    void setRowCount(int count); // all texts are new
    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : rowCount_; }
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    std::function<std::string(std::size_t row, std::size_t column)> textAt; // none for a header

private:
    std::vector<port::TableColumn> columns_;
    int rowCount_ = 0;
};

// Shows and scrolls; what is selected is not its own affair.
class TableWidget final : public WidgetOf<QTableView>, public OffersEvents {
public:
    TableWidget(port::ViewPeer& superview, port::ViewClient& viewClient, port::TableClient& tableClient);
    ~TableWidget() override;

    void place(const Rect& frame);
    void setColumns(const std::vector<port::TableColumn>& columns);
    void reload(std::size_t rowCount);
    void markRows(const std::set<std::size_t>& rows);
    bool offersEventsOf(const QObject* receiver) const override { return receiver == viewport(); }

protected:
    void mousePressEvent(QMouseEvent* event) override { mouse(*event); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { mouse(*event); }
    void mouseMoveEvent(QMouseEvent* event) override { mouse(*event); }
    void mouseReleaseEvent(QMouseEvent* event) override { mouse(*event); }
    void keyPressEvent(QKeyEvent* event) override { key(*event); }
    void keyReleaseEvent(QKeyEvent* event) override { key(*event); }
    bool viewportEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void mouse(QMouseEvent& event);
    void key(QKeyEvent& event);
    void tellScrolled();

    port::TableClient& table_;
    TableModel model_;
};

class TableHeaderWidget final : public WidgetOf<QHeaderView> {
public:
    TableHeaderWidget(port::ViewPeer& superview, port::ViewClient& viewClient,
                      port::TableHeaderClient& headerClient);
    ~TableHeaderWidget() override;

    void setColumns(const std::vector<port::TableColumn>& columns);

protected:
    // The left button is for the edges of the titles.
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    TableModel model_;
    bool isTold_ = false; // what changes was not the user's doing
};

class TablePeer final : public PeerOf<port::TablePeer, TableWidget> {
public:
    TablePeer(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts& parts)
        : PeerOf(new TableWidget(superview, viewClient, parts.table)) {}
    void setColumns(const std::vector<port::TableColumn>& columns) override;
    void reload(std::size_t rowCount) override;
    void setSelection(const std::set<std::size_t>& rows) override;
    void setEnabled(bool enabled) override;
    void scrollToRow(std::size_t row) override;
    double rowHeight() const override;
};

class TableHeaderPeer final : public PeerOf<port::TableHeaderPeer, TableHeaderWidget> {
public:
    TableHeaderPeer(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts& parts)
        : PeerOf(new TableHeaderWidget(superview, viewClient, parts.header)) {}
    void setTable(port::TablePeer*) override {} // each has the columns of its own
    void setColumns(const std::vector<port::TableColumn>& columns) override;
    void setOffset(double x) override;
};

using TablePeers = port::MakersBy<port::TableMakers, //
                                  TablePeer,         //
                                  TableHeaderPeer>;

} // namespace zr::qt
