// Where the time of one whole run goes: every stage of a batch run on
// 8000 reference sites x 300 taxa, 1000 fossil samples and 3 climate
// parameters, one benchmark each, in wall-clock time. Beside them the number
// writer against the printf route it replaced, the whole varnoth-batch run,
// and the stages on a machine that two other busy processes share.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "BenchSession.h"
#include "eof/Eigen.h"
#include "eof/PreTreatment.h"
#include "eof/Projection.h"
#include "reconstruction/AnalogueSearch.h"
#include "state/Format.h"
#include "state/Import.h"
#include "state/RecordWriter.h"
#include "state/ScoreFiles.h"

using namespace varnoth;

namespace {

constexpr int kSites = 8000, kTaxa = 300, kSamples = 1000, kParams = 3;

struct Files {
  std::string Reference, Fossil, Climate, Out;
};

const Files& TheFiles() {
  static const Files f = [] {
    Files g;
    g.Reference = bench::WriteTemporary("varnoth-stages-reference.csv",
                                        bench::SyntheticTable(kSites, kTaxa, 21, false));
    g.Fossil = bench::WriteTemporary("varnoth-stages-fossil.csv",
                                     bench::SyntheticTable(kSamples, kTaxa, 22, true));
    // Climate a smooth function of the composition, so that estimates vary.
    std::vector<double> p = bench::SyntheticPercentages(kSites, kTaxa, 21);
    std::string climate = "Site";
    for (int k = 1; k <= kParams; ++k) climate += ",P" + std::to_string(k);
    climate += "\r\n";
    for (int i = 0; i < kSites; ++i) {
      climate += "S" + std::to_string(i + 1);
      for (int k = 1; k <= kParams; ++k)
        climate += "," + FormatGeneral(std::nearbyint((0.3 * p[i * kTaxa + k] - 2 * k) * 10) / 10);
      climate += "\r\n";
    }
    g.Climate = bench::WriteTemporary("varnoth-stages-climate.csv", climate);
    g.Out = (std::filesystem::temp_directory_path() / "varnoth-stages-out").string();
    std::filesystem::create_directories(g.Out);
    return g;
  }();
  return f;
}

double FileMegabytes(const std::string& path) {
  return static_cast<double>(std::filesystem::file_size(path)) / 1e6;
}

// The session as a run has it after the EOF analysis of the reference.
const Session& ReferenceAnalysed() {
  static const std::unique_ptr<Session> s = [] {
    auto t = std::make_unique<Session>();
    bench::SilentDialogs d;
    NoProgress p;
    if (!ImportReference(*t, TheFiles().Reference, d, p).Ok) std::abort();
    ApplyPreTreatment(*t, PreTreatmentSettings{}, p);
    return t;
  }();
  return *s;
}

// ... and after the fossil import and projection, with climate at the sites.
const Session& Analysed() {
  static const std::unique_ptr<Session> s = [] {
    auto t = std::make_unique<Session>(ReferenceAnalysed());
    bench::SilentDialogs d;
    NoProgress p;
    if (!ImportFossil(*t, TheFiles().Fossil, d, p).Ok || !t->ProjectionDone) std::abort();
    std::vector<double> pct = bench::SyntheticPercentages(kSites, kTaxa, 21);
    t->ClimateParamCount = kParams;
    t->ClimateData.ReDim(kSites, kParams);
    for (int i = 1; i <= kSites; ++i)
      for (int k = 1; k <= kParams; ++k)
        t->ClimateData(i, k) = 0.3 * pct[(i - 1) * kTaxa + k] - 2 * k;
    t->ClimateLoaded = true;
    return t;
  }();
  return *s;
}

AnalogueSettings Search() {
  AnalogueSettings st;
  DefineThreshold(st, 20);
  return st;
}

const FileStamp kStamp{"2026-11-23", "12:00:00"};

// A session that the stages which only add results share.
Session& Working() {
  static Session s = Analysed();
  return s;
}

using Stage = std::function<void(Session&)>;

// A stage that changes what later stages read runs on a copy of `From`
// made outside the timing; the others run on Working().
struct NamedStage {
  const char* Name;
  Stage Run;
  const Session& (*From)();
};

std::vector<NamedStage> Stages() {
  const Files& f = TheFiles();
  return {
      {"read reference",
       [f](Session&) {
         bench::SilentDialogs d;
         NoProgress p;
         Session s;
         if (!ImportReference(s, f.Reference, d, p).Ok) std::abort();
       },
       nullptr},
      {"pre-treatment and EOF",
       [](Session& s) {
         NoProgress p;
         ApplyPreTreatment(s, PreTreatmentSettings{}, p);
       },
       Analysed},
      {"EOF analysis",
       [](Session& s) {
         NoProgress p;
         RunEofAnalysis(s, p);
       },
       Analysed},
      {"fossil import (read, treat, project)",
       [f](Session& s) {
         bench::SilentDialogs d;
         NoProgress p;
         if (!ImportFossil(s, f.Fossil, d, p).Ok) std::abort();
       },
       ReferenceAnalysed},
      {"projection",
       [](Session& s) {
         NoProgress p;
         DoProjection(s, p);
       },
       Analysed},
      {"loading file",
       [f](Session& s) {
         NoProgress p;
         SaveLoading(s, f.Out + "/loading.csv", kStamp, p);
       },
       nullptr},
      {"reference score file",
       [f](Session& s) {
         NoProgress p;
         sSaveScore(s, f.Out + "/score-reference.csv", kStamp, p);
       },
       nullptr},
      {"fossil score file",
       [f](Session& s) {
         NoProgress p;
         fSaveScore(s, f.Out + "/score-fossil.csv", kStamp, p);
       },
       nullptr},
      {"analogue search",
       [](Session& s) {
         NoProgress p;
         RunReconstruction(s, Search(), p);
       },
       nullptr},
      {"error model",
       [](Session& s) {
         NoProgress p;
         GenerateErrorModel(s, Search(), p);
       },
       nullptr},
  };
}

void BM_Stage(benchmark::State& state) {
  const NamedStage stage = Stages()[static_cast<std::size_t>(state.range(0))];
  (void)Working();  // the shared session is built before the timing
  for (auto _ : state) {
    if (stage.From) {
      // The copy is made and freed outside the timing.
      state.PauseTiming();
      auto s = std::make_unique<Session>(stage.From());
      state.ResumeTiming();
      stage.Run(*s);
      state.PauseTiming();
      s.reset();
      state.ResumeTiming();
    } else {
      stage.Run(Working());
    }
  }
  state.SetLabel(stage.Name);
  const Files& f = TheFiles();
  std::string written = state.range(0) == 5   ? f.Out + "/loading.csv"
                        : state.range(0) == 6 ? f.Out + "/score-reference.csv"
                        : state.range(0) == 7 ? f.Out + "/score-fossil.csv"
                        : state.range(0) == 0 ? f.Reference
                                              : "";
  if (!written.empty())
    state.counters["MB/s"] =
        benchmark::Counter(FileMegabytes(written), benchmark::Counter::kIsIterationInvariantRate);
}

// The score table's numbers as text, by the writer and by the printf route
// that it replaced (the same text), into memory.
void NumberText(benchmark::State& state, bool printfRoute) {
  const Session& s = Analysed();
  std::size_t bytes = 0;
  for (auto _ : state) {
    std::string out;
    out.reserve(60000000);
    char buf[64];
    for (long i = 1; i <= s.RefSiteCount; ++i) {
      for (long c = 1; c <= s.RefTaxaCount; ++c) {
        double v = s.RefScores(i, c);
        char* end =
            printfRoute ? buf + std::snprintf(buf, sizeof buf, "%.15G", v) : WriteGeneral(buf, v);
        out.append(buf, end);
        out += ',';
      }
      out += "\r\n";
    }
    bytes = out.size();
    benchmark::DoNotOptimize(out.data());
  }
  state.counters["MB/s"] = benchmark::Counter(static_cast<double>(bytes) / 1e6,
                                              benchmark::Counter::kIsIterationInvariantRate);
}
void BM_NumberText(benchmark::State& state) { NumberText(state, false); }
void BM_NumberTextPrintf(benchmark::State& state) { NumberText(state, true); }

// The whole batch run as a user starts it, including the process start and
// the files; VARNOTH_BASELINE_BATCH names an earlier build to time beside it.
std::string BatchProgram(bool baseline) {
  if (baseline) {
    const char* b = std::getenv("VARNOTH_BASELINE_BATCH");
    return b ? b : "";
  }
  auto self = std::filesystem::read_symlink("/proc/self/exe");
  return (self.parent_path().parent_path() / "varnoth-batch").string();
}

// Runs of this build and of the baseline build alternate, so that both
// meet the same load; the time is this build's, the counters give the
// medians of both and their ratio.
void BM_BatchRun(benchmark::State& state) {
  const bool errorModel = state.range(0) == 1;
  const Files& f = TheFiles();
  std::string arguments = " --reference " + f.Reference + " --out " + f.Out + "/batch" +
                          " --timestamp \"2026-11-23 12:00:00\"";
  if (errorModel)
    arguments += " --fossil " + f.Fossil + " --climate " + f.Climate + " --error-model";
  arguments += " > /dev/null";
  const std::string program = BatchProgram(false), baseline = BatchProgram(true);
  const bool withBaseline = !baseline.empty() && std::filesystem::exists(baseline);
  auto run = [&](const std::string& p) {
    auto t0 = std::chrono::steady_clock::now();
    if (std::system((p + arguments).c_str()) != 0) state.SkipWithError("the run failed");
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  };
  std::vector<double> mine, theirs;
  for (auto _ : state) {
    mine.push_back(run(program));
    state.SetIterationTime(mine.back());
    if (withBaseline) theirs.push_back(run(baseline));
  }
  auto median = [](std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
  };
  state.counters["median s"] = median(mine);
  if (withBaseline) {
    state.counters["baseline median s"] = median(theirs);
    state.counters["baseline / this"] = median(theirs) / median(mine);
  }
  state.SetLabel(errorModel ? "8000 x 300 x 1000, error model" : "8000 x 300, EOF and score files");
}

// Busy processes that compete for the cores; each ends by itself after
// `seconds` of processor time should the benchmark not stop it. They are
// spawned, not forked: a fork marks all of this process's memory
// copy-on-write, and the page faults of the first writes after it would be
// counted as the stage's time.
class CompetingLoad {
 public:
  CompetingLoad(int processes, unsigned seconds) {
    std::string loop = "ulimit -t " + std::to_string(seconds) + "; while :; do :; done";
    char shell[] = "/bin/sh", flag[] = "-c";
    char* argv[] = {shell, flag, loop.data(), nullptr};
    char* env[] = {nullptr};
    for (int k = 0; k < processes; ++k) {
      pid_t pid;
      if (posix_spawn(&pid, shell, nullptr, nullptr, argv, env) == 0) pids_.push_back(pid);
    }
  }
  ~CompetingLoad() {
    for (pid_t p : pids_) kill(p, SIGKILL);
    for (pid_t p : pids_) waitpid(p, nullptr, 0);
  }

