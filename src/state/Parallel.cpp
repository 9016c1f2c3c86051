#include "state/Parallel.h"

#include <pthread.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <system_error>
#include <vector>

namespace varnoth {

namespace {

// One call's work: units 0..count-1 claimed in pieces from the front. A
// helper that wakes after the caller has gone finds nothing left to claim
// and only touches this record, which it holds a share of.
struct Job {
  long count = 0, grain = 1, workers = 1;
  bool shrink = false;  // pieces shrink as the range runs out
  const std::function<void(long, long)>* body = nullptr;
  std::atomic<long> next{0}, finished{0};
  // The first unit of the earliest piece that failed: later pieces are
  // skipped, earlier ones still run, so the failure raised is the one a
  // run on one thread would meet first.
  std::atomic<long> failedAt{LONG_MAX};
  std::mutex errorLock;
  std::exception_ptr error;

  bool Claim(long& begin, long& size) {
    long at = next.load(std::memory_order_relaxed);
    for (;;) {
      if (at >= count) return false;
      long left = count - at;
      long want = shrink ? std::max(grain, left / (2 * workers)) : grain;
      if (left - want < grain) want = left;  // no sliver at the end
      if (next.compare_exchange_weak(at, at + want, std::memory_order_relaxed)) {
        begin = at;
        size = want;
        return true;
      }
    }
  }

  void Work() {
    long begin, size;
    while (Claim(begin, size)) {
      if (begin < failedAt.load(std::memory_order_acquire)) {
        try {
          (*body)(begin, begin + size - 1);
        } catch (...) {
          std::lock_guard<std::mutex> hold(errorLock);
          if (begin < failedAt.load(std::memory_order_relaxed)) {
            error = std::current_exception();
            failedAt.store(begin, std::memory_order_release);
          }
        }
      }
      if (finished.fetch_add(size, std::memory_order_acq_rel) + size == count)
        finished.notify_all();
    }
  }

  // Waits until every claimed piece is done: a short spin for pieces that
  // end within microseconds, then sleep, so that a helper the machine has
  // put aside gets the core back.
  void AwaitFinish() {
    for (int spins = 0; spins < 4000; ++spins) {
      if (finished.load(std::memory_order_acquire) == count) return;
#if defined(__x86_64__) || defined(__i386__)
      __builtin_ia32_pause();
#endif
    }
    for (long f; (f = finished.load(std::memory_order_acquire)) != count;)
      finished.wait(f, std::memory_order_acquire);
  }
};

// The cores this program may use: those of its main thread, whichever
// thread asks first.
const cpu_set_t& Allowed() {
  static const cpu_set_t allowed = [] {
    cpu_set_t a;
    CPU_ZERO(&a);
    if (sched_getaffinity(getpid(), sizeof a, &a) != 0) CPU_ZERO(&a);
    return a;
  }();
  return allowed;
}

void KeepOffCore(std::thread& helper, int cpu) {
  const cpu_set_t& allowed = Allowed();
  if (CPU_COUNT(&allowed) < 2 || cpu < 0 || !CPU_ISSET(cpu, &allowed)) return;
  cpu_set_t others = allowed;
  CPU_CLR(cpu, &others);
  pthread_setaffinity_np(helper.native_handle(), sizeof others, &others);
}

// True on the pool's own threads and on a caller while it shares work: a
// piece that shares work again does it alone.
thread_local bool insidePool = false;

class Pool {
 public:
  static Pool& Instance() {
    // Never destroyed: helpers may still sleep in it while the program ends.
    static Pool* pool = new Pool;
    return *pool;
  }

  long Helpers() const { return static_cast<long>(threads_.size()); }

  // Runs the job with the helpers; false when another thread is using the
  // pool, and the caller should do the work alone.
  bool Run(const std::shared_ptr<Job>& job) {
    std::unique_lock<std::mutex> busy(busy_, std::try_to_lock);
    if (!busy.owns_lock()) return false;
    KeepOffCaller();
    {
      std::lock_guard<std::mutex> hold(lock_);
      job_ = job;
      ++generation_;
    }
    wake_.notify_all();
    insidePool = true;
    job->Work();
    job->AwaitFinish();
    insidePool = false;
    std::lock_guard<std::mutex> hold(lock_);
    job_.reset();
    return true;
  }

 private:
  // Keeps the helpers off the caller's core. When every core is busy, a
  // woken helper would otherwise tend to start on the core of the thread
  // that woke it, and the two would share that core while another does
  // none of this work, until the scheduler moves one of them.
  void KeepOffCaller() {
    const int cpu = sched_getcpu();
    if (cpu == keptOff_) return;
    for (auto& t : threads_) KeepOffCore(t, cpu);
    keptOff_ = cpu;
  }

  Pool() {
    const unsigned helpers = WorkerCount() - 1;
    try {
      for (unsigned k = 0; k < helpers; ++k) threads_.emplace_back([this] { Help(); });
    } catch (const std::system_error&) {
      // Fewer threads than asked: those there are share the work.
    }
  }

  void Help() {
    insidePool = true;
    std::uint64_t seen = 0;
    std::unique_lock<std::mutex> hold(lock_);
    for (;;) {
      wake_.wait(hold, [&] { return generation_ != seen; });
      seen = generation_;
      std::shared_ptr<Job> job = job_;
      if (!job) continue;
      hold.unlock();
      job->Work();
      job.reset();
      hold.lock();
    }
  }

  std::mutex busy_, lock_;
  std::condition_variable wake_;
  std::shared_ptr<Job> job_;
  std::uint64_t generation_ = 0;
  std::vector<std::thread> threads_;
  int keptOff_ = -1;
};

void Share(long count, long grain, bool shrink, const std::function<void(long, long)>& body) {
  if (count <= 0) return;
  if (insidePool || WorkerCount() < 2 || count <= grain) {
    body(0, count - 1);
    return;
  }
  Pool& pool = Pool::Instance();
  auto job = std::make_shared<Job>();
  job->count = count;
  job->grain = grain;
  job->shrink = shrink;
  job->workers = pool.Helpers() + 1;
  job->body = &body;
  if (pool.Helpers() == 0 || !pool.Run(job)) {
    body(0, count - 1);
    return;
  }
  if (job->error) std::rethrow_exception(job->error);
}

}  // namespace

void KeepOffThisCore(std::thread& helper) { KeepOffCore(helper, sched_getcpu()); }

void ParallelRows(long first, long last, long grain, const std::function<void(long, long)>& body) {
  const long count = last - first + 1;
  grain = std::max(1L, grain);
  if (count < grain * 2) {
    if (count > 0) body(first, last);
    return;
  }
  Share(count, grain, true, [&](long b, long e) { body(first + b, first + e); });
}

void ParallelTasks(long count, const std::function<void(long)>& body) {
  Share(count, 1, false, [&](long b, long e) {
    for (long t = b; t <= e; ++t) body(t);
  });
}

}  // namespace varnoth
