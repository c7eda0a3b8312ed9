// SPDX-License-Identifier: MIT
#include "Support/RootsPowers.h"
#include "Support/TemporaryFolder.h"

#include <Foundation/Bookmark.h>
#include <Foundation/NSURL.h>
#include <FoundationBackends/Host.h>
#include <HostLibraries/GlobalFun.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace zr {

namespace {

namespace fs = std::filesystem;

struct Resolved {
    std::optional<NSURL> url;
    bool isStale = false;
    std::optional<NSError> error;

    std::string path() const { return url ? url->path() : "none"; }
    long code() const { return error ? error->code : 0; }
};

Resolved resolve(const NSData& data, unsigned long options = NSURLBookmarkResolutionWithSecurityScope) {
    Resolved resolved;
    resolved.isStale = true; // has to be answered
    resolved.error = NSError{"before", 1, ""};
    resolved.url = NSURL::URLByResolvingBookmarkData_options_relativeToURL_bookmarkDataIsStale_error(
        data, options, std::nullopt, &resolved.isStale, &resolved.error);
    return resolved;
}

class Bookmarks : public testing::Test {
protected:
    // Handles are kept only of what is on the disk of the system or of the user's home.
    Bookmarks() { setenv("HOME", folder.path().c_str(), 1); }

    std::string make(const std::string& name) const {
        fs::create_directories(folder.path() / name);
        return at(name);
    }
    std::string at(const std::string& name) const { return (folder.path() / name).string(); }
    static NSData bookmark(const std::string& path) {
        auto data = GlobalFun::BookmarkDataForURL(NSURL::fileURLWithPath(path));
        if (!data) throw std::runtime_error("no bookmark of " + path);
        return *data;
    }
    // As an earlier run of the program made it: nothing is held.
    static NSData earlierBookmark(const std::string& path) {
        return encoded({path, "", ItemHandle::open(path)->identity().value()});
    }

    const test::TemporaryFolder folder;
};

// That this program has open.
std::vector<int> descriptorsOf(const std::string& path) {
    std::vector<int> found;
    for (const auto& entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (fs::read_symlink(entry, gone) == path) found.push_back(std::stoi(entry.path().filename()));
    }
    return found;
}

bool haveOneDisk(const fs::path& a, const fs::path& b) {
    struct stat one {
    }, other{};
    return stat(a.c_str(), &one) == 0 && stat(b.c_str(), &other) == 0 && one.st_dev == other.st_dev;
}

TEST_F(Bookmarks, LeadBackToAFolder) {
    const std::string path = make("a folder/日本 ü");
    const Resolved found = resolve(bookmark(path));
    EXPECT_EQ(found.path(), path);
    EXPECT_EQ(found.url->absoluteString().back(), '/');
    EXPECT_FALSE(found.isStale);
    EXPECT_EQ(found.error, std::nullopt);
}

TEST_F(Bookmarks, LeadBackToAFile) {
    const std::string path = folder.write("file", "text");
    const Resolved found = resolve(bookmark(path));
    EXPECT_EQ(found.path(), path);
    EXPECT_NE(found.url->absoluteString().back(), '/');
}

TEST_F(Bookmarks, LeadToTheRootOfAllFolders) {
    EXPECT_EQ(resolve(bookmark("/")).url->absoluteString(), "file:///");
}

TEST_F(Bookmarks, AreMadeWithoutASlashAtTheEnd) {
    const std::string path = make("folder");
    EXPECT_EQ(bookmark(path + "/"), bookmark(path));
}

TEST_F(Bookmarks, AnswerWithoutPlacesForStaleAndError) {
    const auto data = bookmark(make("folder"));
    EXPECT_TRUE(NSURL::URLByResolvingBookmarkData_options_relativeToURL_bookmarkDataIsStale_error(
        data, 0, std::nullopt, nullptr, nullptr));
    EXPECT_FALSE(NSURL::URLByResolvingBookmarkData_options_relativeToURL_bookmarkDataIsStale_error(
        {}, 0, std::nullopt, nullptr, nullptr));
}

TEST_F(Bookmarks, AreNotMadeOfWhatIsNotThere) {
    std::optional<NSError> error;
    EXPECT_EQ(NSURL::fileURLWithPath(at("nothing")).bookmarkData(&error), std::nullopt);
    EXPECT_EQ(error->code, NSFileReadNoSuchFileError);
    EXPECT_EQ(error->domain, "NSCocoaErrorDomain");
    EXPECT_THAT(error->localizedDescription, testing::HasSubstr(at("nothing")));
    fs::create_symlink("nowhere", folder.path() / "link");
    EXPECT_EQ(NSURL::fileURLWithPath(at("link")).bookmarkData(&error), std::nullopt);
    EXPECT_EQ(NSURL::fileURLWithPath(std::string("/\0", 2)).bookmarkData(&error), std::nullopt);
    const std::string file = folder.write("file", "text");
    EXPECT_EQ(NSURL::fileURLWithPath(file + "/inside").bookmarkData(&error), std::nullopt);
    EXPECT_EQ(error->code, NSFileReadNoSuchFileError);
}

TEST_F(Bookmarks, AreNotMadeOfWhatTheUserMayNotSee) {
    make("closed/folder");
    fs::permissions(at("closed"), fs::perms::none);
    std::optional<NSError> error;
    std::thread([&] {
        test::giveUpRootsPowers();
        EXPECT_EQ(NSURL::fileURLWithPath(at("closed/folder")).bookmarkData(&error), std::nullopt);
    }).join();
    fs::permissions(at("closed"), fs::perms::owner_all);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, NSFileReadNoPermissionError);
}

