// SPDX-License-Identifier: MIT
// What the progress sheet, alerts and interface files cost beside Qt's own dialogs; scripts/bench makes the
// table.

#include "Measuring.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSString.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ZRAlert.h>
#include <ZRUIKit/ZRLoadingWndCtl.h>
#include <ZRUIKitQt/Application.h>

#include <QApplication>
#include <QDialog>
#include <QEventLoop>
#include <QFile>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
#include <QUiLoader>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <thread>

namespace {

using namespace zr;
using bench::require;
using bench::settle;

using Clock = std::chrono::steady_clock;

// The window that the dialogs stand over.
struct KitParent {
    KitParent() {
        window =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSRect{{0, 0}, {640, 400}},
                           NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
        window->makeKeyAndOrderFront(nullptr);
        settle();
    }
    ~KitParent() {
        window->close();
        settle();
    }
    std::shared_ptr<NSWindow> window;
};

struct QtParent {
    QtParent() {
        window.resize(640, 400);
        window.show();
        settle();
    }
    QWidget window;
};

// Opening the sheet, painted, and closing it. Both dialogs are used again.

void openOurSheet(benchmark::State& state) {
    const KitParent parent;
    const auto sheet = make<ZRLoadingWndCtl>();
    for (auto _ : state) {
        sheet->startLoading_parent("Saving", parent.window.get());
        settle();
        sheet->endLoading();
        settle();
    }
    require(!sheet->window()->isVisible(), "a sheet that stays");
}

void openQProgressDialog(benchmark::State& state) {
    QtParent parent;
    QProgressDialog dialog("Saving", "Cancel", 0, 1000, &parent.window);
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setMinimumDuration(0);
    for (auto _ : state) {
        dialog.open();
        settle();
        dialog.reset();
        settle();
    }
    require(!dialog.isVisible(), "a dialog that stays");
}

// A thousand updates in a second from another thread: how much later than due the window comes to other things,
// at worst. Both show a number and a bar.

template <class Update>
double longestWait(const Update& update) {
    constexpr int kUpdates = 1000;
    constexpr auto kPace = std::chrono::milliseconds(1), kProbe = std::chrono::milliseconds(5);
    int handled = 0;
    QEventLoop loop;
    std::thread job([&] {
        auto next = Clock::now();
        for (int i = 1; i <= kUpdates; ++i) {
            std::this_thread::sleep_until(next += kPace);
            OnMainQueue([&, i] {
                update(double(i) / kUpdates);
                if (++handled == kUpdates) loop.quit();
            });
        }
    });
    Clock::duration longest{};
    auto due = Clock::now() + kProbe;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const auto now = Clock::now();
        longest = std::max(longest, now - due);
        due = now + kProbe;
    });
    probe.start(kProbe);
    loop.exec();
    job.join();
    return std::chrono::duration<double>(longest).count();
}

void updateOurSheet(benchmark::State& state) {
    const KitParent parent;
    const auto sheet = make<ZRLoadingWndCtl>();
    sheet->startLoading_parent("Saving", parent.window.get());
    settle();
    for (auto _ : state)
        state.SetIterationTime(longestWait([&](double progress) {
            sheet->updateProgress_ing(progress, stringWithFormat("%d", int(progress * 1000)));
        }));
    sheet->endLoading();
    settle();
}

void updateQProgressDialog(benchmark::State& state) {
    QtParent parent;
    QProgressDialog dialog("Saving", "Cancel", 0, 1000, &parent.window);
    dialog.setMinimumDuration(0);
    dialog.setAutoReset(false);
    // With window modality its setValue would run the event loop.
    dialog.open();
    dialog.setWindowModality(Qt::NonModal);
    settle();
    for (auto _ : state)
        state.SetIterationTime(longestWait([&](double progress) {
            dialog.setValue(int(progress * 1000));
            dialog.setLabelText(QString::number(int(progress * 1000)));
        }));
}

// The work of a thousand updates, each of them painted.

void paintOurUpdates(benchmark::State& state) {
    const KitParent parent;
    const auto sheet = make<ZRLoadingWndCtl>();
    sheet->startLoading_parent("Saving", parent.window.get());
    settle();
    int i = 0;
    for (auto _ : state) {
        i = (i + 1) % 1000;
        sheet->updateProgress_ing(i / 1000.0, stringWithFormat("%d", i));
        settle();
    }
    sheet->endLoading();
    settle();
}

