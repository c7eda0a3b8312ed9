// SPDX-License-Identifier: MIT
#include <AppKit/NSControl.h>
#include <Foundation/ClassTable.h>
#include <Foundation/NSCoder.h>
#include <Foundation/NSObject.h>
#include <ZRUIKit/SplitSliderView.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <stdexcept>

namespace zr {

namespace {

// A kind that a colour can become.
struct Paint {
    Paint() = default;
    explicit Paint(const Colour& given) : colour(given) {}
    Colour colour;
};

class Listener {
public:
    virtual ~Listener() = default;
};

class Shape : public NSObject {
public:
    ZR_CLASS(Shape, NSObject)

    bool init() override {
        how = "init";
        return true;
    }
    bool initWithCoder(NSCoder&) {
        how = "initWithCoder";
        return true;
    }

    void turn(NSObject* from) {
        ++turns;
        sender = from;
    }
    virtual void grow(NSObject*) { size += 1; }
    void drop(NSObject*) {
        holder->reset();
        dropped = true; // still there
    }

    void setNext(const std::shared_ptr<Shape>& value) { next = value; }
    void setListener(const std::weak_ptr<Listener>& value) { listener = value; }

    void setTitle(const std::string& value) { title = value; }
    void setSubtitle(std::optional<std::string> value) { subtitle = std::move(value); }
    void setSize(double value) { size = value; }
    void setScale(float value) { scale = value; }
    void setCount(int value) { count = value; }
    void setSteps(std::uint8_t value) { steps = value; }
    void setTotal(std::int64_t value) { total = value; }
    void setHidden(bool value) { hidden = value; }
    void setOrigin(const NSPoint& value) { origin = value; }
    void setPaint(const Paint& value) { paint = value; }

