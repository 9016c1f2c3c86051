// Many cores in one run: each core's folder holds what a single run of that
// core writes, byte for byte, the reference's files stand once at the top,
// summary.csv repeats the cores' curve files in long form, and failing or
// missing cores are listed in failures.csv without stopping the others.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <set>

#include "BatchProgram.h"

extern char** environ;
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth::test;

namespace {

const std::string kStamp = "2026-01-01 10:00:00";

std::vector<std::string> Common() {
  return {"--reference",   Example("reference.csv"),
          "--climate",     Example("climate.csv"),
          "--envelope",    "0.1",
          "--coniss",      "--save-all-eof",
          "--error-model", "--timestamp",
          kStamp};
}

BatchResult Program(const TempDir& work, std::vector<std::string> args) {
  return RunBatchProgram(std::move(args), work.Path(""));
}

BatchResult RunCores(const TempDir& work, const std::string& list, const std::string& out,
                     std::vector<std::string> more = {}) {
  std::vector<std::string> args = Common();
  args.insert(args.end(), {"--cores", list, "--out", work.Path(out)});
  args.insert(args.end(), more.begin(), more.end());
  return Program(work, args);
}

std::set<std::string> FilesIn(const std::string& dir) {
  std::set<std::string> names;
  for (const auto& e : fs::directory_iterator(dir)) names.insert(e.path().filename().string());
  return names;
}

std::vector<std::string> Fields(const std::string& record) {
  std::vector<std::string> fields;
  std::string current;
  bool quoted = false;
  for (char c : record) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      fields.push_back(current);
      current.clear();
    } else {
      current += c;
    }
  }
  fields.push_back(current);
  return fields;
}

const std::set<std::string> kReferenceFiles = {
    "loading.csv",        "score-reference.csv", "extreme-sites.csv",   "performance.csv",
    "scatter-SumSST.csv", "scatter-WinSST.csv",  "scatter-Salinity.csv"};

// A table with the example's taxa whose samples are all of one rare taxon:
// no modern site comes under the threshold.
std::string FarCore() {
  const auto lines = Lines(ReadFile(Example("fossil.csv")));
  std::string text = lines[0] + "\n";
  const std::size_t taxa = Fields(lines[0]).size() - 1;
  for (int depth : {0, 10, 20}) {
    text += std::to_string(depth);
    for (std::size_t k = 1; k <= taxa; ++k) text += k == 1 ? ",100" : ",0";
    text += "\n";
  }
  return text;
}

// The peak resident memory of one run of the program, in kB.
long PeakKilobytes(std::vector<std::string> args) {
  args.insert(args.begin(), VARNOTH_BATCH);
  std::vector<char*> argv;
  for (auto& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  // Under AddressSanitizer freed memory waits in a quarantine of up to
  // 256 MB, which grows with the work done rather than with what is held.
  std::vector<std::string> env;
  std::string asan = "ASAN_OPTIONS=quarantine_size_mb=0:thread_local_quarantine_size_kb=0";
  for (char** e = environ; *e; ++e) {
    const std::string entry = *e;
    if (entry.rfind("ASAN_OPTIONS=", 0) == 0)
      asan += ":" + entry.substr(13);
    else
      env.push_back(entry);
  }
  env.push_back(asan);
  std::vector<char*> envp;
  for (auto& e : env) envp.push_back(e.data());
  envp.push_back(nullptr);
  pid_t pid;
  long peak = -1;
  if (posix_spawn(&pid, VARNOTH_BATCH, &actions, nullptr, argv.data(), envp.data()) == 0) {
    int status = 0;
    rusage usage{};
    if (wait4(pid, &status, 0, &usage) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0)
      peak = usage.ru_maxrss;
  }
  posix_spawn_file_actions_destroy(&actions);
  return peak;
}

}  // namespace

