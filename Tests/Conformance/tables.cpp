// SPDX-License-Identifier: MIT
#include "Adaptor.h"
#include "Support/TableTest.h"

namespace zr::conformance {

using test::Rows;
using testing::ElementsAre;

class ConformanceTables : public Conformance {
protected:
    void open(long count) {
        rows_->count = count;
        scroll_ = test::scrolledTable(NSMakeRect(0, 20, 300, 180), rows_, {"a", "b"});
        table_ = std::static_pointer_cast<NSTableView>(scroll_->documentView());
        table_->setAllowsMultipleSelection(true);
        root_ = probe("root", NSMakeRect(0, 0, 300, 200));
        other_ = probe("other", NSMakeRect(0, 0, 50, 20));
        other_->acceptsFocus = true;
        root_->addSubview(scroll_);
        root_->addSubview(other_);
        show(root_, {300, 200});
        taken();
    }
    // In the window.
    NSPoint middleOf(long row) const {
        const NSRect rect = table_->convertRect_toView(table_->rectOfRow(row), nullptr);
        return {NSMinX(rect) + 20, NSMidY(rect)};
    }
    void click(NSPoint point, unsigned flags = 0) {
        adaptor_->press(*window_, point, Button::left, {flags, 1});
        adaptor_->release(*window_, point);
        adaptor_->settle();
    }

    std::shared_ptr<Rows> rows_ = std::make_shared<Rows>();
    std::shared_ptr<Probe> root_, other_;
    std::shared_ptr<NSScrollView> scroll_;
    std::shared_ptr<NSTableView> table_;
};

TEST_F(ConformanceTables, ClicksSelectRowsWithCommandAndShift) {
    open(5);
    click(middleOf(1));
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(1));
    EXPECT_EQ(window_->firstResponder(), table_.get());
    click(middleOf(3), NSEventModifierFlagCommand);
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(1, 3));
    click(middleOf(0), NSEventModifierFlagShift);
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(rows_->changes, 3);
    EXPECT_THAT(rows_->seen, ElementsAre(0, 1, 2, 3));
    click({20, 25}); // below the rows
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre());
}

TEST_F(ConformanceTables, DraggingSelectsAllOnTheWay) {
    open(5);
    adaptor_->press(*window_, middleOf(1));
    adaptor_->drag(*window_, middleOf(3));
    adaptor_->release(*window_, middleOf(3));
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(1, 2, 3));
}

TEST_F(ConformanceTables, KeysMoveTheSelectionAndTabLeavesTheTable) {
    open(3);
    EXPECT_TRUE(window_->makeFirstResponder(table_.get()));
    adaptor_->type(*window_, Key::down);
    adaptor_->type(*window_, Key::down);
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(1));
    adaptor_->type(*window_, Key::up);
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(0));
    taken();
    adaptor_->type(*window_, Key::space); // is for others
    EXPECT_THAT(taken(), ElementsAre("root key  "));
    // Key code and text of the number row.
    adaptor_->type(*window_, Key::a);
    EXPECT_THAT(taken(), ElementsAre("root key a"));
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(0));
    window_->makeFirstResponder(nullptr);
    taken();
    window_->selectKeyViewFollowingView(other_.get());
    EXPECT_EQ(window_->firstResponder(), table_.get());
}

TEST_F(ConformanceTables, TenThousandRowsAreNotAskedForAtOnce) {
    open(10'000);
    EXPECT_LT(rows_->asked, 200);
    rows_->asked = 0;
    table_->scrollRowToVisible(9'999);
    adaptor_->settle();
    EXPECT_LT(rows_->asked, 200);
    EXPECT_GT(table_->bounds().origin.y, 9'000 * NSMaxY(table_->rectOfRow(0)));
    const double place = table_->bounds().origin.y;
    rows_->asked = 0;
    table_->reloadData();
    adaptor_->settle();
    EXPECT_LT(rows_->asked, 200);
    EXPECT_EQ(table_->bounds().origin.y, place);
    click(middleOf(9'998));
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(9'998));
}

TEST_F(ConformanceTables, TheWheelScrollsTheRowsAndPointsFollow) {
    open(100);
    const NSPoint point = middleOf(0);
    adaptor_->wheel(*window_, point, -1);
    adaptor_->settle();
    EXPECT_GT(table_->bounds().origin.y, 0);
    const long row = table_->rowAtPoint(table_->convertPoint_fromView(point, nullptr));
    EXPECT_GT(row, 0);
    click(point);
    EXPECT_EQ(table_->selectedRow(), row);
    EXPECT_THAT(taken(), ElementsAre());
}

TEST_F(ConformanceTables, FewerRowsScrollBackAndLeaveTheSelection) {
    open(100);
    table_->scrollRowToVisible(99);
    table_->selectRowIndexes_byExtendingSelection({1, 99}, false);
    rows_->count = 2;
    table_->reloadData();
    adaptor_->settle();
    EXPECT_EQ(table_->bounds().origin, NSZeroPoint);
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(1));
    rows_->count = 0;
    table_->reloadData();
    adaptor_->settle();
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre());
    click({20, 100});
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre());
}

TEST_F(ConformanceTables, TheHeaderStandsAboveTheRows) {
    open(3);
    table_->headerView()->setIdentifier("header");
    table_->setIdentifier("table");
    EXPECT_EQ(adaptor_->place(*window_, "header"), NSMakeRect(0, 0, 300, 23));
    EXPECT_EQ(adaptor_->place(*window_, "table"), NSMakeRect(0, 23, 300, 157));
    table_->setHeaderView(nullptr);
    adaptor_->settle();
    EXPECT_EQ(adaptor_->place(*window_, "header"), std::nullopt);
    EXPECT_EQ(adaptor_->place(*window_, "table"), NSMakeRect(0, 0, 300, 180));
}

TEST_F(ConformanceTables, ARightPressReachesTheTableAndSelectsNothing) {
    open(3);
    adaptor_->press(*window_, middleOf(1), Button::right);
    adaptor_->release(*window_, middleOf(1), Button::right);
    EXPECT_EQ(taken().size(), 2u) << "it went on along the responder chain, once";
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre());
}

} // namespace zr::conformance
