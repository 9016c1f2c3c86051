#include "state/RecordWriter.h"

#include <cstdio>
#include <fstream>

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

void RecordWriter::Save(const std::string& path) const { Save(path, {}); }

void RecordWriter::Save(const std::string& path, const std::vector<RecordWriter>& more) const {
  std::ofstream f(path, std::ios::binary | std::ios::trunc);
  if (!f) throw RuntimeFailure(FailureKind::FileNotFound, path);
  f.write(out_.data(), static_cast<std::streamsize>(out_.size()));
  for (const RecordWriter& w : more)
    f.write(w.out_.data(), static_cast<std::streamsize>(w.out_.size()));
  f.close();
  if (!f) throw RuntimeFailure(FailureKind::FileNotFound, path);
}

}  // namespace varnoth
