// SPDX-License-Identifier: MIT
#include "NibTest.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSViewController.h>
#include <AppKit/NSWindowController.h>
#include <Foundation/NSBundle.h>
#include <FoundationBackends/Host.h>

namespace zr::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class WindowPane : public NSWindowController {
public:
    ZR_CLASS(WindowPane, NSWindowController)
    void windowWillLoad() override {
        happenings().push_back(stringWithFormat("will load%s", window() ? " again" : ""));
    }
    void loadWindow() override {
        happenings().push_back("load");
        NSWindowController::loadWindow();
    }
    void awakeFromNib() override {
        happenings().push_back(stringWithFormat("awake with %@", window() ? window()->title() : "nothing"));
    }
    void windowDidLoad() override { happenings().push_back("did load " + window()->title()); }
    void press(NSObject*) { happenings().push_back("pressed"); }
};
ZR_CLASS_TABLE(WindowPane, .actions = {actionNamed<&WindowPane::press>("press:")})

class ViewPane : public NSViewController {
public:
    ZR_CLASS(ViewPane, NSViewController)
    void loadView() override {
        happenings().push_back("load");
        if (ownView)
            setView(ownView);
        else
            NSViewController::loadView();
    }
    void awakeFromNib() override {
        happenings().push_back("awake with " + (isViewLoaded() ? view()->identifier() : "nothing"));
    }
    void viewDidLoad() override { happenings().push_back("did load " + view()->identifier()); }
    std::shared_ptr<NSView> ownView;
};
ZR_CLASS_TABLE(ViewPane)

// A kit class cannot be had in the tests of the layer, so that the files lie in the main bundle.
class NibControllers : public NibTest {
protected:
    NibControllers() { install({"en"}); }
    ~NibControllers() override { backend::uninstall(); }

    void install(std::vector<std::string> languages) {
        backend::Host host;
        host.mainBundle = folder_.path() / "main";
        host.preferredLanguages = std::move(languages);
        backend::install(std::move(host));
    }
    void add(const std::string& file, const std::string& objects) { folder_.write(file, document(objects)); }
    static std::string ownersOutlet(const char* name) {
        return placeholder("-2",
                           stringWithFormat("<connections><outlet property=\"%s\" destination=\"w\" id=\"o\"/>"
                                            "</connections>",
                                            name));
    }
    static std::string window(const char* title) {
        return stringWithFormat("<window title=\"%s\" visibleAtLaunch=\"NO\" id=\"w\">", title) +
               "<rect key=\"contentRect\" x=\"0\" y=\"0\" width=\"90\" height=\"50\"/>"
               "<view key=\"contentView\" id=\"c\"/></window>";
    }
    static std::string pane(const char* identifier) {
        return stringWithFormat("<view id=\"w\" identifier=\"%s\"/>", identifier);
    }
    static std::shared_ptr<WindowPane> windowPane(const std::string& name = "Pane") {
        return make<WindowPane>(&WindowPane::initWithWindowNibName, name);
    }
    static std::shared_ptr<ViewPane> viewPane(const std::shared_ptr<NSBundle>& bundle = nullptr) {
        return make<ViewPane>(&ViewPane::initWithNibName_bundle, std::string("Pane"), bundle);
    }
    std::string titleOf(const std::string& name) {
        const auto controller = windowPane(name);
        const auto window = logged([&] { return controller->window(); });
        return window ? window->title() : "none";
    }
};

TEST_F(NibControllers, AWindowIsLoadedWhenItIsFirstAskedForAndOnce) {
    add("main/Pane.xib", ownersOutlet("window") + window("W"));
    const auto controller = windowPane();
    EXPECT_EQ(controller->windowNibName(), "Pane");
    EXPECT_EQ(controller->owner(), controller);
    EXPECT_FALSE(controller->isWindowLoaded());
    EXPECT_THAT(happenings(), IsEmpty());
    const auto loaded = controller->window();
    ASSERT_TRUE(loaded);
    EXPECT_THAT(happenings(), ElementsAre("will load", "load", "awake with W", "did load W"));
    EXPECT_TRUE(controller->isWindowLoaded());
    EXPECT_EQ(controller->window(), loaded);
    EXPECT_EQ(happenings().size(), 4u);
    EXPECT_EQ(loaded->contentSize(), NSMakeSize(90, 50));
    EXPECT_FALSE(loaded->isVisible());
}