 private:
  std::vector<pid_t> pids_;
};

// The whole batch run of 8000 x 300 x 1000 with the error model, as a
// stage of its own: the program started as a user starts it.
NamedStage WholeRun() {
  return {"whole batch run with error model",
          [](Session&) {
            const Files& f = TheFiles();
            std::string program = BatchProgram(false), out = f.Out + "/batch-load";
            std::vector<std::string> words = {program,    "--reference",   f.Reference,
                                              "--fossil", f.Fossil,        "--climate",
                                              f.Climate,  "--error-model", "--out",
                                              out,        "--timestamp",   "2026-11-23 12:00:00"};
            std::vector<char*> argv;
            for (auto& w : words) argv.push_back(w.data());
            argv.push_back(nullptr);
            posix_spawn_file_actions_t quiet;
            posix_spawn_file_actions_init(&quiet);
            posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", O_WRONLY, 0);
            pid_t pid;
            int status = 1;
            if (posix_spawn(&pid, program.c_str(), &quiet, nullptr, argv.data(), environ) == 0)
              waitpid(pid, &status, 0);
            posix_spawn_file_actions_destroy(&quiet);
            if (status != 0) std::abort();
          },
          nullptr};
}

double Seconds(const NamedStage& stage) {
  Session s = stage.From ? stage.From() : Session{};
  Session& target = stage.From ? s : Working();
  auto t0 = std::chrono::steady_clock::now();
  stage.Run(target);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
}

// A run of a stage as BM_Stage measures it: the mean of 5 executions.
constexpr int kExecutions = 5;

struct Runs {
  std::vector<double> Means, Singles;
  void Add(const NamedStage& stage) {
    double sum = 0;
    for (int k = 0; k < kExecutions; ++k) {
      Singles.push_back(Seconds(stage));
      sum += Singles.back();
    }
    Means.push_back(sum / kExecutions);
  }
};

double Median(std::vector<double> v) {
  std::sort(v.begin(), v.end());
  return v[v.size() / 2];
}

// Each stage in 10 runs while two busy processes share the machine
// (VARNOTH_LOADED_RUNS sets another count), each between two quiet runs:
// a run's ratio is against the mean of the quiet runs on either side, so
// that a machine whose own speed drifts over the minutes (a virtual one
// does) meets both alike. "worst ratio" is the largest of these, "over
// 2.5x" counts the runs beyond that bound; "worst single" is the slowest
// single execution against the median of the ten quiet executions beside
// it, where one scheduler time slice given to another process (4 ms at
// 250 Hz) weighs on the stages of a few milliseconds. VARNOTH_SHOW_RUNS
// prints every execution's time.
void BM_UnderLoad(benchmark::State& state) {
  const std::size_t which = static_cast<std::size_t>(state.range(0));
  const NamedStage stage = which < Stages().size() ? Stages()[which] : WholeRun();
  const char* count = std::getenv("VARNOTH_LOADED_RUNS");
  const std::size_t runs = count ? static_cast<std::size_t>(std::max(1, std::atoi(count))) : 10;
  Runs quiet, loaded;
  for (auto _ : state) {
    quiet = loaded = Runs{};
    quiet.Add(stage);
    for (std::size_t k = 0; k < runs; ++k) {
      {
        CompetingLoad load(2, 600);
        // The new processes first settle on the cores: the run meets a steady load.
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        loaded.Add(stage);
      }
      quiet.Add(stage);
    }
  }
  if (std::getenv("VARNOTH_SHOW_RUNS")) {
    std::fprintf(stderr, "%s: quiet", stage.Name);
    for (double x : quiet.Singles) std::fprintf(stderr, " %.1f", x * 1e3);
    std::fprintf(stderr, " ms; loaded");
    for (double x : loaded.Singles) std::fprintf(stderr, " %.1f", x * 1e3);
    std::fprintf(stderr, " ms\n");
  }
  double worst = 0, worstSingle = 0;
  int over = 0;
  for (std::size_t k = 0; k < runs; ++k) {
    const double base = (quiet.Means[k] + quiet.Means[k + 1]) / 2;
    worst = std::max(worst, loaded.Means[k] / base);
    over += loaded.Means[k] > 2.5 * base;
    const auto beside = quiet.Singles.begin() + static_cast<long>(k * kExecutions);
    const double single = Median(std::vector<double>(beside, beside + 2 * kExecutions));
    for (int e = 0; e < kExecutions; ++e)
      worstSingle = std::max(worstSingle, loaded.Singles[k * kExecutions + e] / single);
  }
  state.SetLabel(stage.Name);
  state.counters["quiet ms"] = Median(quiet.Means) * 1e3;
  state.counters["loaded median ms"] = Median(loaded.Means) * 1e3;
  state.counters["worst ratio"] = worst;
  state.counters["over 2.5x"] = over;
  state.counters["worst single"] = worstSingle;
}

}  // namespace

BENCHMARK(BM_Stage)->DenseRange(0, 9)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();
BENCHMARK(BM_NumberText)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_NumberTextPrintf)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();
BENCHMARK(BM_BatchRun)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5)
    ->UseManualTime();
BENCHMARK(BM_UnderLoad)
    ->DenseRange(0, 10)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->UseRealTime();
