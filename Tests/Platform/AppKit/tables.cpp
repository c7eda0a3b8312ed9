// SPDX-License-Identifier: MIT
#include "Support/TableTest.h"
#include "WindowTest.h"

#include <stdexcept>

namespace zr {

using test::Rows;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

constexpr auto kShift = NSEventModifierFlagShift;
constexpr auto kCommand = NSEventModifierFlagCommand;

class Picks : public NSObject {
public:
    ZR_CLASS(Picks, NSObject)
    void picked(NSObject* sender) { senders.push_back(sender); }
    std::vector<NSObject*> senders;
};

ZR_CLASS_TABLE(Picks, .actions = {actionNamed<&Picks::picked>("picked:")})

class Tables : public test::WindowTest {
protected:
    // Six rows of 19 points fit below the header of 23.
    void open(long count, const Texts& columns = {"a"}) {
        rows_->count = count;
        scroll_ = test::scrolledTable(NSMakeRect(0, 0, 300, 23 + 6 * 19), rows_, columns);
        table_ = std::static_pointer_cast<NSTableView>(scroll_->documentView());
        table_->setAllowsMultipleSelection(true);
        content_->addSubview(scroll_);
        content_->addSubview(other_);
        other_->acceptsFocus = true;
        show(content_, {300, 200});
    }
    Texts shown() const {
        Texts texts;
        for (const auto& row : user_->visibleRows("table")) texts.push_back(row.at(0));
        return texts;
    }
    void key(std::uint16_t code, std::uint32_t flags = 0) { user_->keyDown(code, "", flags); }
    void expectSelected(const NSIndexSet& expected) {
        EXPECT_EQ(table_->selectedRowIndexes(), expected);
        const auto marked = user_->selectedRows("table");
        EXPECT_EQ(NSIndexSet(marked.begin(), marked.end()), expected) << "on the screen";
    }

