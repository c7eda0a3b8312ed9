// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSToolbar.h>
#include <AppKit/NSViewController.h>
#include <AppKit/NSWindow.h>
#include <AppKit/NSWindowController.h>
#include <Base/Compiler.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zr {

class NSImage;

// Posted by the controller, about itself, after it has shown a pane.
inline const NSNotificationName MASPreferencesWindowControllerDidChangeViewNotification =
    "MASPreferencesWindowControllerDidChangeViewNotification";

// A pane of the preferences window; always an NSViewController as well.
class MASPreferencesViewController {
public:
    virtual ~MASPreferencesViewController() = default;
    virtual std::string identifier() const = 0; // of this pane alone; part of what is stored about it
    virtual std::shared_ptr<NSImage> toolbarItemImage() const = 0;
    virtual std::string toolbarItemLabel() const = 0; // the window's title, too, where it has no other
    // When it is selected: the window has been sized for it; the view is not in it yet. Not when the window is
    // closed or shown again.
    virtual void viewWillAppear() {}
    virtual void viewDidDisappear() {} // when another one, or none, is selected
    // What gets the keyboard when the pane is shown and nothing else has it. No answer: whatever comes first.
    virtual std::optional<NSView*> initialKeyView() { return std::nullopt; }
};

// The preferences window: a toolbar with an item for each pane, of which one is shown. The window grows and
// shrinks at its lower edge to fit the pane; each pane's size, the pane shown last and the window's place are
// kept in the user defaults. The window comes from the interface file "MASPreferencesWindow". Main thread only.
class ZR_EXPORT MASPreferencesWindowController : public NSWindowController,
                                                 public NSToolbarDelegate,
                                                 public NSWindowDelegate {
public:
    ZR_CLASS(MASPreferencesWindowController, NSWindowController)
    using Controllers = std::vector<std::shared_ptr<NSObject>>;

    // Panes in the order of the toolbar; NSNull for a flexible space. The log names what is neither. Of the
    // title only its emptiness counts: without one the window has the title of the pane.
    virtual bool initWithViewControllers(const Controllers& viewControllers);
    virtual bool initWithViewControllers_title(const Controllers& viewControllers,
                                               const std::optional<std::string>& title);
    void awakeFromNib() override;
    void dealloc() override;

    const Controllers& viewControllers() const { return viewControllers_; }
    const std::optional<std::string>& title() const { return title_; }
    // The bounds that each pane's view had when it was first shown, as texts.
    const std::map<std::string, std::string>& minimumViewRects() const { return minimumViewRects_; }

    // Shows a pane, unless the one that is shown has edits that cannot be committed; null empties the window.
    const std::shared_ptr<NSViewController>& selectedViewController() const { return selectedViewController_; }
    void setSelectedViewController(const std::shared_ptr<NSObject>& viewController);
    // NSNull entries are not filtered; nothing happens where there is no entry.
    void selectControllerAtIndex(std::uint64_t index);
    // Actions. To the next or previous pane, round and round. Where there is none they do nothing but to say so
    // in the log.
    void goNextTab(NSObject* sender);
    void goPreviousTab(NSObject* sender);
    void toolbarItemDidClick(NSObject* sender); // an unknown item empties the window

    std::shared_ptr<NSViewController> firstViewController() const;
    std::shared_ptr<NSViewController> viewControllerForIdentifier(const std::string& identifier) const;
    std::vector<NSToolbarItemIdentifier> toolbarItemIdentifiers() const; // one for each entry
    // The largest signed integer when none is shown.
    std::uint64_t indexOfSelectedController() const;

    // The pane that is shown follows the window in the responder chain.
    void patchResponderChain();
    void clearResponderChain();

    std::vector<NSToolbarItemIdentifier> toolbarAllowedItemIdentifiers(NSToolbar& toolbar) override;
    std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar& toolbar) override;
    std::optional<std::vector<NSToolbarItemIdentifier>>
    toolbarSelectableItemIdentifiers(NSToolbar& toolbar) override;
    std::shared_ptr<NSToolbarItem> toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(
        NSToolbar& toolbar, const NSToolbarItemIdentifier& identifier, bool inserted) override;
    std::optional<bool> windowShouldClose(NSWindow& window) override;
    void windowDidMove(NSWindow& window) override;
    void windowDidResize(NSWindow& window) override;

protected:
    Controllers viewControllers_;
    std::map<std::string, std::string> minimumViewRects_;
    std::optional<std::string> title_;
    std::shared_ptr<NSViewController> selectedViewController_;

private:
    bool leaveSelected();
    void step(std::uint64_t by);

    std::vector<std::shared_ptr<NSObject>> observers_;
};

} // namespace zr
