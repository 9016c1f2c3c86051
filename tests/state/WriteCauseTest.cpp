// A save that fails says why, in the system's words: "Disk full",
// "Permission denied", "Path not found", "Path/File access error", with the
// file or folder it concerns.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "state/RecordFile.h"
#include "state/RecordWriter.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth;
using namespace varnoth::test;

namespace {

RecordWriter Records() {
  RecordWriter w;
  for (int i = 0; i < 200; ++i) w.Text("Sample").Integer(i).Number(i / 7.0).End();
  return w;
}

// The failure a save ends in.
RuntimeFailure SaveFailure(const std::string& path) {
  try {
    Records().Save(path);
  } catch (const RuntimeFailure& e) {
    return e;
  }
  ADD_FAILURE() << path << " was written";
  return RuntimeFailure(FailureKind::InvalidCall);
}

}  // namespace

TEST(WriteCause, AFullDiskIsDiskFull) {
  TempDir dir;
  const std::string path = dir.Write("out.csv", "old\r\n");
  rlimit old{};
  ::getrlimit(RLIMIT_FSIZE, &old);
  auto previous = std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit = old;
  limit.rlim_cur = 256;
  ::setrlimit(RLIMIT_FSIZE, &limit);
  const RuntimeFailure e = SaveFailure(path);
  ::setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, previous);
  EXPECT_EQ(e.kind(), FailureKind::DiskFull);
  EXPECT_EQ(std::string(e.what()), "Disk full (" + path + ")");
  EXPECT_EQ(ReadFile(path), "old\r\n");
}

TEST(WriteCause, AMissingFolderIsPathNotFound) {
  TempDir dir;
  const std::string path = dir.Path("no-such-folder/out.csv");
  const RuntimeFailure e = SaveFailure(path);
  EXPECT_EQ(e.kind(), FailureKind::PathNotFound);
  EXPECT_EQ(std::string(e.what()), "Path not found (" + path + ")");
}

TEST(WriteCause, AFolderThatTakesNoFilesIsPermissionDenied) {
  TempDir dir;
  const std::string locked = dir.Path("locked");
  fs::create_directories(locked);
  ::chmod(dir.Path("").c_str(), 0755);
  ::chmod(locked.c_str(), 0555);
  bool usable = true;
  RuntimeFailure e(FailureKind::InvalidCall);
  {
    const bool root = ::geteuid() == 0;
    if (root) usable = ::seteuid(65534) == 0;
    if (usable) e = SaveFailure(locked + "/new.csv");
    if (root && usable) {
      EXPECT_EQ(::seteuid(0), 0);
    }
  }
  ::chmod(locked.c_str(), 0755);
  if (!usable) GTEST_SKIP() << "cannot leave root's rights here";
  EXPECT_EQ(e.kind(), FailureKind::PermissionDenied);
  EXPECT_EQ(std::string(e.what()), "Permission denied (the folder " + locked +
                                       " takes no new files: " + locked + "/new.csv)");
}

TEST(WriteCause, ANamedPipeIsNoResultFile) {
  TempDir dir;
  const std::string fifo = dir.Path("pipe.csv");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  // With no reader at the other end, opening the pipe would wait for ever:
  // a reader that comes after a few seconds ends such a wait.
  std::atomic<bool> done{false};
  auto previous = std::signal(SIGPIPE, SIG_IGN);
  std::thread release([&] {
    for (int i = 0; i < 50 && !done; ++i)
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    if (done) return;
    const int fd = ::open(fifo.c_str(), O_RDONLY | O_NONBLOCK);
    if (fd >= 0) ::close(fd);
  });
  const RuntimeFailure e = SaveFailure(fifo);
  done = true;
  release.join();
  std::signal(SIGPIPE, previous);
  EXPECT_EQ(e.kind(), FailureKind::PathFileAccess);
  EXPECT_EQ(std::string(e.what()), "Path/File access error (" + fifo + " is not a regular file)");
  EXPECT_TRUE(fs::is_fifo(fifo));
}

TEST(WriteCause, ASaveThatFailsTellsWhyToItsCaller) {
  TempDir dir;
  NoProgress progress;
  const std::string missing = dir.Path("no-such-folder/out.csv");
  EXPECT_FALSE(SaveRecordFile(missing, progress, 1, [](RecordWriter& w) { w.Text("x").End(); }));
  EXPECT_EQ(lastSaveFailure, "Path not found (" + missing + ")");
  EXPECT_TRUE(
      SaveRecordFile(dir.Path("out.csv"), progress, 1, [](RecordWriter& w) { w.Text("x").End(); }));
  EXPECT_EQ(lastSaveFailure, "");
}
