// SPDX-License-Identifier: MIT
#pragma once

#include "PeerOf.h"
#include "WindowWidget.h"

#include <memory>

namespace zr::qt {

// What any window peer of this adaptor does.
struct TopLevelPeer {
    virtual ~TopLevelPeer() = default;
    virtual std::unique_ptr<port::ViewPeer> makeContent(port::ViewClient& client) = 0;
    virtual QWidget* topLevel() const = 0; // null once it is gone
    virtual std::unique_ptr<port::TrackingLoop> beginModal() = 0;
};

class WindowPeer final : public port::WindowPeer, public port::WindowBars, public TopLevelPeer {
public:
    WindowPeer(port::WindowClient& client, Size contentSize, port::WindowStyle style);
    ~WindowPeer() override;

    void show(bool activate) override;
    void showAsSheet(port::WindowPeer& parent) override;
    void endSheet() override;
    void hide() override;
    void close() override;
    void setTitle(const std::string& title) override;
    Size setContentSize(Size size) override;
    void setContentLimits(Size minimum, Size maximum) override;
    void scheduleUpdate() override;
    Point contentOriginOnScreen() const override;
    Point frameTopLeft() const override;
    void setFrameTopLeft(Point topLeft) override;
    double topInset() const override;
    port::WindowBars* bars() override { return this; }
    double backingScale() const override;

    void setToolbar(const std::vector<port::ToolbarItem>& items, port::ToolbarClient* client) override;
    void selectToolbarItem(std::optional<std::size_t> index) override;
    void setMenuBar(const std::vector<port::MenuItem>& items) override;

    std::unique_ptr<port::ViewPeer> makeContent(port::ViewClient& client) override;
    QWidget* topLevel() const override { return widget_; }
    std::unique_ptr<port::TrackingLoop> beginModal() override;

private:
    template <class Bar>
    void replace(Bar*& place, Bar* bar);       // the content keeps its size
    void limit(QSize smallest, QSize largest); // as wanted, but so that these sizes are allowed

    QPointer<WindowWidget> widget_;
    QPointer<QWidget> behind_; // which was in front before this one was shown as modal
    Size minimum_{}, maximum_{QWIDGETSIZE_MAX, QWIDGETSIZE_MAX}; // of the content
    port::WindowStyle style_;
};

// Heights of what may stand above a content, as far as they are known before there is a window.
port::WindowInsets usualInsets();

} // namespace zr::qt
