// SPDX-License-Identifier: MIT
#include "InstalledSystem.h"

#include <AppKit/NSMenu.h>
#include <Foundation/NSLog.h>

#include <algorithm>

namespace zr {

ZR_CLASS_TABLE(NSMenuItem)
ZR_CLASS_TABLE(NSMenu)

std::shared_ptr<NSMenuItem> NSMenuItem::separatorItem() {
    auto item = make<NSMenuItem>();
    item->isSeparator_ = true;
    return item;
}

bool NSMenuItem::initWithTitle_action_keyEquivalent(const std::string& title, const SEL& action,
                                                    const std::string& keyEquivalent) {
    title_ = title;
    action_ = action;
    keyEquivalent_ = keyEquivalent;
    return true;
}

void NSMenuItem::setTarget(const Unretained<NSObject>& target) {
    target_ = target.givenTo("-[NSMenuItem setTarget:]");
    const auto now = this->target();
    if (target.isHeld() && now && !action_.empty() && !now->respondsToSelector(action_))
        NSLog("-[NSMenuItem setTarget:]: nobody takes %@ of \"%@\": %@ does not have it", action_, title_, now);
}

void NSMenuItem::setSubmenu(const std::shared_ptr<NSMenu>& submenu) {
    if (submenu && submenu->leadsTo(*this))
        NSLog("-[NSMenuItem setSubmenu:]: \"%@\" would contain itself", title_);
    else
        submenu_ = submenu;
}

bool NSMenuItem::perform() {
    return installedSystem() && performIn(installedSystem()->router->keyWindow().get());
}

bool NSMenuItem::performIn(NSWindow* window) {
    if (!enabled_ || action_.empty()) return false;
    const auto held = retained(this);
    const auto taker = installedSystem()->router->takerOf(action_, target().get(), window);
    return taker && taker->performSelector_withObject(action_, this);
}

// As its key equivalent would act, or not.
bool NSMenuItem::canBeChosenIn(NSWindow* window) const {
    if (!enabled_ || submenu_) return enabled_;
    auto& router = *installedSystem()->router;
    return !action_.empty() && !router.isModal() && router.takerOf(action_, target().get(), window) != nullptr;
}

bool NSMenuItem::isPressedBy(const NSEvent& event) const {
    constexpr unsigned kShortcutFlags =
        NSEventModifierFlagCommand | NSEventModifierFlagOption | NSEventModifierFlagControl;
    // Shift counts where it is asked for: what else it makes of a key is in the characters.
    const unsigned shift = keyEquivalentModifierMask_ & NSEventModifierFlagShift;
    const auto lowered = [&](std::string characters) {
        if (shift != 0 && characters.size() == 1 && characters[0] >= 'A' && characters[0] <= 'Z')
            characters[0] = static_cast<char>(characters[0] + ('a' - 'A'));
        return characters;
    };
    return !keyEquivalent_.empty() && lowered(event.charactersIgnoringModifiers()) == lowered(keyEquivalent_) &&
           (event.modifierFlags() & (kShortcutFlags | shift)) == keyEquivalentModifierMask_;
}

bool NSMenu::initWithTitle(const std::string& title) {
    title_ = title;
    return true;
}

bool NSMenu::leadsTo(const NSMenuItem& item) const {
    return std::ranges::any_of(items_, [&](const auto& each) {
        return each.get() == &item || (each->submenu() && each->submenu()->leadsTo(item));
    });
}

void NSMenu::addItem(const std::shared_ptr<NSMenuItem>& item) {
    if (!item) return NSLog("-[NSMenu addItem:]: the item is null");
    items_.push_back(item);
    if (!item->submenu() || !item->submenu()->leadsTo(*item)) return;
    items_.pop_back();
    NSLog("-[NSMenu addItem:]: \"%@\" would contain itself", item->title());
}

std::shared_ptr<NSMenuItem> NSMenu::addItemWithTitle_action_keyEquivalent(const std::string& title,
                                                                          const SEL& action,
                                                                          const std::string& keyEquivalent) {
    auto item = make<NSMenuItem>(&NSMenuItem::initWithTitle_action_keyEquivalent, title, action, keyEquivalent);
    addItem(item);
    return item;
}

std::vector<port::MenuItem> NSMenu::shownIn(const std::weak_ptr<NSWindow>& window) const {
    return shown([window] { return window.lock(); }, true);
}

std::vector<port::MenuItem> NSMenu::shownForAllWindows() const {
    return shown([] { return installedSystem() ? installedSystem()->router->keyWindow() : nullptr; }, false);
}

std::vector<port::MenuItem> NSMenu::shown(const WindowNow& window, bool needsWindow) const {
    std::vector<port::MenuItem> result;
    for (const auto& item : items_) {
        port::MenuItem shown{.title = item->title(),
                             .key = item->keyEquivalent(),
                             .modifierFlags = item->keyEquivalentModifierMask(),
                             .enabled = item->canBeChosenIn(window().get()),
                             .separator = item->isSeparatorItem()};
        if (const auto& submenu = item->submenu())
            shown.submenu = [submenu, window, needsWindow] { return submenu->shown(window, needsWindow); };
        else
            shown.choose = [item, window, needsWindow] {
                const auto held = window();
                if ((held || !needsWindow) && item->canBeChosenIn(held.get())) item->performIn(held.get());
            };
        result.push_back(std::move(shown));
    }
    return result;
}

bool NSMenu::performKeyEquivalent(const NSEvent& event) {
    const auto held = retained(this);
    const auto items = items_;
    return std::ranges::any_of(items, [&](const auto& item) {
        const auto submenu = item->submenu();
        return submenu ? submenu->performKeyEquivalent(event) : item->isPressedBy(event) && item->perform();
    });
}

} // namespace zr
