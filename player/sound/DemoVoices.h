// The instruments of the project's own piece.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace tdkplay {

inline constexpr double kDemoRate = 44100.0;  // samples a second

// White noise from a linear congruence, -1 to 1.
class Noise {
public:
    double Next() {
        state_ = state_ * 1664525u + 1013904223u;
        return static_cast<int32_t>(state_) / 2147483648.0;
    }

private:
    uint32_t state_ = 1;
};

// One sound of an instrument.
class Voice {
public:
    virtual ~Voice() = default;

    // Seconds from its beginning to its end.
    virtual double Length() const = 0;
    // Makes the samples from `t` seconds behind its beginning on: few at a time, since what changes slowly stands still
    // meanwhile, and in order, each one once.
    virtual void Fill(double t, std::span<double> samples) = 0;
    // Where it is at this time, from -1 (left) to 1 (right).
    virtual double Pan(double t) const = 0;
};

// Notes are numbered as in MIDI; `start` is the time in the piece, in seconds.
std::unique_ptr<Voice> MakeKick();
// The noise must outlive the sound, and nobody else may take from it meanwhile.
std::unique_ptr<Voice> MakeHat(double level, double pan, Noise& noise);
std::unique_ptr<Voice> MakeBass(double length, int note);
// Wanders slowly from side to side, around a place of its own. Two that are detuned against each other make a pad.
std::unique_ptr<Voice> MakePad(double start, double length, int note, double detune, double place);
std::unique_ptr<Voice> MakePluck(int note, double pan);

}  // namespace tdkplay
