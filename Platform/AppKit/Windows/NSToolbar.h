// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>
#include <Foundation/Unretained.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zr {

class NSImage;
class NSToolbar;
class WindowBarsHolder;

namespace port {
class WindowBars;
}

using NSToolbarItemIdentifier = std::string;
// Made by the toolbar itself.
inline const NSToolbarItemIdentifier NSToolbarFlexibleSpaceItemIdentifier = "NSToolbarFlexibleSpaceItem";
inline const NSToolbarItemIdentifier NSToolbarSpaceItemIdentifier = "NSToolbarSpaceItem";

// An icon, shown at 32 x 32 points, above a label; a toolbar looks at them when it takes the item. A click
// sends the action to the target or, without one, along the responder chain; the sender is the item.
class ZR_EXPORT NSToolbarItem : public NSObject {
public:
    ZR_CLASS(NSToolbarItem, NSObject)
    bool initWithItemIdentifier(const NSToolbarItemIdentifier& identifier);

    const NSToolbarItemIdentifier& itemIdentifier() const { return itemIdentifier_; }
    const std::string& label() const { return label_; }
    void setLabel(const std::string& label) { label_ = label; }
    const std::shared_ptr<NSImage>& image() const { return image_; }
    void setImage(const std::shared_ptr<NSImage>& image) { image_ = image; }
    std::shared_ptr<NSObject> target() const { return target_.lock(); }
    void setTarget(const Unretained<NSObject>& target) {
        target_ = target.givenTo("-[NSToolbarItem setTarget:]");
    }
    const SEL& action() const { return action_; }
    void setAction(const SEL& action) { action_ = action; }

private:
    NSToolbarItemIdentifier itemIdentifier_;
    std::string label_;
    std::shared_ptr<NSImage> image_;
    std::weak_ptr<NSObject> target_;
    SEL action_;
};

class NSToolbarDelegate {
public:
    virtual ~NSToolbarDelegate() = default;
    virtual std::vector<NSToolbarItemIdentifier> toolbarDefaultItemIdentifiers(NSToolbar&) { return {}; }
    virtual std::vector<NSToolbarItemIdentifier> toolbarAllowedItemIdentifiers(NSToolbar&) { return {}; }
    // Items that stay marked after a click. Nothing: none does.
    virtual std::optional<std::vector<NSToolbarItemIdentifier>> toolbarSelectableItemIdentifiers(NSToolbar&) {
        return std::nullopt;
    }
    // Not asked for spaces. Null: no such item.
    virtual std::shared_ptr<NSToolbarItem>
    toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(NSToolbar&, const NSToolbarItemIdentifier&, bool) {
        return nullptr;
    }
};

// A row of items between a window's title and its content. They are asked of the delegate when the toolbar has
// both a window and a delegate, or when they are first asked for: the default ones, as nobody can choose
// others. Neither the delegate nor the targets are retained. Main thread only.
class ZR_EXPORT NSToolbar : public NSObject {
public:
    ZR_CLASS(NSToolbar, NSObject)
    NSToolbar();
    ~NSToolbar() override;
    bool initWithIdentifier(const std::string& identifier);
    virtual bool initWithCoder(NSCoder& coder);

    const std::string& identifier() const { return identifier_; }
    std::shared_ptr<NSToolbarDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const Unretained<NSToolbarDelegate>& delegate);
    const std::vector<std::shared_ptr<NSToolbarItem>>& items();

    // The item that is marked. Setting it sends no action; one that is not there marks none.
    const std::optional<NSToolbarItemIdentifier>& selectedItemIdentifier() const { return selected_; }
    void setSelectedItemIdentifier(const std::optional<NSToolbarItemIdentifier>& identifier);

private:
    friend class WindowBarsHolder;
    struct Client;
    void barsChanged(bool inWindow, port::WindowBars* bars); // null: the window shows none
    void barsLeft() { bars_ = nullptr; }
    void loadItems();
    void tellPeer();
    void tellSelection();
    void clicked(std::size_t index);

    std::string identifier_;
    std::weak_ptr<NSToolbarDelegate> delegate_;
    std::vector<std::shared_ptr<NSToolbarItem>> items_;
    std::optional<NSToolbarItemIdentifier> selected_;
    std::vector<NSToolbarItemIdentifier> selectable_;
    port::WindowBars* bars_ = nullptr; // the window's, which clears it
    std::unique_ptr<Client> client_;
    bool inWindow_ = false;
    bool loaded_ = false;
};

} // namespace zr
