// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <AppKit/NSView.h>
#include <Foundation/NSBundle.h>
#include <FoundationBackends/Host.h>
#include <ZRUIKit/SplitSliderView.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace zr {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Bundles : public testing::Test {
protected:
    void TearDown() override { backend::uninstall(); }

    // The user's languages, best first.
    void prefer(std::vector<std::string> languages) {
        backend::Host host;
        host.mainBundle = folder.path() / "main";
        host.preferredLanguages = std::move(languages);
        backend::install(std::move(host));
    }

    void addTable(const std::string& file, const std::string& text) const { folder.write(file, text); }
    // A table of one entry, "k".
    void addValue(const std::string& file, const std::string& value) const {
        addTable(file, "k = \"" + value + "\";");
    }
    std::shared_ptr<NSBundle> other() const {
        return make<NSBundle>(&NSBundle::initWithPath, folder.path() / "other");
    }

    static std::string inMain(const std::string& key = "k",
                              const std::optional<std::string>& table = std::nullopt) {
        return NSBundle::mainBundle().localizedStringForKey_value_table(key, "", table);
    }

    const test::TemporaryFolder folder;
};

class HostSlider : public SplitSliderView {
public:
    ZR_CLASS(HostSlider, SplitSliderView)
};
ZR_CLASS_TABLE(HostSlider)

} // namespace

TEST_F(Bundles, TheBestLanguageThatThereIs) {
    addValue("main/en.lproj/Localizable.strings", "english");
    addValue("main/de.lproj/Localizable.strings", "deutsch");
    addValue("main/fr.lproj/Localizable.strings", "français");
    prefer({"it", "fr", "de"});
    EXPECT_EQ(inMain(), "français");
    EXPECT_EQ(NSBundle::mainBundle().preferredLocalization(), "fr");
    EXPECT_THAT(NSBundle::mainBundle().localizations(), ElementsAre("de", "en", "fr"));
}

TEST_F(Bundles, ARegionFallsBackToItsLanguage) {
    addValue("main/de.lproj/Localizable.strings", "deutsch");
    addValue("main/de-AT.lproj/Localizable.strings", "österreichisch");
    addValue("main/en.lproj/Localizable.strings", "english");
    addValue("main/zh-Hans.lproj/Localizable.strings", "简体");
    addValue("main/zh-Hant.lproj/Localizable.strings", "繁體");
    const std::vector<std::pair<std::string, std::string>> cases = {{"de-CH", "deutsch"},
                                                                    {"de-AT", "österreichisch"},
                                                                    {"DE_at", "österreichisch"},
                                                                    {"de-AT-1996", "österreichisch"},
                                                                    {"zh-Hans-CN", "简体"},
                                                                    {"zh-Hant-TW", "繁體"},
                                                                    {"zh", "english"},
                                                                    {"den", "english"},
                                                                    {"d", "english"},
                                                                    {"en-GB", "english"},
                                                                    {"", "english"}};
    for (const auto& [wish, text] : cases) {
        prefer({wish});
        EXPECT_EQ(inMain(), text) << wish;
    }
}

TEST_F(Bundles, AWishForARegionComesBeforeTheNextLanguage) {
    addValue("main/de.lproj/Localizable.strings", "deutsch");
    addValue("main/fr.lproj/Localizable.strings", "français");
    prefer({"de-CH", "fr"});
    EXPECT_EQ(inMain(), "deutsch");
}

TEST_F(Bundles, ALanguageIsNoVariantOfItsRegion) {
    addValue("main/pt-BR.lproj/Localizable.strings", "brasileiro");
    addValue("main/en.lproj/Localizable.strings", "english");
    prefer({"pt"});
    EXPECT_EQ(inMain(), "english");
    prefer({"pt-BR"});
    EXPECT_EQ(inMain(), "brasileiro");
}

TEST_F(Bundles, WithoutAMatchTheDevelopmentLanguageThenBase) {
    addValue("main/Base.lproj/Localizable.strings", "base");
    addValue("main/de.lproj/Localizable.strings", "deutsch");
    prefer({"ja"});
    EXPECT_EQ(inMain(), "base");
    addValue("main/en.lproj/Localizable.strings", "english");
    prefer({"ja"});
    EXPECT_EQ(inMain(), "english");
    prefer({});
    EXPECT_EQ(inMain(), "english");
}

TEST_F(Bundles, ATableThatTheLanguageLacksIsTheDevelopmentLanguages) {
    addValue("main/de.lproj/Localizable.strings", "deutsch");
    addValue("main/en.lproj/Localizable.strings", "english");
    addValue("main/en.lproj/Other.strings", "other");
    addValue("main/Base.lproj/Third.strings", "third");
    prefer({"de"});
    EXPECT_EQ(inMain(), "deutsch");
    EXPECT_EQ(inMain("k", "Other"), "other");
    EXPECT_EQ(inMain("k", "Third"), "third");
}

