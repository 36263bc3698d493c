#ifndef VELTRANO_BASE_OS_INSTALLED_H
#define VELTRANO_BASE_OS_INSTALLED_H

// For programs that use the installed library, which may lie in any folder and is linked into them: the path
// that this header was found by says where, and so where the metrics are. The build files of the package have
// it included, by defining VELTRANO_INSTALLED.

#include "base/os/host.h"

namespace veltrano {

inline const bool installationIsKnown = setInstallation(__FILE__);

}  // namespace veltrano

#endif
