// SPDX-License-Identifier: MIT
#include "QtTest.h"
#include "Support/TableTest.h"

#include <AppKit/NSTextField.h>

#include <QHeaderView>
#include <QHelpEvent>
#include <QScrollBar>
#include <QTableView>
#include <QTextDocumentFragment>
#include <QToolTip>
#include <QWheelEvent>

namespace zr {

using test::Rows;
using testing::ElementsAre;

class QtTables : public test::QtTest {
protected:
    void open(long count, const std::vector<std::string>& columns = {"a"}) {
        rows_->count = count;
        const auto content = make<NSView>(NSMakeRect(0, 0, 300, 200));
        scroll_ = test::scrolledTable(NSMakeRect(0, 0, 300, 180), rows_, columns);
        table_ = std::static_pointer_cast<NSTableView>(scroll_->documentView());
        table_->setAllowsMultipleSelection(true);
        field_ = make<NSTextField>(NSMakeRect(0, 180, 100, 20));
        content->addSubview(scroll_);
        content->addSubview(field_);
        show(content, {300, 200});
    }
    static QTableView& view() { return *qobject_cast<QTableView*>(widget("table")); }
    static QHeaderView& header() { return *qobject_cast<QHeaderView*>(widget("header")); }
    // Where the real table has the row, in its window.
    static QPoint middleOf(int row) {
        const QRect cell = view().visualRect(view().model()->index(row, 0));
        return view().viewport()->mapTo(topLevel(), QPoint(20, cell.center().y()));
    }
    static void click(QPoint point, Qt::KeyboardModifiers modifiers = {},
                      Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(handle(), button, modifiers, point);
    }
    static void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(handle(), key, modifiers);
    }
    static std::vector<int> marked() {
        std::vector<int> rows;
        for (const auto& index : view().selectionModel()->selectedRows()) rows.push_back(index.row());
        std::ranges::sort(rows);
        return rows;
    }
    static QString textAt(int row, int column) { return view().model()->index(row, column).data().toString(); }

    std::shared_ptr<Rows> rows_ = std::make_shared<Rows>();
    std::shared_ptr<NSScrollView> scroll_;
    std::shared_ptr<NSTableView> table_;
    std::shared_ptr<NSTextField> field_;
};

TEST_F(QtTables, ShowTextsAndTitles) {
    rows_->prefix = "naïve & 日本 ";
    open(2, {"a", "b"});
    EXPECT_EQ(view().model()->rowCount(), 2);
    EXPECT_EQ(textAt(1, 1), QString::fromUtf8("naïve & 日本 b1"));
    EXPECT_EQ(header().model()->headerData(0, Qt::Horizontal).toString(), "title a");
    EXPECT_EQ(header().height(), 23);
    picture().save(QCoreApplication::applicationDirPath() + "/table.png");
}

TEST_F(QtTables, ALongTextKeepsItsEndsAndIsShownWholeInAHelpTag) {
    rows_->prefix = "/a very long path & <b>one</b> that does not fit into the column of this table/";
    open(1, {"a"});
    EXPECT_EQ(view().textElideMode(), Qt::ElideMiddle);
    const auto helpOver = [](int row) {
        const QPoint middle = view().visualRect(view().model()->index(row, 0)).center();
        QHelpEvent event(QEvent::ToolTip, middle, view().viewport()->mapToGlobal(middle));
        QCoreApplication::sendEvent(view().viewport(), &event);
        return QToolTip::isVisible()
                   ? QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText().toStdString()
                   : "none";
    };
    EXPECT_EQ(helpOver(0), rows_->prefix + "a0");
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    rows_->prefix = "short ";
    table_->reloadData();
    EXPECT_EQ(helpOver(0), "none");
}

