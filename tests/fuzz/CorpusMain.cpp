// Runs a fuzz target once over every file of the folders (or files) it is
// given, without libFuzzer: the seed corpora become a regression test of
// the ordinary and the sanitizer builds.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "FuzzSupport.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path p = argv[i];
    if (std::filesystem::is_directory(p)) {
      for (auto& e : std::filesystem::directory_iterator(p))
        if (e.is_regular_file()) files.push_back(e.path());
    } else {
      files.push_back(p);
    }
  }
  std::sort(files.begin(), files.end());
  for (const auto& f : files) {
    std::ifstream in(f, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::printf("%zu inputs, no invariant broken\n", files.size());
  // A road target counts its stages: show how far the inputs got, and fail
  // when none of them went the whole way.
  const auto& stages = varnoth::fuzz::StagesReached();
  bool end = false;
  for (const auto& [stage, count] : stages) {
    std::printf("  %5ld  %s\n", count, stage.c_str());
    end = end || stage == varnoth::fuzz::kRoadEnd;
  }
  if (!stages.empty() && !end) {
    std::printf("no input reached the end of the road\n");
    return 1;
  }
  return files.empty() ? 1 : 0;
}
