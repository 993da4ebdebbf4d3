// The exports and their signatures. The light library, qzltcolor, has those of the first part only.
//
// All of them may be called on any thread. Numbers are format ids (<tdkviz/color_converter.h>). Results are S_OK,
// E_INVALIDARG for arguments that make no sense, with nothing done, and E_OUTOFMEMORY, unless told otherwise.
// A pitch is as in ColorConverterFunction. Pointers are [borrowed].
#pragma once

#include <tdkviz/color_converter.h>
#include <tdkviz/com.h>

#include "companions/qzcolor/Adjustments.h"
#include "companions/qzcolor/Palette.h"

// ---- Both libraries

// Asks the processor what it has, which the first conversion does otherwise.
TDKVIZ_EXPORT int32_t InitColorConverter();
// Null if there is no such converter.
TDKVIZ_EXPORT ColorConverterFunction GetColorConverter(uint32_t from, uint32_t to);
// All formats into which there is a converter from this one: stores at most `capacity` of them, gives how many
// there are.
TDKVIZ_EXPORT uint32_t ScanAllCompatibleColorFormats(uint32_t from, uint32_t* formats, uint32_t capacity);

// What Enhance and EnhanceUniform do; conversions leave colours as they are. Neutral at first.
TDKVIZ_EXPORT int32_t SetColorAdjustments(const qzcolor::ColorAdjustments* adjustments);
TDKVIZ_EXPORT int32_t GetColorAdjustments(qzcolor::ColorAdjustments* adjustments);
TDKVIZ_EXPORT int32_t SetSharpnessAdjustments(const qzcolor::SharpnessAdjustments* adjustments);
TDKVIZ_EXPORT int32_t GetSharpnessAdjustments(qzcolor::SharpnessAdjustments* adjustments);
// Adjusts an RGB32 picture where it stands. Enhance sharpens edges only, EnhanceUniform everything.
TDKVIZ_EXPORT int32_t Enhance(void* pixels, int32_t width, int32_t height, int32_t pitch);
TDKVIZ_EXPORT int32_t EnhanceUniform(void* pixels, int32_t width, int32_t height, int32_t pitch);

// ---- The full library alone

// The library's own id.
TDKVIZ_EXPORT int32_t GetCVColorGUID(GUID* id);
// As GetColorConverter, with a result code: E_NOTIMPL and null if there is no such converter.
TDKVIZ_EXPORT int32_t GetColorConverter2(uint32_t from, uint32_t to, ColorConverterFunction* converter);
// As ScanAllCompatibleColorFormats, without the YUV formats: the colours stay what they are.
TDKVIZ_EXPORT uint32_t ScanCompatibleColorFormats(uint32_t from, uint32_t* formats, uint32_t capacity);

// Stores a palette that serves any picture, a cube of six levels of each colour, in at most `capacity` entries and
// gives how many it has.
TDKVIZ_EXPORT uint32_t SuggestRGB8Palette(qzcolor::PaletteEntry* entries, uint32_t capacity);
// The palette of RGB8 pictures; with one there are converters into that format. 1 to 256 entries.
TDKVIZ_EXPORT int32_t SetRGB8Palette(const qzcolor::PaletteEntry* entries, uint32_t count);

// One colour, 0x00RRGGBB to 0x00YYUUVV and back (BT.601, luma from 16 to 235).
TDKVIZ_EXPORT uint32_t ConvertRGBtoYUV(uint32_t color);
TDKVIZ_EXPORT uint32_t ConvertYUVtoRGB(uint32_t color);
// An RGB24 picture to an RGB32 one of the same size.
TDKVIZ_EXPORT int32_t ConvertRGB24toXRGB(void* words, int32_t wordPitch, const void* triples, int32_t triplePitch,
                                         int32_t width, int32_t height);

// Whole pictures of the same even size, without padding. The first lays a YUVA picture over an I420 one by its
// alpha; the second mixes two, with `weight` 0 to 255 of the second, into a third, which may be one of them.
TDKVIZ_EXPORT int32_t I420andYUVA(uint8_t* below, const uint8_t* above, int32_t width, int32_t height);
TDKVIZ_EXPORT int32_t I420andI420toI420(const uint8_t* first, const uint8_t* second, uint8_t* mixed, int32_t width,
                                        int32_t height, int32_t weight);
