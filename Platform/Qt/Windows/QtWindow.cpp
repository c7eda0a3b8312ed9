#include "QtDueWork.h"
#include "QtWindow.h"

#include <ZRUIKitQt/QtCanvas.h>

#include <QApplication>
#include <QCloseEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <cmath>

namespace zr::qt {

namespace {

QSize wholeSize(CGSize size) {
    const auto limited = [](double length) {
        return static_cast<int>(std::clamp(std::round(length), 0.0, double(QWIDGETSIZE_MAX)));
    };
    return {limited(size.width), limited(size.height)};
}

// The edge of a window that has no frame of its own.
class Edge final : public QWidget {
public:
    explicit Edge(QWidget* window) : QWidget(window) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        window->installEventFilter(this);
        fit();
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Resize || event->type() == QEvent::Show) fit();
        return false;
    }
    void paintEvent(QPaintEvent*) override {
        constexpr float kStrength = 0.35F;
        QColor colour = palette().color(QPalette::WindowText);
        colour.setAlphaF(kStrength);
        QPainter painter(this);
        painter.setPen(colour);
        painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }

private:
    void fit() {
        setGeometry(parentWidget()->rect());
        raise();
    }
};

// Items with an icon above a label, one of which may be selected.
class Toolbar final : public QToolBar {
public:
    Toolbar(QWidget* window, const std::vector<port::ToolbarItem>& items, port::ToolbarClient& client)
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
            QObject::connect(actions_.back(), &QAction::triggered, this, [this, i, &client] {
                // What is selected is for the client to say.
                select(selected_);
                client.peerClicked(i);
            });
        }
    }
    void select(std::optional<std::size_t> index) {
        selected_ = index;
        for (std::size_t i = 0; i < actions_.size(); ++i)
            if (actions_[i]) actions_[i]->setChecked(i == index);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QToolBar::paintEvent(event);
        constexpr float kStrength = 0.2F;
        QColor line = palette().color(QPalette::WindowText);
        line.setAlphaF(kStrength);
        QPainter(this).fillRect(0, height() - 1, width(), 1, line);
    }

private:
    QIcon iconOf(const port::ToolbarItem& item) const {
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

    std::vector<QAction*> actions_; // null for spaces
    std::optional<std::size_t> selected_;
};

Qt::WindowFlags flagsOf(port::WindowStyle style) {
    Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint;
    if (!style.titled) return flags | Qt::FramelessWindowHint;
    flags |= Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
    flags.setFlag(Qt::WindowCloseButtonHint, style.closable);
    flags.setFlag(Qt::WindowMinimizeButtonHint, style.miniaturizable);
    flags.setFlag(Qt::WindowMaximizeButtonHint, style.resizable);
    return flags;
}

CGSize sizeOf(const QSize& size) { return {double(size.width()), double(size.height())}; }

} // namespace

WindowWidget::WindowWidget(port::WindowClient& windowClient, port::WindowStyle style)
    : QWidget(nullptr, flagsOf(style)), client(&windowClient), closable(style.closable) {
    link->client = client;
    setAttribute(Qt::WA_QuitOnClose, false); // the application object decides when the program ends
}

WindowWidget::~WindowWidget() {
    link->client = nullptr;
    if (auto* const gone = std::exchange(client, nullptr)) gone->peerGone();
}

void WindowWidget::scheduleUpdate() {
    addDueWork(DueWork::update, this, [](QWidget* widget) {
        auto* const owner = static_cast<WindowWidget*>(widget)->client;
        if (owner) owner->peerUpdate();
    });
}

// The client closes by letting go of its peer, and so of this widget.
void WindowWidget::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (sheetParent) {
        sheetParent->close(); // a sheet and its window are one to the user
        return;
    }
    if (!closable) return;
    const QPointer<WindowWidget> self = this; // the answer may take a while, and the widget with it
    if (client && client->peerShouldClose() && self && self->client) self->client->peerClosed();
}

void WindowWidget::placeContent() {
    if (menuBar) menuBar->setGeometry(0, 0, width(), menuHeight());
    if (bar) bar->setGeometry(0, menuHeight(), width(), bar->height());
    if (contentWidget) contentWidget->place({{0, double(barHeight())}, sizeOf(size() - QSize(0, barHeight()))});
}

void WindowWidget::resizeEvent(QResizeEvent*) {
    placeContent();
    if (client) client->peerContentResized(sizeOf(size() - QSize(0, barHeight())));
}

