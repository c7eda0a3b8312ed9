// SPDX-License-Identifier: MIT
#include <AppKit/NSImage.h>
#include <AppKit/NSView.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSString.h>
#include <Foundation/NSUserDefaults.h>
#include <ZRUIKit/MASPreferencesWindowController.h>

#include <algorithm>
#include <limits>

namespace zr {

ZR_CLASS_TABLE(MASPreferencesWindowController,
               .actions = {
                   actionNamed<&MASPreferencesWindowController::goNextTab>("goNextTab:"),
                   actionNamed<&MASPreferencesWindowController::goPreviousTab>("goPreviousTab:"),
                   actionNamed<&MASPreferencesWindowController::toolbarItemDidClick>("toolbarItemDidClick:")})

namespace {

constexpr const char* kSelectedKey = "MASPreferences Selected Identifier View";
constexpr const char* kTopLeftKey = "MASPreferences Frame Top Left";
constexpr auto kNotFound = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
constexpr unsigned kWidthSizable = 2, kHeightSizable = 16;

MASPreferencesViewController* paneOf(const std::shared_ptr<NSObject>& controller) {
    return dynamic_cast<MASPreferencesViewController*>(controller.get());
}

bool isPane(const std::shared_ptr<NSObject>& controller) {
    return paneOf(controller) && dynamic_cast<NSViewController*>(controller.get());
}

std::string identifierOf(const std::shared_ptr<NSObject>& controller) {
    const auto* const pane = paneOf(controller);
    return pane ? pane->identifier() : std::string();
}

std::string sizeKey(const std::string& identifier) {
    return stringWithFormat("MASPreferences %@ Frame", identifier);
}

void store(const std::string& key, const std::string& text) {
    NSUserDefaults::standardUserDefaults()->setObject_forKey(PropertyList(text), key);
}

} // namespace

bool MASPreferencesWindowController::initWithViewControllers(const Controllers& viewControllers) {
    return initWithViewControllers_title(viewControllers, std::nullopt);
}

bool MASPreferencesWindowController::initWithViewControllers_title(const Controllers& viewControllers,
                                                                   const std::optional<std::string>& title) {
    if (!initWithWindowNibName("MASPreferencesWindow")) return false;
    viewControllers_ = viewControllers;
    title_ = title;
    for (const auto& entry : viewControllers)
        if (entry != NSNull::null() && !isPane(entry))
            NSLog("-[MASPreferencesWindowController initWithViewControllers:title:]: %@ is no pane", entry);
    return true;
}

void MASPreferencesWindowController::awakeFromNib() {
    NSWindowController::awakeFromNib();
    const auto window = this->window();
    if (!window) return;
    window->setTitle(NSBundle::mainBundle().localizedStringForKey_value_table("Preferences", "", std::nullopt));
    const auto defaults = NSUserDefaults::standardUserDefaults();
    const auto identifier = defaults->stringForKey(kSelectedKey);
    const auto pane = identifier ? viewControllerForIdentifier(*identifier) : nullptr;
    setSelectedViewController(pane ? pane : firstViewController());
    if (const auto topLeft = defaults->stringForKey(kTopLeftKey))
        window->setFrameTopLeftPoint(NSPointFromString(*topLeft));
    const std::weak_ptr<MASPreferencesWindowController> weak = retained(this);
    using Handler = void (MASPreferencesWindowController::*)(NSWindow&);
    for (const auto& [name, handler] :
         {std::pair<NSNotificationName, Handler>(NSWindowDidMoveNotification,
                                                 &MASPreferencesWindowController::windowDidMove),
          std::pair<NSNotificationName, Handler>(NSWindowDidResizeNotification,
                                                 &MASPreferencesWindowController::windowDidResize)})
        observers_.push_back(NSNotificationCenter::defaultCenter().addObserverForName_object_usingBlock(
            name, window.get(), [weak, handler = handler](const NSNotification& notification) {
                if (const auto self = weak.lock())
                    (self.get()->*handler)(static_cast<NSWindow&>(*notification.object));
            }));
}

void MASPreferencesWindowController::dealloc() {
    observers_.clear();
    if (isWindowLoaded()) window()->setDelegate(nullptr);
    NSWindowController::dealloc();
}

// False where the pane that is shown has edits that cannot be committed.
bool MASPreferencesWindowController::leaveSelected() {
    const auto current = selectedViewController_;
    if (!current) return true;
    const auto window = this->window();
    if (!current->commitEditing()) {
        if (window->toolbar()) window->toolbar()->setSelectedItemIdentifier(identifierOf(current));
        return false;
    }
    window->setContentView(make<NSView>(NSZeroRect));
    if (auto* const pane = paneOf(current)) pane->viewDidDisappear();
    selectedViewController_ = nullptr;
    return true;
}

void MASPreferencesWindowController::setSelectedViewController(
    const std::shared_ptr<NSObject>& viewController) {
    const auto held = retained(this);
    const auto next = std::dynamic_pointer_cast<NSViewController>(viewController);
    const bool isListed = std::ranges::find(viewControllers_, viewController) != viewControllers_.end();
    if (viewController && !isListed && !isPane(viewController))
        NSLog("-[MASPreferencesWindowController setSelectedViewController:]: %@ is no pane", viewController);
    if (next == selectedViewController_ || !leaveSelected() || !next) return;
    auto* const pane = paneOf(next);
    const auto window = this->window();
    if (!pane || !window) return;
    const std::string identifier = pane->identifier();

    if (!title_ || title_->empty()) window->setTitle(pane->toolbarItemLabel());
    if (window->toolbar()) window->toolbar()->setSelectedItemIdentifier(identifier);
    store(kSelectedKey, identifier);

    const auto view = next->view();
    if (!view)
        return NSLog("-[MASPreferencesWindowController setSelectedViewController:]: %@ has no view", next);
    const auto saved = NSUserDefaults::standardUserDefaults()->stringForKey(sizeKey(identifier));
    const auto minimum = minimumViewRects_.try_emplace(identifier, NSStringFromRect(view->bounds())).first;
    const NSRect least = NSRectFromString(minimum->second);
    NSRect rect = saved ? NSRectFromString(*saved) : view->bounds();
    const bool widthSizable = (view->autoresizingMask() & kWidthSizable) != 0,
               heightSizable = (view->autoresizingMask() & kHeightSizable) != 0;
    if (rect.size.width < least.size.width || !widthSizable) rect.size.width = least.size.width;
    if (rect.size.height < least.size.height || !heightSizable) rect.size.height = least.size.height;
    view->setFrame(rect);

    const NSRect old = window->frame(), needed = window->frameRectForContentRect(rect);
    const NSRect frame = NSOffsetRect(
        needed, old.origin.x, (old.origin.y + old.size.height) - (needed.origin.y + needed.size.height));
    constexpr double kUnlimited = std::numeric_limits<double>::max();
    window->setContentMinSize(least.size);
    window->setContentMaxSize(
        {widthSizable ? kUnlimited : rect.size.width, heightSizable ? kUnlimited : rect.size.height});
    window->setShowsResizeIndicator(widthSizable || heightSizable);
    window->setFrame_display_animate(frame, true, window->isVisible());

    selectedViewController_ = next;
    pane->viewWillAppear();
    if (selectedViewController_ != next) return; // it has selected another
    window->setContentView(view);
    window->recalculateKeyViewLoop();
    if (window->firstResponder() == window.get()) {
        if (const auto keyView = pane->initialKeyView())
            window->makeFirstResponder(*keyView);
        else
            window->selectKeyViewFollowingView(view.get());
    }
    patchResponderChain();
    NSNotificationCenter::defaultCenter().postNotificationName_object(
        MASPreferencesWindowControllerDidChangeViewNotification, this);
}

void MASPreferencesWindowController::selectControllerAtIndex(std::uint64_t index) {
    if (index < viewControllers_.size()) setSelectedViewController(viewControllers_[index]);
}

void MASPreferencesWindowController::step(std::uint64_t by) {
    if (std::ranges::all_of(viewControllers_, [](const auto& entry) { return entry == NSNull::null(); }))
        return NSLog("A MASPreferencesWindowController is to show another pane, and has none");
    const std::uint64_t count = viewControllers_.size();
    std::uint64_t index = indexOfSelectedController();
    do {
        index = (index + by) % count;
    } while (viewControllers_[index] == NSNull::null());
    selectControllerAtIndex(index);
}

void MASPreferencesWindowController::goNextTab(NSObject*) { step(1); }
void MASPreferencesWindowController::goPreviousTab(NSObject*) { step(viewControllers_.size() - 1); }

void MASPreferencesWindowController::toolbarItemDidClick(NSObject* sender) {
    if (const auto* const item = dynamic_cast<NSToolbarItem*>(sender))
        setSelectedViewController(viewControllerForIdentifier(item->itemIdentifier()));
}

std::shared_ptr<NSViewController> MASPreferencesWindowController::firstViewController() const {
    for (const auto& entry : viewControllers_)
        if (auto controller = std::dynamic_pointer_cast<NSViewController>(entry)) return controller;
    return nullptr;
}

std::shared_ptr<NSViewController>
MASPreferencesWindowController::viewControllerForIdentifier(const std::string& identifier) const {
    for (const auto& entry : viewControllers_)
        if (const auto* const pane = paneOf(entry); pane && pane->identifier() == identifier)
            return std::dynamic_pointer_cast<NSViewController>(entry);
    return nullptr;
}

std::vector<NSToolbarItemIdentifier> MASPreferencesWindowController::toolbarItemIdentifiers() const {
    std::vector<NSToolbarItemIdentifier> identifiers;
    for (const auto& entry : viewControllers_)
        identifiers.push_back(entry == NSNull::null() ? NSToolbarFlexibleSpaceItemIdentifier
                                                      : identifierOf(entry));
    return identifiers;
}

std::uint64_t MASPreferencesWindowController::indexOfSelectedController() const {
    if (!selectedViewController_) return kNotFound;
    const auto identifiers = toolbarItemIdentifiers();
    const auto found = std::ranges::find(identifiers, identifierOf(selectedViewController_));
    return found == identifiers.end() ? kNotFound : static_cast<std::uint64_t>(found - identifiers.begin());
}

void MASPreferencesWindowController::clearResponderChain() {
    const auto window = this->window();
    const auto next = retained(window ? window->nextResponder() : nullptr);
    if (!next || std::ranges::find(viewControllers_, std::shared_ptr<NSObject>(next)) == viewControllers_.end())
        return;
    window->setNextResponder(next->nextResponder());
    next->setNextResponder(nullptr);
}

void MASPreferencesWindowController::patchResponderChain() {
    clearResponderChain();
    const auto window = this->window();
    if (!selectedViewController_ || !window) return;
    const auto after = retained(window->nextResponder());
    window->setNextResponder(selectedViewController_.get());
    selectedViewController_->setNextResponder(after.get());
}

std::vector<NSToolbarItemIdentifier> MASPreferencesWindowController::toolbarAllowedItemIdentifiers(NSToolbar&) {
    return toolbarItemIdentifiers();
}
std::vector<NSToolbarItemIdentifier> MASPreferencesWindowController::toolbarDefaultItemIdentifiers(NSToolbar&) {
    return toolbarItemIdentifiers();
}
std::optional<std::vector<NSToolbarItemIdentifier>>
MASPreferencesWindowController::toolbarSelectableItemIdentifiers(NSToolbar&) {
    return toolbarItemIdentifiers();
}

std::shared_ptr<NSToolbarItem>
MASPreferencesWindowController::toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(
    NSToolbar&, const NSToolbarItemIdentifier& identifier, bool) {
    auto item = make<NSToolbarItem>(&NSToolbarItem::initWithItemIdentifier, identifier);
    const auto identifiers = toolbarItemIdentifiers();
    const auto found = std::ranges::find(identifiers, identifier);
    if (found == identifiers.end()) return item;
    const auto& entry = viewControllers_[static_cast<std::size_t>(found - identifiers.begin())];
    if (const auto* const pane = paneOf(entry)) {
        item->setImage(pane->toolbarItemImage());
        item->setLabel(pane->toolbarItemLabel());
    }
    item->setTarget(retained(this));
    item->setAction("toolbarItemDidClick:");
    return item;
}

std::optional<bool> MASPreferencesWindowController::windowShouldClose(NSWindow&) {
    const auto selected = selectedViewController_;
    return !selected || selected->commitEditing();
}

void MASPreferencesWindowController::windowDidMove(NSWindow& window) {
    const NSRect frame = window.frame();
    store(kTopLeftKey, NSStringFromPoint({frame.origin.x, frame.origin.y + frame.size.height}));
}

void MASPreferencesWindowController::windowDidResize(NSWindow&) {
    const auto selected = selectedViewController_;
    if (selected) store(sizeKey(identifierOf(selected)), NSStringFromRect(selected->view()->bounds()));
}

} // namespace zr
