// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <AppKit/NSImage.h>
#include <ZRUIKit/SplitSliderView.h>

#include <QPainter>

#include <cmath>

namespace zr {

using test::IsColour;
using test::over;

namespace {
constexpr NSSize kSize = {300, 61};
} // namespace

// These run at the ratios 1, 1.5 and 2.
class SliderPixels : public test::QtTest {
protected:
    void SetUp() override {
        slider_ = make<SplitSliderView>(NSRect{NSZeroPoint, kSize});
        slider_->setSliderXOffset(30);
        slider_->setSelection_length(250, 500);
        slider_->setIdentifier("slider");
        show(slider_, kSize);
    }

    // Rows of device pixels in the column at x (points) that are not background.
    std::vector<int> paintedRows(const QImage& image, double x) const {
        std::vector<int> rows;
        for (int y = 0; y < image.height(); ++y)
            if (!test::isNear(image.pixelColor(int(x * ratio()), y), background())) rows.push_back(y);
        return rows;
    }

    std::shared_ptr<SplitSliderView> slider_;
};

TEST_F(SliderPixels, TheTrackIsCrispAndOfItsColour) {
    const QImage image = picture();
    ASSERT_EQ(image.height(), std::lround(61 * ratio()));
    const auto rows = paintedRows(image, 60); // left of the clip and of its handle
    ASSERT_EQ(rows.size(), std::size_t(std::lround(3 * ratio())));
    EXPECT_EQ(rows.front(), std::lround(29 * ratio()));
    const QColor track = over(resolved({SystemColour::tertiaryLabel}, Appearance::light), background());
    for (const int row : rows) EXPECT_THAT(pixel(image, 60 * ratio(), row), IsColour(track)) << row;
}

TEST_F(SliderPixels, TheClipIsCrispAndLiesExactlyOnTheTrack) {
    const QImage image = picture();
    const auto rows = paintedRows(image, 150); // between the handles
    EXPECT_EQ(rows, paintedRows(image, 60));
    for (const int row : rows)
        EXPECT_THAT(pixel(image, 150 * ratio(), row), IsColour(QColor(30, 169, 86))) << row;
    // The clip goes from 90 to 210 points.
    const int middle = rows[rows.size() / 2];
    EXPECT_THAT(pixel(image, 92 * ratio(), middle), IsColour(QColor(30, 169, 86)));
    EXPECT_THAT(pixel(image, 208 * ratio(), middle), IsColour(QColor(30, 169, 86)));
    EXPECT_FALSE(test::isNear(pixel(image, 215 * ratio(), middle), QColor(30, 169, 86)));
}

TEST_F(SliderPixels, TheHandlesStandAboveTheTrackAndLookLikeTheirPictures) {
    const QImage image = picture();
    const double r = ratio();
    // Bottom of the handles: the top of the track. Their inner edges: the ends of the clip.
    const double bottom = std::round(29 * r), left = std::round(66 * r), right = std::round(210 * r);
    const auto expected = [&](const char* name, double x) {
        QImage shown = image.copy(int(x), int(bottom - 28 * r), int(24 * r), int(28 * r));
        const QString file = QString("%1/%2%3.png").arg(ZR_ASSETS, name, r > 1 ? "@2x" : "");
        QImage whole(shown.size(), QImage::Format_RGB32);
        whole.fill(background());
        QPainter painter(&whole);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(whole.rect(), QImage(file));
        painter.end();
        int different = 0;
        for (int y = 0; y < whole.height(); ++y)
            for (int px = 0; px < whole.width(); ++px)
                if (!test::isNear(shown.pixelColor(px, y), whole.pixelColor(px, y), r == 1.5 ? 40 : 2))
                    ++different;
        return different;
    };
    EXPECT_EQ(expected("SliderTrimLeft", left), 0);
    EXPECT_EQ(expected("SliderTrimRight", right), 0);
}

TEST_F(SliderPixels, TheKnobIsRoundAndInTheMiddle) {
    slider_->setShouldDrawKnob(true);
    slider_->setDCurValue(500);
    const QImage image = picture();
    const NSRect knob = slider_->rcKnob();
    EXPECT_EQ(knob, NSMakeRect(144, 24.5, 12, 12));
    const double x = 150 * ratio(), y = (61 - 30.5) * ratio();
    EXPECT_THAT(pixel(image, x, y), IsColour(QColor(30, 169, 86)));
    EXPECT_THAT(pixel(image, x, y - 4.5 * ratio()), IsColour(QColor(30, 169, 86)));
    EXPECT_THAT(pixel(image, x - 5.5 * ratio(), y - 5.5 * ratio()), IsColour(background())); // a corner
    EXPECT_THAT(pixel(image, x, y - 7.5 * ratio()), IsColour(background()));
}

TEST_F(SliderPixels, TheDarkAppearanceIsSeenAtOnce) {
    NSApplication::sharedApplication().setAppearance(Appearance::dark);
    const QImage image = picture();
    EXPECT_LT(background().lightness(), 100);
    const auto rows = paintedRows(image, 60);
    ASSERT_FALSE(rows.empty());
    const QColor track = over(resolved({SystemColour::tertiaryLabel}, Appearance::dark), background());
    EXPECT_THAT(pixel(image, 60 * ratio(), rows[rows.size() / 2]), IsColour(track));
    // The handle's own dark picture: its tab is lighter.
    EXPECT_THAT(
        pixel(image, std::round(66 * ratio()) + 18.5 * ratio(), std::round(29 * ratio()) - 14 * ratio()),
        IsColour(QColor(0x2C, 0xC1, 0x68)));
    NSApplication::sharedApplication().setAppearance(std::nullopt);
}

} // namespace zr
