// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <AppKit/NSMenu.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSToolbar.h>

#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Document : public NSView {
public:
    ZR_CLASS(Document, NSView)
    void cut(NSObject*) { log.emplace_back("cut"); }
    void ask(NSObject*) {
        log.emplace_back("ask");
        NSApplication::sharedApplication().runModalForWindow(*question);
    }
    bool acceptsFirstResponder() const override { return true; }
    std::shared_ptr<NSWindow> question;
    std::vector<std::string> log;
};

ZR_CLASS_TABLE(Document, .actions = {actionNamed<&Document::cut>("cut:"), actionNamed<&Document::ask>("ask:")})

} // namespace

// The menu bar of a real window.
class QtMenus : public test::QtTest {
protected:
    void SetUp() override {
        const auto menu = make<NSMenu>();
        edit_ = make<NSMenu>();
        menu->addItemWithTitle_action_keyEquivalent("Edit & Co", "", "")->setSubmenu(edit_);
        cut_ = edit_->addItemWithTitle_action_keyEquivalent("Cut & Run", "cut:", "x");
        edit_->addItem(NSMenuItem::separatorItem());
        const auto more = make<NSMenu>();
        edit_->addItemWithTitle_action_keyEquivalent("More", "", "")->setSubmenu(more);
        more->addItemWithTitle_action_keyEquivalent("Cut Out", "cut:", ",")
            ->setKeyEquivalentModifierMask(NSEventModifierFlagShift | NSEventModifierFlagCommand);
        edit_->addItemWithTitle_action_keyEquivalent("Nobody's", "nobodyTakesThis:", "n");
        edit_->addItemWithTitle_action_keyEquivalent("Ask", "ask:", "");
        edit_->addItemWithTitle_action_keyEquivalent("Close", "performClose:", "w");
        NSApplication::sharedApplication().setMainMenu(menu);

        window_ =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 400, 300),
                           NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                               NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable,
                           NSBackingStoreBuffered, false);
        window_->setTitle("window under test");
        document_ = make<Document>(NSZeroRect);
        window_->setContentView(document_);
        window_->makeFirstResponder(document_.get());
        window_->makeKeyAndOrderFront(nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(topLevel()));
        settle();
    }
    static QMenuBar* bar() { return topLevel()->findChild<QMenuBar*>(); }
    static QMenu* popup() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    static void click(QWidget* widget, QPoint point) {
        QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, {},
                          widget->mapTo(widget->window(), point));
        settle();
    }
    // The menu that a click on the bar opens.
    static QMenu* open() {
        click(bar(), bar()->actionGeometry(bar()->actions().front()).center());
        return popup();
    }
    static std::vector<std::string> texts(const QMenu& menu) {
        std::vector<std::string> result;
        for (const auto* action : menu.actions())
            result.push_back(action->isSeparator()
                                 ? "-"
                                 : action->text().toStdString() + (action->isEnabled() ? "" : " (disabled)"));
        return result;
    }
    static void choose(int index) {
        auto* const menu = popup();
        click(menu, menu->actionGeometry(menu->actions().at(index)).center());
    }
    static void type(int key, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* const popup = QApplication::activePopupWidget();
        QTest::keyClick(popup ? popup->windowHandle() : handle(), Qt::Key(key), modifiers);
        settle();
    }
    static std::shared_ptr<NSWindow> panel() {
        return make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 100, 50),
                              NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    }

    std::shared_ptr<NSMenu> edit_;
    std::shared_ptr<NSMenuItem> cut_;
    std::shared_ptr<Document> document_;
};

TEST_F(QtMenus, AClickOpensAMenuThatShowsTheKeysAndWhatCanBeChosen) {
    ASSERT_NE(open(), nullptr);
    EXPECT_THAT(texts(*popup()), ElementsAre("Cut && Run\tCtrl+X", "-", "More", "Nobody's\tCtrl+N (disabled)",
                                             "Ask", "Close\tCtrl+W"));
    for (const auto* action : popup()->actions()) EXPECT_TRUE(action->shortcut().isEmpty());
    EXPECT_EQ(bar()->actions().front()->text(), "Edit && Co");
    type(Qt::Key_Escape);
    EXPECT_EQ(popup(), nullptr);
    cut_->setTitle("Cut");
    cut_->setEnabled(false);
    ASSERT_NE(open(), nullptr);
    EXPECT_THAT(texts(*popup()), testing::Contains("Cut\tCtrl+X (disabled)")) << "asked again";
    choose(0);
    EXPECT_THAT(document_->log, IsEmpty());
    type(Qt::Key_Escape);
}

