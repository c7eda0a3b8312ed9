// SPDX-License-Identifier: MIT
#include "NibTest.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSColor.h>

namespace zr::test {

using testing::ElementsAre;
using testing::IsEmpty;

class NibConnections : public NibTest {
protected:
    static std::string probe(const char* name, const std::string& contents) {
        return stringWithFormat("<customView id=\"%s\" identifier=\"%s\" customClass=\"NibProbe\">", name,
                                name) +
               contents + "</customView>";
    }
    static std::string outlet(const char* property, const char* destination) {
        static int number = 0;
        return stringWithFormat("<outlet property=\"%s\" destination=\"%s\" id=\"c%d\"/>", property,
                                destination, ++number);
    }
    static std::string connections(const std::string& contents) {
        return "<connections>" + contents + "</connections>";
    }
    static std::string attributes(const std::string& contents) {
        return "<userDefinedRuntimeAttributes>" + contents + "</userDefinedRuntimeAttributes>";
    }
    static std::string attribute(const char* type, const char* keyPath, const std::string& rest) {
        return stringWithFormat("<userDefinedRuntimeAttribute type=\"%s\" keyPath=\"%s\"", type, keyPath) +
               rest;
    }
    static std::string button(const std::string& action) {
        return "<button id=\"b\"><buttonCell key=\"cell\" title=\"Go\" id=\"k\"/>" + connections(action) +
               "</button>";
    }
};

TEST_F(NibConnections, AllIsMadeThenAttributesThenOutletsThenEveryoneAwakes) {
    ASSERT_TRUE(open(placeholder("-2", connections(outlet("view", "p") + outlet("field", "t")) +
                                           attributes(attribute("string", "name", " value=\"N\"/>"))) +
                     probe("p", "<subviews>" + probe("q", connections(outlet("partner", "p"))) + "</subviews>" +
                                    attributes(attribute("string", "text", " value=\"T\"/>")) +
                                    connections(outlet("partner", "q"))) +
                     "<textField id=\"t\"/>"));
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_THAT(happenings(),
                ElementsAre("p made", "q made", "owner's name N", "p text T", "owner's view", "owner's field",
                            "p partner", "q partner", "p awakes", "q awakes", "owner awakes"));
    EXPECT_EQ(owner_->view, top_[0]);
    EXPECT_EQ(owner_->field, top_[1]);
    EXPECT_EQ(owner_->name, "N");
    const auto p = top<NibProbe>(0);
    EXPECT_EQ(p->partner.lock(), p->subviews()[0]);
}

TEST_F(NibConnections, OutletsLeadToTheOwnerToo) {
    ASSERT_TRUE(open("<window visibleAtLaunch=\"NO\" id=\"w\">" + connections(outlet("delegate", "-2")) +
                     "</window>" + probe("p", connections(outlet("owner", "-2"))) + placeholder("-2", "")));
    EXPECT_EQ(top<NSWindow>(0)->delegate(), owner_);
    EXPECT_EQ(top<NibProbe>(1)->owner.lock(), owner_);
}

TEST_F(NibConnections, OutletsOfViewsLeadAroundTheKeyboard) {
    ASSERT_TRUE(open(view(connections(outlet("nextKeyView", "b"))) + button("")));
    EXPECT_EQ(top<NSView>(0)->nextKeyView(), top_[1].get());
}

TEST_F(NibConnections, AnActionGoesToItsTarget) {
    ASSERT_TRUE(open(button("<action selector=\"press:\" target=\"-2\" id=\"a\"/>") + placeholder("-2", "")));
    EXPECT_THAT(log_, IsEmpty());
    const auto made = top<NSButton>(0);
    EXPECT_EQ(made->target(), owner_.get());
    EXPECT_EQ(made->action(), "press:");
    made->performClick(nullptr);
    EXPECT_THAT(owner_->presses, ElementsAre(made.get()));
}

TEST_F(NibConnections, AnActionOfTheFirstResponderHasNoTarget) {
    ASSERT_TRUE(
        open(placeholder("-1", "") + button("<action selector=\"anything:\" target=\"-1\" id=\"a\"/>")));
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_EQ(top<NSButton>(0)->target(), nullptr);
    EXPECT_EQ(top<NSButton>(0)->action(), "anything:");
}

TEST_F(NibConnections, TheApplicationIsTheOneThatRuns) {
    ASSERT_TRUE(
        open(placeholder("-3", "") + button("<action selector=\"terminate:\" target=\"-3\" id=\"a\"/>")));
    EXPECT_EQ(top<NSButton>(0)->target(), &NSApplication::sharedApplication());
    EXPECT_EQ(top_.size(), 1u);
}

TEST_F(NibConnections, AttributesOfEachKind) {
    ASSERT_TRUE(open(probe(
        "p",
        attributes(
            attribute("string", "text",
                      "><string key=\"value\">a&lt;b</string></userDefinedRuntimeAttribute>") +
            attribute("number", "number",
                      "><real key=\"value\" value=\"1.5\"/></userDefinedRuntimeAttribute>") +
            attribute("boolean", "flag", " value=\"YES\"/>") +
            attribute("point", "point",
                      "><point key=\"value\" x=\"1\" y=\"-2\"/></userDefinedRuntimeAttribute>") +
            attribute("color", "colour",
                      "><color key=\"value\" name=\"labelColor\" catalog=\"System\" colorSpace=\"catalog\"/>"
                      "</userDefinedRuntimeAttribute>")))));
    EXPECT_THAT(log_, IsEmpty());
    const auto p = top<NibProbe>(0);
    EXPECT_EQ(p->text, "a<b");
    EXPECT_EQ(p->number, 1.5);
    EXPECT_TRUE(p->flag);
    EXPECT_EQ(p->point, NSMakePoint(1, -2));
    EXPECT_EQ(p->colour, NSColor::labelColor());
}

TEST_F(NibConnections, WhatTheClassDoesNotHaveIsLoggedAndTheRestConnected) {
    ASSERT_TRUE(open(placeholder("-2", connections("<outlet property=\"nothing\" destination=\"b\" id=\"o\"/>" +
                                                   outlet("view", "b")) +
                                           attributes(attribute("string", "colour", " value=\"N\"/>"))) +
                     button("<action selector=\"fly:\" target=\"-2\" id=\"a\"/>")));
    EXPECT_THAT(
        log_,
        ElementsAre("The interface file FILE: attribute colour of customObject \"-2\": NibOwner has no such "
                    "attribute",
                    "The interface file FILE: outlet \"o\": NibOwner has no outlet nothing",
                    "The interface file FILE: action \"a\": NibOwner has no action fly:"));
    EXPECT_EQ(owner_->view, top_[0]);
    EXPECT_EQ(top<NSButton>(0)->action(), "");
    EXPECT_EQ(top<NSButton>(0)->target(), nullptr);
}

TEST_F(NibConnections, AttributesThatAreRefusedAreLoggedAndTheRestSet) {
    ASSERT_TRUE(open(probe("p", attributes(attribute("string", "flag", " value=\"YES\"/>") +
                                           attribute("number", "number",
                                                     "><integer key=\"value\" value=\"-1\"/>"
                                                     "</userDefinedRuntimeAttribute>") +
                                           attribute("size", "text",
                                                     "><size key=\"value\" width=\"1\" height=\"1\"/>"
                                                     "</userDefinedRuntimeAttribute>") +
                                           attribute("string", "text", " value=\"kept\"/>")))));
    EXPECT_THAT(
        log_,
        ElementsAre(
            "The interface file FILE: userDefinedRuntimeAttribute: a value of the type \"size\" is not read",
            "The interface file FILE: attribute flag of customView \"p\": the value is of another kind",
            "The interface file FILE: attribute number of customView \"p\": a negative number"));
    EXPECT_FALSE(top<NibProbe>(0)->flag);
    EXPECT_EQ(top<NibProbe>(0)->text, "kept");
}

TEST_F(NibConnections, AViewThatSendsNoActionsIsLogged) {
    ASSERT_TRUE(open(view(connections("<action selector=\"press:\" target=\"-2\" id=\"a\"/>")) +
                     placeholder("-2", "")));
    EXPECT_THAT(log_, ElementsAre("The interface file FILE: action \"a\": NSView sends no action"));
}

TEST_F(NibConnections, WithoutAnOwnerItsConnectionsAreLeftOut) {
    owner_ = nullptr;
    ASSERT_TRUE(open(placeholder("-2", connections(outlet("view", "b"))) +
                     button("<action selector=\"press:\" target=\"-2\" id=\"a\"/>")));
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_EQ(top<NSButton>(0)->target(), nullptr);
}

TEST_F(NibConnections, WhatIsNotReadIsLogged) {
    ASSERT_TRUE(open(view("<constraints><constraint firstAttribute=\"width\" id=\"w\"/></constraints>"
                          "<point key=\"canvasLocation\" x=\"1\" y=\"2\"/>" +
                          connections("<binding destination=\"v\" name=\"hidden\" id=\"n\"/>"))));
    EXPECT_THAT(log_, ElementsAre("The interface file FILE: constraints of customView \"v\" is not read",
                                  "The interface file FILE: binding \"n\" is not read"));
}

} // namespace zr::test
