#include "QtDueWork.h"
#include "QtEvents.h"
#include "QtViews.h"
#include "QtWindow.h"

#include <ZRUIKitQt/QtCanvas.h>

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFrame>

namespace zr::qt {

void tellGone(port::ViewClient*& client) {
    if (auto* const gone = std::exchange(client, nullptr)) gone->peerGone();
}

Appearance appearanceOf(const QPalette& palette) {
    // Asked for each paint, and nearly always of the same palette.
    static qint64 lastKey = 0;
    static auto last = Appearance::light;
    if (palette.cacheKey() == lastKey) return last;
    const bool dark =
        palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
    lastKey = palette.cacheKey();
    last = dark ? Appearance::dark : Appearance::light;
    return last;
}

namespace {

// Frames stay where they are in a program that is read from right to left, and so do the texts in them.
Qt::Alignment alignmentOf(NSTextAlignment alignment) {
    const auto horizontal = alignment == NSTextAlignmentRight    ? Qt::AlignRight
                            : alignment == NSTextAlignmentCenter ? Qt::AlignHCenter
                                                                 : Qt::AlignLeft;
    return horizontal | Qt::AlignAbsolute | Qt::AlignVCenter;
}

} // namespace

// ViewWidget

ViewWidget::ViewWidget(QWidget* parent, std::shared_ptr<WindowLink> windowLink, port::ViewClient& viewClient)
    : QWidget(parent), link(std::move(windowLink)), client(&viewClient) {}

ViewWidget::~ViewWidget() { tellGone(client); }

void ViewWidget::place(const CGRect& frame) {
    const QRect whole = PlainPeer::wholePoints(frame);
    shift_ = QPointF(frame.origin.x - whole.x(), frame.origin.y - whole.y());
    if (size_ != frame.size) drawn_ = false;
    size_ = frame.size;
    if (whole == geometry())
        update();
    else
        setGeometry(whole);
}

void ViewWidget::invalidate() {
    if (std::exchange(drawingIsDue_, true)) return;
    addDueWork(DueWork::drawing, this, [](QWidget* widget) {
        auto& view = *static_cast<ViewWidget*>(widget);
        if (view.drawingIsDue_ && view.isVisible() && view.client) view.update(view.drawAgain());
    });
}

// Answers what has to be painted.
QRegion ViewWidget::drawAgain() {
    // Drawing seldom happens within another; the memory is used by all views in turn.
    static port::OperationList spare;
    port::OperationList next = std::move(spare);
    next.clear();
    drawingIsDue_ = false;
    client->peerDraw(next, {{0, 0}, size_});
    static port::DamagedAreas areas;
    areas.clear();
    const bool comparable = std::exchange(drawn_, true) && shown_.compare(next, areas);
    shown_ = next;
    spare = std::move(next);
    if (!comparable || !client) return rect();
    const bool yUp = client->peerDrawsUpwards();
    QRegion damage;
    for (const CGRect& area : areas.merged()) {
        const double top = yUp ? size_.height - NSMaxY(area) : NSMinY(area);
        damage +=
            QRectF(area.origin.x, top, area.size.width, area.size.height).translated(shift_).toAlignedRect();
    }
    return damage;
}

void ViewWidget::paintEvent(QPaintEvent* event) {
    if (!client) return;
    if (drawingIsDue_ || !drawn_) {
        const bool outer = std::exchange(drawsWithinPaint_, true);
        const QRegion elsewhere = drawAgain() - event->region();
        drawsWithinPaint_ = outer;
        if (!client) return;
        if (!elsewhere.isEmpty()) update(elsewhere);
    }
    const bool yUp = client->peerDrawsUpwards();
    const QRectF widgetPart = QRectF(event->rect()).translated(-shift_);
    const CGRect part = {{widgetPart.x(), yUp ? size_.height - widgetPart.bottom() : widgetPart.top()},
                         {widgetPart.width(), widgetPart.height()}};
    if (!shown_.touches(part)) return; // opening a painter is not free
    QPainter painter(this);
    QtCanvas canvas(painter, {.height = size_.height,
                              .yUp = yUp,
                              .shift = shift_,
                              .appearance = appearanceOf(QApplication::palette())});
    canvas.paint(shown_, part);
}

void offer(const QWidget& widget, const std::shared_ptr<WindowLink>& link, QInputEvent& event, InputEvent input,
           QPointF position) {
    // The widget, and its link with it, may go meanwhile.
    const auto held = link; // NOLINT(performance-unnecessary-copy-initialization)
    const QWidget* const parent = widget.parentWidget();
    event.ignore();
    const bool offeredBefore = held->declinedFor == &widget && held->declinedType == event.type();
    held->declinedFor = offeredBefore ? parent : nullptr;
    if (offeredBefore || !held->client || !held->content) return;
    const QPointF inContent = QPointF(widget.mapTo(held->content, QPoint(0, 0))) + position;
    input.location = {inContent.x(), inContent.y()};
    if (held->client->peerEvent(input)) {
        event.accept();
        return;
    }
    held->declinedFor = parent;
    held->declinedType = event.type();
}

void ViewWidget::mouse(QMouseEvent& event) {
    if (const auto input = inputEvent(event)) offer(*this, link, event, *input, event.position());
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
    offer(*this, link, *event, inputEvent(*event), event->position());
}

void ViewWidget::key(QKeyEvent& event) { offer(*this, link, event, inputEvent(event), {}); }

void ViewWidget::focusInEvent(QFocusEvent*) {
    if (client) client->peerFocusChanged(true);
}

void ViewWidget::focusOutEvent(QFocusEvent*) {
    if (client) client->peerFocusChanged(false);
}

// LabelWidget

LabelWidget::LabelWidget(QWidget* parent, port::ViewClient& viewClient) : QLabel(parent), client(&viewClient) {
    setTextFormat(Qt::PlainText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

LabelWidget::~LabelWidget() { tellGone(client); }

void LabelWidget::setColour(const Colour& colour) {
    colour_ = colour;
    applyColour();
}

void LabelWidget::applyColour() {
    const QColor colour = colourFor(colour_, appearanceOf(QApplication::palette()));
    if (palette().color(QPalette::WindowText) == colour) return;
    QPalette own;
    own.setColor(QPalette::WindowText, colour);
    setPalette(own);
}

void LabelWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) applyColour();
    QLabel::changeEvent(event);
}

void LabelWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int flags =
        static_cast<int>(alignment()) | (wordWrap() ? Qt::TextWordWrap | Qt::TextWrapAnywhere : 0);
    const QString shown = wordWrap() ? text() : fontMetrics().elidedText(text(), Qt::ElideRight, width());
    style()->drawItemText(&painter, rect(), flags, palette(), isEnabled(), shown, QPalette::WindowText);
}

