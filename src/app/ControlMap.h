#pragma once
// Where the controls of the windows in view stand on the screen, written to
// a file for a script that drives the program on a real display by clicks
// on named controls (scripts/shots-x11.sh). Only with VARNOTH_CONTROL_MAP
// set to the file's path.
class QObject;

namespace varnoth {

void StartControlMap(QObject* parent);

}  // namespace varnoth