TEST_F(QtMenus, AClickOnAnItemSendsItsActionOnce) {
    ASSERT_NE(open(), nullptr);
    choose(0);
    EXPECT_THAT(document_->log, ElementsAre("cut"));
    EXPECT_EQ(popup(), nullptr);
    ASSERT_NE(open(), nullptr);
    choose(2);
    ASSERT_THAT(texts(*popup()), ElementsAre("Cut Out\tCtrl+Shift+,"));
    choose(0);
    EXPECT_THAT(document_->log, ElementsAre("cut", "cut"));
}

TEST_F(QtMenus, AKeyEquivalentActsOnceAndTheMenuStaysOutOfIt) {
    type(Qt::Key_X, Qt::ControlModifier);
    EXPECT_THAT(document_->log, ElementsAre("cut"));
    ASSERT_NE(open(), nullptr);
    type(Qt::Key_Escape);
    type(Qt::Key_X, Qt::ControlModifier);
    EXPECT_THAT(document_->log, ElementsAre("cut", "cut")) << "after it was filled, too";
}

TEST_F(QtMenus, TabMayBeAKey) {
    const auto item = edit_->addItemWithTitle_action_keyEquivalent("Next", "cut:", "\t");
    edit_->addItemWithTitle_action_keyEquivalent("Previous", "cut:", "\t")
        ->setKeyEquivalentModifierMask(NSEventModifierFlagCommand | NSEventModifierFlagShift);
    type(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(document_->log.size(), 1u);
    type(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(document_->log.size(), 2u);
    ASSERT_NE(open(), nullptr);
    EXPECT_THAT(texts(*popup()), testing::IsSupersetOf({"Next\tCtrl+Tab", "Previous\tCtrl+Shift+Tab"}));
    type(Qt::Key_Escape);
}

TEST_F(QtMenus, TheKeyboardGoesThereByF10AndBack) {
    EXPECT_EQ(window_->firstResponder(), document_.get());
    type(Qt::Key_F10);
    ASSERT_NE(popup(), nullptr);
    type(Qt::Key_Down);
    type(Qt::Key_Down);
    type(Qt::Key_Up);
    type(Qt::Key_Return);
    EXPECT_THAT(document_->log, ElementsAre("cut"));
    EXPECT_EQ(window_->firstResponder(), document_.get());
    type(Qt::Key_F10);
    type(Qt::Key_Escape);
    EXPECT_TRUE(bar()->hasFocus()) << "first the menu goes";
    type(Qt::Key_F10);
    EXPECT_EQ(bar()->activeAction(), nullptr);
    type(Qt::Key_X, Qt::ControlModifier);
    EXPECT_THAT(document_->log, ElementsAre("cut", "cut")) << "the keyboard is back";
}

TEST_F(QtMenus, AFieldKeepsWhatIsTypedWhileAMenuIsOpen) {
    const auto field = make<NSTextField>(NSMakeRect(20, 20, 100, 24));
    document_->addSubview(field);
    window_->makeFirstResponder(field.get());
    settle();
    type(Qt::Key_A);
    ASSERT_TRUE(field->isEditing());
    ASSERT_NE(open(), nullptr);
    choose(0);
    EXPECT_TRUE(field->isEditing());
    type(Qt::Key_B);
    EXPECT_EQ(field->stringValue(), "ab");
    EXPECT_THAT(document_->log, ElementsAre("cut"));
}

TEST_F(QtMenus, TheBarStandsAboveTheContentAndCountsInTheFrame) {
    const int height = bar()->height();
    ASSERT_GT(height, 10);
    EXPECT_EQ(bar()->geometry(), QRect(0, 0, 400, height));
    EXPECT_EQ(topLevel()->size(), QSize(400, 300 + height));
    EXPECT_EQ(window_->frameRectForContentRect(NSMakeRect(0, 0, 9, 9)).size.height,
              9 + height + topLevel()->geometry().top() - topLevel()->frameGeometry().top());
    const QPoint corner = topLevel()->mapToGlobal(QPoint(0, height));
    EXPECT_EQ(window_->convertRectToScreen(NSMakeRect(0, 300, 0, 0)).origin.x, corner.x());

    window_->setContentMinSize({200, 150});
    window_->setContentMaxSize({500, 400});
    EXPECT_EQ(topLevel()->minimumSize(), QSize(200, 150 + height));
    EXPECT_EQ(topLevel()->maximumSize(), QSize(500, 400 + height));
    window_->setContentSize({450, 350});
    EXPECT_EQ(topLevel()->size(), QSize(450, 350 + height));
    EXPECT_EQ(bar()->width(), 450);

    const auto toolbar = make<NSToolbar>(&NSToolbar::initWithIdentifier, std::string("bar"));
    class Items : public NSToolbarDelegate {
        std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar&) override {
            return {"one"};
        }
        std::shared_ptr<NSToolbarItem> toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(
            NSToolbar&, const NSToolbarItemIdentifier& identifier, bool) override {
            auto item = make<NSToolbarItem>(&NSToolbarItem::initWithItemIdentifier, identifier);
            item->setLabel("One");
            return item;
        }
    };
    const auto items = std::make_shared<Items>();
    toolbar->setDelegate(items);
    window_->setToolbar(toolbar);
    const auto* const tools = topLevel()->findChild<QToolBar*>();
    ASSERT_NE(tools, nullptr);
    EXPECT_EQ(tools->geometry().topLeft(), QPoint(0, height));
    EXPECT_EQ(topLevel()->height(), 350 + height + tools->height());
    EXPECT_EQ(window_->contentSize(), NSMakeSize(450, 350));
    NSApplication::sharedApplication().setMainMenu(nullptr);
    settle();
    EXPECT_EQ(bar(), nullptr);
    EXPECT_EQ(tools->y(), 0);
    EXPECT_EQ(topLevel()->height(), 350 + tools->height());
}

TEST_F(QtMenus, AClickInTheContentIsWhereItIsSeen) {
    const auto pressed = make<test::Pressed>(NSMakeRect(0, 290, 10, 10));
    document_->addSubview(pressed);
    QTest::mouseClick(handle(), Qt::LeftButton, {}, QPoint(5, bar()->height() + 5));
    EXPECT_EQ(pressed->count, 1);
    QTest::mouseClick(handle(), Qt::LeftButton, {}, QPoint(395, 5));
    EXPECT_EQ(pressed->count, 1);
}

TEST_F(QtMenus, ASheetTakesAnOpenMenuAwayAndTheBarIsSilentUnderIt) {
    const auto sheet = panel();
    ASSERT_NE(open(), nullptr);
    NSApplication::sharedApplication().beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(
        *sheet, window_.get(), nullptr, {}, nullptr);
    settle();
    EXPECT_EQ(popup(), nullptr);
    EXPECT_EQ(open(), nullptr);
    NSApplication::sharedApplication().endSheet(*sheet);
    sheet->close();
    settle();
    EXPECT_NE(open(), nullptr);
    type(Qt::Key_Escape);
}

TEST_F(QtMenus, AnItemMayRunAModalSessionInWhichNoneActs) {
    document_->question = panel();
    ASSERT_NE(open(), nullptr);
    then([&] {
        EXPECT_EQ(NSApplication::sharedApplication().modalWindow(), document_->question.get());
        EXPECT_EQ(popup(), nullptr);
        EXPECT_EQ(open(), nullptr);
        NSApplication::sharedApplication().stopModal();
    });
    choose(4);
    EXPECT_THAT(document_->log, ElementsAre("ask"));
    document_->question->orderOut(nullptr);
    settle();
    ASSERT_NE(open(), nullptr);
    choose(0);
    EXPECT_THAT(document_->log, ElementsAre("ask", "cut"));
}

TEST_F(QtMenus, AnItemMayCloseTheWindow) {
    ASSERT_NE(open(), nullptr);
    choose(5);
    settle();
    EXPECT_FALSE(window_->isVisible());
    EXPECT_EQ(topLevel(), nullptr);
}

} // namespace zr
