#ifndef VELTRANO_PDF_ASSEMBLY_RESOURCES_H
#define VELTRANO_PDF_ASSEMBLY_RESOURCES_H

// Fonts, images and the dictionary that names them for all pages.

#include <cstddef>
#include <string>
#include <vector>

#include "pdf/assembly/object_writer.h"
#include "pdf/images/image.h"

namespace veltrano {

/// One object a font; returns their numbers.
std::vector<int> writeFonts(ObjectWriter& writer, const std::vector<std::string>& names);
/// The resource dictionary, whose number it returns. The image objects must follow at once.
int writeResources(ObjectWriter& writer, const std::vector<int>& fontObjects, std::size_t imageCount);
void writeImages(ObjectWriter& writer, const std::vector<Image>& images);

}  // namespace veltrano

#endif
