// SPDX-License-Identifier: MIT
#pragma once

// All of Foundation.
#include <Foundation/ClassTable.h>
#include <Foundation/Dispatch.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSCoder.h>
#include <Foundation/NSError.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSGeometry.h>
#include <Foundation/NSIndexSet.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSNotification.h>
#include <Foundation/NSNull.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>
#include <Foundation/NSUserDefaults.h>
#include <Foundation/PropertyList.h>
#include <Foundation/Unretained.h>
