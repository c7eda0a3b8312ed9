// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>

#include <memory>
#include <vector>

namespace zr {

// Who has the keyboard in a window, and where Tab leads. Whoever calls holds the window.
class WindowFocus {
public:
    class Owner {
    public:
        virtual ~Owner() = default;
        virtual NSResponder& asResponder() = 0; // the first one, where no view is
        virtual NSView& content() = 0;
        virtual bool isHere(const NSView& view) = 0;
        virtual void giveKeyboard(NSView& view) = 0; // the window system's
    };
    explicit WindowFocus(Owner& owner) : owner_(owner) {}

    NSResponder& first() const;
    bool makeFirst(NSResponder* responder); // false where the one before did not resign
    // The user's doing would move the keyboard to the view: asks, and makes it first. True where it is.
    bool take(NSView& view);
    // The window system's keyboard is at the view: where it does not belong there it goes back.
    void confirm(const NSView& view);
    // The window system's keyboard goes to the first responder: to the content where that is the window itself.
    void show();
    // The keyboard went to what is none of the window's views: nobody is asked.
    void left();
    void endEditing();
    void viewLeaves(NSView& view); // it, and all below it, are first responder no more
    // The window is shown for the first time.
    void begin();

    NSView* initial() const { return initial_.lock().get(); }
    void setInitial(const std::weak_ptr<NSView>& view) { initial_ = view; }

    // Keys: to the first responder; those with Command to key equivalents before.
    void handle(const NSEvent& event);
    // A key that no view took: key equivalents, then Tab. False: it is for nobody here.
    bool handleUntaken(const NSEvent& event);
    // As the key that types these characters, whatever has the keyboard.
    bool performKeyEquivalentOf(const char* characters);
    bool selectKeyView(NSView* from, bool backwards); // false: there is no other
    void recalculateKeyViewLoop();

private:
    bool belongsTo(const NSView& view) const;
    bool performKeyEquivalent(const NSEvent& event);
    std::vector<std::shared_ptr<NSView>> keyViews() const; // in the order of the subviews
    std::shared_ptr<NSView> linked(NSView& from, bool backwards) const;
    NSView* linkedFrom(const NSView& view) const;

    Owner& owner_;
    std::weak_ptr<NSResponder> first_; // empty: the window
    std::weak_ptr<NSView> initial_;
};

} // namespace zr
