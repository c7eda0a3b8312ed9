// SPDX-License-Identifier: MIT
#include "EditLists.h"
#include "KeyFrames.h"
#include "Muxer.h"
#include "OutputFile.h"
#include "SaveTrimmed.h"
#include "Tracks.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace trimstudio {

namespace {

// How far a selection may miss an end of the file and still mean it, in seconds.
constexpr double touching = 2e-6;

std::string problemWith(const TrimRequest& request, const MediaFile& file) {
    const double step = file.packetDuration;
    if (!std::isfinite(request.start) || !std::isfinite(request.length))
        return "The part to copy is not clear.";
    if (request.length <= 0) return "The part to copy is empty.";
    if (request.start < 0)
        return "The part to copy begins before the beginning of " + av::quoted(file.path) + ".";
    if (request.start >= file.duration)
        return "The part to copy begins after the end of " + av::quoted(file.path) + ".";
    if (request.start + request.length > file.duration + step + touching)
        return "The part to copy goes beyond the end of " + av::quoted(file.path) + ".";
    return {};
}

std::filesystem::path trimmedName(const TrimRequest& request) {
    std::filesystem::path name = request.source.stem();
    name += "-trimmed";
    name += request.source.extension();
    return request.folder.value_or(request.source.parent_path()) / name;
}

// Calls back at most 50 times a second.
class Reporter {
public:
    Reporter(const std::function<void(double)>& progress, const Cut& cut) : progress_(progress), cut_(cut) {}

    void at(double time) {
        const auto now = std::chrono::steady_clock::now();
        if (!progress_ || now < next_ || std::isnan(time)) return;
        next_ = now + std::chrono::milliseconds(20);
        furthest_ = std::max(furthest_, std::clamp((time - cut_.start) / (cut_.end - cut_.start), 0.0, 1.0));
        progress_(furthest_);
    }

private:
    const std::function<void(double)>& progress_;
    const Cut& cut_;
    double furthest_ = 0;
    std::chrono::steady_clock::time_point next_;
};

// One copy in the making.
class Trim {
public:
    Trim(MediaFile file, const TrimRequest& request, av::Input input, const std::atomic<bool>& cancelled,
         const std::function<void(double)>& progress)
        : file_(std::move(file))
        , request_(request)
        , input_(std::move(input))
        , cancelled_(cancelled)
        , reporter_(progress, cut_) {}

    Outcome<Trimmed> run() {
        if (std::string text = prepare(); !text.empty()) return Failure{std::move(text)};
        Outcome<std::unique_ptr<OutputFile>> created = OutputFile::create(trimmedName(request_));
        if (!created) return Failure{created.error()};
        OutputFile& output = *created.value();
        Outcome<std::unique_ptr<Muxer>> muxer = Muxer::create(*input_, output, file_.path);
        if (!muxer) return Failure{muxer.error()};
        makeTracks(*muxer.value());
        if (std::string text = copy(*muxer.value(), output); !text.empty()) return Failure{std::move(text)};
        if (std::string text = complete(*muxer.value(), output); !text.empty()) return Failure{std::move(text)};
        if (std::string text = output.sync(); !text.empty()) return Failure{std::move(text)};
        if (cancelled_) return Failure{wasCancelled()};
        Outcome<std::filesystem::path> name = output.finish();
        if (!name) return Failure{name.error()};
        return Trimmed{name.value(), std::max(0.0, cut_.heard.value_or(cut_.start) - origin_), length()};
    }

private:
    bool inMp4() const { return cut_.container == av::Container::Mp4; }

    // Sets the cut and moves the input to where copying has to begin.
    std::string prepare() {
        origin_ = av::startTime(*input_);
        cut_.container = av::container(*input_);
        const double end = std::min(request_.start + request_.length, file_.duration);
        cut_.start = origin_ + request_.start;
        cut_.end = origin_ + end;
        // An MP4 file hides what lies outside by an edit list, so its ends need no special care.
        cut_.fromBeginning = !inMp4() && request_.start <= touching;
        cut_.toEnd = !inMp4() && end >= file_.duration - touching;
        cut_.onlySound = countStreams() == 1 && !file_.hasVideo;
        if (cut_.container == av::Container::Mp3) leaveRoomForMp3();
        if (inMp4()) cut_.shift = cut_.heard = cut_.start;
        if (cut_.fromBeginning) cut_.heard = origin_;
        if (file_.hasVideo && !findKeyFrame()) return unreadable();
        return moveInput() ? std::string() : unreadable();
    }

    void leaveRoomForMp3() {
        const double latest = file_.duration - (fewestMp3Packets + 1) * file_.packetDuration;
        cut_.start = std::min(cut_.start, std::max(origin_, latest));
    }

