// SPDX-License-Identifier: MIT
#pragma once

#include "Support/TemporaryFolder.h"

#include <Foundation/Dispatch.h>
#include <Foundation/NSUserDefaults.h>
#include <HostLibraries/DDLog.h>
#include <HostLibraries/GlobalFun.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>
#include <ZRUIKitHeadless/Headless.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <stdlib.h>

namespace zr::test {

namespace fs = std::filesystem;

class LogRecorder : public DDLogger {
public:
    void logMessage(const DDLogMessage& message) override {
        const std::lock_guard guard(lock_);
        records_.push_back(message);
    }
    std::vector<DDLogMessage> records() const {
        const std::lock_guard guard(lock_);
        return records_;
    }

private:
    mutable std::mutex lock_;
    std::vector<DDLogMessage> records_;
};

// Notes where the restore is, and does what a test asks for at an entry.
class WatchedPane : public ZRTrustedPathViewCtl {
public:
    ZR_CLASS(WatchedPane, ZRTrustedPathViewCtl)
    void updateRecoveringPath() override {
        if (!NSThread::isMainThread()) {
            reached.push_back(std::to_string(lastRecoverIndex()) + " " +
                              fs::path(lastRecoverPath().value_or("none")).filename().string());
            if (atEntry) atEntry(lastRecoverIndex());
        }
        ZRTrustedPathViewCtl::updateRecoveringPath();
        if (NSThread::isMainThread())
            if (const auto next = std::exchange(onceShown, nullptr)) next();
    }
    void refreshLoadingUI() override {
        ++refreshes;
        ZRTrustedPathViewCtl::refreshLoadingUI();
    }

    std::vector<std::string> reached;
    std::function<void(int)> atEntry;
    std::function<void()> onceShown;
    int refreshes = 0;
};

class TrustedFoldersTest : public testing::Test {
protected:
    void SetUp() override {
        setenv("HOME", folder_.path().c_str(), 1); // its disk is one on which folders are followed
        launch();
    }
    void TearDown() override { DDLog::removeAllLoggers(); }

    // As when the program starts, with nothing stored.
    void launch(headless::Options options = {}) {
        DDLog::removeAllLoggers();
        platform_.reset();
        platform_.emplace(std::move(options));
        log_ = std::make_shared<LogRecorder>();
        DDLog::addLogger(log_, DDLogLevelAll);
    }
    static NSUserDefaults& defaults() { return *NSUserDefaults::standardUserDefaults(); }

    std::string at(const std::string& name) const { return (folder_.path() / name).string(); }
    std::string make(const std::string& name) const {
        fs::create_directories(at(name));
        return at(name);
    }
    NSURL url(const std::string& name) const { return NSURL::fileURLWithPath(at(name)); }
    static NSData bookmark(const std::string& path) {
        auto data = GlobalFun::BookmarkDataForURL(NSURL::fileURLWithPath(path));
        if (!data) throw std::runtime_error("no bookmark of " + path);
        return *data;
    }
    // Folders of those names, made and stored.
    void storeFolders(const std::vector<std::string>& names) const {
        PropertyList::Array bookmarks;
        for (const auto& name : names) bookmarks.emplace_back(bookmark(make(name)));
        store(bookmarks);
    }
    static void store(PropertyList::Array bookmarks) {
        defaults().setObject_forKey(std::move(bookmarks), "BookmarksKey");
    }
    static PropertyList::Array stored() {
        const auto array = defaults().arrayForKey("BookmarksKey");
        return array ? *array : PropertyList::Array();
    }
    // What is stored, by the names of the folders.
    static std::vector<std::string> storedNames() {
        std::vector<std::string> names;
        for (const auto& entry : stored()) {
            const auto* data = entry.get<NSData>();
            const auto values = data ? NSURL::resourceValuesForKeys_fromBookmarkData({NSURLPathKey}, *data)
                                     : std::optional<PropertyList::Dictionary>();
            names.push_back(values ? nameOf(*values->at(NSURLPathKey).get<std::string>()) : "no bookmark");
        }
        return names;
    }
    static std::string nameOf(const std::string& path) { return fs::path(path).filename().string(); }
    static std::vector<std::string> names(const std::vector<NSURL>& urls) {
        std::vector<std::string> all;
        all.reserve(urls.size());
        for (const auto& each : urls) all.push_back(nameOf(each.path()));
        return all;
    }
    // What was logged of errors, and how the methods call themselves.
    std::vector<std::string> errors() const {
        std::vector<std::string> texts;
        for (const auto& record : log_->records())
            if (record.flag == DDLogFlagError) texts.push_back(record.message);
        return texts;
    }

    const TemporaryFolder folder_;
    std::optional<headless::Platform> platform_;
    std::shared_ptr<LogRecorder> log_;
};

} // namespace zr::test
