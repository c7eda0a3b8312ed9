// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSApplication.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <ZRUIKitQt/Application.h>

#include <QApplication>
#include <QImage>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWindow>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zr::test {

// The kit on Qt, with one window of the size the test asks for. Events go through the QWindow, as the window
// system's do.
class QtTest : public testing::Test {
protected:
    explicit QtTest(zr::qt::Options options = {.sandboxed = false}) : platform_(std::move(options)) {}

    void show(const std::shared_ptr<NSView>& content, NSSize size) {
        window_ =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSRect{NSZeroPoint, size},
                           NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskResizable,
                           NSBackingStoreBuffered, false);
        window_->setTitle("window under test");
        window_->setContentView(content);
        window_->makeKeyAndOrderFront(nullptr);
        ASSERT_TRUE(topLevel());
        ASSERT_TRUE(QTest::qWaitForWindowExposed(topLevel()));
        settle();
    }

    // A button that a test left pressed would be so for the next test.
    void TearDown() override {
        if (!topLevel()) return;
        for (const auto button : {Qt::LeftButton, Qt::RightButton})
            if (QGuiApplication::mouseButtons().testFlag(button)) QTest::mouseRelease(handle(), button);
    }

public:
    // Handles what has been posted, painting included.
    static void settle() {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

protected:
    static QWidget* topLevel() {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->windowTitle() == "window under test") return widget;
        return nullptr;
    }
    static QWidget* widget(const char* name) {
        return topLevel() ? topLevel()->findChild<QWidget*>(name) : nullptr;
    }
    static QWindow* handle() { return topLevel()->windowHandle(); }
    static double ratio() { return topLevel()->devicePixelRatioF(); }

    // What the window shows, in device pixels.
    static QImage picture() {
        settle();
        return topLevel()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
    // The colour at a point of the window from its top left, in device pixels.
    static QColor pixel(const QImage& image, double x, double y) { return image.pixelColor(int(x), int(y)); }
    static QColor background() { return topLevel()->palette().color(QPalette::Window); }

    // Points are in window coordinates: from the lower left.
    QPoint toQt(NSPoint point) const {
        return QPoint(int(point.x), int(window_->contentSize().height - point.y));
    }
    void press(NSPoint point) { QTest::mousePress(handle(), Qt::LeftButton, {}, toQt(point)); }
    void drag(NSPoint point) {
        // QTest's own mouseMove forgets the pressed button.
        const QPoint local = toQt(point);
        QTest::mouseEvent(QTest::MouseMove, handle(), Qt::LeftButton, {}, local, -1);
    }
    void release(NSPoint point) { QTest::mouseRelease(handle(), Qt::LeftButton, {}, toQt(point)); }

    // A press that begins a modal drag does not return until that is over: what follows is posted before it,
    // each step in an event of its own.
    void then(std::function<void()> step) {
        steps_.push_back(std::move(step));
        if (steps_.size() == 1) scheduleStep();
    }

    zr::qt::Platform platform_;
    std::shared_ptr<NSWindow> window_;

private:
    void scheduleStep() {
        QTimer::singleShot(1, qApp, [this] {
            // Not while a slow step sends its events, but only in what it waits for.
            const int level = QThread::currentThread()->loopLevel();
            if (level == levelOfStep_) return scheduleStep();
            const auto step = steps_.front();
            steps_.erase(steps_.begin());
            if (!steps_.empty()) scheduleStep();
            const int outer = std::exchange(levelOfStep_, level);
            step();
            levelOfStep_ = outer;
        });
    }

    std::vector<std::function<void()>> steps_;
    int levelOfStep_ = -1; // how many event loops there were when the step began that is under way
};

// Counts its presses.
class Pressed : public NSView {
public:
    void mouseDown(const NSEvent&) override { ++count; }
    int count = 0;
};

// A colour painted over another.
inline QColor over(const Colour& colour, QColor below) {
    const auto mix = [&](double top, int bottom) {
        return int(std::lround((top * colour.alpha + bottom / 255.0 * (1 - colour.alpha)) * 255));
    };
    return QColor(mix(colour.red, below.red()), mix(colour.green, below.green()),
                  mix(colour.blue, below.blue()));
}

inline bool isNear(QColor a, QColor b, int tolerance = 2) {
    return std::abs(a.red() - b.red()) <= tolerance && std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

MATCHER_P(IsColour, expected, "is about " + expected.name().toStdString()) {
    *result_listener << "which is " << arg.name().toStdString();
    return isNear(arg, expected);
}

} // namespace zr::test
