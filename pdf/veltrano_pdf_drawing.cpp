#include <cmath>
#include <optional>
#include <string>

#include "base/files/file.h"
#include "pdf/graphics/color.h"
#include "pdf/graphics/shapes.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

namespace {

/// The target of a link, empty for none. One that is not text is reported.
std::string_view linkTarget(const VeltranoPDF& pdf, const Value& link) {
  if (const auto* target = link.as<std::string>()) {
    return *target;
  }
  if (!link.isEmpty()) {
    raise(pdf, "Unable to include this link", "the link is not text and is left out");
  }
  return {};
}

}  // namespace

// Lines and shapes
void VeltranoPDF::PDFDrawLineHor(double x, double y, double width) {
  const PdfMember member("PDFDrawLineHor");
  impl_->graphics.fillColorOp = fillOperatorOf(impl_->graphics.lineColorOp);
  drawLine(impl_->content, impl_->geometry, impl_->graphics, "LNH", true, {x, y}, {x + width, y});
  impl_->geometry.moveTo(x + width, y);
}
void VeltranoPDF::PDFDrawLineVer(double x, double y, double height) {
  const PdfMember member("PDFDrawLineVer");
  impl_->graphics.fillColorOp = fillOperatorOf(impl_->graphics.lineColorOp);
  drawLine(impl_->content, impl_->geometry, impl_->graphics, "LNV", true, {x, y}, {x, y + height});
  impl_->geometry.moveTo(x, y + height);
}
// Unlike the two above, a free line has no dash and leaves the fill colour alone; hosts rely on the
// difference.
void VeltranoPDF::PDFDrawLine(double x1, double y1, double x2, double y2) {
  const PdfMember member("PDFDrawLine");
  drawLine(impl_->content, impl_->geometry, impl_->graphics, "LN", false, {x1, y1}, {x2, y2});
  impl_->geometry.moveTo(std::fmax(x1, x2), std::fmax(y1, y2));
}
void VeltranoPDF::PDFDrawRectangle(double x, double y, double width, double height, const Value& link) {
  const PdfMember member("PDFDrawRectangle");
  const Box box{x, y, width, height};
  drawRectangle(impl_->content, impl_->geometry, impl_->graphics, box);
  PDFSetTextColor(COLOR_BLANC);
  impl_->linkShape(box, linkTarget(*this, link), std::floor(x + 5), std::floor(y + height / 2));
  ContentWriter(impl_->content).line("%FIN_RECT/%");
  impl_->geometry.moveTo(x, y + height);
}
void VeltranoPDF::PDFDrawEllipse(double x, double y, double width, double height, const Value& link) {
  const PdfMember member("PDFDrawEllipse");
  const Box box{x, y, width, height == 0 ? width : height};
  drawEllipse(impl_->content, impl_->geometry, impl_->graphics, box);
  if (!link.isEmpty() && link != Value(std::string())) {
    PDFSetTextColor(COLOR_BLANC);
    impl_->linkShape(box, linkTarget(*this, link), std::floor(x + 5), std::floor(y + box.height / 2));
  }
}
void VeltranoPDF::PDFDrawPolygon(const Value::List& points) {
  const PdfMember member("PDFDrawPolygon");
  drawPolygon(impl_->content, impl_->geometry, impl_->graphics, readPoints(points));
}

// Text, cells, links
void VeltranoPDF::PDFTextOut(std::string_view text, double x, double y) {
  const PdfMember member("PDFTextOut");
  impl_->drawText(text, x, y);
}
void VeltranoPDF::PDFCell(std::string_view text, double x, double y, double width, double height,
                          const Value& link) {
  const PdfMember member("PDFCell");
  const Box box{x, y, width, height};
  const auto* target = link.as<std::string>();
  impl_->drawCell(text, box, target != nullptr && !target->empty());
  impl_->linkShape(box, linkTarget(*this, link), x, y);
  // As after a rectangle: at the lower left corner.
  impl_->geometry.moveTo(x, y + height);
}
void VeltranoPDF::PDFLink(double x, double y, std::string_view text, std::string_view link) {
  const PdfMember member("PDFLink");
  impl_->linkText(x, y, text, link.empty() ? text : link);
}
double VeltranoPDF::PDFTextHeight() const {
  return impl_->font.size * impl_->geometry.scaleFactor;
}
void VeltranoPDF::PDFSetRotation(double angle) {
  impl_->graphics.textRotation = angle;
}

// Images
namespace {

/// The image of an accepted file; reports why another is refused. The messages for names differ by member.
std::optional<Image> imageOf(const VeltranoPDF& pdf, const std::filesystem::path& file,
                             std::string_view withoutDot, std::string_view refused) {
  const ImageName name = checkImageName(file);
  if (name != ImageName::accepted) {
    raise(pdf, name == ImageName::withoutDot ? withoutDot : refused,
          "the name does not end in \"jpg\" or \"jpeg\" in lower case");
    return std::nullopt;
  }
  ImageFile read = readImage(file);
  if (!read.image) {
    std::string instead =
        kindOf(file) == FileKind::missing ? "there is no file " : "no picture can be read from ";
    appendTraced(instead, file);
    raise(pdf, read.refusal, instead);
  }
  return std::move(read.image);
}

}  // namespace

double VeltranoPDF::PDFImageWidth(const std::filesystem::path& file) {
  const PdfMember member("PDFImageWidth");
  const auto image = imageOf(*this, file, "Unable to include this image", "Error format not supported");
  return image ? image->width : 0;
}
double VeltranoPDF::PDFImageHeight(const std::filesystem::path& file) {
  const PdfMember member("PDFImageHeight");
  const auto image = imageOf(*this, file, "Unable to include this image", "Image format not supported.");
  return image ? image->height : 0;
}
void VeltranoPDF::PDFImage(const std::filesystem::path& file, double x, double y, double& width,
                           double& height, const Value& link) {
  const PdfMember member("PDFImage");
  constexpr std::string_view refused = "Format not supported";
  auto image = imageOf(*this, file, refused, refused);
  if (!image) {
    return;
  }
  const double k = impl_->geometry.scaleFactor;
  completeSize(*image, k, width, height);
  const Box box{x, y, width, height};
  impl_->images.push_back(*std::move(image));
  drawImage(impl_->content, impl_->geometry, impl_->images.size(), box);
  const std::string_view target = linkTarget(*this, link);
  if (!target.empty()) {
    PDFSetTextColor(COLOR_BLEU);
  }
  impl_->linkShape(box, target, x, y);
  // Products with the points of a unit, unlike everywhere else: kept because hosts rely on it.
  impl_->geometry.moveTo((x + width) * k, (y + height) * k);
}

}  // namespace veltrano
