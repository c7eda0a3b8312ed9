// SPDX-License-Identifier: MIT
// What trusted folders, user defaults and the preferences window cost beside the bare calls of the system and
// Qt's own widgets; scripts/bench makes the table.
//
//   folder_benchmarks --launch FILE   a program with a window that keeps its user defaults there; ends when the
//                                     window has been painted and has answered a click

#include "Measuring.h"

#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSUserDefaults.h>
#include <HostLibraries/GlobalFun.h>
#include <ZRUIKit/MASPreferencesWindowController.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>
#include <ZRUIKitQt/Application.h>

#include <QAction>
#include <QApplication>
#include <QEventLoop>
#include <QLabel>
#include <QMainWindow>
#include <QStackedWidget>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace zr;
using bench::require;
using bench::settle;
namespace fs = std::filesystem;

using Clock = std::chrono::steady_clock;

constexpr int kMany = 10'000;

// The folders that everything here is measured with, and their bookmarks.
class Folders {
public:
    Folders() {
        std::string pattern = (fs::temp_directory_path() / "zruikit-bench-XXXXXX").string();
        require(mkdtemp(pattern.data()) != nullptr, "no temporary folder");
        root_ = pattern;
        for (int i = 0; i <= kMany; ++i) {
            paths.push_back((root_ / ("Recordings of the year " + std::to_string(i))).string());
            fs::create_directory(paths.back());
            auto bookmark = GlobalFun::BookmarkDataForURL(NSURL::fileURLWithPath(paths.back()));
            require(bookmark.has_value(), "no bookmark");
            if (i < kMany) bookmarks.emplace_back(std::move(*bookmark));
        }
    }
    ~Folders() {
        std::error_code ignored;
        fs::remove_all(root_, ignored);
    }
    Folders(const Folders&) = delete;
    Folders& operator=(const Folders&) = delete;

    PropertyList::Array first(int count) const { return {bookmarks.begin(), bookmarks.begin() + count}; }
    std::string file(const char* name) const { return (root_ / name).string(); }

    std::vector<std::string> paths;
    PropertyList::Array bookmarks;

private:
    fs::path root_;
};

const Folders& folders() {
    static const Folders all;
    return all;
}

void store(const PropertyList::Array& bookmarks) {
    NSUserDefaults::standardUserDefaults()->setObject_forKey(bookmarks, "BookmarksKey");
    NSUserDefaults::standardUserDefaults()->synchronize();
}

// Restores nothing by itself, beside what is measured.
class QuietPane : public ZRTrustedPathViewCtl {
public:
    ZR_CLASS(QuietPane, ZRTrustedPathViewCtl)
    void asyncLoadDefaultBookMarksWithLaunch() override {}
};
ZR_CLASS_TABLE(QuietPane)

// Restoring, as at launch on a thread of its own, beside the calls of the system that it cannot do without.

void restoreFolders(benchmark::State& state) {
    store(folders().first(int(state.range(0))));
    const auto pane = make<QuietPane>();
    for (auto _ : state) {
        std::size_t count = 0;
        Clock::duration took{};
        std::thread([&] {
            const auto begin = Clock::now();
            count = ZRTrustedPathViewCtl::restoreDefaultsBookmarks(*pane).size();
            took = Clock::now() - begin;
        }).join();
        state.SetIterationTime(std::chrono::duration<double>(took).count());
        require(count == std::size_t(state.range(0)), "a folder that was not restored");
        settle();
    }
}

void callTheSystem(benchmark::State& state) {
    for (auto _ : state) {
        for (int i = 0; i < state.range(0); ++i) {
            const char* path = folders().paths[std::size_t(i)].c_str();
            struct stat item {};
            struct statfs system {};
            struct statx birth {};
            alignas(file_handle) std::array<char, sizeof(file_handle) + MAX_HANDLE_SZ> room{};
            auto* const handle = new (room.data()) file_handle;
            handle->handle_bytes = MAX_HANDLE_SZ;
            int mount = 0;
            require(access(path, F_OK) == 0, "access");
            const int file = open(path, O_PATH | O_CLOEXEC);
            require(fstat(file, &item) == 0 && fstatfs(file, &system) == 0, "fstatfs");
            if (name_to_handle_at(file, "", handle, &mount, AT_EMPTY_PATH) != 0)
                require(statx(file, "", AT_EMPTY_PATH, STATX_BTIME | STATX_INO, &birth) == 0, "statx");
            close(file);
            require(stat(path, &item) == 0, "stat");
        }
    }
}

// How much later than due the window comes to other things, at worst, while the folders are restored and the
// overlay follows; and while nothing is done for as long.

