// SPDX-License-Identifier: MIT
// Prints the outcome of one operation on a file:
//   open PATH | save PATH START LENGTH [LARGEST_FILE] | waveform PATH
// Each ends with a line that tells how much memory the process has used at most, in KiB.

#include "SaveTrimmed.h"
#include "Waveform.h"

#include <algorithm>
#include <csignal>
#include <iostream>
#include <string_view>
#include <vector>

#include <sys/resource.h>

namespace {

using namespace trimstudio;

template <class T, class Print>
void print(const Outcome<T>& outcome, Print printValue) {
    if (outcome)
        printValue(outcome.value());
    else
        std::cout << "failure: " << outcome.error() << '\n';
}

void limitFiles(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, bytes};
    setrlimit(RLIMIT_FSIZE, &limit);
}

void open(const char* path) {
    print(openMedia(path), [](const MediaFile& file) { std::cout << "opened: " << file.format << '\n'; });
}

void save(const char* path, double start, double length) {
    const std::atomic<bool> cancelled{false};
    print(saveTrimmed({path, start, length}, cancelled, {}),
          [](const Trimmed& copy) { std::cout << "saved: " << copy.path.string() << '\n'; });
}

void draw(const char* path) {
    const Outcome<MediaFile> file = openMedia(path);
    if (!file) return print(file, [](const MediaFile&) {});
    const std::atomic<bool> cancelled{false};
    print(waveform(file.value(), 100, cancelled, {}), [](const std::vector<float>& peaks) {
        std::cout << "loudest: " << *std::max_element(peaks.begin(), peaks.end()) << '\n';
    });
}

} // namespace

int main(int count, char** arguments) {
    const std::vector<const char*> given(arguments, arguments + count);
    if (given.size() < 3) return 2;
    const std::string_view what = given[1];
    if (given.size() > 5) limitFiles(static_cast<rlim_t>(std::stoul(given[5])));
    if (what == "open") open(given[2]);
    if (what == "save" && given.size() > 4) save(given[2], std::stod(given[3]), std::stod(given[4]));
    if (what == "waveform") draw(given[2]);
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::cout << "memory: " << usage.ru_maxrss << '\n';
}
