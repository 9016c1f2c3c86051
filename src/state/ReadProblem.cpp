#include "state/ReadProblem.h"

#include <fstream>

namespace varnoth {

std::string ReadProblemText(const std::string& what, const std::string& file, long row, long column,
                            long cell) {
  std::string text = what + " in " + file;
  if (row > 0) text += ", row " + std::to_string(row);
  if (column > 0) text += ", column " + std::to_string(column);
  if (cell > 0) text += ", cell " + std::to_string(cell);
  return text;
}

std::string FileKindHint(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  char head[4096];
  in.read(head, sizeof head);
  const std::streamsize got = in.gcount();
  if (got == 0) return ". The file is empty.";
  const auto byte = [&](std::streamsize i) { return static_cast<unsigned char>(head[i]); };
  const bool littleMark = got >= 2 && byte(0) == 0xFF && byte(1) == 0xFE;
  const bool bigMark = got >= 2 && byte(0) == 0xFE && byte(1) == 0xFF;
  long zeros = 0;
  for (std::streamsize i = 0; i < got; ++i) zeros += head[i] == 0;
  // Every other byte zero is UTF-16 text even without its mark.
  if (littleMark || bigMark || (zeros > 0 && zeros * 3 >= got))
    return ". The file is UTF-16 text: save it as UTF-8 or plain text (CSV).";
  if (zeros > 0) return ". The file is not text.";
  return {};
}

}  // namespace varnoth
