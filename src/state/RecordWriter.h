#pragma once
// Quoted records: text fields in double quotes, numbers bare in their shortest
// general form, commas between fields, CR LF at the end of a record.
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace varnoth {

class RecordWriter {
 public:
  RecordWriter() = default;
  RecordWriter(const RecordWriter& other) { *this = other; }
  RecordWriter(RecordWriter&& other) noexcept { *this = std::move(other); }
  RecordWriter& operator=(const RecordWriter& other);
  // The moved-from writer is left empty, ready to write again.
  RecordWriter& operator=(RecordWriter&& other) noexcept {
    data_ = std::move(other.data_);
    size_ = std::exchange(other.size_, 0);
    capacity_ = std::exchange(other.capacity_, 0);
    fieldOpen_ = std::exchange(other.fieldOpen_, false);
    return *this;
  }

  RecordWriter& Text(std::string_view s);
  RecordWriter& Number(double v);  // double precision general form
  RecordWriter& Single(float v);   // single precision general form
  RecordWriter& Integer(long long v);
  // Room for `bytes` of records, so that a long file is not moved as it grows.
  void Reserve(std::size_t bytes) {
    if (bytes > capacity_) Grow(bytes - size_);
  }
  // Ends the record with CR LF.
  RecordWriter& End();
  // Writes the fields so far with no line end (the next record then
  // continues on the same line, after a comma).
  std::string_view Content() const { return {data_.get(), size_}; }
  // Creates (or replaces) the file; a file that cannot be written is the
  // file failure.
  void Save(const std::string& path) const;
  // The same, with the records of `more` after these, in order.
  void Save(const std::string& path, const std::vector<RecordWriter>& more) const;
  // The same, with the records that part(t, w) puts into w for t = 0 to
  // parts - 1 after these, in order. The parts are made on all cores, and
  // each is written as soon as those before it are, while later ones are
  // still being made.
  void Save(const std::string& path, long parts,
            const std::function<void(long, RecordWriter&)>& part) const;

 private:
  // The place to write the next field with its comma, with room for
  // `bytes` more; numbers are written there directly.
  char* Field(std::size_t bytes) {
    if (capacity_ - size_ < bytes + 1) Grow(bytes + 1);
    char* p = data_.get() + size_;
    *p = ',';
    p += fieldOpen_ ? 1 : 0;
    fieldOpen_ = true;
    return p;
  }
  void Grow(std::size_t bytes);
  // The records are the first size_ bytes; the rest, up to capacity_, is
  // room to write in, left untouched until it is written.
  struct Free {
    std::size_t bytes;  // of the buffer (zero when none): a large one goes back for reuse
    void operator()(char* p) const noexcept;
  };
  std::unique_ptr<char[], Free> data_;
  std::size_t size_ = 0, capacity_ = 0;
  bool fieldOpen_ = false;  // a field stands on the current record
};

}  // namespace varnoth
