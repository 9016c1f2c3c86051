// The number text and the record writer against the routine they replaced,
// timed alternately in the same run so that both meet the same load.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "state/Format.h"
#include "state/Parallel.h"
#include "state/RecordWriter.h"
#include "state/ScoreFiles.h"
#include "state/Session.h"
#include "support/ReferenceNumberText.h"

using namespace varnoth;

namespace {

constexpr long kRows = 8000, kColumns = 300;

// Scores as the analysis leaves them: full-precision doubles over a few
// decades around one, a tenth of them exactly zero-free small integers' kin.
const std::vector<double>& Scores() {
  static const std::vector<double> v = [] {
    std::mt19937_64 rng(29);
    std::normal_distribution<double> normal(0.0, 1.0);
    std::vector<double> out(static_cast<std::size_t>(kRows * kColumns));
    for (std::size_t i = 0; i < out.size(); ++i)
      out[i] = normal(rng) * std::pow(10.0, static_cast<double>(i % kColumns) / -60.0);
    return out;
  }();
  return v;
}

// The record writer as it was: a std::string appended to, field by field.
struct OldRecordWriter {
  std::string out;
  bool open = false;
  void Separate() {
    if (open) out += ',';
    open = true;
  }
  void Text(const std::string& s) {
    Separate();
    out += '"';
    for (char c : s) {
      if (c == '"') out += '"';
      out += c;
    }
    out += '"';
  }
  void Number(double v) {
    Separate();
    char text[kNumberTextMax];
    out.append(text, reference::WriteGeneral(text, v));
  }
  void End() {
    out += "\r\n";
    open = false;
  }
};

double Seconds(std::chrono::steady_clock::time_point t0) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

// CPU time of the calling thread: under load, the time the work itself took.
double ThreadSeconds() {
  timespec t{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

// Each iteration writes the numbers (a score table's records) once with the
// new routine and once with the old, alternately; the time reported is the
// new one's, the counters give both rates and their ratio.
void NumberText(benchmark::State& state, bool records) {
  const std::vector<double>& v = Scores();
  const std::string name = "Site 1234";
  double mine = 0, theirs = 0, mineCpu = 0, theirsCpu = 0;
  std::size_t bytes = 0, oldBytes = 0;
  std::vector<char> buffer(v.size() * 24);
  for (auto _ : state) {
    auto t0 = std::chrono::steady_clock::now();
    double c0 = ThreadSeconds();
    if (records) {
      RecordWriter w;
      w.Reserve(static_cast<std::size_t>(kRows * (23 * kColumns + 64)));
      for (long i = 0; i < kRows; ++i) {
        w.Text(name);
        for (long c = 0; c < kColumns; ++c) w.Number(v[static_cast<std::size_t>(i * kColumns + c)]);
        w.End();
      }
      bytes = w.Content().size();
      benchmark::DoNotOptimize(w.Content().data());
    } else {
      char* p = buffer.data();
      for (double x : v) {
        p = WriteGeneral(p, x);
        *p++ = ',';
      }
      bytes = static_cast<std::size_t>(p - buffer.data());
      benchmark::DoNotOptimize(buffer.data());
    }
    const double t = Seconds(t0);
    mine += t;
    mineCpu += ThreadSeconds() - c0;
    state.SetIterationTime(t);
    t0 = std::chrono::steady_clock::now();
    c0 = ThreadSeconds();
    if (records) {
      OldRecordWriter w;
      w.out.reserve(static_cast<std::size_t>(kRows * (23 * kColumns + 64)));
      for (long i = 0; i < kRows; ++i) {
        w.Text(name);
        for (long c = 0; c < kColumns; ++c) w.Number(v[static_cast<std::size_t>(i * kColumns + c)]);
        w.End();
      }
      oldBytes = w.out.size();
      benchmark::DoNotOptimize(w.out.data());
    } else {
      char* p = buffer.data();
      for (double x : v) {
        p = reference::WriteGeneral(p, x);
        *p++ = ',';
      }
      oldBytes = static_cast<std::size_t>(p - buffer.data());
      benchmark::DoNotOptimize(buffer.data());
    }
    theirs += Seconds(t0);
    theirsCpu += ThreadSeconds() - c0;
  }
  if (bytes != oldBytes) state.SkipWithError("the two routes wrote different lengths");
  const double n = static_cast<double>(state.iterations());
  state.counters["MB/s"] = static_cast<double>(bytes) / 1e6 / (mine / n);
  state.counters["old_MB/s"] = static_cast<double>(bytes) / 1e6 / (theirs / n);
  state.counters["ratio"] = theirs / mine;
  state.counters["cpu_MB/s"] = static_cast<double>(bytes) / 1e6 / (mineCpu / n);
  state.counters["old_cpu_MB/s"] = static_cast<double>(bytes) / 1e6 / (theirsCpu / n);
  state.counters["cpu_ratio"] = theirsCpu / mineCpu;
}

void BM_NumberTextAgainstOld(benchmark::State& state) { NumberText(state, false); }
void BM_RecordsAgainstOld(benchmark::State& state) { NumberText(state, true); }

// Singles, as the contribution lines write them.
void BM_SingleTextAgainstOld(benchmark::State& state) {
  std::vector<float> v(1000000);
  std::mt19937_64 rng(7);
  std::uniform_real_distribution<float> u(0.0f, 100.0f);
  for (float& f : v) f = u(rng);
  std::vector<char> buffer(v.size() * 16);
  double mine = 0, theirs = 0, mineCpu = 0, theirsCpu = 0;
  std::size_t bytes = 0;
  for (auto _ : state) {
    auto t0 = std::chrono::steady_clock::now();
    double c0 = ThreadSeconds();
    char* p = buffer.data();
    for (float x : v) p = WriteSingle(p, x);
    bytes = static_cast<std::size_t>(p - buffer.data());
    benchmark::DoNotOptimize(buffer.data());
    const double t = Seconds(t0);
    mine += t;
    mineCpu += ThreadSeconds() - c0;
    state.SetIterationTime(t);
    t0 = std::chrono::steady_clock::now();
    c0 = ThreadSeconds();
    p = buffer.data();
    for (float x : v) p = reference::WriteSingle(p, x);
    benchmark::DoNotOptimize(buffer.data());
    theirs += Seconds(t0);
    theirsCpu += ThreadSeconds() - c0;
  }
  const double n = static_cast<double>(state.iterations());
  state.counters["MB/s"] = static_cast<double>(bytes) / 1e6 / (mine / n);
  state.counters["old_MB/s"] = static_cast<double>(bytes) / 1e6 / (theirs / n);
  state.counters["ratio"] = theirs / mine;
  state.counters["cpu_MB/s"] = static_cast<double>(bytes) / 1e6 / (mineCpu / n);
  state.counters["old_cpu_MB/s"] = static_cast<double>(bytes) / 1e6 / (theirsCpu / n);
  state.counters["cpu_ratio"] = theirsCpu / mineCpu;
}

// The reference score file of 8000 sites x 300 EOFs as sSaveScore writes it,
// against the same records through the old writer and the old number text,
// also put into text on all cores in slices of 256 rows and then written.
const Session& ScoredSession() {
  static const std::unique_ptr<Session> s = [] {
    auto t = std::make_unique<Session>();
    t->RefSiteCount = static_cast<Count>(kRows);
    t->RefTaxaCount = static_cast<Count>(kColumns);
    t->TaxaCount = t->RefTaxaCount;
    t->RefFileName = "reference.csv";
    t->RefSiteNames.ReDim(kRows);
    for (long i = 1; i <= kRows; ++i) t->RefSiteNames(i) = "Site " + std::to_string(i);
    t->Contribution.ReDim(kColumns);
    for (long c = 1; c <= kColumns; ++c) t->Contribution(c) = 100.0f / static_cast<float>(c + 1);
    t->RefScores.ReDim(kRows, kColumns);
    const std::vector<double>& v = Scores();
    for (long i = 1; i <= kRows; ++i)
      for (long c = 1; c <= kColumns; ++c)
        t->RefScores(i, c) = v[static_cast<std::size_t>((i - 1) * kColumns + c - 1)];
    return t;
  }();
  return *s;
}

void OldScoreFile(const Session& s, const std::string& path) {
  constexpr long kSlice = 256;
  const long rows = s.RefSiteCount, n = s.RefTaxaCount;
  std::vector<OldRecordWriter> parts(static_cast<std::size_t>((rows + kSlice - 1) / kSlice));
  ParallelTasks(static_cast<long>(parts.size()), [&](long t) {
    OldRecordWriter& w = parts[static_cast<std::size_t>(t)];
    w.out.reserve(static_cast<std::size_t>(kSlice * (23 * n + 64)));
    for (long i = t * kSlice + 1; i <= std::min(rows, (t + 1) * kSlice); ++i) {
      w.Text(s.RefSiteNames(i));
      for (long c = 1; c <= n; ++c) w.Number(s.RefScores(i, c));
      w.End();
    }
  });
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) std::abort();
  for (const OldRecordWriter& w : parts) std::fwrite(w.out.data(), 1, w.out.size(), f);
  std::fclose(f);
}

void BM_ScoreFileAgainstOld(benchmark::State& state) {
  const Session& s = ScoredSession();
  const std::string dir = std::filesystem::temp_directory_path().string();
  const std::string mine = dir + "/varnoth-score-new.csv", theirs = dir + "/varnoth-score-old.csv";
  NoProgress progress;
  double tMine = 0, tTheirs = 0;
  for (auto _ : state) {
    auto t0 = std::chrono::steady_clock::now();
    sSaveScore(s, mine, FileStamp{"2026-11-24", "12:00:00"}, progress);
    const double t = Seconds(t0);
    tMine += t;
    state.SetIterationTime(t);
    t0 = std::chrono::steady_clock::now();
    OldScoreFile(s, theirs);
    tTheirs += Seconds(t0);
  }
  const double bytes = static_cast<double>(std::filesystem::file_size(mine));
  const double n = static_cast<double>(state.iterations());
  state.counters["MB/s"] = bytes / 1e6 / (tMine / n);
  state.counters["old_MB/s"] = bytes / 1e6 / (tTheirs / n);
  state.counters["ratio"] = tTheirs / tMine;
  std::filesystem::remove(mine);
  std::filesystem::remove(theirs);
}

}  // namespace

BENCHMARK(BM_ScoreFileAgainstOld)->Unit(benchmark::kMillisecond)->Iterations(10)->UseManualTime();
BENCHMARK(BM_NumberTextAgainstOld)->Unit(benchmark::kMillisecond)->Iterations(10)->UseManualTime();
BENCHMARK(BM_RecordsAgainstOld)->Unit(benchmark::kMillisecond)->Iterations(10)->UseManualTime();
BENCHMARK(BM_SingleTextAgainstOld)->Unit(benchmark::kMillisecond)->Iterations(10)->UseManualTime();
