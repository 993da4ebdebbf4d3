// Which piece is heard, and where in it: what was delivered, from the oldest stretch that may still be heard to the
// one that goes out now. Places on the timeline are counted in sample frames that were delivered.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>

namespace tdkplay {

class Timeline {
public:
    struct Stretch {
        uint64_t Begins = 0;  // on the timeline
        uint64_t From = 0;    // in the piece
        size_t Piece = 0;     // the caller's number
        uint64_t Length = 0;  // of the piece; 0: unknown
    };

    // From its beginning on, this stretch follows those before it.
    void Add(const Stretch& stretch) { stretches_.push_back(stretch); }
    // What was delivered before isn't heard any more.
    void Restart(const Stretch& stretch) { stretches_ = {stretch}; }
    // Forgets what lies behind the one that is heard there, which is given. A place before the first counts as it.
    const Stretch& Reach(uint64_t heard);
    const Stretch& Newest() const { return stretches_.back(); }
    // The one behind the oldest; null if nothing follows yet.
    const Stretch* Following() const { return stretches_.size() > 1 ? &stretches_[1] : nullptr; }

private:
    std::deque<Stretch> stretches_ = {Stretch()};
};

inline const Timeline::Stretch& Timeline::Reach(uint64_t heard) {
    while (stretches_.size() > 1 && stretches_[1].Begins <= heard) stretches_.pop_front();
    return stretches_.front();
}

}  // namespace tdkplay
