// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSString.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace zr {

enum DDLogFlag : int {
    DDLogFlagError = 1 << 0,
    DDLogFlagWarning = 1 << 1,
    DDLogFlagInfo = 1 << 2,
    DDLogFlagDebug = 1 << 3,
    DDLogFlagVerbose = 1 << 4,
};

// Which flags are of interest.
enum DDLogLevel : int {
    DDLogLevelOff = 0,
    DDLogLevelError = DDLogFlagError,
    DDLogLevelWarning = DDLogLevelError | DDLogFlagWarning,
    DDLogLevelInfo = DDLogLevelWarning | DDLogFlagInfo,
    DDLogLevelAll = -1,
};

// One record, as loggers get it.
struct DDLogMessage {
    std::string message; // the format with its arguments
    std::string format;
    int level = 0;
    int flag = 0;
    int context = 0;
    std::string file;     // the source's path
    std::string fileName; // without folders and extension
    std::string function;
    int line = 0;
    std::shared_ptr<NSObject> tag;
    bool asynchronous = false;
    std::chrono::system_clock::time_point timestamp;
    std::thread::id threadID;
};

class DDLogger {
public:
    virtual ~DDLogger() = default;
    virtual void logMessage(const DDLogMessage& message) = 0;
};

// The log. Records go to every logger whose level has their flag, one at a time and in order. Nothing is
// printed until a logger is added: records are not even made then, but for errors, whose messages go to NSLog
// at once. From any thread, loggers included: what a logger logs is handled after the record it has.
class ZR_EXPORT DDLog {
public:
    // Null is named in the log, and not added.
    static void addLogger(const std::shared_ptr<DDLogger>& logger, int level = DDLogLevelAll);
    static void removeAllLoggers();
    // Returns when all records so far have been handled.
    static void flushLog();

    // An asynchronous record is handled later, on a background queue; with one that is not, the call returns
    // when every logger has handled it.
    template <class... Arguments>
    static void log_level_flag_context_file_function_line_tag_format(
        bool asynchronous, int level, int flag, int context, const char* file, const char* function, int line,
        const std::shared_ptr<NSObject>& tag, std::string_view format, const Arguments&... arguments) {
        if (!hasLoggers()) {
            if ((flag & DDLogFlagError) != 0) NSLog(format, arguments...);
            return;
        }
        DDLogMessage message;
        message.message = stringWithFormat(format, arguments...);
        message.format = std::string(format);
        message.level = level;
        message.flag = flag;
        message.context = context;
        message.file = file;
        message.function = function;
        message.line = line;
        message.tag = tag;
        message.asynchronous = asynchronous;
        queueMessage(std::move(message));
    }

private:
    static bool hasLoggers();
    static void queueMessage(DDLogMessage message);
};

} // namespace zr
