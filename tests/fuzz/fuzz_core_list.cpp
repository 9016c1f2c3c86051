// The list of cores: every entry is one trimmed, non-empty line that is no
// comment, a list that reads names at least one file, and the folder names
// of the cores are as many as the entries, all different and plain names.
#include <set>
#include <string_view>

#include "FuzzSupport.h"
#include "state/CoreList.h"

using namespace varnoth;
using namespace varnoth::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::vector<std::string> entries = ParseCoreList(text);
  for (const std::string& e : entries) {
    FUZZ_REQUIRE(!e.empty() && e.front() != '#');
    FUZZ_REQUIRE(e.find('\n') == std::string::npos);
    FUZZ_REQUIRE(e.front() != ' ' && e.back() != ' ' && e.back() != '\r');
  }
  const std::string path = WriteInput("cores", data, size);
  const CoreListResult r = ReadCoreList(path);
  FUZZ_REQUIRE(r.Ok == !r.Paths.empty());
  FUZZ_REQUIRE(r.Ok == r.Problem.empty());
  FUZZ_REQUIRE(r.Paths.size() == entries.size());
  const std::vector<std::string> names = CoreFolderNames(r.Paths);
  FUZZ_REQUIRE(names.size() == r.Paths.size());
  const std::set<std::string> distinct(names.begin(), names.end());
  FUZZ_REQUIRE(distinct.size() == names.size());
  for (const std::string& n : names) {
    FUZZ_REQUIRE(!n.empty() && n != "." && n != "..");
    FUZZ_REQUIRE(n.find('/') == std::string::npos);
  }
  return 0;
}
