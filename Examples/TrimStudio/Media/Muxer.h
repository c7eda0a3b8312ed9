// SPDX-License-Identifier: MIT
#pragma once

#include "Av.h"
#include "OutputFile.h"
#include "Tracks.h"

#include <vector>

namespace trimstudio {

// Writes packets of a source into a file of the same format, with what the source tells about itself: titles,
// chapters, cover pictures, how pictures are turned. The file must outlive it. For one thread. Errors are
// FFmpeg's negative numbers.
class Muxer {
public:
    // `source` names the original in sentences, and its extension tells variants of a format apart.
    static Outcome<std::unique_ptr<Muxer>> create(const AVFormatContext& input, OutputFile& file,
                                                  const std::filesystem::path& source);
    Muxer(const Muxer&) = delete;
    Muxer& operator=(const Muxer&) = delete;
    ~Muxer();

    // How the copy describes a stream of the source, or null if the copy leaves it out. May be changed until
    // the first packet is written.
    AVCodecParameters* codec(int stream) const;

    // The cut must have its shift by now.
    int write(av::Packet packet, const Cut& cut);
    int finish();
    bool hasBegun() const { return begun_; }

private:
    struct Output {
        AVStream* stream = nullptr;
        int64_t lastDts = AV_NOPTS_VALUE;
    };

    Muxer(const AVFormatContext& input, AVFormatContext* context, OutputFile& file);

    void addStreams();
    void addStream(const AVStream& source, Output& output);
    void addPicture(const AVStream& source, Output& output);
    void addPictureAsAttachment(const AVStream& source);
    void addPictureAsComment(const AVStream& source);
    void addChapters(const Cut& cut);
    int begin(const Cut& cut);
    int writePictures();
    bool hidesNothing() const;
    int64_t codecDelay(const AVStream& stream, AVRational unit) const;
    void repairDts(AVPacket& packet, Output& output) const;

    const AVFormatContext& input_;
    AVFormatContext* context_;
    std::vector<Output> outputs_; // By stream of the source.
    bool begun_ = false;
};

} // namespace trimstudio
