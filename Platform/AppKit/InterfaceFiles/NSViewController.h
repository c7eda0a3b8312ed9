// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSResponder.h>
#include <Base/Compiler.h>

#include <memory>
#include <string>
#include <vector>

namespace zr {

class NSBundle;
class NSView;

// Holds a view, which it may take from an interface file. Whoever shows the view puts the controller into the
// responder chain and tells it when the view comes and goes. Main thread only.
class ZR_EXPORT NSViewController : public NSResponder {
public:
    ZR_CLASS(NSViewController, NSResponder)

    // The file is read when its view is first asked for: from the bundle given, the main bundle or the kit's.
    // It connects the outlet "view" of its owner, the controller.
    virtual bool initWithNibName_bundle(const std::string& name, const std::shared_ptr<NSBundle>& bundle);

    const std::string& nibName() const { return nibName_; } // empty for none
    std::shared_ptr<NSBundle> nibBundle() const { return nibBundle_; }

    // Loads it the first time: loadView(), then viewDidLoad(). awakeFromNib() of the objects and of the
    // controller comes within loadView(). Throws what loadView() throws.
    std::shared_ptr<NSView> view();
    void setView(const std::shared_ptr<NSView>& view);
    bool isViewLoaded() const { return view_ != nullptr; }

    // Throws std::runtime_error when there is no file, it cannot be used, or it connects no view. Overrides may
    // set another view.
    virtual void loadView();
    virtual void viewDidLoad() {}

    const std::string& title() const { return title_; }
    void setTitle(const std::string& title) { title_ = title; }

    // Whether what is being edited could be accepted. There are no editors to ask: true.
    virtual bool commitEditing() { return true; }

private:
    std::string nibName_;
    std::string title_;
    std::shared_ptr<NSBundle> nibBundle_;
    std::shared_ptr<NSView> view_;
    std::vector<std::shared_ptr<NSObject>> topLevelObjects_;
    bool loading_ = false;
};

} // namespace zr
