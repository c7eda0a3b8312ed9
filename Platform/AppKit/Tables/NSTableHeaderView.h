// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>
#include <Base/Compiler.h>

namespace zr {

class NSTableView;

namespace port {
class TableHeaderPeer;
}

// The titles above a table's columns. Its scroll view places it; its coordinates follow the table when that is
// scrolled sideways. Dragging the edge of a title changes the column's width.
class ZR_EXPORT NSTableHeaderView : public NSView {
public:
    ZR_CLASS(NSTableHeaderView, NSView)
    NSTableHeaderView();
    ~NSTableHeaderView() override;

    static constexpr double kHeight = 23;

    bool isFlipped() const override { return true; }
    NSTableView* tableView() const { return tableView_; }
    // In the header's coordinates; -1 beside the columns.
    long columnAtPoint(const NSPoint& point) const;

protected:
    std::unique_ptr<port::ViewPeer> makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                             port::ViewClient& client) override;
    void peerWillGo() override { header_ = nullptr; }

private:
    friend class NSTableView;
    struct Client;
    void columnsChanged();
    void tableChanged(); // or its peer

    std::unique_ptr<Client> headerClient_;
    port::TableHeaderPeer* header_ = nullptr; // the peer, as what it is
    NSTableView* tableView_ = nullptr;        // cleared by the table
};

} // namespace zr
