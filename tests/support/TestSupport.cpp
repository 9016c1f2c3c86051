#include "support/TestSupport.h"

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <sstream>

namespace varnoth::test {

TempDir::TempDir() {
  static std::atomic<int> counter{0};
  dir_ = std::filesystem::temp_directory_path() /
         ("varnoth-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
  std::filesystem::remove_all(dir_);
  std::filesystem::create_directories(dir_);
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(dir_, ignored);
}

std::string TempDir::Write(const std::string& name, const std::string& content) const {
  std::string p = Path(name);
  std::ofstream f(p, std::ios::binary);
  f << content;
  return p;
}

std::string ReadFile(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  std::ostringstream s;
  s << f.rdbuf();
  return s.str();
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

std::string TestData(const std::string& relative) {
  return std::string(VARNOTH_TEST_DATA) + "/" + relative;
}
std::string Example(const std::string& name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }

}  // namespace varnoth::test
