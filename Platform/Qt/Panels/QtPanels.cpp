// SPDX-License-Identifier: MIT
#include "QtOpenPanel.h"
#include "QtPanels.h"
#include "QtPortalPanel.h"

#include <ZRUIKitQt/QtWindow.h>

namespace zr::qt {

std::unique_ptr<port::OpenPanelPeer>
PanelPeers::showOpenPanel(const port::OpenPanel& panel, port::WindowPeer* over, port::OpenPanelClient& client) {
    auto* const topLevel = dynamic_cast<TopLevelPeer*>(over);
    QWidget* const widget = topLevel ? topLevel->topLevel() : nullptr;
    if (portal_)
        return std::make_unique<OpenPanelPeer<PortalPanel>>(new PortalPanel(panel, widget, client, *portal_));
    return std::make_unique<OpenPanelPeer<FileDialog>>(new FileDialog(panel, widget, client));
}

} // namespace zr::qt
