// The whole program runs on the stepped clock and the memory display, with a registry of its own.
#include <gtest/gtest.h>
#include <tdkplatform.h>

#include <cstdlib>
#include <filesystem>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const auto folder = std::filesystem::temp_directory_path() / "tdkviz-staged-XXXXXX";
    std::string made = folder.string();
    if (!mkdtemp(made.data())) return 1;
    setenv("TDKVIZ_REGISTRY", (made + "/registry.db").c_str(), 1);
    TdkpUseSteppedClock();
    TdkpUseMemoryDisplay(1400, 900, 32);
    const int result = RUN_ALL_TESTS();
    std::filesystem::remove_all(made);
    return result;
}