void WindowWidget::placeSheet() {
    if (!sheetParent) return;
    const auto* const window = dynamic_cast<WindowWidget*>(sheetParent.data());
    const QPoint top = sheetParent->mapToGlobal(QPoint(0, window ? window->barHeight() : 0));
    move(top + QPoint((sheetParent->width() - width()) / 2, 0));
}

// A sheet follows its parent.
bool WindowWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == sheetParent && (event->type() == QEvent::Move || event->type() == QEvent::Resize))
        placeSheet();
    return false;
}

void WindowWidget::moveEvent(QMoveEvent*) {
    if (client) client->peerMoved();
}

void WindowWidget::keyPressEvent(QKeyEvent* event) {
    if (menuBar && event->key() == Qt::Key_F10 && event->modifiers() == Qt::NoModifier)
        menuBar->openFirst();
    else
        QWidget::keyPressEvent(event);
}

void WindowWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && client) client->peerKeyChanged(isActiveWindow());
}

WindowPeer::WindowPeer(port::WindowClient& client, CGSize contentSize, port::WindowStyle style)
    : widget_(new WindowWidget(client, style)), style_(style) {
    widget_->resize(wholeSize(contentSize));
    if (!style_.resizable) widget_->setFixedSize(widget_->size());
}

WindowPeer::~WindowPeer() {
    if (behind_ && behind_->isVisible()) behind_->activateWindow();
    if (widget_) widget_->link->client = nullptr;
    letGo(widget_);
}

std::unique_ptr<port::ViewPeer> WindowPeer::makeContent(port::ViewClient& client) {
    auto* const content = new ViewWidget(widget_, widget_->link, client);
    widget_->contentWidget = content;
    widget_->link->content = content;
    widget_->placeContent();
    content->show();
    auto peer = std::make_unique<PlainPeer>(content);
    peer->link = widget_->link;
    return peer;
}

// Showing, resizing and limiting a widget reach the client at once, which may let go of this peer.
void WindowPeer::show(bool activate) {
    const QPointer<WindowWidget> widget = widget_;
    if (widget && activate && widget->isMinimized())
        widget->setWindowState(widget->windowState() & ~Qt::WindowMinimized);
    if (widget) widget->setAttribute(Qt::WA_ShowWithoutActivating, !activate);
    if (widget) widget->show();
    if (!activate) return;
    if (widget) widget->raise();
    if (widget) widget->activateWindow();
}

void WindowPeer::showModal() {
    WindowWidget* const widget = widget_.data();
    if (!widget) return;
    QWidget* const inFront = QApplication::activeWindow();
    widget->setWindowFlag(Qt::Dialog);
    widget->setWindowModality(Qt::ApplicationModal);
    widget->winId(); // there is a window from here on
    if (inFront && inFront != widget) {
        widget->windowHandle()->setTransientParent(inFront->windowHandle());
        widget->move(inFront->frameGeometry().center() - widget->rect().center());
        behind_ = inFront;
    } else {
        widget->move(widget->screen()->availableGeometry().center() - widget->rect().center());
    }
    show(true);
}

void WindowPeer::showAsSheet(port::WindowPeer& parent) {
    WindowWidget* const widget = widget_.data();
    if (!widget) return;
    auto* const peer = dynamic_cast<TopLevelPeer*>(&parent);
    QWidget* const over = peer ? peer->topLevel() : nullptr;
    widget->setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint);
    if (!widget->edge) widget->edge = new Edge(widget);
    widget->edge->show();
    if (!over) widget->setWindowModality(Qt::ApplicationModal);
    widget->winId(); // there is a window from here on
    if (over) {
        widget->sheetParent = over;
        widget->windowHandle()->setTransientParent(over->windowHandle());
        over->installEventFilter(widget);
        widget->placeSheet();
        widget->parentBlock = std::make_unique<InputBlock>(over, widget);
    }
    // A dialog that blocks all windows keeps the keyboard, and stays in front.
    QWidget* const modal = QApplication::activeModalWidget();
    const bool inFront = !over || !modal || modal == over;
    show(inFront);
    if (!inFront) modal->raise();
}

