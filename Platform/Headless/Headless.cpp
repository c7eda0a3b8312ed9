// SPDX-License-Identifier: MIT
#include <FoundationBackends/Host.h>
#include <ZRUIKitHeadless/ControlPeers.h>
#include <ZRUIKitHeadless/Headless.h>
#include <ZRUIKitHeadless/Menus.h>
#include <ZRUIKitHeadless/Panels.h>
#include <ZRUIKitHeadless/TablePeers.h>

#include <cmath>
#include <utility>

namespace zr::headless {

namespace {

constexpr double kNanoseconds = 1e9;

// All wings.
class WholeSystem final : public System, public ControlPeers, public TablePeers, public PanelPeers {
public:
    explicit WholeSystem(Options given) : System(std::move(given)), PanelPeers(static_cast<System&>(*this)) {}
};

} // namespace

Platform::Platform(Options options) : system_(std::make_unique<WholeSystem>(std::move(options))) {
    // Throws where there is another platform, whose host is to stay.
    system_->application = &port::install(*system_);
    backend::install({.queues = system_->queues,
                      .mainBundle = system_->options.mainBundle,
                      .preferredLanguages = system_->options.preferredLanguages,
                      .userDefaults = system_->options.userDefaults});
}

Platform::~Platform() {
    system_->queues->dropAll(); // no block runs any more
    port::uninstall();
    backend::uninstall();
}

std::vector<Window*> Platform::windows() const { return {system_->windows.begin(), system_->windows.end()}; }

std::vector<OpenPanel*> Platform::openPanels() const {
    std::vector<OpenPanel*> panels;
    for (auto* const blocker : system_->blockers)
        if (auto* const panel = dynamic_cast<OpenPanel*>(blocker)) panels.push_back(panel);
    return panels;
}

std::vector<std::string> Platform::mainMenuItems(const std::vector<std::string>& menu) const {
    return describedMenu(system_->mainMenu, menu);
}

bool Platform::clickMainMenuItem(const std::vector<std::string>& titles) {
    const auto bar = system_->mainMenu;
    if (!chooseItem(bar, titles)) return false;
    display();
    return true;
}

double Platform::now() const { return static_cast<double>(system_->queues->now()) / kNanoseconds; }

void Platform::advance(double seconds) {
    const auto nanoseconds = static_cast<std::uint64_t>(std::llround(seconds * kNanoseconds));
    system_->queues->runMain(system_->queues->now() + nanoseconds);
    display();
}

std::size_t Platform::runMainQueue() {
    const auto count = system_->queues->runMain(system_->queues->now());
    display();
    return count;
}

std::size_t Platform::runGlobalQueue() { return system_->queues->runGlobal(); }

void Platform::runUntilIdle() {
    while (runGlobalQueue() + runMainQueue() > 0) {
    }
}

std::size_t Platform::waitingForGlobalQueue() const { return system_->queues->waitingForGlobal(); }

void Platform::script(std::function<void()> step) { system_->script.push_back(std::move(step)); }

bool Platform::starved() { return std::exchange(system_->starved, false); }

void Platform::display() { system_->display(); }

void Platform::setDesktopAppearance(Appearance appearance) {
    const auto before = system_->appearance();
    system_->options.appearance = appearance;
    system_->tellAppearance(before);
    display();
}

} // namespace zr::headless
