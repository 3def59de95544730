// The C runtime's random source as the system uses it: one 32-bit state shared
// by world placing, rain, figures, colours and the sound rules.
//
// The C library's own rand() is a different generator on Linux, so the system
// calls these instead; the names live in namespace crt to stay apart from it.
#pragma once

#include <cstdint>

namespace crt {

constexpr int RAND_MAX_VALUE = 0x7FFF;  // largest result of rand()

// Next number of the sequence, 0 to 32767: s = s * 214013 + 2531011 (mod 2^32),
// result (s >> 16) & 0x7FFF. The state is 1 when the process starts.
int rand();

// Sets the state; the next rand() continues from seed.
void srand(unsigned int seed);

// The current state, for tests that compare how many draws a rule made.
std::uint32_t randState();

}  // namespace crt
