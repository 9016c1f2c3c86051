#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

#include "state/Failure.h"
#include "state/Parallel.h"
#include "support/Checks.h"

using namespace varnoth;
using varnoth::test::KindOf;

TEST(ParallelTasks, EveryTaskRunsExactlyOnce) {
  for (long count : {0L, 1L, 2L, 3L, 17L, 1000L}) {
    std::vector<std::atomic<int>> runs(static_cast<std::size_t>(count));
    ParallelTasks(count, [&](long t) { runs[static_cast<std::size_t>(t)].fetch_add(1); });
    for (long t = 0; t < count; ++t) EXPECT_EQ(runs[static_cast<std::size_t>(t)].load(), 1) << t;
  }
}

TEST(ParallelRows, EveryRowOnceInWholeDisjointParts) {
  for (auto [first, last, grain] : std::vector<std::tuple<long, long, long>>{{1, 0, 4},
                                                                             {1, 1, 4},
                                                                             {1, 7, 4},
                                                                             {1, 8, 4},
                                                                             {0, 9999, 16},
                                                                             {-50, 50, 1},
                                                                             {5, 100000, 256}}) {
    const long count = last - first + 1;
    std::vector<std::atomic<int>> runs(static_cast<std::size_t>(std::max(0L, count)));
    std::mutex lock;
    std::vector<std::pair<long, long>> parts;
    ParallelRows(first, last, grain, [&](long b, long e) {
      ASSERT_LE(first, b);
      ASSERT_LE(b, e);
      ASSERT_LE(e, last);
      for (long r = b; r <= e; ++r) runs[static_cast<std::size_t>(r - first)].fetch_add(1);
      std::lock_guard<std::mutex> hold(lock);
      parts.emplace_back(b, e);
    });
    for (long r = 0; r < count; ++r)
      EXPECT_EQ(runs[static_cast<std::size_t>(r)].load(), 1) << first << ".." << last << " " << r;
    // Below two grains the caller takes the range in one part.
    if (count > 0 && count < 2 * grain) {
      EXPECT_EQ(parts.size(), 1u);
    }
  }
}

TEST(ParallelRows, PartsShrinkTowardsTheGrainAsTheRangeRunsOut) {
  if (WorkerCount() < 2) GTEST_SKIP() << "one core: the caller takes the range whole";
  std::mutex lock;
  std::vector<std::pair<long, long>> parts;
  ParallelRows(1, 10000, 10, [&](long b, long e) {
    std::lock_guard<std::mutex> hold(lock);
    parts.emplace_back(b, e);
  });
  std::sort(parts.begin(), parts.end());
  ASSERT_GT(parts.size(), 8u);
  EXPECT_EQ(parts.front().first, 1);
  EXPECT_EQ(parts.back().second, 10000);
  for (std::size_t k = 1; k < parts.size(); ++k) {
    EXPECT_EQ(parts[k].first, parts[k - 1].second + 1);
    const long before = parts[k - 1].second - parts[k - 1].first + 1;
    const long size = parts[k].second - parts[k].first + 1;
    // The last part takes what is left: under two grains, never a sliver.
    if (k + 1 < parts.size()) {
      EXPECT_LE(size, before) << k;
    }
    EXPECT_GE(size, 10) << k;
  }
  EXPECT_GT(parts.front().second - parts.front().first + 1, 10 * 10);
  EXPECT_LT(parts.back().second - parts.back().first + 1, 2 * 10);
}

TEST(ParallelTasks, TheEarliestTasksFailureReachesTheCaller) {
  // Task 20 fails one way and task 150 another: a run on one thread meets
  // task 20 first, and so must every run, whoever takes which task.
  for (int round = 0; round < 50; ++round) {
    std::vector<std::atomic<int>> ran(200);
    EXPECT_EQ(KindOf([&] {
                ParallelTasks(200, [&](long t) {
                  ran[static_cast<std::size_t>(t)].store(1);
                  if (t == 20) throw RuntimeFailure(FailureKind::DivisionByZero);
                  if (t == 150) ThrowOverflow();
                });
              }),
              FailureKind::DivisionByZero)
        << round;
    for (long t = 0; t < 20; ++t) EXPECT_EQ(ran[static_cast<std::size_t>(t)].load(), 1) << t;
  }
}

