// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Panels.h>
#include <ZRUIKitQt/QtPortal.h>

#include <memory>

namespace zr::qt {

class PanelPeers : public port::PanelMaker {
public:
    explicit PanelPeers(std::shared_ptr<QtPortal> portal) : portal_(std::move(portal)) {}
    std::unique_ptr<port::OpenPanelPeer> showOpenPanel(const port::OpenPanel& panel, port::WindowPeer* over,
                                                       port::OpenPanelClient& client) override;

private:
    const std::shared_ptr<QtPortal> portal_; // null outside of a sandbox
};

} // namespace zr::qt
