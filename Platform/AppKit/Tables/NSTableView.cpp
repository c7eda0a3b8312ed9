// SPDX-License-Identifier: MIT
#include <AppKit/HeldClient.h>
#include <AppKit/NSScrollView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSCoder.h>
#include <Foundation/NSLog.h>
#include <WindowSystem/Tables.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSTableView,
               .actions = {actionNamed<&NSTableView::selectAll>("selectAll:"),
                           actionNamed<&NSTableView::deselectAll>("deselectAll:")},
               .outlets = {outletNamed<&NSTableView::setDataSource>("dataSource"),
                           outletNamed<&NSTableView::setDelegate>("delegate")})

struct NSTableView::Client final : HeldClient<NSTableView, port::TableClient> {
    using HeldClient::HeldClient;
    std::string peerText(std::size_t row, std::size_t column) override {
        return entered(&NSTableView::text, row, column);
    }
    void peerScrolled(const CGRect& visible) override { entered(&NSTableView::scrolled, visible); }
};

namespace {

// All rows from one to the other, whichever is above.
NSIndexSet between(long a, long b) {
    NSIndexSet rows;
    for (long row = std::min(a, b); row <= std::max(a, b); ++row)
        rows.insert(rows.end(), static_cast<std::size_t>(row));
    return rows;
}

} // namespace

NSTableView::NSTableView() = default;

NSTableView::~NSTableView() {
    for (const auto& column : columns_) column->tableView_ = nullptr;
    if (headerView_) headerView_->tableView_ = nullptr;
}

bool NSTableView::initWithFrame(const NSRect& frame) {
    if (!NSControl::initWithFrame(frame)) return false;
    setHeaderView(make<NSTableHeaderView>(NSMakeRect(0, 0, frame.size.width, NSTableHeaderView::kHeight)));
    return true;
}

bool NSTableView::initWithCoder(NSCoder& coder) {
    if (!NSControl::initWithCoder(coder)) return false;
    allowsMultipleSelection_ = coder.decodeBoolForKey("NSAllowsMultipleSelection").value_or(false);
    allowsEmptySelection_ = coder.decodeBoolForKey("NSAllowsEmptySelection").value_or(true);
    return true;
}

void NSTableView::setDataSource(const Unretained<NSTableViewDataSource>& source) {
    dataSource_ = source.givenTo("-[NSTableView setDataSource:]");
    rowCount_.reset();
    setNeedsLayout(true);
}

void NSTableView::layout() {
    if (!rowCount_) NSTableView::reloadData();
}

void NSTableView::reloadData() {
    const auto held = retained(this);
    const auto source = dataSource();
    rowCount_ = source ? std::max(0L, source->numberOfRowsInTableView(*this)) : 0;
    if (table_) table_->reload(static_cast<std::size_t>(*rowCount_));
    auto remaining = selected_;
    remaining.erase(remaining.lower_bound(static_cast<std::size_t>(*rowCount_)), remaining.end());
    setSelection(std::move(remaining));
    if (anchor_ >= rowCount_) anchor_ = moving_ = -1;
    if (moving_ >= rowCount_) moving_ = anchor_;
}

long NSTableView::numberOfRows() {
    if (dataSource_.expired()) return 0;
    if (!rowCount_) NSTableView::reloadData();
    return rowCount_.value_or(0);
}

std::string NSTableView::text(std::size_t row, std::size_t column) {
    const auto source = dataSource();
    if (!source || column >= columns_.size() || static_cast<long>(row) >= rowCount_.value_or(0)) return {};
    const auto ofColumn = columns_[column];
    return source->tableView_objectValueForTableColumn_row(*this, *ofColumn, static_cast<long>(row));
}

void NSTableView::addTableColumn(const std::shared_ptr<NSTableColumn>& column) {
    if (!column || column->tableView_) {
        NSLog("-[NSTableView addTableColumn:]: the column is %@", column ? "in a table already" : "null");
        return;
    }
    column->tableView_ = this;
    columns_.push_back(column);
    columnsChanged();
}

void NSTableView::sizeLastColumnToFit() {
    if (columns_.empty() || visibleSize_.width <= 0) return;
    double others = 0;
    for (const auto& column : columns_)
        if (column != columns_.back()) others += column->width();
    columns_.back()->setWidth(visibleSize_.width - others);
}

std::vector<port::TableColumn> NSTableView::shownColumns() const {
    std::vector<port::TableColumn> shown;
    for (const auto& column : columns_) shown.push_back({column->title(), column->width()});
    return shown;
}

