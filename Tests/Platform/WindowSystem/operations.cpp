// SPDX-License-Identifier: MIT
#include <WindowSystem/Drawing.h>
#include <ZRUIKitHeadless/RecordingCanvas.h>

#include <gmock/gmock.h>

#include <array>
#include <limits>

namespace zr {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr Colour kRed{SystemColour::none, 1, 0, 0, 1};
constexpr Colour kBlue{SystemColour::none, 0, 0, 1, 1};

using Kind = PathElement::Kind;

Path simple(PathShape shape, const CGRect& bounds, double radius = 0) {
    return {shape, bounds, radius, radius, {}};
}
Path rectangle(const CGRect& bounds) { return simple(PathShape::rectangle, bounds); }
Path rounded(const CGRect& bounds, double radius) {
    return simple(PathShape::roundedRectangle, bounds, radius);
}
Path oval(const CGRect& bounds) { return simple(PathShape::oval, bounds); }
Path freePath(std::vector<PathElement> elements) {
    return {PathShape::elements, {}, 0, 0, std::move(elements)};
}
// Reaches from 10 to 40 and from 5 to 35, its control points included.
Path bow() {
    return freePath({{Kind::move, {{{10, 20}}}},
                     {Kind::line, {{{20, 5}}}},
                     {Kind::curve, {{{40, 10}, {30, 35}, {15, 25}}}},
                     {Kind::close, {{{999, 999}, {-999, -999}}}}}); // not used
}

port::Fill fill(Path path, const Colour& colour = kRed) { return {std::move(path), colour}; }
port::Stroke stroke(Path path, double lineWidth) { return {std::move(path), kRed, {lineWidth}}; }
port::Text text(const char* string, CGPoint origin = {}) { return {std::string(string), {}, kRed, origin}; }
port::Image image(const CGRect& destination) {
    static const auto representations = std::make_shared<const std::vector<port::ImageRepresentation>>();
    return {representations, {10, 10}, destination, {{0, 0}, {10, 10}}};
}

port::OperationList list(const std::vector<port::Operation>& operations) {
    port::OperationList result;
    for (const auto& operation : operations) std::visit([&](const auto& one) { result.add(one); }, operation);
    return result;
}

// As they were added, without what they are grown by.
struct Difference {
    bool known = false;
    std::vector<CGRect> areas;
};
Difference difference(const std::vector<port::Operation>& was, const std::vector<port::Operation>& is) {
    port::DamagedAreas areas;
    Difference result{list(was).compare(list(is), areas), {}};
    for (const CGRect& area : areas.merged()) result.areas.push_back(NSInsetRect(area, 1, 1));
    return result;
}

const CGRect kBox = {{10, 20}, {30, 15}};
const CGRect kFar = {{300, 200}, {30, 15}};

} // namespace

// Bounds

TEST(OperationBounds, OfAFilledShapeAreItsOwn) {
    EXPECT_EQ(fill(rectangle(kBox)).bounds(), kBox);
    EXPECT_EQ(fill(rounded(kBox, 5)).bounds(), kBox);
    EXPECT_EQ(fill(oval(kBox)).bounds(), kBox);
    EXPECT_EQ(fill(rectangle({{40, 35}, {-30, -15}})).bounds(), kBox);
}

TEST(OperationBounds, OfAFilledOutlineReachAroundItsPoints) {
    EXPECT_EQ(fill(bow()).bounds(), NSMakeRect(10, 5, 30, 30));
    EXPECT_EQ(fill(freePath({{Kind::move, {{{-7, -8}}}}, {Kind::line, {{{-3, -5}}}}})).bounds(),
              NSMakeRect(-7, -8, 4, 3));
    EXPECT_EQ(fill(freePath({})).bounds(), NSZeroRect);
}

TEST(OperationBounds, OfCornersThatDoNotFitReachFurther) {
    EXPECT_EQ(fill(rounded(kBox, -4)).bounds(), NSInsetRect(kBox, -4, -4));
    EXPECT_EQ(fill(rounded(kBox, 20)).bounds(), NSInsetRect(kBox, -20, -20));
}

TEST(OperationBounds, OfAStrokeReachHalfAWidthFurther) {
    for (const auto& path : {rectangle(kBox), rounded(kBox, 5), oval(kBox)})
        EXPECT_EQ(stroke(path, 4).bounds(), NSInsetRect(kBox, -2, -2)) << int(path.shape);
    EXPECT_EQ(stroke(rectangle(kBox), 0).bounds(), NSInsetRect(kBox, -0.5, -0.5));
}

