// The power iteration as it was before its rows were held in panels: the
// baseline of the power iteration benchmark.
#include "support/ReferencePowerIteration.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <functional>
#include <system_error>
#include <thread>
#include <vector>

#include "state/Clones.h"
#include "state/Parallel.h"

namespace varnoth::test {

namespace {

typedef double Quad __attribute__((vector_size(32)));

// Sums of 4 Q neighbouring r, from r on, in registers.
template <int Q>
inline __attribute__((always_inline)) void SumColumnBlock(double* w, const double* a,
                                                          std::size_t stride, const double* v,
                                                          std::size_t n, std::size_t r) {
  Quad acc[Q] = {};
  for (std::size_t k = 0; k < n; ++k) {
    const double* row = a + k * stride + r;
    const Quad x = {v[k], v[k], v[k], v[k]};
    for (int q = 0; q < Q; ++q) {
      Quad y;
      __builtin_memcpy(&y, row + 4 * q, sizeof y);
      acc[q] += x * y;
    }
  }
  for (int q = 0; q < Q; ++q) __builtin_memcpy(w + r + 4 * q, &acc[q], sizeof(Quad));
}

VARNOTH_CLONES void SumColumns(double* w, const double* a, std::size_t stride, const double* v,
                               std::size_t n, std::size_t first, std::size_t last) {
  std::size_t r = first;
  // 32 sums at a time keep both adders busy past the latency of an add.
  for (; r + 32 <= last; r += 32) SumColumnBlock<8>(w, a, stride, v, n, r);
  for (; r + 16 <= last; r += 16) SumColumnBlock<4>(w, a, stride, v, n, r);
  for (; r < last; ++r) {
    double sum = 0;
    for (std::size_t k = 0; k < n; ++k) sum += v[k] * a[k * stride + r];
    w[r] = sum;
  }
}

VARNOTH_CLONES void SubtractScaled(double* __restrict y, const double* __restrict x, double a,
                                   std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) y[i] = y[i] - x[i] * a;
}

// Phases of the power iteration shared between the calling thread and one
// helper: a phase is cut into parts that either thread claims. The caller
// always works; the helper claims what it can while it runs, so a helper
// that the machine has put aside costs at most the part it holds. When the
// caller has waited long for such a part, it goes on alone for a growing
// number of components before it tries again. Which thread does a part
// never changes its numbers.
class PhaseTeam {
 public:
  PhaseTeam(long parts, std::function<void(long)> part) : parts_(parts), part_(std::move(part)) {
    try {
      if (parts_ > 1 && WorkerCount() > 1) {
        helper_ = std::thread([this] { Help(); });
        KeepOffThisCore(helper_);
      }
    } catch (const std::system_error&) {
      // No thread to be had: the caller does every part.
    }
  }
  ~PhaseTeam() {
    if (!helper_.joinable()) return;
    quit_.store(true, std::memory_order_release);
    phase_.fetch_add(1, std::memory_order_release);
    phase_.notify_one();
    helper_.join();
  }
  // Whether component c may use the helper.
  void StartComponent(long c) { shared_ = helper_.joinable() && c >= aloneUntil_; }
  void Run() {
    if (!shared_) {
      for (long p = 0; p < parts_; ++p) part_(p);
      return;
    }
    const std::uint64_t phase = ++phaseCount_;  // some thousands per analysis
    done_.store(0, std::memory_order_relaxed);
    claim_.store(phase << 32 | static_cast<std::uint64_t>(parts_), std::memory_order_release);
    phase_.store(static_cast<std::uint32_t>(phase), std::memory_order_release);
    phase_.notify_one();
    Work(phase);
    if (done_.load(std::memory_order_acquire) == parts_) return;
    const auto start = std::chrono::steady_clock::now();
    bool slow = false;
    for (unsigned spins = 0; done_.load(std::memory_order_acquire) != parts_; ++spins) {
      if (spins < 2000) {
        Pause();
      } else {
        if (!slow && std::chrono::steady_clock::now() - start > std::chrono::microseconds(200))
          slow = true;
        std::this_thread::yield();
      }
    }
    if (slow) {
      shared_ = false;
      aloneFor_ = std::min(aloneFor_ * 2, 256L);
      aloneUntil_ = componentHint_ + aloneFor_;
    }
  }
  void SetComponent(long c) { componentHint_ = c; }