void NSTableView::columnsChanged() {
    if (table_) table_->setColumns(shownColumns());
    if (headerView_) headerView_->columnsChanged();
}

void NSTableView::setHeaderView(const std::shared_ptr<NSTableHeaderView>& header) {
    if (header == headerView_) return;
    if (headerView_) {
        headerView_->tableView_ = nullptr;
        headerView_->tableChanged();
    }
    headerView_ = header;
    if (header) {
        header->tableView_ = this;
        header->tableChanged();
        header->columnsChanged();
    }
    if (auto* const scrollView = enclosingScrollView()) scrollView->tile();
}

NSScrollView* NSTableView::enclosingScrollView() const {
    return superview() ? dynamic_cast<NSScrollView*>(superview()->superview()) : nullptr;
}

double NSTableView::rowHeight() const { return table_ ? table_->rowHeight() : port::kUsualRowHeight; }

void NSTableView::scrolled(const NSRect& visible) {
    setBoundsOrigin(visible.origin);
    if (std::exchange(visibleSize_, visible.size).width != visible.size.width) sizeLastColumnToFit();
    if (headerView_) headerView_->columnsChanged();
}

bool NSTableView::isRowSelected(long row) const {
    return row >= 0 && selected_.contains(static_cast<std::size_t>(row));
}

void NSTableView::setSelection(NSIndexSet rows) {
    if (rows == selected_) return;
    const auto held = retained(this);
    selected_ = std::move(rows);
    if (table_) table_->setSelection(selected_);
    const NSNotification changed{NSTableViewSelectionDidChangeNotification, this};
    if (const auto delegate = this->delegate()) delegate->tableViewSelectionDidChange(changed);
    NSNotificationCenter::defaultCenter().postNotification(changed);
}

void NSTableView::selectRowIndexes_byExtendingSelection(const NSIndexSet& rows, bool extend) {
    const auto held = retained(this);
    if (!rows.empty() && *rows.rbegin() >= static_cast<std::size_t>(numberOfRows()))
        throw std::out_of_range("a row beyond the end of the table");
    NSIndexSet next = rows;
    if (!allowsMultipleSelection_ && !rows.empty()) next = {*rows.rbegin()};
    if (extend && (allowsMultipleSelection_ || rows.empty())) next.insert(selected_.begin(), selected_.end());
    if (!rows.empty()) anchor_ = moving_ = static_cast<long>(*rows.rbegin());
    setSelection(std::move(next));
}

void NSTableView::deselectAll(NSObject*) {
    if (allowsEmptySelection_) setSelection({});
}

void NSTableView::selectAll(NSObject*) {
    const long count = numberOfRows();
    if (allowsMultipleSelection_ && count > 0) setSelection(between(0, count - 1));
}

long NSTableView::rowAtPoint(const NSPoint& point) {
    const long count = numberOfRows();
    if (point.y < 0 || point.x < NSMinX(bounds()) || point.x >= NSMaxX(bounds())) return -1;
    const double row = std::floor(point.y / rowHeight());
    return row < static_cast<double>(count) ? static_cast<long>(row) : -1;
}

long NSTableView::columnAt(double x) const {
    double right = 0;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const double left = right;
        right += columns_[i]->width();
        if (x >= left && x < right) return static_cast<long>(i);
    }
    return -1;
}

long NSTableView::columnAtPoint(const NSPoint& point) const {
    return point.y >= NSMinY(bounds()) && point.y < NSMaxY(bounds()) ? columnAt(point.x) : -1;
}

NSRect NSTableView::rectOfRow(long row) {
    if (row < 0 || row >= numberOfRows()) return NSZeroRect;
    return {{NSMinX(bounds()), static_cast<double>(row) * rowHeight()}, {bounds().size.width, rowHeight()}};
}

void NSTableView::scrollRowToVisible(long row) {
    if (table_ && row >= 0 && row < numberOfRows()) table_->scrollToRow(static_cast<std::size_t>(row));
}

void NSTableView::tellPeerEnabled() {
    if (table_) table_->setEnabled(isEnabled());
}

bool NSTableView::mayBeSelected(long row) {
    const auto delegate = this->delegate();
    return !delegate || delegate->tableView_shouldSelectRow(*this, row).value_or(true);
}

