// SPDX-License-Identifier: MIT
#include "Adaptor.h"

#include <ZRUIKitQt/Application.h>

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWheelEvent>
#include <QWindow>

#include <stdexcept>
#include <utility>

namespace zr::conformance {

namespace {

constexpr double kNotch = 120;

class QtAdaptor final : public Adaptor {
public:
    ~QtAdaptor() override {
        // A button that a test left pressed would be so for the next test.
        for (const auto button : {Qt::LeftButton, Qt::RightButton, Qt::MiddleButton})
            for (QWidget* const widget : QApplication::topLevelWidgets())
                if (QGuiApplication::mouseButtons().testFlag(button) && widget->windowHandle())
                    QTest::mouseRelease(widget->windowHandle(), button);
    }
    void settle() override {
        for (int i = 0; i < 4; ++i) QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    bool passUntil(const std::function<bool()>& condition) override {
        return QTest::qWaitFor(condition, 20'000);
    }
    void during(std::vector<std::function<void()>> steps) override {
        const bool idle = steps_.empty();
        for (auto& step : steps) steps_.push_back(std::move(step));
        if (idle) schedule();
    }
    void press(NSWindow& window, NSPoint point, Button button, Modifiers modifiers) override {
        if (modifiers.clicks == 2) {
            press(window, point, button, {modifiers.flags, 1});
            release(window, point, button);
        }
        mouse(window, point, QEvent::MouseButtonPress, button, modifiers.flags,
              modifiers.clicks == 2 ? 10 : 2000);
    }
    void drag(NSWindow& window, NSPoint point, Button button) override {
        mouse(window, point, QEvent::MouseMove, button);
    }
    void release(NSWindow& window, NSPoint point, Button button) override {
        mouse(window, point, QEvent::MouseButtonRelease, button);
    }
    void wheel(NSWindow& window, NSPoint point, double deltaY) override {
        const QPoint at = local(window, point);
        QWheelEvent event(at, handle(window)->mapToGlobal(at), {}, QPoint(0, int(deltaY * kNotch)),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(handle(window), &event);
    }
    void type(NSWindow& window, Key key) override {
        constexpr std::array keys = {Qt::Key_A,  Qt::Key_B,    Qt::Key_Space, Qt::Key_Escape,
                                     Qt::Key_Up, Qt::Key_Down, Qt::Key_Tab};
        QTest::keyClick(handle(window), keys.at(static_cast<std::size_t>(key)));
    }
    void resize(NSWindow& window, NSSize size) override {
        top(window).resize(int(size.width), int(size.height));
    }
    std::vector<std::string> openMenu(NSWindow& window, const std::string& title) override {
        const auto* const bar = top(window).findChild<QMenuBar*>();
        std::vector<std::string> titles;
        if (!bar) return titles;
        QList<QAction*> actions = bar->actions();
        for (QAction* const action : bar->actions()) {
            if (action->text().toStdString() != title) continue;
            Q_EMIT action->menu()->aboutToShow();
            actions = action->menu()->actions();
        }
        for (const QAction* const action : actions)
            titles.push_back(action->text().section(QLatin1Char('\t'), 0, 0).toStdString());
        return titles;
    }
    void move(NSWindow& window, NSPoint origin) override {
        QWidget& widget = top(window);
        const QPoint content = widget.mapToGlobal(QPoint(0, 0));
        widget.move(widget.pos() + QPoint(int(origin.x), int(origin.y)) - content);
    }
    void close(NSWindow& window) override { top(window).close(); }
    void takeAway(NSWindow& window) override { delete &top(window); }
    void blockByDialog(NSWindow& window) override {
        dialog_ = std::make_unique<QDialog>(&top(window));
        dialog_->setWindowModality(Qt::ApplicationModal);
        dialog_->show();
    }
    void setDesktopAppearance(Appearance appearance) override {
        QPalette palette(appearance == Appearance::dark ? QColor(50, 50, 50) : QColor(236, 236, 236));
        QApplication::setPalette(palette);
    }

    std::optional<CGRect> place(NSWindow& window, const std::string& view) override {
        const auto* const widget = top(window).findChild<QWidget*>(QString::fromStdString(view));
        if (!widget) return std::nullopt;
        const QPoint corner = widget->mapTo(&top(window), QPoint(0, 0));
        return CGRect{{double(corner.x()), double(corner.y())},
                      {double(widget->width()), double(widget->height())}};
    }
    std::optional<std::vector<std::string>> lines(NSWindow&, const std::string&) override {
        return std::nullopt;
    }
    std::optional<Colour> pixel(NSWindow& window, NSPoint point) override {
        settle();
        const QImage shown = top(window).grab().toImage();
        const double ratio = shown.devicePixelRatio();
        const double y = window.contentSize().height - point.y;
        const QColor colour = shown.pixelColor(int(point.x * ratio), int(y * ratio));
        return Colour{SystemColour::none, colour.redF(), colour.greenF(), colour.blueF(), 1};
    }

private:
    static QWidget& top(NSWindow& window) {
        for (QWidget* const widget : QApplication::topLevelWidgets())
            if (widget->windowTitle().toStdString() == window.title()) return *widget;
        throw std::logic_error("the window is not there");
    }
    static QWindow* handle(NSWindow& window) { return top(window).windowHandle(); }
    static QPoint local(NSWindow& window, NSPoint point) {
        return QPoint(int(point.x), int(window.contentSize().height - point.y));
    }
    // As the window system does it: no move comes before a press or a release.
    static void mouse(NSWindow& window, NSPoint point, QEvent::Type type, Button button, unsigned flags = 0,
                      int later = 10) {
        static int timestamp = 0;
        timestamp += later; // milliseconds
        const QPoint at = local(window, point);
        const bool moves = type == QEvent::MouseMove;
        qt_handleMouseEvent(handle(window), at, handle(window)->mapToGlobal(at),
                            type == QEvent::MouseButtonRelease ? Qt::NoButton : qtButton(button),
                            moves ? Qt::NoButton : qtButton(button), type, qtModifiers(flags), timestamp);
    }
    static Qt::MouseButton qtButton(Button button) {
        return button == Button::left    ? Qt::LeftButton
               : button == Button::right ? Qt::RightButton
                                         : Qt::MiddleButton;
    }
    static Qt::KeyboardModifiers qtModifiers(unsigned flags) {
        Qt::KeyboardModifiers result;
        result.setFlag(Qt::ShiftModifier, (flags & NSEventModifierFlagShift) != 0);
        result.setFlag(Qt::ControlModifier, (flags & NSEventModifierFlagCommand) != 0);
        return result;
    }
    void schedule() {
        QTimer::singleShot(1, qApp, [this] {
            // Not while a slow step sends its events, but only in what it waits for.
            const int level = QThread::currentThread()->loopLevel();
            if (level == levelOfStep_) return schedule();
            const auto step = steps_.front();
            steps_.erase(steps_.begin());
            if (!steps_.empty()) schedule();
            const int outer = std::exchange(levelOfStep_, level);
            step();
            levelOfStep_ = outer;
        });
    }

    QPalette desktop_ = QApplication::palette();
    std::shared_ptr<void> restored_{nullptr, [this](void*) { QApplication::setPalette(desktop_); }};
    zr::qt::Platform platform_{{.mainBundle = {}, .preferredLanguages = {{"en"}}}};
    std::unique_ptr<QDialog> dialog_;
    std::vector<std::function<void()>> steps_;
    int levelOfStep_ = -1; // how many event loops there were when the step began that is under way
};

} // namespace

std::unique_ptr<Adaptor> makeAdaptor() { return std::make_unique<QtAdaptor>(); }

std::shared_ptr<void> prepare(int& argc, char** argv) {
    // The same everywhere, whatever the desktop: no screen, one style.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setStyle("fusion");
    return std::make_shared<QApplication>(argc, argv);
}
const char* adaptorName() { return "Qt"; }

} // namespace zr::conformance
