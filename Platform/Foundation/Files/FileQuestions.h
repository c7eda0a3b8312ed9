// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Questions to file systems that may never answer: those of other machines and of other programs. A call to
// such a one cannot be called back, so that it is made on a thread that can be left behind. Private to
// Foundation.
namespace zr {

// Where the file systems that may not answer are mounted.
class MountTable {
public:
    explicit MountTable(std::string file) : name_(std::move(file)) {}
    ~MountTable();
    MountTable(const MountTable&) = delete;
    MountTable& operator=(const MountTable&) = delete;

    // As they are now. Not for two threads at once.
    const std::vector<std::string>& doubtfulPlaces();

private:
    const std::string name_;
    int file_ = -1;
    bool isRead_ = false;
    std::vector<std::string> places_;
};

// Which of the places the path leads into first, links followed; nothing when it leads into none. Looks at no
// file system behind them.
std::optional<std::string> placeOnTheWay(std::string_view path, const std::vector<std::string>& places);

class FileQuestions {
public:
    // One for the program.
    static FileQuestions& shared();

    explicit FileQuestions(std::chrono::milliseconds patience = std::chrono::seconds(2),
                           std::string mountTable = "/proc/self/mountinfo");

    // What the question answers; nothing when that takes longer than the patience, and at once while another
    // question to the same file system has not been answered. The question is asked on this thread, unless its
    // path leads to a file system that may not answer: it must own what it uses.
    template <class Answer>
    std::optional<Answer> ask(std::string_view path, std::function<Answer()> question) {
        const std::optional<std::string> place = placeFor(path);
        if (!place) return question();
        const auto answer = std::make_shared<std::optional<Answer>>();
        const bool came =
            askElsewhere(*place, [answer, question = std::move(question)] { *answer = question(); });
        if (!came) return std::nullopt;
        return std::move(*answer);
    }

    // Whether file systems that may not answer are waited for at all; they are at first.
    void setWaits(bool waits);

private:
    struct Shared;

    std::optional<std::string> placeFor(std::string_view path);
    bool askElsewhere(const std::string& place, std::function<void()> question);

    const std::chrono::milliseconds patience_;
    std::mutex lock_;
    MountTable
        mounts_; // guarded by lock_, like what was found last, with which places, and how long that holds
    std::string lastPath_;
    std::vector<std::string> lastPlaces_;
    std::optional<std::string> lastPlace_;
    std::chrono::steady_clock::time_point lastUntil_;
    const std::shared_ptr<Shared> shared_;
};

} // namespace zr
