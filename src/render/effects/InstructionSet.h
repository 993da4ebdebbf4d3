// Which vectors the processor has, and how far to use them.
#pragma once

namespace tdkviz {

// In rising order; each includes those before it.
enum class InstructionSet { kScalar, kVector128, kVector256, kVector512 };

// The widest that the processor and the system offer. The environment variable TDKVIZ_INSTRUCTION_SET, one of
// "scalar", "128", "256" and "512", lowers it, for tests and measurements; it is read once. Any thread.
InstructionSet BestInstructionSet();
// Lowers it from here on, for measurements. No more than the processor offers.
void LimitInstructionSet(InstructionSet limit);

}  // namespace tdkviz
