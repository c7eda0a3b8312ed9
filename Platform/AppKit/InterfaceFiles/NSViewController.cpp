// SPDX-License-Identifier: MIT
#include <AppKit/NSNib.h>
#include <AppKit/NSView.h>
#include <AppKit/NSViewController.h>
#include <Foundation/NSBundle.h>

#include <stdexcept>

namespace zr {

ZR_CLASS_TABLE(NSViewController, .outlets = {outletNamed<&NSViewController::setView>("view")})

bool NSViewController::initWithNibName_bundle(const std::string& name,
                                              const std::shared_ptr<NSBundle>& bundle) {
    if (!NSResponder::init()) return false;
    nibName_ = name;
    nibBundle_ = bundle;
    return true;
}

std::shared_ptr<NSView> NSViewController::view() {
    if (view_ || loading_) return view_;
    const auto held = retained(this);
    struct Loading {
        explicit Loading(bool& flag) : flag_(flag) { flag_ = true; }
        ~Loading() { flag_ = false; }
        Loading(const Loading&) = delete;
        Loading& operator=(const Loading&) = delete;
        bool& flag_;
    };
    {
        const Loading loading(loading_);
        loadView();
    }
    if (view_) viewDidLoad();
    return view_;
}

void NSViewController::setView(const std::shared_ptr<NSView>& view) { view_ = view; }

void NSViewController::loadView() {
    const auto nib = make<NSNib>(&NSNib::initWithNibNamed_bundle, nibName_, nibBundle_.get());
    const bool opened = nib && nib->instantiateWithOwner_topLevelObjects(retained(this), &topLevelObjects_);
    if (opened && view_) return;
    std::string message = "could not load the view from the interface file \"";
    message += nibName_;
    message += '"';
    throw std::runtime_error(message);
}

} // namespace zr