 private:
  static void Pause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
  }
  // Claims and does parts of `phase` until none is left: the caller from
  // the front, the helper from the back, so that each part tends to stay
  // in the cache of the core that did it last time.
  void Work(std::uint64_t phase, bool fromBack = false) {
    std::uint64_t x = claim_.load(std::memory_order_acquire);
    for (;;) {
      const std::uint64_t front = (x >> 16) & 0xFFFF, back = x & 0xFFFF;
      if ((x >> 32) != phase || front >= back) return;
      const std::uint64_t next = fromBack ? x - 1 : x + (1u << 16);
      if (claim_.compare_exchange_weak(x, next, std::memory_order_acq_rel,
                                       std::memory_order_acquire)) {
        part_(static_cast<long>(fromBack ? back - 1 : front));
        done_.fetch_add(1, std::memory_order_acq_rel);
        x = claim_.load(std::memory_order_acquire);
      }
    }
  }
  void Help() {
    std::uint32_t seen = 0;
    for (;;) {
      std::uint32_t now;
      for (unsigned spins = 0; (now = phase_.load(std::memory_order_acquire)) == seen; ++spins) {
        if (spins < 4000)
          Pause();
        else
          phase_.wait(seen, std::memory_order_acquire);
      }
      seen = now;
      if (quit_.load(std::memory_order_acquire)) return;
      const std::uint64_t phase = claim_.load(std::memory_order_acquire) >> 32;
      if (static_cast<std::uint32_t>(phase) == now) Work(phase, true);
    }
  }

  const long parts_;
  const std::function<void(long)> part_;
  std::thread helper_;
  // Phase number << 32 | first unclaimed part << 16 | one past the last.
  std::atomic<std::uint64_t> claim_{0};
  std::atomic<long> done_{0};
  std::atomic<std::uint32_t> phase_{0};
  std::atomic<bool> quit_{false};
  std::uint32_t phaseCount_ = 0;
  bool shared_ = false;
  long aloneFor_ = 1, aloneUntil_ = 0, componentHint_ = 0;
};

}  // namespace

// Power iteration for all components on a transposed copy of the matrix, so
// that A v runs as column updates vectorised across rows while each w(r)
// keeps its sum over k in index order. Parts of 32 rows are shared between
// two threads; the norm is summed by the caller, in row order.
void PowerIterationsAsBefore(Session& s, Progress& progress) {
  const long n = s.EigenOrder;
  s.EigenWork.Require(n, n);
  s.EigenVectors.Require(n + 1, n);
  const std::size_t nn = static_cast<std::size_t>(n);
  std::vector<double> AT(nn * nn);  // AT[k * n + r] = A(r, k), 0-based
  for (long r = 1; r <= n; ++r)
    for (long k = 1; k <= n; ++k) AT[(k - 1) * nn + (r - 1)] = s.EigenWork(r, k);
  std::vector<double> v(nn), w(nn), vs(nn);
  double norm = 0;

  // Small matrices are not worth a second thread: one part of all rows.
  const std::size_t kPart = n >= 128 ? 32 : nn;
  bool deflate = false;  // what the next phase does
  auto part = [&](long p) {
    const std::size_t r0 = static_cast<std::size_t>(p) * kPart, r1 = std::min(nn, r0 + kPart);
    if (!deflate) {
      SumColumns(w.data(), AT.data(), nn, v.data(), nn, r0, r1);
    } else {
      for (std::size_t k = 0; k < nn; ++k)
        SubtractScaled(AT.data() + k * nn + r0, vs.data() + r0, v[k], r1 - r0);
    }
  };
  PhaseTeam team(static_cast<long>((nn + kPart - 1) / kPart), part);
  for (long c = 1; c <= n; ++c) {
    progress.Step(c);
    team.SetComponent(c);
    team.StartComponent(c);
    std::fill(v.begin(), v.end(), 0.0);
    v[0] = 1;
    for (int it = 0; it < 20; ++it) {
      deflate = false;
      team.Run();
      double sq = 0;
      for (std::size_t r = 0; r < nn; ++r) sq += w[r] * w[r];
      norm = std::sqrt(sq);
      if (norm == 0) {
        std::fill(v.begin(), v.end(), 0.0);
      } else {
        for (std::size_t r = 0; r < nn; ++r) v[r] = w[r] / norm;
      }
      for (std::size_t r = 0; r < nn; ++r) vs[r] = v[r] * norm;
    }
    deflate = true;
    team.Run();
    s.EigenVectors(n + 1, c) = norm;
    for (std::size_t r = 0; r < nn; ++r) s.EigenVectors(static_cast<long>(r) + 1, c) = v[r];
  }
  for (long r = 1; r <= n; ++r)
    for (long k = 1; k <= n; ++k) s.EigenWork(r, k) = AT[(k - 1) * nn + (r - 1)];
}

}  // namespace varnoth::test
