#include "reconstruction/NearestSites.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <thread>

#include "state/Parallel.h"

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#define VARNOTH_X86 1
#endif

namespace varnoth::analogue {

namespace {

// Four doubles, four floats: GCC/Clang vector extensions. The compiler turns
// them into SSE2 pairs or AVX registers according to the function's target;
// every lane is plain IEEE arithmetic, so the results do not depend on it.
typedef double V4 __attribute__((vector_size(32)));
typedef float F4 __attribute__((vector_size(16)));
typedef int I4 __attribute__((vector_size(16)));

constexpr int kPanel = 8;  // candidate sites per panel (two V4)
constexpr int kBlock = 4;  // targets per micro block
constexpr float kNoDistance = 9999.0f;

// Buffers aligned for the vector loads.
struct AlignedDoubles {
  explicit AlignedDoubles(std::size_t n)
      : data(static_cast<double*>(std::aligned_alloc(64, ((n * sizeof(double) + 63) / 64) * 64))) {
    if (!data) throw std::bad_alloc();
  }
  ~AlignedDoubles() { std::free(data); }
  AlignedDoubles(const AlignedDoubles&) = delete;
  AlignedDoubles& operator=(const AlignedDoubles&) = delete;
  double* data;
};

// The ranked list of one target: keys ascending, ties by site number.
// Empty places hold (9999, -1), which no candidate of 9999 or more passes.
inline bool Before(float key, int site, float otherKey, int otherSite) {
  return key < otherKey || (key == otherKey && site < otherSite);
}

inline void Insert(float* key, int* site, int ranks, float k, int s) {
  int pos = ranks - 1;
  if (!Before(k, s, key[pos], site[pos])) return;
  while (pos > 0 && Before(k, s, key[pos - 1], site[pos - 1])) {
    key[pos] = key[pos - 1];
    site[pos] = site[pos - 1];
    --pos;
  }
  key[pos] = k;
  site[pos] = s;
}

// One micro tile: 4 targets x 8 candidates, summed over the columns in
// order. Weighted: ((r - f) * w) / 100, then squared, as the EOF form says.
template <bool Weighted>
[[gnu::always_inline]] inline void MicroTile(const double* panel, const double* block,
                                             const double* weights, int columns, V4 acc[4][2]) {
  for (int t = 0; t < kBlock; ++t) acc[t][0] = acc[t][1] = V4{0, 0, 0, 0};
  for (int k = 0; k < columns; ++k) {
    V4 p0, p1;
    std::memcpy(&p0, panel + k * kPanel, sizeof p0);
    std::memcpy(&p1, panel + k * kPanel + 4, sizeof p1);
    const double* f = block + k * kBlock;
    for (int t = 0; t < kBlock; ++t) {
      V4 d0 = p0 - f[t];
      V4 d1 = p1 - f[t];
      if constexpr (Weighted) {
        d0 = d0 * weights[k];
        d1 = d1 * weights[k];
        d0 = d0 / 100.0;
        d1 = d1 / 100.0;
      }
      acc[t][0] += d0 * d0;
      acc[t][1] += d1 * d1;
    }
  }
}

inline bool AnyLane(I4 m) {
#ifdef VARNOTH_X86
  return _mm_movemask_ps(reinterpret_cast<__m128>(m)) != 0;
#else
  return (m[0] | m[1] | m[2] | m[3]) != 0;
#endif
}

struct Work {
  const NearestInput* in;
  const double* panels;   // [panel][column][8]
  const int* panelSites;  // site numbers per panel lane, -1 for padding
  long panelCount;
};

// Everything for targets [first, last], on one thread.
template <bool Weighted>
[[gnu::always_inline]] inline void SearchRangeBody(const Work& w, long first, long last,
                                                   float* outKey, int* outSite,
                                                   const std::function<void(long)>* progress) {
  const NearestInput& in = *w.in;
  const int columns = in.Columns;
  const int ranks = in.Ranks;
  // A block of targets that stays in the second-level cache while all
  // candidate panels pass by.
  long blockTargets = (160L * 1024) / (8L * std::max(1, columns));
  blockTargets = std::clamp(blockTargets / kBlock * kBlock, static_cast<long>(kBlock), 256L);
  AlignedDoubles packed(static_cast<std::size_t>(blockTargets) * columns);
  std::vector<float> key(static_cast<std::size_t>(blockTargets) * ranks);
  std::vector<int> site(static_cast<std::size_t>(blockTargets) * ranks);
  double lanes[kPanel];

  for (long b0 = first; b0 <= last; b0 += blockTargets) {
    const long b1 = std::min(last, b0 + blockTargets - 1);
    const long n = b1 - b0 + 1;
    const long micro = (n + kBlock - 1) / kBlock;
    // Pack the block as [micro block][column][4]; missing targets read 0
    // and their lists are dropped.
    for (long m = 0; m < micro; ++m)
      for (int t = 0; t < kBlock; ++t) {
        long target = b0 + m * kBlock + t;
        const double* row = target <= b1 ? in.Targets + target * columns : nullptr;
        double* dst = packed.data + m * kBlock * columns + t;
        for (int k = 0; k < columns; ++k) dst[k * kBlock] = row ? row[k] : 0.0;
      }
    std::fill(key.begin(), key.end(), kNoDistance);
    std::fill(site.begin(), site.end(), -1);

    for (long p = 0; p < w.panelCount; ++p) {
      const double* panel = w.panels + p * kPanel * columns;
      const int* sites = w.panelSites + p * kPanel;
      for (long m = 0; m < micro; ++m) {
        V4 acc[4][2];
        MicroTile<Weighted>(panel, packed.data + m * kBlock * columns, in.ColumnWeights, columns,
                            acc);
        for (int t = 0; t < kBlock; ++t) {
          float* tk = key.data() + (m * kBlock + t) * ranks;
          int* ts = site.data() + (m * kBlock + t) * ranks;
          const float last_ = tk[ranks - 1];
          const F4 bound = {last_, last_, last_, last_};
          const F4 lo = __builtin_convertvector(acc[t][0], F4);
          const F4 hi = __builtin_convertvector(acc[t][1], F4);
          if (!AnyLane((lo <= bound) | (hi <= bound))) continue;
          std::memcpy(lanes, &acc[t][0], sizeof(V4));
          std::memcpy(lanes + 4, &acc[t][1], sizeof(V4));
          for (int l = 0; l < kPanel; ++l) {
            const double d = lanes[l];
            if (d == 0.0 || sites[l] < 0) continue;
            Insert(tk, ts, ranks, static_cast<float>(d), sites[l]);
          }
        }
      }
    }
    for (long t = 0; t < n; ++t)
      for (int r = 0; r < ranks; ++r) {
        const std::size_t from = static_cast<std::size_t>(t) * ranks + r;
        const std::size_t to = static_cast<std::size_t>(b0 + t) * ranks + r;
        outKey[to] = key[from];
        outSite[to] = site[from] < 0 ? 0 : site[from];
      }
    if (progress && *progress) (*progress)(b1 - first + 1);
  }
}

template <bool Weighted>
void SearchRangeGeneric(const Work& w, long first, long last, float* outKey, int* outSite,
                        const std::function<void(long)>* progress) {
  SearchRangeBody<Weighted>(w, first, last, outKey, outSite, progress);
}

#ifdef VARNOTH_X86
template <bool Weighted>
[[gnu::target("avx2")]] void SearchRangeAvx2(const Work& w, long first, long last, float* outKey,
                                             int* outSite,
                                             const std::function<void(long)>* progress) {
  SearchRangeBody<Weighted>(w, first, last, outKey, outSite, progress);
}

bool HasAvx2() {
  static const bool has = __builtin_cpu_supports("avx2");
  return has;
}
#endif

}  // namespace

const char* NearestKernelName() {
#ifdef VARNOTH_X86
  if (HasAvx2()) return "AVX2";
  return "SSE2";
#else
  return "generic";
#endif
}

void FindNearest(const NearestInput& in, float* Key, int* Site,
                 const std::function<void(long)>& progress) {
  const int columns = in.Columns;
  const long panelCount = (in.CandidateCount + kPanel - 1) / kPanel;
  // Candidates as panels of 8 sites, column by column, so that the kernel
  // reads them in one stream; padding lanes hold NaN and are never chosen.
  AlignedDoubles panels(static_cast<std::size_t>(std::max(1L, panelCount)) * kPanel *
                        std::max(1, columns));
  std::vector<int> panelSites(static_cast<std::size_t>(std::max(1L, panelCount)) * kPanel, -1);
  for (long p = 0; p < panelCount; ++p)
    for (int l = 0; l < kPanel; ++l) {
      const long c = p * kPanel + l;
      double* dst = panels.data + p * kPanel * columns + l;
      if (c < in.CandidateCount) {
        const double* row = in.Candidates + c * columns;
        for (int k = 0; k < columns; ++k) dst[k * kPanel] = row[k];
        panelSites[static_cast<std::size_t>(c)] = in.SiteNumbers[c];
      } else {
        for (int k = 0; k < columns; ++k)
          dst[k * kPanel] = std::numeric_limits<double>::quiet_NaN();
      }
    }
  Work w{&in, panels.data, panelSites.data(), panelCount};

  const bool weighted = in.ColumnWeights != nullptr;
  const std::thread::id caller = std::this_thread::get_id();
  const unsigned workers = WorkerCount();
  ParallelRows(0, in.TargetCount - 1, 16, [&](long first, long last) {
    // Only the calling thread reports, as a share of the whole.
    std::function<void(long)> report;
    if (progress && std::this_thread::get_id() == caller)
      report = [&](long done) {
        progress(std::min(in.TargetCount, done * static_cast<long>(workers)));
      };
#ifdef VARNOTH_X86
    if (HasAvx2()) {
      if (weighted)
        SearchRangeAvx2<true>(w, first, last, Key, Site, &report);
      else
        SearchRangeAvx2<false>(w, first, last, Key, Site, &report);
      return;
    }
#endif
    if (weighted)
      SearchRangeGeneric<true>(w, first, last, Key, Site, &report);
    else
      SearchRangeGeneric<false>(w, first, last, Key, Site, &report);
  });
  if (progress) progress(in.TargetCount);
}

}  // namespace varnoth::analogue
