#include "state/RecordWriter.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <new>

#include "state/Failure.h"
#include "state/Format.h"
#include "state/LargeMemory.h"
#include "state/Parallel.h"

namespace varnoth {

void RecordWriter::Free::operator()(char* p) const noexcept { FreeTextBuffer(p, bytes); }

void RecordWriter::Grow(std::size_t bytes) {
  std::size_t capacity = std::max({std::size_t{4096}, 2 * capacity_, size_ + bytes});
  std::unique_ptr<char[], Free> data(TextBuffer(capacity), Free{capacity});
  if (size_ > 0) std::memcpy(data.get(), data_.get(), size_);
  data_ = std::move(data);
  capacity_ = capacity;
}

RecordWriter& RecordWriter::operator=(const RecordWriter& other) {
  if (this == &other) return *this;
  size_ = 0;
  if (capacity_ < other.size_) Grow(other.size_);
  if (other.size_ > 0) std::memcpy(data_.get(), other.data_.get(), other.size_);
  size_ = other.size_;
  fieldOpen_ = other.fieldOpen_;
  return *this;
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
  size_ = static_cast<std::size_t>(p - data_.get());
  return *this;
}

RecordWriter& RecordWriter::Number(double v) {
  size_ = static_cast<std::size_t>(WriteGeneral(Field(kNumberTextMax), v) - data_.get());
  return *this;
}

RecordWriter& RecordWriter::Single(float v) {
  size_ = static_cast<std::size_t>(WriteSingle(Field(kNumberTextMax), v) - data_.get());
  return *this;
}

RecordWriter& RecordWriter::Integer(long long v) {
  char* p = Field(24);
  size_ = static_cast<std::size_t>(std::to_chars(p, p + 24, v).ptr - data_.get());
  return *this;
}

RecordWriter& RecordWriter::End() {
  if (capacity_ - size_ < 2) Grow(2);
  data_[size_] = '\r';
  data_[size_ + 1] = '\n';
  size_ += 2;
  fieldOpen_ = false;
  return *this;
}

namespace {

// Writes every byte; false with errno set when one cannot be written.
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

[[noreturn]] void Fail(int error, const std::string& path) {
  throw RuntimeFailure(FileFailureKind(error), path);
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// Writes the pieces one after the other.
bool WritePieces(int fd, std::string_view first, const std::vector<RecordWriter>& more) {
  if (!WriteAll(fd, first)) return false;
  for (const RecordWriter& w : more)
    if (!WriteAll(fd, w.Content())) return false;
  return true;
}

std::size_t SizeOf(std::string_view first, const std::vector<RecordWriter>& more) {
  std::size_t size = first.size();
  for (const RecordWriter& w : more) size += w.Content().size();
  return size;
}

// Rewrites an existing file in its place, for a file whose folder takes no
// new files (or that a link points at). The whole new size is reserved
// before the first old byte is overwritten, so a full disk ends the save
// with the old file as it was; where the room cannot be reserved, nothing
// is written.
void RewriteInPlace(const std::string& path, std::string_view first,
                    const std::vector<RecordWriter>& more) {
  const std::size_t size = SizeOf(first, more);
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
  if (!WritePieces(fd, first, more)) failed(errno, path);
  if (::ftruncate(fd, static_cast<off_t>(size)) != 0) failed(errno, path);
  if (::close(fd) != 0) Fail(errno, path);
}

// Creates (or replaces) the file at `path` with what write(fd) writes; a
// file that cannot be written is the file failure named by its cause. Where
// the file must be rewritten in place, inPlace(path) does it instead, as
// that needs the whole size before the first byte.
void SaveWith(const std::string& path, const std::function<bool(int)>& write,
              const std::function<void(const std::string&)>& inPlace) {
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
    inPlace(path);
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
      inPlace(path);
      return;
    }
    if (error == EACCES || error == EPERM || error == EROFS)
      throw RuntimeFailure(FileFailureKind(error),
                           "the folder " + FolderOf(path) + " takes no new files: " + path);
    // No file can be created in a folder that is not there.
    if (error == ENOENT) throw RuntimeFailure(FailureKind::PathNotFound, path);
    Fail(error, path);
  }
  bool ok = false;
  try {
    ok = write(fd);
  } catch (...) {
    ::close(fd);
    ::unlink(temp.c_str());
    throw;
  }
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

}  // namespace

void RecordWriter::Save(const std::string& path) const { Save(path, {}); }

void RecordWriter::Save(const std::string& path, const std::vector<RecordWriter>& more) const {
  SaveWith(
      path, [&](int fd) { return WritePieces(fd, Content(), more); },
      [&](const std::string& p) { RewriteInPlace(p, Content(), more); });
}

void RecordWriter::Save(const std::string& path, long parts,
                        const std::function<void(long, RecordWriter&)>& part) const {
  // In place, the whole text is made first, so that its size is known.
  auto inPlace = [&](const std::string& p) {
    std::vector<RecordWriter> made(static_cast<std::size_t>(std::max(0L, parts)));
    ParallelTasks(parts, [&](long t) { part(t, made[static_cast<std::size_t>(t)]); });
    RewriteInPlace(p, Content(), made);
  };
  SaveWith(
      path,
      [&](int fd) {
        if (!WriteAll(fd, Content())) return false;
        std::vector<RecordWriter> made(static_cast<std::size_t>(std::max(0L, parts)));
        std::unique_ptr<std::atomic<bool>[]> done(new std::atomic<bool>[made.size()]);
        for (std::size_t t = 0; t < made.size(); ++t) done[t] = false;
        std::mutex writing;
        std::size_t next = 0;  // the first part not yet written, under `writing`
        bool ok = true;        // under `writing`
        // Written parts give their buffers, already faulted in, to later ones.
        std::mutex pooling;
        std::vector<RecordWriter> pool;
        // Writes the parts that are done from `next` on, in order.
        auto writeReady = [&] {
          while (next < made.size() && done[next].load(std::memory_order_acquire)) {
            RecordWriter& w = made[next];
            if (ok) ok = WriteAll(fd, w.Content());
            w.size_ = 0;
            w.fieldOpen_ = false;
            {
              std::lock_guard lock(pooling);
              pool.push_back(std::move(w));
            }
            ++next;
          }
        };
        ParallelTasks(parts, [&](long t) {
          RecordWriter& w = made[static_cast<std::size_t>(t)];
          {
            std::lock_guard lock(pooling);
            if (!pool.empty()) {
              w = std::move(pool.back());
              pool.pop_back();
            }
          }
          part(t, w);
          done[static_cast<std::size_t>(t)].store(true, std::memory_order_release);
          // Whoever finds the file free writes what is ready; a thread that finds
          // it busy goes on making text, and what is left is written below.
          std::unique_lock lock(writing, std::try_to_lock);
          if (lock.owns_lock()) writeReady();
        });
        std::lock_guard lock(writing);
        writeReady();
        return ok && next == made.size();
      },
      inPlace);
}

}  // namespace varnoth
