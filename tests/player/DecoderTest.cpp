#include "player/sound/Decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <span>

#include "player/base/ExitCode.h"
#include "player/sound/DemoPiece.h"
#include "player/sound/DemoVoices.h"
#include "tests/player/TestFiles.h"

namespace tdkplay {
namespace {

std::vector<int16_t> ReadAll(Decoder& decoder, size_t chunk) {
    const size_t channels = decoder.Format().Channels;
    std::vector<int16_t> all;
    std::vector<int16_t> part(chunk * channels);
    while (const size_t frames = decoder.Read(part.data(), chunk))
        all.insert(all.end(), part.begin(), part.begin() + static_cast<ptrdiff_t>(frames * channels));
    return all;
}

// Amplitude of one frequency in one channel, 1 for full scale, over the middle half of the samples.
double Amplitude(const std::vector<int16_t>& samples, int channels, int channel, double frequency, int rate) {
    const size_t frames = samples.size() / static_cast<size_t>(channels);
    std::complex<double> sum = 0;
    for (size_t i = frames / 4; i < frames * 3 / 4; ++i)
        sum += samples[i * static_cast<size_t>(channels) + static_cast<size_t>(channel)] / 32768.0 *
               std::polar(1.0, -2.0 * M_PI * frequency * static_cast<double>(i) / rate);
    return 2.0 * std::abs(sum) / (static_cast<double>(frames) / 2.0);
}

TEST(Decoder, GivesTheSoundOfEachFormat) {
    struct Case {
        const char* Name;
        int Format;
        int Rate;
        int Channels;
    };
    const Case cases[] = {
        {"a.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 44100, 2},
        {"b.wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 48000, 1},
        {"c.wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 22050, 2},
        {"d.aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 96000, 2},
        {"e.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 44100, 2},
        {"f.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 44100, 2},
        {"g.opus", SF_FORMAT_OGG | SF_FORMAT_OPUS, 48000, 2},
        {"h.mp3", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 44100, 2},
    };
    const TemporaryFolder folder;
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        const std::string path = folder.File(test.Name);
        ASSERT_TRUE(WriteSines(path, test.Format, test.Rate, test.Channels, 1.0));
        const auto decoder = OpenDecoder(path);
        const PcmFormat expected = {static_cast<uint32_t>(test.Rate), static_cast<uint16_t>(test.Channels)};
        EXPECT_EQ(decoder->Format(), expected);
        EXPECT_NEAR(static_cast<double>(decoder->TotalFrames()), test.Rate, 0.06 * test.Rate);
        const std::vector<int16_t> samples = ReadAll(*decoder, 1000);
        EXPECT_NEAR(static_cast<double>(samples.size()), test.Rate * test.Channels, 0.06 * test.Rate * test.Channels);
        for (int channel = 0; channel < test.Channels; ++channel) {
            EXPECT_NEAR(Amplitude(samples, test.Channels, channel, 200.0 * (channel + 1), test.Rate), 0.5, 0.03);
            EXPECT_LT(Amplitude(samples, test.Channels, channel, 200.0 * (2 - channel), test.Rate), 0.03);
        }
    }
}

TEST(Decoder, MixesSurroundDownWithEachSideOnItsOwn) {
    const TemporaryFolder folder;
    const std::string path = folder.File("six.wav");
    ASSERT_TRUE(WriteSines(path, SF_FORMAT_WAV | SF_FORMAT_PCM_16, 48000, 6, 0.5));
    const auto decoder = OpenDecoder(path);
    ASSERT_EQ(decoder->Format().Channels, 2);
    const std::vector<int16_t> samples = ReadAll(*decoder, 777);
    const auto amplitude = [&](int side, int channel) {
        return Amplitude(samples, 2, side, 200.0 * (channel + 1), 48000);
    };
    for (int side = 0; side < 2; ++side) {
        SCOPED_TRACE(side);
        EXPECT_GT(amplitude(side, side), 0.15) << "front";
        EXPECT_LT(amplitude(side, 1 - side), 0.005) << "other front";
        EXPECT_NEAR(amplitude(side, 2), amplitude(side, side) * 0.7071, 0.005) << "centre";
        EXPECT_LT(amplitude(side, 3), 0.005) << "low frequency";
        EXPECT_NEAR(amplitude(side, 4 + side), amplitude(side, side) * 0.7071, 0.005) << "back";
    }
}

TEST(Decoder, GoesOnFromWhereItWasSentTo) {
    const TemporaryFolder folder;
    const std::string path = folder.File("a.flac");
    ASSERT_TRUE(WriteSines(path, SF_FORMAT_FLAC | SF_FORMAT_PCM_16, 44100, 2, 1.0));
    for (const std::string& source : {path, std::string()}) {
        SCOPED_TRACE(source.empty() ? "demo piece" : source);
        const std::vector<int16_t> all = ReadAll(*OpenDecoder(source), 1024);
        const auto decoder = OpenDecoder(source);
        for (const uint64_t frame :
             {uint64_t{12345}, uint64_t{0}, decoder->TotalFrames() - 10, decoder->TotalFrames()}) {
            ASSERT_TRUE(decoder->Seek(frame));
            const std::vector<int16_t> rest(all.begin() + static_cast<ptrdiff_t>(frame * 2), all.end());
            EXPECT_EQ(ReadAll(*decoder, 999), rest) << frame;
        }
    }
}

TEST(DemoPiece, IsTheSameStereoMusicEachTimeAndComesBackFromItsFile) {
    const std::vector<int16_t> piece = MakeDemoPiece();
    const TemporaryFolder folder;
    WriteDemoPiece(folder.File("demo.wav"));
    const auto decoder = OpenDecoder(folder.File("demo.wav"));
    EXPECT_EQ(decoder->Format(), kDemoFormat);
    EXPECT_EQ(ReadAll(*decoder, 4096), piece);
    EXPECT_THROW(WriteDemoPiece(folder.File("no/such/folder.wav")), PlayerError);
    const double seconds = static_cast<double>(piece.size()) / kDemoFormat.Channels / kDemoFormat.Rate;
    EXPECT_GT(seconds, 20.0);
    EXPECT_LT(seconds, 32.0);

    const auto [least, most] = std::minmax_element(piece.begin(), piece.end());
    EXPECT_TRUE(*least > -32767 && *most < 32767) << "nothing is clipped";
    EXPECT_GT(*most, 20000);
    for (size_t i = piece.size() - 20; i < piece.size(); ++i) EXPECT_LT(std::abs(piece[i]), 100) << "ends in silence";
    const size_t second = kDemoFormat.Rate * kDemoFormat.Channels;
    for (size_t begin = 0; begin + 3 * second <= piece.size(); begin += second) {
        double power = 0, difference = 0;
        for (size_t i = begin; i < begin + second; i += 2) {
            power += static_cast<double>(piece[i]) * piece[i];
            difference += std::abs(piece[i] - piece[i + 1]);
        }
        EXPECT_GT(std::sqrt(power / kDemoFormat.Rate), 700.0) << begin / second;
        EXPECT_GT(difference / kDemoFormat.Rate, 100.0) << "left and right differ in second " << begin / second;
    }
}

TEST(DemoPiece, SoundsAreTheSameInWhateverPiecesTheyAreMade) {
    struct Case {
        const char* Name;
        std::unique_ptr<Voice> (*Make)();
        double Tolerance;  // what changes slowly stands still within a piece
    };
    const Case cases[] = {
        {"kick", [] { return MakeKick(); }, 1e-7},
        {"bass", [] { return MakeBass(0.25, 33); }, 1e-7},
        {"pad", [] { return MakePad(20.0, 2.4, 57, 0.0022, 1.0); }, 1e-4},
        {"pluck", [] { return MakePluck(83, 0.5); }, 1e-6},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.Name);
        std::vector<double> whole(1000), pieces(1000);
        test.Make()->Fill(0.01, whole);
        const auto voice = test.Make();
        for (size_t at = 0, size = 1; at < pieces.size(); at += size, size = size % 100 + 37) {
            const std::span<double> rest = std::span(pieces).subspan(at);
            voice->Fill(0.01 + static_cast<double>(at) / kDemoRate, rest.first(std::min(size, rest.size())));
        }
        for (size_t i = 0; i < whole.size(); ++i) ASSERT_NEAR(pieces[i], whole[i], test.Tolerance) << i;
    }
}

}  // namespace
}  // namespace tdkplay
