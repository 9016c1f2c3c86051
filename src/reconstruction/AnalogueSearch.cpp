#include "reconstruction/AnalogueSearch.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <vector>

#include "eof/PreTreatment.h"
#include "reconstruction/NearestSites.h"
#include "state/Finite.h"
#include "state/Parallel.h"

namespace varnoth {

double DefineThreshold(AnalogueSettings& settings, long sliderValue) {
  const double t = static_cast<double>(sliderValue) / 100;
  switch (settings.Enhance) {
    case AnalogueEnhance::SquareRoot:
      settings.AnalogueThreshold = PowerHalf(t);
      break;
    case AnalogueEnhance::Log:
      settings.AnalogueThreshold = LogEnhance(t);
      break;
    case AnalogueEnhance::None:
      settings.AnalogueThreshold = t;
      break;
  }
  return t;
}

namespace {

// Rows of the compared values, transformed once: site or sample r (1-based)
// is row r - 1.
struct CompareRows {
  int columns = 0;
  std::vector<double> ref, target;
  std::vector<double> weights;  // per column, EOF form only
};

double Transform(double x, AnalogueEnhance e) {
  switch (e) {
    case AnalogueEnhance::SquareRoot:
      // Most proportions are 0, whose root needs no power function.
      return x == 0 ? 0.0 : PowerHalf(x);
    case AnalogueEnhance::Log:
      return LogEnhance(x);
    case AnalogueEnhance::None:
      break;
  }
  return x;
}

// The compared rows of the reference sites and of the targets (the fossil
// samples, or the reference sites again for the error model).
CompareRows Prepare(const Session& s, const AnalogueSettings& st, bool fossilTargets,
                    bool parallel) {
  CompareRows c;
  const long sites = s.RefSiteCount;
  const long targets = fossilTargets ? s.FossilSampleCount : sites;
  if (st.Basis == AnalogueBasis::EofValues) {
    const long axes = s.EnvelopeAxisCount;
    c.columns = static_cast<int>(std::max(0L, axes));
    if (axes > 0) s.EnvelopeAxes.Require(axes);
    std::vector<long> eof(static_cast<std::size_t>(c.columns));
    for (long a = 1; a <= axes; ++a) {
      eof[a - 1] = s.EnvelopeAxes(a);
      c.weights.push_back(static_cast<double>(s.Contribution(eof[a - 1])));
    }
    auto fill = [&](const Array2<double>& scores, long rows, std::vector<double>& out) {
      out.assign(static_cast<std::size_t>(rows) * c.columns, 0.0);
      for (long i = 1; i <= rows; ++i)
        for (int a = 0; a < c.columns; ++a) out[(i - 1) * c.columns + a] = scores(i, eof[a]);
    };
    fill(s.RefScores, sites, c.ref);
    fill(fossilTargets ? s.FossilScores : s.RefScores, targets, c.target);
    return c;
  }
  const long taxa = s.RefTaxaCount;
  c.columns = static_cast<int>(std::max(0L, taxa));
  // The fossil table is read with the reference's taxa count.
  auto fill = [&](const Array2<double>& data, long rows, std::vector<double>& out) {
    out.assign(static_cast<std::size_t>(rows) * c.columns, 0.0);
    if (rows > 0) data.Require(rows, taxa);
    // The power function dominates this step on large tables: share it out.
    auto rowsOf = [&](long first, long last) {
      for (long i = first; i <= last; ++i) {
        const double* row = data.Row(i, taxa);
        double* dst = out.data() + (i - 1) * c.columns;
        for (long k = 1; k <= taxa; ++k) dst[k - 1] = Transform(row[k], st.Enhance);
      }
    };
    if (parallel)
      ParallelRows(1, rows, 256, rowsOf);
    else
      rowsOf(1, rows);
  };
  fill(s.RefProportion, sites, c.ref);
  if (fossilTargets)
    fill(s.FossilProportion, targets, c.target);
  else
    c.target = c.ref;
  return c;
}

// The dissimilarity of two prepared rows, summed in column order.
double Dissimilarity(const CompareRows& c, const double* ref, const double* target) {
  double sum = 0;
  if (c.weights.empty()) {
    for (int k = 0; k < c.columns; ++k) {
      const double d = ref[k] - target[k];
      sum += d * d;
    }
  } else {
    for (int k = 0; k < c.columns; ++k) {
      const double d = (ref[k] - target[k]) * c.weights[k] / 100;
      sum += d * d;
    }
  }
  return sum;
}

// Whether some distance could be too large for a single: then only the
// literal scan raises the overflow exactly where it occurs.
bool MightOverflowSingle(const CompareRows& c) {
  double largest = 0;
  for (double v : c.ref)
    if (std::fabs(v) > largest) largest = std::fabs(v);
  for (double v : c.target)
    if (std::fabs(v) > largest) largest = std::fabs(v);
  double scale = 1;
  for (double w : c.weights) scale = std::max(scale, std::fabs(w) / 100);
  const double bound = 4.0 * c.columns * (largest * scale) * (largest * scale);
  return !(bound < 0.5 * FLT_MAX);
}

void CheckSettings(const AnalogueSettings& st) {
  // The distance list holds ranks 1..MaxAnalogues and the site list 1..20.
  if (st.MaxAnalogues < 1 || st.MaxAnalogues > kMaxRanks) ThrowSubscript();
}

// Estimation of every parameter of one target from its ranked analogues:
// dist[r] and site[r] for r = 1..maxRank. Writes out[1..P] and out[0] = n.
Count Estimate(const Session& s, const AnalogueSettings& st, bool errorModel, const float* dist,
               const Count* site, long maxRank, double* out) {
  const long params = s.ClimateParamCount;
  const float threshold = ToSingle(st.AnalogueThreshold);
  const bool byRoot = errorModel && st.WeightBy == AnalogueWeightBy::Distance;
  auto weight = [&](float d) {
    if (!st.InverseWeighting) return 1.0;
    if (st.WeightBy == AnalogueWeightBy::SquaredDistance) return Div(1.0, static_cast<double>(d));
    return Div(1.0, std::pow(static_cast<double>(d), 0.5));
  };
  Count n = 0;
  for (long p = 1; p <= params; ++p) {
    double sum = 0, weights = 0;
    n = 0;
    auto add = [&](long r) {
      if (r > maxRank) ThrowSubscript();
      const double w = weight(dist[r]);
      sum += w * s.ClimateData(site[r], p);
      weights += w;
      if (!std::isfinite(sum) || !std::isfinite(weights)) ThrowOverflow();
      n = Increment(n);
    };
    for (long r = 1; r <= st.MaxAnalogues; ++r) {
      const bool passes = byRoot
                              ? std::pow(static_cast<double>(dist[r]), 0.5) < st.AnalogueThreshold
                              : threshold > dist[r];
      if (passes) add(r);
    }
    if (n < st.MinAnalogues && st.MinAnalogues != 0)
      for (long r = n + 1; r <= st.MinAnalogues; ++r) add(r);
    out[p] = n == 0 ? kMissing : Div(sum, weights);
    out[0] = n;
  }
  return n;
}

// The ranked lists of all targets by the literal scan: every dissimilarity
// of the target, then one pass over all sites per rank.
void LiteralLists(const Session& s, const AnalogueSettings& st, const CompareRows& c, long targets,
                  Array2<float>& dist, Array2<Count>& site, Progress& progress,
                  const analogue::Exclusion* excluded) {
  const long sites = s.RefSiteCount;
  std::vector<double> d(static_cast<std::size_t>(sites) + 1);
  for (long j = 1; j <= targets; ++j) {
    progress.Step(j);
    const double* target = c.target.data() + (j - 1) * c.columns;
    for (long i = 1; i <= sites; ++i)
      d[i] = Dissimilarity(c, c.ref.data() + (i - 1) * c.columns, target);
    for (long r = 1; r <= st.MaxAnalogues; ++r) {
      dist(j, r) = 9999.0f;
      for (long i = 1; i <= sites; ++i) {
        if (d[i] == 0.0) continue;
        const float fd = ToSingle(d[i]);
        if (!(fd < dist(j, r))) continue;
        if (s.ClimateData(i, 1) == kMissing) continue;
        if (excluded && excluded->Excludes(j - 1, i - 1)) continue;
        site(j, 0) = 0;
        for (long q = 1; q < r; ++q)
          if (site(j, q) == i) site(j, 0) = 1;
        if (site(j, 0) == 1) continue;
        dist(j, r) = fd;
        site(j, r) = static_cast<Count>(i);
      }
    }
  }
}

// The search's flat lists into the ranked arrays, ranks from 1.
void StoreLists(const std::vector<float>& key, const std::vector<int>& chosen, long targets,
                int ranks, Array2<float>& dist, Array2<Count>& site) {
  for (long j = 1; j <= targets; ++j) {
    float* drow = dist.Row(j, ranks);
    Count* srow = site.Row(j, ranks);
    for (int r = 1; r <= ranks; ++r) {
      drow[r] = key[(j - 1) * ranks + r - 1];
      srow[r] = static_cast<Count>(chosen[(j - 1) * ranks + r - 1]);
    }
  }
}

// The same lists by the parallel, vectorised search over the sites that can
// be analogues at all (those with parameter 1 present).
void FastLists(const Session& s, const AnalogueSettings& st, const CompareRows& c, long targets,
               Array2<float>& dist, Array2<Count>& site, Progress& progress) {
  const long sites = s.RefSiteCount;
  std::vector<double> candidates;
  std::vector<int> numbers;
  candidates.reserve(c.ref.size());
  for (long i = 1; i <= sites; ++i) {
    if (s.ClimateData(i, 1) == kMissing) continue;
    numbers.push_back(static_cast<int>(i));
    candidates.insert(candidates.end(), c.ref.begin() + (i - 1) * c.columns,
                      c.ref.begin() + i * c.columns);
  }
  const int ranks = st.MaxAnalogues;
  std::vector<float> key(static_cast<std::size_t>(targets) * ranks);
  std::vector<int> chosen(static_cast<std::size_t>(targets) * ranks);
  analogue::NearestInput in;
  in.Columns = c.columns;
  in.Candidates = candidates.data();
  in.SiteNumbers = numbers.data();
  in.CandidateCount = static_cast<long>(numbers.size());
  in.Targets = c.target.data();
  in.TargetCount = targets;
  in.ColumnWeights = c.weights.empty() ? nullptr : c.weights.data();
  in.Ranks = ranks;
  analogue::FindNearest(in, key.data(), chosen.data(), [&](long done) { progress.Step(done); });
  StoreLists(key, chosen, targets, ranks, dist, site);
}

// The error model's lists: the sites among themselves, each pair once.
void FastSelfLists(const Session& s, const AnalogueSettings& st, const CompareRows& c,
                   Array2<float>& dist, Array2<Count>& site, Progress& progress,
                   const analogue::Exclusion* excluded) {
  const long sites = s.RefSiteCount;
  std::vector<unsigned char> eligible(static_cast<std::size_t>(sites));
  for (long i = 1; i <= sites; ++i) eligible[i - 1] = s.ClimateData(i, 1) != kMissing;
  const int ranks = st.MaxAnalogues;
  std::vector<float> key(static_cast<std::size_t>(sites) * ranks);
  std::vector<int> chosen(static_cast<std::size_t>(sites) * ranks);
  analogue::SelfInput in;
  in.Columns = c.columns;
  in.Rows = c.ref.data();
  in.Count = sites;
  in.Eligible = eligible.data();
  in.ColumnWeights = c.weights.empty() ? nullptr : c.weights.data();
  in.Ranks = ranks;
  in.Excluded = excluded;
  analogue::FindNearestAmongThemselves(in, key.data(), chosen.data(),
                                       [&](long done) { progress.Step(done); });
  StoreLists(key, chosen, sites, ranks, dist, site);
}

// The ranked lists of the fossil samples or, for the error model, of the
// sites themselves: by the plain loops when asked, or when a distance could
// overflow a single; otherwise by the fast search.
void SearchLists(const Session& s, const AnalogueSettings& st, bool fossilTargets, bool literal,
                 Array2<float>& dist, Array2<Count>& site, Progress& progress,
                 const analogue::Exclusion* excluded = nullptr) {
  const CompareRows c = Prepare(s, st, fossilTargets, !literal);
  const long targets = fossilTargets ? s.FossilSampleCount : s.RefSiteCount;
  if (literal || MightOverflowSingle(c))
    LiteralLists(s, st, c, targets, dist, site, progress, excluded);
  else if (fossilTargets)
    FastLists(s, st, c, targets, dist, site, progress);
  else
    FastSelfLists(s, st, c, dist, site, progress, excluded);
}

// Ends the progress display whatever the outcome.
struct ProgressGuard {
  Progress& p;
  ~ProgressGuard() { p.Finish(); }
};

void Reconstruct(Session& s, const AnalogueSettings& st, Progress& progress, bool literal) {
  ProgressGuard guard{progress};
  progress.Start(s.FossilSampleCount);
  CheckSettings(st);
  const long samples = s.FossilSampleCount, params = s.ClimateParamCount;
  s.ReconValue.ReDim(samples, params);
  s.ReconLow.ReDim(samples, params);
  s.ReconHigh.ReDim(samples, params);
  s.AnalogueCount.ReDim(samples);
  s.AnalogueSite.ReDim(samples, kMaxRanks);
  s.AnalogueDistance.ReDim(samples, st.MaxAnalogues);
  s.ReconMin.ReDim(params);
  s.ReconMax.ReDim(params);
  if (samples > 0 && s.RefSiteCount > 0)
    s.ClimateData.Require(s.RefSiteCount, std::max(1L, params));

  SearchLists(s, st, true, literal, s.AnalogueDistance, s.AnalogueSite, progress);

  for (long j = 1; j <= samples; ++j) {
    Count n =
        Estimate(s, st, false, s.AnalogueDistance.Row(j, st.MaxAnalogues),
                 s.AnalogueSite.Row(j, kMaxRanks), st.MaxAnalogues, s.ReconValue.Row(j, params));
    if (params >= 1) s.LastAnalogueCount = n;
  }

  for (long j = 1; j <= samples; ++j) s.AnalogueCount(j) = ToCount(s.ReconValue(j, 0));
  for (long j = 1; j <= samples; ++j)
    for (long p = 1; p <= params; ++p) {
      double low = 999999, high = -999999;
      for (long r = 1; r <= s.AnalogueCount(j); ++r) {
        const double v = s.ClimateData(s.AnalogueSite(j, r), p);
        if (v < low) low = v;
        if (v > high) high = v;
      }
      s.ReconLow(j, p) = low;
      s.ReconHigh(j, p) = high;
    }
  for (long p = 1; p <= params; ++p) {
    s.ReconMin(p) = 9999.0f;
    s.ReconMax(p) = -9999.0f;
    for (long j = 1; j <= samples; ++j) {
      if (s.ReconValue(j, p) == kMissing) continue;
      const float v = ToSingle(s.ReconValue(j, p));
      if (v < s.ReconMin(p)) s.ReconMin(p) = v;
      if (v > s.ReconMax(p)) s.ReconMax(p) = v;
    }
  }
  RequireFinite(s.AnalogueDistance);
  RequireFinite(s.ReconValue);
  RequireFinite(s.ReconLow);
  RequireFinite(s.ReconHigh);
}

// The error model into `out`; with `excluded`, each site's candidates also
// leave out the sites listed for it, and a site left with no candidate at
// all because of them has no estimate, whatever the least count asks.
void ErrorModel(const Session& s, const AnalogueSettings& st, Progress& progress, bool literal,
                Array2<double>& out, const analogue::Exclusion* excluded = nullptr) {
  ProgressGuard guard{progress};
  progress.Start(s.RefSiteCount);
  CheckSettings(st);
  const long sites = s.RefSiteCount, params = s.ClimateParamCount;
  out.ReDim(sites, params);
  // The analogue lists of the sites are the run's own.
  Array2<float> dist(sites, st.MaxAnalogues);
  Array2<Count> site(sites, kMaxRanks);
  if (sites > 0) s.ClimateData.Require(sites, std::max(1L, params));

  SearchLists(s, st, false, literal, dist, site, progress, excluded);
  for (long t = 1; t <= sites; ++t) {
    if (excluded && site(t, 1) == 0 && excluded->AnyFor(t - 1)) {
      for (long p = 1; p <= params; ++p) out(t, p) = kMissing;
      out(t, 0) = 0;
      continue;
    }
    Estimate(s, st, true, dist.Row(t, st.MaxAnalogues), site.Row(t, kMaxRanks), st.MaxAnalogues,
             out.Row(t, params));
  }
  RequireFinite(dist);
  RequireFinite(out);
}

}  // namespace

void RunReconstruction(Session& s, const AnalogueSettings& settings, Progress& progress) {
  Reconstruct(s, settings, progress, false);
}

void GenerateErrorModel(Session& s, const AnalogueSettings& settings, Progress& progress) {
  ErrorModel(s, settings, progress, false, s.ReconRefValue);
}

void GenerateErrorModelExcluding(const Session& s, const AnalogueSettings& settings,
                                 const analogue::Exclusion& excluded, Array2<double>& out,
                                 Progress& progress, bool literal) {
  ErrorModel(s, settings, progress, literal, out, &excluded);
}

void RunReconstructionLiteral(Session& s, const AnalogueSettings& settings, Progress& progress) {
  Reconstruct(s, settings, progress, true);
}

void GenerateErrorModelLiteral(Session& s, const AnalogueSettings& settings, Progress& progress) {
  ErrorModel(s, settings, progress, true, s.ReconRefValue);
}

}  // namespace varnoth
