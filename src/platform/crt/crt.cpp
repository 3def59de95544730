// The shared linear congruential generator (see crt.h).
#include "platform/crt/crt.h"

namespace crt {
namespace {

std::uint32_t s_state = 1;

}  // namespace

int rand() {
  s_state = s_state * 214013u + 2531011u;
  return static_cast<int>((s_state >> 16) & 0x7FFFu);
}

void srand(unsigned int seed) { s_state = seed; }

std::uint32_t randState() { return s_state; }

}  // namespace crt
