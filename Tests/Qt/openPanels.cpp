// SPDX-License-Identifier: MIT
#include "QtTest.h"
#include "Support/TemporaryFolder.h"

#include <AppKit/NSOpenPanel.h>

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>

#include <algorithm>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

class QtOpenPanels : public test::QtTest {
protected:
    void SetUp() override {
        for (const char* name : {"one", "two & a half", "\"three\"", "vier-ü"})
            std::filesystem::create_directory(folder_.path() / name);
        folder_.write("file.txt", "");
        pressed_ = make<test::Pressed>(NSMakeRect(0, 0, 400, 300));
        show(pressed_, {400, 300});
        panel_->setDirectoryURL(NSURL::fileURLWithPath(folder_.path().string()));
    }
    void chooseFolders(bool several) {
        panel_->setCanChooseFiles(false);
        panel_->setCanChooseDirectories(true);
        panel_->setAllowsMultipleSelection(several);
    }
    static QFileDialog* dialog() {
        for (QWidget* const widget : QApplication::topLevelWidgets())
            if (auto* const found = qobject_cast<QFileDialog*>(widget); found && found->isVisible())
                return found;
        return nullptr;
    }
    static QAbstractItemView* list() {
        for (auto* const view : dialog()->findChildren<QAbstractItemView*>())
            if ((view->objectName() == "listView" || view->objectName() == "treeView") && view->isVisible())
                return view;
        return nullptr;
    }
    static QPushButton* acceptButton() {
        for (auto* const button : dialog()->findChild<QDialogButtonBox*>("buttonBox")->buttons())
            if (dialog()->findChild<QDialogButtonBox*>("buttonBox")->buttonRole(button) ==
                QDialogButtonBox::AcceptRole)
                return qobject_cast<QPushButton*>(button);
        return nullptr;
    }
    static void click(QWidget* widget, QPoint point, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(widget->window()->windowHandle(), Qt::LeftButton, modifiers,
                          widget->mapTo(widget->window(), point));
    }
    static void click(QPushButton* button) { click(button, button->rect().center()); }
    static void cancel() {
        click(dialog()->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Cancel));
    }
    // The folder is read in the background; clicks on each name then.
    static bool select(const std::vector<QString>& names) {
        auto* const view = list();
        const auto indexOf = [&](const QString& name) -> QModelIndex {
            for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
                if (const auto index = view->model()->index(row, 0, view->rootIndex()); index.data() == name)
                    return index;
            return {};
        };
        const bool there = QTest::qWaitFor(
            [&] {
                return std::ranges::all_of(names, [&](const QString& name) {
                    return indexOf(name).isValid() && view->visualRect(indexOf(name)).isValid();
                });
            },
            10'000);
        if (!there) return false;
        settle(); // sorted
        Qt::KeyboardModifiers modifiers;
        for (const auto& name : names) {
            const QRect place = view->visualRect(indexOf(name));
            click(view->viewport(), {place.left() + 10, place.center().y()},
                  std::exchange(modifiers, Qt::ControlModifier));
        }
        return true;
    }
    std::vector<std::string> chosen() const {
        std::vector<std::string> names;
        for (const auto& url : panel_->URLs())
            names.push_back(std::filesystem::path(url.path()).lexically_relative(folder_.path()).string());
        return names;
    }
    void begin() {
        panel_->beginSheetModalForWindow_completionHandler(
            window_.get(), [this](int response) { responses_.push_back(response); });
        ASSERT_NE(dialog(), nullptr);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog()));
    }

    const test::TemporaryFolder folder_;
    std::shared_ptr<NSOpenPanel> panel_ = NSOpenPanel::openPanel();
    std::shared_ptr<test::Pressed> pressed_;
    std::vector<int> responses_;
};

TEST_F(QtOpenPanels, TwoFoldersAreChosenAtOnceInTheOrderOfTheList) {
    chooseFolders(true);
    begin();
    ASSERT_TRUE(select({"vier-ü", "one", "two & a half"}));
    click(acceptButton());
    EXPECT_THAT(responses_, ElementsAre(1));
    EXPECT_THAT(chosen(), ElementsAre("one", "two & a half", "vier-ü"));
    EXPECT_EQ(panel_->URL()->absoluteString().back(), '/') << "a folder's";
    settle();
    EXPECT_EQ(dialog(), nullptr);
}

TEST_F(QtOpenPanels, WhereOneIsChosenThereIsNeverAnother) {
    chooseFolders(false);
    begin();
    ASSERT_TRUE(select({"one", "\"three\""}));
    click(acceptButton());
    EXPECT_THAT(chosen(), ElementsAre("\"three\""));
}

TEST_F(QtOpenPanels, WithNoFolderSelectedTheOneThatIsShownIsChosen) {
    chooseFolders(true);
    begin();
    click(acceptButton());
    EXPECT_THAT(responses_, ElementsAre(1));
    EXPECT_THAT(chosen(), ElementsAre("."));
}

