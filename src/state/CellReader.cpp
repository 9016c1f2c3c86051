#include "state/CellReader.h"

#include <fstream>
#include <iterator>
#include <sstream>

#include "state/Failure.h"

namespace varnoth {

CellReader::CellReader(std::string content) : text_(std::move(content)) {
  // A byte-order mark written by spreadsheets is no part of the corner cell.
  if (text_.size() >= 3 && text_.compare(0, 3, "\xEF\xBB\xBF") == 0) pos_ = 3;
}

CellReader CellReader::FromFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw RuntimeFailure(FailureKind::FileNotFound, path);
  std::string content;
  in.seekg(0, std::ios::end);
  std::streamoff size = in.tellg();
  if (size > 0) {
    content.resize(static_cast<std::size_t>(size));
    in.seekg(0, std::ios::beg);
    in.read(content.data(), size);
    content.resize(static_cast<std::size_t>(in.gcount()));
  } else {
    // Not seekable (a pipe, say): read as a stream.
    in.clear();
    in.seekg(0, std::ios::beg);
    std::ostringstream all;
    all << in.rdbuf();
    content = all.str();
  }
  return CellReader(std::move(content));
}

static bool IsBlank(char c) { return c == ' ' || c == '\t'; }
static bool IsLineEnd(char c) { return c == '\r' || c == '\n'; }

std::string_view CellReader::Next() {
  const std::size_t n = text_.size();
  if (pos_ >= n) throw RuntimeFailure(FailureKind::InputPastEnd);
  const char* s = text_.data();
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
    while (i < n && s[i] != ',' && !IsLineEnd(s[i])) ++i;
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

bool CellReader::AtEnd() const {
  for (std::size_t i = pos_; i < text_.size(); ++i) {
    char c = text_[i];
    if (!IsBlank(c) && !IsLineEnd(c) && c != '\x1A') return false;
  }
  return true;
}

}  // namespace varnoth
