// SPDX-License-Identifier: MIT
#include "ComponentClasses.h"

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

namespace zr {

std::span<const ClassTable* const> componentClasses() {
    static const std::array tables = {
        &BaseSliderView::classTable(),                 //
        &MASPreferencesWindowController::classTable(), //
        &ProgressSliderView::classTable(),             //
        &SWTimeEditView::classTable(),                 //
        &SliderSelectionItem::classTable(),            //
        &SplitSliderView::classTable(),                //
        &ZRAlert::classTable(),                        //
        &ZRAlertAction::classTable(),                  //
        &ZRLoadingWndCtl::classTable(),                //
        &ZRTrustedPathViewCtl::classTable(),           //
    };
    return tables;
}

} // namespace zr
