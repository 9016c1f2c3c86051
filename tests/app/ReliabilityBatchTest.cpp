// What a batch run promises whatever its input: a huge value ends in the
// overflow failure and writes nothing of the failed step, a failure names
// the file, the place and the cause, and no input or output makes the
// program abort or wait forever.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "BatchProgram.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth;
using namespace varnoth::test;

namespace {

std::string Ex(const std::string& name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }

// The example climate file with one value replaced.
std::string ClimateWith(const std::string& value) {
  std::vector<std::string> lines = Lines(ReadFile(Ex("climate.csv")));
  std::string out;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    std::string line = lines[i];
    if (i == 5)
      line = line.substr(0, line.find(',') + 1) + value +
             line.substr(line.find(',', line.find(',') + 1));
    out += line + "\r\n";
  }
  return out;
}

// The station table with one observed value replaced (station 3, TWinter).
std::string StationsWith(const std::string& value) {
  std::vector<std::string> lines = Lines(ReadFile(TestData("interpolation/stations.csv")));
  std::string out;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    std::string line = lines[i];
    if (i == 3) {
      std::size_t at = 0;
      for (int c = 0; c < 7; ++c) at = line.find(',', at) + 1;
      line = line.substr(0, at) + value + line.substr(line.find(',', at));
    }
    out += line + "\r\n";
  }
  return out;
}

}  // namespace

TEST(Reliability, HugeClimateValueEndsTheEofClimateTableInOverflow) {
  for (const char* huge : {"1e308", "-1e308"}) {
    TempDir work;
    const std::string climate = work.Write("climate.csv", ClimateWith(huge));
    BatchResult r =
        RunBatchProgram({"--reference", Ex("reference.csv"), "--fossil", Ex("fossil.csv"),
                         "--climate", climate, "--eof-climate", "--out", work.Path("out")},
                        work.Path(""));
    EXPECT_EQ(r.ExitCode, 1) << huge;
    EXPECT_NE(r.Err.find("Error: Overflow"), std::string::npos) << r.Err;
    EXPECT_NE(r.Err.find("EOF-climate"), std::string::npos) << r.Err;
    EXPECT_FALSE(fs::exists(work.Path("out/eof-climate.csv"))) << huge;
  }
}

TEST(Reliability, HugeStationValueEndsTheAccuracyCheckInOverflow) {
  TempDir work;
  // Large enough that its square overflows, small enough for the weighted
  // sums of the interpolation itself.
  const std::string stations = work.Write("stations.csv", StationsWith("1e200"));
  BatchResult r =
      RunBatchProgram({"--reference", Ex("reference.csv"), "--stations", stations, "--targets",
                       TestData("interpolation/targets.csv"), "--out", work.Path("out")},
                      work.Path(""));
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("Error: Overflow"), std::string::npos) << r.Err;
  EXPECT_NE(r.Err.find("TWinter"), std::string::npos) << r.Err;
  EXPECT_FALSE(fs::exists(work.Path("out/accuracy-TWinter.csv")));
}

namespace {

BatchResult Calibrate(const TempDir& work, const std::string& pairs) {
  return RunBatchProgram(
      {"--reference", Ex("reference.csv"), "--fossil", Ex("fossil.csv"), "--climate",
       Ex("climate.csv"), "--calibrate", "SumSST", "--vest-vobs", pairs, "--out", work.Path("out")},
      work.Path(""));
}

}  // namespace

TEST(Reliability, PairFileFailuresNameTheCauseAndThePlace) {
  TempDir work;
  std::string big = "Vest,Vobs\r\n1,2\r\n3,4e39\r\n5,6\r\n";
  const std::string tooLarge = work.Write("large.csv", big);
  BatchResult r = Calibrate(work, tooLarge);
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: A value is too large (Overflow) in " + tooLarge + ", row 3, column 2\n");

  std::string rows = "Vest,Vobs\r\n";
  for (int i = 1; i <= 10001; ++i)
    rows += std::to_string(i % 40) + "," + std::to_string(i % 37) + "\r\n";
  const std::string tooLong = work.Write("long.csv", rows);
  r = Calibrate(work, tooLong);
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: More than 10000 pairs (Subscript out of range) in " + tooLong +
                       ", row 10002\n");

  const std::string cut = work.Write("cut.csv", "Vest,Vobs\r\n1,2\r\n3,4\r\n5");
  r = Calibrate(work, cut);
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: The file ends inside a row (Input past end of file) in " + cut +
                       ", row 4, column 2\n");
}

