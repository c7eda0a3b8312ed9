// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <Foundation/NSUserDefaults.h>
#include <FoundationBackends/InstalledHost.h>
#include <FoundationBackends/Waiting.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zr {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// What happened to the parts, by their kinds.
std::vector<std::string>& diary() {
    static std::vector<std::string> lines;
    return lines;
}

template <char Kind>
struct Noted : backend::Part {
    explicit Noted(backend::InstalledHost& installed) : host(&installed) { note("made"); }
    ~Noted() override { note("gone"); }
    void hostEnds() override {
        note(backend::current().get() == host ? "ends, still installed" : "ends, replaced");
    }
    void note(const std::string& what) { diary().push_back(Kind + (" " + what)); }

    const backend::InstalledHost* const host;
};

class InstalledHosts : public testing::Test {
protected:
    InstalledHosts() { diary().clear(); }
    ~InstalledHosts() override { backend::uninstall(); }
};

} // namespace

TEST_F(InstalledHosts, MakePartsWhenTheyAreAskedForAndKeepThem) {
    backend::install({});
    const auto host = backend::current();
    EXPECT_THAT(diary(), IsEmpty());
    auto& part = host->part<Noted<'a'>>();
    EXPECT_EQ(part.host, host.get());
    EXPECT_EQ(&host->part<Noted<'a'>>(), &part);
    EXPECT_THAT(diary(), ElementsAre("a made"));
}

TEST_F(InstalledHosts, HaveEachTheirOwnParts) {
    backend::install({});
    backend::current()->part<Noted<'a'>>();
    backend::install({});
    EXPECT_EQ(backend::current()->part<Noted<'a'>>().host, backend::current().get());
    EXPECT_THAT(diary(), ElementsAre("a made", "a ends, replaced", "a gone", "a made"));
}

TEST_F(InstalledHosts, TellPartsInTheirOrderAndLoseThemWithTheLastHolder) {
    backend::install({});
    auto held = backend::current();
    held->part<Noted<'b'>>();
    held->part<Noted<'a'>>();
    diary().clear();
    backend::uninstall();
    EXPECT_THAT(diary(), ElementsAre("b ends, replaced", "a ends, replaced"));
    held->part<Noted<'b'>>().note("used");
    diary().clear();
    held.reset();
    EXPECT_THAT(diary(), testing::UnorderedElementsAre("a gone", "b gone"));
}

namespace {

struct Failing : backend::Part {
    explicit Failing(const backend::InstalledHost&) {
        if (++tries == 1) throw std::runtime_error("not yet");
    }
    static inline int tries = 0;
};

// Made of a part of another kind.
struct Outer : backend::Part {
    explicit Outer(backend::InstalledHost& installed) : inner(installed.part<Noted<'i'>>()) {}
    Noted<'i'>& inner;
};

struct Slow : backend::Part {
    explicit Slow(const backend::InstalledHost&) {
        ++made;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    static inline std::atomic<int> made = 0;
};

} // namespace

TEST_F(InstalledHosts, TryAgainToMakeAPartThatFailed) {
    backend::install({});
    const auto host = backend::current();
    Failing::tries = 0;
    EXPECT_THROW(host->part<Failing>(), std::runtime_error);
    EXPECT_NO_THROW(host->end());
    EXPECT_NO_THROW(host->part<Failing>());
    host->part<Failing>();
    EXPECT_EQ(Failing::tries, 2);
}

TEST_F(InstalledHosts, MakePartsOfOtherParts) {
    backend::install({});
    const auto host = backend::current();
    EXPECT_EQ(&host->part<Outer>().inner, &host->part<Noted<'i'>>());
}

TEST_F(InstalledHosts, MakeAPartOnceForAllThreads) {
    backend::install({});
    const auto host = backend::current();
    Slow::made = 0;
    std::vector<Slow*> seen(8, nullptr);
    std::vector<std::thread> threads;
    threads.reserve(seen.size());
    for (auto& part : seen) threads.emplace_back([&] { part = &host->part<Slow>(); });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(Slow::made, 1);
    EXPECT_THAT(seen, testing::Each(&host->part<Slow>()));
}

// The thread sanitizer looks on.
TEST_F(InstalledHosts, MayBeReplacedWhileOtherThreadsUseThem) {
    const test::TemporaryFolder folder;
    std::filesystem::create_directories(folder.path() / "main/fr.lproj");
    backend::Host host;
    host.mainBundle = folder.path() / "main";
    host.preferredLanguages = std::vector<std::string>{"fr"};
    host.userDefaults = std::filesystem::path();
    backend::install(host);
    std::atomic<bool> isOver = false;
    std::atomic<int> rounds = 0, wrong = 0;
    std::vector<std::thread> threads;
    threads.reserve(3);
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&] {
            for (; !isOver; ++rounds) {
                wrong += backend::preferredLocalization() != "fr";
                const auto defaults = NSUserDefaults::standardUserDefaults();
                defaults->setObject_forKey(1, "k");
                wrong += defaults->integerForKey("k") != 1;
            }
        });
    for (int i = 0; i < 100 || rounds < 100; ++i) backend::install(host);
    isOver = true;
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(InstalledHosts, SeeTheEnvironmentAsItWasThen) {
    const test::TemporaryFolder folder;
    const char* const name = "XDG_CONFIG_HOME";
    const char* const value = std::getenv(name);
    const std::string before = value ? value : "";
    setenv(name, (folder.path() / "then").c_str(), 1);
    backend::install({});
    setenv(name, (folder.path() / "later").c_str(), 1);
    NSUserDefaults::standardUserDefaults()->setObject_forKey(1, "k");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "then"));
    backend::uninstall(); // the defaults are written
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "then"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "later"));
    if (value)
        setenv(name, before.c_str(), 1);
    else
        unsetenv(name);
}

TEST_F(InstalledHosts, AreWaitedForUntilTheProgramIsAboutToEnd) {
    const auto heard = std::make_shared<std::vector<bool>>(); // observers stay
    backend::install({});
    backend::observeWaiting([heard](bool mayWait) { heard->push_back(mayWait); });
    EXPECT_THAT(*heard, ElementsAre(true));
    backend::stopWaiting();
    backend::uninstall();
    EXPECT_THAT(*heard, ElementsAre(true, false));
    backend::current();
    EXPECT_THAT(*heard, ElementsAre(true, false));
    backend::install({});
    EXPECT_THAT(*heard, ElementsAre(true, false, true));
}

} // namespace zr
