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

inline bool AnyLane(I4 m);
inline bool AllLanes(I4 m);

// Columns summed between two looks at whether a tile can still matter.
constexpr int kChunk = 32;

// One micro tile: 4 targets x 8 candidates, summed over the columns in
// order. Weighted: ((r - f) * w) / 100, then squared, as the EOF form says.
// With bounds (the last key of each target's list, and of each candidate's
// when the candidates keep lists too), the tile stops early when every
// partial sum already exceeds its bounds in single: sums of squares only
// grow, so none of those pairs could enter a list. Returns whether the sums
// are complete.
template <bool Weighted>
[[gnu::always_inline]] inline bool MicroTile(const double* panel, const double* block,
                                             const double* weights, int columns, V4 acc[4][2],
                                             const float* bounds = nullptr,
                                             const float* candidateBounds = nullptr) {
  for (int t = 0; t < kBlock; ++t) acc[t][0] = acc[t][1] = V4{0, 0, 0, 0};
  int k = 0;
  for (;;) {
    const int end = bounds ? std::min(columns, k + kChunk) : columns;
    for (; k < end; ++k) {
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
    if (k >= columns) return true;
    I4 beyond = {-1, -1, -1, -1};
    for (int t = 0; t < kBlock; ++t) {
      const F4 b = {bounds[t], bounds[t], bounds[t], bounds[t]};
      const F4 lo = __builtin_convertvector(acc[t][0], F4);
      const F4 hi = __builtin_convertvector(acc[t][1], F4);
      beyond &= (lo > b) & (hi > b);
      if (candidateBounds) {
        // The candidates' own lists take these sums too.
        F4 cLo, cHi;
        std::memcpy(&cLo, candidateBounds, sizeof cLo);
        std::memcpy(&cHi, candidateBounds + 4, sizeof cHi);
        beyond &= (lo > cLo) & (hi > cHi);
      }
    }
    if (AllLanes(beyond)) return false;
  }
}

#ifdef VARNOTH_X86
bool HasAvx2() {
  static const bool has = __builtin_cpu_supports("avx2");
  return has;
}
#endif

inline bool AnyLane(I4 m) {
#ifdef VARNOTH_X86
  return _mm_movemask_ps(reinterpret_cast<__m128>(m)) != 0;
#else
  return (m[0] | m[1] | m[2] | m[3]) != 0;
#endif
}

inline bool AllLanes(I4 m) {
#ifdef VARNOTH_X86
  return _mm_movemask_ps(reinterpret_cast<__m128>(m)) == 0xF;
#else
  return (m[0] & m[1] & m[2] & m[3]) != 0;
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
  AlignedDoubles packed(static_cast<std::size_t>(blockTargets) * std::max(1, columns));
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
        float bounds[kBlock];
        for (int t = 0; t < kBlock; ++t) bounds[t] = key[(m * kBlock + t) * ranks + ranks - 1];
        if (!MicroTile<Weighted>(panel, packed.data + m * kBlock * columns, in.ColumnWeights,
                                 columns, acc, bounds))
          continue;
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

#endif

// The search of the sites among themselves. Rows are taken in blocks of 64
// sites; a block meets the panels of its own sites (both ways round, so only
// its own lists take those) and every later panel (each pair once, offered
// to both lists). Each thread keeps lists for all sites; they are merged at
// the end, which the strict order of (distance, site) makes exact.
constexpr long kSelfBlock = 64;  // rows per block: 16 micro blocks, 8 panels

struct SelfWork {
  const SelfInput* in;
  const double* panels;  // all sites as panels [panel][column][8]
  const double* blocks;  // all sites as micro blocks [micro][column][4]
  long panelCount, microCount, blockCount;
  std::atomic<long>* next;  // the next row block to take
  std::atomic<long>* done;  // pairs of panels done, for progress
};

struct SelfLists {
  explicit SelfLists(long sites, int ranks)
      : key(static_cast<std::size_t>(sites) * ranks, kNoDistance),
        site(static_cast<std::size_t>(sites) * ranks, -1),
        bound(static_cast<std::size_t>(sites), kNoDistance) {}
  std::vector<float> key;
  std::vector<int> site;
  std::vector<float> bound;  // the last key of each list, read by the filters
};

inline void OfferRow(SelfLists& lists, int ranks, long row, float k, int candidate,
                     const Exclusion* excluded) {
  float* key = lists.key.data() + row * ranks;
  int* site = lists.site.data() + row * ranks;
  // Only a pair that would enter the list is looked up.
  if (!Before(k, candidate, key[ranks - 1], site[ranks - 1])) return;
  if (excluded && excluded->Excludes(row, candidate - 1)) return;
  Insert(key, site, ranks, k, candidate);
  lists.bound[static_cast<std::size_t>(row)] = key[ranks - 1];
}

template <bool Weighted>
[[gnu::always_inline]] inline void SelfBody(const SelfWork& w, SelfLists& lists, bool reports,
                                            const std::function<void(long)>* progress) {
  const SelfInput& in = *w.in;
  const int columns = in.Columns, ranks = in.Ranks;
  const long count = in.Count;
  const unsigned char* eligible = in.Eligible;
  double lanes[kBlock][kPanel];
  const long totalWork = w.blockCount * (w.blockCount + 1) / 2;
  for (;;) {
    const long b = w.next->fetch_add(1);
    if (b >= w.blockCount) break;
    const long firstMicro = b * (kSelfBlock / kBlock);
    const long lastMicro = std::min(w.microCount, firstMicro + kSelfBlock / kBlock) - 1;
    const long firstPanel = b * (kSelfBlock / kPanel);
    const long ownPanelsEnd = std::min(w.panelCount, firstPanel + kSelfBlock / kPanel);
    for (long p = firstPanel; p < w.panelCount; ++p) {
      const double* panel = w.panels + p * kPanel * columns;
      const bool both = p >= ownPanelsEnd;
      const long col0 = p * kPanel;
      for (long m = firstMicro; m <= lastMicro; ++m) {
        V4 acc[4][2];
        float bounds[kBlock];
        for (int t = 0; t < kBlock; ++t) {
          const long row = m * kBlock + t;
          // Padding rows take no list: a bound nothing exceeds keeps the tile.
          bounds[t] = row < count ? lists.bound[static_cast<std::size_t>(row)]
                                  : std::numeric_limits<float>::infinity();
        }
        if (!MicroTile<Weighted>(panel, w.blocks + m * kBlock * columns, in.ColumnWeights, columns,
                                 acc, bounds, both ? lists.bound.data() + col0 : nullptr))
          continue;
        bool copied = false;
        auto copy = [&] {
          if (copied) return;
          for (int t = 0; t < kBlock; ++t) {
            std::memcpy(lanes[t], &acc[t][0], sizeof(V4));
            std::memcpy(lanes[t] + 4, &acc[t][1], sizeof(V4));
          }
          copied = true;
        };
        F4 lo[4], hi[4];
        for (int t = 0; t < kBlock; ++t) {
          lo[t] = __builtin_convertvector(acc[t][0], F4);
          hi[t] = __builtin_convertvector(acc[t][1], F4);
        }
        // The rows' own lists: candidates are the panel's sites.
        for (int t = 0; t < kBlock; ++t) {
          const long row = m * kBlock + t;
          if (row >= count) break;
          const float last_ = lists.bound[static_cast<std::size_t>(row)];
          const F4 bound = {last_, last_, last_, last_};
          if (!AnyLane((lo[t] <= bound) | (hi[t] <= bound))) continue;
          copy();
          for (int l = 0; l < kPanel; ++l) {
            const long col = col0 + l;
            const double d = lanes[t][l];
            if (d == 0.0 || col >= count || !eligible[col]) continue;
            OfferRow(lists, ranks, row, static_cast<float>(d), static_cast<int>(col + 1),
                     in.Excluded);
          }
        }
        if (!both) continue;
        // The panel's lists: candidates are the block's rows.
        F4 lowLo = lo[0], lowHi = hi[0];
        for (int t = 1; t < kBlock; ++t) {
          lowLo = lowLo < lo[t] ? lowLo : lo[t];
          lowHi = lowHi < hi[t] ? lowHi : hi[t];
        }
        F4 boundLo, boundHi;
        std::memcpy(&boundLo, lists.bound.data() + col0, sizeof(F4));
        std::memcpy(&boundHi, lists.bound.data() + col0 + 4, sizeof(F4));
        if (!AnyLane((lowLo <= boundLo) | (lowHi <= boundHi))) continue;
        copy();
        for (int l = 0; l < kPanel; ++l) {
          const long col = col0 + l;
          if (col >= count) break;
          for (int t = 0; t < kBlock; ++t) {
            const long row = m * kBlock + t;
            const double d = lanes[t][l];
            if (d == 0.0 || row >= count || !eligible[row]) continue;
            OfferRow(lists, ranks, col, static_cast<float>(d), static_cast<int>(row + 1),
                     in.Excluded);
          }
        }
      }
    }
    const long work = w.blockCount - b;
    const long total = w.done->fetch_add(work) + work;
    if (reports && progress && *progress) (*progress)(count * total / std::max(1L, totalWork));
  }
}

template <bool Weighted>
void SelfGeneric(const SelfWork& w, SelfLists& lists, bool reports,
                 const std::function<void(long)>* progress) {
  SelfBody<Weighted>(w, lists, reports, progress);
}

#ifdef VARNOTH_X86
template <bool Weighted>
[[gnu::target("avx2")]] void SelfAvx2(const SelfWork& w, SelfLists& lists, bool reports,
                                      const std::function<void(long)>* progress) {
  SelfBody<Weighted>(w, lists, reports, progress);
}
#endif

}  // namespace

bool Exclusion::Excludes(long row, long other) const {
  if (All) return true;
  if (!Start) return false;
  const int* first = Rows + Start[row];
  const int* last = Rows + Start[row + 1];
  return std::binary_search(first, last, static_cast<int>(other));
}

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
  ParallelRows(0, panelCount - 1, 64, [&](long first, long last) {
    for (long p = first; p <= last; ++p)
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
  });
  Work w{&in, panels.data, panelSites.data(), panelCount};

  const bool weighted = in.ColumnWeights != nullptr;
  const std::thread::id caller = std::this_thread::get_id();
  std::atomic<long> searched{0};
  ParallelRows(0, in.TargetCount - 1, 16, [&](long first, long last) {
    // Every part counts its targets; only the calling thread reports.
    long counted = 0;
    std::function<void(long)> report;
    if (progress)
      report = [&](long done) {
        const long all =
            searched.fetch_add(done - counted, std::memory_order_relaxed) + done - counted;
        counted = done;
        if (std::this_thread::get_id() == caller) progress(all);
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

void FindNearestAmongThemselves(const SelfInput& in, float* Key, int* Site,
                                const std::function<void(long)>& progress) {
  const int columns = in.Columns;
  const long count = in.Count;
  const long panelCount = (count + kPanel - 1) / kPanel;
  const long microCount = (count + kBlock - 1) / kBlock;
  const long blockCount = (count + kSelfBlock - 1) / kSelfBlock;
  // Every site both as a panel lane (NaN padding, never chosen) and as a
  // micro block row (zero padding, never offered).
  AlignedDoubles panels(static_cast<std::size_t>(std::max(1L, panelCount)) * kPanel *
                        std::max(1, columns));
  AlignedDoubles blocks(static_cast<std::size_t>(std::max(1L, microCount)) * kBlock *
                        std::max(1, columns));
  ParallelRows(0, panelCount * kPanel - 1, 512, [&](long first, long last) {
    for (long r = first; r <= last; ++r) {
      double* dst = panels.data + (r / kPanel) * kPanel * columns + r % kPanel;
      for (int k = 0; k < in.Columns; ++k)
        dst[k * kPanel] =
            r < count ? in.Rows[r * in.Columns + k] : std::numeric_limits<double>::quiet_NaN();
    }
  });
  ParallelRows(0, microCount * kBlock - 1, 512, [&](long first, long last) {
    for (long r = first; r <= last; ++r) {
      double* dst = blocks.data + (r / kBlock) * kBlock * columns + r % kBlock;
      for (int k = 0; k < in.Columns; ++k)
        dst[k * kBlock] = r < count ? in.Rows[r * in.Columns + k] : 0.0;
    }
  });
  std::atomic<long> next{0}, done{0};
  SelfWork w{&in, panels.data, blocks.data, panelCount, microCount, blockCount, &next, &done};
  const unsigned workers = std::max(
      1u, std::min<unsigned>(WorkerCount(), static_cast<unsigned>(std::max(1L, blockCount))));
  // The bound filter reads whole panels: room for the padding lanes.
  std::vector<SelfLists> lists;
  lists.reserve(workers);
  for (unsigned t = 0; t < workers; ++t) lists.emplace_back(panelCount * kPanel, in.Ranks);
  const bool weighted = in.ColumnWeights != nullptr;
  const std::thread::id caller = std::this_thread::get_id();
  ParallelRows(0, static_cast<long>(workers) - 1, 1, [&](long first, long last) {
    for (long t = first; t <= last; ++t) {
      SelfLists& own = lists[static_cast<std::size_t>(t)];
      // Whichever list the calling thread fills, it alone reports.
      const bool reports = std::this_thread::get_id() == caller;
#ifdef VARNOTH_X86
      if (HasAvx2()) {
        if (weighted)
          SelfAvx2<true>(w, own, reports, &progress);
        else
          SelfAvx2<false>(w, own, reports, &progress);
        continue;
      }
#endif
      if (weighted)
        SelfGeneric<true>(w, own, reports, &progress);
      else
        SelfGeneric<false>(w, own, reports, &progress);
    }
  });
  // Merge the threads' lists into the first.
  const int ranks = in.Ranks;
  SelfLists& all = lists[0];
  for (unsigned t = 1; t < workers; ++t)
    for (long r = 0; r < count; ++r)
      for (int q = 0; q < ranks; ++q) {
        const std::size_t at = static_cast<std::size_t>(r) * ranks + q;
        if (lists[t].site[at] < 0) break;
        Insert(all.key.data() + r * ranks, all.site.data() + r * ranks, ranks, lists[t].key[at],
               lists[t].site[at]);
      }
  for (long r = 0; r < count; ++r)
    for (int q = 0; q < ranks; ++q) {
      const std::size_t at = static_cast<std::size_t>(r) * ranks + q;
      Key[at] = all.key[at];
      Site[at] = all.site[at] < 0 ? 0 : all.site[at];
    }
  if (progress) progress(count);
}

}  // namespace varnoth::analogue
