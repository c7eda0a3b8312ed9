// SPDX-License-Identifier: MIT
// A window system of the consumer's own, which has windows and plain views and no control. It prints what it is
// asked for.

#include <AppKit/AppKit.h>
#include <FoundationBackends/Host.h>
#include <WindowSystem/Windows.h>
#include <ZRUIKit/SplitSliderView.h>

#include <cstdio>
#include <utility>

namespace {

using namespace zr::port;

struct Blank final : Bitmap {
    explicit Blank(zr::Size given) : size(given) {}
    zr::Size pixelSize() const override { return size; }
    const zr::Size size;
};

struct View final : ViewPeer {
    explicit View(ViewClient& given) : client(given) {}
    void setFrame(const zr::Rect&) override {}
    void setHidden(bool) override {}
    void raise() override {}
    void invalidate() override {}
    void focus() override { client.peerFocusChanged(true); }
    void setName(const std::string&) override {}

    ViewClient& client;
};

struct Window final : WindowPeer {
    Window(WindowClient& given, zr::Size size) : client(given), contentSize(size) {}
    ~Window() override { std::puts("gone"); }
    void show(bool) override {
        std::printf("shown: %s\n", title.c_str());
        client.peerKeyChanged(true);
    }
    void showAsSheet(WindowPeer&) override { std::puts("sheet"); }
    void endSheet() override {}
    void hide() override { std::puts("hidden"); }
    void close() override {
        std::puts("closed");
        client.peerClosed();
    }
    void setTitle(const std::string& given) override { title = given; }
    zr::Size setContentSize(zr::Size size) override { return contentSize = size; }
    void setContentLimits(zr::Size, zr::Size) override {}
    void scheduleUpdate() override { updateIsDue = true; }
    zr::Point contentOriginOnScreen() const override { return {100, 120}; }
    zr::Point frameTopLeft() const override { return {100, 100}; }
    void setFrameTopLeft(zr::Point) override {}
    double topInset() const override { return 20; }
    WindowBars* bars() override { return nullptr; }
    double backingScale() const override { return 1; }

    WindowClient& client;
    zr::Size contentSize;
    std::string title;
    bool updateIsDue = false;
};

struct NoWait final : TrackingLoop {
    bool wait() override { return false; }
    void wake() override {}
};

struct System final : WindowSystem {
    std::shared_ptr<Bitmap> loadBitmap(const std::string&) override {
        return std::make_shared<Blank>(zr::Size{8, 8});
    }
    std::shared_ptr<Bitmap> makeBitmap(zr::Size size, double, const OperationList&) override {
        return std::make_shared<Blank>(size);
    }
    zr::TextSize measure(std::string_view line, const zr::FontDescription& font) override {
        return {.width = font.size * static_cast<double>(line.size()), .ascent = font.size, .descent = 0};
    }
    double screenScale() const override { return 1; }
    std::unique_ptr<WindowPeer> makeWindow(WindowClient& client, zr::Size size, WindowStyle) override {
        auto made = std::make_unique<Window>(client, size);
        window = made.get();
        return made;
    }
    std::unique_ptr<ViewPeer> makeContentView(WindowPeer&, ViewClient& client) override { return made(client); }
    std::unique_ptr<ViewPeer> makeView(ViewPeer&, ViewClient& client) override { return made(client); }
    zr::Appearance appearance() const override { return zr::Appearance::light; }
    void setAppearance(std::optional<zr::Appearance>) override {}
    std::vector<Screen> screens() const override {
        return {{.frame = {{0, 0}, {800, 600}}, .visibleFrame = {{0, 0}, {800, 600}}}};
    }
    WindowInsets usualInsets() const override { return {.titleBar = 20}; }
    void run() override {}
    void stop() override {}
    std::unique_ptr<TrackingLoop> beginTracking() override { return std::make_unique<NoWait>(); }
    std::unique_ptr<TrackingLoop> beginModal(WindowPeer&) override { return std::make_unique<NoWait>(); }

    std::unique_ptr<ViewPeer> made(ViewClient& client) {
        auto view = std::make_unique<View>(client);
        content = view.get();
        return view;
    }

    Window* window = nullptr; // the last that was made, like the view
    View* content = nullptr;
};

struct Queues final : zr::backend::Queues {
    std::uint64_t now() const override { return 0; }
    void postToMain(std::uint64_t, std::function<void()>) override {}
    void postToGlobal(std::function<void()>) override {}
    bool isMainThread() const override { return true; }
};

} // namespace

int main() {
    System system;
    zr::backend::install({.queues = std::make_shared<Queues>(), .userDefaults = ""});
    install(system);

    const auto window = zr::make<zr::NSWindow>(
        &zr::NSWindow::initWithContentRect_styleMask_backing_defer, zr::NSMakeRect(0, 0, 400, 61),
        zr::NSWindowStyleMaskTitled | zr::NSWindowStyleMaskClosable, zr::NSBackingStoreBuffered, false);
    const auto slider = zr::make<zr::SplitSliderView>(zr::NSMakeRect(0, 0, 400, 61));
    window->setTitle("Elsewhere");
    window->setContentView(slider);
    window->makeKeyAndOrderFront(nullptr);
    std::printf("key: %d, %g by %g\n", window->isKeyWindow(), system.window->contentSize.width,
                system.window->contentSize.height);

    OperationList list;
    system.content->client.peerDraw(list, {{0, 0}, {400, 61}});
    OperationList own;
    slider->displayInCanvas(own, slider->bounds());
    std::printf("draws: %d, the same when asked itself: %d\n", !list.operations().empty(), own == list);

    const auto before = slider->rcClipLeft();
    const auto send = [&](zr::NSEventType type, double x) {
        system.window->client.peerEvent(
            {.type = type, .location = {x, 61 - zr::NSMidY(before)}, .clickCount = 1});
    };
    send(zr::NSEventTypeLeftMouseDown, zr::NSMidX(before));
    send(zr::NSEventTypeLeftMouseDragged, zr::NSMidX(before) + 50);
    send(zr::NSEventTypeLeftMouseUp, zr::NSMidX(before) + 50);
    std::printf("dragged to: %g\n", slider->selectionItem()->dStart());
    window->close();

    uninstall();
    zr::backend::uninstall();
}
