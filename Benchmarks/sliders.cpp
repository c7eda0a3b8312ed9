// SPDX-License-Identifier: MIT
// What the sliders cost beside Qt's own, in a shown window. Run once for each QT_SCALE_FACTOR; scripts/bench
// makes the table.

#include "Allocations.h"
#include "Measuring.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSWindow.h>
#include <ZRUIKit/ProgressSliderView.h>
#include <ZRUIKit/SplitSliderView.h>
#include <ZRUIKitQt/Application.h>

#include <QApplication>
#include <QEventLoop>
#include <QPainter>
#include <QSlider>
#include <QStyleOptionSlider>
#include <QTest>
#include <QWindow>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

#include <malloc.h>

namespace {

using namespace zr;
using bench::require;
using bench::settle;

constexpr NSSize kSize = {1000, 60};
constexpr int kSteps = 400; // of one drag

using Clock = std::chrono::steady_clock;

class Empty final : public QWidget {
public:
    using QWidget::QWidget;
    int moves = 0;

protected:
    void mousePressEvent(QMouseEvent*) override {}
    void mouseMoveEvent(QMouseEvent*) override {
        ++moves;
        update();
    }
};

// One thing to measure: a widget that fills a shown window of its own, something to drag in it, and how often
// its owner was told.
class Subject {
public:
    virtual ~Subject() = default;
    virtual QWidget* widget() = 0;
    virtual void change() {}                     // something that the owner's own drawing has to follow
    virtual QPoint start() { return {500, 30}; } // of a drag
    int messages = 0;
};

class QtSubject : public Subject {
public:
    explicit QtSubject(QWidget* child) : child_(child) {
        window_.resize(int(kSize.width), int(kSize.height));
        child->setParent(&window_);
        child->setGeometry(window_.rect());
        window_.show();
        settle();
    }
    QWidget* widget() override { return child_; }

private:
    QWidget window_;
    QWidget* child_;
};

class EmptySubject final : public QtSubject {
public:
    EmptySubject() : EmptySubject(new Empty) {}

private:
    explicit EmptySubject(Empty* empty) : QtSubject(empty) {}
};

class QSliderSubject final : public QtSubject {
public:
    QSliderSubject() : QSliderSubject(new QSlider(Qt::Horizontal)) {}
    QPoint start() override {
        QStyleOptionSlider option;
        option.initFrom(slider_);
        option.orientation = Qt::Horizontal;
        option.minimum = slider_->minimum();
        option.maximum = slider_->maximum();
        option.sliderPosition = option.sliderValue = slider_->value();
        return slider_->style()
            ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, slider_)
            .center();
    }

private:
    explicit QSliderSubject(QSlider* slider) : QtSubject(slider), slider_(slider) {
        slider_->setRange(0, 1000);
        slider_->setValue(500);
        QObject::connect(slider_, &QSlider::sliderMoved, slider_, [this] { ++messages; });
        settle();
    }
    QSlider* slider_;
};

template <class Slider>
class KitSubject : public Subject,
                   public SliderViewDelegate,
                   public std::enable_shared_from_this<KitSubject<Slider>> {
public:
    void open() {
        slider_ = make<Slider>(NSRect{NSZeroPoint, kSize});
        slider_->setIdentifier("measured");
        slider_->setDelegate(this->shared_from_this());
        prepare(*slider_);
        window_ =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSRect{NSZeroPoint, kSize},
                           NSWindowStyleMaskTitled | NSWindowStyleMaskResizable, NSBackingStoreBuffered, false);
        // Like the other subjects' widgets, a child of the window's content.
        const auto content = make<NSView>(NSRect{NSZeroPoint, kSize});
        window_->setContentView(content);
        content->addSubview(slider_);
        window_->makeKeyAndOrderFront(nullptr);
        settle();
        for (QWidget* top : QApplication::topLevelWidgets())
            if (QWidget* const found = top->findChild<QWidget*>("measured"); found && top->isVisible())
                widget_ = found;
        require(widget_ != nullptr, "no widget");
    }
    ~KitSubject() override {
        if (window_) window_->close();
        settle();
    }
    virtual void prepare(Slider& slider) { slider.setSelection_length(0, 500); }
    void sliderView_didChangeValue(BaseSliderView&, double) override { ++messages; }
    QWidget* widget() override { return widget_; }
    void change() override { slider_->setNeedsDisplay(true); }

