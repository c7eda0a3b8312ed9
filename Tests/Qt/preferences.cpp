// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <AppKit/NSImage.h>
#include <AppKit/NSTextField.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSUserDefaults.h>
#include <ZRUIKit/MASPreferencesWindowController.h>

#include <QToolBar>
#include <QToolButton>

namespace zr {

namespace {

class QtPane : public NSViewController, public MASPreferencesViewController {
public:
    ZR_CLASS(QtPane, NSViewController)
    bool initWithName_size_mask(const std::string& name, const NSSize& size, unsigned mask) {
        name_ = name;
        auto view = make<NSView>(NSRect{NSZeroPoint, size});
        view->setAutoresizingMask(mask);
        field = make<NSTextField>(NSMakeRect(20, size.height - 44, 120, 24));
        view->addSubview(field);
        setView(view);
        return true;
    }
    std::string identifier() const override { return name_; }
    std::shared_ptr<NSImage> toolbarItemImage() const override {
        return NSBundle::bundleForClass(NSImage::classTable()).imageForResource("SliderTrimLeft");
    }
    std::string toolbarItemLabel() const override { return "Label " + name_; }
    bool commitEditing() override { return commits; }
    std::shared_ptr<NSTextField> field;
    bool commits = true;

private:
    std::string name_;
};

ZR_CLASS_TABLE(QtPane)

} // namespace

class QtPreferences : public testing::Test {
protected:
    void SetUp() override {
        const auto pane = [](const char* name, NSSize size, unsigned mask) {
            return make<QtPane>(&QtPane::initWithName_size_mask, std::string(name), size, mask);
        };
        a_ = pane("A", {400, 300}, 2 + 16);
        b_ = pane("B", {520, 200}, 0);
        controller_ =
            make<MASPreferencesWindowController>(&MASPreferencesWindowController::initWithViewControllers,
                                                 MASPreferencesWindowController::Controllers{a_, b_});
        controller_->showWindow(nullptr);
        test::QtTest::settle();
        ASSERT_NE(topLevel(), nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(topLevel()));
    }
    void TearDown() override {
        controller_->close();
        test::QtTest::settle();
    }
    static QWidget* topLevel() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->isVisible() && widget->findChild<QToolBar*>()) return widget;
        return nullptr;
    }
    static QToolButton* item(const QString& label) {
        for (auto* const button : topLevel()->findChild<QToolBar*>()->findChildren<QToolButton*>())
            if (button->text() == label) return button;
        return nullptr;
    }
    static void click(const QString& label) {
        auto* const button = item(label);
        ASSERT_NE(button, nullptr);
        QTest::mouseClick(topLevel()->windowHandle(), Qt::LeftButton, {},
                          button->mapTo(topLevel(), button->rect().center()));
        test::QtTest::settle();
    }
    static void type(const char* text) {
        for (const char* key = text; *key; ++key) QTest::keyClick(topLevel()->windowHandle(), *key);
        test::QtTest::settle();
    }
    static QSize content() {
        return topLevel()->size() - QSize(0, topLevel()->findChild<QToolBar*>()->height());
    }

    zr::qt::Platform platform_;
    std::shared_ptr<QtPane> a_, b_;
    std::shared_ptr<MASPreferencesWindowController> controller_;
};

TEST_F(QtPreferences, TheToolbarStandsAboveTheContentAndMarksThePane) {
    EXPECT_EQ(topLevel()->windowTitle(), "Label A");
    EXPECT_EQ(content(), QSize(400, 300));
    EXPECT_TRUE(item("Label A")->isChecked());
    EXPECT_FALSE(item("Label B")->isChecked());
    EXPECT_FALSE(item("Label A")->icon().isNull());
    const auto* const bar = topLevel()->findChild<QToolBar*>();
    EXPECT_EQ(bar->geometry().topLeft(), QPoint(0, 0));
    EXPECT_EQ(bar->width(), topLevel()->width());
    EXPECT_EQ(controller_->window()->frame().size.height,
              300 + bar->height() + topLevel()->geometry().top() - topLevel()->frameGeometry().top());
    topLevel()->grab().save(QCoreApplication::applicationDirPath() +
                            "/preferences.png"); // for a person to judge
}

TEST_F(QtPreferences, AClickShowsTheOtherPaneWhileTheUpperEdgeStays) {
    const QPoint before = topLevel()->pos();
    click("Label B");
    EXPECT_EQ(controller_->selectedViewController(), b_);
    EXPECT_EQ(topLevel()->pos(), before);
    EXPECT_EQ(content(), QSize(520, 200));
    EXPECT_EQ(topLevel()->minimumSize(), topLevel()->maximumSize()) << "this pane has one size";
    EXPECT_TRUE(item("Label B")->isChecked());
    EXPECT_FALSE(item("Label A")->isChecked());
    EXPECT_EQ(topLevel()->windowTitle(), "Label B");
}

TEST_F(QtPreferences, AClickOnTheMarkedItemLeavesItMarked) {
    click("Label A");
    EXPECT_TRUE(item("Label A")->isChecked());
    EXPECT_EQ(controller_->selectedViewController(), a_);
}

TEST_F(QtPreferences, TheMarkSnapsBackWhereThePaneCannotCommit) {
    a_->commits = false;
    click("Label B");
    EXPECT_EQ(controller_->selectedViewController(), a_);
    EXPECT_TRUE(item("Label A")->isChecked());
    EXPECT_FALSE(item("Label B")->isChecked());
    topLevel()->close();
    EXPECT_TRUE(controller_->window()->isVisible());
    a_->commits = true;
    topLevel()->close();
    EXPECT_FALSE(controller_->window()->isVisible());
}

TEST_F(QtPreferences, SizesAndPlacesAreKept) {
    const auto stored = [](const char* key) {
        return NSUserDefaults::standardUserDefaults()->stringForKey(key);
    };
    topLevel()->resize(topLevel()->size() + QSize(60, 40));
    test::QtTest::settle();
    EXPECT_EQ(stored("MASPreferences A Frame"), "{{0, 0}, {460, 340}}");
    topLevel()->move(123, 234);
    test::QtTest::settle();
    const double top = NSMaxY(controller_->window()->frame());
    EXPECT_EQ(stored("MASPreferences Frame Top Left"), NSStringFromPoint({123, top}));
    click("Label B");
    click("Label A");
    EXPECT_EQ(content(), QSize(460, 340));
    EXPECT_EQ(topLevel()->pos(), QPoint(123, 234));

    // Another window of the same panes.
    controller_->close();
    controller_ = make<MASPreferencesWindowController>(&MASPreferencesWindowController::initWithViewControllers,
                                                       MASPreferencesWindowController::Controllers{a_, b_});
    controller_->showWindow(nullptr);
    test::QtTest::settle();
    EXPECT_EQ(topLevel()->pos(), QPoint(123, 234));
    EXPECT_EQ(content(), QSize(460, 340));
}

TEST_F(QtPreferences, TheFirstFieldOfThePaneHasTheKeyboard) {
    type("typed");
    EXPECT_EQ(a_->field->stringValue(), "typed");
    click("Label B");
    type("too");
    EXPECT_EQ(b_->field->stringValue(), "too");
    EXPECT_EQ(a_->field->stringValue(), "typed");
}

} // namespace zr
