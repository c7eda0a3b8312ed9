// SPDX-License-Identifier: MIT
#include <Foundation/NSLog.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <map>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace zr {

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

// Standard error as a row of packets: what one write() gives is one packet.
class LogLines : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets_.data()), 0);
        before_ = dup(STDERR_FILENO);
        ASSERT_GE(dup2(sockets_[0], STDERR_FILENO), 0);
    }
    void TearDown() override { restore(); }

    std::vector<std::string> writes() {
        restore();
        std::vector<std::string> packets;
        std::string buffer(70000, '\0');
        ssize_t length = 0;
        while ((length = recv(sockets_[1], buffer.data(), buffer.size(), MSG_DONTWAIT)) > 0)
            packets.emplace_back(buffer, 0, static_cast<std::size_t>(length));
        return packets;
    }
    std::string onlyWrite() {
        const auto all = writes();
        EXPECT_EQ(all.size(), 1u);
        return all.empty() ? "" : all.front();
    }

private:
    void restore() {
        if (before_ < 0) return;
        dup2(before_, STDERR_FILENO);
        close(std::exchange(before_, -1));
        close(sockets_[0]);
    }

    std::array<int, 2> sockets_{};
    int before_ = -1;
};

std::string prefix() {
    return "[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} " +
           std::string(program_invocation_short_name) + "\\[" + std::to_string(getpid()) + ":" +
           std::to_string(gettid()) + "\\] ";
}

std::string clockNow() {
    // The clock that NSLog reads: the C library's lags behind it by some milliseconds.
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    localtime_r(&now, &local);
    std::array<char, 40> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
    return text.data();
}

} // namespace

TEST_F(LogLines, ALineHasTimeProcessThreadAndText) {
    const auto from = clockNow();
    NSLog("key down...:%d", static_cast<std::uint16_t>(51));
    const auto until = clockNow();
    const auto line = onlyWrite();
    EXPECT_THAT(line, MatchesRegex(prefix() + "key down\\.\\.\\.:51\n"));
    EXPECT_GE(line.substr(0, from.size()), from);
    EXPECT_LE(line.substr(0, until.size()), until);
}

TEST_F(LogLines, ALineBreakIsAddedOnlyWhereItIsMissing) {
    NSLog("已经存在");
    NSLog("broken\n");
    NSLog("twice\n\n");
    NSLog("");
    const auto own = prefix();
    EXPECT_THAT(writes(), ElementsAre(MatchesRegex(own + "已经存在\n"), MatchesRegex(own + "broken\n"),
                                      MatchesRegex(own + "twice\n\n"), MatchesRegex(own + "\n")));
}

TEST_F(LogLines, TextIsTakenAsItIs) {
    NSLogText("100%d %@ %%");
    EXPECT_THAT(onlyWrite(), MatchesRegex(prefix() + "100%d %@ %%\n"));
}

TEST_F(LogLines, NilPrintsAsNull) {
    NSLog("%@", nullptr);
    EXPECT_THAT(onlyWrite(), MatchesRegex(prefix() + "\\(null\\)\n"));
}

TEST_F(LogLines, ALongLineIsOneWrite) {
    NSLog("%@", std::string(50000, 'x'));
    EXPECT_THAT(onlyWrite(), testing::EndsWith(std::string(50000, 'x') + "\n"));
}

TEST_F(LogLines, LinesOfManyThreadsAreWholeWritesAndNameTheirThread) {
    constexpr int kThreads = 4, kLines = 20;
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([thread] {
            for (int line = 0; line < kLines; ++line) NSLog("thread %d of %d, line %d", thread, gettid(), line);
        });
    for (auto& thread : threads) thread.join();
    std::map<std::string, int> next;
    for (const auto& line : writes()) {
        const auto text = line.find("] ") + 2;
        const auto comma = line.find(',', text);
        const auto who = line.substr(text, comma - text);
        EXPECT_EQ(line.substr(comma), ", line " + std::to_string(next[who]++) + "\n");
        const auto id = line.substr(line.find(':', line.find('[')) + 1);
        EXPECT_EQ(id.substr(0, id.find(']')), who.substr(who.rfind(' ') + 1)) << line;
    }
    EXPECT_EQ(next.size(), static_cast<std::size_t>(kThreads));
    for (const auto& [who, lines] : next) EXPECT_EQ(lines, kLines) << who;
}

TEST_F(LogLines, ALogThatCannotBeWrittenIsNoHarm) {
    close(STDERR_FILENO);
    NSLog("nobody reads this");
    EXPECT_TRUE(writes().empty());
}

} // namespace zr
