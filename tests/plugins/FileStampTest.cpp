#include "src/plugins/FileStamp.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "src/plugins/Md5.h"
#include "tests/support/TemporaryFolder.h"

namespace tdkviz {
namespace {

std::string Md5Text(const std::string& data) {
    std::string text;
    for (const uint8_t byte : ComputeMd5(data.data(), data.size())) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", byte);
        text += digits;
    }
    return text;
}

TEST(Md5, PublishedDigests) {
    EXPECT_EQ(Md5Text(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Md5Text("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Md5Text("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(Md5Text("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
    EXPECT_EQ(Md5Text(std::string(55, 'a')), "ef1772b6dff9a122358552954ad0df65");
    EXPECT_EQ(Md5Text(std::string(56, 'a')), "3b0c8ac703f828b04c6c197006d17218");
    EXPECT_EQ(Md5Text(std::string(64, 'a')), "014842d480b571495a4a0363793f7367");
}

class FileStampTest : public testing::Test {
protected:
    std::string Stamp() {
        char stamp[kChecksumSize];
        uint32_t size = sizeof stamp;
        EXPECT_TRUE(ComputeChecksum(path_.c_str(), stamp, &size));
        return stamp;
    }

    TemporaryFolder folder_;
    std::string path_ = folder_.Write("file.tkv", "four");
};

TEST_F(FileStampTest, ChangesWithSizeAndDate) {
    const std::string first = Stamp();
    EXPECT_EQ(first.size(), 32u);
    EXPECT_EQ(first.find_first_not_of("0123456789ABCDEF"), std::string::npos);
    std::ifstream file(path_);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "four");
    EXPECT_EQ(Stamp(), first) << "reading changes nothing";
    std::filesystem::last_write_time(path_, std::filesystem::last_write_time(path_) - std::chrono::hours(1));
    const std::string older = Stamp();
    EXPECT_NE(older, first);
    folder_.Write("file.tkv", "fiver");
    const std::string longer = Stamp();
    EXPECT_NE(longer, older);
}

TEST_F(FileStampTest, TellsTheRoomItNeeds) {
    char stamp[kChecksumSize] = "";
    uint32_t size = kChecksumSize - 1;
    EXPECT_FALSE(ComputeChecksum(path_.c_str(), stamp, &size));
    EXPECT_EQ(size, kChecksumSize);
    size = 100;
    EXPECT_FALSE(ComputeChecksum(path_.c_str(), nullptr, &size));
    EXPECT_EQ(size, kChecksumSize);
    size = 50;
    EXPECT_FALSE(ComputeChecksum(folder_.File("missing").c_str(), stamp, &size));
    EXPECT_EQ(size, 50u);
    EXPECT_STREQ(stamp, "");
}

}  // namespace
}  // namespace tdkviz
