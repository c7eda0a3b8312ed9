// SPDX-License-Identifier: MIT
#include "WindowTest.h"

#include <AppKit/NSImage.h>
#include <AppKit/NSImageView.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSString.h>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

class ImageViews : public test::WindowTest {
protected:
    // 24 by 28 points.
    static std::shared_ptr<NSImage> handle() {
        return NSBundle::bundleForClass(NSImageView::classTable()).imageForResource("SliderTrimLeft");
    }
    std::vector<std::string> drawn(NSSize size, NSImageScaling scaling) {
        const auto view = make<NSImageView>(NSRect{NSZeroPoint, size});
        view->setIdentifier("picture");
        view->setImage(handle());
        view->setImageScaling(scaling);
        show(view, size);
        return user_->drawing("picture");
    }
    static std::string line(const char* destination) {
        return stringWithFormat("image SliderTrimLeft.png in %s from {{0, 0}, {24, 28}} operation 2 fraction 1",
                                destination);
    }
};

TEST_F(ImageViews, ArePlainAtFirst) {
    const auto view = make<NSImageView>(NSMakeRect(0, 0, 10, 10));
    EXPECT_EQ(view->image(), nullptr);
    EXPECT_EQ(view->imageScaling(), NSImageScaleProportionallyDown);
    view->setIdentifier("picture");
    show(view, {10, 10});
    EXPECT_THAT(user_->drawing("picture"), IsEmpty());
}

TEST_F(ImageViews, PutThePictureIntoTheMiddleAndNeverEnlargeItByThemselves) {
    EXPECT_THAT(drawn({100, 128}, NSImageScaleProportionallyDown), ElementsAre(line("{{38, 50}, {24, 28}}")));
    EXPECT_THAT(drawn({100, 14}, NSImageScaleProportionallyDown), ElementsAre(line("{{44, 0}, {12, 14}}")));
    EXPECT_THAT(drawn({12, 100}, NSImageScaleProportionallyDown), ElementsAre(line("{{0, 43}, {12, 14}}")));
}

TEST_F(ImageViews, ScaleAsTheyAreTold) {
    EXPECT_THAT(drawn({100, 56}, NSImageScaleProportionallyUpOrDown), ElementsAre(line("{{26, 0}, {48, 56}}")));
    EXPECT_THAT(drawn({100, 14}, NSImageScaleProportionallyUpOrDown), ElementsAre(line("{{44, 0}, {12, 14}}")));
    EXPECT_THAT(drawn({100, 14}, NSImageScaleAxesIndependently), ElementsAre(line("{{0, 0}, {100, 14}}")));
    EXPECT_THAT(drawn({12, 14}, NSImageScaleNone), ElementsAre(line("{{-6, -7}, {24, 28}}")));
}

TEST_F(ImageViews, DrawAnotherPictureWhenTheyGetOne) {
    drawn({24, 28}, NSImageScaleNone);
    auto& view = static_cast<NSImageView&>(*window_->contentView());
    view.setImage(nullptr);
    platform_.display();
    EXPECT_THAT(user_->drawing("picture"), IsEmpty());
}

} // namespace zr
