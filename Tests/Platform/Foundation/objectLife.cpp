// SPDX-License-Identifier: MIT
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSCoder.h>
#include <Foundation/NSObject.h>
#include <ZRUIKit/SplitSliderView.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

namespace zr {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ObjectLife : public testing::Test {
protected:
    void SetUp() override { diary.clear(); }

public:
    static inline std::vector<std::string> diary;
};

void note(const std::string& line) { ObjectLife::diary.push_back(line); }

class Creature : public NSObject {
public:
    ZR_CLASS(Creature, NSObject)

    Creature() { note(retained(this) ? "constructed, shared" : "constructed"); }
    ~Creature() override { note("destroyed creature"); }

    bool init() override {
        note("init as " + kind() + (retained(this).get() == this ? ", shared" : ", not shared"));
        return true;
    }
    bool initWithFrame(const NSRect& frame) {
        width = frame.size.width;
        note("initWithFrame as " + kind());
        return init();
    }
    bool initWithCoder(NSCoder& coder) {
        width = coder.decodeDoubleForKey("width").value_or(-1);
        note("initWithCoder as " + kind());
        return true;
    }
    virtual bool initWithName_width(const std::string& givenName, double givenWidth) {
        name = givenName;
        width = givenWidth;
        return init();
    }
    bool initInVain() {
        weakSelf = std::static_pointer_cast<Creature>(shared_from_this());
        return false;
    }
    bool initWithMistake() { throw std::runtime_error("mistake"); }

    void dealloc() override {
        note("dealloc as " + kind() + " " + std::string(class_().name));
        if (retained(this)) note("still shared");
        if (!weakSelf.expired()) note("still weakly referenced");
        NSObject::dealloc();
    }

    virtual std::string kind() const { return "creature"; }

    std::string name;
    double width = 0;
    std::weak_ptr<Creature> weakSelf;
};
ZR_CLASS_TABLE(Creature)

class Bird : public Creature {
public:
    ZR_CLASS(Bird, Creature)
    ~Bird() override { note("destroyed bird"); }
    std::string kind() const override { return "bird"; }
    bool initWithName_width(const std::string& givenName, double givenWidth) override {
        return Creature::initWithName_width("bird " + givenName, givenWidth);
    }
    void dealloc() override {
        note("bird's dealloc");
        Creature::dealloc();
    }
};
ZR_CLASS_TABLE(Bird)

class Archive : public NSCoder {
public:
    std::optional<NSRect> decodeRectForKey(std::string_view) const override { return std::nullopt; }
    std::optional<double> decodeDoubleForKey(std::string_view key) const override {
        if (key == "width") return 7.5;
        return std::nullopt;
    }
    std::optional<bool> decodeBoolForKey(std::string_view) const override { return std::nullopt; }
};

// Nothing but make() makes objects.
static_assert(std::is_abstract_v<NSObject>);
static_assert(std::is_abstract_v<NSBundle>);
static_assert(std::is_abstract_v<NSView>);
static_assert(std::is_abstract_v<NSWindow>);
static_assert(std::is_abstract_v<SplitSliderView>);
static_assert(std::is_abstract_v<Bird>);
static_assert(!std::is_default_constructible_v<Bird>);
static_assert(!std::is_copy_constructible_v<Bird> && !std::is_copy_assignable_v<Bird>);
static_assert(!std::is_destructible_v<NSObject>);
static_assert(std::is_same_v<decltype(make<Bird>()), std::shared_ptr<Bird>>);

} // namespace

TEST_F(ObjectLife, TheInitialiserRunsAfterTheConstructorsAsTheClassThatIsMade) {
    const auto bird = make<Bird>();
    ASSERT_TRUE(bird);
    EXPECT_THAT(diary, ElementsAre("constructed", "init as bird, shared"));
    EXPECT_EQ(&bird->class_(), &Bird::classTable());
}

TEST_F(ObjectLife, AFrameGoesToInitWithFrame) {
    const auto bird = make<Bird>(NSMakeRect(1, 2, 3, 4));
    ASSERT_TRUE(bird);
    EXPECT_EQ(bird->width, 3);
    EXPECT_THAT(diary, ElementsAre("constructed", "initWithFrame as bird", "init as bird, shared"));
}

TEST_F(ObjectLife, ACoderGoesToInitWithCoder) {
    Archive archive;
    const auto bird = make<Bird>(archive);
    ASSERT_TRUE(bird);
    EXPECT_EQ(bird->width, 7.5);
    EXPECT_THAT(diary, ElementsAre("constructed", "initWithCoder as bird"));
}

TEST_F(ObjectLife, ANamedInitialiserGetsItsArgumentsAndIsVirtual) {
    const auto creature = make<Creature>(&Creature::initWithName_width, "worm", 2);
    ASSERT_TRUE(creature);
    EXPECT_EQ(creature->name, "worm");
    EXPECT_EQ(creature->width, 2);
    const auto bird = make<Bird>(&Creature::initWithName_width, "wren", 3);
    ASSERT_TRUE(bird);
    EXPECT_EQ(bird->name, "bird wren");
}

TEST_F(ObjectLife, AnInitialiserThatAnswersFalseGivesNullAndDestroysTheObject) {
    EXPECT_FALSE(make<Bird>(&Creature::initInVain));
    EXPECT_THAT(diary, ElementsAre("constructed", "bird's dealloc", "dealloc as bird Bird", "destroyed bird",
                                   "destroyed creature"));
}

TEST_F(ObjectLife, AnInitialiserThatThrowsDestroysTheObject) {
    EXPECT_THROW(make<Bird>(&Creature::initWithMistake), std::runtime_error);
    EXPECT_THAT(diary, ElementsAre("constructed", "bird's dealloc", "dealloc as bird Bird", "destroyed bird",
                                   "destroyed creature"));
}

TEST_F(ObjectLife, DeallocRunsAsTheMadeClassBeforeTheDestructorsWithoutReferences) {
    auto bird = make<Bird>();
    bird->weakSelf = bird;
    diary.clear();
    bird.reset();
    EXPECT_THAT(diary,
                ElementsAre("bird's dealloc", "dealloc as bird Bird", "destroyed bird", "destroyed creature"));
}

TEST_F(ObjectLife, DeallocRunsAlsoWhenTheLastReferenceIsOfASuperclass) {
    std::shared_ptr<NSObject> object = make<Bird>();
    diary.clear();
    object.reset();
    EXPECT_THAT(diary,
                ElementsAre("bird's dealloc", "dealloc as bird Bird", "destroyed bird", "destroyed creature"));
}

TEST_F(ObjectLife, ItLivesAsLongAsSomebodyHoldsIt) {
    auto bird = make<Bird>();
    auto held = retained(bird.get());
    static_assert(std::is_same_v<decltype(held), std::shared_ptr<Bird>>);
    EXPECT_EQ(held, bird);
    diary.clear();
    bird.reset();
    EXPECT_THAT(diary, IsEmpty());
    held.reset();
    EXPECT_EQ(diary.size(), 4u);
}

TEST_F(ObjectLife, NothingIsRetainedOfNothing) { EXPECT_FALSE(retained(static_cast<Bird*>(nullptr))); }

TEST_F(ObjectLife, TheRootClassItselfCanBeMade) {
    const auto object = make<NSObject>();
    ASSERT_TRUE(object);
    EXPECT_EQ(object->class_().name, "NSObject");
}

} // namespace zr