TEST_F(QtTables, RealClicksSelectRows) {
    open(6);
    click(middleOf(1));
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(1));
    EXPECT_THAT(marked(), ElementsAre(1));
    EXPECT_TRUE(view().hasFocus());
    click(middleOf(4), Qt::ShiftModifier);
    click(middleOf(2), Qt::ControlModifier);
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(1, 3, 4));
    EXPECT_THAT(marked(), ElementsAre(1, 3, 4));
    click(middleOf(5), {}, Qt::RightButton);
    EXPECT_THAT(marked(), ElementsAre(1, 3, 4));
    table_->setAllowsMultipleSelection(false);
    click(middleOf(0), Qt::ControlModifier);
    EXPECT_THAT(marked(), ElementsAre(0));
    QTest::mouseDClick(handle(), Qt::LeftButton, {}, middleOf(3));
    EXPECT_THAT(marked(), ElementsAre(3));
}

TEST_F(QtTables, WhatTheProgramSelectsIsMarked) {
    open(6, {"a", "b"});
    table_->selectRowIndexes_byExtendingSelection({0, 2, 3, 5}, false);
    EXPECT_THAT(marked(), ElementsAre(0, 2, 3, 5));
    table_->deselectAll(nullptr);
    EXPECT_THAT(marked(), ElementsAre());
    // The colour of the selection is there, and goes.
    const auto highlighted = [&] {
        const QImage image = picture();
        const QPoint at = middleOf(1) + QPoint(200, 0);
        return test::isNear(pixel(image, at.x() * ratio(), at.y() * ratio()),
                            view().palette().color(QPalette::Highlight), 12);
    };
    EXPECT_FALSE(highlighted());
    table_->selectRowIndexes_byExtendingSelection({1}, false);
    EXPECT_TRUE(highlighted());
}

TEST_F(QtTables, RealKeysMoveTheSelectionAndScroll) {
    open(100);
    click(middleOf(0));
    key(Qt::Key_Down);
    key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_THAT(marked(), ElementsAre(1, 2));
    key(Qt::Key_End);
    EXPECT_THAT(marked(), ElementsAre(99));
    EXPECT_EQ(view().verticalScrollBar()->value(), view().verticalScrollBar()->maximum());
    EXPECT_EQ(table_->bounds().origin.y, view().verticalScrollBar()->value());
    key(Qt::Key_PageUp);
    ASSERT_EQ(marked().size(), 1u);
    EXPECT_LT(marked()[0], 99);
    EXPECT_GT(marked()[0], 85);
    key(Qt::Key_Home);
    EXPECT_THAT(marked(), ElementsAre(0));
    EXPECT_EQ(view().verticalScrollBar()->value(), 0);
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(table_->selectedRowIndexes().size(), 100u);
    EXPECT_EQ(marked().size(), 100u);
}

TEST_F(QtTables, TabGoesTheKitsWay) {
    open(3);
    click(middleOf(0));
    key(Qt::Key_Tab);
    EXPECT_EQ(window_->firstResponder(), field_.get());
    key(Qt::Key_Tab);
    EXPECT_EQ(window_->firstResponder(), table_.get());
    EXPECT_TRUE(view().hasFocus());
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(window_->firstResponder(), field_.get());
}

TEST_F(QtTables, TheEdgeOfATitleResizesItsColumn) {
    open(3, {"a", "b"});
    const int y = 10 + 20;
    const auto drag = [&](int from, int to) {
        QTest::mousePress(handle(), Qt::LeftButton, {}, QPoint(from, y));
        QTest::mouseEvent(QTest::MouseMove, handle(), Qt::LeftButton, {}, QPoint((from + to) / 2, y), -1);
        QTest::mouseEvent(QTest::MouseMove, handle(), Qt::LeftButton, {}, QPoint(to, y), -1);
        QTest::mouseRelease(handle(), Qt::LeftButton, {}, QPoint(to, y));
        settle();
    };
    drag(100, 130);
    EXPECT_EQ(table_->tableColumns()[0]->width(), 130);
    EXPECT_EQ(view().columnWidth(0), 130);
    EXPECT_EQ(header().sectionSize(0), 130);
    table_->tableColumns()[0]->setMinWidth(80);
    drag(130, 20);
    EXPECT_EQ(table_->tableColumns()[0]->width(), 80);
    EXPECT_EQ(view().columnWidth(0), 80);
    EXPECT_EQ(header().sectionSize(0), 80);
    table_->tableColumns()[0]->setWidth(400);
    settle();
    view().horizontalScrollBar()->setValue(60);
    EXPECT_EQ(header().offset(), 60);
    EXPECT_EQ(table_->columnAtPoint({399, 1}), 0);
    EXPECT_EQ(table_->columnAtPoint({400, 1}), 1);
}

