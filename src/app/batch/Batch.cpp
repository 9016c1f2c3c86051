#include "Batch.h"

#include <iostream>

namespace varnoth::batch {

void BatchDialogs::Message(const std::string& text, const std::string&) {
  ++messages_;
  std::cerr << "Error: " << text << "\n";
}

bool BatchDialogs::Question(const std::string& text, const std::string&) {
  if (!acceptNames_) std::cerr << "Error: " << text << " (answered No; see --accept-names)\n";
  return acceptNames_;
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
