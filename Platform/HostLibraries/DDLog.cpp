// SPDX-License-Identifier: MIT
#include <Foundation/Dispatch.h>
#include <HostLibraries/DDLog.h>

#include <deque>
#include <filesystem>
#include <mutex>
#include <utility>
#include <vector>

namespace zr {

namespace {

struct Log {
    std::mutex lock; // of what is waiting and who listens
    std::deque<DDLogMessage> waiting;
    std::vector<std::pair<std::shared_ptr<DDLogger>, int>> loggers;
    std::recursive_mutex handling; // one record at a time
    bool isHandling = false;       // guarded by `handling`
};

// Leaked on purpose: threads may log until the process ends.
Log& log() {
    static auto* const instance = new Log;
    return *instance;
}

} // namespace

void DDLog::addLogger(const std::shared_ptr<DDLogger>& logger, int level) {
    if (!logger) return NSLog("+[DDLog addLogger:withLevel:]: the logger is null");
    const std::lock_guard guard(log().lock);
    log().loggers.emplace_back(logger, level);
}

bool DDLog::hasLoggers() {
    const std::lock_guard guard(log().lock);
    return !log().loggers.empty();
}

void DDLog::removeAllLoggers() {
    decltype(Log::loggers) removed; // go after the locks: they may log
    const std::lock_guard handling(log().handling);
    flushLog();
    const std::lock_guard guard(log().lock);
    removed.swap(log().loggers);
}

void DDLog::flushLog() {
    const std::lock_guard handling(log().handling);
    // What a logger logs itself is handled after its record has gone to the other loggers, by the loop below.
    if (log().isHandling) return;
    struct Handling {
        Handling() { log().isHandling = true; }
        ~Handling() { log().isHandling = false; }
    } const running;
    while (true) {
        DDLogMessage message;
        std::vector<std::pair<std::shared_ptr<DDLogger>, int>> loggers;
        {
            const std::lock_guard guard(log().lock);
            if (log().waiting.empty()) return;
            message = std::move(log().waiting.front());
            log().waiting.pop_front();
            loggers = log().loggers;
        }
        // They have been removed since it was made.
        if (loggers.empty() && (message.flag & DDLogFlagError) != 0) NSLogText(message.message);
        for (const auto& [logger, level] : loggers)
            if ((message.flag & level) != 0) logger->logMessage(message);
    }
}

void DDLog::queueMessage(DDLogMessage message) {
    message.fileName = std::filesystem::path(message.file).stem().string();
    message.timestamp = std::chrono::system_clock::now();
    message.threadID = std::this_thread::get_id();
    const bool asynchronous = message.asynchronous;
    {
        const std::lock_guard guard(log().lock);
        log().waiting.push_back(std::move(message));
    }
    if (asynchronous)
        dispatch_async(dispatch_get_global_queue(0, 0), [] { flushLog(); });
    else
        flushLog();
}

} // namespace zr
