// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/Dispatch.h>
#include <HostLibraries/DDLog.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>

namespace zr {

class NSBundle;
class NSImage;

// The kit's own bundle: that of its classes, never the application's. From any thread.
ZR_EXPORT NSBundle& KitBundle();

// A text of the kit, from its table "Localized"; the key itself where there is no translation.
ZR_EXPORT std::string KitLocalizedString(const std::string& key);

// A text of the application, from the default table of its bundle; the key itself where there is no
// translation.
ZR_EXPORT std::string AppLocalizedString(const std::string& key);

// A picture from the kit's bundle; null when it is missing. Main thread only.
ZR_EXPORT std::shared_ptr<NSImage> KitImage(const std::string& name);

// The kit's compile-time log level: errors, warnings and information.
inline constexpr int kKitLogLevel = DDLogLevelInfo;

// The method that logs, as "-[Class method:]", with the place in the source where it does.
struct LogPlace {
    LogPlace(const char* method, const char* sourceFile = __builtin_FILE(), int sourceLine = __builtin_LINE())
        : function(method), file(sourceFile), line(sourceLine) {}
    const char* function;
    const char* file;
    int line;
};

// An error: returns when every logger has handled it.
template <class... Arguments>
void KitLogError(const LogPlace& place, std::string_view format, const Arguments&... arguments) {
    DDLog::log_level_flag_context_file_function_line_tag_format(false, kKitLogLevel, DDLogFlagError, 0,
                                                                place.file, place.function, place.line, nullptr,
                                                                format, arguments...);
}

// Information: returns at once.
template <class... Arguments>
void KitLogInfo(const LogPlace& place, std::string_view format, const Arguments&... arguments) {
    DDLog::log_level_flag_context_file_function_line_tag_format(true, kKitLogLevel, DDLogFlagInfo, 0,
                                                                place.file, place.function, place.line, nullptr,
                                                                format, arguments...);
}

// Queue patterns. Blocks hold the objects they use; one that is null throws std::invalid_argument where it is
// given.

// Runs the block on the main queue, after what is there already.
ZR_EXPORT void OnMainQueue(dispatch_block_t block);

// Main-thread guard: off the main thread posts the block to the main queue and answers true; the caller then
// returns. On the main thread answers false.
ZR_EXPORT bool RepostedToMainQueue(dispatch_block_t block);

// Runs the work on the global queue, then hands its result to `done` on the main queue. What both hold goes
// there, too: views must not end on another thread.
template <class Work, class Done>
void InBackground(Work work, Done done) {
    if constexpr (requires { typename Work::result_type; }) // a std::function
        if (!work) throw std::invalid_argument("InBackground: there is no work");
    dispatch_async(dispatch_get_global_queue(0, 0), [work = std::move(work), done = std::move(done)]() mutable {
        auto result = work();
        OnMainQueue([result = std::move(result), work = std::move(work), done = std::move(done)]() mutable {
            done(std::move(result));
        });
    });
}

// Runs the block on the main queue, never before the delay has passed.
ZR_EXPORT void AfterDelay(double seconds, dispatch_block_t block);

} // namespace zr
