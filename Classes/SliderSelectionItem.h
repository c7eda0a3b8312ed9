// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>

namespace zr {

// The highlighted part of a slider's range, in the slider's value units. Plain values: nothing is checked, and
// setting them draws nothing.
class ZR_EXPORT SliderSelectionItem : public NSObject {
public:
    ZR_CLASS(SliderSelectionItem, NSObject)

    double dStart() const { return dStart_; }
    void setDStart(double start) { dStart_ = start; }
    // A selection shorter than 0.001 is not drawn.
    double dLength() const { return dLength_; }
    void setDLength(double length) { dLength_ = length; }

private:
    double dStart_ = 0;
    double dLength_ = 0;
};

} // namespace zr