TEST(OperationBounds, OfAStrokeCountItsMitres) {
    EXPECT_EQ(stroke(bow(), 4).bounds(), NSMakeRect(10 - 40, 5 - 40, 30 + 80, 30 + 80));
    EXPECT_EQ(stroke(bow(), 0).bounds(), NSMakeRect(0, -5, 50, 50));
    // Shapes that are thinner than the line turn sharply.
    EXPECT_EQ(stroke(oval({{0, 0}, {30, 3}}), 4).bounds(), NSMakeRect(-40, -40, 110, 83));
    EXPECT_EQ(stroke(rounded(kBox, -1), 1).bounds(), NSInsetRect(kBox, -11, -11));
}

TEST(OperationBounds, OfAnImageAreItsDestination) {
    EXPECT_EQ(image(kBox).bounds(), kBox);
    EXPECT_EQ(image({{40, 35}, {-30, -15}}).bounds(), kBox);
}

TEST(OperationBounds, AreUnknownOfTextsAndOfWhatOthersDependOn) {
    EXPECT_EQ(text("a").bounds(), std::nullopt);
    EXPECT_EQ(port::Save{}.bounds(), std::nullopt);
    EXPECT_EQ(port::Restore{}.bounds(), std::nullopt);
    EXPECT_EQ(port::Clip{rectangle(kBox)}.bounds(), std::nullopt);
}

TEST(OperationBounds, AreUnknownWhereNumbersAreNotFinite) {
    for (const double number : {kNone, kInfinite, -kInfinite}) {
        const std::array<CGRect, 4> boxes = {
            {{{number, 0}, {1, 1}}, {{0, number}, {1, 1}}, {{0, 0}, {number, 1}}, {{0, 0}, {1, number}}}};
        for (const CGRect& box : boxes) {
            EXPECT_EQ(fill(rectangle(box)).bounds(), std::nullopt);
            EXPECT_EQ(stroke(oval(box), 1).bounds(), std::nullopt);
            EXPECT_EQ(image(box).bounds(), std::nullopt);
        }
        EXPECT_EQ(fill(rounded(kBox, number)).bounds(), std::nullopt);
        EXPECT_EQ(stroke(rectangle(kBox), number).bounds(), std::nullopt);
        const auto path = freePath({{Kind::move, {{{0, 0}}}}, {Kind::line, {{{number, 1}}}}, {Kind::line, {}}});
        EXPECT_EQ(fill(path).bounds(), std::nullopt);
        EXPECT_EQ(stroke(path, 1).bounds(), std::nullopt);
    }
    EXPECT_EQ(fill(rectangle({{1e308, 0}, {1e308, 1}})).bounds(), std::nullopt);
    EXPECT_EQ(stroke(rectangle(kBox), 1e308).bounds(), std::nullopt);
}

// Differences of lists

TEST(OperationDifferences, OfEqualListsAreNone) {
    const std::vector<port::Operation> all = {
        port::Save{}, port::Clip{oval(kBox)}, fill(bow()), stroke(oval(kBox), 2), image(kBox),
        text("a"),    port::Restore{}};
    const auto found = difference(all, all);
    EXPECT_TRUE(found.known);
    EXPECT_THAT(found.areas, IsEmpty());
    EXPECT_EQ(list(all), list(all));
    auto one = all;
    one.pop_back();
    EXPECT_NE(list(all), list(one));
}

TEST(OperationDifferences, AreWhereAnOperationWasAndWhereItIs) {
    const std::vector<std::pair<port::Operation, port::Operation>> moves = {
        {fill(oval(kBox)), fill(oval(kFar))},
        {fill(rectangle(kBox)), fill(rectangle(kFar))},
        {image(kBox), image(kFar)},
        {fill(oval(kBox)), image(kFar)}};
    for (const auto& [was, is] : moves) {
        const auto found = difference({text("a"), was, text("b")}, {text("a"), is, text("b")});
        EXPECT_TRUE(found.known);
        EXPECT_THAT(found.areas, ElementsAre(kBox, kFar)) << was.index();
    }
}