protected:
    std::shared_ptr<Slider> slider_;
    std::shared_ptr<NSWindow> window_;
    QWidget* widget_ = nullptr;
};

class Base final : public KitSubject<BaseSliderView> {};

class Progress final : public KitSubject<ProgressSliderView> {};

class Split final : public KitSubject<SplitSliderView> {
public:
    void prepare(SplitSliderView& slider) override { slider.setSelection_length(250, 500); }
    void splitSliderViewDragClipTo_bLeftClip(SplitSliderView&, bool) override { ++messages; }
    QPoint start() override {
        const NSRect handle = slider_->rcClipLeft();
        return {int(NSMidX(handle)), int(kSize.height - NSMidY(handle))};
    }
};

template <class S>
std::shared_ptr<S> subject() {
    auto made = std::make_shared<S>();
    if constexpr (requires { made->open(); }) made->open();
    return made;
}

// Full repaint

template <class S>
void repaint(benchmark::State& state) {
    const auto measured = subject<S>();
    QWidget* const widget = measured->widget();
    for (auto _ : state) {
        const auto begun = Clock::now();
        measured->change();
        widget->repaint();
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - begun).count());
        QCoreApplication::processEvents();
    }
}

// Drag

const auto kHop = static_cast<QEvent::Type>(QEvent::registerEventType());

// Notes when the window has been painted.
class Paints final : public QObject {
public:
    explicit Paints(QWidget* window) { window->installEventFilter(this); }
    int count = 0;
    Clock::time_point last;

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::UpdateRequest || std::exchange(within_, true)) return false;
        QCoreApplication::sendEvent(watched, event);
        last = Clock::now();
        ++count;
        within_ = false;
        return true;
    }

private:
    bool within_ = false;
};

// Moves the pointer once after everything that the last move led to, painting included, so that nothing is
// compressed. It also works inside a modal loop.
class Driver final : public QObject {
public:
    explicit Driver(Subject& subject)
        : window_(subject.widget()->window()->windowHandle())
        , from_(subject.start())
        , paints_(subject.widget()->window()) {}

    // Answers how long the steps took, from the event to the finished paint.
    Clock::duration drag(int steps) {
        left_ = steps;
        hops_ = 0;
        taken_ = {};
        begun_.reset();
        hop();
        mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton, from_);
        if (left_ >= 0) loop_.exec(); // else the press itself went on to the release
        return taken_;
    }
    int paints() const { return paints_.count; }

protected:
    bool event(QEvent* event) override {
        if (event->type() != kHop) return QObject::event(event);
        // What the last move led to may have asked for a paint only while this was waiting already.
        if (++hops_ % 2 != 0) {
            hop();
            return true;
        }
        if (begun_) taken_ += paints_.last - *begun_;
        if (--left_ < 0) {
            mouse(QEvent::MouseButtonRelease, Qt::NoButton, Qt::LeftButton, from_);
            loop_.quit();
            return true;
        }
        // To and fro, five points at a time.
        const int along = left_ % 80;
        const QPoint to = from_ + QPoint(5 * (along < 40 ? along : 80 - along), 0);
        hop();
        begun_ = Clock::now();
        mouse(QEvent::MouseMove, Qt::LeftButton, Qt::NoButton, to);
        return true;
    }

private:
    void hop() { QCoreApplication::postEvent(this, new QEvent(kHop), Qt::LowEventPriority - 1); }
    // As QTest does it, but without running the event loop.
    void mouse(QEvent::Type type, Qt::MouseButtons buttons, Qt::MouseButton button, QPoint at) {
        qt_handleMouseEvent(window_, at, window_->mapToGlobal(at), buttons, button, type, {}, ++timestamp_);
    }

    QWindow* window_;
    QPoint from_;
    Paints paints_;
    QEventLoop loop_;
    Clock::duration taken_{};
    std::optional<Clock::time_point> begun_;
    int left_ = 0;
    int hops_ = 0;
    int timestamp_ = 1000;
};

