#pragma once
// What every fuzz target shares: the input as a file (the readers take a
// path, as the file dialog gives one), dialogs that answer for the user,
// the small tables the starting sessions are built from, and the check
// that stops the run when an invariant is broken.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "state/Dialogs.h"
#include "state/Failure.h"
#include "state/Session.h"

namespace varnoth::fuzz {

// Writes `text` into a file of this process named by `tag` and returns its
// path. The file is rewritten in place for every input.
std::string WriteInput(std::string_view tag, const std::uint8_t* data, std::size_t size);
inline std::string WriteInput(std::string_view tag, std::string_view text) {
  return WriteInput(tag, reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

class FuzzDialogs final : public Dialogs {
 public:
  explicit FuzzDialogs(bool yes) : yes_(yes) {}
  std::optional<std::string> OpenFileName(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> SaveFileName(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  void Message(const std::string&, const std::string&) override { ++messages; }
  bool Question(const std::string&, const std::string&) override {
    ++questions;
    return yes_;
  }
  int messages = 0, questions = 0;

 private:
  bool yes_;
};

// A finding: the invariant's text, then abort so that libFuzzer keeps the
// input that broke it.
[[noreturn]] inline void Broken(const char* what, const char* file, int line) {
  std::fprintf(stderr, "invariant broken at %s:%d: %s\n", file, line, what);
  std::abort();
}
#define FUZZ_REQUIRE(cond) ((cond) ? (void)0 : ::varnoth::fuzz::Broken(#cond, __FILE__, __LINE__))

// Small tables of five taxa, in the same order, for the starting sessions.
extern const char* const kReferenceTable;
extern const char* const kFossilTable;

// A new session without the analysis's preset work arrays (24 MB, which
// no reader touches and the analysis sizes afresh), so that a copy per
// input is cheap.
Session FreshSession();

// A reference imported and analysed (the base), and with `withFossil` the
// fossil imported and projected as well.
Session AnalysedSession(bool withFossil);

// A reference imported and analysed, and the interpolation tool open with
// its station table of three columns loaded; with `withTargets` for the
// targets' reader (nothing more), else with the targets loaded too, so
// that a station file replaces a complete state.
Session InterpolationSession(bool forTargets);
extern const char* const kStationTable;
extern const char* const kTargetTable;

// Every array of the data set and of the EOF results alike.
bool SameReference(const Session& a, const Session& b);
bool SameFossil(const Session& a, const Session& b);
bool SameEofResults(const Session& a, const Session& b);
// The loaded files of the interpolation tool alike (the target count
// aside, which a refused target file sets).
bool SameInterpolationInputs(const Session& a, const Session& b);

// All values of the array finite.
template <typename T>
bool AllFinite(const T* v, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i)
    if (!std::isfinite(v[i])) return false;
  return true;
}
template <typename T>
bool AllFinite(const Array1<T>& a) {
  return AllFinite(a.Data(), a.Size());
}
template <typename T>
bool AllFinite(const Array2<T>& a) {
  return AllFinite(a.Data(), a.Rows() * a.Cols());
}

// Every number field of a written file (an unquoted one) is empty or a
// finite number: no "NaN", "Inf" or digits that overflow.
bool FileIsFinite(const std::string& path);

// A setting drawn from the input: byte `at` of the first bytes, or 0 when
// the input is shorter.
inline unsigned Setting(const std::uint8_t* data, std::size_t size, std::size_t at) {
  return at < size ? data[at] : 0u;
}

// Runs one stage of a road: true when it ended normally, false when it
// ended in the run-time failure (where a window's boundary ends the event).
template <typename F>
bool Stage(F&& f) {
  try {
    f();
    return true;
  } catch (const RuntimeFailure&) {
    return false;
  }
}

// How far the inputs get down a road: every stage a road passes is counted
// here, and the corpus runner reports the counts, so that seeds which stop
// early show (and a road whose end no seed reaches fails the corpus test).
void Reached(std::string_view stage);
// The stages in the order first reached, with the number of inputs that
// passed each.
const std::vector<std::pair<std::string, long>>& StagesReached();
// The stage a road target passes when an input went all the way.
inline constexpr std::string_view kRoadEnd = "end of the road";

// A save on the road: either the file failure (nothing written) or a file
// of finite numbers; a written file counts as a stage named by the call.
bool Saved(std::string_view call, bool written, const std::string& path);
#define FUZZ_SAVED(written, path) FUZZ_REQUIRE(::varnoth::fuzz::Saved(#written, (written), (path)))

}  // namespace varnoth::fuzz