void waitForAnEvent(benchmark::State& state) {
    constexpr auto kPause = std::chrono::milliseconds(200), kProbe = std::chrono::milliseconds(5);
    store(folders().first(int(state.range(0))));
    const auto pane = make<QuietPane>();
    const auto window =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSRect{{0, 0}, {520, 320}},
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    window->setContentView(pane->view());
    window->makeKeyAndOrderFront(nullptr);
    settle();
    for (auto _ : state) {
        QEventLoop loop;
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
        std::size_t restored = 0;
        if (state.range(0))
            pane->asyncLoadDefaultsBookmarks([&](const auto& found) {
                restored = found.size();
                loop.quit();
            });
        else
            QTimer::singleShot(kPause, &loop, &QEventLoop::quit);
        loop.exec();
        require(restored == std::size_t(state.range(0)), "a folder that was not restored");
        state.SetIterationTime(std::chrono::duration<double>(longest).count());
    }
    window->close();
    settle();
}

// One folder more.

void addAFolder(benchmark::State& state) {
    const auto pane = make<QuietPane>();
    ZRTrustedPathViewCtl::Folders listed;
    for (int i = 0; i < kMany; ++i) listed.push_back(NSURL::fileURLWithPath(folders().paths[std::size_t(i)]));
    const auto last = NSURL::fileURLWithPath(folders().paths.back());
    for (auto _ : state) {
        state.PauseTiming();
        pane->setAryItems(listed);
        store(folders().bookmarks);
        state.ResumeTiming();
        pane->addToBookmarkWithURL(last);
        state.PauseTiming();
        require(pane->aryItems().size() == kMany + 1, "a folder that was not added");
        settle();
        state.ResumeTiming();
    }
}

void rewriteTheList(benchmark::State& state) {
    bool other = false;
    for (auto _ : state) {
        state.PauseTiming();
        auto list = folders().bookmarks;
        list.emplace_back(NSData{std::uint8_t(other = !other)});
        state.ResumeTiming();
        store(list);
    }
}

// Reaching the disk.

void synchronize(benchmark::State& state) {
    store(folders().first(int(state.range(0))));
    const auto defaults = NSUserDefaults::standardUserDefaults();
    std::int64_t count = 0;
    for (auto _ : state) {
        defaults->setObject_forKey(++count, "count");
        require(defaults->synchronize(), "synchronize");
    }
}

void writePlainly(benchmark::State& state) {
    store(folders().first(int(state.range(0))));
    std::ifstream stream(folders().file("config/app.plist"), std::ios::binary);
    const std::vector<char> bytes(std::istreambuf_iterator<char>(stream), {});
    require(!bytes.empty(), "nothing to write");
    const std::string target = folders().file("plain"), temporary = target + ".new";
    for (auto _ : state) {
        const int file = open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        require(write(file, bytes.data(), bytes.size()) == ssize_t(bytes.size()) && fsync(file) == 0, "write");
        close(file);
        require(rename(temporary.c_str(), target.c_str()) == 0, "rename");
        const int folder = open(fs::path(target).parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        require(fsync(folder) == 0, "flush");
        close(folder);
    }
}

// From one pane to the other and back, painted.

class Pane : public NSViewController, public MASPreferencesViewController {
public:
    ZR_CLASS(Pane, NSViewController)
    bool initWithName_size(const std::string& name, const NSSize& size) {
        name_ = name;
        setView(make<NSView>(NSRect{NSZeroPoint, size}));
        return true;
    }
    std::string identifier() const override { return name_; }
    std::shared_ptr<NSImage> toolbarItemImage() const override { return nullptr; }
    std::string toolbarItemLabel() const override { return name_; }

private:
    std::string name_;
};
ZR_CLASS_TABLE(Pane)

constexpr NSSize kSmall = {400, 300}, kLarge = {520, 420};

void switchOurPanes(benchmark::State& state) {
    const std::vector<std::shared_ptr<NSObject>> panes = {make<Pane>(&Pane::initWithName_size, "A", kSmall),
                                                          make<Pane>(&Pane::initWithName_size, "B", kLarge)};
    const auto controller =
        make<MASPreferencesWindowController>(&MASPreferencesWindowController::initWithViewControllers, panes);
    controller->showWindow(nullptr);
    settle();
    for (auto _ : state) {
        for (const std::uint64_t index : {1U, 0U}) {
            controller->selectControllerAtIndex(index);
            settle();
        }
    }
    controller->close();
    settle();
}

void switchQtPanes(benchmark::State& state) {
    QMainWindow window;
    QStackedWidget stack;
    window.setCentralWidget(&stack);
    auto* const bar = window.addToolBar("panes");
    QWidget small, large;
    std::array<QWidget*, 2> panes = {&small, &large};
    std::array<QAction*, 2> items{};
    for (const std::size_t i : {0U, 1U}) {
        const NSSize size = i == 0 ? kSmall : kLarge;
        panes[i]->setFixedSize(int(size.width), int(size.height));
        stack.addWidget(panes[i]);
        items[i] = bar->addAction(i == 0 ? "A" : "B");
        items[i]->setCheckable(true);
        QObject::connect(items[i], &QAction::triggered, [&, i] {
            const NSSize wanted = i == 0 ? kSmall : kLarge;
            stack.setCurrentIndex(int(i));
            window.setWindowTitle(items[i]->text());
            items[i]->setChecked(true);
            items[1 - i]->setChecked(false);
            window.setFixedSize(int(wanted.width), int(wanted.height) + bar->height());
        });
    }
    window.show();
    settle();
    for (auto _ : state) {
        for (const std::size_t index : {1U, 0U}) {
            items[index]->trigger();
            settle();
        }
    }
}

// From the start of a program to the answer to its first click.

class Clicked : public NSView {
public:
    ZR_CLASS(Clicked, NSView)
    void mouseDown(const NSEvent&) override { isClicked = true; }
    bool isClicked = false;
};
ZR_CLASS_TABLE(Clicked)

int launch(int argc, char** argv) {
    QApplication application(argc, argv);
    zr::qt::Options options;
    options.userDefaults = argv[2];
    const zr::qt::Platform platform(options);
    const auto trusted = make<ZRTrustedPathViewCtl>();
    const auto view = make<Clicked>(NSRect{{0, 0}, {640, 400}});
    const auto window =
        make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSRect{{0, 0}, {640, 400}},
                       NSWindowStyleMaskTitled, NSBackingStoreBuffered, false);
    window->setTitle("launched");
    window->setContentView(view);
    window->makeKeyAndOrderFront(nullptr);
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->windowTitle() != "launched" || !QTest::qWaitForWindowExposed(widget)) continue;
        QTest::mouseClick(widget->windowHandle(), Qt::LeftButton, {}, QPoint(100, 100));
    }
    std::_Exit(view->isClicked ? 0 : 1);
}

