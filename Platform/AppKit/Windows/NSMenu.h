// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSEvent.h>
#include <Base/Compiler.h>
#include <Foundation/NSObject.h>
#include <Foundation/Unretained.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zr {

class NSMenu;
class NSWindow;
class WindowBarsHolder;

namespace port {
struct MenuItem;
}

// A command of a menu: what it is called, the key that is as good as choosing it, and what it sends to whom;
// the target is not retained. Main thread only, as menus are.
class ZR_EXPORT NSMenuItem : public NSObject {
public:
    ZR_CLASS(NSMenuItem, NSObject)
    static std::shared_ptr<NSMenuItem> separatorItem();
    // Without an action the item only carries a submenu. The key is a character, as the key types it without
    // modifiers, or "\t"; it is held with Command, which is Control on PC keyboards, unless the mask says
    // otherwise. A key without Command acts when nobody along the responder chain wants it. Empty for none.
    bool initWithTitle_action_keyEquivalent(const std::string& title, const SEL& action,
                                            const std::string& keyEquivalent);

    const std::string& title() const { return title_; }
    void setTitle(const std::string& title) { title_ = title; }
    const SEL& action() const { return action_; }
    // Nobody: whoever is first to take the action along the responder chain of the window in whose menu bar it
    // was chosen or, for a key, of the key window.
    std::shared_ptr<NSObject> target() const { return target_.lock(); }
    // The log names one that does not have the action.
    void setTarget(const Unretained<NSObject>& target);
    const std::string& keyEquivalent() const { return keyEquivalent_; }
    unsigned keyEquivalentModifierMask() const { return keyEquivalentModifierMask_; }
    void setKeyEquivalentModifierMask(unsigned mask) { keyEquivalentModifierMask_ = mask; }
    bool isEnabled() const { return enabled_; }
    void setEnabled(bool enabled) { enabled_ = enabled; }
    bool isSeparatorItem() const { return isSeparator_; }
    const std::shared_ptr<NSMenu>& submenu() const { return submenu_; }
    // One that leads to this item changes nothing; the log names it.
    void setSubmenu(const std::shared_ptr<NSMenu>& submenu);

    // Sends the action, as if the user had chosen the item. Answers whether somebody took it.
    bool perform();
    bool isPressedBy(const NSEvent& event) const;

private:
    friend class NSMenu;
    bool canBeChosenIn(NSWindow* window) const;
    bool performIn(NSWindow* window);

    std::string title_;
    SEL action_;
    std::weak_ptr<NSObject> target_;
    std::string keyEquivalent_;
    unsigned keyEquivalentModifierMask_ = NSEventModifierFlagCommand;
    std::shared_ptr<NSMenu> submenu_;
    bool enabled_ = true;
    bool isSeparator_ = false;
};

// Items are looked at when the menu is about to be shown: one whose action nobody takes is disabled then.
class ZR_EXPORT NSMenu : public NSObject {
public:
    ZR_CLASS(NSMenu, NSObject)
    bool initWithTitle(const std::string& title);

    const std::string& title() const { return title_; }
    const std::vector<std::shared_ptr<NSMenuItem>>& itemArray() const { return items_; }
    // Null, and an item whose submenu leads here, change nothing; the log names both.
    void addItem(const std::shared_ptr<NSMenuItem>& item);
    std::shared_ptr<NSMenuItem> addItemWithTitle_action_keyEquivalent(const std::string& title,
                                                                      const SEL& action,
                                                                      const std::string& keyEquivalent);

    // Of this menu and its submenus, the first item whose key was pressed and whose action is taken.
    bool performKeyEquivalent(const NSEvent& event);

private:
    friend class NSApplication;
    friend class NSMenuItem;
    friend class WindowBarsHolder;
    bool leadsTo(const NSMenuItem& item) const;
    using WindowNow = std::function<std::shared_ptr<NSWindow>()>;
    std::vector<port::MenuItem> shownIn(const std::weak_ptr<NSWindow>& window) const;
    std::vector<port::MenuItem> shownForAllWindows() const; // acts in the key window
    std::vector<port::MenuItem> shown(const WindowNow& window, bool needsWindow) const;

    std::string title_;
    std::vector<std::shared_ptr<NSMenuItem>> items_;
};

} // namespace zr
