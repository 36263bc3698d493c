#include "pdf/images/images.h"

#include <limits>
#include <utility>

#include "base/numbers/numbers.h"
#include "base/os/files.h"
#include "base/os/host.h"
#include "pdf/assembly/object_writer.h"
#include "pdf/graphics/content_line.h"
#include "pdf/images/jpeg_scan.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

void writeImageObject(ObjectWriter& writer, const ImageRecord& image, std::size_t number) {
  const auto length = static_cast<std::int64_t>(image.data ? image.data->size() : 0);
  writer.begin();
  writer.line("<</Type /XObject");
  writer.line("/Subtype /Image");
  writer.line("/Filter [/DCTDecode ]");
  writer.line({"/Width ", decimal(image.width)});
  writer.line({"/Height ", decimal(image.height)});
  writer.line({"/ColorSpace /", image.colourSpace});
  writer.line({"/BitsPerComponent ", decimal(image.bitsPerComponent)});
  writer.line({"/Length ", decimal(length)});
  writer.line({"/Name /ImgJPEG", decimal(static_cast<std::int64_t>(number)), ">>"});
  writer.line("stream");
  writer.sharedLine(image.data);
  writer.line("endstream");
  writer.end();
}

namespace {

/// "jpg" and "jpeg" only, in lower case, at the very end of the name as the host wrote it: upper case is
/// refused.
bool isAcceptedName(std::string_view name) {
  return name.ends_with("jpg") || name.ends_with("jpeg");
}

bool hasDot(std::string_view name) {
  return name.find('.') != std::string_view::npos;
}

/// A quotient for a missing length; nothing where the division fails and the step is skipped.
double proportional(double other, double pixels, double otherPixels, double fallback) {
  return otherPixels == 0 ? fallback : other * pixels / otherPixels;
}

}  // namespace

std::optional<ImageRecord> VeltranoPDF::parseJpegFile(const std::filesystem::path& file) {
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
    raise(scan.message);
    return std::nullopt;
  }
  ImageRecord image;
  image.width = scan.header->width;
  image.height = scan.header->height;
  image.colourSpace = std::move(scan.header->colourSpace);
  image.bitsPerComponent = scan.header->bitsPerComponent;
  image.densityUnit = std::move(scan.header->densityUnit);
  image.data = std::make_shared<const std::string>(*std::move(bytes));
  return image;
}

/// `refusal` is what a host is told about a name that is not accepted; the two size queries differ in it.
std::optional<ImageRecord> VeltranoPDF::scanForSize(const std::filesystem::path& file,
                                                    std::string_view refusal) {
  const std::string name = pathToAnsi(file);
  if (!hasDot(name)) {
    raise("Unable to include this image");
    return std::nullopt;
  }
  if (!isAcceptedName(name)) {
    raise(refusal);
    return std::nullopt;
  }
  return parseJpegFile(file);
}

double VeltranoPDF::PDFImageWidth(const std::filesystem::path& file) {
  const auto image = scanForSize(file, "Error format not supported");
  return image ? image->width : 0;
}

double VeltranoPDF::PDFImageHeight(const std::filesystem::path& file) {
  const auto image = scanForSize(file, "Image format not supported.");
  return image ? image->height : 0;
}

void VeltranoPDF::PDFImage(const std::filesystem::path& file, double x, double y, double& width,
                           double& height, const Value& link) {
  const std::string name = pathToAnsi(file);
  if (!hasDot(name) || !isAcceptedName(name)) {
    raise("Format not supported");
    return;
  }
  auto image = parseJpegFile(file);
  if (!image) {
    return;
  }
  const double k = geometry_.scaleFactor;
  if (width == 0 && height == 0) {
    width = image->width / k;
    height = image->height / k;
  }
  if (width == 0) {
    width = proportional(height, image->width, image->height, width);
  }
  if (height == 0) {
    height = proportional(width, image->height, image->width, height);
  }

  images_.images.resize(images_.imageCount);
  images_.images.push_back(*std::move(image));
  ++images_.imageCount;

  // One piece less would leave the graphics state saved for the rest of the page: both lines or none.
  ContentText& content = assembly_.pageContent;
  ContentLine(content)
      .text("q\r\n")
      .number(width * k)
      .text(" 0 0 ")
      .number(height * k)
      .text(" ")
      .point(geometry_.xPoints(x), geometry_.yPoints(y + height))
      .text(" cm /ImgJPEG")
      .text(integerText(static_cast<std::int64_t>(images_.imageCount)))
      .text(" Do Q")
      .end();
  placeLink(link, {LinkKind::image, x, y, width, height}, x, y);
  // Products with the points of a unit, unlike everywhere else: hosts rely on it.
  moveTo((x + width) * k, (y + height) * k);
}

}  // namespace veltrano
