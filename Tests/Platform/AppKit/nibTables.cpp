// SPDX-License-Identifier: MIT
#include "NibTest.h"
#include "Support/TableTest.h"

#include <AppKit/NSProgressIndicator.h>
#include <AppKit/NSScrollView.h>
#include <AppKit/NSTableView.h>

namespace zr::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class FolderList : public NSObject, public Rows {
public:
    ZR_CLASS(FolderList, NSObject)
    void setView(const std::shared_ptr<NSView>& value) { view = value; }
    void setTableView(const std::shared_ptr<NSTableView>& value) { table = value; }
    void setBusy(const std::shared_ptr<NSProgressIndicator>& value) { busy = value; }
    void awakeFromNib() override { countedBefore = counted; }

    std::shared_ptr<NSView> view;
    std::shared_ptr<NSTableView> table;
    std::shared_ptr<NSProgressIndicator> busy;
    int countedBefore = -1;
};
ZR_CLASS_TABLE(FolderList, .outlets = {outletNamed<&FolderList::setView>("view"),
                                       outletNamed<&FolderList::setTableView>("tableView"),
                                       outletNamed<&FolderList::setBusy>("busy")})

} // namespace

class NibTables : public NibTest {
protected:
    static std::string inScrollView(const std::string& contents, const std::string& attributes = "") {
        return "<scrollView id=\"s\" " + attributes +
               "><rect key=\"frame\" x=\"0\" y=\"0\" width=\"200\" height=\"100\"/>" + contents +
               "</scrollView>";
    }
    static std::string clip(const std::string& views) {
        return "<clipView key=\"contentView\" id=\"c\"><subviews>" + views + "</subviews></clipView>";
    }
    std::shared_ptr<NSTableView> table() const {
        const auto scroll = top<NSScrollView>(0);
        return scroll ? std::dynamic_pointer_cast<NSTableView>(scroll->documentView()) : nullptr;
    }
};

TEST_F(NibTables, AWholeFileIsReadWithoutANote) {
    const auto owner = make<FolderList>();
    const auto nib = logged([&] {
        return make<NSNib>(&NSNib::initWithContentsOfFile,
                           std::filesystem::path(ZR_INTERFACE_FILES) / "FolderList.xib");
    });
    ASSERT_TRUE(nib);
    EXPECT_TRUE(logged([&] { return nib->instantiateWithOwner_topLevelObjects(owner, nullptr); }));
    EXPECT_THAT(log_, IsEmpty());
    ASSERT_TRUE(owner->table && owner->view && owner->busy);
    EXPECT_EQ(owner->countedBefore, 0) << "the rows are the owner's, who was not awake";
    EXPECT_EQ(owner->table->dataSource().get(), owner.get());
    EXPECT_EQ(owner->table->delegate().get(), owner.get());
    EXPECT_TRUE(owner->table->allowsMultipleSelection());
    EXPECT_FALSE(owner->table->allowsEmptySelection());
    EXPECT_EQ(owner->busy->style(), NSProgressIndicatorStyleSpinning);

    const auto& columns = owner->table->tableColumns();
    ASSERT_EQ(columns.size(), 2u);
    EXPECT_EQ(columns[0]->identifier(), "folder");
    EXPECT_EQ(columns[0]->title(), "Folder");
    EXPECT_EQ(columns[0]->width(), 240);
    EXPECT_EQ(columns[0]->minWidth(), 40);
    EXPECT_EQ(columns[0]->maxWidth(), 1000);
    EXPECT_EQ(columns[1]->identifier(), "state");
    EXPECT_EQ(columns[1]->width(), 112);

    const auto* const scroll = owner->table->enclosingScrollView();
    ASSERT_TRUE(scroll);
    EXPECT_EQ(scroll->borderType(), NSBezelBorder);
    EXPECT_EQ(scroll->frame(), NSMakeRect(20, 60, 360, 180));
    const auto header = owner->table->headerView();
    ASSERT_TRUE(header);
    EXPECT_EQ(header->superview(), scroll);
    EXPECT_EQ(header->frame(), NSMakeRect(1, 1, 358, 23));
    EXPECT_EQ(scroll->contentView()->frame(), NSMakeRect(1, 24, 358, 155));
    EXPECT_EQ(owner->table->frame(), NSMakeRect(0, 0, 358, 155));

    // On the screen.
    owner->count = 2;
    owner->table->setIdentifier("table");
    const auto window =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 400, 260),
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    window->setContentView(owner->view);
    window->makeKeyAndOrderFront(nullptr);
    platform_.display();
    auto* const user = platform_.windows().back();
    EXPECT_THAT(user->visibleRows("table"),
                ElementsAre(ElementsAre("folder0", "state0"), ElementsAre("folder1", "state1")));
    EXPECT_THAT(user->columnWidths("table"), ElementsAre(240, 118));
    EXPECT_TRUE(user->clickRow("table", 1));
    EXPECT_THAT(owner->seen, ElementsAre(1));
}

