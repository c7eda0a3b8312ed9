// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <Foundation/DefaultsFile.h>
#include <Foundation/NSUserDefaults.h>
#include <FoundationBackends/Host.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <sys/stat.h>
#include <unistd.h>

namespace zr {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

// Values in memory alone.
class DefaultsInMemory : public testing::Test {
protected:
    const headless::Platform platform;
    const std::shared_ptr<NSUserDefaults> defaults = NSUserDefaults::standardUserDefaults();
};

std::string bytesAt(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class DefaultsOnDisk : public testing::Test {
protected:
    // A store of its own over the same file, as another process has it.
    std::shared_ptr<NSUserDefaults> open() const {
        return make<NSUserDefaults>(&NSUserDefaults::initWithFile, file);
    }
    // What is in the file.
    SharedValues stored() const {
        const auto bytes = bytesAt(file);
        auto read = readBinaryPropertyList({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
        EXPECT_EQ(read.fault, "");
        return read.values;
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(file.parent_path()))
            found.push_back(entry.path().filename().string());
        return found;
    }
    static std::string logOf(const std::function<void()>& work) {
        testing::internal::CaptureStderr();
        work();
        return testing::internal::GetCapturedStderr();
    }
    headless::Options options() const {
        headless::Options result;
        result.userDefaults = file;
        return result;
    }

    const test::TemporaryFolder folder;
    fs::path file = folder.path() / "config/app.plist";
};

} // namespace

// Values

TEST_F(DefaultsInMemory, NothingIsThereAtFirst) {
    EXPECT_EQ(defaults->objectForKey("k"), nullptr);
    EXPECT_EQ(defaults->stringForKey("k"), std::nullopt);
    EXPECT_EQ(defaults->arrayForKey("k"), nullptr);
    EXPECT_EQ(defaults->dictionaryForKey("k"), nullptr);
    EXPECT_EQ(defaults->dataForKey("k"), nullptr);
    EXPECT_EQ(defaults->integerForKey("k"), 0);
    EXPECT_FALSE(defaults->boolForKey("k"));
    EXPECT_TRUE(defaults->synchronize());
}

TEST_F(DefaultsInMemory, AValueCanBeReadAtOnce) {
    defaults->setObject_forKey(PropertyList::Array{1, "two", NSData{3}}, "a key with blanks.and.dots");
    const auto value = defaults->objectForKey("a key with blanks.and.dots");
    ASSERT_TRUE(value);
    EXPECT_EQ(*value, PropertyList(PropertyList::Array{1, "two", NSData{3}}));
    defaults->setObject_forKey("of the empty key", "");
    EXPECT_EQ(defaults->stringForKey(""), "of the empty key");
}

TEST_F(DefaultsInMemory, ValuesAreCopiedInAndDoNotChangeOnceTheyAreOut) {
    PropertyList::Array array = {1};
    defaults->setObject_forKey(array, "k");
    array.emplace_back(2);
    const auto before = defaults->arrayForKey("k");
    ASSERT_TRUE(before);
    EXPECT_EQ(before->size(), 1u);
    defaults->setObject_forKey(array, "k");
    EXPECT_EQ(before->size(), 1u);
    EXPECT_EQ(defaults->arrayForKey("k")->size(), 2u);
    defaults->removeObjectForKey("k");
    EXPECT_EQ(before->size(), 1u);
}

TEST_F(DefaultsInMemory, NoValueRemovesTheKey) {
    defaults->setObject_forKey(1, "k");
    defaults->setObject_forKey(std::nullopt, "k");
    EXPECT_EQ(defaults->objectForKey("k"), nullptr);
    defaults->removeObjectForKey("k");
    EXPECT_EQ(defaults->objectForKey("k"), nullptr);
}

TEST_F(DefaultsInMemory, WhatCannotBeStoredThrowsAndChangesNothing) {
    defaults->setObject_forKey("before", "k");
    EXPECT_THROW(defaults->setObject_forKey("\xFF", "k"), std::invalid_argument);
    EXPECT_THROW(defaults->setObject_forKey(PropertyList::Dictionary{{"\xFF", 1}}, "k"), std::invalid_argument);
    EXPECT_THROW(defaults->setObject_forKey(1, "\xFF"), std::invalid_argument);
    EXPECT_THROW(defaults->setObject_forKey(1, std::string("a\0b", 3)), std::invalid_argument);
    EXPECT_EQ(defaults->stringForKey("k"), "before");
}

TEST_F(DefaultsInMemory, NumbersAreReadAsText) {
    const std::vector<std::pair<PropertyList, std::optional<std::string>>> cases = {
        {"", ""},
        {"5", "5"},
        {5, "5"},
        {-7, "-7"},
        {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"},
        {0.1, "0.1"},
        {5.0, "5"},
        {100000.0, "100000"},
        {71.666666666666671, "71.66666666666667"},
        {1e21, "1e+21"},
        {true, "1"},
        {false, "0"},
        {NSData{1}, std::nullopt},
        {NSDate{}, std::nullopt},
        {PropertyList::Array{"5"}, std::nullopt},
        {PropertyList::Dictionary{}, std::nullopt}};
    for (const auto& [value, text] : cases) {
        defaults->setObject_forKey(value, "k");
        EXPECT_EQ(defaults->stringForKey("k"), text);
    }
}

TEST_F(DefaultsInMemory, NumbersAndTextAreReadAsWholeNumbers) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min(),
                   most = std::numeric_limits<std::int64_t>::max();
    const std::vector<std::pair<PropertyList, std::int64_t>> cases = {{5, 5},
                                                                      {most, most},
                                                                      {3.9, 3},
                                                                      {-3.9, -3},
                                                                      {1e300, most},
                                                                      {-1e300, least},
                                                                      {9223372036854775808.0, most},
                                                                      {-9223372036854775808.0, least},
                                                                      {std::nan(""), 0},
                                                                      {true, 1},
                                                                      {false, 0},
                                                                      {"42", 42},
                                                                      {" -42 apples", -42},
                                                                      {"1e3", 1},
                                                                      {"99999999999999999999", most},
                                                                      {"apples", 0},
                                                                      {"", 0},
                                                                      {NSData{5}, 0},
                                                                      {NSDate{}, 0},
                                                                      {PropertyList::Array{5}, 0},
                                                                      {PropertyList::Dictionary{}, 0}};
    for (const auto& [value, number] : cases) {
        defaults->setObject_forKey(value, "k");
        EXPECT_EQ(defaults->integerForKey("k"), number) << number;
    }
}

TEST_F(DefaultsInMemory, NumbersAndTextAreReadAsTruth) {
    const std::vector<PropertyList> truths = {true, 1,   -1,        0.5, "YES", "yes", "Y", "y", "true", "True",
                                              "t",  "1", "9 lives", "7", "2",   "3",   "4", "5", "6",    "8"};
    const std::vector<PropertyList> lies = {false,
                                            0,
                                            0.0,
                                            "NO",
                                            "no",
                                            "",
                                            "0",
                                            "false",
                                            "x",
                                            " YES",
                                            NSData{1},
                                            NSDate{},
                                            PropertyList::Array{true},
                                            PropertyList::Dictionary{{"k", true}}};
    for (const auto& value : truths) {
        defaults->setObject_forKey(value, "k");
        EXPECT_TRUE(defaults->boolForKey("k")) << defaults->stringForKey("k").value_or("?");
    }
    for (const auto& value : lies) {
        defaults->setObject_forKey(value, "k");
        EXPECT_FALSE(defaults->boolForKey("k")) << defaults->stringForKey("k").value_or("?");
    }
}

TEST_F(DefaultsInMemory, ListsAndDataAreReadAsNothingElse) {
    defaults->setObject_forKey(PropertyList::Array{1}, "array");
    defaults->setObject_forKey(PropertyList::Dictionary{{"k", 1}}, "dictionary");
    defaults->setObject_forKey(NSData{1}, "data");
    EXPECT_EQ(*defaults->arrayForKey("array"), PropertyList::Array{1});
    EXPECT_EQ(defaults->dictionaryForKey("dictionary")->at("k"), PropertyList(1));
    EXPECT_EQ(*defaults->dataForKey("data"), NSData{1});
    EXPECT_EQ(defaults->arrayForKey("dictionary"), nullptr);
    EXPECT_EQ(defaults->dictionaryForKey("data"), nullptr);
    EXPECT_EQ(defaults->dataForKey("array"), nullptr);
}

// Whose they are

TEST(StandardDefaults, BelongToTheInstalledPlatform) {
    std::shared_ptr<NSUserDefaults> first;
    {
        const headless::Platform platform;
        first = NSUserDefaults::standardUserDefaults();
        EXPECT_EQ(NSUserDefaults::standardUserDefaults(), first);
        first->setObject_forKey(1, "k");
    }
    const headless::Platform platform;
    EXPECT_NE(NSUserDefaults::standardUserDefaults(), first);
    EXPECT_EQ(NSUserDefaults::standardUserDefaults()->objectForKey("k"), nullptr);
    EXPECT_EQ(first->integerForKey("k"), 1);
}

TEST(StandardDefaults, WaitForTheQueuesOnlyWhereThereIsAFile) {
    const headless::Platform platform;
    NSUserDefaults::standardUserDefaults()->setObject_forKey(1, "k");
    EXPECT_EQ(platform.waitingForGlobalQueue(), 0u);
}

namespace {

class PlaceOfDefaults : public testing::Test {
protected:
    static constexpr std::array<const char*, 2> kNames = {"XDG_CONFIG_HOME", "HOME"};
    PlaceOfDefaults() {
        for (const char* name : kNames) {
            const char* value = std::getenv(name);
            before_.emplace_back(value ? std::optional<std::string>(value) : std::nullopt);
        }
    }
    ~PlaceOfDefaults() override {
        backend::uninstall();
        for (std::size_t i = 0; i < kNames.size(); ++i) set(kNames[i], before_[i]);
    }
    static void set(const char* name, const std::optional<std::string>& value) {
        if (value)
            setenv(name, value->c_str(), 1);
        else
            unsetenv(name);
    }
    // Whether a value that is set is in that file.
    bool isStoredIn(const fs::path& path) const {
        backend::install({});
        NSUserDefaults::standardUserDefaults()->setObject_forKey("here", "k");
        EXPECT_TRUE(NSUserDefaults::standardUserDefaults()->synchronize());
        return fs::is_regular_file(folder.path() / path);
    }

    const test::TemporaryFolder folder;
    const std::string ownName = fs::read_symlink("/proc/self/exe").filename().string() + ".plist";

private:
    std::vector<std::optional<std::string>> before_;
};

} // namespace

TEST_F(PlaceOfDefaults, IsTheUsersConfigurationFolder) {
    set("XDG_CONFIG_HOME", folder.path() / "own");
    set("HOME", folder.path() / "home");
    EXPECT_TRUE(isStoredIn("own/" + ownName));
    EXPECT_FALSE(fs::exists(folder.path() / "home"));
}

TEST_F(PlaceOfDefaults, IsInTheHomeFolderWhereTheUserHasNamedNone) {
    set("HOME", folder.path() / "home");
    for (const auto& none : {std::optional<std::string>(), std::optional<std::string>(""),
                             std::optional<std::string>("relative")}) {
        fs::remove_all(folder.path() / "home");
        set("XDG_CONFIG_HOME", none);
        EXPECT_TRUE(isStoredIn("home/.config/" + ownName)) << none.value_or("(unset)");
    }
    EXPECT_FALSE(fs::exists("relative"));
}

TEST_F(PlaceOfDefaults, WithoutAHomeIsNowhere) {
    set("XDG_CONFIG_HOME", std::nullopt);
    set("HOME", std::nullopt);
    EXPECT_FALSE(isStoredIn(".config/" + ownName));
}

// Reading and writing

TEST_F(DefaultsOnDisk, NothingIsWrittenWhereNothingWasSet) {
    EXPECT_TRUE(open()->synchronize());
    EXPECT_FALSE(fs::exists(file.parent_path()));
}

TEST_F(DefaultsOnDisk, SynchronizeWritesAndAnotherProcessReads) {
    const auto defaults = open();
    defaults->setObject_forKey(PropertyList::Dictionary{{"nested", PropertyList::Array{1, 1.5, NSData{1}}}},
                               "k");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(defaults->synchronize());
    const auto other = open();
    ASSERT_TRUE(other->objectForKey("k"));
    EXPECT_EQ(*other->objectForKey("k"), *defaults->objectForKey("k"));
}

TEST_F(DefaultsOnDisk, TheFileIsForTheUserAlone) {
    open()->setObject_forKey(1, "k"); // goes, and writes
    struct stat now {};
    ASSERT_EQ(stat(file.c_str(), &now), 0);
    EXPECT_EQ(now.st_mode & 0777, 0600u);
    ASSERT_EQ(stat(file.parent_path().c_str(), &now), 0);
    EXPECT_EQ(now.st_mode & 0777, 0700u);
    EXPECT_THAT(names(), UnorderedElementsAre("app.plist", "app.plist.lock"));
}

TEST_F(DefaultsOnDisk, AFilesPermissionsStay) {
    open()->setObject_forKey(1, "k");
    chmod(file.c_str(), 0640);
    open()->setObject_forKey(2, "k");
    struct stat now {};
    ASSERT_EQ(stat(file.c_str(), &now), 0);
    EXPECT_EQ(now.st_mode & 0777, 0640u);
    EXPECT_EQ(*stored().at("k"), PropertyList(2));
}

TEST_F(DefaultsOnDisk, ALinkStaysAndWhatItLeadsToIsWritten) {
    fs::create_directories(file.parent_path());
    fs::create_symlink(folder.path() / "elsewhere/real.plist", file);
    fs::create_directories(folder.path() / "elsewhere");
    make<NSUserDefaults>(&NSUserDefaults::initWithFile, folder.path() / "elsewhere/real.plist")
        ->setObject_forKey(1, "k");
    open()->setObject_forKey(2, "k");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(*stored().at("k"), PropertyList(2));
}

TEST_F(DefaultsOnDisk, RemovedKeysAreRemovedFromTheFile) {
    const auto defaults = open();
    defaults->setObject_forKey(1, "a");
    defaults->setObject_forKey(2, "b");
    EXPECT_TRUE(defaults->synchronize());
    defaults->removeObjectForKey("a");
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(stored().size(), 1u);
    EXPECT_TRUE(stored().contains("b"));
}

TEST_F(DefaultsOnDisk, EachProcessWritesOnlyWhatItChanged) {
    open()->setObject_forKey("old", "both");
    const auto one = open(), two = open();
    one->setObject_forKey(1, "one");
    two->setObject_forKey(2, "two");
    one->setObject_forKey("new", "both");
    EXPECT_TRUE(one->synchronize());
    EXPECT_TRUE(two->synchronize());
    EXPECT_EQ(two->stringForKey("both"), "new");
    EXPECT_EQ(two->integerForKey("one"), 1);
    EXPECT_EQ(one->objectForKey("two"), nullptr); // until it looks
    EXPECT_TRUE(one->synchronize());
    EXPECT_EQ(one->integerForKey("two"), 2);
}

TEST_F(DefaultsOnDisk, OfOneKeyTheLastWriterWins) {
    const auto one = open(), two = open();
    one->setObject_forKey(PropertyList::Array{1}, "k");
    two->setObject_forKey(PropertyList::Array{2}, "k");
    EXPECT_TRUE(two->synchronize());
    EXPECT_TRUE(one->synchronize());
    EXPECT_EQ(*stored().at("k"), PropertyList(PropertyList::Array{1}));
    two->setObject_forKey(PropertyList::Array{2}, "k"); // as it was here, but not in the file
    EXPECT_TRUE(two->synchronize());
    EXPECT_EQ(*stored().at("k"), PropertyList(PropertyList::Array{2}));
}

TEST_F(DefaultsOnDisk, WhatAnotherProcessRemovedIsGoneUnlessItWasChangedHere) {
    open()->setObject_forKey(PropertyList::Array{1}, "a");
    open()->setObject_forKey(PropertyList::Array{1}, "b");
    const auto one = open(), two = open();
    one->removeObjectForKey("a");
    one->removeObjectForKey("b");
    EXPECT_TRUE(one->synchronize());
    two->setObject_forKey(2, "b");
    EXPECT_TRUE(two->synchronize());
    EXPECT_EQ(two->objectForKey("a"), nullptr);
    EXPECT_EQ(two->integerForKey("b"), 2);
}

TEST_F(DefaultsOnDisk, AFileThatIsDeletedIsWrittenAgainWhole) {
    const auto defaults = open();
    defaults->setObject_forKey(1, "a");
    EXPECT_TRUE(defaults->synchronize());
    fs::remove(file);
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(*stored().at("a"), PropertyList(1));
    fs::remove_all(file.parent_path());
    defaults->setObject_forKey(2, "b");
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(stored().size(), 2u);
}

TEST_F(DefaultsOnDisk, AFileThatIsChangedInPlaceIsReadAgain) {
    const auto defaults = open();
    defaults->setObject_forKey("a", "k");
    EXPECT_TRUE(defaults->synchronize());
    auto bytes = bytesAt(file);
    bytes.replace(bytes.find("Qa"), 2, "Qb");
    const auto before = fs::last_write_time(file);
    std::ofstream(file, std::ios::binary | std::ios::in) << bytes;
    fs::last_write_time(file, before + std::chrono::nanoseconds(1));
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(defaults->stringForKey("k"), "b");
}

// When it is written

TEST_F(DefaultsOnDisk, ValuesReachTheDiskInTheBackground) {
    headless::Platform platform(options());
    const auto defaults = NSUserDefaults::standardUserDefaults();
    defaults->setObject_forKey(1, "a");
    defaults->setObject_forKey(2, "b");
    EXPECT_EQ(platform.waitingForGlobalQueue(), 1u);
    EXPECT_FALSE(fs::exists(file));
    platform.runGlobalQueue();
    EXPECT_EQ(stored().size(), 2u);
    defaults->removeObjectForKey("a");
    platform.runGlobalQueue();
    EXPECT_EQ(stored().size(), 1u);
}

TEST_F(DefaultsOnDisk, AfterSynchronizeTheBackgroundHasNothingToDo) {
    headless::Platform platform(options());
    NSUserDefaults::standardUserDefaults()->setObject_forKey(1, "a");
    EXPECT_TRUE(NSUserDefaults::standardUserDefaults()->synchronize());
    fs::remove(file);
    platform.runGlobalQueue();
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(DefaultsOnDisk, ValuesAreWrittenWhenThePlatformGoes) {
    std::shared_ptr<NSUserDefaults> held; // as by a background thread
    {
        const headless::Platform platform(options());
        held = NSUserDefaults::standardUserDefaults();
        held->setObject_forKey(1, "a");
        EXPECT_FALSE(fs::exists(file));
    }
    EXPECT_EQ(*stored().at("a"), PropertyList(1));
    held->setObject_forKey(2, "a");
    held.reset();
    EXPECT_EQ(*stored().at("a"), PropertyList(2));
}

TEST_F(DefaultsOnDisk, WhatCouldNotBeWrittenIsTriedAgain) {
    headless::Platform platform(options());
    const auto defaults = NSUserDefaults::standardUserDefaults();
    folder.write("config", "not a folder");
    const auto log = logOf([&] {
        defaults->setObject_forKey(1, "a");
        platform.runGlobalQueue();
        EXPECT_FALSE(defaults->synchronize());
        defaults->setObject_forKey(2, "b");
        platform.advance(9);
        platform.runGlobalQueue();
    });
    EXPECT_EQ(std::ranges::count(log, '\n'), 1) << log;
    EXPECT_THAT(log, HasSubstr("The user defaults in " + file.string() + " are not stored: "));
    EXPECT_EQ(defaults->integerForKey("a"), 1);
    fs::remove(file.parent_path());
    EXPECT_EQ(platform.waitingForGlobalQueue(), 0u);
    platform.advance(1);
    EXPECT_EQ(platform.waitingForGlobalQueue(), 1u);
    platform.runGlobalQueue();
    EXPECT_EQ(stored().size(), 2u);
    EXPECT_EQ(platform.waitingForGlobalQueue(), 0u);
}

TEST_F(DefaultsOnDisk, EachTroubleIsToldOnce) {
    const auto defaults = open();
    for (int time = 0; time < 2; ++time) {
        folder.write("config", "not a folder");
        const auto log = logOf([&] {
            defaults->setObject_forKey(time, "k");
            EXPECT_FALSE(defaults->synchronize());
            EXPECT_FALSE(defaults->synchronize());
        });
        EXPECT_EQ(std::ranges::count(log, '\n'), 1) << log;
        fs::remove(file.parent_path());
        EXPECT_TRUE(defaults->synchronize());
        fs::remove_all(file.parent_path());
    }
}

TEST_F(DefaultsOnDisk, ADamagedFileThatCannotBeSetAsideIsToldOf) {
    folder.write("config/app.plist", "somebody else's");
    fs::create_directories(file.string() + ".lock"); // which is no file to lock
    const auto log = logOf([&] { open(); });
    EXPECT_THAT(log, HasSubstr("The user defaults in " + file.string() + " are not stored: "));
    EXPECT_THAT(log, HasSubstr(" They are not used either: "));
    EXPECT_EQ(bytesAt(file), "somebody else's");
}

// What must not be lost

TEST_F(DefaultsOnDisk, WhatCouldNotBeWrittenIsNotLostToAnotherProcess) {
    const auto defaults = open();
    logOf([&] {
        defaults->setObject_forKey(1, "own");
        defaults->setObject_forKey(NSData(kLargestPropertyList), "large");
        EXPECT_FALSE(defaults->synchronize());
    });
    open()->setObject_forKey(2, "other's");
    defaults->removeObjectForKey("large");
    EXPECT_TRUE(defaults->synchronize());
    EXPECT_EQ(stored().size(), 2u);
    EXPECT_EQ(defaults->integerForKey("own"), 1);
}

TEST_F(DefaultsOnDisk, ADamagedFileIsSetAside) {
    open()->setObject_forKey(1, "before");
    const auto whole = bytesAt(file);
    const auto damaged = whole.substr(0, whole.size() - 1);
    folder.write("config/app.plist", damaged);
    std::shared_ptr<NSUserDefaults> defaults;
    const auto log = logOf([&] { defaults = open(); });
    EXPECT_THAT(log, HasSubstr("The user defaults in " + file.string() + " are not used: "));
    EXPECT_THAT(log, HasSubstr("The file is now " + file.string() + ".unreadable."));
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(bytesAt(file.string() + ".unreadable"), damaged);
    EXPECT_EQ(defaults->objectForKey("before"), nullptr);
    defaults->setObject_forKey(1, "after");
    EXPECT_EQ(logOf([&] { EXPECT_TRUE(defaults->synchronize()); }), "");
    EXPECT_EQ(stored().size(), 1u);
}

TEST_F(DefaultsOnDisk, NothingThatWasSetAsideIsOverwritten) {
    for (const auto* text : {"first", "", "third"}) {
        folder.write("config/app.plist", text);
        logOf([&] { open(); });
    }
    EXPECT_EQ(bytesAt(file.string() + ".unreadable"), "first");
    EXPECT_TRUE(fs::exists(file.string() + ".unreadable-2"));
    EXPECT_EQ(bytesAt(file.string() + ".unreadable-3"), "third");
}

TEST_F(DefaultsOnDisk, AFileThatIsDamagedMeanwhileIsSetAsideAndWrittenAgainWhole) {
    const auto defaults = open();
    defaults->setObject_forKey(1, "a");
    EXPECT_TRUE(defaults->synchronize());
    folder.write("config/app.plist", "somebody else's");
    EXPECT_THAT(logOf([&] { EXPECT_TRUE(defaults->synchronize()); }), HasSubstr("are not used"));
    EXPECT_EQ(bytesAt(file.string() + ".unreadable"), "somebody else's");
    EXPECT_EQ(*stored().at("a"), PropertyList(1));
}

TEST_F(DefaultsOnDisk, WhatIsNoFileIsLeftAlone) {
    fs::create_directories(file / "inside");
    const auto log = logOf([&] {
        const auto defaults = open();
        defaults->setObject_forKey(1, "a");
        EXPECT_FALSE(defaults->synchronize());
        EXPECT_EQ(defaults->integerForKey("a"), 1);
    });
    EXPECT_THAT(log, HasSubstr("are not stored"));
    EXPECT_TRUE(fs::is_directory(file / "inside"));
    fs::remove_all(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    EXPECT_THAT(logOf([&] { EXPECT_FALSE(open()->synchronize()); }), HasSubstr("are not stored"));
    EXPECT_TRUE(fs::is_fifo(file));
}

TEST_F(DefaultsOnDisk, TooMuchIsNotWrittenAndTheOldFileStays) {
    const auto defaults = open();
    defaults->setObject_forKey(1, "small");
    EXPECT_TRUE(defaults->synchronize());
    const auto log = logOf([&] {
        defaults->setObject_forKey(NSData(kLargestPropertyList), "large");
        EXPECT_FALSE(defaults->synchronize());
    });
    EXPECT_THAT(log, HasSubstr("File too large"));
    EXPECT_EQ(stored().size(), 1u);
    defaults->removeObjectForKey("large");
    EXPECT_TRUE(defaults->synchronize());
}

TEST_F(DefaultsOnDisk, WhatAKilledProcessLeftIsNoHarm) {
    folder.write("config/app.plist.new", "half a fi");
    open()->setObject_forKey(1, "a");
    EXPECT_EQ(*stored().at("a"), PropertyList(1));
    EXPECT_THAT(names(), UnorderedElementsAre("app.plist", "app.plist.lock"));
}

TEST_F(DefaultsOnDisk, AProcessThatKeepsTheLockIsAnErrorAfterAWhile) {
    const DefaultsFile shared(file);
    const DefaultsFile::Lock lock(shared);
    try {
        const DefaultsFile::Lock second(shared, std::chrono::milliseconds(20));
        FAIL() << "two have the lock";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::timed_out);
    }
}

TEST_F(DefaultsOnDisk, AProcessThatHasTheLockIsWaitedFor) {
    const DefaultsFile shared(file);
    auto lock = std::make_unique<DefaultsFile::Lock>(shared);
    std::atomic<bool> isWriting = false, hasWritten = false;
    std::thread writer([&] {
        const auto defaults = open();
        defaults->setObject_forKey(1, "a");
        isWriting = true;
        EXPECT_TRUE(defaults->synchronize());
        hasWritten = true;
    });
    while (!isWriting) std::this_thread::yield();
    EXPECT_FALSE(hasWritten);
    EXPECT_FALSE(fs::exists(file));
    lock.reset();
    writer.join();
    EXPECT_EQ(*stored().at("a"), PropertyList(1));
}

// Threads

TEST_F(DefaultsOnDisk, ManyThreadsMayUseIt) {
    auto threaded = options();
    threaded.workerThread = true;
    constexpr int kThreads = 4, kWrites = 200;
    {
        headless::Platform platform(threaded);
        std::atomic<int> failures = 0;
        std::vector<std::thread> threads;
        threads.reserve(kThreads);
        for (int thread = 0; thread < kThreads; ++thread)
            threads.emplace_back([&, thread] {
                const auto defaults = NSUserDefaults::standardUserDefaults();
                const std::string own = "thread " + std::to_string(thread);
                for (int i = 1; i <= kWrites; ++i) {
                    defaults->setObject_forKey(PropertyList::Array{i, own}, own);
                    defaults->setObject_forKey(i, "shared");
                    const auto value = defaults->arrayForKey(own);
                    if (!value || value->at(0) != PropertyList(i)) ++failures;
                    if (defaults->integerForKey("shared") == 0) ++failures;
                    if (i % 20 == 0 && !defaults->synchronize()) ++failures;
                }
            });
        const auto other = open();
        for (int i = 0; i < 50; ++i) {
            other->setObject_forKey(i, "other");
            if (!other->synchronize()) ++failures;
        }
        for (auto& thread : threads) thread.join();
        platform.runGlobalQueue();
        EXPECT_EQ(failures, 0);
    }
    const auto values = stored();
    EXPECT_EQ(values.size(), kThreads + 2u);
    for (int thread = 0; thread < kThreads; ++thread) {
        const std::string own = "thread " + std::to_string(thread);
        EXPECT_EQ(*values.at(own), PropertyList(PropertyList::Array{kWrites, own}));
    }
    EXPECT_EQ(*values.at("other"), PropertyList(49));
}

} // namespace zr