// Neither handles nor times of birth.
TEST_F(Bookmarks, AreNotMadeOfWhatNobodyCanTellFromOthers) {
    std::optional<NSError> error;
    EXPECT_EQ(NSURL::fileURLWithPath("/proc/self/task").bookmarkData(&error), std::nullopt);
    EXPECT_EQ(error->code, NSFileReadUnknownError);
}

TEST_F(Bookmarks, TellThePathAtWhichTheyWereMade) {
    const std::string path = make("folder");
    const auto data = bookmark(path);
    fs::rename(path, at("moved"));
    const PropertyList::Dictionary wanted = {{"_NSURLPathKey", path}};
    EXPECT_EQ(NSURL::resourceValuesForKeys_fromBookmarkData({NSURLPathKey}, data), wanted);
    EXPECT_EQ(NSURL::resourceValuesForKeys_fromBookmarkData({"other", NSURLPathKey, "more"}, data), wanted);
    EXPECT_EQ(NSURL::resourceValuesForKeys_fromBookmarkData({"other"}, data), PropertyList::Dictionary());
    EXPECT_EQ(NSURL::resourceValuesForKeys_fromBookmarkData({}, data), PropertyList::Dictionary());
    EXPECT_EQ(NSURL::resourceValuesForKeys_fromBookmarkData({NSURLPathKey}, {1, 2, 3}), std::nullopt);
}

TEST_F(Bookmarks, OfAMovedFolderAreStaleAndLeadToItsPlace) {
    const std::string path = make("folder");
    const auto data = bookmark(path);
    fs::rename(path, at("renamed"));
    Resolved found = resolve(data);
    EXPECT_EQ(found.path(), at("renamed"));
    EXPECT_TRUE(found.isStale);
    EXPECT_EQ(found.error, std::nullopt);

    make("deep/er");
    fs::rename(at("renamed"), at("deep/er/folder"));
    fs::rename(at("deep"), at("deeper"));
    EXPECT_EQ(resolve(data).path(), at("deeper/er/folder"));

    fs::rename(at("deeper/er/folder"), path);
    EXPECT_FALSE(resolve(data).isStale);
}

TEST_F(Bookmarks, FollowAFolderWhosePlaceAnotherTook) {
    const std::string path = make("folder");
    const auto data = bookmark(path);
    fs::rename(path, at("moved"));
    make("folder");
    EXPECT_EQ(resolve(data).path(), at("moved"));
    EXPECT_TRUE(resolve(data).isStale);
}

TEST_F(Bookmarks, OfARemovedFolderLeadNowhere) {
    const std::string path = make("folder");
    const auto data = bookmark(path);
    fs::remove(path);
    const Resolved found = resolve(data);
    EXPECT_EQ(found.path(), "none");
    EXPECT_FALSE(found.isStale);
    EXPECT_EQ(found.code(), NSFileReadNoSuchFileError);
}

