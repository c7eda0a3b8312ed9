// SPDX-License-Identifier: MIT
#include "Adaptor.h"

namespace zr::conformance {

using testing::ElementsAre;
using testing::IsEmpty;

class ConformanceModality : public Conformance {
protected:
    void SetUp() override {
        view_ = probe("main", NSMakeRect(0, 0, 200, 100));
        show(view_);
        panel_ = makeWindow("panel", probe("panel", NSMakeRect(0, 0, 100, 50)), {100, 50});
        taken();
    }
    void press(NSWindow& window) {
        adaptor_->press(window, {10, 10});
        adaptor_->settle();
        adaptor_->release(window, {10, 10});
        adaptor_->settle();
    }
    static NSApplication& application() { return NSApplication::sharedApplication(); }

    std::shared_ptr<Probe> view_;
    std::shared_ptr<NSWindow> panel_;
};

TEST_F(ConformanceModality, OtherWindowsAreBlockedAsLongAsTheSessionLasts) {
    adaptor_->during(
        {[this] { press(*window_); }, [this] { press(*panel_); }, [] { application().stopModal(); }});
    EXPECT_EQ(application().runModalForWindow(*panel_), NSModalResponseStop);
    EXPECT_THAT(taken(), ElementsAre("panel down 10 10", "panel up 10 10"));
    // It still stands there, and blocks nobody.
    EXPECT_TRUE(panel_->isVisible());
    adaptor_->settle();
    press(*window_);
    press(*panel_);
    EXPECT_THAT(taken(), ElementsAre("main down 10 10", "main up 10 10", "panel down 10 10", "panel up 10 10"));
}

TEST_F(ConformanceModality, AWindowThatCloseEndsItsSessionAndBlocksNobody) {
    adaptor_->during({[this] { panel_->close(); }});
    EXPECT_EQ(application().runModalForWindow(*panel_), NSModalResponseAbort);
    adaptor_->settle();
    press(*window_);
    EXPECT_THAT(taken(), ElementsAre("main down 10 10", "main up 10 10"));
}

TEST_F(ConformanceModality, TheSameWindowMayRunAgainAtOnce) {
    for (int i = 0; i < 2; ++i) {
        adaptor_->during({[this] { press(*window_); }, [] { application().stopModalWithCode(7); }});
        EXPECT_EQ(application().runModalForWindow(*panel_), 7);
    }
    EXPECT_THAT(taken(), IsEmpty());
    adaptor_->settle();
    press(*window_);
    EXPECT_THAT(taken(), ElementsAre("main down 10 10", "main up 10 10"));
}

TEST_F(ConformanceModality, AViewThatIsPressedGetsItsReleaseWhenASessionBegins) {
    adaptor_->press(*window_, {10, 10});
    adaptor_->settle();
    EXPECT_THAT(taken(), ElementsAre("main down 10 10"));
    adaptor_->during({[] { application().stopModal(); }});
    application().runModalForWindow(*panel_);
    EXPECT_THAT(taken(), ElementsAre("main up 10 10"));
}

// Whether other windows can be used meanwhile is up to the window system.
TEST_F(ConformanceModality, ASheetBlocksItsWindowUntilItEnds) {
    application().beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(*panel_, window_.get(),
                                                                                     nullptr, "", nullptr);
    adaptor_->settle();
    press(*window_);
    press(*panel_);
    EXPECT_THAT(taken(), ElementsAre("panel down 10 10", "panel up 10 10"));
    application().endSheet(*panel_);
    panel_->orderOut(nullptr);
    adaptor_->settle();
    press(*window_);
    EXPECT_THAT(taken(), ElementsAre("main down 10 10", "main up 10 10"));
}

TEST_F(ConformanceModality, ASheetOverNoWindowBlocksAllUntilItEnds) {
    application().beginSheet_modalForWindow_modalDelegate_didEndSelector_contextInfo(*panel_, nullptr, nullptr,
                                                                                     "", nullptr);
    adaptor_->settle();
    press(*window_);
    EXPECT_THAT(taken(), IsEmpty());
    application().endSheet(*panel_);
    adaptor_->settle();
    EXPECT_TRUE(panel_->isVisible());
    press(*window_);
    EXPECT_THAT(taken(), ElementsAre("main down 10 10", "main up 10 10"));
}

} // namespace zr::conformance
