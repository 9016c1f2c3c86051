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
  // Climate interpolated by the tool brings the sites' names and positions:
  // five records per sample then, else two.
  SaveWith([](const Session& s, const std::optional<std::string>& path, Progress& progress) {
    const SiteInfo sites{s.Interp.SiteMapNames, s.Interp.SiteLongitude, s.Interp.SiteLatitude,
                         s.Interp.SiteAltitude};
    return varnoth::SaveDistAna(s, path, progress, s.SiteInfoLoaded ? &sites : nullptr);
  });
}

}  // namespace varnoth
