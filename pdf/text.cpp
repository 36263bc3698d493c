#include "pdf/veltrano_pdf.h"

namespace veltrano {

void VeltranoPDF::PDFTextOut(std::string_view, double, double) {}
double VeltranoPDF::PDFTextHeight() const {
  return 0;
}
void VeltranoPDF::PDFSetRotation(double) {}

}  // namespace veltrano
