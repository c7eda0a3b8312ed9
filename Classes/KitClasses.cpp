#include <AppKit/NSAlert.h>
#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSControl.h>
#include <AppKit/NSImage.h>
#include <AppKit/NSImageView.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSNib.h>
#include <AppKit/NSOpenPanel.h>
#include <AppKit/NSProgressIndicator.h>
#include <AppKit/NSResponder.h>
#include <AppKit/NSScrollView.h>
#include <AppKit/NSTableColumn.h>
#include <AppKit/NSTableHeaderView.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSToolbar.h>
#include <AppKit/NSView.h>
#include <AppKit/NSViewController.h>
#include <AppKit/NSWindow.h>
#include <AppKit/NSWindowController.h>
#include <Foundation/FileClasses.h>
#include <Foundation/ObjectClasses.h>
#include <ZRUIKit/BaseSliderView.h>
#include <ZRUIKit/MASPreferencesWindowController.h>
#include <ZRUIKit/ProgressSliderView.h>
#include <ZRUIKit/SWTimeEditView.h>
#include <ZRUIKit/SliderSelectionItem.h>
#include <ZRUIKit/SplitSliderView.h>
#include <ZRUIKit/ZRAlert.h>
#include <ZRUIKit/ZRLoadingWndCtl.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>

#include <array>
#include <initializer_list>
#include <vector>

namespace zr {

namespace {
using Tables = std::span<const ClassTable* const>;

std::vector<const ClassTable*> joined(std::initializer_list<Tables> lists) {
    std::vector<const ClassTable*> all;
    for (const Tables list : lists) all.insert(all.end(), list.begin(), list.end());
    return all;
}
} // namespace

std::span<const ClassTable* const> kitClassTables() {
    static const std::array own = {
        &NSResponder::classTable(),
        &NSAlert::classTable(),
        &NSApplication::classTable(),
        &NSImage::classTable(),
        &NSView::classTable(),
        &NSControl::classTable(),
        &NSButton::classTable(),
        &NSTextField::classTable(),
        &NSWindow::classTable(),
        &NSNib::classTable(),
        &NSWindowController::classTable(),
        &NSViewController::classTable(),
        &SliderSelectionItem::classTable(),
        &BaseSliderView::classTable(),
        &SplitSliderView::classTable(),
        &ProgressSliderView::classTable(),
        &SWTimeEditView::classTable(),
        &ZRAlertAction::classTable(),
        &ZRAlert::classTable(),
        &ZRLoadingWndCtl::classTable(),
        &MASPreferencesWindowController::classTable(),
        &ZRTrustedPathViewCtl::classTable(),
        &NSProgressIndicator::classTable(),
        &NSImageView::classTable(),
        &NSMenu::classTable(),
        &NSMenuItem::classTable(),
        &NSToolbar::classTable(),
        &NSToolbarItem::classTable(),
        &NSClipView::classTable(),
        &NSOpenPanel::classTable(),
        &NSScrollView::classTable(),
        &NSTableColumn::classTable(),
        &NSTableHeaderView::classTable(),
        &NSTableView::classTable(),
    };
    // Leaked on purpose: background threads may ask until the process is gone.
    static const auto* const tables = new auto(joined({objectClassTables(), fileClassTables(), own}));
    return *tables;
}

} // namespace zr