    std::string how;
    int turns = 0;
    NSObject* sender = nullptr;
    std::shared_ptr<Shape>* holder = nullptr;
    bool dropped = false;
    std::shared_ptr<Shape> next;
    std::weak_ptr<Listener> listener;
    std::string title = "untitled";
    std::optional<std::string> subtitle;
    double size = 0;
    float scale = 0;
    int count = 0;
    std::uint8_t steps = 0;
    std::int64_t total = 0;
    bool hidden = false;
    NSPoint origin;
    Paint paint;
};
ZR_CLASS_TABLE(Shape,
               .actions = {actionNamed<&Shape::turn>("turn:"), actionNamed<&Shape::grow>("grow:"),
                           actionNamed<&Shape::drop>("drop:")},
               .outlets = {outletNamed<&Shape::setNext>("next"), outletNamed<&Shape::setListener>("listener")},
               .attributes = {
                   attributeNamed<&Shape::setTitle>("title"), attributeNamed<&Shape::setSubtitle>("subtitle"),
                   attributeNamed<&Shape::setSize>("size"), attributeNamed<&Shape::setScale>("scale"),
                   attributeNamed<&Shape::setCount>("count"), attributeNamed<&Shape::setSteps>("steps"),
                   attributeNamed<&Shape::setTotal>("total"), attributeNamed<&Shape::setHidden>("hidden"),
                   attributeNamed<&Shape::setOrigin>("origin"), attributeNamed<&Shape::setPaint>("paint")})

class Circle : public Shape, public Listener {
public:
    ZR_CLASS(Circle, Shape)
    void grow(NSObject*) override { size += 100; }
    void setTurns(double value) { circleTurns = value; }
    void turnTwice(NSObject*) { turns += 2; }
    double circleTurns = 0;
};
// "size" means something else in a circle.
ZR_CLASS_TABLE(Circle, .actions = {actionNamed<&Circle::turnTwice>("turnTwice:")},
               .attributes = {attributeNamed<&Circle::setTurns>("size")})

class NoCoder : public NSObject {
public:
    ZR_CLASS(NoCoder, NSObject)
    bool init() override {
        how = "init";
        return true;
    }
    std::string how;
};
ZR_CLASS_TABLE(NoCoder)

class EmptyArchive : public NSCoder {
public:
    std::optional<NSRect> decodeRectForKey(std::string_view) const override { return std::nullopt; }
    std::optional<double> decodeDoubleForKey(std::string_view) const override { return std::nullopt; }
    std::optional<bool> decodeBoolForKey(std::string_view) const override { return std::nullopt; }
};

bool assign(Shape& shape, std::string_view name, const RuntimeValue& value) {
    const Attribute* attribute = shape.class_().findAttribute(name);
    EXPECT_TRUE(attribute) << name;
    return attribute && attribute->assign(shape, value);
}

bool connect(Shape& shape, std::string_view name, const std::shared_ptr<NSObject>& value) {
    const Outlet* outlet = shape.class_().findOutlet(name);
    EXPECT_TRUE(outlet) << name;
    return outlet && outlet->connect(shape, value);
}

} // namespace

TEST(ClassTables, LookUpsGoOnInTheSuperclass) {
    const ClassTable& circle = Circle::classTable();
    EXPECT_EQ(circle.findAction("turn:"), Shape::classTable().findAction("turn:"));
    EXPECT_EQ(circle.findOutlet("next"), Shape::classTable().findOutlet("next"));
    EXPECT_EQ(circle.findAttribute("title"), Shape::classTable().findAttribute("title"));
    EXPECT_NE(circle.findAttribute("size"), Shape::classTable().findAttribute("size"));
    EXPECT_FALSE(Shape::classTable().findAction("turnTwice:"));
    EXPECT_FALSE(circle.findAction("turn"));
    EXPECT_FALSE(circle.findAction("Turn:"));
    EXPECT_FALSE(circle.findOutlet("title"));
    EXPECT_FALSE(circle.findAttribute(""));
}

TEST(ClassTables, TheNearestClassDecides) {
    const auto circle = make<Circle>();
    EXPECT_TRUE(assign(*circle, "size", 3.0));
    EXPECT_EQ(circle->circleTurns, 3);
    EXPECT_EQ(circle->size, 0);
}

TEST(ClassTables, AnActionIsPerformedByItsNameWithItsSender) {
    const auto circle = make<Circle>();
    const auto sender = make<NSObject>();
    EXPECT_TRUE(circle->respondsToSelector("turn:"));
    EXPECT_TRUE(circle->performSelector_withObject("turn:", sender.get()));
    EXPECT_EQ(circle->turns, 1);
    EXPECT_EQ(circle->sender, sender.get());
    EXPECT_TRUE(circle->performSelector_withObject("turnTwice:", nullptr));
    EXPECT_EQ(circle->turns, 3);
}

TEST(ClassTables, AnActionOfTheSuperclassReachesTheOverride) {
    const auto circle = make<Circle>();
    EXPECT_TRUE(circle->performSelector_withObject("grow:", nullptr));
    EXPECT_EQ(circle->size, 100);
}

TEST(ClassTables, AnUnknownSelectorAnswersFalse) {
    const auto shape = make<Shape>();
    for (const auto* selector : {"turnTwice:", "turn", "", "title"}) {
        EXPECT_FALSE(shape->respondsToSelector(selector)) << selector;
        EXPECT_FALSE(shape->performSelector_withObject(selector, nullptr)) << selector;
    }
    EXPECT_EQ(shape->turns, 0);
}

TEST(ClassTables, TheReceiverLivesUntilItsActionIsOver) {
    auto shape = make<Shape>();
    const std::weak_ptr<Shape> weak = shape;
    shape->holder = &shape;
    EXPECT_TRUE(shape.get()->performSelector_withObject("drop:", nullptr));
    EXPECT_FALSE(shape);
    EXPECT_TRUE(weak.expired());
}

TEST(ClassTables, AnOutletTakesObjectsOfItsKindOnly) {
    const auto shape = make<Shape>();
    const auto circle = make<Circle>();
    EXPECT_TRUE(connect(*shape, "next", circle));
    EXPECT_EQ(shape->next, circle);
    EXPECT_FALSE(connect(*shape, "next", make<NSObject>()));
    EXPECT_EQ(shape->next, circle);
    EXPECT_TRUE(connect(*shape, "next", nullptr));
    EXPECT_FALSE(shape->next);
}

TEST(ClassTables, AnOutletMayBeAProtocolThatTheObjectAdopts) {
    const auto shape = make<Shape>();
    const auto circle = make<Circle>();
    EXPECT_TRUE(connect(*shape, "listener", circle));
    EXPECT_EQ(shape->listener.lock(), circle);
    EXPECT_FALSE(connect(*shape, "listener", shape));
    EXPECT_EQ(shape->listener.lock(), circle);
}

TEST(ClassTables, AnOutletSaysWhatItTakesWithoutTakingIt) {
    const auto shape = make<Shape>();
    const auto circle = make<Circle>();
    const Outlet& next = *shape->class_().findOutlet("next");
    const Outlet& listener = *shape->class_().findOutlet("listener");
    EXPECT_TRUE(next.accepts(circle));
    EXPECT_FALSE(next.accepts(make<NSObject>()));
    EXPECT_TRUE(next.accepts(nullptr));
    EXPECT_TRUE(listener.accepts(circle));
    EXPECT_FALSE(listener.accepts(shape));
    EXPECT_FALSE(shape->next);
    EXPECT_TRUE(shape->listener.expired());
}

TEST(ClassTables, AttributesOfEachKindAreAssigned) {
    const auto shape = make<Shape>();
    EXPECT_TRUE(assign(*shape, "title", std::string("Round")));
    EXPECT_EQ(shape->title, "Round");
    EXPECT_TRUE(assign(*shape, "subtitle", std::string("")));
    EXPECT_EQ(shape->subtitle, "");
    EXPECT_TRUE(assign(*shape, "size", -0.5));
    EXPECT_EQ(shape->size, -0.5);
    EXPECT_TRUE(assign(*shape, "scale", 0.25));
    EXPECT_EQ(shape->scale, 0.25f);
    EXPECT_TRUE(assign(*shape, "hidden", true));
    EXPECT_TRUE(shape->hidden);
    EXPECT_TRUE(assign(*shape, "origin", NSPoint{3, 4}));
    EXPECT_EQ(shape->origin, (NSPoint{3, 4}));
    EXPECT_TRUE(assign(*shape, "paint", Colour{SystemColour::none, 1, 0.5, 0, 1}));
    EXPECT_EQ(shape->paint.colour, (Colour{SystemColour::none, 1, 0.5, 0, 1}));
}

TEST(ClassTables, AnAttributeRefusesValuesOfAnotherKindAndKeepsItsOwn) {
    const RuntimeValue text = std::string("1"), number = 1.0, flag = true, point = NSPoint{1, 1},
                       colour = Colour{SystemColour::none, 1, 1, 1, 1};
    const std::vector<RuntimeValue> values = {text, number, flag, point, colour};
    const std::vector<std::pair<std::string_view, std::size_t>> kinds = {
        {"title", 0}, {"subtitle", 0}, {"size", 1},   {"scale", 1}, {"count", 1},
        {"steps", 1}, {"hidden", 2},   {"origin", 3}, {"paint", 4}};
    for (const auto& [name, kind] : kinds) {
        for (std::size_t given = 0; given < values.size(); ++given) {
            const auto shape = make<Shape>();
            EXPECT_EQ(assign(*shape, name, values[given]), given == kind) << name << " " << given;
            if (given == kind) continue;
            EXPECT_EQ(shape->title, "untitled");
            EXPECT_EQ(shape->size, 0);
            EXPECT_FALSE(shape->hidden);
            EXPECT_EQ(shape->origin, NSZeroPoint);
        }
    }
}

TEST(ClassTables, WholeNumbersAreCutAndSaturate) {
    const auto shape = make<Shape>();
    const auto count = [&](double value) {
        EXPECT_TRUE(assign(*shape, "count", value));
        return shape->count;
    };
    EXPECT_EQ(count(2.9), 2);
    EXPECT_EQ(count(-2.9), -2);
    EXPECT_EQ(count(2147483647.0), 2147483647);
    EXPECT_EQ(count(2147483647.5), 2147483647);
    EXPECT_EQ(count(2147483648.0), 2147483647);
    EXPECT_EQ(count(-1e300), std::numeric_limits<int>::min());
    EXPECT_EQ(count(std::numeric_limits<double>::infinity()), 2147483647);
    EXPECT_EQ(count(std::nan("")), 0);
    for (const auto& [given, kept] : {std::pair{255.9, 255}, {256.0, 255}, {-0.9, 0}, {-1.0, 0}, {7.0, 7}}) {
        EXPECT_TRUE(assign(*shape, "steps", given));
        EXPECT_EQ(shape->steps, kept) << given;
    }
    EXPECT_TRUE(assign(*shape, "total", 9223372036854774784.0));
    EXPECT_EQ(shape->total, 9223372036854774784);
    EXPECT_TRUE(assign(*shape, "total", 9223372036854775808.0));
    EXPECT_EQ(shape->total, std::numeric_limits<std::int64_t>::max());
    EXPECT_TRUE(assign(*shape, "total", -9223372036854775808.0));
    EXPECT_EQ(shape->total, std::numeric_limits<std::int64_t>::min());
}

TEST(ClassTables, KindsFollowTheSuperclasses) {
    const auto circle = make<Circle>();
    EXPECT_TRUE(circle->isKindOfClass(Circle::classTable()));
    EXPECT_TRUE(circle->isKindOfClass(Shape::classTable()));
    EXPECT_TRUE(circle->isKindOfClass(NSObject::classTable()));
    EXPECT_FALSE(circle->isKindOfClass(NoCoder::classTable()));
    EXPECT_FALSE(make<Shape>()->isKindOfClass(Circle::classTable()));
}

TEST(ClassTables, TheTableMakesObjectsByTheInitialiserThatFits) {
    EmptyArchive archive;
    const auto madeBy = [](const std::shared_ptr<NSObject>& object) {
        return std::dynamic_pointer_cast<Shape>(object)->how;
    };
    EXPECT_EQ(madeBy(Circle::classTable().make(nullptr)), "init");
    EXPECT_EQ(madeBy(Circle::classTable().make(&archive)), "initWithCoder");
    const auto object = NoCoder::classTable().make(&archive);
    EXPECT_EQ(std::dynamic_pointer_cast<NoCoder>(object)->how, "init");
}

TEST(ClassTables, EveryListedClassIsFoundByItsNameAndMakesItself) {
    const headless::Platform platform;
    EmptyArchive archive;
    std::set<std::string_view> names;
    for (const ClassTable* table : kitClassTables()) {
        EXPECT_TRUE(names.insert(table->name).second) << table->name;
        EXPECT_EQ(NSClassFromString(table->name), table) << table->name;
        EXPECT_TRUE(table->isSubclassOf(NSObject::classTable())) << table->name;
        if (table->superclass) {
            EXPECT_EQ(NSClassFromString(table->superclass->name), table->superclass);
        }
        ASSERT_TRUE(table->make) << table->name;
        for (NSCoder* coder : {static_cast<NSCoder*>(nullptr), static_cast<NSCoder*>(&archive)}) {
            const auto object = table->make(coder);
            ASSERT_TRUE(object) << table->name;
            EXPECT_EQ(&object->class_(), table) << table->name;
        }
    }
    EXPECT_THAT(names, testing::IsSupersetOf({"NSObject", "NSBundle", "NSView", "NSControl", "NSButton",
                                              "NSTextField", "NSWindow", "NSImage", "BaseSliderView",
                                              "SplitSliderView", "SliderSelectionItem"}));
}

TEST(ClassTables, AnUnknownNameIsNoClass) {
    for (const auto* name : {"", "NSview", "NSViewX", "NSVie", " NSView", "Circle"})
        EXPECT_FALSE(NSClassFromString(name)) << name;
}

TEST(ClassTables, AnApplicationsClassIsKnownOnceItIsRegistered) {
    EXPECT_FALSE(NSClassFromString("NoCoder"));
    for (int i = 0; i < 2; ++i) {
        registerClass(NoCoder::classTable());
        EXPECT_EQ(NSClassFromString("NoCoder"), &NoCoder::classTable());
    }
}

TEST(ClassTables, ANameThatIsTakenIsNotRegistered) {
    const ClassTable view{.name = "NSView", .superclass = &NSObject::classTable()};
    EXPECT_THROW(registerClass(view), std::logic_error);
    EXPECT_EQ(NSClassFromString("NSView"), &NSView::classTable());
}

TEST(ClassTables, AKitClassAnswersToItsSuperclassesNames) {
    const headless::Platform platform;
    const auto slider = make<SplitSliderView>();
    EXPECT_TRUE(slider->isKindOfClass(*NSClassFromString("NSView")));
    EXPECT_FALSE(slider->isKindOfClass(*NSClassFromString("NSWindow")));
}

} // namespace zr
