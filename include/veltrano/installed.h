#ifndef VELTRANO_INSTALLED_H
#define VELTRANO_INSTALLED_H

// Says where the installed library lies, which may be any folder since it is linked into the program: at the
// path that this header was found by, and there are the font metrics. For veltrano/pdf.h, where the build files
// of the package define VELTRANO_INSTALLED; programs need not include it.

namespace veltrano {

/// Takes the path of this header. True.
bool setInstallation(const char* header);

inline const bool installationIsKnown = setInstallation(__FILE__);

}  // namespace veltrano

#endif
