// SPDX-License-Identifier: MIT
#pragma once

#include <ZRUIKitQt/ControlPeers.h>
#include <ZRUIKitQt/QtPanels.h>
#include <ZRUIKitQt/QtTable.h>

#include <QApplication>
#include <QObject>
#include <QPalette>

#include <memory>

namespace zr::qt {

// The port on Qt: makes peers, measures text, reads pictures, and follows the palette.
class QtWindowSystem final : public QObject,
                             public port::WindowSystem,
                             public ControlPeers,
                             public TablePeers,
                             public PanelPeers {
public:
    explicit QtWindowSystem(std::shared_ptr<QtPortal> portal); // null outside of a sandbox
    ~QtWindowSystem() override;

    void setClient(port::ApplicationClient* client) { client_ = client; }

    std::shared_ptr<port::Bitmap> loadBitmap(const std::string& path) override;
    std::shared_ptr<port::Bitmap> makeBitmap(Size size, double scale,
                                             const port::OperationList& operations) override;
    TextSize measure(std::string_view line, const FontDescription& font) override;
    std::unique_ptr<port::WindowPeer> makeWindow(port::WindowClient& client, Size contentSize,
                                                 port::WindowStyle style) override;
    std::unique_ptr<port::ViewPeer> makeContentView(port::WindowPeer& window,
                                                    port::ViewClient& client) override;
    std::unique_ptr<port::ViewPeer> makeView(port::ViewPeer& parent, port::ViewClient& client) override;
    Appearance appearance() const override;
    void setAppearance(std::optional<Appearance> appearance) override;
    std::vector<port::Screen> screens() const override;
    port::WindowInsets usualInsets() const override;
    double screenScale() const override { return qApp->devicePixelRatio(); }
    void run() override;
    void stop() override;
    std::unique_ptr<port::TrackingLoop> beginTracking() override;
    std::unique_ptr<port::TrackingLoop> beginModal(port::WindowPeer& window) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    port::ApplicationClient* client_ = nullptr;
    QPalette desktopPalette_;
    bool hasOwnPalette_ = false;
};

} // namespace zr::qt
