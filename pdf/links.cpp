#include "pdf/veltrano_pdf.h"

namespace veltrano {

std::string escapeLinkTarget(std::string_view target) {
  return std::string(target);
}

void VeltranoPDF::PDFLink(double, double, std::string_view, std::string_view) {}
void VeltranoPDF::placeLink(const Value&, const LinkShape&, double, double) {}

}  // namespace veltrano
