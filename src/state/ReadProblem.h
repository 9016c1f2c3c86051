#pragma once
// How a reader tells a user without the window what failed and where.
#include <string>

namespace varnoth {

// "<what> in <file>", then ", row R, column C" where they are known (rows
// count the header as row 1, columns the label as column 1, as a
// spreadsheet shows them) or ", cell N" while the width of the table is
// still being sought; 0 means unknown.
std::string ReadProblemText(const std::string& what, const std::string& file, long row, long column,
                            long cell);

// Where a read stands, in the terms of ReadProblemText.
struct ReadPlace {
  long row = 0, column = 0, cell = 0;
  void At(long r, long c) {
    row = r;
    column = c;
    cell = 0;
  }
  void AtCell(long k) {
    row = column = 0;
    cell = k;
  }
  std::string Text(const std::string& what, const std::string& file) const {
    return ReadProblemText(what, file, row, column, cell);
  }
};

// A sentence on what the file is when it is no plain text ("The file is
// UTF-16 text: ..."), else empty. Cells are read as single-byte text, so
// such files fail with a cause that does not name the real trouble.
std::string FileKindHint(const std::string& file);

}  // namespace varnoth