void WindowPeer::endSheet() {
    if (!widget_) return;
    if (widget_->sheetParent) widget_->sheetParent->removeEventFilter(widget_);
    QWidget* const parent = std::exchange(widget_->sheetParent, nullptr);
    widget_->parentBlock.reset();
    if (!parent && widget_->windowModality() != Qt::NonModal) {
        // Qt takes a window's modality back only while it is hidden.
        const bool visible = widget_->isVisible();
        widget_->hide();
        widget_->setWindowModality(Qt::NonModal);
        if (visible) show(false);
        return;
    }
    if (parent && widget_->isActiveWindow()) parent->activateWindow();
}

void WindowPeer::hide() {
    if (!widget_) return;
    widget_->hide();
    widget_->setWindowModality(Qt::NonModal);
}

void WindowPeer::close() {
    if (widget_ && widget_->client) widget_->client->peerClosed();
}

void WindowPeer::setTitle(const std::string& title) {
    if (widget_) widget_->setWindowTitle(QString::fromStdString(title));
}

// A resize reaches the client at once, which may let go of this peer. The widget is there until the event loop
// runs.
CGSize WindowPeer::setContentSize(CGSize size) {
    WindowWidget* const widget = widget_.data();
    if (!widget) return size;
    const QSize whole = wholeSize(size) + QSize(0, widget->barHeight());
    if (style_.resizable) {
        const QSize now = widget->size();
        limit(now.boundedTo(whole), now.expandedTo(whole));
        widget->resize(whole);
        if (!widget->link->client) return size;
        limit(whole, whole);
    } else {
        widget->setFixedSize(whole);
    }
    return sizeOf(widget->size() - QSize(0, widget->barHeight()));
}

void WindowPeer::setContentLimits(CGSize minimum, CGSize maximum) {
    minimum_ = minimum;
    maximum_ = maximum;
    if (widget_) limit(widget_->size(), widget_->size());
}

// Qt would resize the window, now or later, to what it is limited to: limits are for the user alone.
void WindowPeer::limit(QSize smallest, QSize largest) {
    WindowWidget* const widget = widget_.data();
    if (!widget || !style_.resizable) return;
    const QSize bar(0, widget->barHeight()), unlimited(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    widget->setMinimumSize((wholeSize(minimum_) + bar).boundedTo(smallest));
    widget->setMaximumSize((wholeSize(maximum_) + bar).boundedTo(unlimited).expandedTo(largest));
}

void WindowPeer::scheduleUpdate() {
    if (widget_) widget_->scheduleUpdate();
}

CGPoint WindowPeer::contentOriginOnScreen() const {
    if (!widget_) return {};
    const QPointF origin = widget_->mapToGlobal(QPointF(0, widget_->barHeight()));
    return {origin.x(), origin.y()};
}

CGPoint WindowPeer::frameTopLeft() const {
    if (!widget_) return {};
    return {double(widget_->x()), double(widget_->y())};
}

void WindowPeer::setFrameTopLeft(CGPoint topLeft) {
    if (widget_) widget_->move(qRound(topLeft.x), qRound(topLeft.y));
}

double WindowPeer::topInset() const {
    if (!widget_) return 0;
    return widget_->geometry().top() - widget_->frameGeometry().top() + widget_->barHeight();
}

template <class Bar>
void WindowPeer::replace(Bar*& place, Bar* bar) {
    WindowWidget* const widget = widget_.data();
    const CGSize content = sizeOf(widget->size() - QSize(0, widget->barHeight()));
    if (place) {
        place->hide();
        place->deleteLater();
    }
    place = bar;
    if (bar) {
        bar->resize(widget->width(), bar->sizeHint().height());
        bar->show();
    }
    setContentLimits(minimum_, maximum_);
    widget->placeContent();
    setContentSize(content); // reaches the client, which may let go of this peer
}

void WindowPeer::setToolbar(const std::vector<port::ToolbarItem>& items, port::ToolbarClient* client) {
    if (widget_)
        replace<QToolBar>(widget_->bar, items.empty() ? nullptr : new Toolbar(widget_, items, *client));
}

void WindowPeer::setMenuBar(const std::vector<port::MenuItem>& items) {
    if (widget_) replace(widget_->menuBar, items.empty() ? nullptr : new MenuBar(widget_, items));
}

void WindowPeer::selectToolbarItem(std::optional<std::size_t> index) {
    if (auto* const bar = widget_ ? dynamic_cast<Toolbar*>(widget_->bar) : nullptr) bar->select(index);
}

double WindowPeer::backingScale() const { return widget_ ? widget_->devicePixelRatioF() : 1; }

} // namespace zr::qt
