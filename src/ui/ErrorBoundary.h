#pragma once
// Where every event handler ends: a run-time failure becomes a message box
// titled "Error" that names it, the pointer and the progress bar are put
// back, and the program goes on.
#include <exception>
#include <functional>

#include "state/Dialogs.h"
#include "state/Failure.h"
#include "ui/QtDialogs.h"

namespace varnoth {

class ErrorBoundary {
 public:
  ErrorBoundary(Dialogs& dialogs, Progress& progress) : dialogs_(dialogs), progress_(progress) {}

  // Runs the handler; on a failure runs `restore` (the handler's own
  // clean-up, such as enabling its button again) and reports. True when
  // the handler ran to its end.
  template <typename Handler>
  bool Run(Handler&& handler, const std::function<void()>& restore = {}) noexcept {
    try {
      handler();
      return true;
    } catch (const RuntimeFailure& failure) {
      Fail(failure.what(), restore);
    } catch (const std::exception& failure) {
      Fail(failure.what(), restore);
    }
    return false;
  }

 private:
  void Fail(const char* what, const std::function<void()>& restore) noexcept;

  Dialogs& dialogs_;
  Progress& progress_;
};

}  // namespace varnoth
