// SPDX-License-Identifier: MIT
#include "NibTest.h"

namespace zr::test {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class NibBrokenFiles : public NibTest {
protected:
    // Nothing of the objects may be there in the end, least of all at the owner.
    void expectRefused(const std::string& bytes, const std::string& reason) {
        log_.clear();
        top_.clear();
        happenings().clear();
        const auto nib = read(bytes);
        const bool opened = nib && instantiate(*nib);
        EXPECT_FALSE(opened) << reason;
        EXPECT_THAT(log_, ElementsAre(HasSubstr("The interface file FILE is not used: " + reason)));
        for (const auto& happening : happenings()) EXPECT_THAT(happening, testing::Not(HasSubstr("owner")));
        EXPECT_THAT(top_, IsEmpty());
    }
    void expectRefusedObjects(const std::string& objects, const std::string& reason) {
        expectRefused(document(objects), reason);
    }
    static std::string owner(const std::string& connections) {
        return placeholder("-2", "<connections>" + connections + "</connections>");
    }
};

TEST_F(NibBrokenFiles, AFileThatIsNotThere) {
    path_ = folder_.path() / "none.xib";
    EXPECT_FALSE(logged([&] { return make<NSNib>(&NSNib::initWithContentsOfFile, path_); }));
    EXPECT_THAT(log_, ElementsAre(HasSubstr("The interface file FILE is not used: ")));
    log_.clear();
    path_ = folder_.path();
    EXPECT_FALSE(logged([&] { return make<NSNib>(&NSNib::initWithContentsOfFile, path_); }));
    EXPECT_THAT(log_, ElementsAre(HasSubstr("The interface file FILE is not used: ")));
}

TEST_F(NibBrokenFiles, NoDocumentOfInterfaceBuilder) {
    expectRefused("", "not XML: No document element found");
    expectRefused("words", "not XML: ");
    expectRefused("<document", "not XML: ");
    expectRefused("<document type=\"com.apple.InterfaceBuilder3.Cocoa.XIB\"><objects></document>", "not XML: ");
    expectRefused("<plist/>", "there is no document in it");
    expectRefused("<document><objects/></document>", "a document of the type \"\"");
    expectRefused("<document type=\"com.apple.InterfaceBuilder3.CocoaTouch.XIB\"><objects/></document>",
                  "a document of the type \"com.apple.InterfaceBuilder3.CocoaTouch.XIB\"");
    expectRefused("<document type=\"com.apple.InterfaceBuilder3.Cocoa.XIB\"/>", "there are no objects in it");
}

TEST_F(NibBrokenFiles, TooLargeOrTooDeep) {
    const std::string file = document(view(""));
    EXPECT_TRUE(read(file + std::string((std::size_t{16} << 20) - file.size(), ' ')));
    expectRefused(file + std::string((std::size_t{16} << 20) - file.size() + 1, ' '), "too large");

    const auto nested = [](int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i) text += "<view>";
        for (int i = 0; i < depth; ++i) text += "</view>";
        return text;
    };
    log_.clear();
    EXPECT_TRUE(open(nested(254))); // within document and objects
    expectRefusedObjects(nested(255), "nested too deeply");
    expectRefusedObjects(nested(500000), "nested too deeply");
}

TEST_F(NibBrokenFiles, IdsThatAreThereTwice) {
    expectRefusedObjects(view("") + view(""), "the id \"v\" is there twice");
    expectRefusedObjects(
        view("<subviews><button id=\"b\"><buttonCell key=\"cell\" id=\"v\"/></button></subviews>"),
        "the id \"v\" is there twice");
    expectRefusedObjects(placeholder("-2", "") + placeholder("-2", ""), "the id \"-2\" is there twice");
}

TEST_F(NibBrokenFiles, ClassesThatDoNotExistOrDoNotFit) {
    expectRefusedObjects("<view id=\"v\" customClass=\"NoSuchView\"/>",
                         "view \"v\": there is no class NoSuchView");
    expectRefusedObjects("<view id=\"v\" customClass=\"\"/>", "view \"v\": there is no class ");
    expectRefusedObjects("<rangeFinder id=\"m\"/>", "rangeFinder \"m\": there is no class NSRangeFinder");
    expectRefusedObjects("<view id=\"v\" customClass=\"NSWindow\"/>", "view \"v\": NSWindow is no NSView");
    expectRefusedObjects("<button id=\"v\" customClass=\"NSTextField\"/>",
                         "button \"v\": NSTextField is no NSButton");
    expectRefusedObjects("<window id=\"w\" customClass=\"NSView\"/>", "window \"w\": NSView is no NSWindow");
    expectRefusedObjects("<bundle id=\"m\"/>", "bundle \"m\": NSBundle is no NSView");
    expectRefusedObjects(view("<subviews><window id=\"w\"/></subviews>"),
                         "window \"w\": NSWindow is no NSView");
    expectRefusedObjects(view("<subviews><customObject id=\"w\"/></subviews>"),
                         "customObject \"w\": NSObject is no NSView");
    expectRefusedObjects(view("<subviews><customObject id=\"-2\"/></subviews>"),
                         "customObject \"-2\": NSObject is no NSView");
    expectRefusedObjects(
        "<window id=\"w\"><view key=\"contentView\" id=\"a\"/><view key=\"contentView\" id=\"b\"/>"
        "</window>",
        "view \"b\": a second content view");
}