// ProgressBarWidget and SpinnerWidget

ProgressBarWidget::ProgressBarWidget(QWidget* parent, port::ViewClient& viewClient)
    : QProgressBar(parent), client(&viewClient) {
    setTextVisible(false);
}

ProgressBarWidget::~ProgressBarWidget() { tellGone(client); }

void ProgressBarWidget::setProgress(const port::Progress& progress) {
    constexpr int kSteps = 10'000;
    // Qt's bar is busy while its range is empty.
    const bool busy = progress.indeterminate && progress.running;
    setRange(0, busy ? 0 : kSteps);
    if (!busy) setValue(progress.indeterminate ? 0 : qRound(progress.fraction * kSteps));
}

namespace {
constexpr int kSpokes = 12;
}

SpinnerWidget::SpinnerWidget(QWidget* parent, port::ViewClient& viewClient)
    : QWidget(parent), client(&viewClient) {}

SpinnerWidget::~SpinnerWidget() { tellGone(client); }

void SpinnerWidget::setProgress(const port::Progress& progress) {
    constexpr int kMillisecondsForASpoke = 80;
    progress_ = progress;
    const bool turns = progress.indeterminate && progress.running;
    if (turns && timer_ == 0) timer_ = startTimer(kMillisecondsForASpoke);
    if (!turns && timer_ != 0) killTimer(std::exchange(timer_, 0));
    update();
}

void SpinnerWidget::timerEvent(QTimerEvent*) {
    turned_ = (turned_ + 1) % kSpokes;
    update();
}

