#include "state/RecordWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>

#include "state/Failure.h"
#include "state/Format.h"

namespace varnoth {

void RecordWriter::Separate() {
  if (fieldOpen_) out_ += ',';
  fieldOpen_ = true;
}

RecordWriter& RecordWriter::Text(std::string_view s) {
  Separate();
  out_ += '"';
  // A quote inside a name is doubled so that spreadsheets keep the field.
  for (char c : s) {
    if (c == '"') out_ += '"';
    out_ += c;
  }
  out_ += '"';
  return *this;
}

RecordWriter& RecordWriter::Number(double v) {
  Separate();
  char text[kNumberTextMax];
  out_.append(text, WriteGeneral(text, v));
  return *this;
}

RecordWriter& RecordWriter::Single(float v) {
  Separate();
  char text[kNumberTextMax];
  out_.append(text, WriteSingle(text, v));
  return *this;
}

RecordWriter& RecordWriter::Integer(long long v) {
  Separate();
  out_ += std::to_string(v);
  return *this;
}

RecordWriter& RecordWriter::End() {
  out_ += "\r\n";
  fieldOpen_ = false;
  return *this;
}

namespace {

// Writes every byte; false with errno set when one cannot be written.
bool WriteAll(int fd, const std::string& text) {
  const char* p = text.data();
  std::size_t left = text.size();
  while (left > 0) {
    ssize_t n = ::write(fd, p, left);
    if (n < 0 && errno == EINTR) continue;
    if (n == 0) errno = ENOSPC;
    if (n <= 0) return false;
    p += n;
    left -= static_cast<std::size_t>(n);
  }
  return true;
}

[[noreturn]] void Fail(int error, const std::string& path) {
  throw RuntimeFailure(FileFailureKind(error), path);
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Rewrites an existing file in its place, for a file whose folder takes no
// new files (or that a link points at). The whole new size is reserved
// before the first old byte is overwritten, so a full disk ends the save
// with the old file as it was; where the room cannot be reserved, nothing
// is written.
template <typename Write>
void RewriteInPlace(const std::string& path, std::size_t size, Write&& write) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (fd < 0) Fail(errno, path);
  auto failed = [&](int error, const std::string& detail) {
    ::close(fd);
    throw RuntimeFailure(FileFailureKind(error), detail);
  };
  if (size > 0 && ::fallocate(fd, 0, 0, static_cast<off_t>(size)) != 0) {
    const int error = errno;
    if (error == EOPNOTSUPP || error == ENOSYS)
      failed(EACCES, "the folder " + FolderOf(path) + " takes no new files, and " + path +
                         " cannot be rewritten safely in place");
    failed(error, path);
  }
  if (!write(fd)) failed(errno, path);
  if (::ftruncate(fd, static_cast<off_t>(size)) != 0) failed(errno, path);
  if (::close(fd) != 0) Fail(errno, path);
}

}  // namespace

void RecordWriter::Save(const std::string& path) const { Save(path, {}); }

void RecordWriter::Save(const std::string& path, const std::vector<RecordWriter>& more) const {
  std::size_t size = out_.size();
  for (const RecordWriter& w : more) size += w.out_.size();
  auto write = [&](int fd) {
    if (!WriteAll(fd, out_)) return false;
    for (const RecordWriter& w : more)
      if (!WriteAll(fd, w.out_)) return false;
    return true;
  };
  // Only plain files are written: a pipe would wait for a reader for ever,
  // a device or a folder is no result file.
  struct stat link {
  }, info{};
  const bool exists = ::lstat(path.c_str(), &link) == 0;
  if (exists && ::stat(path.c_str(), &info) != 0) Fail(errno, path);
  if (exists && !S_ISREG(info.st_mode))
    throw RuntimeFailure(FailureKind::PathFileAccess, path + " is not a regular file");
  // A link keeps pointing where it did: its file is rewritten in place.
  if (exists && S_ISLNK(link.st_mode)) {
    RewriteInPlace(path, size, write);
    return;
  }
  // The new content goes into a file beside the old one and is renamed over
  // it only when every byte is written, so a full disk or a failed write
  // leaves an existing file as it was.
  static std::atomic<unsigned> serial{0};
  const std::string temp =
      path + ".part" + std::to_string(::getpid()) + "-" + std::to_string(serial++);
  int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd < 0) {
    const int error = errno;
    // A folder without write permission may still hold a writable file.
    if (exists && (error == EACCES || error == EPERM || error == EROFS) &&
        ::faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0) {
      RewriteInPlace(path, size, write);
      return;
    }
    if (error == EACCES || error == EPERM || error == EROFS)
      throw RuntimeFailure(FileFailureKind(error),
                           "the folder " + FolderOf(path) + " takes no new files: " + path);
    // No file can be created in a folder that is not there.
    if (error == ENOENT) throw RuntimeFailure(FailureKind::PathNotFound, path);
    Fail(error, path);
  }
  bool ok = write(fd);
  int error = ok ? 0 : errno;
  // A replaced file keeps its permissions.
  if (ok && exists && ::fchmod(fd, info.st_mode & 07777) != 0) ok = false, error = errno;
  if (::close(fd) != 0 && ok) ok = false, error = errno;
  if (ok && ::rename(temp.c_str(), path.c_str()) != 0) ok = false, error = errno;
  if (!ok) {
    ::unlink(temp.c_str());
    Fail(error, path);
  }
}

}  // namespace varnoth
