#pragma once
// Where the example data set that ships with the program lies.
#include <string>

namespace varnoth {

// Beside the program's bin/ as installed (share/varnoth/examples), else in
// the source tree it was built from; empty when neither holds the tables.
std::string ExampleDataDir();

}  // namespace varnoth
