// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace zr {

class NSBundle;

namespace nib {
struct File;
}

// An interface file (.xib) that was read, and of which objects can be made as often as wanted. What is read of
// it, and what becomes of mistakes in it, is in Documentation/interface-files.md. Main thread only.
//
// A file that cannot be used gives nil, and one line in the log that names it, the element and the reason: no
// XML; no Cocoa interface document; larger than 16 MiB or nested deeper than 256; an id that is there twice; a
// class that does not exist or does not fit its element; a connection to what is not there; a value that is no
// number or neither YES nor NO.
// Logged, and left out of a file that is used all the same: an outlet, action or attribute that the object's
// class does not have; an attribute that its setter refuses; elements, colours, fonts and words that are not
// known.
class ZR_EXPORT NSNib : public NSObject {
public:
    ZR_CLASS(NSNib, NSObject)
    NSNib();
    ~NSNib() override;

    // The file of that name (without .xib) in the bundle given, the main bundle or the kit's, whichever has it
    // first.
    bool initWithNibNamed_bundle(const std::string& name, const NSBundle* bundle);
    bool initWithContentsOfFile(const std::filesystem::path& path);

    // Makes the objects, then sets their attributes, connects outlets and actions, sends awakeFromNib to each
    // object and to the owner, and shows the windows that are visible at launch; all in the order of the file.
    // The top-level objects live as long as they are held: by outlets or by what is answered in the last
    // argument, if any. Connections of a null owner are left out; an action sent to it has no target.
    // False, with a line in the log and nothing connected to the owner, when an initialiser answered nil or an
    // outlet is of another kind than the object it leads to.
    bool instantiateWithOwner_topLevelObjects(const std::shared_ptr<NSObject>& owner,
                                              std::vector<std::shared_ptr<NSObject>>* topLevelObjects) const;

private:
    std::filesystem::path path_;
    std::unique_ptr<const nib::File> file_;
};

} // namespace zr
