// SPDX-License-Identifier: MIT
#include "Support/LoggedTexts.h"

#include <HostLibraries/DDLog.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace zr {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kMethod = "-[Pane commitEditing]";

class Recorder : public DDLogger {
public:
    void logMessage(const DDLogMessage& message) override {
        {
            const std::lock_guard guard(lock_);
            records_.push_back(message);
        }
        if (whenLogged) whenLogged(message);
    }
    std::vector<DDLogMessage> records() const {
        const std::lock_guard guard(lock_);
        return records_;
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> all;
        for (const auto& record : records()) all.push_back(record.message);
        return all;
    }

    std::function<void(const DDLogMessage&)> whenLogged;

private:
    mutable std::mutex lock_;
    std::vector<DDLogMessage> records_;
};

class KitLog : public testing::Test {
protected:
    void SetUp() override {
        install(false);
        DDLog::removeAllLoggers(); // with what other tests may have logged
        recorder = addRecorder();
    }
    void TearDown() override { DDLog::removeAllLoggers(); }

    void install(bool workerThread) {
        platform.reset();
        headless::Options options;
        options.workerThread = workerThread;
        platform.emplace(options);
    }
    static std::shared_ptr<Recorder> addRecorder(int level = DDLogLevelAll) {
        auto added = std::make_shared<Recorder>();
        DDLog::addLogger(added, level);
        return added;
    }
    static void log(int flag, const char* format) {
        DDLog::log_level_flag_context_file_function_line_tag_format(false, DDLogLevelAll, flag, 0, "", "", 0,
                                                                    nullptr, format);
    }
    DDLogMessage onlyRecord() const {
        const auto all = recorder->records();
        EXPECT_EQ(all.size(), 1u);
        return all.empty() ? DDLogMessage() : all.front();
    }

    std::optional<headless::Platform> platform;
    std::shared_ptr<Recorder> recorder;
};

} // namespace

TEST_F(KitLog, AnErrorHasEveryArgumentInItsPlace) {
    const auto before = std::chrono::system_clock::now();
    const int line = __LINE__ + 1;
    KitLogError("+[Pane restore:]", "%@ at %d of %02d", "folder", 3, 4);
    const auto after = std::chrono::system_clock::now();
    const auto record = onlyRecord();
    EXPECT_FALSE(record.asynchronous);
    EXPECT_EQ(record.level, 7);
    EXPECT_EQ(record.flag, 1);
    EXPECT_EQ(record.context, 0);
    EXPECT_EQ(record.file, __FILE__);
    EXPECT_EQ(record.fileName, "logging");
    EXPECT_EQ(record.function, "+[Pane restore:]");
    EXPECT_EQ(record.line, line);
    EXPECT_FALSE(record.tag);
    EXPECT_EQ(record.format, "%@ at %d of %02d");
    EXPECT_EQ(record.message, "folder at 3 of 04");
    EXPECT_GE(record.timestamp, before);
    EXPECT_LE(record.timestamp, after);
    EXPECT_EQ(record.threadID, std::this_thread::get_id());
}

TEST_F(KitLog, AnInformationHasEveryArgumentInItsPlace) {
    const int line = __LINE__ + 1;
    KitLogInfo(kMethod, "saved %d of %@", 2, std::optional<std::string>());
    platform->runGlobalQueue();
    const auto record = onlyRecord();
    EXPECT_TRUE(record.asynchronous);
    EXPECT_EQ(record.level, 7);
    EXPECT_EQ(record.flag, 4);
    EXPECT_EQ(record.context, 0);
    EXPECT_EQ(record.file, __FILE__);
    EXPECT_EQ(record.function, kMethod);
    EXPECT_EQ(record.line, line);
    EXPECT_FALSE(record.tag);
    EXPECT_EQ(record.format, "saved %d of %@");
    EXPECT_EQ(record.message, "saved 2 of (null)");
}

TEST_F(KitLog, TheLogTakesItsArgumentsAsTheyAre) {
    const auto tag = make<NSObject>();
    DDLog::log_level_flag_context_file_function_line_tag_format(false, 31, 16, 5, "/a/b.c/File.name.mm", "f()",
                                                                9, tag, "%x", 255);
    const auto record = onlyRecord();
    EXPECT_EQ(record.level, 31);
    EXPECT_EQ(record.flag, 16);
    EXPECT_EQ(record.context, 5);
    EXPECT_EQ(record.file, "/a/b.c/File.name.mm");
    EXPECT_EQ(record.fileName, "File.name");
    EXPECT_EQ(record.line, 9);
    EXPECT_EQ(record.tag, tag);
    EXPECT_EQ(record.message, "ff");
}