TEST(Reliability, EofClimateNamesTheClimateFileAndWhereItFailed) {
  TempDir work;
  // The file ends inside the fourth site's row.
  std::string text = ReadFile(Ex("climate.csv"));
  std::vector<std::string> lines = Lines(text);
  std::string cut;
  for (std::size_t i = 0; i < 4; ++i) cut += lines[i] + "\r\n";
  cut += lines[4].substr(0, lines[4].rfind(','));
  const std::string climate = work.Write("climate.csv", cut);
  BatchResult r =
      RunBatchProgram({"--reference", Ex("reference.csv"), "--fossil", Ex("fossil.csv"),
                       "--climate", climate, "--eof-climate", "--out", work.Path("out")},
                      work.Path(""));
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: The file ends inside a row (Input past end of file) in " + climate +
                       ", row 5, column 4\n");

  std::string utf16 = "\xFF\xFE";
  for (char ch : text) utf16 += std::string{ch, '\0'};
  const std::string wide = work.Write("wide.csv", utf16);
  r = RunBatchProgram({"--reference", Ex("reference.csv"), "--fossil", Ex("fossil.csv"),
                       "--climate", wide, "--eof-climate", "--out", work.Path("out2")},
                      work.Path(""));
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find(" in " + wide), std::string::npos) << r.Err;
  EXPECT_NE(r.Err.find("UTF-16"), std::string::npos) << r.Err;
}

namespace {

// While alive, files the program writes may not grow past `bytes`, as on
// a full disk; the signal a larger write raises stays ignored in the
// program started meanwhile.
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

// Opens the other end of a named pipe while a run still waits on it after a
// few seconds, so that a run that blocks ends instead of hanging the test.
class PipeRelease {
 public:
  PipeRelease(std::string fifo, int mode)
      : thread_([this, fifo = std::move(fifo), mode] {
          for (int i = 0; i < 50 && !done_; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
          // Again and again: a run may open the pipe more than once.
          while (!done_) {
            const int fd = ::open(fifo.c_str(), mode | O_NONBLOCK);
            if (fd >= 0) ::close(fd);
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
          }
        }) {}
  ~PipeRelease() {
    done_ = true;
    thread_.join();
  }

 private:
  std::atomic<bool> done_{false};
  std::thread thread_;
};

}  // namespace

TEST(Reliability, AFullDiskNamesTheFileAndTheCauseAndKeepsTheOldFile) {
  TempDir work;
  fs::create_directories(work.Path("out"));
  const std::string old = work.Write("out/loading.csv", "the user's own file\r\n");
  BatchResult r;
  {
    FullDisk full(2048);
    r = RunBatchProgram({"--reference", Ex("reference.csv"), "--out", work.Path("out")},
                        work.Path(""));
  }
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: Disk full (" + old + ")\n");
  EXPECT_EQ(ReadFile(old), "the user's own file\r\n");
}

TEST(Reliability, AnEndlessDeviceAsInputIsRefused) {
  if (!fs::exists("/dev/zero")) GTEST_SKIP() << "no /dev/zero here";
  TempDir work;
  BatchResult r =
      RunBatchProgram({"--reference", "/dev/zero", "--out", work.Path("out")}, work.Path(""));
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err,
            "Error: Cannot read the reference table /dev/zero (Path/File access error): it is "
            "not a regular file.\n");
}

TEST(Reliability, ANamedPipeAsInputIsRefused) {
  TempDir work;
  const std::string fifo = work.Path("pipe.csv");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  BatchResult r;
  {
    PipeRelease release(fifo, O_WRONLY);
    r = RunBatchProgram(
        {"--reference", Ex("reference.csv"), "--fossil", fifo, "--out", work.Path("out")},
        work.Path(""));
  }
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: Cannot read the fossil table " + fifo +
                       " (Path/File access error): it is not a regular file.\n");
}

TEST(Reliability, ANamedPipeAsOutputIsRefused) {
  TempDir work;
  fs::create_directories(work.Path("out"));
  const std::string fifo = work.Path("out/loading.csv");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  BatchResult r;
  {
    PipeRelease release(fifo, O_RDONLY);
    r = RunBatchProgram({"--reference", Ex("reference.csv"), "--out", work.Path("out")},
                        work.Path(""));
  }
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: Path/File access error (" + fifo + " is not a regular file)\n");
  EXPECT_TRUE(fs::is_fifo(fifo));
}

// A table larger than memory: the allocation fails, and the run ends in
// the system's "Out of memory" with the file named, not in an abort. The
// file is sparse, so it takes no room on the disk.
TEST(Reliability, ATableLargerThanMemoryEndsInOutOfMemory) {
  TempDir work;
  const std::string huge = work.Path("huge.csv");
  { std::ofstream(huge) << "Site,A,B\r\n"; }
  std::error_code error;
  fs::resize_file(huge, std::uintmax_t{1} << 40, error);  // 1 TB
  if (error) GTEST_SKIP() << "no sparse 1 TB file here";
  // A sanitizer's allocator reports such a request instead of failing it.
  ::setenv("ASAN_OPTIONS", "allocator_may_return_null=1", 0);
  BatchResult r = RunBatchProgram({"--reference", huge, "--out", work.Path("out")}, work.Path(""));
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_NE(r.Err.find("Error: Out of memory in " + huge), std::string::npos) << r.Err;
}