TEST(Cores, EachFolderEqualsTheSingleRunOfItsCore) {
  TempDir work;
  const std::vector<std::string> cores = {"fossil.csv", "core-b.csv", "core-c.csv"};
  std::string list;
  for (const auto& c : cores) list += Example(c) + "\n";
  const BatchResult all = RunCores(work, work.Write("cores.txt", list), "all");
  ASSERT_EQ(all.ExitCode, 0) << all.Err;

  std::set<std::string> top = FilesIn(work.Path("all"));
  for (const auto& c : cores) {
    const std::string name = c.substr(0, c.size() - 4);
    std::vector<std::string> args = Common();
    args.insert(args.end(), {"--fossil", Example(c), "--out", work.Path("single-" + name)});
    const BatchResult one = Program(work, args);
    ASSERT_EQ(one.ExitCode, 0) << one.Err;
    const std::set<std::string> written = FilesIn(work.Path("single-" + name));
    std::set<std::string> own;
    for (const auto& f : written) {
      const std::string single = ReadFile(work.Path("single-" + name + "/" + f));
      if (kReferenceFiles.count(f)) {
        EXPECT_EQ(ReadFile(work.Path("all/" + f)), single) << f;
      } else {
        own.insert(f);
        EXPECT_EQ(ReadFile(work.Path("all/" + name + "/" + f)), single) << name << "/" << f;
      }
    }
    // The core's folder holds exactly the other files.
    EXPECT_EQ(FilesIn(work.Path("all/" + name)), own) << name;
    EXPECT_TRUE(own.count("score-fossil.csv") && own.count("curve-all.csv")) << name;
    top.erase(name);
  }
  std::set<std::string> expectedTop = kReferenceFiles;
  expectedTop.insert({"summary.csv", "failures.csv"});
  EXPECT_EQ(top, expectedTop);
  EXPECT_EQ(Lines(ReadFile(work.Path("all/failures.csv"))).size(), 1u);
  // Progress goes to standard error, plain lines when it is no terminal.
  EXPECT_NE(all.Err.find("Cores 1 of 3 done"), std::string::npos) << all.Err;
  EXPECT_NE(all.Err.find("Cores 3 of 3 done"), std::string::npos) << all.Err;
  EXPECT_EQ(all.Err.find('\r'), std::string::npos);
}

TEST(Cores, SummaryRowsEqualTheCoresCurveFiles) {
  TempDir work;
  const BatchResult r = RunCores(work, Example("cores.txt"), "out");
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  const auto summary = Lines(ReadFile(work.Path("out/summary.csv")));
  ASSERT_FALSE(summary.empty());
  EXPECT_EQ(summary[0],
            "\"Core\",\"Sample\",\"Position\",\"Parameter\",\"Estimate\",\"Low\",\"High\","
            "\"Analogues\",\"Closest distance\",\"Envelope\"");
  // (core, sample, parameter) -> estimate, low, high, analogues
  std::map<std::string, std::vector<std::string>> fromSummary;
  std::map<std::string, std::size_t> perCore;
  for (std::size_t i = 1; i < summary.size(); ++i) {
    const auto f = Fields(summary[i]);
    ASSERT_EQ(f.size(), 10u) << summary[i];
    fromSummary[f[0] + "|" + f[1] + "|" + f[3]] = {f[4], f[5], f[6], f[7]};
    ++perCore[f[0]];
    EXPECT_TRUE(f[9] == "In" || f[9] == "Out") << summary[i];
  }
  std::size_t rows = 0;
  for (const std::string core : {"fossil", "core-b", "core-c"}) {
    const auto curve = Lines(ReadFile(work.Path("out/" + core + "/curve-all-with-error.csv")));
    ASSERT_GT(curve.size(), 1u);
    const auto head = Fields(curve[0]);
    const std::vector<std::string> params = {"SumSST", "WinSST", "Salinity"};
    for (std::size_t i = 1; i < curve.size(); ++i) {
      const auto f = Fields(curve[i]);
      for (std::size_t p = 0; p < params.size(); ++p) {
        const auto it = fromSummary.find(core + "|" + f[0] + "|" + params[p]);
        ASSERT_NE(it, fromSummary.end()) << core << " " << f[0];
        EXPECT_EQ(it->second[1], f[1 + 3 * p]);
        EXPECT_EQ(it->second[0], f[2 + 3 * p]);
        EXPECT_EQ(it->second[2], f[3 + 3 * p]);
        EXPECT_EQ(it->second[3], f.back());
        ++rows;
      }
    }
    EXPECT_EQ(perCore[core], (curve.size() - 1) * 3) << core;
  }
  EXPECT_EQ(rows, summary.size() - 1);
  // Text labels of the core: positions 10, 20, ... down the core.
  EXPECT_EQ(Fields(summary[1])[2], "10");
}

