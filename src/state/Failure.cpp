#include "state/Failure.h"

#include <cerrno>

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
    case FailureKind::OutOfMemory:
      return "Out of memory";
    case FailureKind::PermissionDenied:
      return "Permission denied";
    case FailureKind::DiskFull:
      return "Disk full";
    case FailureKind::PathNotFound:
      return "Path not found";
    case FailureKind::PathFileAccess:
      return "Path/File access error";
  }
  return "Run-time failure";
}

FailureKind FileFailureKind(int error) {
  switch (error) {
    case ENOENT:
      return FailureKind::FileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
      return FailureKind::PathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
    case ETXTBSY:
      return FailureKind::PermissionDenied;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return FailureKind::DiskFull;
    case ENOMEM:
      return FailureKind::OutOfMemory;
    default:
      return FailureKind::PathFileAccess;
  }
}

bool IsFileFailure(FailureKind kind) {
  return kind == FailureKind::FileNotFound || kind == FailureKind::PermissionDenied ||
         kind == FailureKind::DiskFull || kind == FailureKind::PathNotFound ||
         kind == FailureKind::PathFileAccess;
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
