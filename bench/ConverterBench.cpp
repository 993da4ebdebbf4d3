// The colour converter beside libyuv called directly, on the same buffers.
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <libyuv.h>

#include "bench/Goals.h"
#include "companions/qzcolor/Conversion.h"
#include "companions/qzcolor/RowTable.h"

namespace {

// Without wide vectors neither side has them.
void UseVectors(bool wide) {
    const qzcolor::RowTable* widest = qzcolor::Avx2RowTable();
    qzcolor::UseRowTable(wide && widest ? *widest : qzcolor::PlainRowTable());
    const int narrow = ~(libyuv::kCpuHasAVX2 | libyuv::kCpuHasAVX512BW | libyuv::kCpuHasAVX512VL);
    libyuv::MaskCpuFlags(wide ? -1 : narrow);
}

struct ConverterCase {
    const char* name;
    uint32_t format;
    int32_t bytesPerPixel;
    int32_t width, height;
    bool interpolated;
    double anyLimit = 1.25, wideLimit = 1.25;  // of libyuv's time
};
constexpr int32_t kFrameWidth = 640, kFrameHeight = 480;
constexpr int kFramePitch = kFrameWidth * 4;
constexpr ConverterCase kCases[] = {
    {"Double32", FormatRGB32, 4, 1280, 960, false, 1.3, 0.8},
    {"Double565", FormatRGB565, 2, 1280, 960, false, 0.3, 0.15},
    {"Scale32", FormatRGB32, 4, 1000, 700, true},
    {"Scale565", FormatRGB565, 2, 1000, 700, true},
    {"Scale24", FormatRGB24, 3, 1000, 700, true},
    {"Triple565", FormatRGB565, 2, 1920, 1440, true},
    {"Shrink32", FormatRGB32, 4, 500, 400, true},
    {"Equal565", FormatRGB565, 2, 640, 480, false},
    {"Equal555", FormatRGB555, 2, 640, 480, false},
    {"Equal24", FormatRGB24, 3, 640, 480, false},
    {"EqualBGR32", FormatBGR32, 4, 640, 480, false},
};

void PackWithLibyuv(const ConverterCase& c, const uint8_t* words, uint8_t* to) {
    const int pitch = c.width * 4, toPitch = c.width * c.bytesPerPixel;
    switch (c.format) {
        case FormatRGB565:
            libyuv::ARGBToRGB565(words, pitch, to, toPitch, c.width, c.height);
            break;
        case FormatRGB555:
            libyuv::ARGBToARGB1555(words, pitch, to, toPitch, c.width, c.height);
            break;
        case FormatRGB24:
            libyuv::ARGBToRGB24(words, pitch, to, toPitch, c.width, c.height);
            break;
        case FormatBGR32:
            libyuv::ARGBToABGR(words, pitch, to, toPitch, c.width, c.height);
            break;
        default:
            break;
    }
}

// One picture on two roads.
class Roads {
public:
    explicit Roads(const ConverterCase& c)
        : case_(c),
          convert_(qzcolor::FindConverter(FormatRGB32, c.format)),
          frame_(size_t{kFramePitch} * kFrameHeight),
          words_(Pixels() * 4),
          display_(Pixels() * static_cast<size_t>(c.bytesPerPixel)) {
        uint32_t noise = 1;
        for (uint8_t& byte : frame_) byte = static_cast<uint8_t>((noise = noise * 1664525 + 1013904223) >> 24);
    }

    void Ours() {
        const int32_t width = case_.width, height = case_.height;
        convert_(display_.data(), width, height, -width * case_.bytesPerPixel, 0, 0, width, height, frame_.data(),
                 kFrameWidth, kFrameHeight, -kFramePitch, 0, 0, kFrameWidth, kFrameHeight);
        benchmark::ClobberMemory();
    }
    void Libyuv() {
        const bool scales = case_.width != kFrameWidth;
        uint8_t* scaled = case_.format == FormatRGB32 ? display_.data() : words_.data();
        if (scales) {
            libyuv::ARGBScale(frame_.data(), kFramePitch, kFrameWidth, kFrameHeight, scaled, case_.width * 4,
                              case_.width, case_.height,
                              case_.interpolated ? libyuv::kFilterBilinear : libyuv::kFilterNone);
        }
        PackWithLibyuv(case_, scales ? scaled : frame_.data(), display_.data());
        benchmark::ClobberMemory();
    }

private:
    size_t Pixels() const { return static_cast<size_t>(case_.width) * static_cast<size_t>(case_.height); }

    const ConverterCase& case_;
    const ColorConverterFunction convert_;
    std::vector<uint8_t> frame_, words_, display_;
};

const bool kRegistered = [] {
    for (const ConverterCase& c : kCases) {
        const auto bench = [&c](void (Roads::*road)()) {
            return [&c, road](benchmark::State& state) {
                Roads roads(c);
                for (auto _ : state) (roads.*road)();
            };
        };
        const std::string name = std::string("Converter/") + c.name;
        benchmark::RegisterBenchmark((name + "/Ours").c_str(), bench(&Roads::Ours))->Unit(benchmark::kMicrosecond);
        benchmark::RegisterBenchmark((name + "/Libyuv").c_str(), bench(&Roads::Libyuv))->Unit(benchmark::kMicrosecond);
    }
    return true;
}();

}  // namespace

void bench::AddConverterGoals() {
    for (const ConverterCase& c : kCases) {
        const char* peer = c.width == kFrameWidth ? "libyuv" : c.interpolated ? "libyuv, bilinear" : "libyuv, nearest";
        AddGoal({std::string("Converter, ") + c.name, peer, false, c.anyLimit, c.wideLimit, [&c](const Trial& trial) {
                     UseVectors(trial.set >= tdkviz::InstructionSet::kVector256);
                     Roads roads(c);
                     const double ratio = Contest([&] { roads.Ours(); }, [&] { roads.Libyuv(); }, trial.seconds);
                     UseVectors(true);
                     return ratio;
                 }});
    }
}
