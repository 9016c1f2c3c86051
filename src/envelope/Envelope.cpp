#include "envelope/Envelope.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <type_traits>
#include <vector>

#include "envelope/Uniform.h"
#include "state/Parallel.h"

namespace varnoth {

namespace {

// Start values of the running range on each direction.
constexpr double kRangeStartMax = -99999999.0;
constexpr double kRangeStartMin = 99999999.0;

// Directions are tested in blocks; progress is reported between blocks.
constexpr std::int32_t kDirectionBlock = 300;

// Two doubles per step, the width every x86-64 has; each lane does exactly
// the scalar arithmetic (no fused multiply-add), so results equal those of
// the plain loops.
constexpr int kLanes = 2;
using Vd = double __attribute__((vector_size(sizeof(double) * kLanes)));
using Vm = long long __attribute__((vector_size(sizeof(long long) * kLanes)));

Vd Splat(double v) { return Vd{v, v}; }

// The scores on the envelope axes, one column per axis, rows padded to a
// whole number of lanes.
struct Columns {
  long Count = 0;   // rows 1..Count
  long Blocks = 0;  // lane groups
  int Axes = 0;
  std::vector<Vd> Values;  // Values[k * Blocks + b]: axis k, rows 2b+1..2b+2
  const Vd* Axis(int k) const { return Values.data() + static_cast<std::size_t>(k) * Blocks; }
};

// Gathers scores(i, EnvelopeAxes(k)). Padding rows repeat row 1: a copy of
// the first row can never displace it as the first extreme, and padded
// samples are not read back.
Columns Gather(const Session& s, const Array2<double>& scores, long count, int axes) {
  Columns c;
  c.Count = count;
  c.Axes = axes;
  c.Blocks = (count + kLanes - 1) / kLanes;
  c.Values.assign(static_cast<std::size_t>(axes) * c.Blocks, Splat(0));
  if (count <= 0) return c;
  for (int k = 0; k < axes; ++k) {
    long column = s.EnvelopeAxes(k + 1);
    scores.Require(count, column);
    double* out =
        reinterpret_cast<double*>(c.Values.data() + static_cast<std::size_t>(k) * c.Blocks);
    for (long i = 1; i <= count; ++i) out[i - 1] = scores(i, column);
    for (long i = count + 1; i <= c.Blocks * kLanes; ++i) out[i - 1] = out[0];
  }
  return c;
}

// Direction d's components on the envelope axes, d = 1..3000 at [(d-1)*K].
std::vector<double> DirectionTable(const Session& s, int axes) {
  std::vector<double> a(static_cast<std::size_t>(kEnvelopeDirectionCount) * axes);
  s.EnvelopeDirections.Require(axes, kEnvelopeDirectionCount);
  for (std::int32_t d = 1; d <= kEnvelopeDirectionCount; ++d)
    for (int k = 0; k < axes; ++k)
      a[static_cast<std::size_t>(d - 1) * axes + k] = s.EnvelopeDirections(k + 1, d);
  return a;
}

// Marks of one share of the directions, merged into the result afterwards.
struct Marks {
  std::vector<Flag> Extreme;  // 0..site count
  std::vector<Vm> OutLanes;   // per lane group of samples
};

// The most axes handled with the count known at compile time; more take
// the general loop.
constexpr int kMaxFixedAxes = 12;

// Projections of a run of lane groups: buffer[b] = sum over k of
// a(k) * x(k), added in axis order.
template <int K>
inline void ProjectChunk(const Columns& c, const double* a, long first, long count, Vd* buffer) {
  if constexpr (K > 0) {
    // The sum stays in a register; the axis loop unrolls.
    const Vd* x[K];
    Vd coef[K];
    for (int k = 0; k < K; ++k) {
      x[k] = c.Axis(k) + first;
      coef[k] = Splat(a[k]);
    }
    for (long b = 0; b < count; ++b) {
      Vd p = coef[0] * x[0][b];
      for (int k = 1; k < K; ++k) p = p + coef[k] * x[k][b];
      buffer[b] = p;
    }
  } else {
    // Axis after axis through the buffer.
    const Vd* x0 = c.Axis(0) + first;
    const Vd a0 = Splat(a[0]);
    for (long b = 0; b < count; ++b) buffer[b] = a0 * x0[b];
    for (int k = 1; k < c.Axes; ++k) {
      const Vd* xk = c.Axis(k) + first;
      const Vd ak = Splat(a[k]);
      for (long b = 0; b < count; ++b) buffer[b] = buffer[b] + ak * xk[b];
    }
  }
}

inline Vd Larger(Vd a, Vd b) { return a > b ? a : b; }
inline Vd Smaller(Vd a, Vd b) { return a < b ? a : b; }

// Sites are handled in chunks; each chunk keeps its own extremes, so that
// the first site at the overall extreme is looked for in one chunk only.
constexpr long kChunk = 128;  // lane groups

struct SiteRange {
  double Hi = kRangeStartMax, Lo = kRangeStartMin;
  long HiSite = 0, LoSite = 0;
};

// The running maximum and minimum over sites 1..n in order, where only a
// value beyond the running one is taken, so of equal values the first site
// stands; the start values stand when no site passes them.
template <int K>
SiteRange SiteExtremes(const Columns& sites, const double* a, std::vector<Vd>& p,
                       std::vector<double>& chunkHi, std::vector<double>& chunkLo) {
  const long chunks = (sites.Blocks + kChunk - 1) / kChunk;
  for (long c = 0; c < chunks; ++c) {
    const long b0 = c * kChunk, n = std::min(kChunk, sites.Blocks - b0);
    Vd* buf = p.data() + b0;
    Vd hi = Splat(kRangeStartMax), lo = Splat(kRangeStartMin);
    if constexpr (K > 0) {
      // Projection and range in one pass.
      const Vd* x[K];
      Vd coef[K];
      for (int k = 0; k < K; ++k) {
        x[k] = sites.Axis(k) + b0;
        coef[k] = Splat(a[k]);
      }
      for (long b = 0; b < n; ++b) {
        Vd v = coef[0] * x[0][b];
        for (int k = 1; k < K; ++k) v = v + coef[k] * x[k][b];
        buf[b] = v;
        hi = Larger(v, hi);
        lo = Smaller(v, lo);
      }
    } else {
      ProjectChunk<K>(sites, a, b0, n, buf);
      for (long b = 0; b < n; ++b) {
        hi = Larger(buf[b], hi);
        lo = Smaller(buf[b], lo);
      }
    }
    double h = hi[0], l = lo[0];
    for (int i = 1; i < kLanes; ++i) {
      h = std::max(h, hi[i]);
      l = std::min(l, lo[i]);
    }
    chunkHi[static_cast<std::size_t>(c)] = h;
    chunkLo[static_cast<std::size_t>(c)] = l;
  }
  SiteRange r;
  for (long c = 0; c < chunks; ++c) {
    r.Hi = std::max(r.Hi, chunkHi[static_cast<std::size_t>(c)]);
    r.Lo = std::min(r.Lo, chunkLo[static_cast<std::size_t>(c)]);
  }
  auto first = [&](const std::vector<double>& chunkValue, double v) -> long {
    for (long c = 0; c < chunks; ++c) {
      if (chunkValue[static_cast<std::size_t>(c)] != v) continue;
      const double* q = reinterpret_cast<const double*>(p.data() + c * kChunk);
      for (long i = 0;; ++i)
        if (q[i] == v) return c * kChunk * kLanes + i + 1;
    }
    return 0;
  };
  if (r.Hi > kRangeStartMax) r.HiSite = first(chunkHi, r.Hi);
  if (r.Lo < kRangeStartMin) r.LoSite = first(chunkLo, r.Lo);
  return r;
}

template <int K>
void TestDirections(const Columns& sites, const Columns& samples, const std::vector<double>& dirs,
                    double tolerance, std::int32_t first, std::int32_t last, Marks& m) {
  const int axes = sites.Axes;
  std::vector<Vd> p(static_cast<std::size_t>(std::max(sites.Blocks, samples.Blocks)));
  const std::size_t chunks = static_cast<std::size_t>((sites.Blocks + kChunk - 1) / kChunk);
  std::vector<double> chunkHi(chunks), chunkLo(chunks);
  for (std::int32_t d = first; d <= last; ++d) {
    const double* a = dirs.data() + static_cast<std::size_t>(d - 1) * axes;
    const SiteRange r = SiteExtremes<K>(sites, a, p, chunkHi, chunkLo);
    m.Extreme[static_cast<std::size_t>(r.HiSite)] = 1;
    m.Extreme[static_cast<std::size_t>(r.LoSite)] = 1;

    // Every sample on every direction, with no early exit: the cost does
    // not depend on the data.
    const Vd upper = Splat(r.Hi + tolerance), lower = Splat(r.Lo - tolerance);
    Vm* out = m.OutLanes.data();
    for (long b0 = 0; b0 < samples.Blocks; b0 += kChunk) {
      const long n = std::min(kChunk, samples.Blocks - b0);
      ProjectChunk<K>(samples, a, b0, n, p.data());
      for (long b = 0; b < n; ++b) out[b0 + b] |= (p[b] > upper) | (p[b] < lower);
    }
  }
}

// Calls body with std::integral_constant<int, axes> for 2 to kMaxFixedAxes
// axes, and with 0 (the general loops) otherwise.
template <int K = 2, typename Body>
void Dispatch(int axes, Body&& body) {
  if constexpr (K > kMaxFixedAxes) {
    body(std::integral_constant<int, 0>{});
  } else {
    if (axes == K)
      body(std::integral_constant<int, K>{});
    else
      Dispatch<K + 1>(axes, body);
  }
}

void ClearMarks(Session& s) {
  s.SiteIsExtreme.ReDim(s.RefSiteCount);
  s.SampleIsOut.ReDim(s.FossilSampleCount);
}

int AxisCount(const Session& s) {
  if (s.EnvelopeAxisCount < 1) ThrowSubscript();
  return s.EnvelopeAxisCount;
}

}  // namespace

float EnvelopeToleranceFor(int sliderValue) { return ToSingle(sliderValue / 10.0); }

void ResetEnvelope(Session& s) {
  if (s.RefSiteCount > 1) s.SiteIsExtreme.ReDim(s.RefSiteCount);
  if (s.FossilSampleCount >= 2) s.SampleIsOut.ReDim(s.FossilSampleCount);
}

void DrawEnvelopeDirections(Session& s) {
  s.EnvelopeDirectionCount = kEnvelopeDirectionCount;
  s.EnvelopeDirections.ReDim(s.RefTaxaCount, kEnvelopeDirectionCount);
  std::uint64_t& state = s.UniformState;
  if (s.MoreAxis) {
    // Rejection sampling in the unit ball gives uniform directions on the
    // sphere of any dimension; the lower limit keeps tiny vectors out.
    const int axes = AxisCount(s);
    s.EnvelopeDirections.Require(axes, kEnvelopeDirectionCount);
    std::vector<double> v(static_cast<std::size_t>(axes) + 1);
    for (std::int32_t d = 1; d <= kEnvelopeDirectionCount;) {
      float sum = 0;
      for (int k = 1; k <= axes; ++k) {
        v[k] = 2.0f * NextUniform(state) - 1.0f;
        sum = static_cast<float>(sum + v[k] * v[k]);
      }
      if (sum > 0.01f && sum <= 1.0f) {
        const double norm = std::sqrt(static_cast<double>(sum));
        for (int k = 1; k <= axes; ++k) s.EnvelopeDirections(k, d) = v[k] / norm;
        ++d;
      }
    }
    return;
  }
  // A point on the sphere: the height z uniform, the longitude t uniform.
  s.EnvelopeDirections.Require(3, kEnvelopeDirectionCount);
  constexpr double kPi = 3.1415926535898;
  for (std::int32_t d = 1; d <= kEnvelopeDirectionCount; ++d) {
    const float z = 2.0f * NextUniform(state) - 1.0f;
    const double t = static_cast<double>(NextUniform(state)) * 2.0 * kPi;
    const double zz = static_cast<double>(z);
    const double rest = std::sqrt(1.0 - zz * zz);
    // At the pole (z = -1) the latitude is -pi/2 outright, not 0 / 0.
    const double p = rest > 0 ? std::atan(zz / rest) : std::copysign(kPi / 2, zz);
    s.EnvelopeDirections(1, d) = std::cos(t) * std::cos(p);
    s.EnvelopeDirections(2, d) = std::sin(t) * std::cos(p);
    s.EnvelopeDirections(3, d) = std::sin(p);
  }
}

void MarkEnvelope(Session& s, Progress& progress) {
  ClearMarks(s);
  const int axes = AxisCount(s);
  const std::vector<double> dirs = DirectionTable(s, axes);
  const Columns sites = Gather(s, s.RefScores, s.RefSiteCount, axes);
  const Columns samples = Gather(s, s.FossilScores, s.FossilSampleCount, axes);
  const double tolerance = s.EnvelopeTolerance;

  Marks total;
  total.Extreme.assign(static_cast<std::size_t>(s.RefSiteCount) + 1, 0);
  total.OutLanes.assign(static_cast<std::size_t>(samples.Blocks), Vm{});
  std::mutex merge;
  auto share = [&](long first, long last) {
    Marks m;
    m.Extreme.assign(total.Extreme.size(), 0);
    m.OutLanes.assign(total.OutLanes.size(), Vm{});
    auto f = static_cast<std::int32_t>(first), l = static_cast<std::int32_t>(last);
    Dispatch(axes, [&](auto fixed) {
      TestDirections<decltype(fixed)::value>(sites, samples, dirs, tolerance, f, l, m);
    });
    std::lock_guard<std::mutex> lock(merge);
    for (std::size_t i = 0; i < m.Extreme.size(); ++i) total.Extreme[i] |= m.Extreme[i];
    for (std::size_t b = 0; b < m.OutLanes.size(); ++b) total.OutLanes[b] |= m.OutLanes[b];
  };
  for (std::int32_t d = 1; d <= kEnvelopeDirectionCount; d += kDirectionBlock) {
    const std::int32_t last = std::min(kEnvelopeDirectionCount, d + kDirectionBlock - 1);
    ParallelRows(d, last, kDirectionBlock / 4, share);
    progress.Step(last);
  }

  for (long i = 0; i <= s.RefSiteCount; ++i)
    s.SiteIsExtreme(i) = total.Extreme[static_cast<std::size_t>(i)];
  for (long i = 1; i <= s.FossilSampleCount; ++i) {
    const Vm& lanes = total.OutLanes[static_cast<std::size_t>((i - 1) / kLanes)];
    s.SampleIsOut(i) = lanes[(i - 1) % kLanes] != 0 ? 1 : 0;
  }
}

void MarkEnvelopePlain(Session& s, Progress& progress) {
  ClearMarks(s);
  const int axes = AxisCount(s);
  const std::vector<double> dirs = DirectionTable(s, axes);
  const long sites = s.RefSiteCount, samples = s.FossilSampleCount;
  // The scores on the envelope axes, row after row.
  std::vector<double> x(static_cast<std::size_t>(sites + 1) * axes);
  std::vector<double> y(static_cast<std::size_t>(samples + 1) * axes);
  for (int k = 0; k < axes; ++k) {
    const long column = s.EnvelopeAxes(k + 1);
    for (long i = 1; i <= sites; ++i)
      x[static_cast<std::size_t>(i) * axes + k] = s.RefScores(i, column);
    for (long i = 1; i <= samples; ++i)
      y[static_cast<std::size_t>(i) * axes + k] = s.FossilScores(i, column);
  }
  const double tolerance = s.EnvelopeTolerance;
  for (std::int32_t d = 1; d <= kEnvelopeDirectionCount; ++d) {
    const double* a = dirs.data() + static_cast<std::size_t>(d - 1) * axes;
    double hi = kRangeStartMax, lo = kRangeStartMin;
    long hiSite = 0, loSite = 0;
    for (long i = 1; i <= sites; ++i) {
      const double* r = x.data() + static_cast<std::size_t>(i) * axes;
      double v = 0;
      for (int k = 0; k < axes; ++k) v += a[k] * r[k];
      if (v > hi) {
        hi = v;
        hiSite = i;
      }
      if (v < lo) {
        lo = v;
        loSite = i;
      }
    }
    s.SiteIsExtreme(hiSite) = 1;
    s.SiteIsExtreme(loSite) = 1;
    for (long i = 1; i <= samples; ++i) {
      const double* r = y.data() + static_cast<std::size_t>(i) * axes;
      double v = 0;
      for (int k = 0; k < axes; ++k) v += a[k] * r[k];
      if (v > hi + tolerance || v < lo - tolerance) s.SampleIsOut(i) = 1;
    }
    if (d % kDirectionBlock == 0) progress.Step(d);
  }
}

void RunEnvelope(Session& s, int sliderValue, Progress& progress) {
  ResetEnvelope(s);
  s.EnvelopeTolerance = EnvelopeToleranceFor(sliderValue);
  progress.Start(kEnvelopeDirectionCount);
  DrawEnvelopeDirections(s);
  MarkEnvelope(s, progress);
  s.EnvelopeDone = true;
  progress.Finish();
}

}  // namespace varnoth
