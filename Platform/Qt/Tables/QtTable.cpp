// SPDX-License-Identifier: MIT
#include "QtTable.h"

#include <ZRUIKitQt/QtEvents.h>

#include <QHelpEvent>
#include <QItemSelection>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyle>
#include <QToolTip>

#include <limits>
#include <utility>

namespace zr::qt {

namespace {
constexpr int kCellPadding = 4;

int wholeNumber(std::size_t count) {
    return static_cast<int>(std::min(count, static_cast<std::size_t>(std::numeric_limits<int>::max())));
}
} // namespace

// TableModel

void TableModel::setColumns(const std::vector<port::TableColumn>& columns) {
    const int before = columnCount(), after = wholeNumber(columns.size());
    if (after > before) beginInsertColumns({}, before, after - 1);
    if (after < before) beginRemoveColumns({}, after, before - 1);
    columns_ = columns;
    if (after > before) endInsertColumns();
    if (after < before) endRemoveColumns();
    if (after > 0) Q_EMIT headerDataChanged(Qt::Horizontal, 0, after - 1);
}

// Rows come and go at the end, and none is looked at here: it takes no longer with more of them.
void TableModel::setRowCount(int count) {
    const int before = rowCount_;
    if (count > before) beginInsertRows({}, before, count - 1);
    if (count < before) beginRemoveRows({}, count, before - 1);
    rowCount_ = count;
    if (count > before) endInsertRows();
    if (count < before) endRemoveRows();
    if (count > 0 && !columns_.empty()) Q_EMIT dataChanged(index(0, 0), index(count - 1, columnCount() - 1));
}

int TableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : wholeNumber(columns_.size());
}

QVariant TableModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !textAt) return {};
    return QString::fromStdString(
        textAt(static_cast<std::size_t>(index.row()), static_cast<std::size_t>(index.column())));
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const auto column = static_cast<std::size_t>(section);
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal || column >= columns_.size()) return {};
    return QString::fromStdString(columns_[column].title);
}

// TableWidget

TableWidget::TableWidget(port::ViewPeer& superview, port::ViewClient& viewClient,
                         port::TableClient& tableClient)
    : WidgetOf(superview, viewClient), table_(tableClient) {
    model_.textAt = [this](std::size_t row, std::size_t column) {
        return client ? table_.peerText(row, column) : std::string();
    };
    setModel(&model_);
    setFrameShape(QFrame::NoFrame);
    setShowGrid(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideMiddle); // of paths both ends tell
    setCornerButtonEnabled(false);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setAutoScroll(false);
    setFocusPolicy(Qt::TabFocus);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    horizontalHeader()->hide();
    horizontalHeader()->setMinimumSectionSize(1);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + kCellPadding);
}

TableWidget::~TableWidget() {
    tellGone();
    setModel(nullptr); // which goes first
}

void TableWidget::place(const Rect& frame) {
    setGeometry(wholePoints(frame));
    tellScrolled();
}

void TableWidget::setColumns(const std::vector<port::TableColumn>& columns) {
    model_.setColumns(columns);
    for (std::size_t i = 0; i < columns.size(); ++i)
        horizontalHeader()->resizeSection(static_cast<int>(i), qRound(columns[i].width));
}

void TableWidget::reload(std::size_t rowCount) {
    model_.setRowCount(wholeNumber(rowCount));
    updateGeometries(); // scroll bars, and so what is seen
    tellScrolled();
}

void TableWidget::markRows(const std::set<std::size_t>& rows) {
    QItemSelection selection;
    const int lastColumn = model_.columnCount() - 1;
    for (auto row = rows.begin(); row != rows.end();) {
        const int first = wholeNumber(*row);
        int last = first;
        while (++row != rows.end() && wholeNumber(*row) == last + 1) ++last;
        if (lastColumn >= 0) selection.select(model_.index(first, 0), model_.index(last, lastColumn));
    }
    selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    if (!rows.empty())
        selectionModel()->setCurrentIndex(model_.index(wholeNumber(*rows.rbegin()), 0),
                                          QItemSelectionModel::NoUpdate);
}

