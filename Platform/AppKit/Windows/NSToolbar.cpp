// SPDX-License-Identifier: MIT
#include "HeldClient.h"
#include "InstalledSystem.h"

#include <AppKit/NSImage.h>
#include <AppKit/NSToolbar.h>
#include <Foundation/NSCoder.h>
#include <Foundation/NSLog.h>

#include <algorithm>

namespace zr {

ZR_CLASS_TABLE(NSToolbarItem)
ZR_CLASS_TABLE(NSToolbar, .outlets = {outletNamed<&NSToolbar::setDelegate>("delegate")})

bool NSToolbarItem::initWithItemIdentifier(const NSToolbarItemIdentifier& identifier) {
    itemIdentifier_ = identifier;
    return true;
}

struct NSToolbar::Client final : HeldClient<NSToolbar, port::ToolbarClient> {
    using HeldClient::HeldClient;
    void peerClicked(std::size_t index) override { entered(&NSToolbar::clicked, index); }
};

NSToolbar::NSToolbar() : client_(std::make_unique<Client>(*this)) {}
NSToolbar::~NSToolbar() = default;

bool NSToolbar::initWithIdentifier(const std::string& identifier) {
    identifier_ = identifier;
    return true;
}

bool NSToolbar::initWithCoder(NSCoder& coder) {
    return initWithIdentifier(coder.decodeStringForKey("NSToolbarIdentifier").value_or(""));
}

void NSToolbar::setDelegate(const Unretained<NSToolbarDelegate>& delegate) {
    delegate_ = delegate.givenTo("-[NSToolbar setDelegate:]");
    items_.clear();
    loaded_ = false;
    if (inWindow_) tellPeer();
}

const std::vector<std::shared_ptr<NSToolbarItem>>& NSToolbar::items() {
    loadItems();
    return items_;
}

void NSToolbar::loadItems() {
    const auto delegate = this->delegate();
    if (loaded_ || !delegate) return;
    const auto held = retained(this);
    loaded_ = true;
    items_.clear();
    for (const auto& identifier : delegate->toolbarDefaultItemIdentifiers(*this)) {
        const bool isSpace =
            identifier == NSToolbarFlexibleSpaceItemIdentifier || identifier == NSToolbarSpaceItemIdentifier;
        auto item =
            isSpace
                ? make<NSToolbarItem>(&NSToolbarItem::initWithItemIdentifier, identifier)
                : delegate->toolbar_itemForItemIdentifier_willBeInsertedIntoToolbar(*this, identifier, true);
        if (item) items_.push_back(std::move(item));
    }
    selectable_ = delegate->toolbarSelectableItemIdentifiers(*this).value_or(std::vector<std::string>{});
}

void NSToolbar::setSelectedItemIdentifier(const std::optional<NSToolbarItemIdentifier>& identifier) {
    selected_ = identifier;
    tellSelection();
}

void NSToolbar::barsChanged(bool inWindow, port::WindowBars* bars) {
    inWindow_ = inWindow;
    bars_ = bars;
    if (inWindow) tellPeer();
}

void NSToolbar::tellPeer() {
    using Kind = port::ToolbarItem::Kind;
    loadItems();
    if (!bars_) return;
    std::vector<port::ToolbarItem> items;
    for (const auto& item : items_) {
        port::ToolbarItem shown;
        if (item->itemIdentifier() == NSToolbarFlexibleSpaceItemIdentifier) shown.kind = Kind::flexibleSpace;
        if (item->itemIdentifier() == NSToolbarSpaceItemIdentifier) shown.kind = Kind::space;
        shown.label = item->label();
        if (const auto& image = item->image()) {
            shown.image = image->representations();
            shown.imageSize = image->size();
        }
        items.push_back(std::move(shown));
    }
    bars_->setToolbar(items, client_.get());
    tellSelection();
}

void NSToolbar::tellSelection() {
    if (!bars_) return;
    const auto found = std::ranges::find_if(
        items_, [this](const auto& item) { return selected_ && item->itemIdentifier() == *selected_; });
    bars_->selectToolbarItem(
        found == items_.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - items_.begin())));
}

void NSToolbar::clicked(std::size_t index) {
    if (index >= items_.size()) return;
    const auto item = items_[index];
    if (std::ranges::find(selectable_, item->itemIdentifier()) != selectable_.end())
        setSelectedItemIdentifier(item->itemIdentifier());
    if (item->action().empty()) return;
    auto& router = *installedSystem()->router;
    const auto taker = router.takerOf(item->action(), item->target().get(), router.keyWindow().get());
    if (taker)
        taker->performSelector_withObject(item->action(), item.get());
    else
        NSLog("Nobody takes %@ of the toolbar item \"%@\"", item->action(), item->itemIdentifier());
}

} // namespace zr