TEST_F(NibBrokenFiles, ConnectionsToWhatIsNotThere) {
    expectRefusedObjects(owner("<outlet property=\"view\" destination=\"x\" id=\"o\"/>") + view(""),
                         "outlet \"o\" leads to \"x\", which is not there");
    expectRefusedObjects(owner("<outlet property=\"view\" id=\"o\"/>") + view(""),
                         "outlet \"o\" leads to \"\", which is not there");
    expectRefusedObjects(owner("<outlet destination=\"v\" id=\"o\"/>") + view(""),
                         "outlet \"o\" has no property");
    expectRefusedObjects(owner("<outlet property=\"view\" destination=\"o\" id=\"o\"/>"),
                         "outlet \"o\" leads to \"o\", of which no object is made");
    const auto action = [](const std::string& attributes) {
        return "<button id=\"b\"><connections><action id=\"a\" " + attributes + "/></connections></button>";
    };
    expectRefusedObjects(action("selector=\"press:\" target=\"-2\""),
                         "action \"a\" leads to \"-2\", which is not there");
    expectRefusedObjects(action("target=\"b\""), "action \"a\" has no selector");
    expectRefusedObjects(owner("<action selector=\"press:\" target=\"-2\" id=\"a\"/>"),
                         "action \"a\": not of a control");
    expectRefusedObjects(placeholder("-1", "") +
                             owner("<outlet property=\"view\" destination=\"-1\" id=\"o\"/>"),
                         "outlet \"o\": the first responder has and takes no outlets");
}

TEST_F(NibBrokenFiles, AnOutletOfAnotherKindLeavesTheOwnerAlone) {
    expectRefusedObjects(owner("<outlet property=\"view\" destination=\"v\" id=\"o\"/>"
                               "<outlet property=\"field\" destination=\"v\" id=\"p\"/>") +
                             view(""),
                         "outlet \"p\": field of NibOwner takes no NSView");
    EXPECT_FALSE(owner_->view);
    expectRefusedObjects(
        owner("<outlet property=\"view\" destination=\"v\" id=\"o\"/>") +
            view("<connections><outlet property=\"partner\" destination=\"-2\" id=\"p\"/></connections>",
                 "id=\"v\" customClass=\"NibProbe\""),
        "outlet \"p\": partner of NibProbe takes no NibOwner");
    EXPECT_FALSE(owner_->view);
}

TEST_F(NibBrokenFiles, AnObjectThatCannotBeMadeLeavesTheOwnerAlone) {
    expectRefusedObjects(owner("<outlet property=\"view\" destination=\"v\" id=\"o\"/>") + view("") +
                             "<view id=\"n\" identifier=\"nil\" customClass=\"NibProbe\"/>",
                         "view \"n\": it could not be made");
    EXPECT_FALSE(owner_->view);
}

TEST_F(NibBrokenFiles, ValuesOfAnotherKind) {
    const auto frame = [](const std::string& rest) {
        return "<view id=\"v\"><rect key=\"frame\" " + rest + "/></view>";
    };
    expectRefusedObjects(frame("x=\"a\" y=\"0\" width=\"1\" height=\"1\""),
                         "rect of view \"v\": x \"a\" is no number");
    for (const auto* number : {"", " 1", "1 ", "1,5", "0x10", "nan", "inf", "1e999", "1.5.2", "+1"})
        expectRefusedObjects(frame(stringWithFormat("x=\"%s\" y=\"0\" width=\"1\" height=\"1\"", number)),
                             stringWithFormat("rect of view \"v\": x \"%s\" is no number", number));
    expectRefusedObjects(frame("y=\"0\" width=\"1\" height=\"1\""), "rect of view \"v\": x \"\" is no number");
    expectRefusedObjects(frame("x=\"0\" y=\"0\" width=\"-1\" height=\"1\""),
                         "rect of view \"v\": a negative size");
    expectRefusedObjects("<view id=\"v\" hidden=\"yes\"/>", "view \"v\": hidden \"yes\" is neither YES nor NO");
    expectRefusedObjects(
        "<view id=\"v\"><autoresizingMask key=\"autoresizingMask\" widthSizable=\"2\"/></view>",
        "autoresizingMask of view \"v\": widthSizable \"2\" is neither YES nor NO");
    expectRefusedObjects("<window id=\"w\" visibleAtLaunch=\"\"/>",
                         "window \"w\": visibleAtLaunch \"\" is neither YES nor NO");
    const auto attribute = [](const char* type) {
        return stringWithFormat(
            "<view id=\"v\"><userDefinedRuntimeAttributes><userDefinedRuntimeAttribute type=\"%s\" "
            "keyPath=\"k\"/></userDefinedRuntimeAttributes></view>",
            type);
    };
    expectRefusedObjects(attribute("boolean"), "userDefinedRuntimeAttribute: value \"\" is neither YES nor NO");
    expectRefusedObjects(attribute("number"), ": value \"\" is no number");
    expectRefusedObjects(attribute("point"), ": x \"\" is no number");
}

} // namespace zr::test
