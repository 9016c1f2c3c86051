#include "state/RecordWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>

#include "state/Failure.h"
#include "state/Format.h"

namespace varnoth {

void RecordWriter::Grow(std::size_t bytes) {
  buf_.resize(std::max({std::size_t{4096}, 2 * buf_.size(), size_ + bytes}));
}

RecordWriter& RecordWriter::Text(std::string_view s) {
  // A quote inside a name is doubled so that spreadsheets keep the field.
  char* p = Field(2 * s.size() + 2);
  *p++ = '"';
  for (char c : s) {
    if (c == '"') *p++ = '"';
    *p++ = c;
  }
  *p++ = '"';
  size_ = static_cast<std::size_t>(p - buf_.data());
  return *this;
}

RecordWriter& RecordWriter::Number(double v) {
  size_ = static_cast<std::size_t>(WriteGeneral(Field(kNumberTextMax), v) - buf_.data());
  return *this;
}

RecordWriter& RecordWriter::Single(float v) {
  size_ = static_cast<std::size_t>(WriteSingle(Field(kNumberTextMax), v) - buf_.data());
  return *this;
}

RecordWriter& RecordWriter::Integer(long long v) {
  char* p = Field(24);
  size_ = static_cast<std::size_t>(std::to_chars(p, p + 24, v).ptr - buf_.data());
  return *this;
}

RecordWriter& RecordWriter::End() {
  if (buf_.size() - size_ < 2) Grow(2);
  buf_[size_] = '\r';
  buf_[size_ + 1] = '\n';
  size_ += 2;
  fieldOpen_ = false;
  return *this;
}

namespace {

bool WriteAll(int fd, std::string_view text) {
  const char* p = text.data();
  std::size_t left = text.size();
  while (left > 0) {
    ssize_t n = ::write(fd, p, left);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    p += n;
    left -= static_cast<std::size_t>(n);
  }
  return true;
}

// Truncates and writes in place: for devices, and for a file whose folder
// takes no new files.
template <typename Write>
bool WriteInPlace(const std::string& path, Write&& write) {
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  bool ok = write(fd);
  return ::close(fd) == 0 && ok;
}

}  // namespace

void RecordWriter::Save(const std::string& path) const { Save(path, {}); }

void RecordWriter::Save(const std::string& path, const std::vector<RecordWriter>& more) const {
  auto write = [&](int fd) {
    if (!WriteAll(fd, Content())) return false;
    for (const RecordWriter& w : more)
      if (!WriteAll(fd, w.Content())) return false;
    return true;
  };
  // The new content goes into a file beside the old one and is renamed over
  // it only when every byte is written, so a full disk or a failed write
  // leaves an existing file as it was.
  struct stat info {};
  const bool exists = ::lstat(path.c_str(), &info) == 0;
  if (exists && !S_ISREG(info.st_mode)) {
    if (!WriteInPlace(path, write)) throw RuntimeFailure(FailureKind::FileNotFound, path);
    return;
  }
  static std::atomic<unsigned> serial{0};
  const std::string temp =
      path + ".part" + std::to_string(::getpid()) + "-" + std::to_string(serial++);
  int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) {
    // A folder without write permission may still hold a writable file.
    if (exists && (errno == EACCES || errno == EPERM || errno == EROFS) &&
        ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 && WriteInPlace(path, write))
      return;
    throw RuntimeFailure(FailureKind::FileNotFound, path);
  }
  bool ok = write(fd);
  // A replaced file keeps its permissions.
  if (ok && exists) ok = ::fchmod(fd, info.st_mode & 07777) == 0;
  ok = ::close(fd) == 0 && ok;
  if (!ok || ::rename(temp.c_str(), path.c_str()) != 0) {
    ::unlink(temp.c_str());
    throw RuntimeFailure(FailureKind::FileNotFound, path);
  }
}

}  // namespace varnoth
