// SPDX-License-Identifier: MIT
#include "Media.h"

#include <sys/stat.h>

namespace {

using namespace mediatest;
using namespace trimstudio;

class Opening : public testing::Test {
protected:
    std::string sentence(const std::string& name) const {
        const Outcome<MediaFile> outcome = openMedia(folder_.path() / name);
        return outcome ? "opened" : outcome.error();
    }

    TemporaryFolder folder_;
};

TEST_F(Opening, AMissingFileIsReported) { EXPECT_EQ(sentence("take.wav"), "“take.wav” does not exist."); }

TEST_F(Opening, AMissingFolderIsReported) {
    EXPECT_EQ(sentence("none/take.wav"), "“take.wav” does not exist.");
}

TEST_F(Opening, AFolderIsReported) {
    fs::create_directory(folder_.path() / "take");
    EXPECT_EQ(sentence("take"), "“take” is a folder, not a media file.");
    EXPECT_EQ(sentence("take/"), "“take” is a folder, not a media file.");
}

TEST_F(Opening, AnEmptyFileIsReported) {
    write(folder_.path() / "x.wav", "");
    EXPECT_EQ(sentence("x.wav"), "“x.wav” is empty.");
}

TEST_F(Opening, TextIsReported) {
    for (const char* name : {"x.txt", "x.wav", "x.mp4", "x.mkv", "x.flac", "x.ogg", "x.mp3", "x.aac"}) {
        std::string text = "This is nothing but a text.\nIt has two lines.\n";
        std::string expected = "“";
        expected += name;
        expected += "” is not a media file that can be read.";
        write(folder_.path() / name, text);
        EXPECT_EQ(sentence(name), expected);
        for (int i = 0; i < 12; ++i) text += text; // about 200 kB
        write(folder_.path() / name, text);
        EXPECT_EQ(sentence(name), expected);
    }
}

TEST_F(Opening, AListOfOtherFilesIsNotFollowed) {
    ffmpeg(folder_.path(), markedSound() + "x.wav");
    write(folder_.path() / "x.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:6\n#EXTINF:6,\nx.wav\n#EXT-X-ENDLIST\n");
    write(folder_.path() / "x.ffconcat", "ffconcat version 1.0\nfile x.wav\n");
    EXPECT_EQ(sentence("x.m3u8"), "“x.m3u8” is not a media file that can be read.");
    EXPECT_EQ(sentence("x.ffconcat"), "“x.ffconcat” is not a media file that can be read.");
}

TEST_F(Opening, AFileWithoutSoundAndPicturesIsReported) {
    write(folder_.path() / "s.srt", "1\n00:00:00,500 --> 00:00:01,000\nwords\n");
    ffmpeg(folder_.path(), "-i s.srt x.mkv");
    EXPECT_EQ(sentence("x.mkv"), "“x.mkv” holds neither sound nor moving pictures.");
}

TEST_F(Opening, APictureIsReported) {
    ffmpeg(folder_.path(), "-f lavfi -i testsrc -frames:v 1 x.png");
    EXPECT_EQ(sentence("x.png"), "“x.png” is not a media file that can be read.");
}

TEST_F(Opening, AFileOfUnknownLengthIsReported) {
    ffmpeg(folder_.path(),
           markedSound() + "-c:a aac -f matroska -live 1 - | cat > " + (folder_.path() / "x.mkv").string());
    EXPECT_EQ(sentence("x.mkv"), "The length of “x.mkv” is not known.");
    ffmpeg(folder_.path(),
           markedSound() + "-c:a flac -f flac - | cat > " + (folder_.path() / "x.flac").string());
    EXPECT_EQ(sentence("x.flac"), "The length of “x.flac” is not known.");
}

TEST_F(Opening, APipeIsReportedWithoutWaiting) {
    ASSERT_EQ(mkfifo((folder_.path() / "x.wav").c_str(), 0600), 0);
    EXPECT_EQ(sentence("x.wav"), "“x.wav” is not a media file that can be read.");
}

TEST_F(Opening, AFileThatMayNotBeReadIsReported) {
    ffmpeg(folder_.path(), markedSound() + "x.wav");
    const fs::path file = folder_.path() / "x.wav";
    fs::permissions(file, fs::perms::none);
    std::vector<std::string> command = withoutPrivileges();
    command.insert(command.end(), {MEDIA_OUTCOME, "open", file.string()});
    const Finished result = run(command);
    EXPECT_EQ(result.output.substr(0, result.output.find('\n')),
              "failure: You do not have permission to open “x.wav”.");
}

TEST_F(Opening, NamesWithColonsSpacesAndQuotesWork) {
    ffmpeg(folder_.path(), markedSound() + "x.wav");
    for (const char* name :
         {"http:x.wav", "a b 'c' \"d\" %d.wav", "Ünï “q”.wav", "-x.wav", "noextension", ".hidden.wav"}) {
        fs::copy_file(folder_.path() / "x.wav", folder_.path() / name);
        const Outcome<MediaFile> outcome = openMedia(folder_.path() / name);
        ASSERT_TRUE(outcome) << outcome.error();
        EXPECT_EQ(outcome.value().name, name);
        EXPECT_NEAR(outcome.value().duration, 6, 1e-6);
    }
}

TEST_F(Opening, NothingIsWrittenToStandardError) {
    write(folder_.path() / "x.mp3", std::string(5000, '\xFF'));
    ffmpeg(folder_.path(), markedSound() + "-c:a libmp3lame y.mp3");
    copyPart(folder_.path() / "y.mp3", folder_.path() / "z.mp3", 0.5);
    for (const char* name : {"x.mp3", "y.mp3", "z.mp3"}) {
        const Finished result = run({MEDIA_OUTCOME, "save", (folder_.path() / name).string(), "1", "1"});
        EXPECT_EQ(result.complaints, "") << name;
        EXPECT_NE(result.output, "") << name;
    }
}

} // namespace