TEST_F(QtOpenPanels, APathIsTypedAndThePromptIsTheButtons) {
    chooseFolders(true);
    panel_->setPrompt("Trust & go");
    begin();
    EXPECT_EQ(acceptButton()->text(), "Trust && go");
    EXPECT_TRUE(acceptButton()->isDefault());
    auto* const edit = dialog()->findChild<QLineEdit*>("fileNameEdit");
    QTest::keyClicks(edit, "two & a half");
    // Past the completions that have come up.
    QTest::keyClick(dialog()->windowHandle(), Qt::Key_Return);
    EXPECT_THAT(responses_, ElementsAre(1));
    EXPECT_THAT(chosen(), ElementsAre("two & a half"));
}

TEST_F(QtOpenPanels, FilesAreChosenOneOrSeveral) {
    folder_.write("other.txt", "");
    begin();
    EXPECT_EQ(acceptButton()->text(), "Open");
    ASSERT_TRUE(select({"other.txt", "file.txt"}));
    click(acceptButton());
    EXPECT_THAT(chosen(), ElementsAre("file.txt"));
    panel_->setAllowsMultipleSelection(true);
    begin();
    ASSERT_TRUE(select({"other.txt", "file.txt"}));
    click(acceptButton());
    EXPECT_THAT(chosen(), ElementsAre("file.txt", "other.txt"));
    EXPECT_THAT(responses_, ElementsAre(1, 1));
}

TEST_F(QtOpenPanels, FilesAndFoldersAreChosenTogether) {
    panel_->setCanChooseDirectories(true);
    panel_->setAllowsMultipleSelection(true);
    begin();
    ASSERT_TRUE(select({"file.txt", "one"}));
    click(acceptButton());
    EXPECT_THAT(chosen(), ElementsAre("one", "file.txt"));
}

TEST_F(QtOpenPanels, FilesAreNotShownWhereFoldersAreChosen) {
    chooseFolders(true);
    begin();
    ASSERT_TRUE(select({"one"}));
    auto* const view = list();
    for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
        EXPECT_NE(view->model()->index(row, 0, view->rootIndex()).data(), "file.txt");
    cancel();
    EXPECT_THAT(responses_, ElementsAre(0));
    EXPECT_THAT(chosen(), IsEmpty());
}

TEST_F(QtOpenPanels, ASheetBlocksItsWindowAlone) {
    const auto other = make<test::Pressed>(NSMakeRect(0, 0, 100, 100));
    const auto second =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 100, 100),
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    second->setTitle("second");
    second->setContentView(other);
    second->makeKeyAndOrderFront(nullptr);
    settle();
    QWidget* secondReal = nullptr;
    for (QWidget* const widget : QApplication::topLevelWidgets())
        if (widget->windowTitle() == "second") secondReal = widget;
    ASSERT_NE(secondReal, nullptr);

    begin();
    click(topLevel(), {20, 20});
    click(secondReal, {20, 20});
    EXPECT_EQ(pressed_->count, 0);
    EXPECT_EQ(other->count, 1);
    QTest::keyClick(dialog()->windowHandle(), Qt::Key_Escape);
    EXPECT_THAT(responses_, ElementsAre(0));
    settle();
    EXPECT_EQ(dialog(), nullptr);
    click(topLevel(), {20, 20});
    EXPECT_EQ(pressed_->count, 1);
    second->close();
}

TEST_F(QtOpenPanels, RunModalBlocksEveryWindowAndNestsInOtherSessions) {
    chooseFolders(false);
    then([&] {
        ASSERT_NE(dialog(), nullptr);
        EXPECT_TRUE(QTest::qWaitForWindowExposed(dialog()));
        click(topLevel(), {20, 20});
        EXPECT_EQ(pressed_->count, 0);
        // Within its session another begins and ends.
        const auto inner = NSOpenPanel::openPanel();
        then([] { qobject_cast<QFileDialog*>(QApplication::activeModalWidget())->reject(); });
        EXPECT_EQ(inner->runModal(), 0);
        settle();
        ASSERT_TRUE(select({"one"}));
        click(acceptButton());
    });
    EXPECT_EQ(panel_->runModal(), 1);
    EXPECT_THAT(chosen(), ElementsAre("one"));
    EXPECT_EQ(dialog(), nullptr);
    click(topLevel(), {20, 20});
    EXPECT_EQ(pressed_->count, 1);
}

TEST_F(QtOpenPanels, ASheetIsCancelledWhenItsWindowClosesOrIsTakenAway) {
    begin();
    window_->close();
    settle();
    EXPECT_THAT(responses_, ElementsAre(0));
    EXPECT_EQ(dialog(), nullptr);
    window_->makeKeyAndOrderFront(nullptr);
    settle();
    begin();
    delete topLevel();
    EXPECT_THAT(responses_, ElementsAre(0, 0));
    settle();
    EXPECT_EQ(dialog(), nullptr);
}

TEST_F(QtOpenPanels, ASheetIsThereWhileItsHandlerRuns) {
    bool wasThere = false;
    panel_->beginSheetModalForWindow_completionHandler(window_.get(), [&](int) {
        wasThere = dialog() != nullptr;
        begin(); // the next one
    });
    cancel();
    EXPECT_TRUE(wasThere);
    settle();
    ASSERT_NE(dialog(), nullptr);
    cancel();
    EXPECT_THAT(responses_, ElementsAre(0));
    settle();
    EXPECT_EQ(dialog(), nullptr);
}

} // namespace zr
