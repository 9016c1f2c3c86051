#pragma once
// Small tables for tests, written as the program's own files.
#include <functional>
#include <string>

#include "state/Format.h"

namespace varnoth::test {

// A header "Site,T1..Tn" (or "Depth,..." with number labels), then rows of
// values value(i, j), labels "S<i>" or the depth 10 (i - 1).
inline std::string MakeTable(int taxa, int rows, bool textLabels,
                             const std::function<double(int, int)>& value,
                             const std::string& taxonPrefix = "T") {
  std::string out = textLabels ? "Site" : "Depth";
  for (int j = 1; j <= taxa; ++j) out += "," + taxonPrefix + std::to_string(j);
  out += "\r\n";
  for (int i = 1; i <= rows; ++i) {
    out += textLabels ? "S" + std::to_string(i) : std::to_string(10 * (i - 1));
    for (int j = 1; j <= taxa; ++j) out += "," + FormatGeneral(value(i, j));
    out += "\r\n";
  }
  return out;
}

// A varied but deterministic composition: no constant columns.
inline double Varied(int i, int j) { return static_cast<double>(((i * 7 + j * 13 + i * j) % 17) + j); }

}  // namespace varnoth::test
