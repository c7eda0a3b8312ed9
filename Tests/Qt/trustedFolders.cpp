// SPDX-License-Identifier: MIT
#include "QtTest.h"
#include "Support/TemporaryFolder.h"

#include <Foundation/NSUserDefaults.h>
#include <HostLibraries/GlobalFun.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>

#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QToolBar>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

// Its restore begins when the test says so.
class HeldPane : public ZRTrustedPathViewCtl {
public:
    ZR_CLASS(HeldPane, ZRTrustedPathViewCtl)
    void asyncLoadDefaultBookMarksWithLaunch() override {
        if (isReleased)
            ZRTrustedPathViewCtl::asyncLoadDefaultBookMarksWithLaunch();
        else
            isDue = true;
    }
    void release() {
        isReleased = true;
        if (isDue) asyncLoadDefaultBookMarksWithLaunch();
    }
    bool isReleased = false, isDue = false;
};
ZR_CLASS_TABLE(HeldPane)

} // namespace

class QtTrustedFolders : public testing::Test {
protected:
    void SetUp() override {
        PropertyList::Array bookmarks;
        for (const char* name : {"one", "two", "three"}) {
            fs::create_directory(folder_.path() / name);
            bookmarks.emplace_back(*GlobalFun::BookmarkDataForURL(NSURL::fileURLWithPath(at(name))));
        }
        fs::create_directory(folder_.path() / "four");
        NSUserDefaults::standardUserDefaults()->setObject_forKey(bookmarks, "BookmarksKey");
        pane_ = make<HeldPane>();
        preferences_ =
            make<MASPreferencesWindowController>(&MASPreferencesWindowController::initWithViewControllers,
                                                 MASPreferencesWindowController::Controllers{pane_});
        preferences_->showWindow(nullptr);
        test::QtTest::settle();
        ASSERT_NE(topLevel(), nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(topLevel()));
    }
    void TearDown() override {
        preferences_->close();
        test::QtTest::settle();
        NSUserDefaults::standardUserDefaults()->removeObjectForKey("BookmarksKey");
    }

    std::string at(const char* name) const { return (folder_.path() / name).string(); }
    static QWidget* topLevel() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->isVisible() && widget->findChild<QToolBar*>()) return widget;
        return nullptr;
    }
    static QFileDialog* dialog() {
        for (QWidget* const widget : QApplication::topLevelWidgets())
            if (auto* const found = qobject_cast<QFileDialog*>(widget); found && found->isVisible())
                return found;
        return nullptr;
    }
    static QPushButton* button(const QString& title) {
        for (auto* const each : topLevel()->findChildren<QPushButton*>())
            if (each->text() == title) return each;
        return nullptr;
    }
    // Where a user would: through the window, to whatever is in front there.
    static void click(QWidget* widget, QPoint point, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(topLevel()->windowHandle(), Qt::LeftButton, modifiers,
                          widget->mapTo(topLevel(), point));
        test::QtTest::settle();
    }
    static void click(const QString& title) {
        ASSERT_NE(button(title), nullptr);
        click(button(title), button(title)->rect().center());
    }
    static QTableView* table() { return topLevel()->findChild<QTableView*>(); }
    static void clickRow(int row, Qt::KeyboardModifiers modifiers = {}) {
        auto* const viewport = table()->viewport();
        click(viewport, table()->visualRect(table()->model()->index(row, 0)).center(), modifiers);
    }
    static std::vector<std::string> rows() {
        test::QtTest::settle();
        std::vector<std::string> all;
        for (int row = 0; row < table()->model()->rowCount(); ++row)
            all.push_back(
                QFileInfo(table()->model()->index(row, 0).data().toString()).fileName().toStdString());
        return all;
    }
    bool waitUntilRestored() const {
        pane_->release();
        return QTest::qWaitFor([this] { return !pane_->isAsyncLoading(); }, 20'000);
    }
    static std::size_t storedCount() {
        return NSUserDefaults::standardUserDefaults()->arrayForKey("BookmarksKey")->size();
    }

    const test::TemporaryFolder folder_;
    zr::qt::Platform platform_;
    std::shared_ptr<HeldPane> pane_;
    std::shared_ptr<MASPreferencesWindowController> preferences_;
};

TEST_F(QtTrustedFolders, AreListedWhenTheyAreRestored) {
    EXPECT_TRUE(button("Cancel")->isVisible());
    const QString pictures = QCoreApplication::applicationDirPath(); // for a person to judge
    topLevel()->grab().save(pictures + "/trustedFoldersRestoring.png");
    ASSERT_TRUE(waitUntilRestored());
    topLevel()->grab().save(pictures + "/trustedFolders.png");
    EXPECT_FALSE(button("Cancel")->isVisible());
    EXPECT_THAT(rows(), ElementsAre("one", "two", "three"));
}

TEST_F(QtTrustedFolders, AreCoveredWhileTheyAreRestored) {
    EXPECT_NE(topLevel()->childAt(table()->mapTo(topLevel(), QPoint(30, 10))), table()->viewport());
    ASSERT_TRUE(waitUntilRestored());
    clickRow(1);
    EXPECT_EQ(pane_->tableView()->selectedRow(), 1);
}

TEST_F(QtTrustedFolders, MayBeCancelled) {
    click("Cancel");
    EXPECT_FALSE(pane_->isAsyncLoading());
    EXPECT_TRUE(pane_->loadingCanceled());
    EXPECT_FALSE(button("Cancel")->isVisible());
    EXPECT_EQ(storedCount(), 2u);
    pane_->release();
    EXPECT_TRUE(QTest::qWaitFor([this] { return pane_->loadingItems().size() == 2; }, 20'000));
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(QtTrustedFolders, AreAddedAndRemovedByTheirButtons) {
    ASSERT_TRUE(waitUntilRestored());
    click("+");
    ASSERT_TRUE(QTest::qWaitFor([] { return dialog() != nullptr; }, 10'000));
    auto* const name = dialog()->findChild<QLineEdit*>("fileNameEdit");
    name->setText(QString::fromStdString("\"" + at("four") + "\""));
    QTest::keyClick(dialog()->windowHandle(), Qt::Key_Return);
    ASSERT_TRUE(QTest::qWaitFor([] { return dialog() == nullptr; }, 10'000));
    EXPECT_THAT(rows(), ElementsAre("one", "two", "three", "four"));
    EXPECT_EQ(storedCount(), 4u);

    clickRow(1);
    clickRow(3, Qt::ControlModifier);
    click("\u2212");
    EXPECT_THAT(rows(), ElementsAre("one", "three"));
    EXPECT_EQ(storedCount(), 2u);
}

} // namespace zr