TEST(Cores, FailingCoresAreListedAndTheOthersRun) {
  TempDir work;
  // A blank value in the fourth row, a table with other taxa, one without
  // any analogue, and a file that is not there.
  const auto lines = Lines(ReadFile(Example("core-c.csv")));
  std::string blank;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    std::string line = lines[i];
    if (i == 4) line.replace(line.find(',', line.find(',') + 1), 1, ",,");
    blank += line + "\n";
  }
  // One value made empty: the fourth data row keeps its width with "" in
  // its second value.
  const std::string bad = work.Write("bad.csv", blank);
  work.Write("other-taxa.csv", "Depth,A,B,C\n0,1,2,3\n10,3,2,1\n20,2,2,2\n");
  work.Write("far.csv", FarCore());
  const std::string list = work.Write(
      "cores.txt", Example("core-b.csv") + "\nbad.csv\nother-taxa.csv\nfar.csv\nmissing.csv\n" +
                       Example("core-c.csv") + "\n");
  const BatchResult r = RunCores(work, list, "out");
  EXPECT_EQ(r.ExitCode, 3) << r.Err;
  EXPECT_TRUE(fs::exists(work.Path("out/core-b/curve-all.csv")));
  EXPECT_TRUE(fs::exists(work.Path("out/core-c/curve-all.csv")));
  for (const char* gone : {"bad", "other-taxa", "far", "missing"})
    EXPECT_FALSE(fs::exists(work.Path(std::string("out/") + gone))) << gone;
  const auto failures = Lines(ReadFile(work.Path("out/failures.csv")));
  ASSERT_EQ(failures.size(), 5u) << ReadFile(work.Path("out/failures.csv"));
  EXPECT_EQ(failures[0], "\"Core\",\"File\",\"Row\",\"Column\",\"Message\"");
  std::map<std::string, std::vector<std::string>> byCore;
  for (std::size_t i = 1; i < failures.size(); ++i) {
    const auto f = Fields(failures[i]);
    ASSERT_EQ(f.size(), 5u) << failures[i];
    byCore[f[0]] = f;
  }
  // The blank cell: row 5 of the file (the header is row 1), column 3.
  EXPECT_EQ(byCore["bad"][1], work.Path("bad.csv"));
  EXPECT_EQ(byCore["bad"][2], "5") << byCore["bad"][4];
  EXPECT_EQ(byCore["bad"][3], "3") << byCore["bad"][4];
  EXPECT_NE(byCore["bad"][4].find("Blanc cell detected."), std::string::npos);
  EXPECT_NE(byCore["other-taxa"][4].find("Parameter number inconsistent."), std::string::npos)
      << byCore["other-taxa"][4];
  EXPECT_NE(byCore["far"][4].find("No analogues through the whole sequence."), std::string::npos)
      << byCore["far"][4];
  EXPECT_EQ(byCore["missing"][1], work.Path("missing.csv"));
  EXPECT_FALSE(byCore["missing"][4].empty());
  // Only the good cores in the summary.
  std::set<std::string> summarised;
  for (const auto& line : Lines(ReadFile(work.Path("out/summary.csv"))))
    summarised.insert(Fields(line)[0]);
  EXPECT_EQ(summarised, (std::set<std::string>{"Core", "core-b", "core-c"}));
  EXPECT_NE(r.Err.find("4 of 6 cores failed"), std::string::npos) << r.Err;
  // The failures left nothing behind for the core after them.
  std::vector<std::string> args = Common();
  args.insert(args.end(), {"--fossil", Example("core-c.csv"), "--out", work.Path("single")});
  ASSERT_EQ(Program(work, args).ExitCode, 0);
  for (const char* f : {"curve-all-with-error.csv", "score-fossil.csv", "analogue-details.csv"})
    EXPECT_EQ(ReadFile(work.Path(std::string("out/core-c/") + f)),
              ReadFile(work.Path(std::string("single/") + f)))
        << f;
}

TEST(Cores, AFolderIsTakenInNameOrder) {
  TempDir work;
  fs::create_directories(work.Path("folder"));
  fs::copy_file(Example("core-c.csv"), work.Path("folder/a.csv"));
  fs::copy_file(Example("core-b.csv"), work.Path("folder/b.csv"));
  work.Write("folder/notes.txt", "not a core");
  const BatchResult r = RunCores(work, work.Path("folder"), "out");
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  const auto summary = Lines(ReadFile(work.Path("out/summary.csv")));
  EXPECT_EQ(Fields(summary[1])[0], "a");
  EXPECT_EQ(Fields(summary.back())[0], "b");
  EXPECT_FALSE(fs::exists(work.Path("out/notes")));
}

