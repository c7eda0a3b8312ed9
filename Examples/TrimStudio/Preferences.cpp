// SPDX-License-Identifier: MIT
#include "Description.h"
#include "GeneralViewController.h"
#include "Preferences.h"

#include <AppKit/NSScreen.h>
#include <AppKit/NSTableView.h>
#include <Foundation/Dispatch.h>
#include <Foundation/NSUserDefaults.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <set>
#include <string>
#include <utility>

namespace trimstudio {

using namespace zr;

// The kit's pane, which tells when it shows something else, and forgets no folder that the user did not remove:
// not those that a cancelled restore has not reached, and none in place of a removed one.
class TrustedPane : public ZRTrustedPathViewCtl {
public:
    ZR_CLASS(TrustedPane, ZRTrustedPathViewCtl)
    void setDidChange(std::function<void()> didChange) { didChange_ = std::move(didChange); }
    void refreshLoadingUI() override {
        ZRTrustedPathViewCtl::refreshLoadingUI();
        changed();
    }
    void updateRecoveringPath() override {
        ZRTrustedPathViewCtl::updateRecoveringPath();
        if (NSThread::isMainThread()) changed();
    }
    long numberOfRowsInTableView(NSTableView& table) override {
        changed();
        return ZRTrustedPathViewCtl::numberOfRowsInTableView(table);
    }

    bool commitEditing() override { return loadingCanceled() || ZRTrustedPathViewCtl::commitEditing(); }
    void removeFolderDown(NSObject* sender) override {
        std::set<std::string> gone;
        for (const std::size_t row : tableView()->selectedRowIndexes())
            if (row < aryItems().size()) gone.insert(aryItems()[row].path());
        const auto defaults = NSUserDefaults::standardUserDefaults();
        const auto before = defaults->arrayForKey(kBookmarksKey);
        auto stored = before ? *before : PropertyList::Array();
        ZRTrustedPathViewCtl::removeFolderDown(sender);
        std::erase_if(stored, [&](const PropertyList& entry) {
            const auto* const bookmark = entry.get<NSData>();
            const auto values = bookmark
                                    ? NSURL::resourceValuesForKeys_fromBookmarkData({NSURLPathKey}, *bookmark)
                                    : std::nullopt;
            return values && values->contains(NSURLPathKey) &&
                   gone.contains(values->at(NSURLPathKey).description());
        });
        defaults->setObject_forKey(std::move(stored), kBookmarksKey);
    }

private:
    static constexpr const char* kBookmarksKey = "BookmarksKey";
    void changed() {
        if (didChange_) didChange_();
    }
    std::function<void()> didChange_;
};
ZR_CLASS_TABLE(TrustedPane)

// The kit's window, which describes itself here.
class PreferencesWindow : public MASPreferencesWindowController {
public:
    ZR_CLASS(PreferencesWindow, MASPreferencesWindowController)

    bool initWithTrusted_describes(const std::shared_ptr<TrustedPane>& trusted, bool describes) {
        describes_ = describes;
        const auto general = make<GeneralViewController>();
        general->setDidChange([weak = std::weak_ptr(retained(this))] {
            if (const auto self = weak.lock()) self->describeSoon();
        });
        return initWithViewControllers_title({trusted, general}, AppLocalizedString("Preferences"));
    }
    void awakeFromNib() override {
        window()->setAuxiliary(true);
        const bool wasPlaced =
            NSUserDefaults::standardUserDefaults()->objectForKey("MASPreferences Frame Top Left") != nullptr;
        MASPreferencesWindowController::awakeFromNib();
        if (!wasPlaced) centre();
    }
    void windowDidMove(NSWindow& window) override {
        MASPreferencesWindowController::windowDidMove(window);
        describeSoon();
    }
    void windowDidResize(NSWindow& window) override {
        MASPreferencesWindowController::windowDidResize(window);
        describeSoon();
    }
    void windowDidBecomeKey(NSWindow&) override { describeSoon(); }
    void windowDidResignKey(NSWindow&) override { describeSoon(); }
    void windowWillClose(NSWindow&) override { describeSoon(); }

    // Once for all that happens in an event, when it is over.
    void describeSoon() {
        if (!describes_ || std::exchange(descriptionPosted_, true)) return;
        OnMainQueue([self = retained(this)] {
            self->descriptionPosted_ = false;
            const auto* const pane =
                dynamic_cast<MASPreferencesViewController*>(self->selectedViewController().get());
            std::string line = describePreferences(*self->window(), pane ? pane->identifier() : "");
            if (line == self->lastDescription_) return;
            std::puts(line.c_str());
            std::fflush(stdout);
            self->lastDescription_ = std::move(line);
        });
    }

private:
    void centre() {
        const NSSize screen = NSScreen::mainScreen().frame().size, size = window()->frame().size;
        window()->setFrameTopLeftPoint(
            {std::round((screen.width - size.width) / 2), std::round((screen.height + size.height) / 2)});
    }

    std::string lastDescription_;
    bool describes_ = false;
    bool descriptionPosted_ = false;
};

ZR_CLASS_TABLE(PreferencesWindow)
ZR_CLASS_TABLE(Preferences, .actions = {actionNamed<&Preferences::showPreferences>("showPreferences:")})

Preferences::Preferences() = default;
Preferences::~Preferences() = default;

bool Preferences::initWithDescribes(bool describes) {
    describes_ = describes;
    trusted_ = make<TrustedPane>();
    trusted_->setDidChange([weak = std::weak_ptr(retained(this))] {
        const auto self = weak.lock();
        if (!self) return;
        if (self->window_) self->window_->describeSoon();
        if (self->didChange_) self->didChange_();
    });
    return true;
}

void Preferences::showPreferences(NSObject* sender) {
    if (!window_)
        window_ = make<PreferencesWindow>(&PreferencesWindow::initWithTrusted_describes, trusted_, describes_);
    window_->showWindow(sender);
}

} // namespace trimstudio
