#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <vector>

#include "state/Failure.h"
#include "state/Parallel.h"

using namespace varnoth;

TEST(ParallelTasks, EveryTaskRunsExactlyOnce) {
  for (long count : {0L, 1L, 2L, 3L, 17L, 1000L}) {
    std::vector<std::atomic<int>> runs(static_cast<std::size_t>(count));
    ParallelTasks(count, [&](long t) { runs[static_cast<std::size_t>(t)].fetch_add(1); });
    for (long t = 0; t < count; ++t) EXPECT_EQ(runs[static_cast<std::size_t>(t)].load(), 1) << t;
  }
}

TEST(ParallelTasks, AFailureInAnyTaskReachesTheCaller) {
  std::atomic<long> ran{0};
  try {
    ParallelTasks(200, [&](long t) {
      ran.fetch_add(1);
      if (t == 150) ThrowSubscript();
    });
    ADD_FAILURE() << "no failure";
  } catch (const RuntimeFailure& f) {
    EXPECT_EQ(f.kind(), FailureKind::SubscriptOutOfRange);
  }
  EXPECT_GE(ran.load(), 1);
  EXPECT_LE(ran.load(), 200);
}
