// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Colour.h>
#include <Base/Compiler.h>
#include <Base/Compositing.h>
#include <Base/Geometry.h>
#include <Base/Path.h>

#include <vector>

namespace zr {

namespace port {
class OperationList;
}

// Where drawing goes at the moment: made for a drawing pass, current until it is destroyed. Its state is a
// colour and a clip. Outside of a pass there is none, and drawing does nothing.
class ZR_EXPORT NSGraphicsContext {
public:
    explicit NSGraphicsContext(port::OperationList& list);
    ~NSGraphicsContext();
    NSGraphicsContext(const NSGraphicsContext&) = delete;
    NSGraphicsContext& operator=(const NSGraphicsContext&) = delete;

    static NSGraphicsContext* currentContext();

    void saveGraphicsState();
    void restoreGraphicsState(); // ignored where nothing was saved
    // The class's own, for the current context.
    static void saveGraphicsState_();
    static void restoreGraphicsState_();

    const Colour& colour() const { return colour_; }
    void setColour(const Colour& colour) { colour_ = colour; }
    port::OperationList& list() { return list_; } // what is drawn goes there

private:
    port::OperationList& list_;
    NSGraphicsContext* outer_;
    Colour colour_;
    std::vector<Colour> saved_;
};

// Fills with the current colour, replacing what was there, its alpha included.
ZR_EXPORT void NSRectFill(const NSRect& rect);
ZR_EXPORT void NSRectFillUsingOperation(const NSRect& rect, NSCompositingOperation operation);

} // namespace zr
