// The reconstruction window's save menus: each asks for a file name and
// writes with the same writers as the batch runner, on the main window's
// progress bar.
#include <QComboBox>

#include "reconstruction/ReconstructionFiles.h"
#include "ui/frmMAT.h"

namespace varnoth {

std::string frmMAT::ShownParameter() const { return Combo1->currentText().toStdString(); }

template <typename Writer>
void frmMAT::SaveWith(Writer writer, const std::string& title) {
  boundary_.Run([this, writer, title] {
    // The dialog asks before an existing file is replaced; a cancel writes
    // nothing and says nothing, like a file that cannot be created.
    const std::optional<std::string> path = dialogs_.SaveFileName(kDataFileFilter, title);
    writer(s_, path, mainProgress_);
  });
}

void frmMAT::SaveCurve() { SaveWith(&varnoth::SaveCurve, "Save the curve of " + ShownParameter()); }
void frmMAT::SaveCurveWithE() {
  SaveWith(&varnoth::SaveCurveWithE,
           "Save the curve of " + ShownParameter() + " with its conventional error");
}
void frmMAT::SaveCurveAll() {
  SaveWith(&varnoth::SaveCurveAll, "Save the curves of all parameters");
}
void frmMAT::SaveCurveAllwithE() {
  SaveWith(&varnoth::SaveCurveAllwithE,
           "Save the curves of all parameters with their conventional errors");
}
void frmMAT::SaveScatter() {
  SaveWith(&varnoth::SaveScatter,
           "Save the scatter of estimated against observed " + ShownParameter());
}
void frmMAT::SaveDistAna() {
  // Climate interpolated by the tool brings the sites' names and positions:
  // five records per sample then, else two.
  SaveWith(
      [](const Session& s, const std::optional<std::string>& path, Progress& progress) {
        const SiteInfo sites{s.Interp.SiteMapNames, s.Interp.SiteLongitude,
                             s.Interp.SiteLatitude, s.Interp.SiteAltitude};
        return varnoth::SaveDistAna(s, path, progress, s.SiteInfoLoaded ? &sites : nullptr);
      },
      "Save the analogues of every sample");
}

}  // namespace varnoth
