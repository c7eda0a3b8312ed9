// SPDX-License-Identifier: MIT
#include "HeldClient.h"
#include "InstalledSystem.h"
#include "WindowMouse.h"

#include <AppKit/DrawingSystem.h>
#include <AppKit/NSApplication.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSWindow.h>
#include <Foundation/Dispatch.h>
#include <Foundation/NSLog.h>
#include <Foundation/ValueGuard.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSApplication, .actions = {actionNamed<&NSApplication::terminate>("terminate:")},
               .outlets = {outletNamed<&NSApplication::setDelegate>("delegate")})

// What adaptors, and those below, see of the application.
struct NSApplication::Link final : port::ApplicationClient, ActionRouter {
    explicit Link(NSApplication& owner) : application(owner) {}

    void appearanceChanged() override {
        const auto held = retained(&application);
        const auto windows = application.windows_;
        for (const auto& window : windows) window->appearanceChanged();
    }
    void willEnd() override {
        const auto held = retained(&application);
        application.closeAllWindows();
    }
    std::shared_ptr<NSObject> takerOf(const SEL& action, NSObject* target, NSWindow* window) override {
        return application.takerOf(action, target, window);
    }
    std::shared_ptr<NSWindow> keyWindow() const override { return retained(application.keyWindow()); }
    bool isModal() const override { return application.modalWindow() != nullptr; }
    bool performKeyOfMainMenu(const NSEvent& event) override {
        const auto menu = isModal() ? nullptr : application.mainMenu_;
        return menu && menu->performKeyEquivalent(event);
    }
    std::shared_ptr<NSMenu> mainMenu() const override { return application.mainMenu_; }

    NSApplication& application;
};

NSApplication::NSApplication() : link_(std::make_unique<Link>(*this)) {}
NSApplication::~NSApplication() = default;

NSApplication& NSApplication::sharedApplication() {
    auto* const installed = installedSystem();
    if (!installed)
        throw std::logic_error("there is no NSApplication without a platform: make a zr::qt::Platform, a "
                               "zr::qt::Application or a zr::headless::Platform first");
    return *installed->application;
}

void NSApplication::run() {
    auto* const installed = systemFor("-[NSApplication run]");
    if (!installed) return;
    if (!terminating_) installed->windowSystem.run();
    terminating_ = false;
}

void NSApplication::terminate(NSObject*) {
    if (!installedSystem() || terminating_ || asksToTerminate_) return;
    if (const auto delegate = delegate_.lock()) {
        const ValueGuard asks(asksToTerminate_, true);
        const auto reply = delegate->applicationShouldTerminate(*this);
        if (reply == NSTerminateCancel) return;
    }
    terminating_ = true;
    if (const auto delegate = delegate_.lock()) delegate->applicationWillTerminate(*this);
    wakeTracking();
    wakeModal();
    if (auto* const installed = installedSystem()) installed->windowSystem.stop();
}

void NSApplication::setAppearance(std::optional<Appearance> appearance) {
    if (auto* const installed = systemFor("-[NSApplication setAppearance:]"))
        installed->windowSystem.setAppearance(appearance);
}

Appearance NSApplication::effectiveAppearance() const {
    auto* const installed = systemFor("-[NSApplication effectiveAppearance]");
    return installed ? installed->windowSystem.appearance() : Appearance::light;
}

NSWindow* NSApplication::keyWindow() const {
    const auto found = std::ranges::find_if(windows_, [](const auto& window) { return window->isKeyWindow(); });
    return found == windows_.end() ? nullptr : found->get();
}

NSWindow* NSApplication::modalWindow() const {
    return modals_.empty() ? nullptr : modals_.back()->window.lock().get();
}

void NSApplication::setMainMenu(const std::shared_ptr<NSMenu>& menu) {
    auto* const installed = systemFor("-[NSApplication setMainMenu:]");
    if (!installed) return;
    mainMenu_ = menu;
    const auto windows = windows_;
    for (const auto& window : windows) window->mainMenuChanged();
    auto& system = installed->windowSystem;
    if (!system.menusStandInWindows())
        system.setMainMenu(menu ? menu->shownForAllWindows() : std::vector<port::MenuItem>());
}

bool NSApplication::sendAction_to_from(const SEL& action, NSObject* target, NSObject* sender) {
    const auto taker = takerOf(action, target, keyWindow());
    return taker && taker->performSelector_withObject(action, sender);
}