void TableWidget::mouse(QMouseEvent& event) {
    const auto input = inputEvent(event);
    if (client && input) offer(*this, link, event, *input, QPointF(viewport()->pos()) + event.position());
}

void TableWidget::key(QKeyEvent& event) {
    if (client) offer(*this, link, event, inputEvent(event), {});
}

// The whole of a text that is not shown whole.
bool TableWidget::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QTableView::viewportEvent(event);
    const auto& help = static_cast<const QHelpEvent&>(*event);
    const QModelIndex cell = indexAt(help.pos());
    const QString text = cell.data().toString();
    const int margins = 2 * (style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1);
    if (fontMetrics().horizontalAdvance(text) + margins > columnWidth(cell.column()))
        QToolTip::showText(help.globalPos(),
                           QStringLiteral("<span style='white-space:pre'>%1</span>").arg(text.toHtmlEscaped()),
                           viewport(), visualRect(cell));
    else
        QToolTip::hideText();
    return true;
}

void TableWidget::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    tellScrolled();
}

void TableWidget::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    tellScrolled();
}

void TableWidget::tellScrolled() {
    if (!client) return;
    table_.peerScrolled({{double(horizontalOffset()), double(verticalOffset())},
                         {double(viewport()->width()), double(viewport()->height())}});
}

// TableHeaderWidget

TableHeaderWidget::TableHeaderWidget(port::ViewPeer& superview, port::ViewClient& viewClient,
                                     port::TableHeaderClient& headerClient)
    : WidgetOf(superview, viewClient, Qt::Horizontal) {
    setModel(&model_);
    setMinimumSectionSize(1);
    setSectionsClickable(false);
    setHighlightSections(false);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setFocusPolicy(Qt::NoFocus);
    QObject::connect(this, &QHeaderView::sectionResized, this,
                     [this, &headerClient](int section, int, int width) {
                         if (client && !isTold_)
                             headerClient.peerColumnResized(static_cast<std::size_t>(section), width);
                     });
}

TableHeaderWidget::~TableHeaderWidget() {
    tellGone();
    setModel(nullptr); // which goes first
}

void TableHeaderWidget::setColumns(const std::vector<port::TableColumn>& columns) {
    const bool outer = std::exchange(isTold_, true);
    model_.setColumns(columns);
    for (std::size_t i = 0; i < columns.size(); ++i)
        resizeSection(static_cast<int>(i), qRound(columns[i].width));
    isTold_ = outer;
}

void TableHeaderWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) return QHeaderView::mousePressEvent(event);
    const auto input = inputEvent(*event);
    if (client && input) offer(*this, link, *event, *input, event->position());
}

void TableHeaderWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) return QHeaderView::mouseReleaseEvent(event);
    const auto input = inputEvent(*event);
    if (client && input) offer(*this, link, *event, *input, event->position());
}

// Peers

void TablePeer::setColumns(const std::vector<port::TableColumn>& columns) {
    if (widget_) widget_->setColumns(columns);
}

void TablePeer::reload(std::size_t rowCount) {
    if (widget_) widget_->reload(rowCount);
}

void TablePeer::setSelection(const std::set<std::size_t>& rows) {
    if (widget_) widget_->markRows(rows);
}

void TablePeer::setEnabled(bool enabled) {
    if (widget_) widget_->setEnabled(enabled);
}

void TablePeer::scrollToRow(std::size_t row) {
    if (widget_) widget_->scrollTo(widget_->model()->index(wholeNumber(row), 0));
}

double TablePeer::rowHeight() const { return widget_ ? widget_->verticalHeader()->defaultSectionSize() : 1; }

void TableHeaderPeer::setColumns(const std::vector<port::TableColumn>& columns) {
    if (widget_) widget_->setColumns(columns);
}

void TableHeaderPeer::setOffset(double x) {
    if (widget_) widget_->setOffset(qRound(x));
}

} // namespace zr::qt
