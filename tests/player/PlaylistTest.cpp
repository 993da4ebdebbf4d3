// Which pieces a command line stands for, in which order they come, and what happens to those that can't be played.
#include "player/list/Jukebox.h"

#include <gtest/gtest.h>

#include <set>

#include "player/base/ExitCode.h"
#include "player/list/NaturalOrder.h"
#include "player/sound/SilentOutput.h"
#include "tests/player/TestFiles.h"

namespace tdkplay {
namespace {

namespace fs = std::filesystem;

TEST(NaturalOrder, NumbersCountAsNumbers) {
    const char* const inOrder[] = {"", "1.wav", "2 b", "02 c", "2 c", "10 a", "a", "B", "b", "B2", "b10", "\xC3\xA4"};
    for (size_t i = 0; i < std::size(inOrder); ++i)
        for (size_t j = 0; j < std::size(inOrder); ++j)
            EXPECT_EQ(ComesBefore(inOrder[i], inOrder[j]), i < j) << inOrder[i] << " and " << inOrder[j];
}

class TrackListTest : public testing::Test {
protected:
    // Titles and paths within the folder, one a line.
    std::string Read(const std::vector<std::string>& names) const {
        std::vector<std::string> paths;
        for (const std::string& name : names) paths.push_back(folder_.File(name));
        std::string lines;
        for (const Track& track : ReadTracks(paths))
            lines += (track.Title.empty() ? "" : track.Title + ": ") +
                     fs::path(track.Path).lexically_relative(folder_.File("")).string() + "\n";
        return lines;
    }

    const TemporaryFolder folder_;
};

TEST_F(TrackListTest, AFolderGivesItsMusicByNameAndThenThatOfItsSubfolders) {
    for (const char* name : {"10 end.FLAC", "2 middle.ogg", "1 begin.wav", "cover.jpg", ".hidden.wav", "list.m3u",
                             "CD 2/a.mp3", "CD 10/a.mp3", "pictures/front.png"})
        folder_.Write(std::string("album/") + name, "");
    fs::create_directory_symlink(folder_.File("album"), folder_.File("album/CD 2/back"));
    EXPECT_EQ(Read({"album"}),
              "album/1 begin.wav\nalbum/2 middle.ogg\nalbum/10 end.FLAC\nalbum/CD 2/a.mp3\nalbum/CD 10/a.mp3\n");
    EXPECT_EQ(Read({"album/pictures", "album/1 begin.wav"}), "album/pictures\nalbum/1 begin.wav\n")
        << "a folder without music is told of when it is opened";
}

TEST_F(TrackListTest, AListNamesItsPiecesFromItsOwnFolder) {
    folder_.Write("music/one.wav", "");
    folder_.Write("music/deep/two.wav", "");
    folder_.Write("lists/a.m3u8",
                  "\xEF\xBB\xBF#EXTM3U\r\n# a word\r\n#EXTINF:12, Caf\xC3\xA9, live\r\n../music/one.wav\r\n\r\n"
                  "..\\music\\deep\\two.wav\r\nb.m3u\r\n" +
                      folder_.File("music/one.wav"));
    folder_.Write("lists/b.m3u", "#EXTINF:broken\n../music/deep\na.m3u8\nmissing.wav");
    EXPECT_EQ(Read({"lists/a.m3u8"}),
              "Caf\xC3\xA9, live: lists/../music/one.wav\nlists/../music/deep/two.wav\n"
              "lists/../music/deep/two.wav\nlists/missing.wav\nmusic/one.wav\n");
    ASSERT_EQ(ReadTracks({}).size(), 1u);
    EXPECT_EQ(ReadTracks({})[0].Path, "") << "the project's own piece";
}

TEST(Playlist, GoesRoundOnlyInALoopAndPassesOverWhatWasDropped) {
    const std::vector<Track> tracks = {{"a", ""}, {"b", ""}, {"c", ""}};
    Playlist line(tracks, false);
    EXPECT_EQ(line.First(), 0u);
    EXPECT_EQ(line.After(1), 2u);
    EXPECT_FALSE(line.After(2));
    EXPECT_EQ(line.Before(2), 1u);
    EXPECT_FALSE(line.Before(0));
    Playlist ring(tracks, true);
    EXPECT_EQ(ring.After(2), 0u);
    EXPECT_EQ(ring.Before(0), 2u);
    for (Playlist* list : {&line, &ring}) list->Drop(0);
    EXPECT_EQ(line.First(), 1u);
    EXPECT_FALSE(line.Before(1));
    EXPECT_EQ(ring.After(2), 1u);
    ring.Drop(2);
    EXPECT_EQ(ring.After(1), 1u) << "alone";
    ring.Drop(1);
    EXPECT_FALSE(ring.First());
    EXPECT_FALSE(ring.After(1));
}

TEST(Playlist, ShufflesAllOfThemBySeed) {
    std::vector<Track> tracks;
    for (int i = 0; i < 20; ++i) tracks.push_back({std::to_string(i), ""});
    const auto order = [&tracks](uint32_t seed) {
        Playlist list(tracks, false);
        list.Shuffle(seed);
        std::vector<std::string> paths;
        for (size_t place = 0; place < list.Size(); ++place) paths.push_back(list.At(place).Path);
        return paths;
    };
    const std::vector<std::string> shuffled = order(1);
    EXPECT_EQ(std::set<std::string>(shuffled.begin(), shuffled.end()).size(), tracks.size());
    EXPECT_EQ(order(1), shuffled);
    EXPECT_NE(order(2), shuffled);
}

class JukeboxTest : public testing::Test {
protected:
    std::string Song(const std::string& name, double seconds = 1.0, const char* title = nullptr) {
        const std::string path = folder_.File(name);
        EXPECT_TRUE(WriteSines(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 1, seconds));
        if (!title) return path;
        SF_INFO info = {};
        SNDFILE* const file = sf_open(path.c_str(), SFM_RDWR, &info);
        sf_set_string(file, SF_STR_TITLE, title);
        sf_set_string(file, SF_STR_ARTIST, "Somebody");
        sf_close(file);
        return path;
    }
    void Load(const std::vector<std::string>& files, bool loop = false) {
        jukebox_.emplace(files, PlayOrder{false, loop});
        playback_.emplace(*context_, jukebox_->OpenFirst(), OutputRequest{kSilentName, {}, false}, loop);
        Follow();
    }
    bool Follow() { return jukebox_->Follow(*playback_); }

