// SPDX-License-Identifier: MIT
#include "QtWindowSystem.h"

#include <ZRUIKitQt/Appearance.h>
#include <ZRUIKitQt/QtCanvas.h>
#include <ZRUIKitQt/QtDueWork.h>
#include <ZRUIKitQt/QtTrackingLoop.h>
#include <ZRUIKitQt/QtWindow.h>

#include <QAbstractEventDispatcher>
#include <QFontMetricsF>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

#include <utility>

namespace zr::qt {

namespace {

QPalette lightPalette() {
    QPalette palette(QColor(0xec, 0xec, 0xec));
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Button, QColor(0xf4, 0xf4, 0xf4));
    return palette;
}

QPalette darkPalette() {
    const QColor window(0x32, 0x32, 0x32), text(0xe8, 0xe8, 0xe8), faint(0x8a, 0x8a, 0x8a);
    QPalette palette(QColor(0x46, 0x46, 0x46), window);
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x1e));
    palette.setColor(QPalette::AlternateBase, QColor(0x28, 0x28, 0x28));
    palette.setColor(QPalette::ToolTipBase, window);
    for (const auto role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, faint);
    }
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Link, QColor(0x41, 0x9c, 0xff));
    return palette;
}

} // namespace

QtWindowSystem::QtWindowSystem(std::shared_ptr<QtPortal> portal) : PanelPeers(std::move(portal)) {
    qApp->installEventFilter(this);
    auto* const dispatcher = QAbstractEventDispatcher::instance();
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, doDueWork);
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, doDueWork);
}

QtWindowSystem::~QtWindowSystem() {
    qApp->removeEventFilter(this);
    if (hasOwnPalette_) QApplication::setPalette(desktopPalette_);
}

std::shared_ptr<port::Bitmap> QtWindowSystem::loadBitmap(const std::string& path) {
    QImage image(QString::fromStdString(path));
    if (image.isNull()) return nullptr;
    // Qt has seen an "@2x" in the name; who draws it knows what it stands for.
    image.setDevicePixelRatio(1);
    return std::make_shared<QtBitmap>(image.convertToFormat(QImage::Format_ARGB32_Premultiplied));
}

std::shared_ptr<port::Bitmap> QtWindowSystem::makeBitmap(Size size, double scale,
                                                         const port::OperationList& operations) {
    return paintedBitmap(size, scale, appearance(), operations);
}

TextSize QtWindowSystem::measure(std::string_view line, const FontDescription& font) {
    const QFontMetricsF metrics(fontFor(font));
    const QString text = QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size()));
    return {metrics.horizontalAdvance(text), metrics.ascent(), metrics.descent()};
}

std::unique_ptr<port::WindowPeer> QtWindowSystem::makeWindow(port::WindowClient& client, Size contentSize,
                                                             port::WindowStyle style) {
    return std::make_unique<WindowPeer>(client, contentSize, style);
}

std::unique_ptr<port::ViewPeer> QtWindowSystem::makeContentView(port::WindowPeer& window,
                                                                port::ViewClient& client) {
    return dynamic_cast<TopLevelPeer&>(window).makeContent(client);
}

std::unique_ptr<port::ViewPeer> QtWindowSystem::makeView(port::ViewPeer& parent, port::ViewClient& client) {
    return std::make_unique<PlainPeer>(parent, client);
}

Appearance QtWindowSystem::appearance() const { return appearanceOf(QApplication::palette()); }

void QtWindowSystem::setAppearance(std::optional<Appearance> appearance) {
    if (!hasOwnPalette_) desktopPalette_ = QApplication::palette();
    hasOwnPalette_ = appearance.has_value();
    if (!appearance)
        QApplication::setPalette(desktopPalette_);
    else
        QApplication::setPalette(*appearance == Appearance::dark ? darkPalette() : lightPalette());
}

std::vector<port::Screen> QtWindowSystem::screens() const {
    const auto rectOf = [](const QRect& rect) {
        return Rect{{double(rect.x()), double(rect.y())}, {double(rect.width()), double(rect.height())}};
    };
    std::vector<port::Screen> found;
    for (const QScreen* screen : QGuiApplication::screens()) // the primary one first
        found.push_back({rectOf(screen->geometry()), rectOf(screen->availableGeometry())});
    return found;
}

void QtWindowSystem::run() { QApplication::exec(); }

void QtWindowSystem::stop() { QCoreApplication::exit(0); }

std::unique_ptr<port::TrackingLoop> QtWindowSystem::beginTracking() {
    return std::make_unique<QtTrackingLoop>();
}

std::unique_ptr<port::TrackingLoop> QtWindowSystem::beginModal(port::WindowPeer& window) {
    return dynamic_cast<TopLevelPeer&>(window).beginModal();
}

port::WindowInsets QtWindowSystem::usualInsets() const { return qt::usualInsets(); }

bool QtWindowSystem::eventFilter(QObject* watched, QEvent* event) {
    // Reaches no widget of its own: a palette is the application's.
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange && client_)
        client_->appearanceChanged();
    if (event->type() == QEvent::MouseButtonPress && watched->isWindowType()) {
        QWidget* const topLevel = QWidget::find(static_cast<QWindow*>(watched)->winId());
        return topLevel && endsPress(*topLevel, static_cast<QMouseEvent&>(*event));
    }
    // Comes to the platform's window, not to the widget.
    if (event->type() == QEvent::WindowBlocked && watched->isWindowType()) {
        auto* const widget =
            dynamic_cast<WindowWidget*>(QWidget::find(static_cast<QWindow*>(watched)->winId()));
        if (widget && widget->client) widget->client->peerBlocked();
    }
    return false;
}

} // namespace zr::qt
