// SPDX-License-Identifier: MIT
#include <ZRUIKitQt/QtQueues.h>

#include <QApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zr {

namespace {

std::vector<std::string>& complaints() {
    static std::vector<std::string> all;
    return all;
}

void complain(QtMsgType, const QMessageLogContext&, const QString& text) {
    complaints().push_back(text.toStdString());
}

} // namespace

TEST(QtLifeOfQueues, AnyThreadMayBeTheLastToHoldThem) {
    int count = 1;
    char name[] = "life";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);
    auto queues = std::make_shared<qt::QtQueues>();
    bool ran = false;
    queues->postToMain(queues->now(), [&] { ran = true; });
    constexpr std::uint64_t kHour = 3'600'000'000'000;
    const auto held = std::make_shared<int>();
    queues->postToMain(queues->now() + kHour, [held] {}); // a timer runs for it
    while (!ran) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);

    auto* const before = qInstallMessageHandler(complain);
    queues->finish();
    EXPECT_EQ(held.use_count(), 1) << "what blocks held went here";
    queues->postToMain(queues->now(), [held] {});
    queues->postToGlobal([held] {});
    EXPECT_EQ(held.use_count(), 1) << "and nothing comes after that";
    std::thread([last = std::exchange(queues, nullptr)]() mutable { last.reset(); }).join();
    qInstallMessageHandler(before);
    EXPECT_THAT(complaints(), testing::IsEmpty());
}

} // namespace zr
