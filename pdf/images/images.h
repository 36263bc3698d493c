#ifndef VELTRANO_PDF_IMAGES_IMAGES_H
#define VELTRANO_PDF_IMAGES_IMAGES_H

// JPEG images: what is known of each and how its object is written.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace veltrano {

class ObjectWriter;

struct ImageRecord {
  int width = 0;   ///< pixels
  int height = 0;  ///< pixels
  std::string colourSpace;
  int bitsPerComponent = 8;
  std::string densityUnit;
  /// The whole file, shared with the output text, which refers to it.
  std::shared_ptr<const std::string> data;
};

struct ImageTable {
  /// Images placed in the current document: the first `imageCount` of `images`. What follows is left over
  /// from size queries.
  std::size_t imageCount = 0;
  std::vector<ImageRecord> images;
};

/// Writes image `number` (counted from 1) as the next object.
void writeImageObject(ObjectWriter& writer, const ImageRecord& image, std::size_t number);

}  // namespace veltrano

#endif
