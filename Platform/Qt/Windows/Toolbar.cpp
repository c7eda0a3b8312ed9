// SPDX-License-Identifier: MIT
#include "Toolbar.h"

#include <ZRUIKitQt/QtCanvas.h>

#include <QPainter>

namespace zr::qt {

Toolbar::Toolbar(QWidget* window, const std::vector<port::ToolbarItem>& items, port::ToolbarClient* client)
    : QToolBar(window) {
    setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    setIconSize({32, 32});
    setMovable(false);
    setContextMenuPolicy(Qt::PreventContextMenu);
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto& item = items[i];
        actions_.push_back(nullptr);
        if (item.kind != port::ToolbarItem::Kind::button) {
            auto* const space = new QWidget(this);
            space->setSizePolicy(item.kind == port::ToolbarItem::Kind::space ? QSizePolicy::Fixed
                                                                             : QSizePolicy::Expanding,
                                 QSizePolicy::Preferred);
            space->setMinimumWidth(iconSize().width());
            addWidget(space);
            continue;
        }
        actions_.back() = addAction(iconOf(item), QString::fromStdString(item.label));
        actions_.back()->setCheckable(true);
        QObject::connect(actions_.back(), &QAction::triggered, this, [this, i, client] {
            // What is selected is for the client to say.
            select(selected_);
            if (client) client->peerClicked(i);
        });
    }
}

void Toolbar::select(std::optional<std::size_t> index) {
    selected_ = index;
    for (std::size_t i = 0; i < actions_.size(); ++i)
        if (actions_[i]) actions_[i]->setChecked(i == index);
}

void Toolbar::paintEvent(QPaintEvent* event) {
    QToolBar::paintEvent(event);
    constexpr float kStrength = 0.2F;
    QColor line = palette().color(QPalette::WindowText);
    line.setAlphaF(kStrength);
    QPainter(this).fillRect(0, height() - 1, width(), 1, line);
}

QIcon Toolbar::iconOf(const port::ToolbarItem& item) const {
    QIcon icon;
    if (!item.image) return icon;
    const auto appearance =
        palette().color(QPalette::Window).lightness() < 128 ? Appearance::dark : Appearance::light;
    for (const double scale : {1.0, 2.0}) {
        const auto* const chosen = port::bestRepresentation(*item.image, scale, appearance);
        const auto* const bitmap = chosen ? static_cast<const QtBitmap*>(chosen->bitmap.get()) : nullptr;
        if (!bitmap) continue;
        QPixmap pixmap = QPixmap::fromImage(bitmap->image());
        pixmap.setDevicePixelRatio(bitmap->image().width() / item.imageSize.width);
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace zr::qt
