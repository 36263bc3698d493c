#ifndef VELTRANO_INSTALLED_H
#define VELTRANO_INSTALLED_H

// Tells the library where the font metrics are that belong to these headers, since it is linked into programs
// and can be in any folder. veltrano/pdf.h includes this header if VELTRANO_INSTALLED is defined, which the
// build files of the package do.

#include "veltrano/export.h"

namespace veltrano {

/// A folder in which metrics are looked for after the places beside the program. True.
VELTRANO_API bool setMetricsFolder(const char* folder);

#ifdef VELTRANO_METRICS_FOLDER
inline const bool metricsFolderIsKnown = setMetricsFolder(VELTRANO_METRICS_FOLDER);
#else
// This header is <installation>/include/veltrano/installed.h.
inline const bool metricsFolderIsKnown =
    setMetricsFolder(__FILE__ "/../../../share/veltranoframework/metrics");
#endif

}  // namespace veltrano

#endif
