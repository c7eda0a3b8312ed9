// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Windows.h>

#include <memory>
#include <string>
#include <vector>

namespace zr::port {

struct OpenPanel {
    std::string prompt{}; // what the button that chooses says
    std::string folder{}; // that is shown first; empty: the one that was shown last
    bool files = true;    // may be chosen,
    bool folders = false;
    bool several = false;
};

class OpenPanelClient {
public:
    virtual ~OpenPanelClient() = default;
    // Once. Absolute paths in the order in which they are shown; none: it was cancelled, or its window hidden.
    virtual void peerChose(const std::vector<std::string>& paths) = 0;
};

// Goes from the screen when it is destroyed.
class OpenPanelPeer {
public:
    virtual ~OpenPanelPeer() = default;
    // Of a panel in front of all windows: waits for it. They are blocked by the panel itself.
    virtual std::unique_ptr<TrackingLoop> beginModal() = 0;
};

// A window system is one of these, too.
class PanelMaker {
public:
    virtual ~PanelMaker() = default;
    // In front of the window, which gets no input meanwhile, or of all windows. Returns at once.
    virtual std::unique_ptr<OpenPanelPeer> showOpenPanel(const OpenPanel& panel, WindowPeer* over,
                                                         OpenPanelClient& client) = 0;
};

} // namespace zr::port