// Whose number is another one as long as this program holds the first.
TEST_F(Bookmarks, DoNotLeadToAnotherOfTheSameName) {
    const std::string path = make("folder");
    const auto data = bookmark(path);
    fs::remove(path);
    make("folder");
    const Resolved found = resolve(data);
    EXPECT_EQ(found.path(), "none");
    EXPECT_FALSE(found.isStale);
    EXPECT_EQ(found.code(), NSFileReadUnknownError);
}

TEST_F(Bookmarks, FollowLinksAsLongAsTheyLeadToTheSame) {
    make("one");
    make("two");
    fs::create_directory_symlink("one", folder.path() / "link");
    const auto data = bookmark(at("link"));
    EXPECT_EQ(resolve(data).path(), at("link"));
    EXPECT_FALSE(resolve(data).isStale);
    fs::remove(at("link"));
    fs::create_directory_symlink("two", folder.path() / "link");
    EXPECT_EQ(resolve(data).path(), at("one"));
    EXPECT_TRUE(resolve(data).isStale);
    fs::remove(at("one"));
    EXPECT_EQ(resolve(data).path(), "none");
}

TEST_F(Bookmarks, OfALinkThatLeadsNowhereFail) {
    make("one");
    fs::create_directory_symlink("one", folder.path() / "link");
    const auto data = bookmark(at("link"));
    fs::remove(at("one"));
    EXPECT_EQ(resolve(data).code(), NSFileReadNoSuchFileError);
}

TEST_F(Bookmarks, FailWhenAnyByteWasChanged) {
    const auto whole = bookmark(make("folder"));
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const int bits : {0x01, 0x80, 0xFF}) {
            auto changed = whole;
            changed[i] = static_cast<std::uint8_t>(changed[i] ^ bits);
            ASSERT_EQ(resolve(changed).code(), NSFileReadCorruptFileError) << i;
            ASSERT_EQ(NSURL::resourceValuesForKeys_fromBookmarkData({NSURLPathKey}, changed), std::nullopt);
        }
    }
}

TEST_F(Bookmarks, FailWhenTheyAreTooShortOrTooLong) {
    auto data = bookmark(make("folder"));
    for (std::size_t length = 0; length < data.size(); ++length)
        ASSERT_EQ(resolve({data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length)}).code(),
                  NSFileReadCorruptFileError);
    data.push_back(0);
    EXPECT_EQ(resolve(data).code(), NSFileReadCorruptFileError);
}

NSData bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

// With the sum over it.
NSData summed(std::string bytes) {
    std::uint64_t sum = 0xCBF29CE484222325;
    for (const char byte : bytes) sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    for (int i = 0; i < 8; ++i) bytes += static_cast<char>(sum >> (8 * i) & 0xFF);
    return bytesOf(bytes);
}

// What was stored by earlier versions has to be read by all later ones.
TEST_F(Bookmarks, AreLaidOutAsTheyEverWere) {
    const std::string bytes("ZRUIBKM\1\2\0\0\0/a\1\0\0\0b\1\0\0\0c\x7D\x32\xBA\x77\xF2\x9D\x89\x8F", 32);
    EXPECT_EQ(encoded({"/a", "b", "c"}), bytesOf(bytes));
    EXPECT_EQ(decoded(bytesOf(bytes)), (Bookmark{"/a", "b", "c"}));
}

TEST_F(Bookmarks, FailWhenTheyAreLaidOutOtherwise) {
    const std::string beginning = "ZRUIBKM\1", path("\2\0\0\0/a", 6), none(4, '\0'), number("\1\0\0\0", 4);
    EXPECT_EQ(decoded(summed(beginning + path + none + none)), (Bookmark{"/a", "", ""}));
    EXPECT_EQ(decoded(summed("ZRUIBKM\2" + path + none + none)), std::nullopt);
    const std::vector<std::string> rests = {"",
                                            std::string(3, '\0'),
                                            number,
                                            path,
                                            path + none,
                                            path + none + "\1",
                                            path + none + number,
                                            path + none + "\xFF\xFF\xFF\xFF",
                                            path + none + none + "x",
                                            std::string("\x7F\0\0\0/a", 6) + none + none};
    for (const auto& rest : rests)
        EXPECT_EQ(decoded(summed(beginning + rest)), std::nullopt) << testing::PrintToString(rest);
    EXPECT_EQ(decoded(encoded({std::string("/a\0b", 4), "", "x"})), std::nullopt);
}