TEST_F(KitLog, AnErrorReturnsAfterEveryLoggerHandledIt) {
    for (const bool workerThread : {false, true}) {
        install(workerThread);
        const auto first = addRecorder(), second = addRecorder();
        KitLogError(kMethod, "error");
        EXPECT_THAT(first->texts(), ElementsAre("error"));
        EXPECT_THAT(second->texts(), ElementsAre("error"));
    }
}

TEST_F(KitLog, AnInformationReturnsAtOnceAndIsHandledInTheBackground) {
    std::optional<bool> onMain;
    recorder->whenLogged = [&](const DDLogMessage&) { onMain = NSThread::isMainThread(); };
    KitLogInfo(kMethod, "info");
    EXPECT_THAT(recorder->texts(), IsEmpty());
    EXPECT_EQ(platform->waitingForGlobalQueue(), 1u);
    platform->runMainQueue();
    EXPECT_THAT(recorder->texts(), IsEmpty());
    platform->runGlobalQueue();
    EXPECT_THAT(recorder->texts(), ElementsAre("info"));
    EXPECT_EQ(onMain, false);
}

TEST_F(KitLog, RecordsOfBothKindsKeepTheirOrder) {
    KitLogInfo(kMethod, "one");
    KitLogInfo(kMethod, "two");
    KitLogError(kMethod, "three");
    EXPECT_THAT(recorder->texts(), ElementsAre("one", "two", "three"));
    KitLogInfo(kMethod, "four");
    EXPECT_EQ(recorder->texts().size(), 3u);
    platform->runUntilIdle();
    EXPECT_THAT(recorder->texts(), ElementsAre("one", "two", "three", "four"));
}

TEST_F(KitLog, FlushingHandlesWhatWaits) {
    KitLogInfo(kMethod, "info");
    DDLog::flushLog();
    EXPECT_THAT(recorder->texts(), ElementsAre("info"));
    platform->runUntilIdle();
    EXPECT_EQ(recorder->texts().size(), 1u);
}

TEST_F(KitLog, ALoggerGetsTheFlagsOfItsLevel) {
    const std::vector<std::pair<int, std::vector<std::string>>> cases = {
        {DDLogLevelOff, {}},
        {DDLogLevelError, {"error"}},
        {DDLogLevelWarning, {"error"}},
        {DDLogLevelInfo, {"error", "info"}},
        {DDLogFlagInfo, {"info"}},
        {DDLogLevelAll, {"error", "info", "verbose"}}};
    std::vector<std::shared_ptr<Recorder>> recorders;
    recorders.reserve(cases.size());
    for (const auto& entry : cases) recorders.push_back(addRecorder(entry.first));
    KitLogError(kMethod, "error");
    KitLogInfo(kMethod, "info");
    DDLog::log_level_flag_context_file_function_line_tag_format(false, 0, DDLogFlagVerbose, 0, "", "", 0,
                                                                nullptr, "verbose");
    for (std::size_t i = 0; i < cases.size(); ++i)
        EXPECT_EQ(recorders[i]->texts(), cases[i].second) << cases[i].first;
}

TEST_F(KitLog, WithoutLoggersOnlyErrorsGoAnywhereAndTheyAreLoggedAtOnce) {
    DDLog::removeAllLoggers();
    EXPECT_THAT(test::logged([&] { KitLogError(kMethod, "%@ at %d", "an error", 3); }),
                ElementsAre("an error at 3"));
    EXPECT_THAT(test::logged([&] {
                    KitLogInfo(kMethod, "lost");
                    log(DDLogFlagWarning, "lost");
                    log(DDLogFlagVerbose, "lost");
                    platform->runUntilIdle();
                }),
                IsEmpty());
    EXPECT_THAT(test::logged([&] { log(DDLogFlagError | DDLogFlagVerbose, "100%% wrong"); }),
                ElementsAre("100% wrong"));
    const auto late = addRecorder();
    DDLog::flushLog();
    EXPECT_THAT(late->texts(), IsEmpty());
    EXPECT_THAT(recorder->texts(), IsEmpty());
}

TEST_F(KitLog, AnErrorIsTheLoggersAffairWhereThereIsOneEvenIfItWantsNone) {
    DDLog::removeAllLoggers();
    addRecorder(DDLogLevelOff);
    EXPECT_THAT(test::logged([&] { KitLogError(kMethod, "an error"); }), IsEmpty());
}

