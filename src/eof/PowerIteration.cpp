// The power iteration of the EOF analysis on two cores, with the numbers of
// the plain loop: every row's products are summed over the columns in
// order, and the sum of squares over the rows in order.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <system_error>
#include <thread>
#include <vector>

#include "eof/Eigen.h"
#include "eof/Kernels.h"
#include "state/Parallel.h"

namespace varnoth {

namespace {

using Count = std::uint64_t;
constexpr int kIterations = 20;

void Pause() {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#endif
}

struct alignas(64) Line {
  std::atomic<Count> value{0};
};

// The caller's signal that product t is summed, with its sum of squares;
// kept by the parity of t, because the helper may still read one product's
// while the caller is at the next.
struct alignas(64) CallerLine {
  std::atomic<Count> value{0};
  double sq[2] = {0, 0};
};

// One thread's copy of the vectors a product needs.
struct Own {
  std::vector<double> v, old, scaled;
  double norm = 0, sq = 0;
  Count t = 0;  // the caller's last product; the one the helper holds
};

// Rows 0..split-1 of the matrix are the caller's, the rest the helper's;
// so the two cores read each their own panels from their own caches, and
// each makes the whole next vector itself from the two halves of the
// product instead of waiting for the other to hand it over.
class TwoCoreIteration {
 public:
  explicit TwoCoreIteration(Session& s) : s_(s), n_(static_cast<std::size_t>(s.EigenOrder)) {
    const std::size_t rows = kernels::kPanelRows;
    // The caller also adds up the squares of every row, so it takes a
    // little less than half. Both sides start on whole registers.
    split_ = n_ >= kShared ? (n_ * 49 / 100) / 4 * 4 : n_;
    auto addPanels = [&](std::size_t from, std::size_t to) {
      for (std::size_t r = from; r < to; r += rows) {
        const std::size_t quads = std::min(kernels::kPanelQuads, (to - r + 3) / 4);
        panels_.push_back({r, quads, offset_});
        offset_ += 4 * quads * n_;
      }
    };
    addPanels(0, split_);
    firstHelperPanel_ = panels_.size();
    addPanels(split_, n_);
    padded_ = (n_ + 3) / 4 * 4;
    store_.assign(offset_, 0.0);
    for (const Panel& p : panels_)
      for (std::size_t k = 0; k < n_; ++k)
        for (std::size_t i = 0; i < 4 * p.quads && p.row + i < n_; ++i)
          store_[p.offset + k * 4 * p.quads + i] =
              s.EigenWork(static_cast<long>(p.row + i) + 1, static_cast<long>(k) + 1);
    for (auto& w : w_) w.assign(padded_, 0.0);
    recordVector_.assign(padded_, 0.0);
    recordOld_.assign(padded_, 0.0);
    recordScaled_.assign(padded_, 0.0);
    column0_.resize(n_);
    for (std::size_t r = 0; r < n_; ++r) column0_[r] = s.EigenWork(static_cast<long>(r) + 1, 1);
    if (split_ < n_ && WorkerCount() > 1) {
      try {
        helper_ = std::thread([this] { Help(); });
        KeepOffThisCore(helper_);
      } catch (const std::system_error&) {
        // No thread to be had: the caller does every row.
      }
    }
  }
  ~TwoCoreIteration() {
    if (!helper_.joinable()) return;
    quit_.store(true, std::memory_order_release);
    invitation_.value.fetch_add(1, std::memory_order_release);
    invitation_.value.notify_one();
    helper_.join();
  }
  TwoCoreIteration(const TwoCoreIteration&) = delete;
  TwoCoreIteration& operator=(const TwoCoreIteration&) = delete;

