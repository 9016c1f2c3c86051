#pragma once
// The one run-time failure of the engine. Every event handler ends at a
// boundary that catches it; numeric routines have no failure path of their
// own, so a bad index or an overflow surfaces here instead of crashing.
#include <stdexcept>
#include <string>

namespace varnoth {

enum class FailureKind {
  SubscriptOutOfRange,  // an index outside an array's bounds
  Overflow,             // a 16-bit count or an integer conversion overflowed
  DivisionByZero,
  TypeMismatch,      // a strict number parse failed
  FileNotFound,      // a file could not be opened
  InputPastEnd,      // the end of a file met inside a row
  Cancelled,         // a file dialog was cancelled
  InvalidCall,       // an argument outside what a routine accepts
  OutOfMemory,       // an allocation failed
  PermissionDenied,  // a file or its folder may not be read or written
  DiskFull,          // a write found no room
  PathNotFound,      // a folder on the way to a file is not there
  PathFileAccess,    // a file that cannot be used as one (a folder, a pipe)
};

class RuntimeFailure : public std::runtime_error {
 public:
  explicit RuntimeFailure(FailureKind kind, const std::string& detail = {});
  FailureKind kind() const { return kind_; }

 private:
  FailureKind kind_;
};

// The message a user sees for a failure kind ("Subscript out of range", ...).
const char* FailureName(FailureKind kind);

// The failure kind of a file operation's system error (errno): "File not
// found", "Permission denied", "Disk full", ...
FailureKind FileFailureKind(int error);
// True for the kinds a file that cannot be opened, read or written ends in,
// which the windows treat alike.
bool IsFileFailure(FailureKind kind);

[[noreturn]] void ThrowSubscript();
[[noreturn]] void ThrowOverflow();

}  // namespace varnoth
