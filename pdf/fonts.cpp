#include "pdf/veltrano_pdf.h"

namespace veltrano {

void VeltranoPDF::PDFLoadAfm(const std::filesystem::path&) {}
void VeltranoPDF::PDFSetFont(std::int32_t, std::int16_t, std::int32_t) {}
double VeltranoPDF::PDFGetStringWidth(std::string_view, std::string_view, std::int16_t) {
  return 0;
}

}  // namespace veltrano
