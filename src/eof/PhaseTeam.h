#pragma once
// Phases of an iteration shared between the calling thread and one helper
// thread that lives as long as the team.
#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <system_error>
#include <thread>

#include "state/Parallel.h"

namespace varnoth {

// A phase is cut into parts that either thread claims. The caller always
// works, from the first part on; the helper claims from the last part
// back while it runs, so a helper that the machine has put aside costs at
// most the part it holds, and while both run each part tends to stay with
// the core that did it last time. When the caller has waited long for such
// a part, it goes on alone for a growing number of components before it
// tries again. Which thread does a part never changes its numbers.
//
// Each part's claim sits on a cache line of its own, and the helper counts
// the parts it has done on another: a part that the same thread takes phase
// after phase then costs no traffic between the cores, only the start of a
// phase and its end do.
class PhaseTeam {
 public:
  PhaseTeam(long parts, std::function<void(long)> part)
      : parts_(parts), part_(std::move(part)), claims_(new Line[parts > 0 ? parts : 1]) {
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
  PhaseTeam(const PhaseTeam&) = delete;
  PhaseTeam& operator=(const PhaseTeam&) = delete;

  // Whether component c may use the helper.
  void StartComponent(long c) { shared_ = helper_.joinable() && c >= aloneUntil_; }
  void SetComponent(long c) { componentHint_ = c; }

  // Does every part of one phase. `leading(k)` is called on the caller's
  // thread once parts 0..k-1 are done and before the phase ends, so that
  // the caller can start on their results while the helper finishes.
  template <typename Leading>
  void Run(Leading leading) {
    if (!shared_) {
      for (long p = 0; p < parts_; ++p) part_(p);
      leading(parts_);
      return;
    }
    const std::uint32_t phase = ++phaseCount_;  // some thousands per analysis
    phase_.store(phase, std::memory_order_release);
    phase_.notify_one();
    long mine = 0;
    while (mine < parts_ && Claim(mine, phase)) part_(mine++);
    leading(mine);
    const std::uint64_t expected =
        static_cast<std::uint64_t>(phase) << 32 | static_cast<std::uint64_t>(parts_ - mine);
    if (mine == parts_ || helperDone_.value.load(std::memory_order_acquire) == expected) return;
    const auto start = std::chrono::steady_clock::now();
    bool slow = false;
    for (unsigned spins = 0; helperDone_.value.load(std::memory_order_acquire) != expected;
         ++spins) {
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
  void Run() {
    Run([](long) {});
  }

 private:
  struct alignas(64) Line {
    std::atomic<std::uint64_t> value{0};
  };

  static void Pause() {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
  }
  // Takes part p for `phase` unless a thread has taken it for this phase.
  bool Claim(long p, std::uint32_t phase) {
    std::atomic<std::uint64_t>& c = claims_[p].value;
    std::uint64_t seen = c.load(std::memory_order_relaxed);
    return seen < phase && c.compare_exchange_strong(seen, phase, std::memory_order_acq_rel,
                                                     std::memory_order_relaxed);
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
      // Parts from the back while they are free; the caller stops where it
      // meets the first part taken here. The count of parts done is made
      // known after each one, so that the caller waits only for parts
      // already taken.
      std::uint64_t done = 0;
      for (long p = parts_ - 1; p > 0 && Claim(p, now); --p) {
        part_(p);
        helperDone_.value.store(static_cast<std::uint64_t>(now) << 32 | ++done,
                                std::memory_order_release);
      }
    }
  }

  const long parts_;
  const std::function<void(long)> part_;
  std::unique_ptr<Line[]> claims_;  // the last phase that took each part
  Line helperDone_;                 // phase << 32 | parts the helper has done in it
  std::thread helper_;
  alignas(64) std::atomic<std::uint32_t> phase_{0};
  std::atomic<bool> quit_{false};
  std::uint32_t phaseCount_ = 0;
  bool shared_ = false;
  long aloneFor_ = 1, aloneUntil_ = 0, componentHint_ = 0;
};

}  // namespace varnoth
