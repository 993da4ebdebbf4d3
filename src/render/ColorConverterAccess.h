// ColorConverterAccess: borrows converter functions from a colour converter library.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include <tdkviz/color_converter.h>
#include <tdkviz/com.h>

namespace tdkviz {

class DLLAccess;

// Looks for "qzcolor.dll", then "qzltcolor.dll" in the folder of codecs, and holds the library open as
// long as the object lives. An object without a library is a normal one: it finds no converters.
// Made and used on the thread of its window. Every failure is silent.
class ColorConverterAccess {
public:
    static constexpr size_t kExportCount = 19;

    ColorConverterAccess();
    ~ColorConverterAccess();
    ColorConverterAccess(const ColorConverterAccess&) = delete;
    ColorConverterAccess& operator=(const ColorConverterAccess&) = delete;

    // Lets the library set itself up. Call once, right after construction.
    void Initialize();
    // A function from one format id to another (Formats.h), equal ids for scaling alone; null if there is
    // none. Good as long as this object lives.
    ColorConverterFunction FindConverter(uint32_t from, uint32_t to) const;

    HRESULT GetStatus() const { return Status; }  // E_FAIL when no usable library was found
    bool IsLightLibrary() const { return IsLight; }
    const char* GetLibraryFile() const { return LibraryFile; }  // the file name tried last

private:
    static constexpr size_t kLibraryFileSize = 256;

    bool OpenLibrary(const char* file);
    bool ResolveExports();

    HRESULT Status = S_OK;
    std::unique_ptr<DLLAccess> Library;
    char LibraryFile[kLibraryFileSize] = {};
    std::array<void*, kExportCount> Entries = {};  // in the order of the table of exports
    bool IsLight = false;
};

}  // namespace tdkviz
