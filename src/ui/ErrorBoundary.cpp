#include "ui/ErrorBoundary.h"

namespace varnoth {

void ErrorBoundary::Fail(const char* what, const std::function<void()>& restore) noexcept {
  try {
    progress_.Finish();
    BusyPointer::Restore();
    if (restore) restore();
    dialogs_.Message(what, "Error");
  } catch (...) {
    // A failure while reporting a failure has nowhere left to go.
  }
}

}  // namespace varnoth