  void Run(Progress& progress) {
    const long n = s_.EigenOrder;
    Own me;
    Prepare(me);
    for (long c = 1; c <= n; ++c) {
      progress.Step(c);
      FirstIteration(me, c);
      inviting_ = helper_.joinable() && c >= aloneUntil_;
      helperIn_ = false;
      bool slow = false;
      Products(me, 0, kIterations - 1, [&](int k, int count) {
        CallerProduct(me, c, k, count, slow);
        return true;
      });
      if (slow) {
        aloneFor_ = std::min(aloneFor_ * 2, 256L);
        aloneUntil_ = c + aloneFor_;
      }
      EndComponent(me);
      s_.EigenVectors(n + 1, c) = me.norm;
      for (std::size_t r = 0; r < n_; ++r) s_.EigenVectors(static_cast<long>(r) + 1, c) = me.v[r];
    }
    // The deflation by the last component, with products nobody reads.
    if (n > 0) {
      std::fill(me.v.begin(), me.v.end(), 0.0);
      Sums(me, 0, panels_.size(), w_[0].data(), true);
    }
    for (const Panel& p : panels_)
      for (std::size_t k = 0; k < n_; ++k)
        for (std::size_t i = 0; i < 4 * p.quads && p.row + i < n_; ++i)
          s_.EigenWork(static_cast<long>(p.row + i) + 1, static_cast<long>(k) + 1) =
              store_[p.offset + k * 4 * p.quads + i];
  }

 private:
  // Below this order a second thread costs more than it saves.
  static constexpr std::size_t kShared = 128;

  struct Panel {
    std::size_t row, quads, offset;
  };

  void Prepare(Own& me) const {
    me.v.assign(padded_, 0.0);
    me.old.assign(padded_, 0.0);
    me.scaled.assign(padded_, 0.0);
  }

  // The first product of a component multiplies by (1, 0, 0, ...): each
  // row's sum is 0 + its first cell, and then adds 0 times each other cell,
  // which leaves it as it is while the cells are finite. So it is taken
  // from column 0, deflated here as the panels will be. A cell that is not
  // finite elsewhere makes the next product's sum of squares infinite or
  // NaN, and then the component starts again from the literal first
  // product: which NaN comes out depends on the order of the steps.
  void FirstIteration(Own& me, long c) {
    if (c > 1)
      for (std::size_t r = 0; r < n_; ++r) column0_[r] = column0_[r] - me.scaled[r] * me.old[0];
    double* w = w_[0].data();
    for (std::size_t r = 0; r < n_; ++r) w[r] = 0.0 + column0_[r];
    double sq = 0;
    for (std::size_t r = 0; r < n_; ++r) sq += w[r] * w[r];
    Normalise(me, w, sq);
  }

  // Products k..count-1 of component c after its first iteration:
  // `product(k, count)` multiplies by me.v and, unless it is the
  // component's last on the helper, leaves the next vector in me.v and its
  // sum of squares in me.sq; it returns false when the helper is told to
  // stop. Product 0 also deflates the matrix by the component before.
  template <typename Product>
  void Products(Own& me, int k, int count, Product product) {
    for (; k < count; ++k) {
      if (!product(k, count)) return;
      if (k == 0 && !std::isfinite(me.sq)) {
        // The first iteration again, literally, on the deflated matrix.
        std::fill(me.v.begin(), me.v.end(), 0.0);
        me.v[0] = 1;
        count = kIterations + 1;
      }
    }
  }

  void Sums(Own& me, std::size_t from, std::size_t to, double* w, bool deflate) {
    for (std::size_t p = from; p < to; ++p) {
      const Panel& panel = panels_[p];
      double* data = store_.data() + panel.offset;
      if (deflate)
        kernels::DeflateAndSumPanel(w + panel.row, data, panel.quads, me.scaled.data() + panel.row,
                                    me.old.data(), me.v.data(), n_);
      else
        kernels::SumPanel(w + panel.row, data, panel.quads, me.v.data(), n_);
    }
  }

  void Normalise(Own& me, const double* w, double sq) {
    me.sq = sq;
    me.norm = std::sqrt(sq);
    if (me.norm == 0)
      std::fill(me.v.begin(), me.v.end(), 0.0);
    else
      kernels::Divide(me.v.data(), w, me.norm, n_);
  }

  void EndComponent(Own& me) {
    for (std::size_t r = 0; r < n_; ++r) me.scaled[r] = me.v[r] * me.norm;
    std::copy(me.v.begin(), me.v.end(), me.old.begin());
  }

