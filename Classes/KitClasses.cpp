#include <AppKit/ControlClasses.h>
#include <AppKit/DrawingClasses.h>
#include <AppKit/InterfaceFileClasses.h>
#include <AppKit/PanelClasses.h>
#include <AppKit/TableClasses.h>
#include <AppKit/WindowClasses.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSRunLoop.h>
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
#include <vector>

namespace zr {

namespace {

std::span<const ClassTable* const> kitClasses() {
    static const std::array tables = {
        &BaseSliderView::classTable(),
        &MASPreferencesWindowController::classTable(),
        &ProgressSliderView::classTable(),
        &SWTimeEditView::classTable(),
        &SliderSelectionItem::classTable(),
        &SplitSliderView::classTable(),
        &ZRAlert::classTable(),
        &ZRAlertAction::classTable(),
        &ZRLoadingWndCtl::classTable(),
        &ZRTrustedPathViewCtl::classTable(),
    };
    return tables;
}

std::vector<const ClassTable*> joined() {
    std::vector<const ClassTable*> all = {&NSObject::classTable(), &NSBundle::classTable(),
                                          &NSNull::classTable(), &NSPort::classTable(),
                                          &NSRunLoop::classTable()};
    for (const auto room : {drawingClasses(), windowClasses(), controlClasses(), tableClasses(), panelClasses(),
                            interfaceFileClasses(), kitClasses()})
        all.insert(all.end(), room.begin(), room.end());
    return all;
}

} // namespace

std::span<const ClassTable* const> kitClassTables() {
    static const auto tables = joined();
    return tables;
}

} // namespace zr
