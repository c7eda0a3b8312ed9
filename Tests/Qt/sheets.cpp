// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <AppKit/NSApplication.h>
#include <Foundation/NSString.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/SWTimeEditView.h>
#include <ZRUIKit/ZRAlert.h>
#include <ZRUIKit/ZRLoadingWndCtl.h>

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
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
    const auto centred = [&] {
        const QPoint middle = topLevel()->mapToGlobal(QPoint(topLevel()->width() / 2, 0));
        return std::abs(sheet()->geometry().center().x() - middle.x()) <= 2;
    };
    EXPECT_TRUE(centred());
    topLevel()->move(topLevel()->pos() + QPoint(70, 40));
    settle();
    EXPECT_TRUE(centred());

    loading_->endLoading();
    settle();
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(QtSheets, TheWishToCloseReachesTheWindowUnderItAndNothingElseDoes) {
    class Refuses : public NSWindowDelegate {
    public:
        std::optional<bool> windowShouldClose(NSWindow&) override {
            ++asked;
            return answer;
        }
        int asked = 0;
        bool answer = false;
    };
    const auto refuses = std::make_shared<Refuses>();
    window_->setDelegate(refuses);
    const auto view = make<test::Pressed>(NSMakeRect(0, 0, 640, 300));
    window_->setContentView(view);
    loading_->startLoading_parent("Saving", window_.get());
    settle();
    topLevel()->close();
    EXPECT_EQ(refuses->asked, 1);
    sheet()->close();
    EXPECT_EQ(refuses->asked, 2) << "a sheet and its window are one to the user";
    EXPECT_NE(sheet(), nullptr);

    QWindow* const under = topLevel()->windowHandle();
    bool shortcut = false;
    auto* const key = new QShortcut(QKeySequence("Ctrl+K"), topLevel());
    QObject::connect(key, &QShortcut::activated, [&] { shortcut = true; });
    QTest::keyClick(under, Qt::Key_K, Qt::ControlModifier);
    QTest::keyClick(under, Qt::Key_A);
    QTest::mouseClick(under, Qt::LeftButton, {}, QPoint(50, 50));
    QTest::mouseDClick(under, Qt::LeftButton, {}, QPoint(50, 50));
    EXPECT_FALSE(shortcut);
    EXPECT_EQ(view->count, 0);

    refuses->answer = true;
    topLevel()->close();
    settle();
    EXPECT_EQ(sheet(), nullptr) << "no sheet stays without its window";
}

TEST_F(QtSheets, ASheetThatComesUnderAnAlertLeavesItTheKeyboard) {
    bool cancelled = false;
    QTimer::singleShot(0, [&] {
        loading_->startLoading_parent("Saving", window_.get());
        QWidget* const alert = QApplication::activeModalWidget();
        ASSERT_NE(alert, nullptr);
        ASSERT_NE(sheet(), nullptr);
        EXPECT_TRUE(sheet()->testAttribute(Qt::WA_ShowWithoutActivating));
        QTest::keyClick(alert->windowHandle(), Qt::Key_Return);
    });
    ZRAlert::Actions_title_info_accessoryView({ZRAlertAction::CANCEL([&] { cancelled = true; })}, "Stop?",
                                              std::nullopt, nullptr);
    EXPECT_TRUE(cancelled);
    loading_->endLoading();
    loading_->startLoading_parent("Saving", window_.get());
    EXPECT_FALSE(sheet()->testAttribute(Qt::WA_ShowWithoutActivating));
}

TEST_F(QtSheets, AnAlertOverASheetGetsInput) {
    loading_->startLoading_parent("Saving", window_.get());
    settle();
    bool pressed = false;
    QTimer::singleShot(0, [&] {
        QWidget* const alert = QApplication::activeModalWidget();
        ASSERT_NE(alert, nullptr);
        auto* const button = alert->findChild<QPushButton*>();
        QTest::mouseClick(alert->windowHandle(), Qt::LeftButton, {},
                          button->mapTo(alert, button->rect().center()));
    });
    ZRAlert::Actions_title_info_accessoryView({ZRAlertAction::OK([&] { pressed = true; })}, "Stop?",
                                              std::nullopt, nullptr);
    EXPECT_TRUE(pressed);
    EXPECT_NE(sheet(), nullptr);
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
            top->grab().save(QString("%1/sheet-%2.png").arg(QCoreApplication::applicationDirPath(), language));
        }
        loading->endLoading();
        test::QtTest::settle();
    }
}

// The question that TrimStudio asks, in its own words.
TEST(QtDialogPictures, AnAlertIsClippedInNoLanguage) {
    for (const char* const language : {"en", "de", "es", "fr", "ja", "zh-Hans"})
        for (const Appearance appearance : {Appearance::light, Appearance::dark}) {
            const zr::qt::Platform platform(
                {.mainBundle = ZR_TRIMSTUDIO_RESOURCES, .preferredLanguages = {{language}}});
            NSApplication::sharedApplication().setAppearance(appearance);
            QTimer::singleShot(0, [&] {
                QWidget* const alert = QApplication::activeModalWidget();
                ASSERT_NE(alert, nullptr);
                test::QtTest::settle();
                for (const auto* const button : alert->findChildren<QPushButton*>()) {
                    EXPECT_LE(button->fontMetrics().horizontalAdvance(button->text()) + 16, button->width())
                        << language;
                    EXPECT_TRUE(alert->rect().contains(button->geometry())) << language;
                }
                int texts = 0;
                for (const auto* const label : alert->findChildren<QLabel*>()) {
                    if (label->text().isEmpty()) continue;
                    ++texts;
                    const QRect needed = label->fontMetrics().boundingRect(
                        QRect(0, 0, label->width(), 10000), Qt::AlignLeft | Qt::TextWordWrap, label->text());
                    EXPECT_LE(needed.height(), label->height())
                        << language << ": " << label->text().toStdString();
                }
                EXPECT_EQ(texts, 2) << language;
                alert->grab().save(QString("%1/alert-%2-%3.png")
                                       .arg(QCoreApplication::applicationDirPath(), language,
                                            appearance == Appearance::dark ? "dark" : "light"));
                NSApplication::sharedApplication().abortModal();
            });
            ZRAlert::Actions_title_info_accessoryView(
                {ZRAlertAction::actionWithTitle_block(AppLocalizedString("Keep Before"), nullptr),
                 ZRAlertAction::actionWithTitle_block(AppLocalizedString("Keep After"), nullptr),
                 ZRAlertAction::CANCEL(nullptr)},
                stringWithFormat(AppLocalizedString("“%@” is still being saved."),
                                 "alarm-clock-elapsed-with-a-long-name.oga"),
                AppLocalizedString(
                    "What has been saved so far can be discarded. The recording itself stays as it is."),
                nullptr);
        }
}

} // namespace zr
