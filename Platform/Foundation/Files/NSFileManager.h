// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

#include <string>

namespace zr {

// Questions to the file system, each answered as it is at that moment. Links are followed, "~" is an ordinary
// name, and no path is an item's that has the character zero in it. A file system that does not answer within
// two seconds has nothing. From any thread.
class ZR_EXPORT NSFileManager : public NSObject {
public:
    ZR_CLASS(NSFileManager, NSObject)

    static NSFileManager& defaultManager();

    // Whether there is an item of any kind. A link that leads nowhere is none; a slash at the end wants a
    // folder.
    bool fileExistsAtPath(const std::string& path) const;
    // Whether this user may write to the item; false where there is none.
    bool isWritableFileAtPath(const std::string& path) const;
};

} // namespace zr
