// SPDX-License-Identifier: MIT
#include "Panels.h"

#include <stdexcept>
#include <utility>

namespace zr::headless {

OpenPanelPeer::OpenPanelPeer(System& owner, port::OpenPanel given, RealWindow* over,
                             port::OpenPanelClient& user)
    : system_(owner)
    , panel_(std::move(given))
    , over_(over)
    , client_(user)
    , modal_(over ? 0 : ++owner.modalCount) {
    system_.blockers.push_back(this);
}

OpenPanelPeer::~OpenPanelPeer() { std::erase(system_.blockers, this); }

std::unique_ptr<port::TrackingLoop> OpenPanelPeer::beginModal() { return system_.beginTracking(); }

void OpenPanelPeer::choose(const std::vector<std::string>& paths) {
    if (paths.empty() || (paths.size() > 1 && !panel_.several))
        throw std::logic_error("not what this panel chooses");
    answer(paths);
}

void OpenPanelPeer::answer(const std::vector<std::string>& paths) {
    auto& platform = system_;
    client_.peerChose(paths);
    platform.display();
}

std::unique_ptr<port::OpenPanelPeer>
PanelPeers::showOpenPanel(const port::OpenPanel& panel, port::WindowPeer* over, port::OpenPanelClient& client) {
    return std::make_unique<OpenPanelPeer>(system_, panel, dynamic_cast<RealWindow*>(over), client);
}

} // namespace zr::headless