template <class S>
void drag(benchmark::State& state) {
    const auto measured = subject<S>();
    QWidget* const widget = measured->widget();
    Driver driver(*measured);
    const auto messages = [&] {
        if constexpr (std::is_same_v<S, EmptySubject>)
            return static_cast<Empty*>(widget)->moves;
        else
            return measured->messages;
    };
    // Once for warmth and to see that each step reaches the owner and the screen.
    const int before = messages();
    driver.drag(kSteps);
    settle();
    require(messages() - before >= kSteps, "a step without a message");
    require(driver.paints() >= kSteps, "a step without a paint");
    bench::resetAllocations();
    driver.drag(kSteps);
    const auto allocated = double(bench::allocations());
    bench::resetAllocations();
    driver.drag(2 * kSteps);
    // What the press and the release take, and this program's own two events of each step, cancel out.
    state.counters["allocations"] = (double(bench::allocations()) - allocated) / kSteps - 2;
    for (auto _ : state)
        state.SetIterationTime(std::chrono::duration<double>(driver.drag(kSteps)).count() / kSteps);
    settle();
}

// Memory of a thousand, shown and painted once

constexpr int kMany = 1000;

std::size_t inUse() { return mallinfo2().uordblks; }

void memoryOfQSliders(benchmark::State& state) {
    for (auto _ : state) {
        QWidget window;
        window.resize(int(kSize.width), int(kSize.height));
        window.show();
        settle();
        const auto before = inUse();
        for (int i = 0; i < kMany; ++i) {
            auto* const slider = new QSlider(Qt::Horizontal, &window);
            slider->setGeometry(window.rect());
            slider->show();
        }
        settle();
        state.counters["bytes"] = double(inUse() - before) / kMany;
    }
}

template <class Slider>
void memory(benchmark::State& state) {
    for (auto _ : state) {
        const auto content = make<NSView>(NSRect{NSZeroPoint, kSize});
        const auto window =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSRect{NSZeroPoint, kSize},
                           NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
        window->setContentView(content);
        window->makeKeyAndOrderFront(nullptr);
        settle();
        const auto before = inUse();
        for (int i = 0; i < kMany; ++i) {
            const auto slider = make<Slider>(NSRect{NSZeroPoint, kSize});
            slider->setSelection_length(0, 500);
            content->addSubview(slider);
        }
        settle();
        state.counters["bytes"] = double(inUse() - before) / kMany;
        window->close();
        settle();
    }
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc, argv);
    const auto add = [](const char* name, void (*measure)(benchmark::State&)) {
        return benchmark::RegisterBenchmark(name, measure)->Unit(benchmark::kMicrosecond);
    };
    add("repaint/empty widget", repaint<EmptySubject>)->UseManualTime()->Iterations(2000);
    add("repaint/QSlider", repaint<QSliderSubject>)->UseManualTime()->Iterations(2000);
    add("repaint/BaseSliderView", repaint<Base>)->UseManualTime()->Iterations(2000);
    add("repaint/SplitSliderView", repaint<Split>)->UseManualTime()->Iterations(2000);
    add("repaint/ProgressSliderView", repaint<Progress>)->UseManualTime()->Iterations(2000);
    add("drag/empty widget", drag<EmptySubject>)->UseManualTime()->Iterations(20);
    add("drag/QSlider", drag<QSliderSubject>)->UseManualTime()->Iterations(20);
    // The base class takes no events by itself.
    add("drag/SplitSliderView", drag<Split>)->UseManualTime()->Iterations(20);
    add("drag/ProgressSliderView", drag<Progress>)->UseManualTime()->Iterations(20);
    add("memory/QSlider", memoryOfQSliders)->Iterations(1);
    add("memory/BaseSliderView", memory<BaseSliderView>)->Iterations(1);
    add("memory/SplitSliderView", memory<SplitSliderView>)->Iterations(1);
    add("memory/ProgressSliderView", memory<ProgressSliderView>)->Iterations(1);
    QApplication::setStyle("fusion");
    QApplication application(argc, argv);
    const zr::qt::Platform platform;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
