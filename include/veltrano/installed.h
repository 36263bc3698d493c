#ifndef VELTRANO_INSTALLED_H
#define VELTRANO_INSTALLED_H

// Tells the library where it is installed, and so where its font metrics are, by the path of this header: it
// is linked into programs and can be in any folder. veltrano/pdf.h includes this header if VELTRANO_INSTALLED
// is defined, which the build files of the package do.

namespace veltrano {

/// Takes the path of this header. True.
bool setInstallation(const char* header);

inline const bool installationIsKnown = setInstallation(__FILE__);

}  // namespace veltrano

#endif