void SpinnerWidget::paintEvent(QPaintEvent*) {
    if (!progress_.visible) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double size = std::min(width(), height());
    painter.translate(width() / 2.0, height() / 2.0);
    QColor colour = palette().color(QPalette::WindowText);
    if (!progress_.indeterminate) {
        // A slice, clockwise from the top.
        constexpr double kTop = 90 * 16, kWhole = 360 * 16;
        const QRectF circle(-size / 2 + 1, -size / 2 + 1, size - 2, size - 2);
        colour.setAlphaF(0.25f);
        painter.setPen(Qt::NoPen);
        painter.setBrush(colour);
        painter.drawEllipse(circle);
        colour.setAlphaF(0.8f);
        painter.setBrush(colour);
        painter.drawPie(circle, int(kTop), -qRound(kWhole * progress_.fraction));
        return;
    }
    for (int spoke = 0; spoke < kSpokes; ++spoke) {
        // The one it has come to is the darkest.
        const int behind = (turned_ - spoke + kSpokes) % kSpokes;
        colour.setAlphaF(progress_.running ? 0.85f - 0.065f * float(behind) : 0.35f);
        painter.setPen(QPen(colour, size * 0.09, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(360.0 / kSpokes * spoke);
        painter.drawLine(QPointF(0, -size * 0.26), QPointF(0, -size * 0.42));
        painter.restore();
    }
}

// ScrollingTextWidget

ScrollingTextWidget::ScrollingTextWidget(QWidget* parent, port::ViewClient& viewClient)
    : QPlainTextEdit(parent), client(&viewClient) {
    setReadOnly(true);
    setFrameShape(QFrame::NoFrame);
    document()->setDocumentMargin(0);
    viewport()->setAutoFillBackground(false);
}

ScrollingTextWidget::~ScrollingTextWidget() { tellGone(client); }

// TextFieldWidget

TextFieldWidget::TextFieldWidget(QWidget* parent, port::ViewClient& viewClient,
                                 port::TextFieldClient& fieldClient)
    : QLineEdit(parent), client(&viewClient), field(&fieldClient) {
    // Not textChanged, which the program's own changes send, too.
    QObject::connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
        if (client) field->peerTextEdited(text.toStdString());
    });
}

TextFieldWidget::~TextFieldWidget() { tellGone(client); }

void TextFieldWidget::setLook(const port::TextFieldLook& look) {
    look_ = look;
    setFont(fontFor(look.font));
    setAlignment(alignmentOf(look.alignment));
    // What is read only looks like text on its background.
    setFrame(look.bezeled && look.drawsBackground);
    applyColours();
    update();
}

void TextFieldWidget::applyColours() {
    const Appearance appearance = appearanceOf(QApplication::palette());
    const QColor text = colourFor(look_.colour, appearance);
    const QColor base =
        look_.drawsBackground ? colourFor(look_.background, appearance) : QColor(Qt::transparent);
    if (palette().color(QPalette::Text) == text && palette().color(QPalette::Base) == base) return;
    QPalette own;
    own.setColor(QPalette::Active, QPalette::Text, text);
    own.setColor(QPalette::Inactive, QPalette::Text, text);
    own.setColor(QPalette::Base, base);
    setPalette(own);
}

void TextFieldWidget::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) applyColours();
    QLineEdit::changeEvent(event);
}

void TextFieldWidget::initStyleOption(QStyleOptionFrame* option) const {
    QLineEdit::initStyleOption(option);
    if (!look_.showsFocus) option->state &= ~QStyle::State_HasFocus;
}

// What the field does may take the widget with it.
void TextFieldWidget::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        event->accept();
        if (client) field->peerReturn();
        return;
    case Qt::Key_Escape:
        event->ignore();
        if (client && field->peerEscape()) event->accept();
        return;
    default:
        QLineEdit::keyPressEvent(event);
    }
}

bool ordersItsTabs(const QWidget& widget) {
    return dynamic_cast<const WindowWidget*>(widget.window()) != nullptr;
}

// Qt asks this, too, when it disables the widget.
bool TextFieldWidget::focusNextPrevChild(bool next) {
    if (!ordersItsTabs(*this)) return QLineEdit::focusNextPrevChild(next);
    if (!isEnabled()) return false;
    if (client) field->peerTab(!next);
    return true;
}

// Not here: the key goes on to the window.
bool ButtonWidget::focusNextPrevChild(bool next) {
    return !ordersItsTabs(*this) && QPushButton::focusNextPrevChild(next);
}

bool ViewWidget::focusNextPrevChild(bool next) {
    return !ordersItsTabs(*this) && QWidget::focusNextPrevChild(next);
}

