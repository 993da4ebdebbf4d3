#include "src/render/ColorConverterAccess.h"

#include <cstring>
#include <string_view>

#include "src/support/DLLAccess.h"
#include "src/support/DLLAccessPath.h"
#include "src/support/NQString.h"

namespace tdkviz {

namespace {

constexpr char kFullLibrary[] = "qzcolor.dll";
constexpr char kLightLibrary[] = "qzltcolor.dll";
constexpr char kCodecsFolder[] = "Codecs";

enum class Needed : uint8_t { No, ByFull, ByBoth };

struct Export {
    const char* Name;
    Needed By;
};

// In the order in which they are looked up.
constexpr Export kExports[ColorConverterAccess::kExportCount] = {
    {"GetCVColorGUID", Needed::No},
    {"InitColorConverter", Needed::ByBoth},
    {"SetColorAdjustments", Needed::ByBoth},
    {"GetColorAdjustments", Needed::ByBoth},
    {"SuggestRGB8Palette", Needed::ByFull},
    {"SetRGB8Palette", Needed::ByFull},
    {"SetSharpnessAdjustments", Needed::ByBoth},
    {"GetSharpnessAdjustments", Needed::ByBoth},
    {"ConvertRGBtoYUV", Needed::ByFull},
    {"ConvertYUVtoRGB", Needed::ByFull},
    {"Enhance", Needed::ByBoth},
    {"EnhanceUniform", Needed::ByBoth},
    {"ConvertRGB24toXRGB", Needed::No},
    {"ScanCompatibleColorFormats", Needed::No},
    {"ScanAllCompatibleColorFormats", Needed::ByBoth},
    {"GetColorConverter", Needed::ByBoth},
    {"GetColorConverter2", Needed::No},
    {"I420andYUVA", Needed::No},
    {"I420andI420toI420", Needed::No},
};

constexpr size_t IndexOf(std::string_view name) {
    size_t index = 0;
    while (name != kExports[index].Name) ++index;
    return index;
}
constexpr size_t kInitColorConverter = IndexOf("InitColorConverter");
constexpr size_t kGetColorConverter = IndexOf("GetColorConverter");

// The folder of codecs; by default the one of that name among the plug-ins.
bool HasCodecsFolder() {
    DLLAccessPath* table = GetDLLAccessPath();
    if (!table->CopyPath(DLLKind::Codecs).IsEmpty()) return true;
    const CNQString plugins = table->CopyPath(DLLKind::Plugins);
    if (plugins.IsEmpty()) return false;
    table->SetPath(DLLKind::Codecs, (plugins + kCodecsFolder).GetText());
    return true;
}

}  // namespace

ColorConverterAccess::ColorConverterAccess() {
    if (!HasCodecsFolder()) return;
    Library = std::make_unique<DLLAccess>();
    bool open = OpenLibrary(kFullLibrary);
    if (!open) {
        open = OpenLibrary(kLightLibrary);
        IsLight = open;
    }
    if (open && ResolveExports()) return;
    Entries.fill(nullptr);
    IsLight = false;
    Library.reset();
    Status = E_FAIL;
}

ColorConverterAccess::~ColorConverterAccess() = default;

bool ColorConverterAccess::OpenLibrary(const char* file) {
    std::strncpy(LibraryFile, file, kLibraryFileSize - 1);
    return Library->Open(file, DLLKind::Codecs) == kDLLNoError;
}

bool ColorConverterAccess::ResolveExports() {
    bool complete = true;
    for (size_t i = 0; i < kExportCount; ++i) {
        Entries[i] = Library->GetSymbol(kExports[i].Name);
        const bool needed = kExports[i].By == Needed::ByBoth || (kExports[i].By == Needed::ByFull && !IsLight);
        if (needed && !Entries[i]) complete = false;
    }
    return complete;
}

void ColorConverterAccess::Initialize() {
    if (const auto initialize = reinterpret_cast<InitColorConverterFunction>(Entries[kInitColorConverter]))
        initialize();
}

ColorConverterFunction ColorConverterAccess::FindConverter(uint32_t from, uint32_t to) const {
    const auto get = reinterpret_cast<GetColorConverterFunction>(Entries[kGetColorConverter]);
    return get ? get(from, to) : nullptr;
}

}  // namespace tdkviz