TEST(OperationDifferences, AreOfEachMember) {
    const auto found = [](const port::Operation& was, const port::Operation& is) {
        return difference({was}, {is}).areas.size();
    };
    const auto filled = fill(rectangle(kBox));
    EXPECT_EQ(found(filled, fill(rectangle(kBox), kBlue)), 1U);
    EXPECT_EQ(found(filled, port::Fill{rectangle(kBox), kRed, NSCompositingOperationCopy}), 1U);
    const auto drawn = image(kBox);
    for (int member = 0; member < 5; ++member) {
        auto other = drawn;
        if (member == 0) other.representations = nullptr;
        if (member == 1) other.size = {5, 5};
        if (member == 2) other.source = {{0, 0}, {5, 5}};
        if (member == 3) other.compositing = NSCompositingOperationCopy;
        if (member == 4) other.fraction = 0.5;
        EXPECT_EQ(found(drawn, other), 1U) << member;
    }
    EXPECT_NE(text("a"), text("b"));
    EXPECT_NE(text("a", {0, 0}), text("a", {0, 1}));
}

TEST(OperationDifferences, AreNotToldOfSmoothOutlinesWhichArePaintedAsAWhole) {
    const auto whole = [](const port::Operation& was, const port::Operation& is) {
        return !difference({was}, {is}).known;
    };
    EXPECT_TRUE(whole(fill(bow()), fill(freePath({{Kind::move, {{{11, 11}}}}}))));
    EXPECT_TRUE(whole(fill(bow()), fill(bow(), kBlue)));
    EXPECT_TRUE(whole(stroke(rectangle(kBox), 1), stroke(rectangle(kBox), 2)));
    EXPECT_TRUE(whole(stroke(rectangle(kBox), 1), port::Stroke{rectangle(kBox), kBlue, {1}}));
    EXPECT_FALSE(whole(stroke(rectangle(kBox), 1), stroke(rectangle(kBox), 1)));
    EXPECT_FALSE(difference({}, {stroke(rectangle(kBox), 1)}).known);
    // Those that stay keep nothing else from being painted in part.
    const auto changed =
        difference({stroke(bow(), 1), fill(rectangle(kBox))}, {stroke(bow(), 1), fill(rectangle(kFar))});
    EXPECT_TRUE(changed.known);
    EXPECT_EQ(changed.areas.size(), 2U);
}

TEST(OperationDifferences, OfABarThatGrewAreItsEnds) {
    const auto grown = [](const Path& was, const Path& is) { return difference({fill(was)}, {fill(is)}); };
    EXPECT_THAT(grown(rectangle({{10, 5}, {100, 4}}), rectangle({{10, 5}, {150, 4}})).areas,
                ElementsAre(NSMakeRect(110, 5, 50, 4)));
    EXPECT_THAT(grown(rounded({{10, 5}, {100, 4}}, 2), rounded({{10, 5}, {60, 4}}, 2)).areas,
                ElementsAre(NSMakeRect(68, 5, 42, 4)));
    EXPECT_THAT(grown(rounded({{10, 5}, {100, 4}}, 2), rounded({{20, 5}, {110, 4}}, 2)).areas,
                ElementsAre(NSMakeRect(10, 5, 12, 4), NSMakeRect(108, 5, 22, 4)));
}

TEST(OperationDifferences, OfABarThatAlsoChangedOtherwiseAreTheWholeBar) {
    const Path bar = rounded({{10, 5}, {100, 4}}, 2);
    const CGRect both = {{10, 5}, {150, 4}};
    const auto longer = [&] { return rounded(both, 2); };
    const auto areas = [&](const port::Fill& next) { return difference({fill(bar)}, {next}).areas; };
    EXPECT_THAT(areas(fill(longer(), kBlue)), ElementsAre(both));
    EXPECT_THAT(areas({longer(), kRed, NSCompositingOperationCopy}), ElementsAre(both));
    EXPECT_THAT(areas(fill(rounded(both, 1))), ElementsAre(both));
    EXPECT_THAT(areas(fill(rectangle(both))), ElementsAre(both));
    EXPECT_THAT(areas(fill(oval(both))), ElementsAre(both));
    EXPECT_THAT(areas(fill(rounded({{10, 5}, {150, 5}}, 2))), ElementsAre(NSMakeRect(10, 5, 150, 5)));
    EXPECT_THAT(areas(fill(rounded({{10, 6}, {150, 4}}, 2))), ElementsAre(NSMakeRect(10, 5, 150, 5)));
}

