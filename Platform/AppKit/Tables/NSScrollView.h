// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>
#include <Base/Compiler.h>

namespace zr {

class NSTableHeaderView;

enum NSBorderType : unsigned { NSNoBorder = 0, NSLineBorder = 1, NSBezelBorder = 2, NSGrooveBorder = 3 };

// What is seen of a document. The document fills it, and scrolls itself.
class ZR_EXPORT NSClipView : public NSView {
public:
    ZR_CLASS(NSClipView, NSView)
    bool isFlipped() const override;
    // Held as a subview; null once it has gone.
    std::shared_ptr<NSView> documentView() const { return documentView_.lock(); }
    void setDocumentView(const std::shared_ptr<NSView>& view); // becomes its rearmost subview
    void resizeSubviewsWithOldSize(const NSSize& oldSize) override;

private:
    std::weak_ptr<NSView> documentView_;
};

// A frame around a document that scrolls itself, such as a table, whose header it shows above. There is nothing
// here to scroll other views with.
class ZR_EXPORT NSScrollView : public NSView {
public:
    ZR_CLASS(NSScrollView, NSView)

    bool initWithFrame(const NSRect& frame) override;
    bool initWithCoder(NSCoder& coder) override; // with its border

    bool isFlipped() const override { return true; }
    const std::shared_ptr<NSClipView>& contentView() const { return contentView_; }
    void setContentView(const std::shared_ptr<NSClipView>& view); // with the document that it has
    std::shared_ptr<NSView> documentView() const { return contentView_->documentView(); }
    void setDocumentView(const std::shared_ptr<NSView>& view);
    NSBorderType borderType() const { return borderType_; } // none at first
    void setBorderType(NSBorderType type);                  // all kinds are a line

    void tile(); // places header and document
    void resizeSubviewsWithOldSize(const NSSize&) override { tile(); }
    void drawRect(const NSRect& dirty) override;

private:
    std::shared_ptr<NSClipView> contentView_;
    std::shared_ptr<NSTableHeaderView> headerView_;
    NSBorderType borderType_ = NSNoBorder;
};

} // namespace zr
