#ifndef VELTRANO_PDF_ASSEMBLY_CATALOG_H
#define VELTRANO_PDF_ASSEMBLY_CATALOG_H

#include "pdf/assembly/object_writer.h"
#include "pdf/document/settings.h"

namespace veltrano {

/// Writes the catalog, which says how a viewer opens the document; returns its object number.
int writeCatalog(ObjectWriter& writer, const ViewerSettings& viewer, int pageTreeObject, int outlineObject);

}  // namespace veltrano

#endif
