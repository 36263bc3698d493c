#ifndef VELTRANO_PDF_IMAGES_IMAGE_H
#define VELTRANO_PDF_IMAGES_IMAGE_H

// JPEG images: reading what embedding needs, and placing them on a page.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "pdf/document/content_stream.h"
#include "pdf/document/page_geometry.h"
#include "pdf/images/jpeg_scan.h"

namespace veltrano {

struct Image : JpegHeader {
  /// The whole file, shared with the output text, which refers to it.
  std::shared_ptr<const std::string> data;
};

struct ImageFile {
  /// Empty if the file was refused.
  std::optional<Image> image;
  /// Why it was refused, as hosts are told.
  std::string_view refusal;
};

/// Reads a JPEG file, giving the host's messages turns meanwhile.
ImageFile readImage(const std::filesystem::path& file);

enum class ImageName { accepted, refused, withoutDot };
/// "jpg" and "jpeg" only, in lower case, at the very end of the name as the host wrote it: upper case is
/// refused.
ImageName checkImageName(const std::filesystem::path& file);

/// Replaces a width or height of 0 (user units of `scaleFactor` points): both by one point per pixel, one of
/// them by the proportions, if the image has any.
void completeSize(const Image& image, double scaleFactor, double& width, double& height);

/// Draws image `number` (counted from 1) into a box.
void drawImage(ContentStream& content, const PageGeometry& page, std::size_t number, const Box& box);

}  // namespace veltrano

#endif
