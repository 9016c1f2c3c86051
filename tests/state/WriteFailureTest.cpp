// Every writer of result files against the three ways a save fails: a full
// disk, a folder that takes no files, a folder that is not there. Each
// ends in its failure path and leaves an existing file as it was.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>

#include "calibration/CalibrationFiles.h"
#include "diagram/EofCurveFiles.h"
#include "eof/PreTreatment.h"
#include "interpolation/Accuracy.h"
#include "interpolation/Interpolation.h"
#include "interpolation/StationImport.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ClimateImport.h"
#include "reconstruction/ReconstructionFiles.h"
#include "state/Import.h"
#include "state/RecordWriter.h"
#include "state/ScoreFiles.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth;
using namespace varnoth::test;

namespace {

// The example data set analysed to the end: every file has content.
const Session& Analysed() {
  static const Session session = [] {
    Session s;
    FakeDialogs dialogs;
    NoProgress progress;
    EXPECT_TRUE(ImportReference(s, Example("reference.csv"), dialogs, progress).Ok);
    ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
    EXPECT_TRUE(ImportFossil(s, Example("fossil.csv"), dialogs, progress).Ok);
    EXPECT_TRUE(Inport_climate_data(s, Example("climate.csv"), dialogs).Ok);
    AnalogueSettings st;
    RunReconstruction(s, st, progress);
    GenerateErrorModel(s, st, progress);
    s.CurrentParameter = 1;
    return s;
  }();
  return session;
}

// The same with the interpolation tool run on stations around the sites.
const Session& Interpolated() {
  static const Session session = [] {
    Session s = Analysed();
    FakeDialogs dialogs;
    NoProgress progress;
    s.Interp.InterpWindowOpen = true;
    EXPECT_TRUE(ImportData(s, kStationFile, TestData("interpolation/stations.csv"), dialogs).Ok);
    EXPECT_TRUE(ImportData(s, kTargetFile, TestData("interpolation/targets.csv"), dialogs).Ok);
    DoInterpolation(s, InterpolationSettings{}, progress);
    return s;
  }();
  return session;
}

const CalibState& Calibration() {
  static const CalibState c;
  return c;
}

// Progress that remembers whether it was left showing.
class WatchedProgress final : public Progress {
 public:
  void Start(long) override { shown = true; }
  void Step(long) override {}
  void Finish() override { shown = false; }
  bool shown = false;
};

// A writer as a save menu runs it: true when the file was written. The
// score and EOF curve files raise the file failure, which their windows
// end like a cancel; the reconstruction files report it.
struct Writer {
  const char* Name;
  std::function<bool(const std::string&, Progress&)> Write;
};

void PrintTo(const Writer& w, std::ostream* os) { *os << w.Name; }

template <typename F>
bool Raising(F&& write) {
  try {
    write();
    return true;
  } catch (const RuntimeFailure& e) {
    EXPECT_TRUE(IsFileFailure(e.kind())) << e.what();
    return false;
  }
}

const FileStamp kStamp{"2026-01-02", "03:04:05"};

std::vector<Writer> Writers() {
  // The session is built at the first write, not when the tests register.
  static const Session& (*session)() = Analysed;
  return {
      {"SaveLoading",
       [](const std::string& p, Progress& g) {
         const Session& s = session();
         return Raising([&] { SaveLoading(s, p, kStamp, g); });
       }},
      {"sSaveScore",
       [](const std::string& p, Progress& g) {
         const Session& s = session();
         return Raising([&] { sSaveScore(s, p, kStamp, g); });
       }},
      {"fSaveScore",
       [](const std::string& p, Progress& g) {
         const Session& s = session();
         return Raising([&] { fSaveScore(s, p, kStamp, g); });
       }},
      {"SaveEOF",
       [](const std::string& p, Progress& g) {
         const Session& s = session();
         return Raising([&] { SaveEOF(s, 1, p, g); });
       }},
      {"SaveAllEOF",
       [](const std::string& p, Progress& g) {
         const Session& s = session();
         return Raising([&] { SaveAllEOF(s, p, g); });
       }},
      {"SaveCurve", [](const std::string& p, Progress& g) { return SaveCurve(session(), p, g); }},
      {"SaveCurveWithE",
       [](const std::string& p, Progress& g) { return SaveCurveWithE(session(), p, g); }},
      {"SaveCurveAll",
       [](const std::string& p, Progress& g) { return SaveCurveAll(session(), p, g); }},
      {"SaveCurveAllwithE",
       [](const std::string& p, Progress& g) { return SaveCurveAllwithE(session(), p, g); }},
      {"SaveDistAna",
       [](const std::string& p, Progress& g) { return SaveDistAna(session(), p, g); }},
      {"SaveScatter",
       [](const std::string& p, Progress& g) { return SaveScatter(session(), p, g); }},
      {"SaveInterpolatedClimate",
       [](const std::string& p, Progress& g) {
         return SaveInterpolatedClimate(Interpolated(), p, g);
       }},
      {"SaveInterpMatrix",
       [](const std::string& p, Progress& g) { return SaveInterpMatrix(Interpolated(), p, g); }},
      {"SaveTestFile",
       [](const std::string& p, Progress& g) { return SaveTestFile(Interpolated(), p, g); }},
      {"SaveProbability",
       [](const std::string& p, Progress& g) { return SaveProbability(Calibration(), {}, p, g); }},
      {"SaveConfidence",
       [](const std::string& p, Progress& g) { return SaveConfidence(Calibration(), {}, p, g); }},
      {"SaveOstrel",
       [](const std::string& p, Progress& g) {
         return SaveOstrel(session(), Calibration(), {}, {}, 0, kStamp, p, g);
       }},
      {"RecordWriter",
       [](const std::string& p, Progress&) {
         return Raising([&] {
           RecordWriter w;
           for (int i = 0; i < 100; ++i) w.Text("Sample").Integer(i).Number(i / 7.0).End();
           w.Save(p);
         });
       }},
  };
}

constexpr const char* kOld = "the user's own file\r\n";

// The files of a folder, by name.
std::vector<std::string> Names(const std::string& dir) {
  std::vector<std::string> names;
  for (auto& e : fs::directory_iterator(dir)) names.push_back(e.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

// While alive, the process writes as an ordinary user: root writes into
// any folder whatever its permissions.
class Unprivileged {
 public:
  Unprivileged() {
    if (::geteuid() == 0) active_ = ::seteuid(65534) == 0;
  }
  ~Unprivileged() {
    if (active_) {
      EXPECT_EQ(::seteuid(0), 0);
    }
  }
  bool Usable() const { return active_ || ::geteuid() != 0; }

 private:
  bool active_ = false;
};

// A file size limit makes every write past it fail as a full disk does.
class FullDisk {
 public:
  explicit FullDisk(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &old_);
    previous_ = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit = old_;
    limit.rlim_cur = bytes;
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &old_);
    std::signal(SIGXFSZ, previous_);
  }

 private:
  rlimit old_{};
  void (*previous_)(int) = nullptr;
};

class WriteFailure : public ::testing::TestWithParam<Writer> {};

}  // namespace