TEST(OperationDifferences, OfABarThatIsShortOrWhoseCornersDoNotFitAreTheWholeBar) {
    const CGRect shortBox = {{10, 5}, {11, 4}}, longBox = {{10, 5}, {50, 4}};
    EXPECT_THAT(difference({fill(rounded(shortBox, 2))}, {fill(rounded(longBox, 2))}).areas,
                ElementsAre(longBox));
    EXPECT_THAT(difference({fill(rounded({{10, 5}, {40, 4}}, -30))}, {fill(rounded(longBox, -30))}).areas,
                ElementsAre(NSInsetRect(longBox, -30, -30)));
    EXPECT_FALSE(difference({fill(rectangle({{kNone, 5}, {50, 4}}))}, {fill(rectangle(longBox))}).known);
}

TEST(OperationDifferences, OfAListThatGrewAreWhatCameAndWent) {
    const auto kept = fill(oval({{0, 0}, {5, 5}}));
    EXPECT_THAT(difference({kept, text("a")}, {kept, image(kBox), text("a")}).areas, ElementsAre(kBox));
    EXPECT_THAT(difference({kept, fill(oval(kFar)), image(kBox)}, {kept}).areas, ElementsAre(kFar, kBox));
    EXPECT_FALSE(difference({kept}, {kept, text("a")}).known);
}

TEST(OperationDifferences, AreUnknownWhereATextOrAClipChanged) {
    EXPECT_FALSE(difference({text("a")}, {text("b")}).known);
    EXPECT_FALSE(difference({text("a")}, {fill(oval(kBox))}).known);
    EXPECT_FALSE(
        difference({port::Clip{oval(kBox)}, image(kFar)}, {port::Clip{oval(kFar)}, image(kFar)}).known);
    EXPECT_FALSE(difference({image(kFar)}, {port::Save{}, image(kFar), port::Restore{}}).known);
    EXPECT_FALSE(difference({port::Save{}, image(kFar)}, {image(kFar), port::Save{}}).known);
}

TEST(OperationDifferences, AreUnknownWithinAClip) {
    const auto within = [](const port::Operation& operation) -> std::vector<port::Operation> {
        return {port::Save{}, port::Clip{oval({{0, 0}, {900, 900}})}, operation, port::Restore{}};
    };
    EXPECT_FALSE(difference(within(image(kBox)), within(image(kFar))).known);
    EXPECT_TRUE(difference(within(image(kBox)), within(image(kBox))).known);
    auto cleared = list(within(image(kBox)));
    cleared.clear();
    port::DamagedAreas areas;
    EXPECT_TRUE(cleared.compare(list({image(kBox)}), areas));
}

TEST(OperationDifferences, AreasThatTouchBecomeOne) {
    port::DamagedAreas areas;
    areas.add({{0, 0}, {10, 10}});
    areas.add({{40, 0}, {10, 10}});
    EXPECT_EQ(areas.merged().size(), 2U);
    areas.add({{9, 0}, {32, 10}});
    EXPECT_THAT(areas.merged(), ElementsAre(NSMakeRect(-1, -1, 52, 12)));
    areas.clear();
    for (int i = 0; i < 9; ++i) areas.add({{i * 20.0, 0}, {10, 10}});
    EXPECT_THAT(areas.merged(), ElementsAre(NSMakeRect(-1, -1, 172, 12)));
}

TEST(OperationList, APartIsTouchedByWhatIsNearItAndByWhatHasNoBounds) {
    const auto touches = [](const port::Operation& operation, const CGRect& part) {
        return list({operation}).touches(part);
    };
    EXPECT_TRUE(touches(fill(oval(kBox)), {{0, 0}, {9.5, 100}}));
    EXPECT_FALSE(touches(fill(oval(kBox)), {{0, 0}, {8.5, 100}}));
    EXPECT_TRUE(touches(stroke(rectangle(kBox), 8), {{0, 0}, {6, 100}}));
    EXPECT_FALSE(touches(stroke(rectangle(kBox), 8), {{0, 0}, {4, 100}}));
    EXPECT_FALSE(touches(image(kBox), kFar));
    EXPECT_TRUE(touches(text("a"), kFar));
    EXPECT_TRUE(touches(port::Save{}, kFar));
    EXPECT_FALSE(list({}).touches(kFar));
    EXPECT_TRUE(list({port::Clip{oval(kBox)}, image(kBox)}).touches(image(kBox), kFar)) << "all of what clips";
    EXPECT_TRUE(list({image(kBox), image(kFar)}).touches(kFar));
}