TEST_F(NibControllers, AWindowComesBeforeItsControllerInTheResponderChain) {
    add("main/Pane.xib", ownersOutlet("window") + window("W"));
    auto controller = windowPane();
    const auto loaded = controller->window();
    EXPECT_EQ(loaded->nextResponder(), controller.get());
    controller->showWindow(nullptr);
    EXPECT_TRUE(NSApplication::sharedApplication().sendAction_to_from("press:", nullptr, nullptr));
    EXPECT_EQ(happenings().back(), "pressed");
    controller.reset();
    EXPECT_EQ(loaded->nextResponder(), nullptr);
    EXPECT_TRUE(loaded->isVisible());
    loaded->close();
}

TEST_F(NibControllers, AnotherWindowTakesThePlaceOfTheFirst) {
    const auto one = make<NSWindow>(), other = make<NSWindow>();
    const auto controller = make<WindowPane>(&WindowPane::initWithWindow, one);
    EXPECT_TRUE(controller->isWindowLoaded());
    EXPECT_EQ(one->nextResponder(), controller.get());
    controller->setWindow(other);
    EXPECT_EQ(one->nextResponder(), nullptr);
    EXPECT_EQ(other->nextResponder(), controller.get());
    EXPECT_EQ(controller->window(), other);
    EXPECT_THAT(happenings(), IsEmpty());
}

TEST_F(NibControllers, WithoutAFileThereIsNoWindow) {
    const auto none = make<WindowPane>();
    EXPECT_FALSE(none->window());
    none->showWindow(nullptr);
    none->close();
    EXPECT_THAT(happenings(), IsEmpty());
    const auto controller = windowPane("Missing");
    for (int i = 0; i < 2; ++i) EXPECT_FALSE(logged([&] { return controller->window(); }));
    EXPECT_THAT(happenings(), ElementsAre("will load", "load"));
    EXPECT_THAT(log_, ElementsAre("There is no interface file Missing.xib in any bundle"));
    EXPECT_FALSE(controller->isWindowLoaded());
}

TEST_F(NibControllers, AFileThatConnectsNoWindowIsLogged) {
    add("main/Pane.xib", placeholder("-2", "") + window("W"));
    const auto controller = windowPane();
    EXPECT_FALSE(logged([&] { return controller->window(); }));
    EXPECT_THAT(happenings(), ElementsAre("will load", "load", "awake with nothing"));
    EXPECT_THAT(log_, ElementsAre("The interface file Pane.xib connects no window"));
}

TEST_F(NibControllers, WithAnotherOwnerTheFirstWindowIsTaken) {
    add("main/Pane.xib", placeholder("-2", "<connections><outlet property=\"view\" destination=\"c\" id=\"o\"/>"
                                           "</connections>") +
                             view("") + window("W"));
    const auto controller =
        make<WindowPane>(&WindowPane::initWithWindowNibName_owner, std::string("Pane"), owner_);
    EXPECT_EQ(controller->owner(), owner_);
    const auto loaded = controller->window();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(owner_->view.get(), loaded->contentView());
    EXPECT_THAT(happenings(), ElementsAre("will load", "load", "owner's view", "owner awakes", "did load W"));
}

TEST_F(NibControllers, AControllerHoldsWhatItsFileMade) {
    add("main/Pane.xib",
        ownersOutlet("window") + window("W") + view("", "id=\"v\" customClass=\"NibProbe\"") +
            "<button id=\"b\"><connections><action selector=\"press:\" target=\"-2\" id=\"a\"/>"
            "</connections></button>");
    auto controller = windowPane();
    const std::weak_ptr<NSWindow> loaded = controller->window();
    EXPECT_FALSE(loaded.expired());
    const std::weak_ptr<WindowPane> weak = controller;
    controller.reset();
    EXPECT_TRUE(weak.expired()); // the file's objects do not hold it
    EXPECT_TRUE(loaded.expired());
}

TEST_F(NibControllers, ShowingLoadsAndClosingDoesNot) {
    add("main/Pane.xib", ownersOutlet("window") + window("W"));
    const auto controller = windowPane();
    controller->close();
    EXPECT_FALSE(controller->isWindowLoaded());
    EXPECT_TRUE(controller->performSelector_withObject("showWindow:", nullptr));
    platform_.display();
    EXPECT_TRUE(controller->window()->isVisible());
    EXPECT_TRUE(controller->window()->isKeyWindow());
    controller->close();
    EXPECT_FALSE(controller->window()->isVisible());
    EXPECT_TRUE(controller->isWindowLoaded());
}

