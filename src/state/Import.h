#pragma once
// Reading the reference and the fossil tables into the session.
#include <optional>
#include <string>

#include "state/Dialogs.h"
#include "state/Session.h"

namespace varnoth {

struct ImportResult {
  bool Ok = false;
  bool IsBase = false;     // this table was the first one: the pre-treatment dialog comes next
  bool Projected = false;  // the second table was treated and projected
  // After a failure: what failed and where, for a user without the window
  // (the window path shows only the program's own messages).
  std::string Problem;
};

inline constexpr const char* kFormatErrorMessage =
    "Format error. (Does the table contain site labels?  Isn't there any empty cell in the "
    "data field?  Doesn't any cell contain comma?  Doesn't any cell out of the data field "
    "contain space?)";

// `path` is the file the user chose, or nothing for a cancelled dialog (which
// takes the failure path). Messages and the name question go through
// `dialogs`. A failure leaves what was read in place and zeroes only the
// taxa count of that data set.
ImportResult ImportReference(Session& s, const std::optional<std::string>& path,
                             Dialogs& dialogs, Progress& progress);
ImportResult ImportFossil(Session& s, const std::optional<std::string>& path, Dialogs& dialogs,
                          Progress& progress);

}  // namespace varnoth
