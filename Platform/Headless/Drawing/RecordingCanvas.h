// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Drawing.h>

#include <string>
#include <vector>

namespace zr::headless {

// The lines of a drawing: one an operation, in its own coordinates, with everything it holds but what is at its
// default. System colours appear by name, an image by the name of the picture that is chosen for the scale and
// the appearance.
std::vector<std::string> linesOf(const port::OperationList& list, double scale, Appearance appearance);

// A drawing pass for a scale and an appearance.
class RecordingCanvas final : public port::OperationList {
public:
    RecordingCanvas(double scale, Appearance appearance) : scale_(scale), appearance_(appearance) {}

    std::vector<std::string> lines() const { return linesOf(*this, scale_, appearance_); }

private:
    double scale_;
    Appearance appearance_;
};

// A picture that is known by the name of its file, or by the operations that drew it, and by its size.
class NamedBitmap final : public port::Bitmap {
public:
    NamedBitmap(std::string name, Size pixels) : name_(std::move(name)), pixels_(pixels) {}
    Size pixelSize() const override { return pixels_; }
    const std::string& name() const { return name_; }

private:
    std::string name_;
    Size pixels_;
};

// Its name is the list of the operations.
std::shared_ptr<NamedBitmap> drawnBitmap(Size size, double scale, Appearance appearance,
                                         const port::OperationList& list);

// Null for a file that is no PNG picture.
std::shared_ptr<NamedBitmap> readBitmap(const std::string& path);

} // namespace zr::headless
