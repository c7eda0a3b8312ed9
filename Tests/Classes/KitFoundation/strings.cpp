// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <AppKit/NSImage.h>
#include <Foundation/NSBundle.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace zr {

namespace {

namespace fs = std::filesystem;

// Every text that the kit looks up for itself.
constexpr std::array kKitTexts = {"Cancel",
                                  "Recovering directory permissions, please wait....",
                                  "Tips of the day!",
                                  "Got it",
                                  "Open recently viewed...",
                                  "Get Online Help"};

class KitStrings : public testing::Test {
protected:
    // Makes the folder the application's.
    void install(std::vector<std::string> languages = {"en"}) {
        headless::Options options;
        options.mainBundle = folder.path();
        options.preferredLanguages = std::move(languages);
        platform.emplace(options);
    }

    const test::TemporaryFolder folder;
    std::optional<headless::Platform> platform;
};

using KitImages = KitStrings;

const fs::path kKitLibrary = fs::canonical(ZR_KIT_LIBRARY);

// Asks a process of its own, whose kit was installed into `root`, for texts of the kit.
std::string textsOfInstalledKit(const fs::path& root, const fs::path& application) {
    const auto libraries = root / fs::relative(kKitLibrary.parent_path(), KitBundle().bundlePath() / "../..");
    fs::create_directories(libraries);
    fs::copy_file(kKitLibrary, libraries / "libZRUIKit.so.1");
    const std::string command = "LD_LIBRARY_PATH='" + libraries.string() + "' LD_PRELOAD= '" +
                                std::string(ZR_KIT_TEXTS) + "' '" + application.string() + "'";
    FILE* const output = popen(command.c_str(), "r");
    if (!output) return "not started";
    std::string all;
    std::array<char, 256> buffer{};
    while (std::fgets(buffer.data(), buffer.size(), output)) all += buffer.data();
    EXPECT_EQ(pclose(output), 0) << all;
    return all;
}

} // namespace

TEST_F(KitStrings, ItsTableHasEveryTextOfTheKit) {
    install();
    for (const auto* key : kKitTexts) {
        EXPECT_EQ(KitLocalizedString(key), key);
        // The value tells an entry from a missing one.
        EXPECT_EQ(KitBundle().localizedStringForKey_value_table(key, "missing", "Localized"), key);
    }
}

TEST_F(KitStrings, AMissingKeyIsItsOwnText) {
    install();
    EXPECT_EQ(KitLocalizedString("no such text"), "no such text");
    EXPECT_EQ(KitLocalizedString(""), "");
    EXPECT_EQ(AppLocalizedString("no such text"), "no such text");
}

TEST_F(KitStrings, TheApplicationsTablesAreNeverTheKits) {
    folder.write("en.lproj/Localized.strings", "\"Got it\" = wrong; own = wrong;");
    folder.write("en.lproj/Localizable.strings", "\"Got it\" = wrong; own = wrong;");
    folder.write("Localized.strings", "own = wrong;");
    install();
    EXPECT_EQ(KitLocalizedString("Got it"), "Got it");
    EXPECT_EQ(KitLocalizedString("own"), "own");
}

TEST_F(KitStrings, TheApplicationsTextsAreInItsDefaultTable) {
    folder.write("de.lproj/Localizable.strings", "OK = Gut; Cancel = Weg;");
    folder.write("de.lproj/Localized.strings", "OK = wrong; Exit = wrong;");
    install({"de"});
    EXPECT_EQ(AppLocalizedString("OK"), "Gut");
    EXPECT_EQ(AppLocalizedString("Cancel"), "Weg");
    EXPECT_EQ(AppLocalizedString("Exit"), "Exit");
    EXPECT_EQ(KitLocalizedString("Cancel"), "Abbrechen");
}

TEST_F(KitStrings, TheKitsTextsAreNotTheApplications) {
    install();
    EXPECT_NE(KitBundle().bundlePath(), NSBundle::mainBundle().bundlePath());
    EXPECT_EQ(NSBundle::mainBundle().bundlePath(), folder.path());
    EXPECT_EQ(NSBundle::mainBundle().localizedStringForKey_value_table("Got it", "missing", "Localized"),
              "missing");
}

TEST_F(KitStrings, AnInstalledKitReadsTheTableBesideItsLibraryInTheApplicationsLanguage) {
    const test::TemporaryFolder root;
    root.write("share/ZRUIKit/en.lproj/Localized.strings", "\"Got it\" = \"in English\";");
    root.write("share/ZRUIKit/de.lproj/Localized.strings", "\"Got it\" = \"auf Deutsch\";");
    root.write("share/ZRUIKit/de.lproj/Localizable.strings",
               "\"Got it\" = wrong; \"Tips of the day!\" = wrong;");
    folder.write("de.lproj/Localizable.strings", "\"Got it\" = wrong;");
    install();
    EXPECT_THAT(textsOfInstalledKit(root.path(), folder.path()),
                testing::HasSubstr("[auf Deutsch][Tips of the day!]\n"));
}

TEST_F(KitImages, ComeFromTheKitsBundle) {
    install();
    for (const auto* name : {"SliderTrimLeft", "SliderTrimRight"}) {
        const auto image = KitImage(name);
        ASSERT_TRUE(image) << name;
        EXPECT_GT(image->size().width, 0) << name;
        EXPECT_EQ(KitImage(name), image) << name;
    }
}

TEST_F(KitImages, OfTheApplicationAreNotTheKits) {
    install();
    fs::copy_file(KitBundle().bundlePath() / "SliderTrimLeft.png", folder.path() / "Own.png");
    EXPECT_TRUE(NSBundle::mainBundle().imageForResource("Own"));
    EXPECT_FALSE(KitImage("Own"));
    EXPECT_FALSE(KitImage(""));
    EXPECT_FALSE(NSBundle::mainBundle().imageForResource("SliderTrimLeft"));
}

} // namespace zr