std::shared_ptr<NSObject> NSApplication::takerOf(const SEL& action, NSObject* target, NSWindow* window) {
    if (target) return target->respondsToSelector(action) ? retained(target) : nullptr;
    for (NSResponder* chain : {window ? window->firstResponder() : nullptr, static_cast<NSResponder*>(this)})
        for (auto each = retained(chain); each; each = retained(each->nextResponder()))
            if (each->respondsToSelector(action)) return each;
    return nullptr;
}

void NSApplication::windowWasShown(NSWindow& window) {
    const auto held = retained(&window);
    if (std::ranges::find(windows_, held) == windows_.end()) windows_.push_back(held);
}

void NSApplication::windowWasClosed(NSWindow& window) {
    const auto held = retained(&window);
    wakeModal();
    if (std::erase(windows_, held) == 0 || held->isAuxiliary() || terminating_) return;
    if (std::ranges::any_of(windows_,
                            [](const auto& each) { return each->isVisible() && !each->isAuxiliary(); }))
        return;
    const auto delegate = delegate_.lock();
    if (delegate && delegate->applicationShouldTerminateAfterLastWindowClosed(*this).value_or(false))
        terminate(this);
}

void NSApplication::closeAllWindows() {
    terminating_ = true;
    while (!windows_.empty()) {
        const auto window = windows_.back();
        window->wentAway();
        std::erase(windows_, window);
    }
}

bool NSApplication::deliver(NSWindow& window, const NSEvent& event) {
    const auto held = retained(this);
    const auto heldWindow = retained(&window);
    if (tracking_) {
        auto& events = tracking_->events;
        const bool goesOn = event.type() == NSEventTypeLeftMouseDragged && !events.empty() &&
                            events.back().event.type() == NSEventTypeLeftMouseDragged &&
                            events.back().window.lock() == heldWindow;
        if (goesOn)
            events.back().event = event;
        else
            events.push_back({heldWindow, event});
        wakeTracking();
        return true;
    }
    auto& taken = installedSystem()->eventWasTaken;
    const bool outer = std::exchange(taken, true);
    {
        const ValueGuard inHand(eventsInHand_, eventsInHand_ + 1);
        contained(window, [&] { window.sendEvent(event); });
    }
    // The platform may have gone in the meantime.
    auto* const installed = installedSystem();
    const bool wasTaken = !installed || std::exchange(installed->eventWasTaken, outer);
    if (!tracking_) return wasTaken;
    // Whatever became of the events that were pulled, this one was taken.
    if (eventsInHand_ == 0) endTracking();
    return true;
}

std::optional<NSEvent> NSApplication::takeEvent(NSEventMask mask) {
    auto& events = tracking_->events;
    const auto found = std::ranges::find_if(
        events, [mask](const Waiting& waiting) { return (mask >> waiting.event.type() & 1) != 0; });
    if (found == events.end()) return std::nullopt;
    std::optional<NSEvent> event = std::move(found->event);
    const auto window = found->window.lock();
    events.erase(found);
    if (event->type() == NSEventTypeLeftMouseUp && window) window->mouse_->wasReleased();
    return event;
}

// The release that a pull waits for has gone elsewhere where the next press is here already.
bool NSApplication::anotherPressComesFirst(NSEventMask mask) const {
    for (const auto& waiting : tracking_->events) {
        if ((mask >> waiting.event.type() & 1) != 0) return false;
        if (waiting.event.type() == NSEventTypeLeftMouseDown) return true;
    }
    return false;
}

std::optional<NSEvent> NSApplication::nextEvent(NSWindow& window, NSEventMask mask) {
    const auto held = retained(this);
    const auto heldWindow = retained(&window);
    if (terminating_ || !window.isVisible()) return std::nullopt;
    if (!tracking_) {
        tracking_ = std::make_unique<Tracking>();
        tracking_->events.swap(leftOver_);
        tracking_->loop = installedSystem()->windowSystem.beginTracking();
    }
    const auto cancellations = window.cancellations_;
    std::optional<NSEvent> event;
    ++tracking_->pulls;
    do {
        if (terminating_ || window.cancellations_ != cancellations || anotherPressComesFirst(mask)) break;
        event = takeEvent(mask);
    } while (!event && tracking_->loop->wait());
    --tracking_->pulls;
    // Outside of any event nobody else ends the tracking.
    if (eventsInHand_ == 0)
        dispatch_async(dispatch_get_main_queue(), [held] {
            if (held->eventsInHand_ == 0 && held->tracking_ && held->tracking_->pulls == 0) held->endTracking();
        });
    return event;
}