TEST_P(WriteFailure, WritesWhenNothingFails) {
  TempDir dir;
  const std::string path = dir.Write("out.csv", kOld);
  WatchedProgress progress;
  ASSERT_TRUE(GetParam().Write(path, progress));
  EXPECT_NE(ReadFile(path), kOld);
  EXPECT_GT(ReadFile(path).size(), 60u);
  EXPECT_EQ(Names(dir.Path("")), std::vector<std::string>{"out.csv"});
}

TEST_P(WriteFailure, DevFullFails) {
  if (!fs::exists("/dev/full")) GTEST_SKIP() << "no /dev/full here";
  WatchedProgress progress;
  EXPECT_FALSE(GetParam().Write("/dev/full", progress));
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST_P(WriteFailure, FullDiskLeavesTheExistingFileUntouched) {
  TempDir dir;
  const std::string path = dir.Write("out.csv", kOld);
  WatchedProgress progress;
  bool written;
  {
    FullDisk full(64);
    written = GetParam().Write(path, progress);
  }
  EXPECT_FALSE(written);
  EXPECT_EQ(ReadFile(path), kOld);
  // No half-written file is left beside it.
  EXPECT_EQ(Names(dir.Path("")), std::vector<std::string>{"out.csv"});
}

TEST_P(WriteFailure, FolderWithoutWritePermission) {
  TempDir dir;
  const std::string locked = dir.Path("locked");
  fs::create_directories(locked);
  const std::string existing = locked + "/out.csv";
  { std::ofstream(existing, std::ios::binary) << kOld; }
  ::chmod(dir.Path("").c_str(), 0755);
  ::chmod(existing.c_str(), 0644);
  ::chmod(locked.c_str(), 0555);
  bool replaced, created;
  WatchedProgress progress;
  {
    Unprivileged user;
    if (!user.Usable()) GTEST_SKIP() << "cannot leave root's rights here";
    replaced = GetParam().Write(existing, progress);
    created = GetParam().Write(locked + "/new.csv", progress);
  }
  ::chmod(locked.c_str(), 0755);
  EXPECT_FALSE(replaced);
  EXPECT_FALSE(created);
  EXPECT_EQ(ReadFile(existing), kOld);
  EXPECT_EQ(Names(locked), std::vector<std::string>{"out.csv"});
}

// A folder that takes no new files but holds a file the user may write:
// the file is rewritten in its place, and a full disk leaves it as it was
// rather than cut short.
TEST_P(WriteFailure, WritableFileInALockedFolder) {
  TempDir dir;
  const std::string locked = dir.Path("locked");
  fs::create_directories(locked);
  const std::string existing = locked + "/out.csv";
  { std::ofstream(existing, std::ios::binary) << kOld; }
  ::chmod(dir.Path("").c_str(), 0755);
  ::chmod(existing.c_str(), 0666);
  ::chmod(locked.c_str(), 0555);
  bool onFullDisk, replaced;
  std::string afterFullDisk;
  WatchedProgress progress;
  {
    Unprivileged user;
    if (!user.Usable()) GTEST_SKIP() << "cannot leave root's rights here";
    {
      FullDisk full(64);
      onFullDisk = GetParam().Write(existing, progress);
    }
    afterFullDisk = ReadFile(existing);
    replaced = GetParam().Write(existing, progress);
  }
  ::chmod(locked.c_str(), 0755);
  EXPECT_FALSE(onFullDisk);
  EXPECT_EQ(afterFullDisk, kOld);
  EXPECT_TRUE(replaced);
  EXPECT_GT(ReadFile(existing).size(), 60u);
  EXPECT_EQ(Names(locked), std::vector<std::string>{"out.csv"});
}

TEST_P(WriteFailure, MissingFolder) {
  TempDir dir;
  WatchedProgress progress;
  EXPECT_FALSE(GetParam().Write(dir.Path("no-such-folder/out.csv"), progress));
  EXPECT_FALSE(fs::exists(dir.Path("no-such-folder")));
}

INSTANTIATE_TEST_SUITE_P(Writers, WriteFailure, ::testing::ValuesIn(Writers()),
                         [](const ::testing::TestParamInfo<Writer>& info) {
                           return std::string(info.param.Name);
                         });