TEST(ParallelRows, TheEarliestRowsFailureReachesTheCaller) {
  for (int round = 0; round < 50; ++round) {
    EXPECT_EQ(KindOf([&] {
                ParallelRows(1, 5000, 8, [&](long b, long e) {
                  for (long r = b; r <= e; ++r) {
                    if (r == 4900) ThrowOverflow();
                    if (r == 300) ThrowSubscript();
                  }
                });
              }),
              FailureKind::SubscriptOutOfRange)
        << round;
  }
}

TEST(ParallelTasks, WorkSharedFromInsideATaskStillRunsOnce) {
  std::vector<std::atomic<int>> runs(40 * 50);
  ParallelTasks(40, [&](long outer) {
    ParallelRows(0, 49, 2, [&](long b, long e) {
      for (long r = b; r <= e; ++r) runs[static_cast<std::size_t>(outer * 50 + r)].fetch_add(1);
    });
  });
  for (std::size_t k = 0; k < runs.size(); ++k) EXPECT_EQ(runs[k].load(), 1) << k;
}

TEST(ParallelTasks, TwoCallersAtOnceBothFinishTheirWork) {
  std::vector<std::atomic<int>> a(20000), b(20000);
  auto fill = [](std::vector<std::atomic<int>>& v) {
    for (int round = 0; round < 20; ++round)
      ParallelRows(0, static_cast<long>(v.size()) - 1, 16, [&](long first, long last) {
        for (long r = first; r <= last; ++r) v[static_cast<std::size_t>(r)].fetch_add(1);
      });
  };
  std::thread other([&] { fill(b); });
  fill(a);
  other.join();
  for (std::size_t k = 0; k < a.size(); ++k) {
    ASSERT_EQ(a[k].load(), 20) << k;
    ASSERT_EQ(b[k].load(), 20) << k;
  }
}

TEST(ParallelTasks, ACallerNeverWaitsForHelpersBusyWithOtherWork) {
  // Another thread's work holds every helper until this caller is done: if
  // the caller waited for a helper to turn up, neither would finish.
  std::atomic<bool> callerDone{false}, timedOut{false};
  std::thread other([&] {
    ParallelTasks(static_cast<long>(WorkerCount()) + 1, [&](long) {
      const auto start = std::chrono::steady_clock::now();
      while (!callerDone.load()) {
        if (std::chrono::steady_clock::now() - start > std::chrono::seconds(20)) {
          timedOut = true;
          return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
      }
    });
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  std::vector<std::atomic<int>> runs(1000);
  ParallelRows(0, 999, 4, [&](long b, long e) {
    for (long r = b; r <= e; ++r) runs[static_cast<std::size_t>(r)].fetch_add(1);
  });
  callerDone = true;
  other.join();
  EXPECT_FALSE(timedOut.load());
  for (std::size_t k = 0; k < runs.size(); ++k) EXPECT_EQ(runs[k].load(), 1) << k;
}

TEST(KeepOffThisCore, TheHelperMayRunOnEveryAllowedCoreButTheCallers) {
  cpu_set_t allowed;
  ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
  std::atomic<bool> go{false};
  std::thread helper([&] {
    while (!go.load()) std::this_thread::yield();
  });
  KeepOffThisCore(helper);
  cpu_set_t mask;
  ASSERT_EQ(pthread_getaffinity_np(helper.native_handle(), sizeof mask, &mask), 0);
  go = true;
  helper.join();
  if (CPU_COUNT(&allowed) < 2) {
    EXPECT_TRUE(CPU_EQUAL(&mask, &allowed)) << "one core: the helper keeps it";
    return;
  }
  EXPECT_EQ(CPU_COUNT(&mask), CPU_COUNT(&allowed) - 1);
  cpu_set_t both;
  CPU_AND(&both, &mask, &allowed);
  EXPECT_TRUE(CPU_EQUAL(&both, &mask)) << "only allowed cores";
}
