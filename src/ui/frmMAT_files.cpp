// The reconstruction window's save menus: each asks for a file name and
// writes with the same writers as the batch runner, on the main window's
// progress bar.
#include "reconstruction/ReconstructionFiles.h"
#include "ui/frmMAT.h"

namespace varnoth {

template <typename Writer>
void frmMAT::SaveWith(Writer writer) {
  boundary_.Run([this, writer] {
    // The dialog asks before an existing file is replaced; a cancel writes
    // nothing and says nothing, like a file that cannot be created.
    const std::optional<std::string> path = dialogs_.SaveFileName(kDataFileFilter);
    writer(s_, path, mainProgress_);
  });
}

void frmMAT::SaveCurve() { SaveWith(&varnoth::SaveCurve); }
void frmMAT::SaveCurveWithE() { SaveWith(&varnoth::SaveCurveWithE); }
void frmMAT::SaveCurveAll() { SaveWith(&varnoth::SaveCurveAll); }
void frmMAT::SaveCurveAllwithE() { SaveWith(&varnoth::SaveCurveAllwithE); }
void frmMAT::SaveScatter() { SaveWith(&varnoth::SaveScatter); }
void frmMAT::SaveDistAna() {
  // Site names and positions come with the interpolation tool's climate.
  SaveWith([](const Session& s, const std::optional<std::string>& path, Progress& progress) {
    return varnoth::SaveDistAna(s, path, progress);
  });
}

}  // namespace varnoth