int NSApplication::runModalForWindow(NSWindow& window) {
    const auto held = retained(&window);
    return runModal(
        held, [&] { return window.showModal(); }, [&] { return window.isVisible(); });
}

int NSApplication::runModal(const std::shared_ptr<NSWindow>& window,
                            const std::function<std::unique_ptr<port::TrackingLoop>()>& begin,
                            const std::function<bool()>& isShown) {
    const auto held = retained(this);
    if (!systemFor("-[NSApplication runModalForWindow:]") || terminating_) return NSModalResponseAbort;
    // A view that follows the pointer gets no more of it.
    const auto windows = windows_;
    for (const auto& each : windows) each->pressesEnd();
    // What is being handled now rests until the session has ended: input within it is handled at once.
    auto tracking = std::exchange(tracking_, nullptr);
    const int eventsInHand = std::exchange(eventsInHand_, 0);
    const bool deliversLeftOver = std::exchange(deliversLeftOver_, false);
    auto leftOver = std::exchange(leftOver_, {});
    const auto modal = std::make_shared<Modal>();
    modal->window = window;
    modals_.push_back(modal);
    modal->loop = begin();
    while (modal->loop && !modal->code && !terminating_ && isShown() && modal->loop->wait()) {
    }
    std::erase(modals_, modal);
    modal->loop.reset();

    if (installedSystem()) {
        tracking_ = std::move(tracking);
        eventsInHand_ = eventsInHand;
        deliversLeftOver_ = deliversLeftOver;
        leftOver.insert(leftOver.end(), leftOver_.begin(), leftOver_.end());
        leftOver_ = std::move(leftOver);
        wakeTracking();
    }
    return modal->code.value_or(NSModalResponseAbort);
}

void NSApplication::stopModalWithCode(int code) {
    // Those that have been stopped already are on their way out.
    for (auto modal = modals_.rbegin(); modal != modals_.rend(); ++modal) {
        if ((*modal)->code) continue;
        (*modal)->code = code;
        break;
    }
    wakeModal();
}

void NSApplication::beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(NSWindow& sheet,
                                                                                       NSWindow* window,
                                                                                       NSObject*, const SEL&,
                                                                                       void*) {
    if (window == &sheet) {
        NSLog("-[NSApplication beginSheet:modalForWindow:…]: %@ is to be a sheet over itself", &sheet);
        return;
    }
    if (window) {
        window->pressesEnd();
    } else {
        const auto windows = windows_;
        for (const auto& each : windows)
            if (each.get() != &sheet) each->cancelTracking();
    }
    sheet.showAsSheet(window);
}

void NSApplication::endSheet(NSWindow& sheet) { sheet.endSheet(); }

void NSApplication::wakeModal() {
    for (const auto& modal : modals_)
        if (modal->loop) modal->loop->wake();
}

void NSApplication::wakeTracking() {
    if (tracking_) tracking_->loop->wake();
}

// What was held back for others goes to them; what is left for our windows is delivered now.
void NSApplication::endTracking() {
    const auto held = retained(this);
    const auto ended = std::exchange(tracking_, nullptr);
    ended->loop.reset();
    std::ranges::move(ended->events, std::back_inserter(leftOver_));
    if (std::exchange(deliversLeftOver_, true)) return; // whoever does goes on
    while (!leftOver_.empty()) {
        const Waiting next = std::move(leftOver_.front());
        leftOver_.pop_front();
        if (const auto window = next.window.lock(); window && window->isVisible()) deliver(*window, next.event);
    }
    deliversLeftOver_ = false;
}

// Begins and ends with the window system.
struct ApplicationLife {
    static port::ApplicationClient& begin(port::WindowSystem& windowSystem) {
        if (installedSystem())
            throw std::logic_error("there is a platform already: the one before must go first");
        installDrawing(&windowSystem);
        setInstalledSystem(std::make_unique<InstalledSystem>(InstalledSystem{windowSystem}));
        auto& system = *installedSystem();
        system.application = make<NSApplication>();
        system.router = system.application->link_.get();
        return *system.application->link_;
    }
    static void end() {
        if (!installedSystem()) return;
        installedSystem()->application->link_->willEnd();
        setInstalledSystem(nullptr);
        installDrawing(nullptr);
    }
};

namespace port {

ApplicationClient& install(WindowSystem& windowSystem) { return ApplicationLife::begin(windowSystem); }
void uninstall() { ApplicationLife::end(); }

} // namespace port

} // namespace zr
