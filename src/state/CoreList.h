#pragma once
// The fossil tables of a run over many cores: a list file with one table a
// line, or a folder whose .csv files are taken in name order; and the
// folder each core's results go to.
#include <string>
#include <string_view>
#include <vector>

namespace varnoth {

// The entries of a list's text: one path a line; blanks around a path, a
// pair of double quotes around it, a byte-order mark at the start and a CR
// before the line end are dropped; blank lines and lines that begin with #
// are skipped.
std::vector<std::string> ParseCoreList(std::string_view text);

struct CoreListResult {
  bool Ok = false;
  std::vector<std::string> Paths;  // relative entries joined to the list's folder
  std::string Problem;             // a missing list, an empty list or folder
};
// A folder: its *.csv files (any case of the extension) in byte order of
// their names; else a list file.
CoreListResult ReadCoreList(const std::string& path);

// One folder name per core: the file name without its .csv, and for a name
// already taken the first free of name-2, name-3, ...
std::vector<std::string> CoreFolderNames(const std::vector<std::string>& paths);

}  // namespace varnoth
