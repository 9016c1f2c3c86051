#pragma once
// Random edits of a file's text for the readers' mutation tests: cells cut,
// inserted, doubled and garbled, lines broken, files cut short.
#include <cstdint>
#include <iterator>
#include <string>

namespace varnoth::test {

// A small xorshift generator, so that every run mutates alike.
struct Xorshift {
  std::uint32_t state;
  std::uint32_t Next() {
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
  }
};

inline std::string Mutate(std::string text, Xorshift& rng) {
  static const char* const pieces[] = {",",     "\n",  "\"", " ",    "",     "0.50",    "1e400",
                                       "-9999", "abc", ",,", "\r\n", "12.0", "\x01\xff"};
  const int edits = 1 + static_cast<int>(rng.Next() % 3);
  for (int e = 0; e < edits && !text.empty(); ++e) {
    const std::size_t at = rng.Next() % text.size();
    switch (rng.Next() % 5) {
      case 0:
        text.erase(at, 1 + rng.Next() % 30);
        break;
      case 1:
        text.insert(at, pieces[rng.Next() % std::size(pieces)]);
        break;
      case 2:
        text[at] = static_cast<char>(rng.Next() & 0xFF);
        break;
      case 3:
        text.resize(at);
        break;
      default:
        text.insert(at, text.substr(at, 1 + rng.Next() % 120));
    }
  }
  return text;
}

}  // namespace varnoth::test
