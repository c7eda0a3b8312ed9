// SPDX-License-Identifier: MIT
#include <AppKit/NSImage.h>
#include <Foundation/NSBundle.h>
#include <ZRUIKit/BaseSliderView.h>
#include <ZRUIKit/KitFoundation.h>

#include <cmath>

namespace zr {

NSBundle& KitBundle() { return NSBundle::bundleForClass(BaseSliderView::classTable()); }

std::string KitLocalizedString(const std::string& key) {
    return KitBundle().localizedStringForKey_value_table(key, "", "Localized");
}

std::string AppLocalizedString(const std::string& key) {
    return NSBundle::mainBundle().localizedStringForKey_value_table(key, "", std::nullopt);
}

std::shared_ptr<NSImage> KitImage(const std::string& name) { return KitBundle().imageForResource(name); }

void OnMainQueue(dispatch_block_t block) { dispatch_async(dispatch_get_main_queue(), std::move(block)); }

bool RepostedToMainQueue(dispatch_block_t block) {
    if (NSThread::isMainThread()) return false;
    OnMainQueue(std::move(block));
    return true;
}

void AfterDelay(double seconds, dispatch_block_t block) {
    const auto nanoseconds = std::llround(seconds * static_cast<double>(NSEC_PER_SEC));
    dispatch_after(dispatch_time(DISPATCH_TIME_NOW, nanoseconds), dispatch_get_main_queue(), std::move(block));
}

} // namespace zr
