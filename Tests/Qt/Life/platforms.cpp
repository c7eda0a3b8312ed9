// SPDX-License-Identifier: MIT
// Platforms that are made, or go, when they cannot. Each test has a QApplication of its own, or none.
#include "Support/WhatIsThrown.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSWindow.h>
#include <Foundation/Dispatch.h>
#include <ZRUIKitHeadless/Headless.h>
#include <ZRUIKitQt/Application.h>

#include <QApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace zr {

using test::whatIsThrown;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

int argumentCount = 1;
char programName[] = "life";
char* arguments[] = {programName, nullptr};

std::shared_ptr<NSWindow> shownWindow() {
    auto window =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSMakeRect(0, 0, 200, 100),
                       unsigned{NSWindowStyleMaskTitled}, NSBackingStoreBuffered, false);
    window->contentView()->addSubview(make<NSTextField>(NSMakeRect(10, 10, 80, 20)));
    window->makeKeyAndOrderFront(nullptr);
    return window;
}

// What the adaptor warns of, by Qt's own means.
std::vector<std::string>& warnings() {
    static std::vector<std::string> texts;
    return texts;
}

class QtLife : public testing::Test {
protected:
    QtLife() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        warnings().clear();
        before_ = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
            if (text.startsWith("The zr::qt::")) warnings().push_back(text.toStdString());
        });
    }
    ~QtLife() override { qInstallMessageHandler(before_); }

private:
    QtMessageHandler before_ = nullptr;
};

} // namespace

TEST_F(QtLife, APlatformWithoutAQApplicationThrows) {
    const std::string text = "zr::qt::Platform: there is no QApplication, which must be made first";
    EXPECT_EQ(whatIsThrown([] { const qt::Platform platform; }), text);
    const QCoreApplication other(argumentCount, arguments);
    EXPECT_EQ(whatIsThrown([] { const qt::Platform platform; }), text) << "one without widgets is none";
    EXPECT_THROW(NSApplication::sharedApplication(), std::logic_error);
}

TEST_F(QtLife, APlatformInAnotherThreadThrows) {
    const QApplication application(argumentCount, arguments);
    std::string text;
    std::thread([&] { text = whatIsThrown([] { const qt::Platform platform; }); }).join();
    EXPECT_EQ(text, "zr::qt::Platform: this is not the thread of the QApplication");
    const qt::Platform platform;
}

TEST_F(QtLife, ASecondPlatformThrowsAndTheFirstGoesOn) {
    const QApplication application(argumentCount, arguments);
    const qt::Platform platform;
    const std::string text = "there is a platform already: the one before must go first";
    EXPECT_EQ(whatIsThrown([] { const qt::Platform second; }), text);
    EXPECT_EQ(whatIsThrown([] { const headless::Platform second; }), text);
    bool ran = false;
    dispatch_async(dispatch_get_main_queue(), [&] {
        ran = true;
        QCoreApplication::exit();
    });
    QCoreApplication::exec();
    EXPECT_TRUE(ran);
    const auto window = shownWindow();
    EXPECT_TRUE(window->isVisible());
    window->close();
}

TEST_F(QtLife, AnApplicationBesideAQApplicationThrows) {
    const std::string text =
        "zr::qt::Application: there is a QApplication already; a zr::qt::Platform goes with it";
    {
        const QApplication application(argumentCount, arguments);
        EXPECT_EQ(whatIsThrown([] { const qt::Application own(argumentCount, arguments); }), text);
        EXPECT_EQ(qApp, &application);
    }
    const qt::Application application(argumentCount, arguments);
    EXPECT_EQ(whatIsThrown([] { const qt::Application second(argumentCount, arguments); }), text);
    EXPECT_TRUE(shownWindow()->isVisible());
}

TEST_F(QtLife, APlatformThatOutlivesItsQApplicationEndsWithIt) {
    struct Told : NSWindowDelegate {
        void windowWillClose(NSWindow&) override { ++closed; }
        int closed = 0;
    };
    const auto told = std::make_shared<Told>();
    std::unique_ptr<qt::Platform> platform;
    std::shared_ptr<NSWindow> window;
    {
        const QApplication application(argumentCount, arguments);
        platform = std::make_unique<qt::Platform>();
        window = shownWindow();
        window->setDelegate(told);
    }
    EXPECT_THAT(warnings(), ElementsAre("The zr::qt::Platform outlives its QApplication, and ends with it"));
    EXPECT_EQ(told->closed, 1);
    EXPECT_FALSE(window->isVisible());
    EXPECT_THROW(NSApplication::sharedApplication(), std::logic_error);

    // The next ones are none of its business.
    const QApplication application(argumentCount, arguments);
    auto next = std::make_unique<qt::Platform>();
    platform.reset();
    EXPECT_TRUE(shownWindow()->isVisible());
    next.reset();
}

TEST_F(QtLife, APlatformThatGoesInItsTurnIsNotWarnedOf) {
    {
        const QApplication application(argumentCount, arguments);
        const qt::Platform platform;
        shownWindow();
    }
    { const qt::Application application(argumentCount, arguments); }
    EXPECT_THAT(warnings(), IsEmpty());
}

} // namespace zr
