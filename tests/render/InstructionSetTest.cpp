// Every instruction set gives what the scalar pass gives, and none looks or writes beyond the frames.
#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include "src/render/effects/PassTable.h"
#include "tests/support/GuardedMemory.h"

namespace tdkviz::test {
namespace {

class Records {
public:
    int32_t Between(int32_t low, int32_t high) { return std::uniform_int_distribution<int32_t>(low, high)(random_); }
    bool OneIn(int32_t count) { return Between(1, count) == 1; }
    uint32_t Word() { return static_cast<uint32_t>(random_()); }

    int32_t Size() { return OneIn(3) ? Between(1, 20) : Between(3, OneIn(8) ? 210 : 70); }
    // What a user sets, what the table for drifts ends at, or anything.
    int32_t Value(int32_t limit) {
        constexpr int32_t kSpecial[] = {0, 0, 63, 64, 65, -63, -64, -65, 255, 256, 257, -256, INT32_MAX, INT32_MIN};
        if (!OneIn(6)) return Between(-limit, limit);
        return kSpecial[static_cast<size_t>(Between(0, std::size(kSpecial) - 1))];
    }
    EffectPass Pass() {
        EffectPass pass = {};
        pass.width = Size();
        pass.height = Size();
        pass.bytesPerPixel = 4;
        pass.sourcePitch = 4 * (pass.width + (OneIn(3) ? Between(0, 9) : 0));
        pass.zoomX = WrapMul(Value(40), kOffsetUnit);
        pass.zoomY = OneIn(2) ? pass.zoomX : WrapMul(Value(40), kOffsetUnit);
        pass.rotate = OneIn(3) ? 0 : WrapMul(Value(40), kOffsetUnit);
        pass.slideX = WrapMul(Value(5), kOffsetUnit);
        pass.slideY = WrapMul(Value(5), kOffsetUnit);
        pass.jitterX = Between(0, 255);
        pass.jitterY = Between(0, 255);
        pass.clamp = OneIn(2);
        pass.kernel = Between(0, kLastKernel);
        pass.fadeColor = OneIn(2) ? 0 : Word();
        pass.fade = OneIn(4) ? 0 : OneIn(8) ? Value(300) : Between(1, 256);
        return pass;
    }

private:
    std::mt19937 random_{20261123};
};

std::string Describe(const EffectPass& pass) {
    testing::Message text;
    text << pass.width << "x" << pass.height << " pitch " << pass.sourcePitch << " zoom " << pass.zoomX / 256 << ","
         << pass.zoomY / 256 << " rotate " << pass.rotate / 256 << " slide " << pass.slideX / 256 << ","
         << pass.slideY / 256 << " jitter " << pass.jitterX << "," << pass.jitterY << " clamp " << pass.clamp
         << " kernel " << pass.kernel << " fade " << pass.fade << " to " << pass.fadeColor;
    return text.GetString();
}

TEST(InstructionSetTest, EachGivesWhatTheScalarPassGives) {
    constexpr int kRecords = 30000;
    constexpr size_t kLargest = 4 * 220 * 210;
    constexpr const char* kNames[] = {"scalar", "128", "256", "512"};
    GuardedMemory sourceMemory(kLargest), wantedMemory(kLargest), foundMemory(kLargest);
    Records records;
    int served[std::size(kNames)] = {};
    for (int record = 0; record < kRecords; ++record) {
        EffectPass pass = records.Pass();
        const size_t sourceSize = static_cast<size_t>(pass.sourcePitch) * static_cast<size_t>(pass.height);
        const size_t size = static_cast<size_t>(4 * pass.width * pass.height);
        const bool atEnd = records.OneIn(2);
        uint8_t* source = sourceMemory.Block(sourceSize, atEnd);
        for (size_t at = 0; at + 4 <= sourceSize; at += 4) {
            const uint32_t pixel = records.Word() | (records.OneIn(4) ? 0xFFFFFFFF : 0);
            std::memcpy(source + at, &pixel, sizeof pixel);
        }
        pass.source = source;
        pass.destination = wantedMemory.Block(size, atEnd);
        const EffectPassFunction scalar = ChoosePass(pass, InstructionSet::kScalar);
        scalar(pass);
        const uint8_t* wanted = pass.destination;
        for (int set = 1; set <= static_cast<int>(BestInstructionSet()); ++set) {
            pass.destination = foundMemory.Block(size, atEnd);
            std::memset(pass.destination, 0xA5, size);
            const EffectPassFunction function = ChoosePass(pass, static_cast<InstructionSet>(set));
            if (function != scalar) ++served[set];
            function(pass);
            const auto differs = std::mismatch(wanted, wanted + size, pass.destination);
            ASSERT_EQ(differs.first, wanted + size) << kNames[set] << ", record " << record << ", pixel "
                                                    << (differs.first - wanted) / 4 << ": " << Describe(pass);
        }
    }
    for (int set = 1; set <= static_cast<int>(BestInstructionSet()); ++set) {
        EXPECT_GT(served[set], kRecords / 3) << kNames[set] << " hardly had its turn";
    }
}

}  // namespace
}  // namespace tdkviz::test
