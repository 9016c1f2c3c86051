// A fuzzed table padded past 2 MB, so that its second half is read ahead
// on another core, against the same cells with CR-only line ends, which
// give the read-ahead no line start and are read in order alone: the same
// outcome, message and place, and the same names and values to the bit.
#include <cstring>

#include "FuzzSupport.h"
#include "state/Import.h"

using namespace varnoth;
using namespace varnoth::fuzz;

namespace {

constexpr std::size_t kPadded = (std::size_t{2} << 20) + 4096;
// A table holds at most 9999 rows: lines of this width pass 2 MB with
// about 8,200 of them.
constexpr std::size_t kLineWidth = 256;

// The input with quotes dropped (a quoted cell may hold a line end, which
// the two forms would then read differently) and every line end one LF,
// each line widened to kLineWidth by blanks in front (which the reader
// drops, so the cells stay the same) and its data rows repeated until the
// table passes 2 MB.
std::string Padded(const std::uint8_t* data, std::size_t size) {
  std::string text;
  text.reserve(size + 1);
  std::size_t lineStart = 0;
  auto endLine = [&] {
    const std::size_t width = text.size() - lineStart;
    if (width < kLineWidth) text.insert(lineStart, kLineWidth - width, ' ');
    text += '\n';
    lineStart = text.size();
  };
  for (std::size_t i = 0; i < size; ++i) {
    const char ch = static_cast<char>(data[i]);
    if (ch == '"') continue;
    if (ch == '\r') {
      if (i + 1 < size && data[i + 1] == '\n') continue;
      endLine();
      continue;
    }
    if (ch == '\n') {
      endLine();
      continue;
    }
    text += ch;
  }
  if (lineStart < text.size() || text.empty()) endLine();
  const std::size_t firstLine = text.find('\n') + 1;
  std::string rows = text.substr(firstLine);
  if (rows.empty()) rows = text;
  std::string out;
  out.reserve(kPadded + rows.size());
  out = text;
  while (out.size() < kPadded) out += rows;
  return out;
}

struct Outcome {
  Session s;
  ImportResult r;
};

Outcome Read(const std::string& path) {
  Outcome o{FreshSession(), {}};
  FuzzDialogs yes(true);
  NoProgress progress;
  o.r = ImportReference(o.s, path, yes, progress);
  return o;
}

bool SameBits(const Array2<double>& x, const Array2<double>& y) {
  return x.Rows() == y.Rows() && x.Cols() == y.Cols() &&
         std::memcmp(x.Data(), y.Data(), x.Rows() * x.Cols() * sizeof(double)) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string lf = Padded(data, size);
  std::string cr = lf;
  for (char& ch : cr)
    if (ch == '\n') ch = '\r';
  // One path for both, so that the messages name the same file.
  const std::string path = WriteInput("large", lf);
  const Outcome ahead = Read(path);
  WriteInput("large", cr);
  const Outcome inOrder = Read(path);
  if (ahead.r.Ok != inOrder.r.Ok || ahead.r.Problem != inOrder.r.Problem)
    std::fprintf(stderr, "read ahead: %s\nin order:   %s\n", ahead.r.Problem.c_str(),
                 inOrder.r.Problem.c_str());
  FUZZ_REQUIRE(ahead.r.Ok == inOrder.r.Ok);
  FUZZ_REQUIRE(ahead.r.Problem == inOrder.r.Problem);
  FUZZ_REQUIRE(ahead.s.RefTaxaCount == inOrder.s.RefTaxaCount);
  if (!ahead.r.Ok) return 0;
  Reached("both read");
  FUZZ_REQUIRE(ahead.s.RefSiteCount == inOrder.s.RefSiteCount);
  FUZZ_REQUIRE(ahead.s.RefSiteNames == inOrder.s.RefSiteNames);
  FUZZ_REQUIRE(ahead.s.RefTaxaNames == inOrder.s.RefTaxaNames);
  FUZZ_REQUIRE(ahead.s.RefLabelsAreText == inOrder.s.RefLabelsAreText);
  FUZZ_REQUIRE(SameBits(ahead.s.RefData, inOrder.s.RefData));
  Reached(kRoadEnd);
  return 0;
}
