// SPDX-License-Identifier: MIT
#include <Foundation/NSLog.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace zr {

namespace {

std::string timeStamp() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    const std::time_t seconds = milliseconds / 1000;
    std::tm local{};
    localtime_r(&seconds, &local);
    std::array<char, 40> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
    return stringWithFormat("%s.%03d", text.data(), milliseconds % 1000);
}

} // namespace

void NSLogText(std::string_view text) {
    std::string line = stringWithFormat("%s %s[%d:%d] ", timeStamp(), program_invocation_short_name, getpid(),
                                        syscall(SYS_gettid));
    line += text;
    if (line.back() != '\n') line += '\n';
    // One write, so that lines of several threads do not mix.
    for (std::size_t done = 0; done < line.size();) {
        const ssize_t written = write(STDERR_FILENO, line.data() + done, line.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        done += static_cast<std::size_t>(written);
    }
}

} // namespace zr