TEST(Shared, CopiesShareAndEqualValuesAreEqual) {
    const port::Shared<std::string> one(std::string(100, 'a')), other(std::string(100, 'a'));
    auto copy = one;
    EXPECT_EQ(&*copy, &*one);
    EXPECT_NE(&*other, &*one);
    EXPECT_EQ(one, other);
    EXPECT_NE(one, port::Shared<std::string>("b"));
    const auto moved = std::move(copy); // NOLINT(performance-move-const-arg): moving copies
    EXPECT_EQ(moved, copy);             // NOLINT(bugprone-use-after-move): a value is always there
}

// Lines

namespace {

port::ImageRepresentation picture(const char* name, CGSize pixels, double scale = 1,
                                  Appearance appearance = Appearance::light) {
    return {std::make_shared<headless::NamedBitmap>(name, pixels), scale, appearance};
}

std::string line(const port::Operation& operation, double scale = 1,
                 Appearance appearance = Appearance::light) {
    return headless::linesOf(list({operation}), scale, appearance).at(0);
}

} // namespace

TEST(OperationLines, TellEverythingThatIsNotAtItsDefault) {
    EXPECT_EQ(line(port::Save{}), "save");
    EXPECT_EQ(line(port::Restore{}), "restore");
    EXPECT_EQ(line(port::Clip{rounded(kBox, 2)}), "clip rounded {{10, 20}, {30, 15}} radius {2, 2}");
    EXPECT_EQ(line(fill(rectangle(kBox))), "fill rect {{10, 20}, {30, 15}} rgba(1, 0, 0, 1)");
    EXPECT_EQ(line(port::Fill{oval(kBox), {SystemColour::label}, NSCompositingOperationClear}),
              "fill oval {{10, 20}, {30, 15}} labelColor operation 0");
    EXPECT_EQ(line(stroke(bow(), 2.5)),
              "stroke path move {10, 20} line {20, 5} curve {40, 10} {30, 35} {15, 25} "
              "close rgba(1, 0, 0, 1) width 2.5");
    EXPECT_EQ(line(text("Hi", {3, 4})), "text \"Hi\" system 13 rgba(1, 0, 0, 1) at {3, 4}");
    EXPECT_EQ(line(port::Text{std::string("a \"b\" \\"), {"Serif", 9, true, true}, kBlue, {}}),
              R"(text "a \"b\" \\" Serif bold digits 9 rgba(0, 0, 1, 1) at {0, 0})");
}

TEST(OperationLines, TellTheSizeOfAnImageThatIsNotItsPictures) {
    port::Image drawn{std::make_shared<const std::vector<port::ImageRepresentation>>(
                          std::vector{picture("small", {20, 10}), picture("large", {60, 30}, 3),
                                      picture("dark", {20, 10}, 1, Appearance::dark)}),
                      {20, 10},
                      kBox,
                      {{0, 0}, {4, 5}},
                      NSCompositingOperationCopy,
                      0.5};
    const std::string rest = " in {{10, 20}, {30, 15}} from {{0, 0}, {4, 5}} operation 1 fraction 0.5";
    EXPECT_EQ(line(drawn), "image small" + rest);
    EXPECT_EQ(line(drawn, 3), "image large" + rest);
    EXPECT_EQ(line(drawn, 1, Appearance::dark), "image dark" + rest);
    drawn.size = {20, 20};
    EXPECT_EQ(line(drawn), "image small of {20, 20}" + rest);
    drawn.representations = std::make_shared<const std::vector<port::ImageRepresentation>>();
    EXPECT_EQ(line(drawn), "image ? of {20, 20}" + rest);
}

TEST(OperationLines, NameABitmapThatWasDrawn) {
    const auto bitmap = headless::drawnBitmap({10, 20}, 1.5, Appearance::light,
                                              list({port::Save{}, fill(rectangle(kBox)), port::Restore{}}));
    EXPECT_EQ(bitmap->name(), "[save; fill rect {{10, 20}, {30, 15}} rgba(1, 0, 0, 1); restore]");
    EXPECT_EQ(bitmap->pixelSize(), NSMakeSize(15, 30));
}

} // namespace zr
