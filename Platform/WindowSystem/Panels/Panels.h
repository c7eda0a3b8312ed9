#pragma once

#include <WindowSystem/Windows.h>

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
};

} // namespace zr::port
