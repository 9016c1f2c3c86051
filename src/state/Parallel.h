#pragma once
// Splits a range of independent rows over the machine's cores. Each row's
// own arithmetic stays in its given order, so results do not depend on the
// number of threads. A failure in any part is raised again in the caller.
#include <algorithm>
#include <atomic>
#include <exception>
#include <functional>
#include <system_error>
#include <thread>
#include <vector>

namespace varnoth {

inline unsigned WorkerCount() {
  unsigned n = std::thread::hardware_concurrency();
  return std::clamp(n, 1u, 16u);
}

// Calls body(first, last) on disjoint parts of [first, last] (inclusive).
// Ranges below `grain` rows run on the calling thread alone.
inline void ParallelRows(long first, long last, long grain,
                         const std::function<void(long, long)>& body) {
  long count = last - first + 1;
  if (count <= 0) return;
  unsigned workers = WorkerCount();
  if (workers <= 1 || count < grain * 2) {
    body(first, last);
    return;
  }
  workers = static_cast<unsigned>(std::min<long>(workers, count / std::max(1L, grain)));
  std::vector<std::thread> threads;
  std::vector<std::exception_ptr> errors(workers);
  long chunk = (count + workers - 1) / workers;
  for (unsigned w = 1; w < workers; ++w) {
    long b = first + static_cast<long>(w) * chunk;
    long e = std::min(last, b + chunk - 1);
    if (b > e) break;
    threads.emplace_back([&, w, b, e] {
      try {
        body(b, e);
      } catch (...) {
        errors[w] = std::current_exception();
      }
    });
  }
  try {
    body(first, std::min(last, first + chunk - 1));
  } catch (...) {
    errors[0] = std::current_exception();
  }
  for (auto& t : threads) t.join();
  for (auto& e : errors)
    if (e) std::rethrow_exception(e);
}

// Calls body(task) for each task 0..count-1, handed out one at a time to
// the calling thread and the other workers as each becomes free: a core
// that another program holds only means fewer tasks for its thread, not a
// wait for its share. Order tasks from the largest for an even finish.
inline void ParallelTasks(long count, const std::function<void(long)>& body) {
  if (count <= 0) return;
  const unsigned workers = static_cast<unsigned>(std::min<long>(WorkerCount(), count));
  std::atomic<long> next{0};
  std::vector<std::exception_ptr> errors(workers);
  auto run = [&](unsigned w) {
    try {
      for (long t; (t = next.fetch_add(1, std::memory_order_relaxed)) < count;) body(t);
    } catch (...) {
      errors[w] = std::current_exception();
      next.store(count);
    }
  };
  std::vector<std::thread> threads;
  try {
    for (unsigned w = 1; w < workers; ++w) threads.emplace_back(run, w);
  } catch (const std::system_error&) {
    // Fewer threads than asked: those there are take all the tasks.
  }
  run(0);
  for (auto& t : threads) t.join();
  for (auto& e : errors)
    if (e) std::rethrow_exception(e);
}

// A barrier for many short phases (thousands a second): waiting threads
// spin a while before they yield, so that a phase of microseconds does not
// pay for putting a thread to sleep and waking it again.
class SpinBarrier {
 public:
  explicit SpinBarrier(unsigned parties) : parties_(parties) {}
  void Wait() {
    const unsigned generation = generation_.load(std::memory_order_acquire);
    if (arrived_.fetch_add(1, std::memory_order_acq_rel) + 1 == parties_) {
      arrived_.store(0, std::memory_order_relaxed);
      generation_.fetch_add(1, std::memory_order_release);
      return;
    }
    for (unsigned spins = 0; generation_.load(std::memory_order_acquire) == generation; ++spins) {
      if (spins < 20000) {
#if defined(__x86_64__) || defined(__i386__)
        __builtin_ia32_pause();
#endif
      } else {
        std::this_thread::yield();
      }
    }
  }

 private:
  const unsigned parties_;
  std::atomic<unsigned> arrived_{0}, generation_{0};
};

}  // namespace varnoth
