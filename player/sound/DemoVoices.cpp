#include "player/sound/DemoVoices.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace tdkplay {
namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;
constexpr double kSample = 1.0 / kDemoRate;  // seconds
constexpr double kA4 = 440.0;
constexpr int kA4Note = 69;

double Frequency(int note) {
    return kA4 * std::pow(2.0, (note - kA4Note) / 12.0);
}

// Rises at `speed`, in 1 / seconds, and falls to silence at `length`.
double Swell(double t, double speed, double length) {
    const double rise = std::min(1.0, t * speed);
    const double fall = std::clamp((length - t) * speed, 0.0, 1.0);
    return rise * fall;
}

// A sine and its cosine, turned on from sample to sample: much less work than asking for each.
class Tone {
public:
    Tone(double frequency, double t)
        : sine_(std::sin(kTwoPi * frequency * t)),
          cosine_(std::cos(kTwoPi * frequency * t)),
          stepSine_(std::sin(kTwoPi * frequency * kSample)),
          stepCosine_(std::cos(kTwoPi * frequency * kSample)) {}

    double Sine() const { return sine_; }
    double Cosine() const { return cosine_; }
    // Of two and three times the frequency.
    double Second() const { return 2.0 * sine_ * cosine_; }
    double Third() const { return sine_ * (3.0 - 4.0 * sine_ * sine_); }
    void Turn() {
        const double sine = sine_ * stepCosine_ + cosine_ * stepSine_;
        cosine_ = cosine_ * stepCosine_ - sine_ * stepSine_;
        sine_ = sine;
    }

private:
    double sine_, cosine_;
    const double stepSine_, stepCosine_;
};

// exp(-rate * t), likewise.
class Decay {
public:
    Decay(double rate, double t) : now_(std::exp(-rate * t)), step_(std::exp(-rate * kSample)) {}
    double Next() { return std::exchange(now_, now_ * step_); }

private:
    double now_;
    const double step_;
};

class Kick final : public Voice {
public:
    double Length() const override { return 0.4; }
    double Pan(double) const override { return 0.0; }
    void Fill(double t, std::span<double> samples) override {
        Decay level(9.0, t);
        Decay pitch(28.0, t);
        for (double& sample : samples) {
            const double phase = 48.0 * t + 90.0 / 28.0 * (1.0 - pitch.Next());  // the pitch falls to 48 Hz
            sample = 0.85 * level.Next() * std::sin(kTwoPi * phase);
            t += kSample;
        }
    }
};

class Hat final : public Voice {
public:
    Hat(double level, double pan, Noise& noise) : level_(level), pan_(pan), noise_(noise) {}

    double Length() const override { return 0.1; }
    double Pan(double) const override { return pan_; }
    void Fill(double t, std::span<double> samples) override {
        Decay level(55.0, t);
        for (double& sample : samples) {
            const double white = noise_.Next();
            sample = level_ * level.Next() * (white - std::exchange(last_, white));
        }
    }

private:
    const double level_, pan_;
    Noise& noise_;
    double last_ = 0.0;
};

class Bass final : public Voice {
public:
    Bass(double length, int note) : length_(length), frequency_(Frequency(note)) {}

    double Length() const override { return length_; }
    double Pan(double) const override { return 0.0; }
    void Fill(double t, std::span<double> samples) override {
        Tone tone(frequency_, t);
        Decay second(6.0, t);
        Decay third(9.0, t);
        for (double& sample : samples) {
            const double sum = tone.Sine() + 0.5 * tone.Second() * second.Next() + 0.25 * tone.Third() * third.Next();
            sample = 0.34 * sum * Swell(t, 1.0 / 0.012, length_);
            tone.Turn();
            t += kSample;
        }
    }

private:
    const double length_, frequency_;
};

class Pad final : public Voice {
public:
    Pad(double start, double length, int note, double detune, double place)
        : start_(start), length_(length), frequency_(Frequency(note) * (1.0 + detune)), place_(place) {}

    double Length() const override { return length_; }
    double Pan(double t) const override { return 0.8 * std::sin(kTwoPi * 0.13 * (start_ + t) + place_); }
    void Fill(double t, std::span<double> samples) override {
        Tone tone(frequency_, t);
        const double bright = 0.35 + 0.25 * std::sin(kTwoPi * 0.11 * (start_ + t));
        for (double& sample : samples) {
            const double sum = tone.Sine() + bright * (0.5 * tone.Second() + 0.3 * tone.Third());
            sample = 0.045 * sum * Swell(t, 1.0 / 0.25, length_);
            tone.Turn();
            t += kSample;
        }
    }

private:
    const double start_, length_, frequency_, place_;
};

class Pluck final : public Voice {
public:
    Pluck(int note, double pan) : frequency_(Frequency(note)), pan_(pan) {}

    double Length() const override { return 0.6; }
    double Pan(double) const override { return pan_; }
    void Fill(double t, std::span<double> samples) override {
        Tone tone(frequency_, t);
        Decay level(7.0, t);
        Decay brightness(12.0, t);
        double phase = std::remainder(kTwoPi * frequency_ * t, kTwoPi);
        for (double& sample : samples) {
            // A float has more digits than the sample that this becomes.
            const auto bent = static_cast<float>(phase + 1.6 * brightness.Next() * tone.Second());
            sample = 0.16 * level.Next() * std::min(1.0, t / 0.002) * std::sin(bent);
            tone.Turn();
            phase += kTwoPi * frequency_ * kSample;
            t += kSample;
        }
    }

private:
    const double frequency_, pan_;
};

}  // namespace

std::unique_ptr<Voice> MakeKick() {
    return std::make_unique<Kick>();
}

std::unique_ptr<Voice> MakeHat(double level, double pan, Noise& noise) {
    return std::make_unique<Hat>(level, pan, noise);
}

std::unique_ptr<Voice> MakeBass(double length, int note) {
    return std::make_unique<Bass>(length, note);
}

std::unique_ptr<Voice> MakePad(double start, double length, int note, double detune, double place) {
    return std::make_unique<Pad>(start, length, note, detune, place);
}

std::unique_ptr<Voice> MakePluck(int note, double pan) {
    return std::make_unique<Pluck>(note, pan);
}

}  // namespace tdkplay
