#pragma once
// Quoted records: text fields in double quotes, numbers bare in their shortest
// general form, commas between fields, CR LF at the end of a record.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace varnoth {

class RecordWriter {
 public:
  RecordWriter& Text(std::string_view s);
  RecordWriter& Number(double v);  // double precision general form
  RecordWriter& Single(float v);   // single precision general form
  RecordWriter& Integer(long long v);
  // Room for `bytes` of records, so that a long file is not moved as it grows.
  void Reserve(std::size_t bytes) { out_.reserve(bytes); }
  // Ends the record with CR LF.
  RecordWriter& End();
  // Writes the fields so far with no line end (the next record then
  // continues on the same line, after a comma).
  const std::string& Content() const { return out_; }
  // Creates (or replaces) the file; a file that cannot be written is the
  // file failure.
  void Save(const std::string& path) const;
  // The same, with the records of `more` after these, in order.
  void Save(const std::string& path, const std::vector<RecordWriter>& more) const;

 private:
  void Separate();
  std::string out_;
  bool fieldOpen_ = false;  // a field stands on the current record
};

}  // namespace varnoth
