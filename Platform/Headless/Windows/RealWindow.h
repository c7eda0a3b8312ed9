// SPDX-License-Identifier: MIT
#pragma once

#include "Headless.h"
#include "View.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zr::headless {

// A window: seen by its client, and from outside.
class RealWindow final : public Window, public port::WindowPeer, public port::WindowBars {
public:
    RealWindow(System& platform, port::WindowClient& owner, Size size, port::WindowStyle frameStyle);
    ~RealWindow() override;

    // From outside
    const std::string& title() const override { return title_; }
    Size contentSize() const override { return contentSize_; }
    bool isVisible() const override { return visible; }
    bool send(InputEvent event) override;
    void resizeByUser(Size size) override;
    void moveByUser(Point origin) override;
    bool closeByUser() override;
    void setKey(bool key) override;
    void blockByModalDialog() override { client->peerBlocked(); }
    void destroy() override { client->peerGone(); }
    bool isSheet() const override { return sheetParent != nullptr; }
    std::vector<std::string> toolbarItems() const override;
    bool clickToolbarItem(std::string_view label) override;
    std::string selectedToolbarItem() const override;
    std::vector<std::string> menuItems(const std::vector<std::string>& menu) const override;
    bool clickMenuItem(const std::vector<std::string>& titles) override;

    // The peer
    void show(bool activate) override;
    void showAsSheet(port::WindowPeer& parent) override;
    void endSheet() override;
    void hide() override;
    void close() override { client->peerClosed(); }
    void setTitle(const std::string& title) override { title_ = title; }
    Size setContentSize(Size size) override;
    void setContentLimits(Size minimum, Size maximum) override;
    void scheduleUpdate() override { updateScheduled = true; }
    Point contentOriginOnScreen() const override { return origin_; }
    Point frameTopLeft() const override { return {origin_.x, origin_.y - topInset()}; }
    void setFrameTopLeft(Point topLeft) override;
    double topInset() const override;
    port::WindowBars* bars() override { return this; }
    double backingScale() const override;

    // Its bars
    void setMenuBar(const std::vector<port::MenuItem>& items) override { menuBar_ = items; }
    void setToolbar(const std::vector<port::ToolbarItem>& items, port::ToolbarClient* toolbarClient) override;
    void selectToolbarItem(std::optional<std::size_t> index) override { selectedToolbarItem_ = index; }

    bool isBlocked() const; // by a modal window, a panel or a sheet
    void display();
    void focus(View* view);

    System& system;
    port::WindowClient* client;
    std::shared_ptr<bool> alive = std::make_shared<bool>(true);
    bool visible = false;
    bool updateScheduled = false;
    int modal = 0; // 0: not; else counts up with each
    RealWindow* sheetParent = nullptr;
    View* root = nullptr;
    View* focused = nullptr;
    View* pressed = nullptr; // which has taken the press, and gets the release

protected:
    View* content() const override { return root; }

private:
    bool isBlockedByModalWindow() const;
    bool handle(const InputEvent& event);

    std::string title_;
    Size contentSize_;
    Size minimum_;
    Size maximum_{16777215, 16777215};
    Point origin_{100, 100};
    port::WindowStyle style_;
    bool key_ = false;
    std::vector<port::MenuItem> menuBar_;
    std::vector<port::ToolbarItem> toolbar_;
    port::ToolbarClient* toolbarClient_ = nullptr;
    std::optional<std::size_t> selectedToolbarItem_;
};

} // namespace zr::headless
