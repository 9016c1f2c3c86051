// The search reports its progress on the calling thread alone, as a count
// that only grows and ends at the whole, whichever thread searched what.
#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

#include "reconstruction/NearestSites.h"

using namespace varnoth::analogue;

namespace {

struct Reports {
  std::thread::id caller = std::this_thread::get_id();
  std::vector<long> counts;
  bool elsewhere = false;
  std::function<void(long)> Callback() {
    return [this](long done) {
      if (std::this_thread::get_id() != caller) elsewhere = true;
      counts.push_back(done);
    };
  }
};

void ExpectGrowingToTheWhole(const Reports& r, long whole) {
  EXPECT_FALSE(r.elsewhere) << "reported from a helper thread";
  ASSERT_FALSE(r.counts.empty());
  for (std::size_t k = 1; k < r.counts.size(); ++k) EXPECT_LE(r.counts[k - 1], r.counts[k]) << k;
  EXPECT_EQ(r.counts.back(), whole);
  EXPECT_GE(r.counts.front(), 0);
  EXPECT_LE(r.counts.front(), whole);
}

}  // namespace

TEST(NearestProgress, TheSearchReportsOnTheCallerUpToEveryTarget) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> u(0, 1);
  const int columns = 30;
  const long candidates = 3000, targets = 2000;
  std::vector<double> cand(candidates * columns), targ(targets * columns);
  for (double& v : cand) v = u(rng);
  for (double& v : targ) v = u(rng);
  std::vector<int> sites(candidates);
  for (long i = 0; i < candidates; ++i) sites[i] = static_cast<int>(i + 1);
  NearestInput in;
  in.Columns = columns;
  in.Candidates = cand.data();
  in.SiteNumbers = sites.data();
  in.CandidateCount = candidates;
  in.Targets = targ.data();
  in.TargetCount = targets;
  in.Ranks = 5;
  std::vector<float> key(targets * 5);
  std::vector<int> site(targets * 5);
  Reports r;
  FindNearest(in, key.data(), site.data(), r.Callback());
  ExpectGrowingToTheWhole(r, targets);
  // More than the closing report: the count moves during the search.
  EXPECT_GT(r.counts.size(), 2u);
}

TEST(NearestProgress, TheLeaveOneOutSearchReportsOnTheCallerUpToTheWhole) {
  std::mt19937 rng(8);
  std::uniform_real_distribution<double> u(0, 1);
  const int columns = 30;
  const long count = 3000;
  std::vector<double> rows(count * columns);
  for (double& v : rows) v = u(rng);
  std::vector<unsigned char> eligible(count, 1);
  SelfInput in;
  in.Columns = columns;
  in.Rows = rows.data();
  in.Count = count;
  in.Eligible = eligible.data();
  in.Ranks = 5;
  std::vector<float> key(count * 5);
  std::vector<int> site(count * 5);
  Reports r;
  FindNearestAmongThemselves(in, key.data(), site.data(), r.Callback());
  ExpectGrowingToTheWhole(r, count);
}
