// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <Foundation/NSFileManager.h>
#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace zr {

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

std::string longName() { return std::string(255, 'n'); }

// A folder with an item of every kind, which is the working directory.
class Files : public testing::Test {
protected:
    Files() {
        folder.write("file", "text");
        folder.write("folder/inside", "text");
        folder.write("folder with blanks/a%b", "text");
        folder.write("Größe/日本", "text");
        folder.write("~/inside", "text");
        folder.write(".hidden", "");
        folder.write("line\nbreak/inside", "text");
        folder.write("bytes\xFF", "text");
        folder.write(longName(), "text");
        fs::create_symlink("file", folder.path() / "link to file");
        fs::create_symlink("folder", folder.path() / "link to folder");
        fs::create_symlink("nowhere", folder.path() / "link to nowhere");
        fs::create_symlink("circle", folder.path() / "circle");
        mkfifo((folder.path() / "pipe").c_str(), 0600);
        fs::current_path(folder.path());
    }
    ~Files() override { fs::current_path(before_); }

    static std::string here(const std::string& rest) { return fs::current_path().string() + rest; }

    const test::TemporaryFolder folder;

private:
    const fs::path before_ = fs::current_path();
};

struct Place {
    std::string given;
    std::string path;
    std::string text; // without "file://"
};

} // namespace

TEST(Paths, WithoutTheirLastPart) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"", ""},
        {"/", "/"},
        {"//", "/"},
        {"///", "/"},
        {"/tmp", "/"},
        {"/tmp/", "/"},
        {"/tmp//", "/"},
        {"//tmp", "/"},
        {"//tmp//", "/"},
        {"/tmp/scratch.tiff", "/tmp"},
        {"/tmp/lock/", "/tmp"},
        {"/tmp/lock///", "/tmp"},
        {"/tmp//lock", "/tmp"},
        {"/tmp///lock//", "/tmp"},
        {"scratch.tiff", ""},
        {"scratch.tiff/", ""},
        {"scratch.tiff//", ""},
        {"a/b", "a"},
        {"a/b/", "a"},
        {"a//b", "a"},
        {"a/", ""},
        {"a//", ""},
        {"a/b/c", "a/b"},
        {"a/b//c//", "a/b"},
        {"/a/b/c/d/e/f", "/a/b/c/d/e"},
        {"/a//b//", "/a"},
        {"//a", "/"},
        {"///a///b///c///", "/a/b"},
        {"/a/..", "/a"},
        {"/a/../b", "/a/.."},
        {"/a/.", "/a"},
        {"/a/./b", "/a/."},
        {"./a", "."},
        {"../a", ".."},
        {"../../a", "../.."},
        {".", ""},
        {"..", ""},
        {"./", ""},
        {"../", ""},
        {"/.", "/"},
        {"/..", "/"},
        {"/.hidden", "/"},
        {"/.hidden/x", "/.hidden"},
        {".hidden", ""},
        {"~", ""},
        {"~/", ""},
        {"~/a", "~"},
        {"~user/a", "~user"},
        {"~user", ""},
        {"/~/a", "/~"},
        {"//server/share/x", "/server/share"},
        {"//server/share", "/server"},
        {"//server", "/"},
        {"file:///a/b", "file:/a"},
        {"file://host/a", "file:/host"},
        {"http://host/a?b=c/d", "http:/host/a?b=c"},
        {"file:/a", "file:"},
        {"C:\\a\\b", ""},
        {"C:/a/b", "C:/a"},
        {"a\\b/c\\d", "a\\b"},
        {"a:b", ""},
        {"a:b/c", "a:b"},
        {"/a:b/c:d", "/a:b"},
        {" ", ""},
        {"/ ", "/"},
        {"/ /", "/"},
        {" /a", " "},
        {"/a ", "/"},
        {"/a /b", "/a "},
        {" / / ", " / "},
        {"/a b/c d", "/a b"},
        {"/a\n", "/"},
        {"/a\n/b", "/a\n"},
        {"/a/b\n", "/a"},
        {"\n/a", "\n"},
        {"/a\t/b", "/a\t"},
        {"/Größe/日本", "/Größe"},
        {"/Größe/日本/", "/Größe"},
        {"😀/é", "😀"},
        {"é/é", "é"},
        {"/%20/a%2Fb", "/%20"},
        {"/a%2Fb", "/"},
        {"/a?b/c?d", "/a?b"},
        {"/a#b/c", "/a#b"},
        {"/a*b/[c]", "/a*b"},
        {"/a;b/c,d", "/a;b"},
        {"/a\"b/'c'", "/a\"b"},
        {"a.b.c/d.e.f", "a.b.c"},
        {"/a.app/Contents/x", "/a.app/Contents"},
        {"/a/b.", "/a"},
        {"/a/b...", "/a"},
        {".../....", "..."},
        {"-/-a", "-"},
        {"/-", "/"},
        {"/0", "/"},
        {"0/1", "0"},
    };
    ASSERT_GE(cases.size(), 60u);
    for (const auto& [path, rest] : cases) EXPECT_EQ(stringByDeletingLastPathComponent(path), rest) << path;
    EXPECT_EQ(stringByDeletingLastPathComponent("/bytes\xFF/\xFE"), "/bytes\xFF");
    EXPECT_EQ(stringByDeletingLastPathComponent("/a\0b/c"s), "/a\0b"s);
}