    std::shared_ptr<Rows> rows_ = std::make_shared<Rows>();
    std::shared_ptr<NSView> content_ = make<NSView>(NSMakeRect(0, 0, 300, 200));
    std::shared_ptr<test::Probe> other_ = probe("other", NSMakeRect(0, 180, 50, 20));
    std::shared_ptr<NSScrollView> scroll_;
    std::shared_ptr<NSTableView> table_;
};

TEST_F(Tables, HaveTheirDefaults) {
    const auto table = make<NSTableView>(NSMakeRect(0, 0, 100, 100));
    EXPECT_FALSE(table->allowsMultipleSelection());
    EXPECT_TRUE(table->allowsEmptySelection());
    EXPECT_EQ(table->numberOfRows(), 0);
    EXPECT_EQ(table->numberOfColumns(), 0);
    EXPECT_EQ(table->selectedRow(), -1);
    EXPECT_THAT(table->selectedRowIndexes(), IsEmpty());
    EXPECT_EQ(table->dataSource(), nullptr);
    EXPECT_EQ(table->delegate(), nullptr);
    EXPECT_TRUE(table->isFlipped());
    ASSERT_NE(table->headerView(), nullptr);
    EXPECT_EQ(table->headerView()->tableView(), table.get());
    const auto column = make<NSTableColumn>(&NSTableColumn::initWithIdentifier, "path");
    EXPECT_EQ(column->identifier(), "path");
    EXPECT_EQ(column->title(), "");
    EXPECT_EQ(column->width(), 100);
    EXPECT_EQ(column->minWidth(), 10);
    EXPECT_EQ(column->tableView(), nullptr);
}

TEST_F(Tables, ShowTheTextsOfTheirDataSource) {
    open(3, {"a", "b"});
    EXPECT_THAT(user_->visibleRows("table"),
                ElementsAre(ElementsAre("a0", "b0"), ElementsAre("a1", "b1"), ElementsAre("a2", "b2")));
    EXPECT_THAT(user_->columnTitles("header"), ElementsAre("title a", "title b"));
    EXPECT_EQ(table_->numberOfRows(), 3);
}

TEST_F(Tables, TheirHeadersKnowTheirRealTable) {
    open(3, {"a"});
    EXPECT_THAT(user_->traits("header"), ElementsAre("of a table"));
    const auto header = table_->headerView();
    const auto other = make<NSTableHeaderView>(NSRect{});
    other->setIdentifier("other");
    window_->contentView()->addSubview(other);
    EXPECT_THAT(user_->traits("other"), IsEmpty());
    window_->contentView()->addSubview(header); // so that it stays when the table has another one
    table_->setHeaderView(other);
    EXPECT_THAT(user_->traits("header"), IsEmpty());
    EXPECT_THAT(user_->traits("other"), ElementsAre("of a table"));
    const auto scroll = retained(table_->enclosingScrollView());
    window_->contentView()->addSubview(other);
    scroll->removeFromSuperview();
    EXPECT_THAT(user_->traits("other"), IsEmpty()) << "the real table has gone";
}

TEST_F(Tables, AskOnlyForWhatIsSeen) {
    open(10'000);
    EXPECT_EQ(rows_->asked, 0) << "before anybody looks";
    EXPECT_THAT(shown(), ElementsAre("a0", "a1", "a2", "a3", "a4", "a5"));
    EXPECT_EQ(rows_->asked, 6);
    table_->scrollRowToVisible(9'999);
    EXPECT_THAT(shown(), ElementsAre("a9994", "a9995", "a9996", "a9997", "a9998", "a9999"));
    rows_->asked = rows_->counted = 0;
    table_->reloadData();
    platform_.display();
    EXPECT_EQ(rows_->asked, 0);
    EXPECT_EQ(rows_->counted, 1);
    EXPECT_EQ(shown().front(), "a9994") << "the place is kept";
}

TEST_F(Tables, CountTheirRowsOnceUntilTheNextReload) {
    open(3);
    rows_->count = 5;
    EXPECT_EQ(table_->numberOfRows(), 3);
    EXPECT_EQ(rows_->counted, 1);
    table_->reloadData();
    EXPECT_EQ(table_->numberOfRows(), 5);
    rows_->count = -3;
    table_->reloadData();
    EXPECT_EQ(table_->numberOfRows(), 0);
}

TEST_F(Tables, DoNotHoldTheirDataSourceAndAreEmptyWithoutIt) {
    open(3);
    const std::weak_ptr<Rows> weak = rows_;
    rows_.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(table_->numberOfRows(), 0);
    EXPECT_THAT(shown(), ElementsAre("", "", "")) << "until it is reloaded";
    table_->reloadData();
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(Tables, AnotherDataSourceIsCountedBeforeTheNextDrawing) {
    open(3);
    const auto others = std::make_shared<Rows>();
    others->count = 1;
    others->prefix = "other ";
    table_->setDataSource(others);
    platform_.display();
    EXPECT_THAT(shown(), ElementsAre("other a0"));
    table_->setDataSource({});
    platform_.display();
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(Tables, AClickSelectsARowAndMakesTheTableFirstResponder) {
    open(4);
    EXPECT_TRUE(user_->clickRow("table", 2));
    expectSelected({2});
    EXPECT_EQ(table_->selectedRow(), 2);
    EXPECT_EQ(window_->firstResponder(), table_.get());
    EXPECT_EQ(rows_->changes, 1);
    EXPECT_THAT(rows_->seen, ElementsAre(2));
    EXPECT_TRUE(user_->clickRow("table", 2));
    EXPECT_EQ(rows_->changes, 1) << "nothing has changed";
    EXPECT_TRUE(user_->clickRow("table", 0));
    expectSelected({0});
    EXPECT_FALSE(user_->clickRow("table", 4));
}

TEST_F(Tables, CommandSelectsAndDeselectsOneMoreAndShiftAllFromTheLastClick) {
    open(6);
    user_->clickRow("table", 1);
    user_->clickRow("table", 3, kCommand);
    expectSelected({1, 3});
    EXPECT_EQ(table_->selectedRow(), 3);
    user_->clickRow("table", 5, kShift);
    expectSelected({3, 4, 5});
    user_->clickRow("table", 2, kShift);
    expectSelected({2, 3});
    user_->clickRow("table", 2, kCommand);
    expectSelected({3});
    user_->clickRow("table", 3, kCommand);
    expectSelected({});
    EXPECT_EQ(table_->selectedRow(), -1);
}

TEST_F(Tables, WhereOneRowMayBeSelectedThereIsNeverAnother) {
    open(6);
    table_->setAllowsMultipleSelection(false);
    user_->clickRow("table", 1);
    user_->clickRow("table", 3, kCommand);
    expectSelected({3});
    user_->clickRow("table", 5, kShift);
    expectSelected({5});
    table_->selectAll(nullptr);
    expectSelected({5});
    table_->selectRowIndexes_byExtendingSelection({1, 2}, true);
    expectSelected({2});
    table_->selectRowIndexes_byExtendingSelection({}, true);
    expectSelected({2});
    table_->selectRowIndexes_byExtendingSelection({}, false);
    expectSelected({});
}

TEST_F(Tables, AClickBelowTheRowsDeselectsWhereThatIsAllowed) {
    open(2);
    user_->clickRow("table", 1);
    const NSPoint below = {10, 10};
    user_->mouseDown(below, kCommand);
    user_->mouseUp(below);
    expectSelected({1});
    user_->mouseDown(below);
    user_->mouseUp(below);
    expectSelected({});
    table_->setAllowsEmptySelection(false);
    user_->clickRow("table", 0);
    user_->mouseDown(below);
    user_->mouseUp(below);
    user_->clickRow("table", 0, kCommand);
    table_->deselectAll(nullptr);
    expectSelected({0});
    table_->setAllowsEmptySelection(true);
    table_->deselectAll(nullptr);
    expectSelected({});
}

TEST_F(Tables, DraggingSelectsAllOnTheWayAndScrolls) {
    open(20);
    const auto at = [&](double row) { return NSPoint{10, 19 * 6 - (row + 0.5) * 19}; };
    user_->mouseDown(at(2));
    user_->mouseDragged(at(4));
    expectSelected({2, 3, 4});
    user_->mouseDragged(at(1));
    expectSelected({1, 2});
    user_->mouseDragged(at(7)); // below the edge
    expectSelected({2, 3, 4, 5, 6, 7});
    EXPECT_THAT(shown(), ElementsAre("a2", "a3", "a4", "a5", "a6", "a7"));
    user_->mouseUp(at(7));
    user_->mouseDragged(at(0));
    expectSelected({2, 3, 4, 5, 6, 7});
}

TEST_F(Tables, KeysMoveTheSelectionAndScrollToIt) {
    open(20);
    user_->clickRow("table", 1);
    key(kKeyCodeDown);
    expectSelected({2});
    key(kKeyCodeUp, kShift);
    key(kKeyCodeUp, kShift);
    expectSelected({0, 1, 2});
    key(kKeyCodeUp);
    expectSelected({0});
    key(kKeyCodeEnd);
    expectSelected({19});
    EXPECT_THAT(shown(), ElementsAre("a14", "a15", "a16", "a17", "a18", "a19"));
    key(kKeyCodeDown);
    expectSelected({19});
    key(kKeyCodePageUp);
    expectSelected({14});
    key(kKeyCodePageUp);
    expectSelected({9});
    EXPECT_EQ(shown().front(), "a9");
    key(kKeyCodeHome, kShift);
    expectSelected({0, 1, 2, 3, 4, 5, 6, 7, 8, 9});
    key(kKeyCodePageDown);
    expectSelected({5});
    user_->keyDown(0, "a", kCommand);
    EXPECT_EQ(table_->selectedRowIndexes().size(), 20u);
}

TEST_F(Tables, TheFirstKeySelectsTheFirstRowOrTheLast) {
    open(3);
    window_->makeFirstResponder(table_.get());
    key(kKeyCodeDown);
    expectSelected({0});
    table_->reloadData();
    rows_->count = 0;
    table_->reloadData();
    key(kKeyCodeDown);
    expectSelected({});
    rows_->count = 3;
    table_->reloadData();
    key(kKeyCodeUp);
    expectSelected({2});
}

TEST_F(Tables, OtherKeysGoOnAndTabLeadsThroughTheTable) {
    open(3);
    EXPECT_TRUE(window_->makeFirstResponder(other_.get()));
    key(kKeyCodeTab); // the probe takes it
    window_->selectKeyViewFollowingView(other_.get());
    EXPECT_EQ(window_->firstResponder(), table_.get());
    EXPECT_FALSE(user_->keyDown(kKeyCodeSpace, " "));
    EXPECT_FALSE(user_->keyDown(kKeyCodeDown, "", kCommand));
    expectSelected({});
    key(kKeyCodeTab);
    EXPECT_EQ(window_->firstResponder(), other_.get());
}

TEST_F(Tables, RowsThatTheDelegateRefusesAreNotSelectedByTheUser) {
    open(6);
    rows_->refused = {1, 3};
    user_->clickRow("table", 1);
    expectSelected({});
    user_->clickRow("table", 0);
    user_->clickRow("table", 3, kCommand);
    expectSelected({0});
    user_->clickRow("table", 5, kShift);
    expectSelected({0, 2, 4, 5});
    table_->selectRowIndexes_byExtendingSelection({1}, false);
    expectSelected({1});
}

TEST_F(Tables, TheProgramSelectsRowsAndTellsIfThatChangesAnything) {
    open(6);
    int posted = 0;
    const auto observer = NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
        NSTableViewSelectionDidChangeNotification, table_.get(), [&](const NSNotification&) { ++posted; });
    table_->selectRowIndexes_byExtendingSelection({1, 2}, false);
    table_->selectRowIndexes_byExtendingSelection({2, 4}, true);
    expectSelected({1, 2, 4});
    EXPECT_TRUE(table_->isRowSelected(4));
    EXPECT_FALSE(table_->isRowSelected(3));
    EXPECT_FALSE(table_->isRowSelected(-1));
    EXPECT_EQ(rows_->changes, 2);
    EXPECT_EQ(posted, 2);
    table_->selectRowIndexes_byExtendingSelection({2, 4}, true);
    EXPECT_EQ(posted, 2);
    EXPECT_THROW(table_->selectRowIndexes_byExtendingSelection({6}, false), std::out_of_range);
    expectSelected({1, 2, 4});
    table_->selectRowIndexes_byExtendingSelection({5}, false);
    expectSelected({5});
    EXPECT_THAT(shown().front(), "a0") << "selecting does not scroll";
}

TEST_F(Tables, AReloadKeepsTheRowNumbersThatThereStillAre) {
    open(6);
    table_->selectRowIndexes_byExtendingSelection({1, 5}, false);
    rows_->changes = 0;
    rows_->prefix = "new ";
    table_->reloadData();
    expectSelected({1, 5});
    EXPECT_EQ(rows_->changes, 0);
    EXPECT_EQ(shown().front(), "new a0");
    rows_->count = 4;
    table_->reloadData();
    expectSelected({1});
    EXPECT_EQ(rows_->changes, 1);
    rows_->count = 6;
    table_->reloadData();
    expectSelected({1});
    rows_->count = 0;
    table_->reloadData();
    expectSelected({});
    EXPECT_EQ(rows_->changes, 2);
}

TEST_F(Tables, ADelegateMayReloadWhileItIsToldOfTheSelection) {
    struct Reloads : Rows {
        void tableViewSelectionDidChange(const NSNotification& notification) override {
            Rows::tableViewSelectionDidChange(notification);
            if (changes > 3) return;
            count = 2;
            static_cast<NSTableView*>(notification.object)->reloadData();
        }
    };
    rows_ = std::make_shared<Reloads>();
    open(6);
    user_->clickRow("table", 4);
    expectSelected({});
    EXPECT_EQ(rows_->changes, 2);
    EXPECT_EQ(shown().size(), 2u);
}

TEST_F(Tables, PointsAreFoundInRowsAlsoWhenScrolled) {
    open(10);
    EXPECT_EQ(table_->rectOfRow(0), NSMakeRect(0, 0, 300, 19));
    EXPECT_EQ(table_->rectOfRow(3), NSMakeRect(0, 57, 300, 19));
    EXPECT_EQ(table_->rectOfRow(10), NSZeroRect);
    EXPECT_EQ(table_->rectOfRow(-1), NSZeroRect);
    EXPECT_EQ(table_->rowAtPoint({0, 0}), 0);
    EXPECT_EQ(table_->rowAtPoint({299, 18.5}), 0);
    EXPECT_EQ(table_->rowAtPoint({299, 19}), 1);
    EXPECT_EQ(table_->rowAtPoint({150, 189}), 9);
    EXPECT_EQ(table_->rowAtPoint({150, 190}), -1);
    EXPECT_EQ(table_->rowAtPoint({150, -1}), -1);
    EXPECT_EQ(table_->rowAtPoint({-1, 5}), -1);
    EXPECT_EQ(table_->rowAtPoint({300, 5}), -1);
    // The upper edge of the rows, in the window.
    const NSPoint top = {5, 6 * 19 - 1};
    EXPECT_EQ(table_->rowAtPoint(table_->convertPoint_fromView(top, nullptr)), 0);
    user_->scrollWheel(top, 0, -2);
    EXPECT_EQ(shown().front(), "a2");
    EXPECT_EQ(table_->rowAtPoint(table_->convertPoint_fromView(top, nullptr)), 2);
    EXPECT_EQ(table_->rectOfRow(2), NSMakeRect(0, 38, 300, 19));
    EXPECT_EQ(table_->convertRect_toView(table_->rectOfRow(2), nullptr), NSMakeRect(0, 5 * 19, 300, 19));
    user_->scrollWheel(top, 0, -50);
    EXPECT_EQ(shown().back(), "a9") << "no further than there are rows";
    EXPECT_TRUE(user_->clickRow("table", 9));
    expectSelected({9});
}

TEST_F(Tables, TheLastColumnFillsWhatTheOthersLeave) {
    open(1, {"a", "b"});
    EXPECT_THAT(user_->columnWidths("header"), ElementsAre(100, 200));
    EXPECT_THAT(user_->columnWidths("table"), ElementsAre(100, 200));
    scroll_->setFrame(NSMakeRect(0, 0, 250, 100));
    EXPECT_THAT(user_->columnWidths("header"), ElementsAre(100, 150));
    scroll_->setFrame(NSMakeRect(0, 0, 50, 100));
    EXPECT_THAT(user_->columnWidths("header"), ElementsAre(100, 10)) << "its least width";
}

TEST_F(Tables, ColumnsAreResizedByTheUserWithinTheirLimits) {
    open(1, {"a", "b"});
    const auto first = table_->tableColumns()[0];
    EXPECT_EQ(first->tableView(), table_.get());
    user_->resizeColumn("header", 0, 140);
    EXPECT_EQ(first->width(), 140);
    EXPECT_THAT(user_->columnWidths("table"), ElementsAre(140, 200));
    EXPECT_EQ(table_->columnAtPoint({139, 1}), 0);
    EXPECT_EQ(table_->columnAtPoint({140, 1}), 1);
    EXPECT_EQ(table_->columnAtPoint({340, 1}), -1);
    first->setMaxWidth(120);
    EXPECT_EQ(first->width(), 120);
    user_->resizeColumn("header", 0, 500);
    EXPECT_EQ(first->width(), 120);
    EXPECT_THAT(user_->columnWidths("header"), ElementsAre(120, 200));
    first->setTitle("Folder");
    EXPECT_THAT(user_->columnTitles("header"), ElementsAre("Folder", "title b"));
}

TEST_F(Tables, TheHeaderStandsAboveTheRowsAndFollowsThemSideways) {
    open(1, {"a", "b"});
    const auto header = table_->headerView();
    EXPECT_EQ(user_->frameInContent("header"), NSMakeRect(0, 63, 300, 23));
    EXPECT_EQ(user_->frameInContent("table"), NSMakeRect(0, 86, 300, 114));
    EXPECT_EQ(header->columnAtPoint({50, 10}), 0);
    EXPECT_EQ(header->columnAtPoint({150, 10}), 1);
    EXPECT_EQ(header->columnAtPoint({150, 30}), -1);
    table_->tableColumns()[0]->setWidth(200);
    user_->scrollWheel({10, 10}, -5, 0);
    EXPECT_EQ(header->bounds().origin, (NSPoint{95, 0}));
    const NSPoint inHeader = header->convertPoint_fromView({110, 120}, nullptr);
    EXPECT_EQ(inHeader, (NSPoint{205, 17}));
    EXPECT_EQ(header->columnAtPoint(inHeader), 1);
    table_->setHeaderView(nullptr);
    EXPECT_EQ(header->superview(), nullptr);
    EXPECT_EQ(header->columnAtPoint({5, 5}), -1);
    EXPECT_EQ(user_->frameInContent("table"), NSMakeRect(0, 63, 300, 137));
    table_->setHeaderView(header);
    EXPECT_EQ(header->superview(), scroll_.get());
    EXPECT_EQ(user_->frameInContent("table"), NSMakeRect(0, 86, 300, 114));
}

TEST_F(Tables, FillTheClipViewOfTheirScrollView) {
    open(1);
    const auto clip = scroll_->contentView();
    EXPECT_EQ(table_->superview(), clip.get());
    EXPECT_EQ(table_->enclosingScrollView(), scroll_.get());
    EXPECT_EQ(table_->frame(), clip->bounds());
    EXPECT_TRUE(clip->isFlipped());
    // What is added beside the document stays in front of it.
    const auto cover = probe("cover", clip->bounds());
    clip->addSubview(cover);
    const auto another = make<NSTableView>(NSRect{});
    scroll_->setDocumentView(another);
    EXPECT_EQ(table_->superview(), nullptr);
    EXPECT_EQ(clip->subviews().front(), another);
    EXPECT_EQ(clip->subviews().back(), cover);
    scroll_->setBorderType(NSBezelBorder);
    EXPECT_EQ(clip->frame(), NSMakeRect(1, 24, 298, 112));
    EXPECT_EQ(another->frame(), clip->bounds());
}

TEST_F(Tables, ADisabledTableTakesNoClicksAndNoKeyboard) {
    open(3);
    user_->clickRow("table", 0);
    table_->setEnabled(false);
    EXPECT_NE(window_->firstResponder(), table_.get());
    user_->clickRow("table", 2);
    expectSelected({0});
    table_->setEnabled(true);
    user_->clickRow("table", 2);
    expectSelected({2});
}

TEST_F(Tables, AClickSendsTheAction) {
    open(3);
    const auto target = make<Picks>();
    table_->setTarget(target);
    table_->setAction("picked:");
    user_->clickRow("table", 1);
    EXPECT_THAT(target->senders, ElementsAre(table_.get()));
    table_->selectRowIndexes_byExtendingSelection({2}, false);
    EXPECT_EQ(target->senders.size(), 1u);
}

TEST_F(Tables, KeepTheirStateWhileTheyAreNotOnTheScreen) {
    open(6);
    table_->selectRowIndexes_byExtendingSelection({1}, false);
    scroll_->removeFromSuperview();
    table_->selectRowIndexes_byExtendingSelection({2}, true);
    rows_->count = 4;
    table_->reloadData();
    content_->addSubview(scroll_);
    platform_.display();
    expectSelected({1, 2});
    EXPECT_EQ(shown().size(), 4u);
    EXPECT_THAT(user_->columnTitles("header"), ElementsAre("title a"));
}

} // namespace zr
