#include "pdf/object_writer.h"
#include "pdf/veltrano_pdf.h"

namespace veltrano {

void writeImageObject(ObjectWriter&, const ImageRecord&, std::size_t) {}

double VeltranoPDF::PDFImageWidth(const std::filesystem::path&) {
  return 0;
}
double VeltranoPDF::PDFImageHeight(const std::filesystem::path&) {
  return 0;
}
void VeltranoPDF::PDFImage(const std::filesystem::path&, double, double, double&, double&, const Value&) {}

}  // namespace veltrano
