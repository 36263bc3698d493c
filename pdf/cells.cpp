#include "pdf/veltrano_pdf.h"

namespace veltrano {

void VeltranoPDF::PDFCell(std::string_view, double, double, double, double, const Value&) {}

}  // namespace veltrano