TEST_F(Bundles, AnUnlocalisedTableComesFirst) {
    addValue("main/Localizable.strings", "for all");
    addValue("main/de.lproj/Localizable.strings", "deutsch");
    prefer({"de"});
    EXPECT_EQ(inMain(), "for all");
}

TEST_F(Bundles, FoldersMayHaveOldNames) {
    addValue("main/German.lproj/Localizable.strings", "deutsch");
    addValue("main/English.lproj/Localizable.strings", "english");
    addValue("main/pt_BR.lproj/Localizable.strings", "brasileiro");
    prefer({"de-CH"});
    EXPECT_EQ(inMain(), "deutsch");
    prefer({"pt-BR"});
    EXPECT_EQ(inMain(), "brasileiro");
    prefer({"ja"});
    EXPECT_EQ(inMain(), "english");
}

TEST_F(Bundles, OtherBundlesSpeakTheLanguageOfTheMainBundle) {
    addValue("main/fr.lproj/Localizable.strings", "français");
    addValue("other/de.lproj/Localizable.strings", "deutsch");
    addValue("other/fr.lproj/Localizable.strings", "autre");
    prefer({"de", "fr"});
    EXPECT_EQ(other()->preferredLocalization(), "fr");
    EXPECT_EQ(other()->localizedStringForKey_value_table("k", "", std::nullopt), "autre");
}

TEST_F(Bundles, OtherBundlesFallBackFromTheMainBundlesLanguage) {
    addValue("main/de-AT.lproj/Localizable.strings", "österreichisch");
    addValue("main/ja.lproj/Localizable.strings", "日本語");
    addValue("other/de.lproj/Localizable.strings", "deutsch");
    addValue("other/en.lproj/Localizable.strings", "english");
    prefer({"de-AT"});
    EXPECT_EQ(other()->localizedStringForKey_value_table("k", "", std::nullopt), "deutsch");
    prefer({"ja", "de"});
    EXPECT_EQ(other()->localizedStringForKey_value_table("k", "", std::nullopt), "english");
}

TEST_F(Bundles, WhereTheMainBundleHasNoLanguagesTheUserDecides) {
    addValue("main/Base.lproj/Localizable.strings", "base");
    addValue("other/de.lproj/Localizable.strings", "deutsch");
    addValue("other/en.lproj/Localizable.strings", "english");
    prefer({"de"});
    EXPECT_EQ(other()->localizedStringForKey_value_table("k", "", std::nullopt), "deutsch");
}

TEST_F(Bundles, AKeyOnlyInAnotherLanguageIsNotFound) {
    addTable("main/de.lproj/Localizable.strings", "a = deutsch;");
    addTable("main/en.lproj/Localizable.strings", "a = english; b = only;");
    prefer({"de"});
    EXPECT_EQ(inMain("a"), "deutsch");
    EXPECT_EQ(inMain("b"), "b");
}

TEST_F(Bundles, AMissingKeyGivesTheValueOrWhereThatIsEmptyTheKey) {
    addValue("main/en.lproj/Localizable.strings", "english");
    prefer({"en"});
    const auto& bundle = NSBundle::mainBundle();
    EXPECT_EQ(bundle.localizedStringForKey_value_table("K", "value", std::nullopt), "value");
    EXPECT_EQ(bundle.localizedStringForKey_value_table("K", "", std::nullopt), "K");
    EXPECT_EQ(bundle.localizedStringForKey_value_table("K", std::nullopt, std::nullopt), "K");
    EXPECT_EQ(bundle.localizedStringForKey_value_table("k ", "", std::nullopt), "k ");
    EXPECT_EQ(bundle.localizedStringForKey_value_table("", "", std::nullopt), "");
    EXPECT_EQ(bundle.localizedStringForKey_value_table("k", "value", "NoTable"), "value");
    EXPECT_EQ(bundle.localizedStringForKey_value_table("k", "", "NoTable"), "k");
}

TEST_F(Bundles, AnEmptyTextInTheTableCounts) {
    addValue("main/en.lproj/Localizable.strings", "");
    prefer({"en"});
    EXPECT_EQ(NSBundle::mainBundle().localizedStringForKey_value_table("k", "value", std::nullopt), "");
}