TEST(Cores, AnEmptyFolderStopsBeforeAnythingIsWritten) {
  TempDir work;
  fs::create_directories(work.Path("empty"));
  const BatchResult r = RunCores(work, work.Path("empty"), "out");
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: The folder " + work.Path("empty") + " holds no .csv files.\n");
  EXPECT_FALSE(fs::exists(work.Path("out")));
}

TEST(Cores, TheSameCoreTwiceGetsASecondFolder) {
  TempDir work;
  const std::string list =
      work.Write("twice.txt", Example("core-c.csv") + "\n" + Example("core-c.csv") + "\n");
  const BatchResult r = RunCores(work, list, "out");
  ASSERT_EQ(r.ExitCode, 0) << r.Err;
  for (const char* f : {"curve-all.csv", "score-fossil.csv", "coniss.csv"})
    EXPECT_EQ(ReadFile(work.Path(std::string("out/core-c/") + f)),
              ReadFile(work.Path(std::string("out/core-c-2/") + f)))
        << f;
  EXPECT_NE(r.Err.find("its results are in core-c-2/"), std::string::npos) << r.Err;
  std::set<std::string> cores;
  for (const auto& line : Lines(ReadFile(work.Path("out/summary.csv"))))
    cores.insert(Fields(line)[0]);
  EXPECT_EQ(cores, (std::set<std::string>{"Core", "core-c", "core-c-2"}));
}

TEST(Cores, OptionsThatNameOneCoreAreRefused) {
  TempDir work;
  BatchResult r = RunCores(work, Example("cores.txt"), "out", {"--fossil", Example("fossil.csv")});
  EXPECT_EQ(r.ExitCode, 2);
  EXPECT_NE(r.Err.find("--fossil cannot be used with --cores"), std::string::npos) << r.Err;
  r = Program(work, {"--reference", Example("reference.csv"), "--cores", Example("cores.txt"),
                     "--out", work.Path("out")});
  EXPECT_EQ(r.ExitCode, 2);
  EXPECT_NE(r.Err.find("--cores needs --climate"), std::string::npos) << r.Err;
  EXPECT_FALSE(fs::exists(work.Path("out")));
}

TEST(Cores, AListFileThatIsNotThere) {
  TempDir work;
  const BatchResult r = RunCores(work, work.Path("nothing.txt"), "out");
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: Cannot read the list of cores " + work.Path("nothing.txt") + ".\n");
}

TEST(Cores, MemoryStaysFlatInTheNumberOfCores) {
  TempDir work;
  auto peakFor = [&](int cores) {
    std::string list;
    for (int i = 0; i < cores; ++i) list += Example("fossil.csv") + "\n";
    std::vector<std::string> args = Common();
    const std::string name = "list" + std::to_string(cores);
    args.insert(args.end(), {"--cores", work.Write(name + ".txt", list), "--out",
                             work.Path("out" + std::to_string(cores))});
    return PeakKilobytes(args);
  };
  const long few = peakFor(3), many = peakFor(150);
  ASSERT_GT(few, 0);
  ASSERT_GT(many, 0);
  // 150 cores hold no more than 3 do, give or take the allocator.
  EXPECT_LT(many, few + few / 10 + 1024) << few << " kB for 3 cores, " << many << " kB for 150";
  EXPECT_TRUE(fs::exists(work.Path("out150/fossil-150/curve-all.csv")));
}

TEST(Cores, OnATerminalProgressIsOneLineRewrittenInPlace) {
  if (!fs::exists("/usr/bin/script")) GTEST_SKIP() << "no script(1) to give the run a terminal";
  TempDir work;
  const std::string command = std::string("/usr/bin/script -qc '") + VARNOTH_BATCH +
                              " --reference " + Example("reference.csv") + " --climate " +
                              Example("climate.csv") + " --cores " + Example("cores.txt") +
                              " --out " + work.Path("out") + "' /dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string text;
  char buffer[4096];
  for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) text.append(buffer, n);
  pclose(pipe);
  EXPECT_NE(text.find("\rCores 1 of 3 done"), std::string::npos) << text;
  EXPECT_NE(text.find("\rCores 3 of 3 done"), std::string::npos) << text;
  // One line end, after the last report.
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
}