// One row, or all from the anchor to it.
void NSTableView::selectByUser(long row, bool extends) {
    const bool many = extends && allowsMultipleSelection_ && anchor_ >= 0;
    NSIndexSet rows = between(many ? anchor_ : row, row);
    std::erase_if(rows, [this](std::size_t each) {
        return !selected_.contains(each) && !mayBeSelected(static_cast<long>(each));
    });
    // Whoever was asked may have taken rows away.
    rows.erase(rows.lower_bound(static_cast<std::size_t>(numberOfRows())), rows.end());
    if (!rows.contains(static_cast<std::size_t>(row)))
        row = rows.empty() ? -1 : static_cast<long>(*rows.rbegin());
    if (row < 0) return;
    if (!many) anchor_ = row;
    moving_ = row;
    setSelection(std::move(rows));
}

void NSTableView::mouseDown(const NSEvent& event) {
    if (!isEnabled()) return;
    const auto held = retained(this);
    const long row = rowAtPoint(convertPoint_fromView(event.locationInWindow(), nullptr));
    const bool toggles = (event.modifierFlags() & NSEventModifierFlagCommand) != 0;
    const bool extends = (event.modifierFlags() & NSEventModifierFlagShift) != 0;
    dragging_ = row >= 0 && !toggles;
    if (row < 0) {
        if (!toggles && !extends) deselectAll(nullptr);
    } else if (!toggles) {
        selectByUser(row, extends);
    } else if (isRowSelected(row)) {
        auto rest = selected_;
        rest.erase(static_cast<std::size_t>(row));
        anchor_ = moving_ = row;
        if (!rest.empty() || allowsEmptySelection_) setSelection(std::move(rest));
    } else if (mayBeSelected(row) && row < numberOfRows()) {
        selectRowIndexes_byExtendingSelection({static_cast<std::size_t>(row)}, true);
    }
}

void NSTableView::mouseDragged(const NSEvent& event) {
    const long count = numberOfRows();
    if (!dragging_ || count == 0) return;
    const auto held = retained(this);
    const double y = convertPoint_fromView(event.locationInWindow(), nullptr).y;
    const double row = std::max(0.0, std::min(std::floor(y / rowHeight()), static_cast<double>(count - 1)));
    selectByUser(static_cast<long>(row), true);
    scrollRowToVisible(static_cast<long>(row));
}

void NSTableView::mouseUp(const NSEvent&) {
    dragging_ = false;
    const auto heldTarget = retained(target());
    if (isEnabled()) sendAction_to(action(), heldTarget.get());
}

void NSTableView::keyDown(const NSEvent& event) {
    const auto held = retained(this);
    const unsigned command = event.modifierFlags() & (NSEventModifierFlagCommand | NSEventModifierFlagOption |
                                                      NSEventModifierFlagControl);
    if (command == NSEventModifierFlagCommand && event.charactersIgnoringModifiers() == "a" &&
        allowsMultipleSelection_)
        return selectAll(nullptr);
    const long last = numberOfRows() - 1;
    const long page = std::max(1L, std::lround(std::floor(visibleSize_.height / rowHeight())) - 1);
    long row = moving_;
    switch (event.keyCode()) {
    case kKeyCodeUp:
        row = row < 0 ? last : row - 1;
        break;
    case kKeyCodeDown:
        ++row;
        break;
    case kKeyCodePageUp:
        row -= page;
        break;
    case kKeyCodePageDown:
        row += page;
        break;
    case kKeyCodeHome:
        row = 0;
        break;
    case kKeyCodeEnd:
        row = last;
        break;
    default:
        return NSControl::keyDown(event);
    }
    if (command != 0) return NSControl::keyDown(event);
    if (last < 0) return;
    row = std::max(0L, std::min(row, last));
    selectByUser(row, (event.modifierFlags() & NSEventModifierFlagShift) != 0);
    scrollRowToVisible(row);
}

std::unique_ptr<port::ViewPeer> NSTableView::makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                                      port::ViewClient& client) {
    if (!tableClient_) tableClient_ = std::make_unique<Client>(*this);
    auto peer = factory.make<port::TablePeer>(parent, client, {*tableClient_});
    table_ = peer.get();
    table_->setColumns(shownColumns());
    table_->reload(static_cast<std::size_t>(rowCount_.value_or(0)));
    table_->setSelection(selected_);
    table_->setEnabled(isEnabled());
    if (headerView_) headerView_->tableChanged();
    return peer;
}

void NSTableView::peerWillGo() {
    table_ = nullptr;
    if (headerView_) headerView_->tableChanged();
}

} // namespace zr