// Made by somebody who knows how.
TEST_F(Bookmarks, FailWhenADocumentLeadsOutOfItsFolder) {
    make("doc/a1b2");
    make("secret");
    for (const std::string& document : std::initializer_list<std::string>{
             "../secret", "a1b2/../../secret", "/secret", "..", "a1b2/..", std::string("a1b2\0", 5)})
        EXPECT_EQ(decoded(encoded({at("doc/a1b2"), document, ""})), std::nullopt) << document;
    EXPECT_NE(decoded(encoded({at("doc/a1b2"), "a1b2/..folder/x..", ""})), std::nullopt);
    EXPECT_EQ(decoded(encoded({"relative", "", "x"})), std::nullopt);
}

TEST_F(Bookmarks, FailOfRandomBytes) {
    std::mt19937 random(1);
    const auto whole = bookmark(make("folder"));
    for (int time = 0; time < 2000; ++time) {
        NSData bytes(random() % 200);
        for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
        if (time % 2) std::copy_n(whole.begin(), std::min<std::size_t>(8, bytes.size()), bytes.begin());
        ASSERT_EQ(resolve(bytes).code(), NSFileReadCorruptFileError);
    }
}

TEST_F(Bookmarks, GiveScopeOnlyWhereItIsAskedFor) {
    const auto data = bookmark(make("folder"));
    EXPECT_TRUE(resolve(data).url->startAccessingSecurityScopedResource());
    EXPECT_FALSE(resolve(data, 0).url->startAccessingSecurityScopedResource());
    EXPECT_FALSE(NSURL::fileURLWithPath(at("folder")).startAccessingSecurityScopedResource());
    EXPECT_EQ(*resolve(data).url, NSURL::fileURLWithPath(at("folder")));
}

TEST_F(Bookmarks, OfAnEarlierRunAreFollowedOnceAccessHasStarted) {
    const auto data = earlierBookmark(make("folder"));
    const auto url = resolve(data).url;
    fs::rename(at("folder"), at("moved"));
    EXPECT_EQ(resolve(data).path(), "none");
    EXPECT_TRUE(url->startAccessingSecurityScopedResource());
    EXPECT_EQ(resolve(data).path(), at("moved"));
}

TEST_F(Bookmarks, HoldAnItemWhateverBecomesOfItsName) {
    const auto item = ItemHandle::open(make("folder"));
    EXPECT_TRUE(item->isFolder());
    EXPECT_EQ(item->path(), at("folder"));
    fs::rename(at("folder"), at("moved"));
    EXPECT_EQ(item->path(), at("moved"));
    fs::remove(at("moved"));
    EXPECT_EQ(item->path(), std::nullopt);
    EXPECT_FALSE(ItemHandle::open(folder.write("file", "text"))->isFolder());
    EXPECT_EQ(ItemHandle::open(at("nothing")), nullptr);
}

