// SPDX-License-Identifier: MIT
#include <AppKit/NSTableColumn.h>
#include <AppKit/NSTableView.h>
#include <Foundation/NSCoder.h>

#include <algorithm>

namespace zr {

ZR_CLASS_TABLE(NSTableColumn)

bool NSTableColumn::initWithIdentifier(const std::string& identifier) {
    identifier_ = identifier;
    return NSObject::init();
}

bool NSTableColumn::initWithCoder(NSCoder& coder) {
    if (!initWithIdentifier(coder.decodeStringForKey("NSIdentifier").value_or(""))) return false;
    title_ = coder.decodeStringForKey("NSHeaderTitle").value_or("");
    minWidth_ = coder.decodeDoubleForKey("NSMinWidth").value_or(minWidth_);
    maxWidth_ = coder.decodeDoubleForKey("NSMaxWidth").value_or(maxWidth_);
    setWidth(coder.decodeDoubleForKey("NSWidth").value_or(width_));
    return true;
}

void NSTableColumn::setTitle(const std::string& title) {
    title_ = title;
    changed();
}

void NSTableColumn::setWidth(double width) {
    const double limited = std::max(minWidth_, std::min(maxWidth_, width));
    if (limited == width_) return;
    width_ = limited;
    changed();
}

void NSTableColumn::setMinWidth(double width) {
    minWidth_ = width;
    setWidth(width_);
}

void NSTableColumn::setMaxWidth(double width) {
    maxWidth_ = width;
    setWidth(width_);
}

void NSTableColumn::changed() {
    if (tableView_) tableView_->columnsChanged();
}

} // namespace zr
