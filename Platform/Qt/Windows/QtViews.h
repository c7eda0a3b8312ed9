#pragma once

#include <WindowSystem/Controls.h>
#include <WindowSystem/Drawing.h>

#include <QInputEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QRegion>
#include <QWidget>

#include <memory>

namespace zr::qt {

// Shared by all the widgets of one window; the client is null once either side is gone.
struct WindowLink {
    port::WindowClient* client = nullptr;
    QPointer<QWidget> content; // whose corner events are measured from
    // An event that the window did not take is handed by Qt to the parents, one after the other, which must not
    // offer it again. This is the next of them; it is compared, and never followed.
    const QWidget* declinedFor = nullptr;
    QEvent::Type declinedType = QEvent::None;
};

// Hands what the user did to the window; position: in the widget. Accepts the event when it was taken. After
// that the widget may be cut off from its view, or its window closed.
void offer(const QWidget& widget, const std::shared_ptr<WindowLink>& link, QInputEvent& event, InputEvent input,
           QPointF position);
// In the kit's own windows Tab goes the kit's way. In a host's window Qt's order leads through all widgets.
bool ordersItsTabs(const QWidget& widget);
// The widget is on its way out: tell the view, which lets go of its peer.
void tellGone(port::ViewClient*& client);

// A widget whose pointer's events go to the window as they are, also while a view follows the pointer.
struct OffersEvents {
    virtual ~OffersEvents() = default;
    virtual bool offersEventsOf(const QObject* receiver) const = 0; // itself, or a part of it
};

// The widget of a view that draws. It keeps what the view drew: exposing it again does not ask the view, and of
// a new drawing only what differs from the one on the screen is painted.
class ViewWidget final : public QWidget, public OffersEvents {
public:
    ViewWidget(QWidget* parent, std::shared_ptr<WindowLink> link, port::ViewClient& viewClient);
    ~ViewWidget() override;

    void place(const CGRect& frame);
    static bool isDrawingWithinPaint() { return drawsWithinPaint_; }
    void invalidate(); // the view draws once, after the current event
    bool offersEventsOf(const QObject* receiver) const override { return receiver == this; }

    std::shared_ptr<WindowLink> link;
    port::ViewClient* client; // null once the peer is gone

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override { mouse(*event); }
    void mouseDoubleClickEvent(QMouseEvent* event) override { mouse(*event); }
    void mouseMoveEvent(QMouseEvent* event) override { mouse(*event); }
    void mouseReleaseEvent(QMouseEvent* event) override { mouse(*event); }
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override { key(*event); }
    void keyReleaseEvent(QKeyEvent* event) override { key(*event); }
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void mouse(QMouseEvent& event);
    void key(QKeyEvent& event);
    QRegion drawAgain();

    port::OperationList shown_;
    QPointF shift_; // from the exact corner to the whole point where the widget stands
    CGSize size_;
    bool drawn_ = false; // shown_ is what a drawing of this size gave
    bool drawingIsDue_ = false;
    static inline bool drawsWithinPaint_ = false;
};

// Text on one line, which is shortened where it does not fit, or on several.
class LabelWidget final : public QLabel {
public:
    LabelWidget(QWidget* parent, port::ViewClient& viewClient);
    ~LabelWidget() override;
    void setColour(const Colour& colour);

    port::ViewClient* client;

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void applyColour();
    Colour colour_{SystemColour::label};
};

class ButtonWidget final : public QPushButton {
public:
    ButtonWidget(QWidget* parent, port::ViewClient& viewClient, port::ButtonClient& buttonClient);
    ~ButtonWidget() override;

    port::ViewClient* client;
    port::ButtonClient* button;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
};

// Text on many lines, with a bar to scroll it.
class ScrollingTextWidget final : public QPlainTextEdit {
public:
    ScrollingTextWidget(QWidget* parent, port::ViewClient& viewClient);
    ~ScrollingTextWidget() override;

    port::ViewClient* client;
};

// A bar that fills, or goes to and fro.
class ProgressBarWidget final : public QProgressBar {
public:
    ProgressBarWidget(QWidget* parent, port::ViewClient& viewClient);
    ~ProgressBarWidget() override;
    void setProgress(const port::Progress& progress);

    port::ViewClient* client;
};

// Something round that turns, or fills.
class SpinnerWidget final : public QWidget {
public:
    SpinnerWidget(QWidget* parent, port::ViewClient& viewClient);
    ~SpinnerWidget() override;
    void setProgress(const port::Progress& progress);

