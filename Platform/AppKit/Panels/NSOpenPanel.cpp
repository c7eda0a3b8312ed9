// SPDX-License-Identifier: MIT
#include <AppKit/HeldClient.h>
#include <AppKit/NSOpenPanel.h>
#include <AppKit/NSWindow.h>
#include <AppKit/PanelSupport.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSLog.h>
#include <WindowSystem/Panels.h>

#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSOpenPanel)

struct NSOpenPanel::Client final : HeldClient<NSOpenPanel, port::OpenPanelClient> {
    using HeldClient::HeldClient;
    void peerChose(const std::vector<std::string>& paths) override { entered(&NSOpenPanel::chose, paths); }
};

NSOpenPanel::NSOpenPanel() = default;
NSOpenPanel::~NSOpenPanel() = default;

std::shared_ptr<NSOpenPanel> NSOpenPanel::openPanel() { return make<NSOpenPanel>(); }

std::optional<NSURL> NSOpenPanel::URL() const {
    return urls_.empty() ? std::nullopt : std::optional(urls_.front());
}

bool NSOpenPanel::canBeShownBy(std::string_view method) const {
    if (peer_) NSLog("%@ does nothing: the panel is shown already", method);
    return !peer_ && PanelSupport::hasSystemFor(method);
}

void NSOpenPanel::show(NSWindow* window) {
    const std::string prompt =
        prompt_.empty() ? NSBundle::mainBundle().localizedStringForKey_value_table("Open", "", std::nullopt)
                        : prompt_;
    client_ = std::make_unique<Client>(*this);
    auto& maker = dynamic_cast<port::PanelMaker&>(*PanelSupport::windowSystem());
    peer_ = maker.showOpenPanel({.prompt = prompt,
                                 .folder = directoryURL_ ? directoryURL_->path() : "",
                                 .files = canChooseFiles_,
                                 .folders = canChooseDirectories_,
                                 .several = allowsMultipleSelection_},
                                window ? PanelSupport::peerOf(*window) : nullptr, *client_);
}

int NSOpenPanel::runModal() {
    const auto held = retained(this);
    if (!canBeShownBy("-[NSOpenPanel runModal]")) return NSModalResponseCancel;
    urls_.clear();
    PanelSupport::runModal(
        [this] {
            show(nullptr);
            return peer_ ? peer_->beginModal() : nullptr;
        },
        [this] { return peer_ != nullptr; });
    peer_.reset();
    return urls_.empty() ? NSModalResponseCancel : NSModalResponseOK;
}

void NSOpenPanel::beginSheetModalForWindow_completionHandler(NSWindow* window,
                                                             std::function<void(int)> handler) {
    const auto held = retained(this);
    if (!canBeShownBy("-[NSOpenPanel beginSheetModalForWindow:completionHandler:]")) return;
    if (!window || !window->isVisible()) {
        const int response = runModal();
        if (handler) handler(response);
        return;
    }
    const auto heldWindow = retained(window);
    PanelSupport::endPresses(*window);
    urls_.clear();
    self_ = held;
    handler_ = std::move(handler);
    show(window);
}

void NSOpenPanel::chose(const std::vector<std::string>& paths) {
    if (!peer_) return;
    for (const auto& path : paths) urls_.push_back(NSURL::fileURLWithPath(path));
    if (!self_) { // runModal waits
        peer_.reset();
        PanelSupport::wakeModal();
        return;
    }
    // The handler may show the panel again, once this has gone.
    const auto peer = std::move(peer_);
    const auto client = std::move(client_);
    self_.reset();
    const auto handler = std::exchange(handler_, nullptr);
    if (handler) handler(urls_.empty() ? NSModalResponseCancel : NSModalResponseOK);
}

} // namespace zr
