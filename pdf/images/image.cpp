#include "pdf/images/image.h"

#include <cstdint>
#include <limits>
#include <utility>

#include "base/files/whole.h"
#include "base/os/host.h"

namespace veltrano {

ImageFile readImage(const std::filesystem::path& file) {
  // Regular files only: a pipe of this name would be waited for. The size has to fit 32 bits.
  const auto identity = fileIdentity(file);
  std::optional<std::string> bytes;
  if (identity && identity->size <= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max())) {
    bytes = readWholeFile(file);
  }
  // The bytes are read once and used for both, the scan and the stream: should the file be replaced
  // meanwhile, they still belong together.
  JpegScan scan = scanJpeg(bytes ? std::string_view(*bytes) : std::string_view(), yieldToHost);
  if (!scan.header) {
    return {std::nullopt, scan.message};
  }
  return {Image{*std::move(scan.header), std::make_shared<const std::string>(*std::move(bytes))}, {}};
}

ImageName checkImageName(const std::filesystem::path& file) {
  const std::string name = pathToAnsi(file);
  if (name.find('.') == std::string::npos) {
    return ImageName::withoutDot;
  }
  return name.ends_with("jpg") || name.ends_with("jpeg") ? ImageName::accepted : ImageName::refused;
}

void completeSize(const Image& image, double scaleFactor, double& width, double& height) {
  if (width == 0 && height == 0) {
    width = image.width / scaleFactor;
    height = image.height / scaleFactor;
  }
  // A division by zero fails its statement: the length stays 0.
  if (width == 0 && image.height != 0) {
    width = height * image.width / image.height;
  }
  if (height == 0 && image.width != 0) {
    height = width * image.height / image.width;
  }
}

void drawImage(ContentStream& content, const PageGeometry& page, std::size_t number, const Box& box) {
  // One line in one piece: half of it would leave the graphics state saved for the rest of the page.
  ContentWriter out(content);
  out.text("q\r\n").number(box.width * page.scaleFactor).text(" 0 0 ").number(box.height * page.scaleFactor);
  out.text(" ").point(page.xPoints(box.x), page.yPoints(box.y + box.height));
  out.text(" cm /ImgJPEG").integer(static_cast<std::int64_t>(number)).text(" Do Q").end();
}

}  // namespace veltrano
