#pragma once
// Splits a range of independent rows over the machine's cores. Each row's
// own arithmetic stays in its given order, so results do not depend on the
// number of threads. A failure in any part is raised again in the caller.
#include <algorithm>
#include <exception>
#include <functional>
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

}  // namespace varnoth
