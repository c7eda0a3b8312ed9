// SPDX-License-Identifier: MIT
#include <AppKit/NSBezierPath.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSScrollView.h>
#include <AppKit/NSTableHeaderView.h>
#include <AppKit/NSTableView.h>
#include <Foundation/NSCoder.h>

#include <algorithm>

namespace zr {

ZR_CLASS_TABLE(NSClipView)
ZR_CLASS_TABLE(NSScrollView)

bool NSClipView::isFlipped() const {
    const auto document = documentView();
    return document && document->isFlipped();
}

void NSClipView::setDocumentView(const std::shared_ptr<NSView>& given) {
    const auto held = retained(this);
    const auto view = retained(given.get()); // whoever is called may reset where it came from
    const auto old = documentView();
    if (view == old) return;
    if (old && old->superview() == this) old->removeFromSuperview();
    documentView_ = view;
    if (!view) return;
    const auto inFront = subviews();
    addSubview(view);
    for (const auto& subview : inFront)
        if (subview != view && subview->superview() == this) addSubview(subview);
    view->setFrame(bounds());
}

void NSClipView::resizeSubviewsWithOldSize(const NSSize& oldSize) {
    NSView::resizeSubviewsWithOldSize(oldSize);
    const auto document = documentView();
    if (document && document->superview() == this) document->setFrame(bounds());
}

bool NSScrollView::initWithFrame(const NSRect& frame) {
    if (!NSView::initWithFrame(frame)) return false;
    setContentView(make<NSClipView>(NSRect{}));
    return true;
}

bool NSScrollView::initWithCoder(NSCoder& coder) {
    if (!NSView::initWithCoder(coder)) return false;
    borderType_ = static_cast<NSBorderType>(coder.decodeDoubleForKey("NSBorderType").value_or(NSNoBorder));
    setContentView(make<NSClipView>(NSRect{}));
    return true;
}

void NSScrollView::setContentView(const std::shared_ptr<NSClipView>& view) {
    if (!view || view == contentView_) return;
    if (contentView_) contentView_->removeFromSuperview();
    contentView_ = view;
    addSubview(view);
    tile();
}

void NSScrollView::setDocumentView(const std::shared_ptr<NSView>& view) {
    contentView_->setDocumentView(view);
    tile();
}

void NSScrollView::setBorderType(NSBorderType type) {
    borderType_ = type;
    tile();
    setNeedsDisplay(true);
}

void NSScrollView::tile() {
    const auto* const table = dynamic_cast<NSTableView*>(documentView().get());
    const auto header = table ? table->headerView() : nullptr;
    if (header != headerView_) {
        if (headerView_ && headerView_->superview() == this) headerView_->removeFromSuperview();
        headerView_ = header;
        if (header) addSubview(header);
    }
    const double border = borderType_ == NSNoBorder ? 0 : 1;
    NSRect area = NSInsetRect(bounds(), border, border);
    area.size = {std::max(0.0, area.size.width), std::max(0.0, area.size.height)};
    if (header) {
        const double height = std::min(NSTableHeaderView::kHeight, area.size.height);
        header->setFrame({area.origin, {area.size.width, height}});
        area.origin.y += height;
        area.size.height -= height;
    }
    contentView_->setFrame(area);
}

void NSScrollView::drawRect(const NSRect&) {
    if (borderType_ == NSNoBorder) return;
    NSColor::separatorColor().set();
    NSBezierPath::bezierPathWithRect(NSInsetRect(bounds(), 0.5, 0.5)).stroke();
}

} // namespace zr
