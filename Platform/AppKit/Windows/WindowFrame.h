// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Geometry.h>

namespace zr {

namespace port {
class WindowPeer;
}

// Where a window stands and how large it is. Screen coordinates: points, y up, origin at the lower left of the
// primary screen. Whoever calls holds the window.
class WindowFrame {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        virtual port::WindowPeer* peer() = 0; // null while there is none
        virtual double usualInset() = 0;      // from the frame's top to the content's, before there is a peer
        virtual void frameMoved() = 0;
        virtual void contentResized() = 0;
    };
    explicit WindowFrame(Owner& owner) : owner_(owner) {}

    void begin(const NSSize& contentSize) { contentSize_ = contentSize; }
    void begin(const NSRect& content);
    void beginAtPeer(); // that is somebody else's

    NSRect rect() const;
    NSRect aroundContent(const NSRect& content) const;
    NSRect contentOnScreen() const;
    const NSSize& contentSize() const { return contentSize_; }
    const NSSize& contentMinSize() const { return contentMinSize_; }
    const NSSize& contentMaxSize() const { return contentMaxSize_; }

    void setRect(const NSRect& rect);
    void setTopLeft(const NSPoint& point);
    void setContentSize(const NSSize& size); // within the limits
    void setContentLimits(const NSSize& minimum, const NSSize& maximum);

    // The peer has been made: it is placed where the program wants it, or left where it is.
    void place();
    // As much of the title bar as a hand can take hold of is on a screen, else the window goes onto the first.
    void keepWithinReach();

    // By the window system.
    void moved();
    void resized(const NSSize& contentSize);

private:
    double inset() const;

    Owner& owner_;
    NSPoint topLeft_; // of the frame
    NSSize contentSize_;
    NSSize contentMinSize_;
    NSSize contentMaxSize_{16777215, 16777215};
    bool placed_ = false; // by the program: the window system has no choice any more
};

} // namespace zr
