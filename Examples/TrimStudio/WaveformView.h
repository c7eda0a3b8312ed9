// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSView.h>

#include <string>
#include <vector>

namespace trimstudio {

// The sound of a file as it is loud over time, with a ruler below. The clip is shown in colour, the rest
// faintly. Times in seconds. Unflipped.
class WaveformView : public zr::NSView {
public:
    ZR_CLASS(WaveformView, zr::NSView)

    // Points between the view's sides and the first and last moment.
    void setInset(double inset) { inset_ = inset; }
    void setDuration(double seconds);
    // Loudness between 0 and 1, evenly over the duration; empty for a file without sound.
    void setPeaks(std::vector<float> peaks);
    void setClip(double start, double length);
    // Shown in place of the sound.
    void setNotice(const std::string& text);

    void drawRect(const zr::NSRect& dirty) override;

private:
    zr::NSRect area() const; // of the sound
    double xAt(double seconds) const;
    void drawSound() const;
    void drawRuler() const;
    void drawNotice() const;

    std::vector<float> peaks_;
    std::string notice_;
    double inset_ = 0;
    double duration_ = 0;
    double clipStart_ = 0;
    double clipLength_ = 0;
};

} // namespace trimstudio
