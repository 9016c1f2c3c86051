#pragma once
// The cell stream that every table reader uses. A comma and a line end both
// end a cell, leading blanks are dropped, and double quotes around a cell are
// removed. Lines play no part: a table is defined by its cell count alone.
#include <memory>
#include <string>
#include <string_view>

namespace varnoth {

class CellReader {
 public:
  explicit CellReader(std::string content);
  // Reads the whole file; a file that cannot be opened is the file failure.
  static CellReader FromFile(const std::string& path);
  CellReader(CellReader&& other) noexcept;
  CellReader& operator=(CellReader&&) = delete;
  CellReader(const CellReader&) = delete;
  ~CellReader();

  // The next cell. Valid until the reader is destroyed. Reading when nothing
  // is left is the input-past-end failure.
  std::string_view Next();
  // The next cell as a number by the lenient parse, in one pass over the
  // usual short decimal; `empty` tells whether the cell was empty.
  double NextLenient(bool& empty);
  // True when only blanks and line ends remain: the end test made at the
  // start of a row, so a trailing blank line is no row.
  bool AtEnd() const;
  std::size_t Position() const { return pos_; }
  std::size_t Length() const { return size_; }
  // Goes on from byte `pos` (a position this reader or a part of it gave).
  void Seek(std::size_t pos) { pos_ = pos; }
  // A reader of the same content from byte `from` on; it reads this one's
  // memory and must not outlive it.
  CellReader Part(std::size_t from) const;
  // The byte after the first line end at or after `from`; Length() if none.
  std::size_t NextLineStart(std::size_t from) const;

 private:
  CellReader() = default;
  void SkipByteOrderMark();

  struct Release {
    std::size_t bytes;  // of the buffer (zero when none): a large one goes back for reuse
    void operator()(char* p) const noexcept;
  };
  std::string owned_;                      // content given as text
  std::unique_ptr<char, Release> buffer_;  // or a file's bytes, read into memory
  const char* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t pos_ = 0;
  bool part_ = false;  // reads another reader's memory
};

}  // namespace varnoth
