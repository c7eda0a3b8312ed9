// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSResponder.h>
#include <Base/Compiler.h>
#include <Base/Geometry.h>
#include <Foundation/Unretained.h>

#include <memory>
#include <string>
#include <vector>

namespace zr {

class NSWindow;
class ViewHost;

namespace port {
class OperationList;
class PeerFactory;
class ViewClient;
class ViewPeer;
class WindowPeer;
} // namespace port

enum NSAutoresizingMaskOptions : unsigned {
    NSViewNotSizable = 0,
    NSViewMinXMargin = 1,
    NSViewWidthSizable = 2,
    NSViewMaxXMargin = 4,
    NSViewMinYMargin = 8,
    NSViewHeightSizable = 16,
    NSViewMaxYMargin = 32,
};

// A rectangle in a window that draws, and takes events. An ordinary object: it answers everything without a
// window, too. Points; origin at the lower left and y up, unless the view says that it is flipped, which then
// holds for the frames of its subviews as well. A superview holds its subviews. Main thread only.
class ZR_EXPORT NSView : public NSResponder {
public:
    ZR_CLASS(NSView, NSResponder)
    NSView();
    ~NSView() override;

    virtual bool initWithFrame(const NSRect& frame);
    bool initWithCoder(NSCoder& coder) override; // frame, autoresizing mask, hidden, identifier
    bool init() override { return initWithFrame(NSZeroRect); }

    // In the superview's coordinates. A new size resizes the subviews by their masks, and asks for layout and
    // drawing.
    const NSRect& frame() const { return frame_; }
    void setFrame(const NSRect& frame);
    void setFrameOrigin(const NSPoint& origin) { setFrame({origin, frame_.size}); }
    void setFrameSize(const NSSize& size) { setFrame({frame_.origin, size}); }
    NSRect bounds() const { return {boundsOrigin_, frame_.size}; }
    virtual bool isFlipped() const { return false; }

    NSView* superview() const { return superview_; }
    NSWindow* window() const;
    const std::vector<std::shared_ptr<NSView>>& subviews() const { return subviews_; }
    // In front of its siblings. A view that stands elsewhere is moved. Null, and a view that would contain
    // itself, change nothing; the log names both, and a view that was a window's content: that one gets an
    // empty one, unless it is a host's, whose content stays.
    void addSubview(const std::shared_ptr<NSView>& view);
    void removeFromSuperview();
    bool isDescendantOf(const NSView& view) const;
    virtual void viewDidMoveToWindow() {}

    // A hidden view keeps its place; it is not drawn and gets no events. A hidden first responder resigns.
    bool isHidden() const { return hidden_; }
    void setHidden(bool hidden);
    bool isHiddenOrHasHiddenAncestor() const;

    unsigned autoresizingMask() const { return autoresizingMask_; }
    void setAutoresizingMask(unsigned mask) { autoresizingMask_ = mask; }
    virtual void resizeSubviewsWithOldSize(const NSSize& oldSize);
    virtual void resizeWithOldSuperviewSize(const NSSize& oldSize);

    // Null stands for the window.
    NSPoint convertPoint_fromView(const NSPoint& point, const NSView* view) const;
    NSPoint convertPoint_toView(const NSPoint& point, const NSView* view) const;
    NSRect convertRect_fromView(const NSRect& rect, const NSView* view) const;
    NSRect convertRect_toView(const NSRect& rect, const NSView* view) const;

    // The deepest visible view at the point, which is in the superview's coordinates; null outside.
    virtual NSView* hitTest(const NSPoint& point);

    // The whole view is drawn once, at the end of the current event.
    bool needsDisplay() const { return needsDisplay_; }
    virtual void setNeedsDisplay(bool flag);
    // Draws in the current context, in the view's coordinates. `dirty` lies within the bounds.
    virtual void drawRect(const NSRect& dirty);
    // Runs a drawing pass into the canvas, whose coordinates are this view's; subviews are not drawn.
    void displayInCanvas(port::OperationList& list, const NSRect& dirty);

    // layout() is called before the next drawing, superviews first. Overrides place subviews.
    bool needsLayout() const { return needsLayout_; }
    void setNeedsLayout(bool flag);
    virtual void layout() {}
    void layoutSubtreeIfNeeded();

    // The colours changed; the view is drawn again without asking for it.
    virtual void viewDidChangeEffectiveAppearance() {}

    // Where Tab goes from here; by itself, the next view in the order of the subviews. Not retained.
    NSView* nextKeyView() const { return nextKeyView_.lock().get(); }
    void setNextKeyView(const Unretained<NSView>& view) {
        nextKeyView_ = view.givenTo("-[NSView setNextKeyView:]");
    }
    // Visible, and wants the keyboard.
    bool canBecomeKeyView() const { return acceptsFirstResponder() && host_ && !isHiddenOrHasHiddenAncestor(); }
    // Whether people come to it to type or to choose with the keys, as to fields and lists. False.
    virtual bool needsPanelToBecomeKey() const { return false; }
    // Whether a view at or below this one acts on the key, whatever has the keyboard.
    virtual bool performKeyEquivalent(const NSEvent& event);

    // A name for tests and accessibility; none by default.
    const std::string& identifier() const { return identifier_; }
    void setIdentifier(const std::string& identifier);

    // Whether people type into it by a field editor.
    virtual bool usesFieldEditor() const { return false; }
    // Of such a view: what is being typed ends, and nobody is asked; false where nothing could be typed.
    // `afterRefusal`: the end was asked for, and refused.
    virtual bool endEditingUnasked(bool /*afterRefusal*/) { return false; }

protected:
    // Where the view's own coordinates begin: elsewhere in a view whose peer scrolls. Drawing does not follow.
    void setBoundsOrigin(const NSPoint& origin);
    // The only place to give a view another peer. It becomes visible where the view is.
    virtual std::unique_ptr<port::ViewPeer> makePeer(port::PeerFactory& factory, port::ViewPeer& parent,
                                                     port::ViewClient& client);
    port::ViewPeer* peer() const { return peer_.get(); } // null while the view stands in no realised window
    virtual void peerWillGo() {}                         // forget pointers to it

private:
    friend class NSWindow;
    struct Client;

    NSPoint pointToWindow(NSPoint point) const;
    NSPoint pointFromWindow(NSPoint point) const;
    bool superviewIsFlipped() const { return superview_ && superview_->isFlipped(); }
    void moveToWindow(ViewHost* host);
    bool leavePlace(); // false: it is the content of a host's window, and stays there
    void realise(port::PeerFactory& factory, port::ViewPeer& parent);
    void realiseAsContent(port::PeerFactory& factory, port::WindowPeer& window);
    void adoptPeer(port::PeerFactory& factory, std::unique_ptr<port::ViewPeer> peer);
    void unrealise();
    void placePeer();
    void placeSubviewsPeers();
    void appearanceChanged();

    NSRect frame_;
    NSPoint boundsOrigin_;
    NSView* superview_ = nullptr; // cleared by the superview
    ViewHost* host_ = nullptr;    // the window; cleared by it
    std::vector<std::shared_ptr<NSView>> subviews_;
    std::unique_ptr<Client> client_;
    std::unique_ptr<port::ViewPeer> peer_;
    std::string identifier_;
    std::weak_ptr<NSView> nextKeyView_;
    unsigned autoresizingMask_ = NSViewNotSizable;
    bool hidden_ = false;
    bool needsDisplay_ = true;
    bool needsLayout_ = true;
};

} // namespace zr