TEST_F(NibControllers, AViewIsLoadedWhenItIsFirstAskedForAndOnce) {
    add("main/Pane.xib", ownersOutlet("view") + pane("P"));
    const auto controller = viewPane();
    EXPECT_EQ(controller->nibName(), "Pane");
    EXPECT_FALSE(controller->isViewLoaded());
    EXPECT_EQ(controller->title(), "");
    EXPECT_THAT(happenings(), IsEmpty());
    const auto loaded = controller->view();
    EXPECT_THAT(happenings(), ElementsAre("load", "awake with P", "did load P"));
    EXPECT_EQ(controller->view(), loaded);
    EXPECT_EQ(happenings().size(), 3u);
    EXPECT_TRUE(controller->isViewLoaded());
    EXPECT_EQ(loaded->nextResponder(), nullptr);
    EXPECT_TRUE(controller->commitEditing());
}

TEST_F(NibControllers, AViewMayBeMadeByLoadView) {
    const auto controller = viewPane();
    controller->ownView = make<NSView>(NSMakeRect(0, 0, 5, 5));
    controller->ownView->setIdentifier("own");
    EXPECT_EQ(controller->view(), controller->ownView);
    EXPECT_THAT(happenings(), ElementsAre("load", "did load own"));
}

TEST_F(NibControllers, AViewThatCannotBeLoadedThrows) {
    const auto reason = [&](const std::shared_ptr<ViewPane>& controller) {
        return logged([&]() -> std::string {
            try {
                controller->view();
            } catch (const std::runtime_error& error) {
                return error.what();
            }
            return "";
        });
    };
    const auto controller = viewPane();
    EXPECT_THAT(reason(controller), HasSubstr("\"Pane\""));
    EXPECT_THAT(log_, ElementsAre("There is no interface file Pane.xib in any bundle"));
    add("main/Pane.xib", placeholder("-2", "") + pane("P"));
    EXPECT_THAT(reason(controller), HasSubstr("\"Pane\"")); // connects none
    EXPECT_FALSE(controller->isViewLoaded());
    add("main/Pane.xib", ownersOutlet("view") + pane("P"));
    EXPECT_EQ(reason(controller), "");
    EXPECT_EQ(controller->view()->identifier(), "P");
}

TEST_F(NibControllers, TheBundleThatIsGivenComesBeforeTheMainOne) {
    add("main/Pane.xib", ownersOutlet("view") + pane("main"));
    const auto other = make<NSBundle>(&NSBundle::initWithPath, folder_.path() / "other");
    EXPECT_EQ(viewPane(other)->view()->identifier(), "main");
    add("other/Pane.xib", ownersOutlet("view") + pane("other"));
    EXPECT_EQ(viewPane(other)->view()->identifier(), "other");
    EXPECT_EQ(viewPane()->view()->identifier(), "main");
    EXPECT_EQ(viewPane(other)->nibBundle(), other);
}

TEST_F(NibControllers, TheKitsBundleComesLast) {
    // The outlets are those of a class that is not there; what counts is that the file was found.
    titleOf("ZRLoadingWndCtl");
    EXPECT_THAT(log_, testing::Contains(HasSubstr("/ZRLoadingWndCtl.xib: outlet ")));
    log_.clear();
    add("main/ZRLoadingWndCtl.xib", ownersOutlet("window") + window("ours"));
    EXPECT_EQ(titleOf("ZRLoadingWndCtl"), "ours");
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(NibControllers, LocalisedFilesComeBeforeThePlainOne) {
    const auto addTitled = [&](const std::string& file, const char* title) {
        add(file, ownersOutlet("window") + window(title));
    };
    addTitled("main/Pane.xib", "plain");
    install({"de-AT", "fr"});
    EXPECT_EQ(titleOf("Pane"), "plain");
    addTitled("main/Base.lproj/Pane.xib", "base");
    EXPECT_EQ(titleOf("Pane"), "base");
    addTitled("main/en.lproj/Pane.xib", "english");
    EXPECT_EQ(titleOf("Pane"), "english");
    addTitled("main/fr.lproj/Pane.xib", "français");
    EXPECT_EQ(titleOf("Pane"), "français");
    addTitled("main/de.lproj/Pane.xib", "deutsch");
    EXPECT_EQ(titleOf("Pane"), "deutsch");
}

} // namespace

} // namespace zr::test
