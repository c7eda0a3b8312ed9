// SPDX-License-Identifier: MIT
#include "Table.h"

#include <ZRUIKitHeadless/System.h>

#include <algorithm>

namespace zr::headless {

void Table::setFrame(const Rect& newFrame) {
    PeerOf::setFrame(newFrame);
    scrollTo(offset_);
}

void Table::reload(std::size_t count) {
    rowCount = count;
    std::erase_if(selectedRows, [&](std::size_t row) { return row >= count; });
    scrollTo(offset_);
}

void Table::scrollToRow(std::size_t row) {
    const double top = static_cast<double>(row) * rowHeight(), height = frame.size.height;
    Point offset = offset_;
    if (top + rowHeight() > offset.y + height) offset.y = top + rowHeight() - height;
    if (top < offset.y) offset.y = top;
    scrollTo(offset);
}

// As far as there is anything to see.
void Table::scrollTo(Point wanted) {
    double width = 0;
    for (const auto& column : columns) width += column.width;
    const double right = width - frame.size.width;
    const double bottom = static_cast<double>(rowCount) * rowHeight() - frame.size.height;
    offset_ = {std::max(0.0, std::min(wanted.x, right)), std::max(0.0, std::min(wanted.y, bottom))};
    table_.peerScrolled({offset_, frame.size});
}

bool Table::wheel(const InputEvent& event) {
    scrollTo(
        {offset_.x - event.scrollingDeltaX * rowHeight(), offset_.y - event.scrollingDeltaY * rowHeight()});
    return true;
}

std::vector<std::vector<std::string>> Table::visibleRows() const {
    const auto first = static_cast<std::size_t>(offset_.y / rowHeight());
    std::vector<std::vector<std::string>> rows;
    for (std::size_t row = first;
         row < rowCount && static_cast<double>(row) * rowHeight() < offset_.y + frame.size.height; ++row) {
        rows.emplace_back();
        for (std::size_t column = 0; column < columns.size(); ++column)
            rows.back().push_back(table_.peerText(row, column));
    }
    return rows;
}

double Table::middleOf(std::size_t row) const {
    return (static_cast<double>(row) + 0.5) * rowHeight() - offset_.y;
}

std::vector<std::string> TableHeader::traits() const {
    return table_ ? std::vector<std::string>{"of a table"} : std::vector<std::string>();
}

// From outside

std::vector<std::vector<std::string>> Window::visibleRows(std::string_view viewName) const {
    return dynamic_cast<Table&>(named(viewName)).visibleRows();
}

std::vector<std::size_t> Window::selectedRows(std::string_view viewName) const {
    const auto& rows = dynamic_cast<Table&>(named(viewName)).selectedRows;
    return {rows.begin(), rows.end()};
}

bool Window::clickRow(std::string_view viewName, std::size_t row, std::uint32_t modifierFlags) {
    const auto& table = dynamic_cast<Table&>(named(viewName));
    const double middle = table.middleOf(row);
    if (row >= table.rowCount || middle < 0 || middle >= table.frame.size.height || !table.isShown())
        return false;
    const Point corner = table.originInContent();
    const Point point = {corner.x + 1, contentSize().height - (corner.y + middle)};
    return mouseDown(point, modifierFlags) && mouseUp(point, modifierFlags);
}

std::vector<std::string> Window::columnTitles(std::string_view viewName) const {
    std::vector<std::string> titles;
    for (const auto& column : dynamic_cast<HasColumns&>(named(viewName)).columns)
        titles.push_back(column.title);
    return titles;
}

std::vector<double> Window::columnWidths(std::string_view viewName) const {
    std::vector<double> widths;
    for (const auto& column : dynamic_cast<HasColumns&>(named(viewName)).columns)
        widths.push_back(column.width);
    return widths;
}

void Window::resizeColumn(std::string_view viewName, std::size_t column, double width) {
    auto& view = dynamic_cast<TableHeader&>(named(viewName));
    auto& platform = view.window->system;
    view.header.peerColumnResized(column, width);
    platform.display();
}

} // namespace zr::headless