TEST_F(NibTables, WhatATableLeavesOutHasItsDefault) {
    ASSERT_TRUE(open(inScrollView(clip("<tableView id=\"t\"/>"))));
    EXPECT_THAT(log_, IsEmpty());
    ASSERT_TRUE(table());
    EXPECT_TRUE(table()->allowsMultipleSelection());
    EXPECT_TRUE(table()->allowsEmptySelection());
    EXPECT_EQ(table()->numberOfColumns(), 0);
    EXPECT_EQ(table()->headerView(), nullptr);
    EXPECT_EQ(top<NSScrollView>(0)->borderType(), NSBezelBorder);
}

TEST_F(NibTables, WhatATableSaysIsTaken) {
    ASSERT_TRUE(open(
        inScrollView(clip("<tableView id=\"t\" multipleSelection=\"NO\" emptySelection=\"YES\"><tableColumns>"
                          "<tableColumn id=\"o\"/><tableColumn id=\"p\" width=\"5\" "
                          "minWidth=\"30\"/></tableColumns></tableView>"),
                     "borderType=\"none\"")));
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_FALSE(table()->allowsMultipleSelection());
    EXPECT_EQ(top<NSScrollView>(0)->borderType(), NSNoBorder);
    ASSERT_EQ(table()->numberOfColumns(), 2);
    EXPECT_EQ(table()->tableColumns()[0]->width(), 100);
    EXPECT_EQ(table()->tableColumns()[0]->title(), "");
    EXPECT_EQ(table()->tableColumns()[1]->width(), 30);
    EXPECT_EQ(table()->frame(), NSMakeRect(0, 0, 200, 100));
}

TEST_F(NibTables, AClipViewMayHoldAnyViewOrNone) {
    ASSERT_TRUE(open(inScrollView("")));
    EXPECT_EQ(top<NSScrollView>(0)->documentView(), nullptr);
    ASSERT_TRUE(open(inScrollView(clip(""))));
    EXPECT_EQ(top<NSScrollView>(0)->documentView(), nullptr);
    ASSERT_TRUE(open(inScrollView(clip("<customView id=\"a\" identifier=\"a\"/><customView id=\"b\"/>") +
                                  "<tableHeaderView key=\"headerView\" id=\"h\"/>")));
    EXPECT_EQ(top<NSScrollView>(0)->documentView()->identifier(), "a");
    EXPECT_EQ(top<NSScrollView>(0)->contentView()->subviews().size(), 2u);
    EXPECT_THAT(log_,
                ElementsAre("The interface file FILE: tableHeaderView \"h\": there is no table below it"));
}

TEST_F(NibTables, WhatDoesNotBelongThereIsRefused) {
    const auto refused = [&](const std::string& objects) {
        return open(objects)  ? "used"
               : log_.empty() ? "no reason"
                              : log_.back().substr(log_.back().find(": ") + 2);
    };
    EXPECT_EQ(refused(inScrollView("<customView key=\"contentView\" id=\"c\"/>")),
              "customView \"c\": NSView is no NSClipView");
    EXPECT_EQ(refused(inScrollView(clip("") + "<clipView key=\"contentView\" id=\"d\"/>")),
              "clipView \"d\": a second clip view");
    EXPECT_EQ(refused(inScrollView("<customView key=\"headerView\" id=\"h\"/>")),
              "customView \"h\": NSView is no NSTableHeaderView");
    EXPECT_EQ(refused("<tableView id=\"t\"><tableColumns><view id=\"o\"/></tableColumns></tableView>"),
              "view \"o\": NSView is no NSTableColumn");
    EXPECT_EQ(refused("<tableView id=\"t\"><subviews><tableColumn id=\"o\"/></subviews></tableView>"),
              "tableColumn \"o\": NSTableColumn is no NSView");
    EXPECT_EQ(refused("<tableView id=\"t\" multipleSelection=\"maybe\"/>"),
              "tableView \"t\": multipleSelection \"maybe\" is neither YES nor NO");
    EXPECT_EQ(refused("<tableView id=\"t\"><tableColumns><tableColumn id=\"o\" width=\"wide\"/></tableColumns>"
                      "</tableView>"),
              "tableColumn \"o\": width \"wide\" is no number");
    EXPECT_EQ(refused("<tableView id=\"t\"><connections><outlet property=\"dataSource\" destination=\"t\" "
                      "id=\"x\"/></connections></tableView>"),
              "outlet \"x\": dataSource of NSTableView takes no NSTableView");
}

} // namespace zr::test