  // What the helper needs to join at product k of component c, then the
  // number of that product, for the helper to claim.
  void Invite(const Own& me, long c, int k, int count, Count t) {
    recordComponent_ = c;
    recordPosition_ = k;
    recordCount_ = count;
    std::copy(me.v.begin(), me.v.end(), recordVector_.begin());
    std::copy(me.old.begin(), me.old.end(), recordOld_.begin());
    std::copy(me.scaled.begin(), me.scaled.end(), recordScaled_.begin());
    invitation_.value.store(t, std::memory_order_release);
    invitation_.value.notify_one();
  }

  // Adds the squares of panel p's rows, in order, to sq.
  double AddSquares(std::size_t p, const double* w, double sq) const {
    const std::size_t end = std::min(panels_[p].row + 4 * panels_[p].quads, n_);
    for (std::size_t r = panels_[p].row; r < end; ++r) sq += w[r] * w[r];
    return sq;
  }

  void CallerProduct(Own& me, long c, int k, int count, bool& slow) {
    const Count t = ++me.t;
    const bool deflate = k == 0 && c > 1;
    // A helper that did not do the last product is asked again at each one,
    // so a helper put aside for a moment comes back at the next.
    if (inviting_ && !helperIn_) Invite(me, c, k, count, t);
    double* w = w_[t & 1].data();
    // Each panel's squares are added while the next panel is read.
    double sq = 0;
    for (std::size_t p = 0; p < firstHelperPanel_; ++p) {
      Sums(me, p, p + 1, w, deflate);
      sq = AddSquares(p, w, sq);
    }
    helperIn_ = false;
    if (inviting_) {
      // A helper that has not come for this product by now is off its core:
      // the caller takes it, and the helper finds it taken.
      Count state = helperState_.value.load(std::memory_order_acquire);
      helperIn_ = !(Holds(state) < t &&
                    helperState_.value.compare_exchange_strong(
                        state, Finished(t), std::memory_order_acq_rel, std::memory_order_acquire));
    }
    if (helperIn_) {
      // The helper's rows are added as its panels come in, so that when its
      // last one does, only that one's rows are left before the sum is known.
      for (std::size_t p = firstHelperPanel_; p < panels_.size(); ++p) {
        if (p + 1 < panels_.size())
          WaitFor(
              [&] {
                return helperPanels_.value.load(std::memory_order_acquire) >=
                       PanelsDone(t, p + 1 - firstHelperPanel_);
              },
              slow);
        else
          WaitFor([&] { return Done(helperState_.value.load(std::memory_order_acquire), t); },
                  slow);
        sq = AddSquares(p, w, sq);
      }
      callerDone_.sq[t & 1] = sq;
      callerDone_.value.store(t, std::memory_order_release);
    } else {
      for (std::size_t p = firstHelperPanel_; p < panels_.size(); ++p) {
        Sums(me, p, p + 1, w, deflate);
        sq = AddSquares(p, w, sq);
      }
    }
    Normalise(me, w, sq);
  }

  // The helper's state is one word: the product it holds, and whether it
  // has finished it. It takes the next product in the same store that says
  // it has finished one, so the caller never sees a gap to fall into.
  static Count Holding(Count t) { return t << 1; }
  static Count Finished(Count t) { return t << 1 | 1; }
  static Count Holds(Count state) { return state >> 1; }
  static bool Done(Count state, Count t) { return Holds(state) > t || state == Finished(t); }

  // The helper's panels of product t done, before its last.
  static Count PanelsDone(Count t, std::size_t panels) { return t << 20 | panels; }

  template <typename Ready>
  static void WaitFor(Ready ready, bool& slow) {
    if (ready()) return;
    const auto start = std::chrono::steady_clock::now();
    for (unsigned spins = 0; !ready(); ++spins) {
      if (spins < 2000) {
        Pause();
      } else {
        if (!slow && std::chrono::steady_clock::now() - start > std::chrono::microseconds(200))
          slow = true;
        std::this_thread::yield();
      }
    }
  }