void TextFieldWidget::focusInEvent(QFocusEvent* event) {
    const QPointer<TextFieldWidget> self = this;
    QLineEdit::focusInEvent(event);
    if (self && client) client->peerFocusChanged(true);
}

void TextFieldWidget::focusOutEvent(QFocusEvent* event) {
    const QPointer<TextFieldWidget> self = this;
    QLineEdit::focusOutEvent(event);
    if (self && client) client->peerFocusChanged(false);
}

// ButtonWidget

ButtonWidget::ButtonWidget(QWidget* parent, port::ViewClient& viewClient, port::ButtonClient& buttonClient)
    : QPushButton(parent), client(&viewClient), button(&buttonClient) {
    QObject::connect(this, &QPushButton::clicked, this, [this] {
        if (client) button->peerPressed();
    });
}

ButtonWidget::~ButtonWidget() { tellGone(client); }

// Qt gives the focus first. Where it was taken back, because another view did not let it go, the press is over.
static bool wasRefusedFocus(const QWidget& widget, const QMouseEvent& event) {
    return event.button() == Qt::LeftButton && (widget.focusPolicy() & Qt::ClickFocus) != 0 &&
           widget.window()->focusWidget() != &widget;
}

void ButtonWidget::mousePressEvent(QMouseEvent* event) {
    if (!wasRefusedFocus(*this, *event)) QPushButton::mousePressEvent(event);
}

void TextFieldWidget::mousePressEvent(QMouseEvent* event) {
    if (!wasRefusedFocus(*this, *event)) QLineEdit::mousePressEvent(event);
}

void ButtonWidget::focusInEvent(QFocusEvent* event) {
    QPushButton::focusInEvent(event);
    if (client) client->peerFocusChanged(true);
}

void ButtonWidget::focusOutEvent(QFocusEvent* event) {
    QPushButton::focusOutEvent(event);
    if (client) client->peerFocusChanged(false);
}

// Peers

void LabelPeer::setText(const std::string& text) {
    if (widget_) widget_->setText(QString::fromStdString(text));
}

void LabelPeer::setWraps(bool wraps) {
    if (widget_) widget_->setWordWrap(wraps);
}

void LabelPeer::setAppearance(const FontDescription& font, const Colour& colour, NSTextAlignment alignment) {
    if (!widget_) return;
    widget_->setFont(fontFor(font));
    widget_->setColour(colour);
    widget_->setAlignment(alignmentOf(alignment));
}

void ButtonPeer::setTitle(const std::string& title) {
    if (!widget_) return;
    // An ampersand is a character of the title, not the mark of a shortcut.
    widget_->setText(QString::fromStdString(title).replace(QLatin1Char('&'), QLatin1String("&&")));
}

void ScrollingTextPeer::setText(const std::string& text) {
    if (widget_) widget_->setPlainText(QString::fromStdString(text));
}

void ScrollingTextPeer::setAppearance(const FontDescription& font, const Colour&, NSTextAlignment) {
    if (widget_) widget_->setFont(fontFor(font));
}

void TextFieldPeer::setText(const std::string& text) {
    if (widget_) widget_->setText(QString::fromStdString(text));
}

void TextFieldPeer::setLook(const port::TextFieldLook& look) {
    if (widget_) widget_->setLook(look);
}

void TextFieldPeer::setEditing(bool editable, bool selectable) {
    if (!widget_) return;
    widget_->setReadOnly(!editable);
    widget_->setFocusPolicy(selectable ? Qt::StrongFocus : Qt::NoFocus);
    widget_->setAttribute(Qt::WA_TransparentForMouseEvents, !selectable);
}

void TextFieldPeer::setEnabled(bool enabled) {
    if (widget_) widget_->setEnabled(enabled);
}

void TextFieldPeer::selectText() {
    if (widget_) widget_->selectAll();
}

void ButtonPeer::setDefault(bool isDefault) {
    if (widget_) widget_->setDefault(isDefault);
}

void ButtonPeer::setEnabled(bool enabled) {
    if (widget_) widget_->setEnabled(enabled);
}

CGSize ButtonPeer::naturalSize() const {
    if (!widget_) return {};
    const QSize size = widget_->sizeHint();
    return {double(size.width()), double(size.height())};
}

} // namespace zr::qt