TEST_F(QtTables, TheScrollBarTakesItsRoomFromTheLastColumn) {
    open(3);
    EXPECT_EQ(table_->tableColumns()[0]->width(), 300);
    EXPECT_FALSE(view().horizontalScrollBar()->isVisible());
    rows_->count = 500;
    table_->reloadData();
    settle();
    EXPECT_TRUE(view().verticalScrollBar()->isVisible());
    EXPECT_FALSE(view().horizontalScrollBar()->isVisible());
    EXPECT_EQ(table_->tableColumns()[0]->width(), view().viewport()->width());
    EXPECT_LT(table_->tableColumns()[0]->width(), 300);
    rows_->count = 3;
    table_->reloadData();
    settle();
    EXPECT_FALSE(view().verticalScrollBar()->isVisible());
    EXPECT_EQ(table_->tableColumns()[0]->width(), 300);
}

TEST_F(QtTables, OnlyWhatIsSeenIsAskedFor) {
    open(10'000, {"a", "b"});
    picture();
    const int cells = 2 * (view().viewport()->height() / int(table_->rectOfRow(0).size.height) + 2);
    const auto askedBy = [&](const auto& work) {
        rows_->asked = 0;
        work();
        view().viewport()->repaint();
        return rows_->asked;
    };
    EXPECT_LE(askedBy([] {}), cells);
    EXPECT_LE(askedBy([&] { view().verticalScrollBar()->setValue(50'000); }), 2 * cells);
    EXPECT_GT(rows_->lastAsked, 1'000);
    EXPECT_LE(askedBy([&] { table_->reloadData(); }), cells);
    EXPECT_LE(askedBy([&] { table_->selectAll(nullptr); }), cells);
    EXPECT_LE(askedBy([&] { rows_->count = 9'000, table_->reloadData(); }), 2 * cells);
}

TEST_F(QtTables, ADisabledTableTakesNoClicks) {
    open(3);
    table_->setEnabled(false);
    EXPECT_FALSE(view().isEnabled());
    click(middleOf(1));
    EXPECT_THAT(marked(), ElementsAre());
}

TEST_F(QtTables, MayLeaveTheWindowWhileTheyAreClicked) {
    struct Leaves : Rows {
        void tableViewSelectionDidChange(const NSNotification& notification) override {
            static_cast<NSTableView*>(notification.object)->enclosingScrollView()->removeFromSuperview();
        }
    };
    rows_ = std::make_shared<Leaves>();
    open(3);
    click(middleOf(1));
    settle();
    EXPECT_EQ(widget("table"), nullptr);
    EXPECT_EQ(widget("header"), nullptr);
    EXPECT_THAT(table_->selectedRowIndexes(), ElementsAre(1));
}

TEST_F(QtTables, AViewInFrontOfTheRowsGetsThePresses) {
    open(3);
    const auto cover = make<test::Pressed>(scroll_->contentView()->bounds());
    scroll_->contentView()->addSubview(cover);
    settle();
    click(middleOf(1));
    EXPECT_EQ(cover->count, 1);
    EXPECT_THAT(marked(), ElementsAre());
    cover->removeFromSuperview();
    click(middleOf(1));
    EXPECT_THAT(marked(), ElementsAre(1));
}

} // namespace zr