TEST_F(Bundles, NoKeyGivesTheValue) {
    addTable("main/en.lproj/Localizable.strings", "\"\" = \"of the empty key\";");
    prefer({"en"});
    const auto& bundle = NSBundle::mainBundle();
    EXPECT_EQ(bundle.localizedStringForKey_value_table(std::nullopt, "value", std::nullopt), "value");
    EXPECT_EQ(bundle.localizedStringForKey_value_table(std::nullopt, std::nullopt, std::nullopt), "");
    EXPECT_EQ(bundle.localizedStringForKey_value_table("", "value", std::nullopt), "of the empty key");
}

TEST_F(Bundles, ATableWithoutNameIsLocalizable) {
    addValue("main/en.lproj/Localizable.strings", "default");
    addValue("main/en.lproj/Named.strings", "named");
    prefer({"en"});
    EXPECT_EQ(inMain("k", std::nullopt), "default");
    EXPECT_EQ(inMain("k", ""), "default");
    EXPECT_EQ(inMain("k", "Localizable"), "default");
    EXPECT_EQ(inMain("k", "Named"), "named");
    EXPECT_EQ(inMain("k", "named"), "k");
}

TEST_F(Bundles, ATableIsReadOnce) {
    addValue("main/en.lproj/Localizable.strings", "before");
    prefer({"en"});
    EXPECT_EQ(inMain(), "before");
    EXPECT_EQ(inMain("k", "Late"), "k");
    addValue("main/en.lproj/Localizable.strings", "after");
    addValue("main/en.lproj/Late.strings", "late");
    EXPECT_EQ(inMain(), "before");
    EXPECT_EQ(inMain("k", "Late"), "k");
    prefer({"en"}); // a new host
    EXPECT_EQ(inMain(), "after");
}

TEST_F(Bundles, ASyntaxErrorLosesOnlyThatTable) {
    addTable("main/en.lproj/Localizable.strings", "a = b;\nk = english\n");
    addValue("main/en.lproj/Other.strings", "other");
    prefer({"en"});
    testing::internal::CaptureStderr();
    EXPECT_EQ(inMain("a"), "a");
    EXPECT_EQ(inMain("k"), "k");
    EXPECT_EQ(inMain("k", "Other"), "other");
    const std::string logged = testing::internal::GetCapturedStderr();
    EXPECT_THAT(logged, HasSubstr((folder.path() / "main/en.lproj/Localizable.strings").string() +
                                  " is not used: line 3: a semicolon is missing\n"));
    EXPECT_EQ(std::ranges::count(logged, '\n'), 1) << logged;
}

TEST_F(Bundles, ABundleThatDoesNotExistHasNothing) {
    prefer({"en"});
    EXPECT_THAT(NSBundle::mainBundle().localizations(), IsEmpty());
    EXPECT_EQ(inMain(), "k");
}

TEST_F(Bundles, FilesThatAreNoFoldersOfALanguageAreNoLanguages) {
    addValue("main/de.lproj/Localizable.strings", "deutsch");
    addValue("main/fr/Localizable.strings", "français");
    addValue("main/it.lproj.bak/Localizable.strings", "italiano");
    prefer({"fr", "it"});
    EXPECT_THAT(NSBundle::mainBundle().localizations(), ElementsAre("de"));
}

TEST_F(Bundles, TablesMayBeAskedForFromManyThreads) {
    addValue("main/en.lproj/Localizable.strings", "english");
    addValue("main/en.lproj/Other.strings", "other");
    prefer({"en"});
    std::vector<int> right(8, 0);
    std::vector<std::thread> threads;
    threads.reserve(right.size());
    for (auto& count : right)
        threads.emplace_back([&count] {
            for (int i = 0; i < 50; ++i) count += inMain() == "english" && inMain("k", "Other") == "other";
        });
    for (auto& thread : threads) thread.join();
    EXPECT_THAT(right, testing::Each(50));
}

TEST_F(Bundles, ClassesOfTheKitAreInTheKitsBundleAndOthersInTheMainOne) {
    prefer({"en"});
    auto& kit = NSBundle::bundleForClass(SplitSliderView::classTable());
    EXPECT_NE(&kit, &NSBundle::mainBundle());
    EXPECT_TRUE(std::filesystem::is_regular_file(kit.bundlePath() / "en.lproj/Localized.strings"))
        << kit.bundlePath();
    for (const ClassTable* table : kitClassTables())
        EXPECT_EQ(&NSBundle::bundleForClass(*table), &kit) << table->name;
    EXPECT_EQ(&NSBundle::bundleForClass(HostSlider::classTable()), &NSBundle::mainBundle());
}

TEST_F(Bundles, WithoutAHostTheApplicationsFolderIsBesideItsExecutable) {
    backend::uninstall();
    const auto executable = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(NSBundle::mainBundle().bundlePath(),
              executable.parent_path().parent_path() / "share" / executable.filename());
}

