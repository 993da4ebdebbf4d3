// Loops over the pixels of one row, from RGB32: one table for each instruction set, and all make the same pixels.
#pragma once

#include <cstdint>

#include <tdkviz/color_converter.h>

namespace qzcolor {

// Null where there is no loop for a format. `count`: pixels of the source. Any alignment.
struct RowTable {
    // Into a row of the format; it may be the very same row if the pixels have the same size.
    void (*Pack[kFormatCount])(const uint8_t* from, uint8_t* to, int32_t count);
    // Each pixel twice, into two equal rows.
    void (*Double[kFormatCount])(const uint8_t* from, uint8_t* upper, uint8_t* lower, int32_t count);
    // Words between two neighbours each: the left one's place, and the weight of the right one, 0 to 256, in both
    // halves of a word. `count`: words made.
    void (*Mix)(const uint8_t* from, const int32_t* places, const uint32_t* weights, uint8_t* to, int32_t count);
};

// Runs on every processor; on x86-64 with the vectors that all of them have.
const RowTable& PlainRowTable();
// Null where the build or the processor knows no AVX2.
const RowTable* Avx2RowTable();

// The fastest that the processor has. The environment variable TDKVIZ_INSTRUCTION_SET, "scalar" or "128", lowers it
// to the plain ones, for tests and measurements; it is read once.
const RowTable& BestRowTable();
// Takes this one from here on, for measurements.
void UseRowTable(const RowTable& table);

}  // namespace qzcolor