// Where there is nothing only the text counts.
TEST(FileURLs, OfAbsolutePaths) {
    const std::vector<Place> cases = {
        {"/", "/", "/"},
        {"//", "/", "//"},
        {"///", "/", "///"},
        {"/none", "/none", "/none"},
        {"/none/", "/none", "/none/"},
        {"/none//", "/none", "/none//"},
        {"//none", "//none", "//none"},
        {"/none//a", "/none//a", "/none//a"},
        {"/none///a//", "/none///a", "/none///a//"},
        {"/none/.", "/none/.", "/none/."},
        {"/none/./a", "/none/./a", "/none/./a"},
        {"/none/..", "/none/..", "/none/.."},
        {"/none/../a", "/none/../a", "/none/../a"},
        {"/none/../a/", "/none/../a", "/none/../a/"},
        {"/none/~", "/none/~", "/none/~"},
        {"/~none", "/~none", "/~none"},
        {"/none/a b", "/none/a b", "/none/a%20b"},
        {"/none/ ", "/none/ ", "/none/%20"},
        {"/none/ /", "/none/ ", "/none/%20/"},
        {"/none/%", "/none/%", "/none/%25"},
        {"/none/%20", "/none/%20", "/none/%2520"},
        {"/none/100%", "/none/100%", "/none/100%25"},
        {"/none/a%2Fb", "/none/a%2Fb", "/none/a%252Fb"},
        {"/none/?", "/none/?", "/none/%3F"},
        {"/none/a?b=c", "/none/a?b=c", "/none/a%3Fb=c"},
        {"/none/#1", "/none/#1", "/none/%231"},
        {"/none/a;b", "/none/a;b", "/none/a%3Bb"},
        {"/none/[1]", "/none/[1]", "/none/%5B1%5D"},
        {"/none/\"a\"", "/none/\"a\"", "/none/%22a%22"},
        {"/none/<a>", "/none/<a>", "/none/%3Ca%3E"},
        {"/none/a\\b", "/none/a\\b", "/none/a%5Cb"},
        {"/none/^`", "/none/^`", "/none/%5E%60"},
        {"/none/{a|b}", "/none/{a|b}", "/none/%7Ba%7Cb%7D"},
        {"/none/-._~", "/none/-._~", "/none/-._~"},
        {"/none/!$&'()*+,=:@", "/none/!$&'()*+,=:@", "/none/!$&'()*+,=:@"},
        {"/none/0123456789", "/none/0123456789", "/none/0123456789"},
        {"/none/azAZ", "/none/azAZ", "/none/azAZ"},
        {"/none/Größe", "/none/Größe", "/none/Gr%C3%B6%C3%9Fe"},
        {"/none/o\u0308", "/none/o\u0308", "/none/o%CC%88"},
        {"/none/日本/", "/none/日本", "/none/%E6%97%A5%E6%9C%AC/"},
        {"/none/😀", "/none/😀", "/none/%F0%9F%98%80"},
        {"/none/\xFF\xFE", "/none/\xFF\xFE", "/none/%FF%FE"},
        {"/none/a\n", "/none/a\n", "/none/a%0A"},
        {"/none/a\tb", "/none/a\tb", "/none/a%09b"},
        {"/none/\x7F\x01", "/none/\x7F\x01", "/none/%7F%01"},
        {"/none/a\0b"s, "/none/a\0b"s, "/none/a%00b"},
        {"/usr\0b"s, "/usr\0b"s, "/usr%00b"},
        {"/none/file:/a", "/none/file:/a", "/none/file:/a"},
        {"/none/C:\\a", "/none/C:\\a", "/none/C:%5Ca"},
        {"/none/.hidden", "/none/.hidden", "/none/.hidden"},
        {"/none/a.b.c", "/none/a.b.c", "/none/a.b.c"},
        {"/none/A", "/none/A", "/none/A"},
    };
    for (const auto& [given, path, text] : cases) {
        const auto url = NSURL::fileURLWithPath(given);
        EXPECT_EQ(url.path(), path) << given;
        EXPECT_EQ(url.absoluteString(), "file://" + text) << given;
    }
}

