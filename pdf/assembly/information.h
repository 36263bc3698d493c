#ifndef VELTRANO_PDF_ASSEMBLY_INFORMATION_H
#define VELTRANO_PDF_ASSEMBLY_INFORMATION_H

#include "pdf/assembly/object_writer.h"
#include "pdf/document/settings.h"

namespace veltrano {

/// Writes the information object, created now.
void writeInformation(ObjectWriter& writer, const DocumentInformation& information);

}  // namespace veltrano

#endif