    bool findKeyFrame() {
        const std::optional<double> key = KeyFrames(file_.path).atOrBefore(request_.start);
        if (!key) return false;
        cut_.keyFrame = origin_ + *key;
        if (inMp4()) return true;
        if (cut_.fromBeginning)
            cut_.shift = std::max(0.0, origin_);
        else
            cut_.shift = cut_.heard = cut_.start = cut_.keyFrame;
        return true;
    }

    bool moveInput() {
        // Sound needs some packets from before the cut.
        const double lead = std::max(0.2, 4 * file_.packetDuration);
        const double place = std::min(cut_.start - lead, file_.hasVideo ? cut_.keyFrame : cut_.start);
        if (cut_.fromBeginning) return true;
        return av::moveBefore(input_, file_.path, av::mainStream(*input_), place);
    }

    unsigned countStreams() const {
        unsigned count = 0;
        for (unsigned i = 0; i < input_->nb_streams; ++i) count += av::isAudio(*input_->streams[i]);
        return count;
    }

    void makeTracks(const Muxer& muxer) {
        for (unsigned i = 0; i < input_->nb_streams; ++i) {
            const int stream = static_cast<int>(i);
            AVCodecParameters* codec = muxer.codec(stream);
            tracks_.push_back(codec ? makeTrack(*input_, stream, *codec, cut_) : nullptr);
            if (!tracks_.back()) input_->streams[i]->discard = AVDISCARD_ALL;
        }
    }

    // Returns a sentence if something went wrong, as do the following.
    std::string copy(Muxer& muxer, const OutputFile& output) {
        for (;;) {
            if (cancelled_) return wasCancelled();
            av::Packet packet = av::readPacket(*input_);
            if (!packet) break;
            const auto stream = static_cast<std::size_t>(packet->stream_index);
            if (stream >= tracks_.size() || !tracks_[stream]) continue;
            const double time = av::time(*input_, *packet);
            if (std::string text = write(muxer, output, tracks_[stream]->take(std::move(packet)));
                !text.empty())
                return text;
            reporter_.at(time);
            if (allDone(time)) break;
        }
        for (const auto& track : tracks_)
            if (track)
                if (std::string text = write(muxer, output, track->finish()); !text.empty()) return text;
        return {};
    }

    static bool isDone(const std::unique_ptr<Track>& track) { return !track || track->done(); }

    bool allDone(double time) const {
        if (std::all_of(tracks_.begin(), tracks_.end(), isDone)) return true;
        // One stream may have ended long ago, others may lag a little behind.
        return !cut_.toEnd && time > cut_.end + 10;
    }

    std::string write(Muxer& muxer, const OutputFile& output, std::vector<av::Packet> packets) const {
        for (av::Packet& packet : packets) {
            if (!cut_.shift) return nothingThere();
            const int error = muxer.write(std::move(packet), cut_);
            if (error < 0) return output.problem(error);
        }
        return {};
    }

    std::string complete(Muxer& muxer, OutputFile& output) const {
        const double reached = end();
        if (!muxer.hasBegun() || !(reached > *cut_.shift)) return nothingThere();
        if (reached < cut_.end - 3 * file_.packetDuration - 0.05) return unreadable();
        if (const int error = muxer.finish(); error < 0) return output.problem(error);
        if (std::string text = output.flush(); !text.empty()) return text;
        if (inMp4() && !limitEditLists(output.descriptor(), cut_.end - cut_.start))
            return output.problem(AVERROR(EIO));
        return {};
    }

    double end() const {
        double last = -std::numeric_limits<double>::infinity();
        for (const auto& track : tracks_)
            if (track) last = std::max(last, track->end());
        return last;
    }
    double length() const { return (inMp4() ? std::min(end(), cut_.end) : end()) - *cut_.shift; }

    std::string wasCancelled() const { return "Saving " + av::quoted(file_.path) + " was cancelled."; }
    std::string nothingThere() const {
        return "There is nothing to copy in that part of " + av::quoted(file_.path) + ".";
    }
    std::string unreadable() const {
        return av::quoted(file_.path) + " is damaged: the part to copy cannot be read to its end.";
    }

    MediaFile file_;
    const TrimRequest& request_;
    av::Input input_;
    const std::atomic<bool>& cancelled_;
    double origin_ = 0;
    Cut cut_;
    std::vector<std::unique_ptr<Track>> tracks_; // By stream of the input.
    Reporter reporter_;
};

} // namespace

Outcome<Trimmed> saveTrimmed(const TrimRequest& request, const std::atomic<bool>& cancelled,
                             const std::function<void(double fraction)>& progress) {
    Outcome<MediaFile> file = openMedia(request.source);
    if (!file) return Failure{file.error()};
    if (std::string text = problemWith(request, file.value()); !text.empty()) return Failure{std::move(text)};
    Outcome<av::Input> input = av::openInput(request.source);
    if (!input) return Failure{input.error()};
    return Trim(std::move(file.value()), request, std::move(input.value()), cancelled, progress).run();
}

} // namespace trimstudio