    port::ViewClient* client;

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    port::Progress progress_;
    int timer_ = 0;
    int turned_ = 0; // spokes
};

// Text on one line that the user edits.
class TextFieldWidget final : public QLineEdit {
public:
    TextFieldWidget(QWidget* parent, port::ViewClient& viewClient, port::TextFieldClient& fieldClient);
    ~TextFieldWidget() override;
    void setLook(const port::TextFieldLook& look);

    port::ViewClient* client;
    port::TextFieldClient* field;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;
    void initStyleOption(QStyleOptionFrame* option) const override;

private:
    void applyColours();
    port::TextFieldLook look_;
};

// The way from any view peer of this adaptor to its widget.
struct HasWidget {
    virtual ~HasWidget() = default;
    virtual QWidget* anyWidget() const = 0;
    std::shared_ptr<WindowLink> link;
};

// A widget is never deleted directly, as one of its events may be under way: it is cut off, hidden and deleted
// later.
template <class Widget>
void letGo(QPointer<Widget>& widget) {
    if (!widget) return;
    widget->client = nullptr;
    widget->deleteLater();
    // A view may leave in the middle of drawing itself, where Qt does not let its widgets be moved.
    if (ViewWidget::isDrawingWithinPaint()) return;
    widget->hide();
    widget->setParent(nullptr);
}

// The shared body of all view peers.
template <class Interface, class Widget>
class PeerOf : public Interface, public HasWidget {
public:
    explicit PeerOf(Widget* widget) : widget_(widget) {}
    ~PeerOf() override { letGo(widget_); }

    void setFrame(const CGRect& frame) override {
        if (!widget_) return;
        if constexpr (requires { widget_->place(frame); })
            widget_->place(frame);
        else
            widget_->setGeometry(wholePoints(frame));
    }
    void setHidden(bool hidden) override {
        if (widget_) widget_->setVisible(!hidden);
    }
    void raise() override {
        if (widget_) widget_->raise();
    }
    void invalidate() override {
        if (!widget_) return;
        if constexpr (requires { widget_->invalidate(); })
            widget_->invalidate();
        else
            widget_->update();
    }
    void focus() override {
        if (widget_) widget_->setFocus(Qt::OtherFocusReason);
    }
    void setName(const std::string& name) override {
        if (widget_) widget_->setObjectName(QString::fromStdString(name));
    }
    QWidget* anyWidget() const override { return widget_; }

    // Each edge goes to the nearest whole point.
    static QRect wholePoints(const CGRect& frame) {
        const QPoint topLeft(qRound(NSMinX(frame)), qRound(NSMinY(frame)));
        return {topLeft, QSize(qRound(NSMaxX(frame)) - topLeft.x(), qRound(NSMaxY(frame)) - topLeft.y())};
    }

protected:
    QPointer<Widget> widget_;
};

class PlainPeer final : public PeerOf<port::ViewPeer, ViewWidget> {
public:
    using PeerOf::PeerOf;
};

class LabelPeer final : public PeerOf<port::LabelPeer, LabelWidget> {
public:
    using PeerOf::PeerOf;
    void setText(const std::string& text) override;
    void setWraps(bool wraps) override;
    void setAppearance(const FontDescription& font, const Colour& colour, NSTextAlignment alignment) override;
};

template <class Widget>
class ProgressPeerOf final : public PeerOf<port::ProgressPeer, Widget> {
public:
    using PeerOf<port::ProgressPeer, Widget>::PeerOf;
    void setProgress(const port::Progress& progress) override {
        if (this->widget_) this->widget_->setProgress(progress);
    }
};

class ScrollingTextPeer final : public PeerOf<port::LabelPeer, ScrollingTextWidget> {
public:
    using PeerOf::PeerOf;
    void setText(const std::string& text) override;
    void setWraps(bool) override {}
    void setAppearance(const FontDescription& font, const Colour& colour, NSTextAlignment alignment) override;
};

class TextFieldPeer final : public PeerOf<port::TextFieldPeer, TextFieldWidget> {
public:
    using PeerOf::PeerOf;
    void setText(const std::string& text) override;
    void setLook(const port::TextFieldLook& look) override;
    void setEditing(bool editable, bool selectable) override;
    void setEnabled(bool enabled) override;
    void selectText() override;
};

class ButtonPeer final : public PeerOf<port::ButtonPeer, ButtonWidget> {
public:
    using PeerOf::PeerOf;
    void setTitle(const std::string& title) override;
    void setEnabled(bool enabled) override;
    void setDefault(bool isDefault) override;
    CGSize naturalSize() const override;
};

// Light or dark, as the palette has it.
Appearance appearanceOf(const QPalette& palette);

} // namespace zr::qt
