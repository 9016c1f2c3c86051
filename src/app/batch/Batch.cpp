#include "Batch.h"

#include <cctype>
#include <iostream>

#include "state/RecordFile.h"

namespace varnoth::batch {

void BatchDialogs::Message(const std::string& text, const std::string&) {
  ++messages_;
  std::cerr << "Error: " << text << "\n";
}

bool BatchDialogs::Question(const std::string& text, const std::string&) {
  if (!acceptNames_) std::cerr << "Error: " << text << " (answered No; see --accept-names)\n";
  return acceptNames_;
}

void Stop(const std::string& message) {
  std::cerr << "Error: " << message << "\n";
  throw RunStopped{};
}

void Written(bool written, const std::string& path) {
  if (written) return;
  // The cause as the system words it, with the file or folder it concerns.
  if (lastSaveFailure.empty()) Stop("Cannot write " + path + ".");
  Stop("Cannot write " + path + ": " + lastSaveFailure + ".");
}

std::string FilePart(const std::string& name) {
  std::string out = name;
  for (char& c : out)
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '-' && c != '_' && c != '.') c = '_';
  return out;
}

std::vector<Step>& Steps() {
  static std::vector<Step> steps;
  return steps;
}

bool RegisterStep(Step step) {
  Steps().push_back(std::move(step));
  return true;
}

}  // namespace varnoth::batch
