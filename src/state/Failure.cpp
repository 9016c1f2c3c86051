#include "state/Failure.h"

namespace varnoth {

const char* FailureName(FailureKind kind) {
  switch (kind) {
    case FailureKind::SubscriptOutOfRange:
      return "Subscript out of range";
    case FailureKind::Overflow:
      return "Overflow";
    case FailureKind::DivisionByZero:
      return "Division by zero";
    case FailureKind::TypeMismatch:
      return "Type mismatch";
    case FailureKind::FileNotFound:
      return "File not found";
    case FailureKind::InputPastEnd:
      return "Input past end of file";
    case FailureKind::Cancelled:
      return "Cancel was selected";
    case FailureKind::InvalidCall:
      return "Invalid procedure call or argument";
  }
  return "Run-time failure";
}

static std::string Compose(FailureKind kind, const std::string& detail) {
  std::string text = FailureName(kind);
  if (!detail.empty()) text += " (" + detail + ")";
  return text;
}

RuntimeFailure::RuntimeFailure(FailureKind kind, const std::string& detail)
    : std::runtime_error(Compose(kind, detail)), kind_(kind) {}

void ThrowSubscript() { throw RuntimeFailure(FailureKind::SubscriptOutOfRange); }
void ThrowOverflow() { throw RuntimeFailure(FailureKind::Overflow); }

}  // namespace varnoth
