// SPDX-License-Identifier: MIT
#include "Media.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

#include <sys/wait.h>
#include <unistd.h>

namespace mediatest {

namespace {

std::string quotedForShell(const std::string& word) {
    std::string text = "'";
    for (const char c : word) {
        if (c == '\'')
            text += "'\\''";
        else
            text += c;
    }
    text += '\'';
    return text;
}

Finished runInShell(const std::string& line) {
    const TemporaryFolder folder;
    const fs::path complaints = folder.path() / "complaints";
    std::string shell = line;
    shell += " 2>";
    shell += quotedForShell(complaints.string());
    Finished result;
    FILE* pipe = popen(shell.c_str(), "r");
    if (!pipe) return result;
    std::array<char, 65536> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
        result.output.append(buffer.data(), count);
    const int status = pclose(pipe);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.complaints = contents(complaints);
    return result;
}

constexpr const char* bounded = "timeout -k 2 30 ";

} // namespace

TemporaryFolder::TemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "media-test-XXXXXX").string();
    if (!mkdtemp(name.data())) std::abort();
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

std::vector<std::string> TemporaryFolder::names() const {
    std::vector<std::string> result;
    for (const auto& entry : fs::directory_iterator(path_)) result.push_back(entry.path().filename().string());
    std::sort(result.begin(), result.end());
    return result;
}

Finished run(const std::vector<std::string>& command) {
    std::string line = bounded;
    for (const std::string& word : command) {
        line += quotedForShell(word);
        line += ' ';
    }
    return runInShell(line);
}

std::vector<std::string> withoutPrivileges() {
    if (geteuid() != 0) return {};
    return {"setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--inh-caps", "-all"};
}

void ffmpeg(const fs::path& folder, const std::string& words) {
    std::string line = "cd ";
    line += quotedForShell(folder.string());
    line += " && ";
    line += bounded;
    line += "ffmpeg -nostdin -v error -y ";
    line += words;
    const Finished result = runInShell(line);
    ASSERT_EQ(result.exitCode, 0) << words << '\n' << result.complaints;
}

std::string probe(const fs::path& file, const std::string& entries, const std::string& stream) {
    std::vector<std::string> command{"ffprobe", "-v", "error", "-show_entries", entries, "-of", "csv=p=0"};
    if (!stream.empty()) command.insert(command.end(), {"-select_streams", stream});
    command.push_back(file.string());
    std::string text = run(command).output;
    while (!text.empty() && text.back() == '\n') text.pop_back();
    return text;
}

double probedDuration(const fs::path& file) {
    return std::strtod(probe(file, "format=duration").c_str(), nullptr);
}

std::vector<int16_t> decodedSound(const fs::path& file, int rate) {
    const Finished result = run({"ffmpeg", "-nostdin", "-v", "error", "-i", file.string(), "-map", "0:a:0",
                                 "-ac", "1", "-ar", std::to_string(rate), "-f", "s16le", "-"});
    std::vector<int16_t> samples(result.output.size() / 2);
    if (!samples.empty()) std::memcpy(samples.data(), result.output.data(), samples.size() * 2);
    return samples;
}

std::vector<std::string> decodedPictures(const fs::path& file) {
    const Finished result = run({"ffmpeg", "-nostdin", "-v", "error", "-i", file.string(), "-map", "0:v:0",
                                 "-fps_mode", "passthrough", "-f", "framemd5", "-"});
    std::vector<std::string> sums;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);)
        if (!line.empty() && line[0] != '#') sums.push_back(line.substr(line.rfind(' ') + 1));
    return sums;
}

std::string decodedChecksum(const fs::path& file, const std::string& kind) {
    std::string map = "0:";
    map += kind;
    const Finished result = run({"ffmpeg", "-nostdin", "-v", "error", "-i", file.string(), "-map", map,
                                 "-fps_mode", "passthrough", "-f", "md5", "-"});
    EXPECT_EQ(result.exitCode, 0) << result.complaints;
    return result.output;
}

std::string decodingComplaints(const fs::path& file) {
    return run({"ffmpeg", "-nostdin", "-v", "error", "-err_detect", "crccheck+bitstream+buffer", "-i",
                file.string(), "-map", "0", "-f", "null", "-"})
        .complaints;
}

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

void write(const fs::path& file, const std::string& text) { std::ofstream(file, std::ios::binary) << text; }

void copyPart(const fs::path& from, const fs::path& to, double part) {
    const std::string all = contents(from);
    write(to, all.substr(0, static_cast<std::size_t>(static_cast<double>(all.size()) * part)));
}

trimstudio::Outcome<trimstudio::Trimmed> save(const fs::path& file, double start, double length) {
    const std::atomic<bool> cancelled{false};
    return trimstudio::saveTrimmed({file, start, length}, cancelled, {});
}

trimstudio::Trimmed saved(const fs::path& file, double start, double length) {
    const auto outcome = save(file, start, length);
    EXPECT_TRUE(outcome) << outcome.error();
    return outcome ? outcome.value() : trimstudio::Trimmed{};
}

double loudAt(const std::vector<int16_t>& sound, int rate) {
    const auto loud = std::find_if(sound.begin(), sound.end(), [](int16_t s) { return s > 8000 || s < -8000; });
    return loud == sound.end() ? -1 : static_cast<double>(loud - sound.begin()) / rate;
}

std::string markedSound() {
    return "-f lavfi -i \"aevalsrc='if(between(t,2.5,3),0.8,0.02)*sin(2*PI*700*t)':d=6:s=48000\" ";
}

std::string pictures() { return "-f lavfi -i testsrc=d=6:r=25:s=96x64 "; }

} // namespace mediatest
