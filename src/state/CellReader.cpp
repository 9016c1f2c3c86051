#include "state/CellReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include "state/Failure.h"
#include "state/Format.h"
#include "state/LargeMemory.h"

namespace varnoth {

CellReader::CellReader(std::string content) : owned_(std::move(content)) {
  data_ = owned_.data();
  size_ = owned_.size();
  SkipByteOrderMark();
}

CellReader::CellReader(CellReader&& other) noexcept
    : owned_(std::move(other.owned_)),
      buffer_(std::move(other.buffer_)),
      size_(other.size_),
      pos_(other.pos_),
      part_(other.part_) {
  data_ = part_ ? other.data_ : buffer_ ? buffer_.get() : owned_.data();
  other.data_ = nullptr;
  other.size_ = other.pos_ = 0;
}

CellReader::~CellReader() = default;

void CellReader::SkipByteOrderMark() {
  // A byte-order mark written by spreadsheets is no part of the corner cell.
  if (size_ >= 3 && std::string_view(data_, 3) == "\xEF\xBB\xBF") pos_ = 3;
}

void CellReader::Release::operator()(char* p) const noexcept { FreeTextBuffer(p, bytes); }

CellReader CellReader::FromFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw RuntimeFailure(FileFailureKind(errno), path);
  struct Closer {
    int fd;
    ~Closer() { ::close(fd); }
  } closer{fd};
  // The whole file is read into memory at once rather than mapped: reading
  // a mapped file that another program shortens meanwhile ends the program
  // with a bus error, where a copy is only ever a snapshot.
  struct stat info {};
  std::size_t capacity = 65536;
  if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0)
    capacity = static_cast<std::size_t>(info.st_size) + 1;  // + 1 sees the end at once
  // A file larger than memory (or an endless device) is the system's
  // "Out of memory", not an abort.
  // A large buffer starts on a 2 MB boundary on huge pages: a few page
  // faults while the file is read in, instead of one for every 4 KB.
  auto allocate = [&](std::size_t& bytes) {
    try {
      return std::unique_ptr<char, Release>(TextBuffer(bytes), Release{bytes});
    } catch (const std::bad_alloc&) {
      throw RuntimeFailure(FailureKind::OutOfMemory, path);
    }
  };
  std::unique_ptr<char, Release> buffer = allocate(capacity);
  std::size_t have = 0;
  for (;;) {
    if (have == capacity) {
      // More than the size said (a file still growing, or a pipe).
      if (capacity > SIZE_MAX / 4) throw RuntimeFailure(FailureKind::OutOfMemory, path);
      std::size_t larger = capacity * 2;
      std::unique_ptr<char, Release> grown = allocate(larger);
      std::memcpy(grown.get(), buffer.get(), have);
      buffer = std::move(grown);
      capacity = larger;
    }
    ssize_t got = ::read(fd, buffer.get() + have, capacity - have);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw RuntimeFailure(FileFailureKind(errno), path);
    if (got == 0) break;
    have += static_cast<std::size_t>(got);
  }
  buffer.get()[have] = '\0';
  CellReader r;
  r.data_ = buffer.get();
  r.size_ = have;
  r.buffer_ = std::move(buffer);
  r.SkipByteOrderMark();
  return r;
}

CellReader CellReader::Part(std::size_t from) const {
  CellReader r;
  r.data_ = data_;
  r.size_ = size_;
  r.pos_ = from;
  r.part_ = true;
  return r;
}

std::size_t CellReader::NextLineStart(std::size_t from) const {
  for (std::size_t i = from; i < size_; ++i)
    if (data_[i] == '\n') return i + 1;
  return size_;
}

static bool IsBlank(char c) { return c == ' ' || c == '\t'; }
static bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

std::string_view CellReader::Next() {
  const std::size_t n = size_;
  if (pos_ >= n) throw RuntimeFailure(FailureKind::InputPastEnd);
  const char* s = data_;
  std::size_t i = pos_;
  while (i < n && IsBlank(s[i])) ++i;
  std::string_view cell;
  if (i < n && s[i] == '"') {
    std::size_t start = i + 1, close = start;
    while (close < n && s[close] != '"') ++close;
    cell = std::string_view(s + start, close - start);
    i = close < n ? close + 1 : n;
    // Whatever follows the closing quote up to the delimiter is dropped.
    while (i < n && s[i] != ',' && !IsLineEnd(s[i])) ++i;
  } else {
    std::size_t start = i;
    // Delimiters are all below '-': one compare passes most characters.
    while (i < n && (s[i] > ',' || (s[i] != ',' && !IsLineEnd(s[i])))) ++i;
    cell = std::string_view(s + start, i - start);
  }
  if (i < n) {
    if (s[i] == ',') {
      ++i;
    } else if (s[i] == '\r') {
      ++i;
      if (i < n && s[i] == '\n') ++i;
    } else {
      ++i;
    }
  }
  pos_ = i;
  return cell;
}

double CellReader::NextLenient(bool& empty) {
  const std::size_t n = size_;
  const char* s = data_;
  std::size_t i = pos_;
  while (i < n && IsBlank(s[i])) ++i;
  bool negative = false;
  if (i < n && (s[i] == '-' || s[i] == '+')) negative = s[i++] == '-';
  std::uint64_t mantissa = 0;
  std::size_t first = i;
  while (i < n && s[i] >= '0' && s[i] <= '9')
    mantissa = mantissa * 10 + static_cast<std::uint64_t>(s[i++] - '0');
  std::size_t digits = i - first, fraction = 0;
  if (i < n && s[i] == '.') {
    std::size_t point = ++i;
    while (i < n && s[i] >= '0' && s[i] <= '9')
      mantissa = mantissa * 10 + static_cast<std::uint64_t>(s[i++] - '0');
    fraction = i - point;
    digits += fraction;
  }
  if (digits == 0 || digits > 15 || (i < n && s[i] != ',' && !IsLineEnd(s[i]))) {
    // Anything else (quotes, text, exponents, long numbers, empty cells)
    // takes the general way from the start of the cell.
    std::string_view cell = Next();
    empty = cell.empty();
    return LenientParse(cell);
  }
  if (i < n) {
    if (s[i] == '\r' && i + 1 < n && s[i + 1] == '\n') ++i;
    ++i;
  }
  pos_ = i;
  empty = false;
  double v = fraction == 0 ? static_cast<double>(mantissa)
                           : static_cast<double>(mantissa) / kExactPowersOfTen[fraction];
  return negative ? -v : v;
}

bool CellReader::AtEnd() const {
  for (std::size_t i = pos_; i < size_; ++i) {
    char c = data_[i];
    if (!IsBlank(c) && !IsLineEnd(c) && c != '\x1A') return false;
  }
  return true;
}

}  // namespace varnoth