TEST_F(KitLog, AnErrorWithoutLoggersIsLoggedFromTheThreadThatHasIt) {
    DDLog::removeAllLoggers();
    EXPECT_THAT(test::logged([&] { std::thread([] { KitLogError(kMethod, "an error"); }).join(); }),
                ElementsAre("an error"));
}

TEST_F(KitLog, AnErrorWhoseLoggersWentBeforeItWasHandledIsLogged) {
    recorder->whenLogged = [](const DDLogMessage& message) {
        if (message.message != "first") return;
        KitLogInfo(kMethod, "information");
        KitLogError(kMethod, "an error");
        DDLog::removeAllLoggers();
    };
    EXPECT_THAT(test::logged([&] { KitLogError(kMethod, "first"); }), ElementsAre("an error"));
    EXPECT_THAT(recorder->texts(), ElementsAre("first"));
}

TEST_F(KitLog, ANullLoggerIsNamedAndNotAdded) {
    EXPECT_THAT(test::logged([&] {
                    DDLog::addLogger(nullptr);
                    KitLogError(kMethod, "an error");
                }),
                ElementsAre("+[DDLog addLogger:withLevel:]: the logger is null"));
    EXPECT_THAT(recorder->texts(), ElementsAre("an error"));
}

TEST_F(KitLog, LoggersThatAreRemovedGetWhatWasLoggedBefore) {
    KitLogInfo(kMethod, "before");
    DDLog::removeAllLoggers();
    EXPECT_THAT(test::logged([&] { KitLogError(kMethod, "after"); }), ElementsAre("after"));
    EXPECT_THAT(recorder->texts(), ElementsAre("before"));
    EXPECT_EQ(recorder.use_count(), 1);
}

TEST_F(KitLog, WhatALoggerLogsComesAfterItsRecordForEveryLogger) {
    const auto second = addRecorder();
    recorder->whenLogged = [](const DDLogMessage& message) {
        if (message.message.size() < 4) KitLogError(kMethod, "%@+", message.message);
    };
    KitLogError(kMethod, "a");
    EXPECT_THAT(recorder->texts(), ElementsAre("a", "a+", "a++", "a+++"));
    EXPECT_THAT(second->texts(), ElementsAre("a", "a+", "a++", "a+++"));
}

TEST_F(KitLog, ALoggerMayLogWhenItGoes) {
    struct LastWords : DDLogger {
        ~LastWords() override { KitLogError(kMethod, "last words"); }
        void logMessage(const DDLogMessage&) override {}
    };
    DDLog::addLogger(std::make_shared<LastWords>());
    EXPECT_THAT(test::logged([&] { DDLog::removeAllLoggers(); }), ElementsAre("last words"));
    const auto late = addRecorder();
    DDLog::flushLog();
    EXPECT_THAT(late->texts(), IsEmpty());
}

TEST_F(KitLog, WithoutAHostInformationWaitsForTheNextError) {
    platform.reset();
    KitLogInfo(kMethod, "info");
    EXPECT_THAT(recorder->texts(), IsEmpty());
    KitLogError(kMethod, "error");
    EXPECT_THAT(recorder->texts(), ElementsAre("info", "error"));
}

TEST_F(KitLog, RecordsOfManyThreadsAreHandledOneAtATimeAndInOrder) {
    install(true);
    constexpr int kThreads = 4, kRecords = 100;
    int handling = 0; // not atomic: handling is one at a time
    std::map<std::thread::id, int> next;
    recorder->whenLogged = [&](const DDLogMessage& message) {
        EXPECT_EQ(++handling, 1);
        EXPECT_EQ(message.message, "record " + std::to_string(next[message.threadID]++));
        --handling;
    };
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([] {
            for (int i = 0; i < kRecords; ++i) {
                if (i % 3 == 0)
                    KitLogError(kMethod, "record %d", i);
                else
                    KitLogInfo(kMethod, "record %d", i);
            }
        });
    for (auto& thread : threads) thread.join();
    platform->runGlobalQueue();
    EXPECT_EQ(recorder->records().size(), static_cast<std::size_t>(kThreads * kRecords));
    EXPECT_EQ(next.size(), static_cast<std::size_t>(kThreads));
    for (const auto& [id, count] : next) EXPECT_EQ(count, kRecords);
}

} // namespace zr