std::size_t openFiles() {
    const fs::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

TEST_F(Bookmarks, HoldNothingForTheProgramsThatThisOneStarts) {
    bookmark(make("folder"));
    const auto held = descriptorsOf(at("folder"));
    ASSERT_EQ(held.size(), 1u);
    EXPECT_EQ(fcntl(held[0], F_GETFD), FD_CLOEXEC);
}

// In memory, and of its own.
class AnotherDisk : public Bookmarks {
protected:
    void SetUp() override {
        if (haveOneDisk(disk.path(), "/") || haveOneDisk(disk.path(), folder.path()))
            GTEST_SKIP() << "/dev/shm is no file system of its own";
        if (!ItemHandle::open(disk.path())->identity())
            GTEST_SKIP() << "the file system at /dev/shm has no identities";
    }
    const test::TemporaryFolder disk{"/dev/shm"};
};

TEST_F(AnotherDisk, MayBeUnmounted) {
    const auto data = bookmark(disk.path());
    EXPECT_THAT(descriptorsOf(disk.path()), testing::IsEmpty());
    EXPECT_TRUE(resolve(data).url->startAccessingSecurityScopedResource());
    EXPECT_THAT(descriptorsOf(disk.path()), testing::IsEmpty());
}

// In a process of its own, in which nobody has asked before which disks those are.
TEST_F(AnotherDisk, StaysWhereTheUsersHomeIsOnIt) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            setenv("HOME", disk.path().c_str(), 1);
            bookmark(disk.path());
            const auto held = descriptorsOf(disk.path());
            fs::remove_all(disk.path());
            fs::remove_all(folder.path());
            std::exit(held.size() == 1 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST_F(Bookmarks, HoldNotMoreThanAQuarterOfTheFilesThatMayBeOpen) {
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    bookmark("/"); // what is opened once
    const std::size_t before = openFiles();
    const std::size_t most = std::min<std::size_t>(limit.rlim_cur / 4, 4096);
    std::vector<NSData> all;
    for (std::size_t i = 0; i < most + 50; ++i) all.push_back(bookmark(make(std::to_string(i))));
    EXPECT_LE(openFiles(), before + most);
    bookmark(at(std::to_string(most + 49))); // which is held already: nothing makes room for it
    fs::rename(at("50"), at("oldest"));
    EXPECT_EQ(resolve(all[50]).path(), at("oldest"));
    fs::rename(at(std::to_string(most + 49)), at("last"));
    EXPECT_EQ(resolve(all.back()).path(), at("last"));
    fs::rename(at("0"), at("first")); // whose handle has gone
    EXPECT_EQ(resolve(all.front()).code(), NSFileReadNoSuchFileError);
}

// Documents of a sandbox

class StandInPortal : public backend::Portal {
public:
    explicit StandInPortal(std::optional<std::string> folder) : folder_(std::move(folder)) {}
    std::optional<std::string> documentsFolder() override { return folder_; }

private:
    std::optional<std::string> folder_;
};

class Documents : public Bookmarks {
protected:
    ~Documents() override { backend::uninstall(); }
    void sandbox(std::optional<std::string> documents) {
        backend::Host host;
        host.userDefaults = "";
        host.portal = std::make_shared<StandInPortal>(std::move(documents));
        backend::install(std::move(host));
    }
};

TEST_F(Documents, AreKnownByTheirId) {
    sandbox(at("doc"));
    const std::string path = make("doc/a1b2/folder/inner");
    const auto data = bookmark(path);
    Resolved found = resolve(data);
    EXPECT_EQ(found.path(), path);
    EXPECT_FALSE(found.isStale);
    EXPECT_TRUE(found.url->startAccessingSecurityScopedResource());
    found = {};
    EXPECT_THAT(descriptorsOf(path), testing::IsEmpty()) << "the portal knows where it is";

    // The portal makes its folder anew at every start: nothing about it is the same but the ids.
    fs::remove_all(at("doc"));
    EXPECT_EQ(resolve(data).code(), NSFileReadNoSuchFileError);
    make("doc/a1b2/folder/inner");
    EXPECT_FALSE(resolve(data).isStale);

    fs::rename(at("doc"), at("other"));
    sandbox(at("other"));
    found = resolve(data);
    EXPECT_EQ(found.path(), at("other/a1b2/folder/inner"));
    EXPECT_TRUE(found.isStale);
    EXPECT_EQ(NSURL::resourceValuesForKeys_fromBookmarkData({NSURLPathKey}, data)->at(NSURLPathKey), path);
}

TEST_F(Documents, AreOutOfReachWithoutThePortal) {
    sandbox(at("doc"));
    make("doc/a1b2/folder");
    const auto data = bookmark(at("doc/a1b2/folder"));
    sandbox(std::nullopt);
    EXPECT_EQ(resolve(data).code(), NSFileReadUnknownError);
    backend::uninstall();
    EXPECT_EQ(resolve(data).code(), NSFileReadUnknownError);
}

TEST_F(Documents, AreOnlyThoseInTheirFolder) {
    sandbox(at("doc"));
    const auto data = bookmark(make("documents/a1b2"));
    fs::rename(at("documents"), at("moved"));
    EXPECT_EQ(resolve(data).path(), at("moved/a1b2")); // known by itself
}

} // namespace

} // namespace zr
