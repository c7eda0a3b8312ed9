// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zr::headless {

class RealWindow;

// One view, whatever its kind. Controls of the window system's own say what they do with the user's input.
class View {
public:
    View(RealWindow& window, View* parent, port::ViewClient& client);
    virtual ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    Point originInContent() const;
    bool isShown() const { return !hidden && (!parent || parent->isShown()); }
    View* at(Point point); // in the parent's coordinates
    // Visits may take views away, this one included.
    void walk(const std::function<void(View&)>& visit);

    // Of the left button, on it. Own: the client does not hear of it; untilRelease: nor of what follows.
    enum class Press { notOwn, own, untilRelease };
    virtual Press press() { return Press::notOwn; }
    virtual void release() {} // on it, after such a press
    virtual bool key(const InputEvent&) {
        return false;
    } // down, while it has the keyboard; true: it was for it
    virtual bool wheel(const InputEvent&) { return false; } // likewise
    virtual std::string text() const { return {}; }         // that it shows
    virtual std::vector<std::string> traits() const { return {}; }

    RealWindow* window; // null once the window is gone
    View* parent;
    port::ViewClient* client;
    std::vector<View*> children;
    std::shared_ptr<bool> alive = std::make_shared<bool>(true);
    Rect frame;
    bool hidden = false;
    bool dirty = true;
    std::string name;
    std::vector<std::string> lines;
    int drawCount = 0;

protected:
    void placeAt(const Rect& newFrame);
    void show(bool shown);
    void raiseAboveSiblings();
    void takeKeyboard();
    // Whether a press may go on: one that takes the keyboard asks for it first. The view may be gone after
    // that.
    bool pressMayGoOn();
};

inline View& viewOf(port::ViewPeer& peer) { return dynamic_cast<View&>(peer); }

// The shared body of all view peers.
template <class Kind>
class PeerOf : public Kind, public View {
public:
    using Interface = Kind;

    PeerOf(port::ViewPeer& superview, port::ViewClient& viewClient)
        : View(*viewOf(superview).window, &viewOf(superview), viewClient) {}
    PeerOf(RealWindow& ofWindow, port::ViewClient& viewClient) : View(ofWindow, nullptr, viewClient) {}

    void setFrame(const Rect& newFrame) override { placeAt(newFrame); }
    void setHidden(bool nowHidden) override { show(!nowHidden); }
    void raise() override { raiseAboveSiblings(); }
    void invalidate() override { dirty = true; }
    void focus() override { takeKeyboard(); }
    void setName(const std::string& newName) override { name = newName; }
};

class PlainView final : public PeerOf<port::ViewPeer> {
public:
    using PeerOf::PeerOf;
};

} // namespace zr::headless