  // Joins at product t unless the caller has taken it.
  bool Join(Count t) {
    Count state = helperState_.value.load(std::memory_order_relaxed);
    return Holds(state) < t &&
           helperState_.value.compare_exchange_strong(state, Holding(t), std::memory_order_acq_rel,
                                                      std::memory_order_relaxed);
  }

  bool Quitting() const { return quit_.load(std::memory_order_acquire); }

  void Help() {
    Own me;
    Prepare(me);
    Count seen = 0;
    for (;;) {
      Count invited;
      for (unsigned spins = 0;
           (invited = invitation_.value.load(std::memory_order_acquire)) == seen; ++spins) {
        if (spins < 4000)
          Pause();
        else
          invitation_.value.wait(seen, std::memory_order_acquire);
      }
      seen = invited;
      if (Quitting()) return;
      // Holding the product, the helper may read what came with it: the
      // caller writes another invitation only at a product that goes on
      // without the helper, or at the next component, both after the helper
      // is done with this one.
      if (!Join(invited)) continue;
      const long c = recordComponent_;
      const int k = recordPosition_, count = recordCount_;
      std::copy(recordVector_.begin(), recordVector_.end(), me.v.begin());
      std::copy(recordOld_.begin(), recordOld_.end(), me.old.begin());
      std::copy(recordScaled_.begin(), recordScaled_.end(), me.scaled.begin());
      me.t = invited;
      Products(me, k, count,
               [&](int j, int n) { return HelperProduct(me, j == 0 && c > 1, j == n - 1); });
    }
  }

  // The helper's rows of the product it holds, each panel made known as it
  // is done. Unless it is the component's last, the helper holds the next
  // product from here on, waits for the caller's sum of squares and makes
  // the next vector: the caller cannot be two products on, writing over
  // what is read here.
  bool HelperProduct(Own& me, bool deflate, bool last) {
    const Count t = me.t;
    double* w = w_[t & 1].data();
    for (std::size_t p = firstHelperPanel_; p < panels_.size(); ++p) {
      Sums(me, p, p + 1, w, deflate);
      if (p + 1 < panels_.size())
        helperPanels_.value.store(PanelsDone(t, p + 1 - firstHelperPanel_),
                                  std::memory_order_release);
    }
    if (last) {
      helperState_.value.store(Finished(t), std::memory_order_release);
      return true;
    }
    helperState_.value.store(Holding(t + 1), std::memory_order_release);
    for (unsigned spins = 0; callerDone_.value.load(std::memory_order_acquire) < t; ++spins) {
      if (Quitting()) return false;
      if (spins < 4000)
        Pause();
      else
        std::this_thread::yield();
    }
    Normalise(me, w, callerDone_.sq[t & 1]);
    me.t = t + 1;
    return true;
  }

  Session& s_;
  const std::size_t n_;
  std::size_t split_ = 0, firstHelperPanel_ = 0, padded_ = 0, offset_ = 0;
  std::vector<Panel> panels_;
  std::vector<double> store_;
  std::vector<double> w_[2];     // the products, by the parity of their number
  std::vector<double> column0_;  // the caller's copy of the matrix's first column
  CallerLine callerDone_;
  Line helperState_;
  Line helperPanels_;  // PanelsDone of the product the helper is at
  Line invitation_;    // the product the helper may join
  // With the invitation: the component, the product's place among its
  // products and their count, the vector it multiplies, and the component
  // before as the deflation needs it.
  long recordComponent_ = 0;
  int recordPosition_ = 0, recordCount_ = 0;
  std::vector<double> recordVector_, recordOld_, recordScaled_;
  std::thread helper_;
  std::atomic<bool> quit_{false};
  bool inviting_ = false;  // whether the helper may take part in this component
  bool helperIn_ = false;  // whether it did the last product
  long aloneFor_ = 1, aloneUntil_ = 0;
};

}  // namespace

void PowerIterations(Session& s, Progress& progress) {
  s.EigenWork.Require(s.EigenOrder, s.EigenOrder);
  s.EigenVectors.Require(s.EigenOrder + 1, s.EigenOrder);
  TwoCoreIteration iteration(s);
  iteration.Run(progress);
}

}  // namespace varnoth
