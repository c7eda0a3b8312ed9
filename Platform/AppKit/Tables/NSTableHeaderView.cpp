// SPDX-License-Identifier: MIT
#include <AppKit/HeldClient.h>
#include <AppKit/NSTableHeaderView.h>
#include <AppKit/NSTableView.h>
#include <WindowSystem/Tables.h>

namespace zr {

ZR_CLASS_TABLE(NSTableHeaderView)

struct NSTableHeaderView::Client final : HeldClient<NSTableHeaderView, port::TableHeaderClient> {
    using HeldClient::HeldClient;
    void peerColumnResized(std::size_t column, double width) override {
        entered([&] {
            if (!self.tableView_ || column >= self.tableView_->tableColumns().size()) return;
            const auto resized = self.tableView_->tableColumns()[column];
            resized->setWidth(width);
            // What went beyond the limits is put back.
            if (resized->width() != width) self.columnsChanged();
        });
    }
};

NSTableHeaderView::NSTableHeaderView() = default;
NSTableHeaderView::~NSTableHeaderView() = default;

long NSTableHeaderView::columnAtPoint(const NSPoint& point) const {
    return tableView_ && NSPointInRect(point, bounds()) ? tableView_->columnAt(point.x) : -1;
}

std::unique_ptr<port::ViewPeer> NSTableHeaderView::makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                                            port::ViewClient& client) {
    if (!headerClient_) headerClient_ = std::make_unique<Client>(*this);
    auto peer = factory.make<port::TableHeaderPeer>(parent, client, {*headerClient_});
    header_ = peer.get();
    tableChanged();
    columnsChanged();
    return peer;
}

void NSTableHeaderView::tableChanged() {
    if (header_) header_->setTable(tableView_ ? tableView_->table_ : nullptr);
}

void NSTableHeaderView::columnsChanged() {
    if (!tableView_) return;
    setBoundsOrigin({tableView_->bounds().origin.x, 0});
    if (!header_) return;
    header_->setColumns(tableView_->shownColumns());
    header_->setOffset(bounds().origin.x);
}

} // namespace zr