// Languages of the environment

namespace {

class EnvironmentLanguages : public Bundles {
protected:
    static constexpr std::array<const char*, 4> kNames = {"LC_ALL", "LC_MESSAGES", "LANG", "LANGUAGE"};

    EnvironmentLanguages() {
        for (const char* name : kNames) {
            const char* value = std::getenv(name);
            before_.emplace_back(value ? std::optional<std::string>(value) : std::nullopt);
        }
        for (const auto* language : {"en", "de", "fr", "ja", "zh-Hans", "zh-Hant", "pt-BR"})
            addValue("main/" + std::string(language) + ".lproj/Localizable.strings", language);
    }
    ~EnvironmentLanguages() override {
        for (std::size_t i = 0; i < kNames.size(); ++i) set(kNames[i], before_[i]);
    }

    using Variables = std::map<std::string, std::string>;
    std::string languageUnder(const Variables& variables) {
        for (const char* name : kNames)
            set(name, variables.contains(name) ? std::optional(variables.at(name)) : std::nullopt);
        backend::Host host;
        host.mainBundle = folder.path() / "main";
        backend::install(std::move(host));
        return NSBundle::mainBundle().preferredLocalization();
    }

private:
    static void set(const char* name, const std::optional<std::string>& value) {
        if (value)
            setenv(name, value->c_str(), 1);
        else
            unsetenv(name);
    }

    std::vector<std::optional<std::string>> before_;
};

} // namespace

TEST_F(EnvironmentLanguages, ComeFromTheLocale) {
    EXPECT_EQ(languageUnder({{"LANG", "de_DE.UTF-8"}}), "de");
    EXPECT_EQ(languageUnder({{"LANG", "fr"}}), "fr");
    EXPECT_EQ(languageUnder({{"LANG", "de_DE@euro"}}), "de");
    EXPECT_EQ(languageUnder({{"LANG", "pt_BR.UTF-8"}}), "pt-BR");
    EXPECT_EQ(languageUnder({{"LANG", "it_IT.UTF-8"}}), "en");
}

TEST_F(EnvironmentLanguages, TheStrongerVariableCounts) {
    EXPECT_EQ(languageUnder({{"LC_ALL", "de_DE"}, {"LC_MESSAGES", "fr_FR"}, {"LANG", "ja_JP"}}), "de");
    EXPECT_EQ(languageUnder({{"LC_MESSAGES", "fr_FR"}, {"LANG", "ja_JP"}}), "fr");
    EXPECT_EQ(languageUnder({{"LC_ALL", ""}, {"LC_MESSAGES", ""}, {"LANG", "ja_JP"}}), "ja");
    EXPECT_EQ(languageUnder({{"LC_ALL", "C"}, {"LANG", "de_DE"}}), "en");
}

TEST_F(EnvironmentLanguages, AListGoesBeforeTheLocale) {
    EXPECT_EQ(languageUnder({{"LANG", "de_DE"}, {"LANGUAGE", "it:fr:ja"}}), "fr");
    EXPECT_EQ(languageUnder({{"LANG", "de_DE"}, {"LANGUAGE", "it:es"}}), "de");
    EXPECT_EQ(languageUnder({{"LANG", "de_DE"}, {"LANGUAGE", "::fr:"}}), "fr");
    EXPECT_EQ(languageUnder({{"LANG", "de_DE"}, {"LANGUAGE", ""}}), "de");
}

TEST_F(EnvironmentLanguages, InThePlainLocaleTheListDoesNotCount) {
    for (const auto* locale : {"C", "C.UTF-8", "POSIX"})
        EXPECT_EQ(languageUnder({{"LANG", locale}, {"LANGUAGE", "de"}}), "en") << locale;
    EXPECT_EQ(languageUnder({{"LANGUAGE", "de"}}), "en");
    EXPECT_EQ(languageUnder({}), "en");
}

TEST_F(EnvironmentLanguages, ChineseIsToldApartByItsScript) {
    for (const auto* locale : {"zh_CN.UTF-8", "zh_SG", "zh"})
        EXPECT_EQ(languageUnder({{"LANG", locale}}), "zh-Hans") << locale;
    for (const auto* locale : {"zh_TW.UTF-8", "zh_HK", "zh_MO"})
        EXPECT_EQ(languageUnder({{"LANG", locale}}), "zh-Hant") << locale;
}

TEST_F(EnvironmentLanguages, AHostsOwnListCountsInstead) {
    languageUnder({{"LANG", "de_DE"}});
    prefer({"fr"});
    EXPECT_EQ(NSBundle::mainBundle().preferredLocalization(), "fr");
}

} // namespace zr
