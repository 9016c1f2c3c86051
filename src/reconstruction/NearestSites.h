#pragma once
// The nearest-site search at the heart of the analogue technique, for many
// targets at once: the dissimilarity of every target to every candidate site,
// each a sum over the columns in their given order, and for every target the
// nearest candidates ranked by the single-precision distance and then by the
// site number. The work is spread over the cores and vectorised across
// sites; each distance is still the same sum, term by term, as a plain loop
// gives.
#include <functional>
#include <vector>

namespace varnoth::analogue {

struct NearestInput {
  int Columns = 0;  // values per row: taxa, or EOF axes
  // Candidate sites, row-major Count x Columns, with their site numbers in
  // ascending order.
  const double* Candidates = nullptr;
  const int* SiteNumbers = nullptr;
  long CandidateCount = 0;
  // Targets, row-major TargetCount x Columns.
  const double* Targets = nullptr;
  long TargetCount = 0;
  // With weights, each difference is multiplied by its column's weight and
  // divided by 100 before squaring (the EOF form); otherwise it is squared
  // as it stands.
  const double* ColumnWeights = nullptr;
  int Ranks = 1;  // 1..20
};

// Fills Key[t * Ranks + r] and Site[t * Ranks + r] for rank r (0-based) of
// target t: the distance rounded to single and the site number; ranks that
// no candidate reaches keep 9999 and 0. A distance of exactly 0 and single
// distances of 9999 or more are never chosen. Among equal single distances
// the lower site number ranks first. `progress`, when given, is called on
// the calling thread with the number of targets done so far.
void FindNearest(const NearestInput& in, float* Key, int* Site,
                 const std::function<void(long)>& progress = {});

// Pairs of sites kept apart: row r (0-based) may not take the sites listed
// for it, Rows[Start[r]] .. Rows[Start[r + 1] - 1], ascending and 0-based.
// With All, no site may take any other.
struct Exclusion {
  const long* Start = nullptr;
  const int* Rows = nullptr;
  bool All = false;
  bool Excludes(long row, long other) const;
  // Whether row keeps any site out.
  bool AnyFor(long row) const { return All || (Start && Start[row + 1] > Start[row]); }
};

// The same ranking for every site among the sites themselves, as the error
// model needs: row r is site r + 1, and a site is a candidate when it is
// eligible. A distance is symmetric, term by term, so each pair is summed
// once and offered to both lists; the lists are as FindNearest would give.
struct SelfInput {
  int Columns = 0;
  const double* Rows = nullptr;  // Count x Columns, row-major
  long Count = 0;
  const unsigned char* Eligible = nullptr;  // per row: may be chosen
  const double* ColumnWeights = nullptr;
  int Ranks = 1;
  // Sites that may not be each other's candidates (a symmetric relation).
  const Exclusion* Excluded = nullptr;
};
void FindNearestAmongThemselves(const SelfInput& in, float* Key, int* Site,
                                const std::function<void(long)>& progress = {});

// Which instruction set the search uses on this machine ("AVX2", "SSE2").
const char* NearestKernelName();

}  // namespace varnoth::analogue