void paintQProgressDialog(benchmark::State& state) {
    QtParent parent;
    QProgressDialog dialog("Saving", "Cancel", 0, 1000, &parent.window);
    dialog.setMinimumDuration(0);
    dialog.setAutoReset(false);
    dialog.open();
    dialog.setWindowModality(Qt::NonModal);
    settle();
    int i = 0;
    for (auto _ : state) {
        i = (i + 1) % 1000;
        dialog.setValue(i);
        dialog.setLabelText(QString::number(i));
        settle();
    }
}

// From the call to the answer, which comes as soon as the alert has been shown.

void runOurAlert(benchmark::State& state) {
    int answered = 0;
    ZRAlert::Actions actions;
    for (int i = 0; i < state.range(0); ++i)
        actions.push_back(
            ZRAlertAction::actionWithTitle_block(stringWithFormat("Action %d", i), [&] { ++answered; }));
    for (auto _ : state) {
        OnMainQueue([] { NSApplication::sharedApplication().stopModalWithCode(NSAlertFirstButtonReturn); });
        ZRAlert::Actions_title_info_accessoryView(actions, "Go on?", "It may take a while.", nullptr);
    }
    require(answered == int(state.iterations()), "an alert without its answer");
    settle();
}

void runQMessageBox(benchmark::State& state) {
    int answered = 0;
    for (auto _ : state) {
        QMessageBox box;
        box.setIcon(QMessageBox::Warning);
        box.setText("Go on?");
        box.setInformativeText("It may take a while.");
        QPushButton* first = nullptr;
        for (int i = 0; i < state.range(0); ++i) {
            auto* const button = box.addButton(QString("Action %1").arg(i), QMessageBox::AcceptRole);
            if (!first) first = button;
        }
        QTimer::singleShot(0, first, [first] { first->click(); });
        box.exec();
        if (box.clickedButton() == first) ++answered;
    }
    require(answered == int(state.iterations()), "a box without its answer");
    settle();
}

// The file, read and made into a window that is not shown.

void loadOurSheet(benchmark::State& state) {
    for (auto _ : state) {
        const auto sheet = make<ZRLoadingWndCtl>();
        require(sheet->window() != nullptr, "no window");
    }
}

void loadUiFile(benchmark::State& state) {
    QUiLoader loader;
    for (auto _ : state) {
        QFile file(ZR_PROGRESS_UI);
        const std::unique_ptr<QWidget> dialog(loader.load(&file));
        require(dialog != nullptr, "no dialog");
    }
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc, argv);
    const auto add = [](const char* name, void (*measure)(benchmark::State&)) {
        return benchmark::RegisterBenchmark(name, measure)->Unit(benchmark::kMicrosecond);
    };
    add("open/ZRLoadingWndCtl", openOurSheet)->Iterations(20);
    add("open/QProgressDialog", openQProgressDialog)->Iterations(20);
    add("update/ZRLoadingWndCtl", paintOurUpdates)->Iterations(1000);
    add("update/QProgressDialog", paintQProgressDialog)->Iterations(1000);
    add("wait/ZRLoadingWndCtl", updateOurSheet)->UseManualTime()->Iterations(1)->Repetitions(3);
    add("wait/QProgressDialog", updateQProgressDialog)->UseManualTime()->Iterations(1)->Repetitions(3);
    for (const int actions : {1, 5, 50}) {
        add(("alert " + std::to_string(actions) + "/ZRAlert").c_str(), runOurAlert)
            ->Arg(actions)
            ->Iterations(10);
        add(("alert " + std::to_string(actions) + "/QMessageBox").c_str(), runQMessageBox)
            ->Arg(actions)
            ->Iterations(10);
    }
    add("load/ZRLoadingWndCtl.xib", loadOurSheet)->Iterations(50);
    add("load/.ui file", loadUiFile)->Iterations(50);
    QApplication::setStyle("fusion");
    QApplication application(argc, argv);
    const zr::qt::Platform platform;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
