#pragma once
// The program's own uniform generator on [0, 1). It is never seeded: every
// session starts from the same state, so the first envelope of a session is
// always drawn alike, and later draws go on from where the last one stopped.
// The state lives in the session (UniformState), with its start value there.
#include <cstdint>

namespace varnoth {

// The next value, a single on [0, 1) with 24 random bits, so that it is
// exact as a single and can never round up to 1. Advances `state`.
inline float NextUniform(std::uint64_t& state) {
  // splitmix64: one add and a mixing function; passes the usual batteries.
  std::uint64_t z = (state += 0x9E3779B97F4A7C15ULL);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
  z ^= z >> 31;
  return static_cast<float>(z >> 40) * (1.0f / 16777216.0f);
}

}  // namespace varnoth
