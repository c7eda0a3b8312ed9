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
    explicit MountTable(const char* file = "/proc/self/mountinfo");
    ~MountTable();
    MountTable(const MountTable&) = delete;
    MountTable& operator=(const MountTable&) = delete;

    // As they are now. Not for two threads at once.
    const std::vector<std::string>& doubtfulPlaces();

private:
    int file_;
    bool isRead_ = false;
    std::vector<std::string> places_;
};

class FileQuestions {
public:
    // One for the program.
    static FileQuestions& shared();

    explicit FileQuestions(std::chrono::milliseconds patience = std::chrono::seconds(2),
                           const char* mountTable = "/proc/self/mountinfo");

    // What the question answers; nothing when that takes longer than the patience, and at once while another
    // question to the same file system has not been answered. The question is asked on this thread, unless some
    // mounted file system may not answer: any path can lead there by a link. It must own what it uses.
    template <class Answer>
    std::optional<Answer> ask(std::string_view path, std::function<Answer()> question) {
        const std::optional<std::string> place = doubt(path);
        if (!place) return question();
        const auto answer = std::make_shared<std::optional<Answer>>();
        const bool came =
            askElsewhere(*place, [answer, question = std::move(question)] { *answer = question(); });
        if (!came) return std::nullopt;
        return std::move(*answer);
    }

private:
    struct Lost;

    // Nothing: ask at once. Else the doubtful place in which the path lies by its text, empty for any other.
    std::optional<std::string> doubt(std::string_view path);
    bool askElsewhere(const std::string& place, std::function<void()> question);

    const std::chrono::milliseconds patience_;
    std::mutex lock_;
    MountTable mounts_; // guarded by lock_
    const std::shared_ptr<Lost> lost_;
};

} // namespace zr
