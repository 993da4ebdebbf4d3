#include "player/list/Jukebox.h"

#include <filesystem>
#include <random>
#include <utility>

#include "player/base/ExitCode.h"

namespace tdkplay {
namespace {

constexpr double kRestartSeconds = 3.0;

Playlist MakeList(const std::vector<std::string>& files, const PlayOrder& order) {
    Playlist list(ReadTracks(files), order.Loop);
    if (order.Shuffle) list.Shuffle(std::random_device()());
    return list;
}

}  // namespace

Jukebox::Jukebox(const std::vector<std::string>& files, const PlayOrder& order)
    : order_(order), list_(MakeList(files, order)) {}

// A file has the title that its list gives it, else its own, else its name.
std::unique_ptr<Decoder> Jukebox::OpenAt(size_t place) {
    const Track& track = list_.At(place);
    std::unique_ptr<Decoder> decoder = OpenDecoder(track.Path);
    if (track.Title.empty()) list_.SetTitle(place, decoder->Title());
    if (track.Title.empty()) list_.SetTitle(place, std::filesystem::path(track.Path).filename().string());
    given_.push_back(place);
    return decoder;
}

std::unique_ptr<Decoder> Jukebox::OpenFirst() {
    for (;;) {
        const size_t place = list_.First().value_or(0);
        try {
            return OpenAt(place);
        } catch (const PlayerError& error) {
            list_.Drop(place);
            if (!list_.First()) throw;
            Warn(error);
        }
    }
}

Source Jukebox::Open(std::optional<size_t> place, int direction) {
    for (; place; place = Beside(*place, direction)) {
        try {
            std::unique_ptr<Decoder> decoder = OpenAt(*place);
            return {std::move(decoder), given_.size() - 1};
        } catch (const PlayerError& error) {
            list_.Drop(*place);
            Warn(error);
        }
    }
    return {};
}

std::optional<size_t> Jukebox::Beside(size_t place, int direction) const {
    return direction > 0 ? list_.After(place) : list_.Before(place);
}

void Jukebox::Begin(Source source, Playback& sound) {
    heard_ = source.Piece;
    sound.Begin(std::move(source));
}

bool Jukebox::Replace(const std::vector<std::string>& files, Playback& sound) {
    Playlist former = std::exchange(list_, MakeList(files, order_));
    Source first = Open(list_.First(), 1);
    if (!first.Audio) {
        list_ = std::move(former);
        return false;
    }
    Begin(std::move(first), sound);
    return true;
}

void Jukebox::Step(int direction, Playback& sound) {
    const HeardPlace heard = sound.Pump().Where();
    if (direction < 0 && heard.Position > kRestartSeconds) {
        if (!heard.IsLeaving()) return sound.Seek(0.0);
        // The next one goes out already, and a seek would be in that.
        if (Source again = Open(given_[heard_], 1); again.Audio) Begin(std::move(again), sound);
        return;
    }
    Source source = Open(Beside(given_[heard_], direction), direction);
    if (source.Audio) return Begin(std::move(source), sound);
    if (direction < 0) sound.Seek(0.0);
}

bool Jukebox::Follow(Playback& sound) {
    Supply(sound);
    const size_t before = std::exchange(heard_, sound.Pump().Where().Piece);
    return heard_ != before;
}

// A piece that is alone in its loop is the pump's to repeat.
void Jukebox::Supply(Playback& sound) {
    if (sound.Pump().HasNext()) return;
    const size_t last = given_.back();
    const std::optional<size_t> next = list_.After(last);
    Source source;
    if (next && *next != last) source = Open(next, 1);
    sound.Pump().SetRepeats(order_.Loop && !source.Audio);
    if (source.Audio) sound.SetNext(std::move(source));
}

// The audio thread may take what was supplied before GoOn does.
bool Jukebox::OnEnd(Playback& sound) {
    Supply(sound);
    return !sound.Pump().HasEnded() || sound.GoOn() || !sound.Pump().HasEnded();
}

}  // namespace tdkplay
