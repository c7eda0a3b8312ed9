#include "QtTest.h"

#include <AppKit/NSApplication.h>
#include <ZRUIKit/SWTimeEditView.h>
#include <ZRUIKit/ZRAlert.h>
#include <ZRUIKit/ZRLoadingWndCtl.h>

#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace zr {

// The progress sheet over a real window, next to a second one.
class QtSheets : public test::QtTest {
protected:
    void SetUp() override {
        show(make<NSView>(NSMakeRect(0, 0, 640, 300)), {640, 300});
        loading_ = make<ZRLoadingWndCtl>();
        ASSERT_NE(loading_->window(), nullptr);
        loading_->window()->setTitle("sheet under test");
    }
    static QWidget* sheet() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->windowTitle() == "sheet under test" && widget->isVisible()) return widget;
        return nullptr;
    }
    std::shared_ptr<ZRLoadingWndCtl> loading_;
};

TEST_F(QtSheets, ASheetIsModalToItsWindowAloneAndFollowsIt) {
    loading_->startLoading_parent("Saving", window_.get());
    settle();
    ASSERT_NE(sheet(), nullptr);
    EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
    const auto centred = [&] {
        const QPoint middle = topLevel()->mapToGlobal(QPoint(topLevel()->width() / 2, 0));
        return std::abs(sheet()->geometry().center().x() - middle.x()) <= 2;
    };
    EXPECT_TRUE(centred());
    topLevel()->move(topLevel()->pos() + QPoint(70, 40));
    settle();
    EXPECT_TRUE(centred());

    EXPECT_EQ(QGuiApplication::modalWindow(), sheet()->windowHandle());
    loading_->endLoading();
    settle();
    EXPECT_EQ(sheet(), nullptr);
    EXPECT_EQ(QGuiApplication::modalWindow(), nullptr);
}

TEST_F(QtSheets, TheBarShowsTheProgressAndARealClickCancels) {
    loading_->startLoading_parent("Saving", window_.get());
    settle();
    auto* const bar = sheet()->findChild<QProgressBar*>();
    ASSERT_NE(bar, nullptr);
    loading_->updateProgress_ing(0.25, "a quarter");
    EXPECT_EQ(bar->value() - bar->minimum(), (bar->maximum() - bar->minimum()) / 4);
    loading_->updateProgress_ing(7, "far too much");
    EXPECT_EQ(bar->value(), bar->maximum());

    int cancellations = 0;
    const auto observer = NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
        ZRLoadingPrgWndCanceledNotification, nullptr, [&](const NSNotification&) { ++cancellations; });
    auto* const cancel = sheet()->findChild<QPushButton*>();
    ASSERT_NE(cancel, nullptr);
    QTest::mouseClick(sheet()->windowHandle(), Qt::LeftButton, {},
                      cancel->mapTo(sheet(), cancel->rect().center()));
    settle();
    EXPECT_EQ(cancellations, 1);
    QTest::keyClick(sheet()->windowHandle(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(cancellations, 2);
    EXPECT_NE(sheet(), nullptr) << "it stays up";
}

TEST_F(QtSheets, TheParentGetsNoInputAndAnotherWindowDoes) {
    const auto blocked = make<test::Pressed>(NSMakeRect(0, 0, 640, 300)),
               free = make<test::Pressed>(NSMakeRect(0, 0, 100, 100));
    window_->setContentView(blocked);
    const auto other =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 100, 100),
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    other->setTitle("the other window");
    other->setContentView(free);
    other->orderFront(nullptr);
    loading_->startLoading_parent("Saving", window_.get());
    settle();
    QWindow* otherHandle = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (widget->windowTitle() == "the other window") otherHandle = widget->windowHandle();
    ASSERT_NE(otherHandle, nullptr);
    press({50, 50});
    release({50, 50});
    EXPECT_EQ(blocked->count, 0);
    QTest::mouseClick(otherHandle, Qt::LeftButton, {}, QPoint(50, 50));
    EXPECT_EQ(free->count, 1);
    loading_->endLoading();
    settle();
    press({50, 50});
    release({50, 50});
    EXPECT_EQ(blocked->count, 1);
    other->close();
}

// What a person would judge: the texts of every language fit. Each writes its picture beside the program.
TEST(QtDialogPictures, NothingIsClippedInAnyLanguage) {
    for (const char* const language : {"en", "de", "es", "fr", "ja", "zh-Hans"}) {
        const zr::qt::Platform platform({.mainBundle = {}, .preferredLanguages = {{language}}});
        const auto loading = make<ZRLoadingWndCtl>();
        ASSERT_NE(loading->window(), nullptr);
        loading->window()->setTitle("sheet under test");
        loading->startLoading_parent("“alarm-clock-elapsed-with-a-long-name.oga”", nullptr);
        loading->updateProgress_ing(0.4, "0:12 / 0:30");
        test::QtTest::settle();
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->windowTitle() != "sheet under test" || !top->isVisible()) continue;
            auto* const cancel = top->findChild<QPushButton*>();
            ASSERT_NE(cancel, nullptr);
            EXPECT_LE(cancel->fontMetrics().horizontalAdvance(cancel->text()) + 16, cancel->width())
                << language;
            EXPECT_FALSE(top->grab().isNull());
            top->grab().save(QString("sheet-%1.png").arg(language));
        }
        loading->endLoading();
        test::QtTest::settle();
    }
}

} // namespace zr