    const TemporaryFolder folder_;
    const ComPtr<HostContext> context_ = MakeCom<HostContext>();
    std::optional<Jukebox> jukebox_;
    std::optional<Playback> playback_;
};

TEST_F(JukeboxTest, TellsOnceOfWhatCantBePlayedAndGoesOn) {
    const std::string bad = folder_.Write("bad.wav", "no music"), missing = folder_.File("missing.wav");
    testing::internal::CaptureStderr();
    Load({bad, Song("a.wav"), missing, Song("b.wav", 1.0, "Hymn")}, true);
    EXPECT_EQ(jukebox_->Heard().Title, "a.wav");
    EXPECT_TRUE(playback_->Pump().HasNext());
    for (const char* title : {"Somebody - Hymn", "a.wav", "Somebody - Hymn"}) {
        jukebox_->Step(1, *playback_);
        EXPECT_EQ(jukebox_->Heard().Title, title);
        EXPECT_FALSE(Follow()) << "it is heard at once";
    }
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 2) << told;

    Jukebox hopeless({bad, missing}, {});
    testing::internal::CaptureStderr();
    EXPECT_THROW(hopeless.OpenFirst(), PlayerError);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("bad.wav"), std::string::npos);
}

TEST_F(JukeboxTest, StaysAtTheEndsOfTheListAndTakesAnotherOne) {
    Load({Song("a.wav"), Song("b.wav")});
    jukebox_->Step(-1, *playback_);
    EXPECT_EQ(jukebox_->Heard().Title, "a.wav");
    jukebox_->Step(1, *playback_);
    jukebox_->Step(1, *playback_);
    EXPECT_EQ(jukebox_->Heard().Title, "b.wav");
    EXPECT_FALSE(Follow());
    EXPECT_FALSE(playback_->Pump().HasNext());

    testing::internal::CaptureStderr();
    EXPECT_FALSE(jukebox_->Replace({folder_.File("missing.wav")}, *playback_));
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(jukebox_->Heard().Title, "b.wav");
    EXPECT_TRUE(jukebox_->Replace({Song("c.wav"), Song("d.wav")}, *playback_));
    EXPECT_EQ(jukebox_->Heard().Title, "c.wav");
    Follow();
    EXPECT_TRUE(playback_->Pump().HasNext());
}

}  // namespace
}  // namespace tdkplay
