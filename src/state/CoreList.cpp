#include "state/CoreList.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace varnoth {

namespace fs = std::filesystem;

namespace {

bool EndsWithCsv(const std::string& name) {
  if (name.size() < 4) return false;
  std::string tail = name.substr(name.size() - 4);
  std::transform(tail.begin(), tail.end(), tail.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return tail == ".csv";
}

std::string_view Trim(std::string_view s) {
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  while (!s.empty() && blank(s.front())) s.remove_prefix(1);
  while (!s.empty() && blank(s.back())) s.remove_suffix(1);
  return s;
}

}  // namespace

std::vector<std::string> ParseCoreList(std::string_view text) {
  if (text.substr(0, 3) == "\xEF\xBB\xBF") text.remove_prefix(3);
  std::vector<std::string> entries;
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = Trim(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.size() >= 2 && line.front() == '"' && line.back() == '"')
      line = Trim(line.substr(1, line.size() - 2));
    if (line.empty() || line.front() == '#') continue;
    entries.emplace_back(line);
  }
  return entries;
}

CoreListResult ReadCoreList(const std::string& path) {
  CoreListResult r;
  std::error_code error;
  if (fs::is_directory(path, error)) {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(path, error)) {
      const std::string name = e.path().filename().string();
      if (EndsWithCsv(name) && !e.is_directory()) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    for (const auto& name : names) r.Paths.push_back((fs::path(path) / name).string());
    if (r.Paths.empty()) {
      r.Problem = "The folder " + path + " holds no .csv files";
      return r;
    }
    r.Ok = true;
    return r;
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    r.Problem = "Cannot read the list of cores " + path;
    return r;
  }
  std::ostringstream text;
  text << in.rdbuf();
  const fs::path folder = fs::path(path).parent_path();
  for (const auto& entry : ParseCoreList(text.str()))
    r.Paths.push_back(fs::path(entry).is_absolute() ? entry : (folder / entry).string());
  if (r.Paths.empty()) {
    r.Problem = "The list of cores " + path + " names no file";
    return r;
  }
  r.Ok = true;
  return r;
}

std::vector<std::string> CoreFolderNames(const std::vector<std::string>& paths) {
  std::vector<std::string> names;
  std::set<std::string> taken;
  for (const auto& path : paths) {
    std::string name = fs::path(path).filename().string();
    if (EndsWithCsv(name)) name.resize(name.size() - 4);
    if (name.empty() || name == "." || name == "..") name = "core";
    std::string chosen = name;
    for (int k = 2; taken.count(chosen); ++k) chosen = name + "-" + std::to_string(k);
    taken.insert(chosen);
    names.push_back(chosen);
  }
  return names;
}

}  // namespace varnoth
