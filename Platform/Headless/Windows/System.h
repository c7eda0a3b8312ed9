// SPDX-License-Identifier: MIT
#pragma once

#include "RealWindow.h"

#include <ZRUIKitHeadless/HeadlessQueues.h>
#include <ZRUIKitHeadless/RecordingCanvas.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zr::headless {

// What keeps the user's input from windows, beside other windows: panels.
class Blocker {
public:
    virtual ~Blocker() = default;
    virtual bool isOver(const RealWindow& window) const = 0; // it alone
    virtual int modal() const = 0;   // of one over all windows: counts up with modal windows; 0: of one alone
    virtual void windowLeaves() = 0; // the one that it is over
};

// The window system but for its controls, tables and panels, which the wings above bring.
class System : public port::WindowSystem {
public:
    explicit System(Options given);

    std::shared_ptr<port::Bitmap> loadBitmap(const std::string& path) override { return readBitmap(path); }
    std::shared_ptr<port::Bitmap> makeBitmap(Size size, double scale,
                                             const port::OperationList& operations) override {
        return drawnBitmap(size, scale, appearance(), operations);
    }
    TextSize measure(std::string_view line, const FontDescription& font) override;
    double screenScale() const override { return options.scale; }

    std::unique_ptr<port::WindowPeer> makeWindow(port::WindowClient& client, Size contentSize,
                                                 port::WindowStyle style) override;
    std::unique_ptr<port::ViewPeer> makeContentView(port::WindowPeer& window,
                                                    port::ViewClient& client) override;
    std::unique_ptr<port::ViewPeer> makeView(port::ViewPeer& parent, port::ViewClient& client) override;

    Appearance appearance() const override { return ownAppearance_.value_or(options.appearance); }
    void setAppearance(std::optional<Appearance> appearance) override;
    std::vector<port::Screen> screens() const override;
    port::WindowInsets usualInsets() const override { return {.titleBar = 22, .menuBar = 24, .toolbar = 56}; }
    bool menusStandInWindows() const override { return options.menusInWindows; }
    void setMainMenu(const std::vector<port::MenuItem>& items) override { mainMenu = items; }
    void run() override;
    void stop() override { stopped = true; }
    std::unique_ptr<port::TrackingLoop> beginTracking() override;
    std::unique_ptr<port::TrackingLoop> beginModal(port::WindowPeer& window) override;

    void display();
    void tellAppearance(Appearance before);
    bool has(const RealWindow* window) const { return std::ranges::find(windows, window) != windows.end(); }
    void giveKeyBack(); // to the window shown last
    void windowLeaves(const RealWindow& window);

    Options options;
    std::shared_ptr<Queues> queues;
    port::ApplicationClient* application = nullptr;
    std::vector<RealWindow*> windows;
    std::vector<Blocker*> blockers; // in the order in which they were shown
    std::vector<port::MenuItem> mainMenu;
    std::deque<std::function<void()>> script;
    bool starved = false;
    bool stopped = false;
    int modalCount = 0;

private:
    std::optional<Appearance> ownAppearance_;
};

} // namespace zr::headless
