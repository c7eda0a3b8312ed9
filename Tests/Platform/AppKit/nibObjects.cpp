// SPDX-License-Identifier: MIT
#include "NibTest.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSImage.h>
#include <AppKit/NSImageView.h>
#include <AppKit/NibFile.h>
#include <ZRUIKit/SplitSliderView.h>

namespace zr::test {

using testing::ElementsAre;
using testing::IsEmpty;

using NibObjects = NibTest;

TEST_F(NibObjects, AViewHasWhatTheFileSays) {
    ASSERT_TRUE(
        open(view("<autoresizingMask key=\"autoresizingMask\" widthSizable=\"YES\" flexibleMaxY=\"YES\" "
                  "heightSizable=\"NO\"/>",
                  "id=\"v\" hidden=\"YES\" identifier=\"pane\"")));
    EXPECT_THAT(log_, IsEmpty());
    ASSERT_EQ(top_.size(), 1u);
    const auto made = top<NSView>(0);
    EXPECT_EQ(&made->class_(), &NSView::classTable());
    EXPECT_EQ(made->frame(), NSMakeRect(10, 20, 300, 200));
    EXPECT_EQ(made->autoresizingMask(), 2u + 32u);
    EXPECT_TRUE(made->isHidden());
    EXPECT_EQ(made->identifier(), "pane");
}

TEST_F(NibObjects, WhatAViewLeavesOutIsZero) {
    ASSERT_TRUE(open("<view id=\"v\"/>"));
    const auto made = top<NSView>(0);
    EXPECT_EQ(made->frame(), NSZeroRect);
    EXPECT_EQ(made->autoresizingMask(), 0u);
    EXPECT_FALSE(made->isHidden());
    EXPECT_EQ(made->identifier(), "");
}

TEST_F(NibObjects, SubviewsStandInTheOrderOfTheFile) {
    ASSERT_TRUE(
        open(view("<subviews><button id=\"a\" identifier=\"a\"><subviews><textField id=\"b\" "
                  "identifier=\"b\"/></subviews></button><view id=\"c\" identifier=\"c\"/></subviews>")));
    const auto made = top<NSView>(0);
    ASSERT_EQ(made->subviews().size(), 2u);
    EXPECT_EQ(made->subviews()[0]->identifier(), "a");
    EXPECT_EQ(made->subviews()[1]->identifier(), "c");
    ASSERT_EQ(made->subviews()[0]->subviews().size(), 1u);
    EXPECT_TRUE(std::dynamic_pointer_cast<NSTextField>(made->subviews()[0]->subviews()[0]));
    EXPECT_EQ(top_.size(), 1u);
}

TEST_F(NibObjects, AnImageViewShowsAPictureOfABundle) {
    const auto cell = [](const char* attributes) {
        return stringWithFormat("<imageView id=\"i\"><imageCell key=\"cell\" %s id=\"c\"/></imageView>",
                                attributes);
    };
    ASSERT_TRUE(open(cell("imageScaling=\"axesIndependently\" image=\"SliderTrimLeft\"")));
    EXPECT_THAT(log_, IsEmpty());
    ASSERT_NE(top<NSImageView>(0)->image(), nullptr);
    EXPECT_EQ(top<NSImageView>(0)->image()->size(), NSMakeSize(24, 28));
    EXPECT_EQ(top<NSImageView>(0)->imageScaling(), NSImageScaleAxesIndependently);
    ASSERT_TRUE(open(cell("image=\"No such picture\"")));
    EXPECT_EQ(top<NSImageView>(0)->image(), nullptr);
    EXPECT_EQ(top<NSImageView>(0)->imageScaling(), NSImageScaleProportionallyDown);
}

TEST_F(NibObjects, AWindowHasWhatTheFileSays) {
    ASSERT_TRUE(
        open("<window title=\"Über &quot;uns&quot;\" releasedWhenClosed=\"NO\" visibleAtLaunch=\"NO\" id=\"w\">"
             "<windowStyleMask key=\"styleMask\" titled=\"YES\" closable=\"YES\" resizable=\"YES\"/>"
             "<rect key=\"contentRect\" x=\"196\" y=\"240\" width=\"480\" height=\"160\"/>"
             "<value key=\"minSize\" type=\"size\" width=\"200\" height=\"100.5\"/>"
             "<value key=\"maxSize\" type=\"size\" width=\"900\" height=\"800\"/>"
             "<view key=\"contentView\" id=\"c\" identifier=\"content\"/></window>"));
    EXPECT_THAT(log_, IsEmpty());
    const auto window = top<NSWindow>(0);
    ASSERT_TRUE(window);
    EXPECT_EQ(top_.size(), 1u);
    EXPECT_EQ(window->title(), "Über \"uns\"");
    EXPECT_EQ(window->styleMask(), 1u + 2u + 8u);
    EXPECT_EQ(window->contentSize(), NSMakeSize(480, 160));
    EXPECT_EQ(window->contentMinSize(), NSMakeSize(200, 100.5));
    EXPECT_EQ(window->contentMaxSize(), NSMakeSize(900, 800));
    EXPECT_EQ(window->contentView()->identifier(), "content");
    EXPECT_EQ(window->contentView()->frame(), NSMakeRect(0, 0, 480, 160));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(NibObjects, AWindowWithoutContentOrSizesHasTheDefaults) {
    ASSERT_TRUE(open("<window visibleAtLaunch=\"NO\" id=\"w\"/>"));
    const auto window = top<NSWindow>(0);
    const auto plain = make<NSWindow>();
    EXPECT_EQ(window->styleMask(), 0u);
    EXPECT_EQ(window->contentSize(), NSZeroSize);
    EXPECT_EQ(window->contentMinSize(), plain->contentMinSize());
    EXPECT_EQ(window->contentMaxSize(), plain->contentMaxSize());
    EXPECT_EQ(window->title(), "");
    EXPECT_TRUE(window->contentView());
}

TEST_F(NibObjects, ContentOfAnotherSizeIsResizedWithItsSubviews) {
    ASSERT_TRUE(open("<window visibleAtLaunch=\"NO\" id=\"w\">"
                     "<rect key=\"contentRect\" x=\"0\" y=\"0\" width=\"200\" height=\"100\"/>"
                     "<view key=\"contentView\" id=\"c\"><rect key=\"frame\" x=\"0\" y=\"0\" width=\"150\" "
                     "height=\"80\"/><subviews><view id=\"s\">"
                     "<rect key=\"frame\" x=\"10\" y=\"10\" width=\"130\" height=\"20\"/>"
                     "<autoresizingMask key=\"autoresizingMask\" widthSizable=\"YES\" flexibleMinY=\"YES\"/>"
                     "</view></subviews></view></window>"));
    EXPECT_EQ(top<NSWindow>(0)->contentView()->subviews()[0]->frame(), NSMakeRect(10, 30, 180, 20));
}

TEST_F(NibObjects, WindowsThatAreVisibleAtLaunchAreShownOnceAllIsAwake) {
    ASSERT_TRUE(
        open("<window title=\"one\" id=\"a\"/><window title=\"two\" visibleAtLaunch=\"NO\" id=\"b\"/>"
             "<window title=\"three\" visibleAtLaunch=\"YES\" id=\"c\"><view key=\"contentView\" id=\"v\">"
             "<subviews><customView id=\"p\" identifier=\"p\" customClass=\"NibProbe\"/></subviews></view>"
             "</window>"));
    std::vector<std::string> shown;
    for (const auto& window : NSApplication::sharedApplication().windows()) shown.push_back(window->title());
    EXPECT_THAT(shown, ElementsAre("one", "three"));
    EXPECT_FALSE(top<NSWindow>(1)->isVisible());
    EXPECT_THAT(happenings(), ElementsAre("p made", "p awakes", "owner awakes"));
}

TEST_F(NibObjects, AButtonIsReadFromItsCell) {
    ASSERT_TRUE(
        open("<button id=\"b\"><rect key=\"frame\" x=\"1\" y=\"2\" width=\"3\" height=\"4\"/>"
             "<buttonCell key=\"cell\" type=\"push\" title=\"Go\" enabled=\"NO\" alignment=\"center\" id=\"k\">"
             "<behavior key=\"behavior\" pushIn=\"YES\"/><font key=\"font\" metaFont=\"smallSystem\"/>"
             "</buttonCell></button>"));
    EXPECT_THAT(log_, IsEmpty());
    const auto button = top<NSButton>(0);
    EXPECT_EQ(button->title(), "Go");
    EXPECT_FALSE(button->isEnabled());
    EXPECT_EQ(button->keyEquivalent(), "");
    EXPECT_EQ(button->font(), NSFont::systemFontOfSize(11));
    EXPECT_EQ(button->frame(), NSMakeRect(1, 2, 3, 4));
}

TEST_F(NibObjects, ATextFieldIsReadFromItsCell) {
    ASSERT_TRUE(open(
        "<textField id=\"t\"><textFieldCell key=\"cell\" alignment=\"right\" title=\"Tip\" id=\"k\">"
        "<font key=\"font\" size=\"20\" name=\"Helvetica-Bold\" family=\"Helvetica\"/>"
        "<color key=\"textColor\" red=\"1\" green=\"0.5\" blue=\"0.25\" alpha=\"0.75\" colorSpace=\"custom\" "
        "customColorSpace=\"sRGB\"/></textFieldCell></textField>"));
    const auto field = top<NSTextField>(0);
    EXPECT_EQ(field->stringValue(), "Tip");
    EXPECT_EQ(field->alignment(), NSTextAlignmentRight);
    EXPECT_EQ(field->font().description(), (FontDescription{"Helvetica", 20, true, false}));
    EXPECT_EQ(field->textColor(), NSColor({SystemColour::none, 1, 0.5, 0.25, 0.75}));
    EXPECT_TRUE(field->isEnabled());
}

TEST_F(NibObjects, AFieldIsEditedOnlyWhereTheFileSaysSo) {
    const auto field = [this](const std::string& attributes, const std::string& contents = {}) {
        EXPECT_TRUE(open("<textField id=\"t\"><textFieldCell key=\"cell\" id=\"k\" " + attributes + ">" +
                         contents + "</textFieldCell></textField>"));
        return top<NSTextField>(0);
    };
    const auto label = field("");
    EXPECT_FALSE(label->isEditable() || label->isSelectable() || label->isBezeled() ||
                 label->drawsBackground());
    const auto edited = field("editable=\"YES\" borderStyle=\"bezel\" drawsBackground=\"YES\"",
                              "<color key=\"backgroundColor\" white=\"1\" colorSpace=\"calibratedWhite\"/>");
    EXPECT_TRUE(edited->isEditable() && edited->isSelectable() && edited->isBezeled() &&
                edited->drawsBackground());
    EXPECT_EQ(edited->backgroundColor(), NSColor({SystemColour::none, 1, 1, 1, 1}));
    const auto selected = field("selectable=\"YES\"");
    EXPECT_FALSE(selected->isEditable());
    EXPECT_TRUE(selected->isSelectable());
}

TEST_F(NibObjects, AKitClassIsMadeInPlaceOfTheUsualOne) {
    ASSERT_TRUE(open(view("", "id=\"v\" customClass=\"SplitSliderView\"")));
    const auto slider = top<SplitSliderView>(0);
    ASSERT_TRUE(slider);
    EXPECT_EQ(slider->frame(), NSMakeRect(10, 20, 300, 200));
    EXPECT_EQ(slider->sliderXOffset(), 10);
}

TEST_F(NibObjects, ViewsOfOwnClassesAreMadeFromTheArchiveAndObjectsByInit) {
    ASSERT_TRUE(open(view("", "id=\"v\" identifier=\"p\" customClass=\"NibProbe\"") +
                     "<customObject id=\"o\" customClass=\"NibProbe\"/><customObject id=\"n\"/>"));
    EXPECT_THAT(happenings(), ElementsAre("p made", "probe by frame", "p awakes", " awakes", "owner awakes"));
    EXPECT_EQ(&top_[2]->class_(), &NSObject::classTable());
}

TEST_F(NibObjects, EachOpeningMakesObjectsAnew) {
    const auto nib = read(document(view("")));
    ASSERT_TRUE(nib && instantiate(*nib));
    const auto first = top_;
    ASSERT_TRUE(instantiate(*nib));
    EXPECT_NE(first[0], top_[0]);
}

TEST_F(NibObjects, WhatIsNotHeldGoes) {
    const auto nib = read(document(view("<connections><outlet property=\"none\" destination=\"v\" id=\"c\"/>"
                                        "</connections>") +
                                   placeholder("-2", "<connections><outlet property=\"view\" destination=\"k\" "
                                                     "id=\"d\"/></connections>") +
                                   "<view id=\"k\"/>"));
    ASSERT_TRUE(nib && instantiate(*nib));
    const std::weak_ptr<NSObject> unheld = top_[0], held = top_[1];
    top_.clear();
    EXPECT_TRUE(unheld.expired());
    EXPECT_FALSE(held.expired());
}

// What the archive answers for each key, on elements whose classes are of no account here.
class NibArchives : public NibTest {
protected:
    nib::Archive archive(const std::string& element) {
        auto file = nib::read(document(element), [this](const std::string& note) { log_.push_back(note); });
        return file.objects.at(0).archive.value();
    }
    nib::Archive cell(const std::string& attributes, const std::string& contents = {}) {
        return archive("<textField id=\"t\"><textFieldCell key=\"cell\" id=\"k\" " + attributes + ">" +
                       contents + "</textFieldCell></textField>");
    }
    std::optional<FontDescription> font(const std::string& attributes) {
        return cell("", "<font key=\"font\" " + attributes + "/>").decodeFontForKey("NSFont");
    }
    std::optional<Colour> colour(const std::string& attributes) {
        return cell("", "<color key=\"textColor\" " + attributes + "/>").decodeColourForKey("NSTextColor");
    }
};

TEST_F(NibArchives, FlagsOfCellsHaveTheDefaultsOfTheirEditor) {
    const auto plain = cell("");
    EXPECT_EQ(plain.decodeBoolForKey("NSEnabled"), true);
    for (const auto* key : {"NSEditable", "NSSelectable", "NSDrawsBackground", "NSSendsActionOnEndEditing",
                            "NSBezeled", "NSBordered", "NSHidden"})
        EXPECT_EQ(plain.decodeBoolForKey(key), false) << key;
    const auto set = cell("enabled=\"NO\" editable=\"YES\" selectable=\"YES\" drawsBackground=\"YES\" "
                          "sendsActionOnEndEditing=\"YES\" borderStyle=\"bezel\"");
    EXPECT_EQ(set.decodeBoolForKey("NSEnabled"), false);
    for (const auto* key :
         {"NSEditable", "NSSelectable", "NSDrawsBackground", "NSSendsActionOnEndEditing", "NSBezeled"})
        EXPECT_EQ(set.decodeBoolForKey(key), true) << key;
    EXPECT_EQ(set.decodeBoolForKey("NSBordered"), false);
    EXPECT_EQ(cell("borderStyle=\"border\"").decodeBoolForKey("NSBordered"), true);
}

TEST_F(NibArchives, AViewWithoutACellHasNoKeysOfOne) {
    const auto plain = archive("<customView id=\"v\"/>");
    for (const auto* key : {"NSEnabled", "NSEditable", "NSBezeled", "NSIndeterminate"})
        EXPECT_EQ(plain.decodeBoolForKey(key), std::nullopt) << key;
    EXPECT_EQ(plain.decodeDoubleForKey("NSAlignment"), std::nullopt);
    EXPECT_EQ(plain.decodeStringForKey("NSTitle"), std::nullopt);
    EXPECT_EQ(plain.decodeRectForKey("NSFrame"), std::nullopt);
}

TEST_F(NibArchives, AKeyAnswersValuesOfItsKindOnly) {
    const auto given = cell("title=\"T\"");
    EXPECT_EQ(given.decodeStringForKey("NSTitle"), "T");
    EXPECT_EQ(given.decodeDoubleForKey("NSTitle"), std::nullopt);
    EXPECT_EQ(given.decodeBoolForKey("NSTitle"), std::nullopt);
    EXPECT_EQ(given.decodeRectForKey("NSTitle"), std::nullopt);
    EXPECT_EQ(given.decodeStringForKey("NSEnabled"), std::nullopt);
}

TEST_F(NibArchives, Words) {
    for (const auto& [word, value] : {std::pair{"left", 0.}, {"right", 1.}, {"center", 2.}, {"natural", 0.}})
        EXPECT_EQ(cell(stringWithFormat("alignment=\"%s\"", word)).decodeDoubleForKey("NSAlignment"), value)
            << word;
    for (const auto& [word, value] : {std::pair{"wordWrapping", 0.},
                                      {"charWrapping", 1.},
                                      {"clipping", 2.},
                                      {"truncatingHead", 3.},
                                      {"truncatingTail", 4.},
                                      {"truncatingMiddle", 5.}})
        EXPECT_EQ(cell(stringWithFormat("lineBreakMode=\"%s\"", word)).decodeDoubleForKey("NSLineBreakMode"),
                  value)
            << word;
    EXPECT_EQ(cell("").decodeDoubleForKey("NSAlignment"), 0);
    EXPECT_EQ(cell("").decodeDoubleForKey("NSLineBreakMode"), 0);
    EXPECT_THAT(log_, IsEmpty());
}

TEST_F(NibArchives, AnUnknownWordIsNotedAndLeftOut) {
    EXPECT_EQ(cell("alignment=\"justified\"").decodeDoubleForKey("NSAlignment"), 0);
    EXPECT_THAT(log_, ElementsAre("textFieldCell \"k\": alignment \"justified\" is not known"));
}

TEST_F(NibArchives, AProgressIndicator) {
    const auto bar = archive("<progressIndicator maxValue=\"1\" style=\"bar\" id=\"p\"/>");
    EXPECT_EQ(bar.decodeDoubleForKey("NSMinValue"), std::nullopt);
    EXPECT_EQ(bar.decodeDoubleForKey("NSMaxValue"), 1);
    EXPECT_EQ(bar.decodeDoubleForKey("NSDoubleValue"), std::nullopt);
    EXPECT_EQ(bar.decodeDoubleForKey("NSProgressStyle"), 0);
    EXPECT_EQ(bar.decodeBoolForKey("NSIndeterminate"), false);
    EXPECT_EQ(bar.decodeBoolForKey("NSDisplayedWhenStopped"), true);
    const auto wheel =
        archive("<progressIndicator minValue=\"-2.5\" maxValue=\"100\" doubleValue=\"7\" "
                "displayedWhenStopped=\"NO\" indeterminate=\"YES\" style=\"spinning\" id=\"p\"/>");
    EXPECT_EQ(wheel.decodeDoubleForKey("NSMinValue"), -2.5);
    EXPECT_EQ(wheel.decodeDoubleForKey("NSDoubleValue"), 7);
    EXPECT_EQ(wheel.decodeDoubleForKey("NSProgressStyle"), 1);
    EXPECT_EQ(wheel.decodeBoolForKey("NSIndeterminate"), true);
    EXPECT_EQ(wheel.decodeBoolForKey("NSDisplayedWhenStopped"), false);
}

TEST_F(NibArchives, AnImageView) {
    const auto image =
        archive("<imageView id=\"i\"><imageCell key=\"cell\" imageScaling=\"proportionallyUpOrDown\" "
                "image=\"Lock\" id=\"k\"/></imageView>");
    EXPECT_EQ(image.decodeStringForKey("NSImageName"), "Lock");
    EXPECT_EQ(image.decodeDoubleForKey("NSImageScaling"), 3);
}

TEST_F(NibArchives, TextsAsAttributesElementsAndInBase64) {
    EXPECT_EQ(cell("title=\"a &amp; b\"").decodeStringForKey("NSContents"), "a & b");
    EXPECT_EQ(cell("", "<string key=\"title\">two\nlines</string>").decodeStringForKey("NSContents"),
              "two\nlines");
    EXPECT_EQ(cell("", "<string key=\"title\"> </string>").decodeStringForKey("NSContents"), " ");
    EXPECT_EQ(cell("", "<string key=\"title\">a<![CDATA[<b>]]>c</string>").decodeStringForKey("NSContents"),
              "a<b>c");
    EXPECT_EQ(cell("keyEquivalent=\"d\"").decodeStringForKey("NSKeyEquivalent"), "d");
    const auto base64 = [&](const char* text) {
        return cell("",
                    stringWithFormat("<string key=\"keyEquivalent\" base64-UTF8=\"YES\">\n%s\n</string>", text))
            .decodeStringForKey("NSKeyEquivalent");
    };
    EXPECT_EQ(base64("Gw"), "\x1b");
    EXPECT_EQ(base64("Gw=="), "\x1b");
    EXPECT_EQ(base64("DQ"), "\r");
    EXPECT_EQ(base64("77yE"), "\xef\xbc\x84");
    EXPECT_EQ(base64("YWJj\nZGVm"), "abcdef");
    EXPECT_EQ(base64(""), "");
    EXPECT_THROW(base64("G!"), nib::Broken);
}

TEST_F(NibArchives, Fonts) {
    EXPECT_EQ(font("metaFont=\"system\""), (FontDescription{"", 13, false, false}));
    EXPECT_EQ(font("metaFont=\"systemBold\" size=\"17.5\""), (FontDescription{"", 17.5, true, false}));
    EXPECT_EQ(font("metaFont=\"smallSystem\""), (FontDescription{"", 11, false, false}));
    EXPECT_EQ(font("metaFont=\"miniSystem\" size=\"9\""), (FontDescription{"", 9, false, false}));
    EXPECT_EQ(font("size=\"12\" name=\"Menlo-Regular\""), (FontDescription{"Menlo", 12, false, false}));
    EXPECT_EQ(font("size=\"12\" name=\"HelveticaNeue-Bold\" family=\"Helvetica Neue\""),
              (FontDescription{"Helvetica Neue", 12, true, false}));
    EXPECT_EQ(font("usesAppearanceFont=\"YES\""), std::nullopt);
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_EQ(font("metaFont=\"huge\""), std::nullopt);
    EXPECT_THAT(log_, ElementsAre("font of textFieldCell \"k\": there is no font huge"));
    EXPECT_THROW(font("metaFont=\"system\" size=\"0\""), nib::Broken);
}

TEST_F(NibArchives, Colours) {
    for (const auto& [name, system] : {std::pair{"labelColor", SystemColour::label},
                                       {"secondaryLabelColor", SystemColour::secondaryLabel},
                                       {"textColor", SystemColour::text},
                                       {"textBackgroundColor", SystemColour::textBackground},
                                       {"controlColor", SystemColour::control},
                                       {"systemRedColor", SystemColour::systemRed}})
        EXPECT_EQ(colour(stringWithFormat("name=\"%s\" catalog=\"System\" colorSpace=\"catalog\"", name)),
                  Colour{system});
    EXPECT_EQ(colour("red=\"0.25\" green=\"-1\" blue=\"7\" alpha=\"0.5\" colorSpace=\"calibratedRGB\""),
              (Colour{SystemColour::none, 0.25, 0, 1, 0.5}));
    EXPECT_EQ(colour("red=\"0\" green=\"0\" blue=\"1\" colorSpace=\"deviceRGB\""),
              (Colour{SystemColour::none, 0, 0, 1, 1}));
    EXPECT_EQ(colour("white=\"0.5\" alpha=\"1\" colorSpace=\"calibratedWhite\""),
              (Colour{SystemColour::none, 0.5, 0.5, 0.5, 1}));
    EXPECT_THAT(log_, IsEmpty());
    EXPECT_EQ(colour("name=\"someColor\" catalog=\"System\" colorSpace=\"catalog\""), std::nullopt);
    EXPECT_EQ(colour("cyan=\"1\" magenta=\"0\" yellow=\"0\" black=\"0\" colorSpace=\"deviceCMYK\""),
              std::nullopt);
    EXPECT_THAT(log_,
                ElementsAre("color of textFieldCell \"k\": there is no colour someColor",
                            "color of textFieldCell \"k\": a colour of the space \"deviceCMYK\" is not read"));
    EXPECT_THROW(colour("red=\"x\" green=\"0\" blue=\"1\" colorSpace=\"deviceRGB\""), nib::Broken);
    EXPECT_THROW(colour("red=\"1\" colorSpace=\"deviceRGB\""), nib::Broken);
}

} // namespace zr::test
