#include "companions/qzcolor/Exports.h"

#include "companions/qzcolor/Conversion.h"
#include "companions/qzcolor/RowTable.h"

namespace {

constexpr int32_t kNoiseThreshold = 8;  // of 255; what Enhance takes for noise

int32_t EnhancePicture(void* pixels, int32_t width, int32_t height, int32_t pitch, int32_t threshold) {
    qzcolor::Image image = {static_cast<uint8_t*>(pixels), width, height, pitch, 0, 0, width, height};
    if (!image.Clip()) return S_OK;
    if (!qzcolor::IsSound(FormatRGB32, image)) return E_INVALIDARG;
    return qzcolor::ApplyAdjustments(image.Pixels(sizeof(uint32_t)), threshold) ? S_OK : E_OUTOFMEMORY;
}

template <typename Adjustments>
int32_t Store(const Adjustments* adjustments) {
    return adjustments && qzcolor::StoreAdjustments(*adjustments) ? S_OK : E_INVALIDARG;
}

}  // namespace

int32_t InitColorConverter() {
    qzcolor::BestRowTable();
    return S_OK;
}

ColorConverterFunction GetColorConverter(uint32_t from, uint32_t to) {
    return qzcolor::FindConverter(from, to);
}

uint32_t ScanAllCompatibleColorFormats(uint32_t from, uint32_t* formats, uint32_t capacity) {
    return qzcolor::FindTargets(from, true, formats, capacity);
}

int32_t SetColorAdjustments(const qzcolor::ColorAdjustments* adjustments) {
    return Store(adjustments);
}

int32_t GetColorAdjustments(qzcolor::ColorAdjustments* adjustments) {
    if (!adjustments) return E_INVALIDARG;
    *adjustments = qzcolor::CurrentAdjustments().Colors;
    return S_OK;
}

int32_t SetSharpnessAdjustments(const qzcolor::SharpnessAdjustments* adjustments) {
    return Store(adjustments);
}

int32_t GetSharpnessAdjustments(qzcolor::SharpnessAdjustments* adjustments) {
    if (!adjustments) return E_INVALIDARG;
    *adjustments = qzcolor::CurrentAdjustments().Sharpness;
    return S_OK;
}

int32_t Enhance(void* pixels, int32_t width, int32_t height, int32_t pitch) {
    return EnhancePicture(pixels, width, height, pitch, kNoiseThreshold);
}

int32_t EnhanceUniform(void* pixels, int32_t width, int32_t height, int32_t pitch) {
    return EnhancePicture(pixels, width, height, pitch, 0);
}
