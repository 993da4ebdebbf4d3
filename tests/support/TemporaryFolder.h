// A folder of the test's own, and the registry in such a folder.
#pragma once

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string pattern = (parent / "tdkvizXXXXXX").string();
        path_ = mkdtemp(pattern.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return path_; }
    std::string File(const std::string& name) const { return (path_ / name).string(); }
    // Makes the file, and the folders before it.
    std::string Write(const std::string& name, const std::string& contents) const {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream(path_ / name, std::ios::binary) << contents;
        return File(name);
    }

private:
    std::filesystem::path path_;
};

// In memory where there is such a place: for what writes so often that a disk would be waited for.
inline std::filesystem::path FolderInMemory() {
    constexpr const char* kMemory = "/dev/shm";
    return access(kMemory, W_OK | X_OK) == 0 ? std::filesystem::path(kMemory) : std::filesystem::temp_directory_path();
}

// Before the first use of the registry: it is read once. Includes of this header in one program share it.
inline const TemporaryFolder& TestRegistryFolder() {
    static const TemporaryFolder folder;
    return folder;
}
inline const bool kRegistryIsTheTests =
    setenv("TDKVIZ_REGISTRY", TestRegistryFolder().File("registry.db").c_str(), 1) == 0;

// Where the build puts the libraries that tests load, beside the folder of the test program.
inline std::string TestLibrary(const std::string& name) {
    return (std::filesystem::canonical("/proc/self/exe").parent_path().parent_path() / "testplugins" / name).string();
}
