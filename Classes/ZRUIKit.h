// SPDX-License-Identifier: MIT
#pragma once

// The whole kit, and the layer that it is written for.
#include <AppKit/AppKit.h>
#include <HostLibraries/DDLog.h>
#include <HostLibraries/GlobalFun.h>
#include <ZRUIKit/BaseSliderView.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/KitVersion.h>
#include <ZRUIKit/MASPreferencesWindowController.h>
#include <ZRUIKit/ProgressSliderView.h>
#include <ZRUIKit/SWTimeEditView.h>
#include <ZRUIKit/SliderSelectionItem.h>
#include <ZRUIKit/SplitSliderView.h>
#include <ZRUIKit/ZRAlert.h>
#include <ZRUIKit/ZRLoadingWndCtl.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>
