// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Panels.h>
#include <ZRUIKitHeadless/System.h>

namespace zr::headless {

class OpenPanelPeer final : public port::OpenPanelPeer, public OpenPanel, public Blocker {
public:
    OpenPanelPeer(System& owner, port::OpenPanel given, RealWindow* over, port::OpenPanelClient& user);
    ~OpenPanelPeer() override;

    std::unique_ptr<port::TrackingLoop> beginModal() override;

    const std::string& prompt() const override { return panel_.prompt; }
    const std::string& folder() const override { return panel_.folder; }
    bool choosesFiles() const override { return panel_.files; }
    bool choosesFolders() const override { return panel_.folders; }
    bool choosesSeveral() const override { return panel_.several; }
    Window* window() const override { return over_; }
    void choose(const std::vector<std::string>& paths) override;
    void cancel() override { answer({}); }

    bool isOver(const RealWindow& window) const override { return over_ == &window; }
    int modal() const override { return modal_; }
    void windowLeaves() override { cancel(); }

private:
    void answer(const std::vector<std::string>& paths);

    System& system_;
    port::OpenPanel panel_;
    RealWindow* over_; // null: all
    port::OpenPanelClient& client_;
    int modal_;
};

class PanelPeers : public port::PanelMaker {
public:
    explicit PanelPeers(System& system) : system_(system) {}
    std::unique_ptr<port::OpenPanelPeer> showOpenPanel(const port::OpenPanel& panel, port::WindowPeer* over,
                                                       port::OpenPanelClient& client) override;

private:
    System& system_;
};

} // namespace zr::headless