TEST_F(Files, AURLIsAFoldersWhereThereIsAFolder) {
    // Relative to the working directory.
    const std::vector<Place> cases = {
        {"", "", "/"},
        {".", "/.", "/./"},
        {"./", "/.", "/./"},
        {"..", "/..", "/../"},
        {"file", "/file", "/file"},
        {"file/", "/file", "/file/"},
        {"folder", "/folder", "/folder/"},
        {"folder/", "/folder", "/folder/"},
        {"folder//", "/folder", "/folder//"},
        {"./folder", "/./folder", "/./folder/"},
        {"folder/.", "/folder/.", "/folder/./"},
        {"folder/..", "/folder/..", "/folder/../"},
        {"folder/inside", "/folder/inside", "/folder/inside"},
        {"folder//inside", "/folder//inside", "/folder//inside"},
        {"folder/none", "/folder/none", "/folder/none"},
        {"Folder", "/Folder", "/Folder"},
        {"none", "/none", "/none"},
        {"none/", "/none", "/none/"},
        {"none/../folder", "/none/../folder", "/none/../folder"},
        {"folder with blanks", "/folder with blanks", "/folder%20with%20blanks/"},
        {"folder with blanks/a%b", "/folder with blanks/a%b", "/folder%20with%20blanks/a%25b"},
        {"Größe", "/Größe", "/Gr%C3%B6%C3%9Fe/"},
        {"Größe/日本", "/Größe/日本", "/Gr%C3%B6%C3%9Fe/%E6%97%A5%E6%9C%AC"},
        {"~", "/~", "/~/"},
        {"~/inside", "/~/inside", "/~/inside"},
        {".hidden", "/.hidden", "/.hidden"},
        {"line\nbreak", "/line\nbreak", "/line%0Abreak/"},
        {"link to file", "/link to file", "/link%20to%20file"},
        {"link to folder", "/link to folder", "/link%20to%20folder/"},
        {"link to folder/inside", "/link to folder/inside", "/link%20to%20folder/inside"},
        {"link to nowhere", "/link to nowhere", "/link%20to%20nowhere"},
        {"circle", "/circle", "/circle"},
        {"pipe", "/pipe", "/pipe"},
        {"bytes\xFF", "/bytes\xFF", "/bytes%FF"},
        {"folder\0"s, "/folder\0"s, "/folder%00"},
    };
    for (const auto& [given, path, text] : cases) {
        const auto url = NSURL::fileURLWithPath(given);
        EXPECT_EQ(url.path(), here(path)) << given;
        EXPECT_EQ(url.absoluteString(), "file://" + here(text)) << given;
        EXPECT_EQ(NSURL::fileURLWithPath(here("/") + given), url) << given;
    }
}

TEST_F(Files, URLsAreEqualWhenTheyAreWrittenAlike) {
    const auto url = [](const char* path) { return NSURL::fileURLWithPath(path); };
    EXPECT_EQ(url("folder"), url("folder/"));
    EXPECT_NE(url("none"), url("none/"));
    EXPECT_NE(url("folder"), url("./folder"));
    EXPECT_NE(url("folder"), url("link to folder"));
    EXPECT_NE(url("folder"), url("Folder"));
    const auto before = url("later");
    fs::create_directory("later");
    EXPECT_NE(url("later"), before); // it is what it was when it was made
    EXPECT_EQ(url("later").path(), before.path());
}

