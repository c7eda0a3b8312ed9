// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSResponder.h>
#include <Base/Compiler.h>

#include <memory>
#include <string>
#include <vector>

namespace zr {

class NSWindow;

// Holds a window, which it may take from an interface file, and follows it in the responder chain. Main thread
// only.
class ZR_EXPORT NSWindowController : public NSResponder {
public:
    ZR_CLASS(NSWindowController, NSResponder)

    bool init() override { return initWithWindow(nullptr); }
    virtual bool initWithWindow(const std::shared_ptr<NSWindow>& window);
    // The file is read when its window is first asked for: from the bundle of the owner's class, the main
    // bundle or the kit's. The owner is not retained; without another one it is the controller itself, whose
    // outlet "window" the file connects. Of a file with another owner the first window is taken.
    virtual bool initWithWindowNibName(const std::string& name);
    virtual bool initWithWindowNibName_owner(const std::string& name, const std::shared_ptr<NSObject>& owner);

    const std::string& windowNibName() const { return windowNibName_; } // empty for none
    std::shared_ptr<NSObject> owner() const { return owner_.lock(); }

    // Loads it the first time: windowWillLoad(), loadWindow(), windowDidLoad(). awakeFromNib() of the objects
    // and of the owner comes within loadWindow(). Null when there is no file or it could not be used, which is
    // tried once; windowDidLoad() is not called then.
    std::shared_ptr<NSWindow> window();
    void setWindow(const std::shared_ptr<NSWindow>& window);
    bool isWindowLoaded() const { return window_ != nullptr; }

    virtual void windowWillLoad() {}
    virtual void loadWindow();
    virtual void windowDidLoad() {}

    void showWindow(NSObject* sender); // in front, with the keyboard; an action too: "showWindow:"
    void close();                      // the window, without asking; does not load it

private:
    std::string windowNibName_;
    std::weak_ptr<NSObject> owner_;
    std::shared_ptr<NSWindow> window_;
    std::vector<std::shared_ptr<NSObject>> topLevelObjects_;
    bool loadTried_ = false;
};

} // namespace zr