void launchProgram(benchmark::State& state, const std::string& program) {
    const std::string file = folders().file(state.range(0) ? "many.plist" : "none.plist");
    if (state.range(0)) {
        const auto defaults = make<NSUserDefaults>(&NSUserDefaults::initWithFile, fs::path(file));
        defaults->setObject_forKey(folders().first(int(state.range(0))), "BookmarksKey");
        require(defaults->synchronize(), "synchronize");
    }
    for (auto _ : state) {
        const pid_t child = fork();
        if (child == 0) {
            execl(program.c_str(), program.c_str(), "--launch", file.c_str(), nullptr);
            _exit(1);
        }
        int status = 1;
        require(waitpid(child, &status, 0) == child && status == 0, "a launch");
    }
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setStyle("fusion");
    if (argc == 3 && std::string(argv[1]) == "--launch") return launch(argc, argv);
    benchmark::Initialize(&argc, argv);
    const auto add = [](const std::string& name, auto measure) {
        return benchmark::RegisterBenchmark(name.c_str(), measure)->Unit(benchmark::kMicrosecond);
    };
    for (const int count : {100, 1'000, kMany}) {
        const int times = kMany / count;
        const std::string restore = "restore " + std::to_string(count);
        add(restore + "/trusted folders", restoreFolders)->Arg(count)->UseManualTime()->Iterations(times);
        add(restore + "/system calls", callTheSystem)->Arg(count)->Iterations(times);
    }
    for (const int count : {0, kMany})
        add("wait/" + std::to_string(count), waitForAnEvent)->Arg(count)->UseManualTime()->Iterations(1);
    add("add/trusted folder", addAFolder)->Iterations(3);
    add("add/rewriting the list", rewriteTheList)->Iterations(3);
    for (const int count : {0, kMany}) {
        const std::string synchronizing = "synchronize " + std::to_string(count);
        add(synchronizing + "/user defaults", synchronize)->Arg(count)->Iterations(5);
        add(synchronizing + "/plain file", writePlainly)->Arg(count)->Iterations(5);
    }
    add("switch/preferences window", switchOurPanes)->Iterations(20);
    add("switch/QStackedWidget", switchQtPanes)->Iterations(20);
    const std::string program = fs::read_symlink("/proc/self/exe").string();
    for (const int count : {0, kMany})
        add("launch/" + std::to_string(count),
            [program](benchmark::State& state) { launchProgram(state, program); })
            ->Arg(count)
            ->Iterations(8)
            ->UseRealTime();
    QApplication application(argc, argv);
    zr::qt::Options options;
    options.userDefaults = folders().file("config/app.plist");
    const zr::qt::Platform platform(options);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