TEST_F(Files, AURLOutlivesTheWorkingDirectory) {
    fs::create_directory("gone");
    fs::current_path("gone");
    fs::remove(folder.path() / "gone");
    EXPECT_EQ(NSURL::fileURLWithPath("a").path(), "/dev/null/a") << "nowhere, instead of at the root";
    EXPECT_EQ(NSURL::fileURLWithPath("/usr").absoluteString(), "file:///usr/");
}

TEST_F(Files, WhetherThereIsAnItem) {
    const std::map<std::string, bool> cases = {
        {"", false},
        {"/", true},
        {"//", true},
        {".", true},
        {"..", true},
        {"./.", true},
        {" ", false},
        {"file", true},
        {"File", false},
        {"./file", true},
        {".//file", true},
        {"file/", false},
        {"file/.", false},
        {"file/..", false},
        {"file/none", false},
        {"file ", false},
        {" file", false},
        {"file\n", false},
        {"file\0"s, false},
        {"\0file"s, false},
        {"\0"s, false},
        {"folder", true},
        {"folder/", true},
        {"folder//", true},
        {"folder/.", true},
        {"folder/..", true},
        {"folder/../file", true},
        {"folder/inside", true},
        {"folder//inside", true},
        {"folder/inside/", false},
        {"folder/none", false},
        {"none", false},
        {"none/", false},
        {"none/..", false},
        {"none/../file", false},
        {"folder with blanks", true},
        {"folder with blanks/", true},
        {"folder%20with%20blanks", false},
        {"folder with blanks/a%b", true},
        {"folder with blanks/a%25b", false},
        {"Größe", true},
        {"Größe/日本", true},
        {"Gro\u0308ße", false}, // other bytes
        {"~", true},
        {"~/inside", true},
        {"~root", false},
        {"~/.hidden", false},
        {".hidden", true},
        {"line\nbreak", true},
        {"line\nbreak/inside", true},
        {"line", false},
        {"bytes\xFF", true},
        {"bytes", false},
        {"link to file", true},
        {"link to file/", false},
        {"link to folder", true},
        {"link to folder/", true},
        {"link to folder/inside", true},
        {"link to nowhere", false},
        {"link to nowhere/", false},
        {"circle", false},
        {"circle/", false},
        {"pipe", true},
        {"pipe/", false},
        {longName(), true},
        {longName() + "n", false},
        {std::string(5000, 'a'), false},
        {"file://" + here("/file"), false},
    };
    ASSERT_GE(cases.size(), 60u);
    for (const auto& [path, exists] : cases) {
        EXPECT_EQ(NSFileManager::defaultManager().fileExistsAtPath(path), exists) << path;
        // What exists is the user's own here, and may be written.
        if (path.empty() || path.starts_with('/') || path == "..") continue;
        EXPECT_EQ(NSFileManager::defaultManager().isWritableFileAtPath(path), exists) << path;
        EXPECT_EQ(NSFileManager::defaultManager().fileExistsAtPath(here("/") + path), exists) << path;
    }
}

TEST_F(Files, AnItemIsSeenAsItIsAtThatMoment) {
    auto& manager = NSFileManager::defaultManager();
    EXPECT_FALSE(manager.fileExistsAtPath("later"));
    folder.write("later", "");
    EXPECT_TRUE(manager.fileExistsAtPath("later"));
    fs::remove("later");
    EXPECT_FALSE(manager.fileExistsAtPath("later"));
    EXPECT_FALSE(manager.isWritableFileAtPath("later"));
    EXPECT_EQ(&manager, &NSFileManager::defaultManager());
}

TEST_F(Files, WhatTheFileSystemRefusesIsNotWritable) {
    // Permissions do not bind root, but for the kernel's own settings.
    EXPECT_TRUE(NSFileManager::defaultManager().fileExistsAtPath("/proc/sys/kernel/osrelease"));
    EXPECT_FALSE(NSFileManager::defaultManager().isWritableFileAtPath("/proc/sys/kernel/osrelease"));
    EXPECT_FALSE(NSFileManager::defaultManager().isWritableFileAtPath("none"));
    EXPECT_FALSE(NSFileManager::defaultManager().isWritableFileAtPath(""));
}

} // namespace zr
