#ifndef VELTRANO_PDF_VELTRANO_PDF_H
#define VELTRANO_PDF_VELTRANO_PDF_H

// What the two files of the public class share. It checks arguments, raises the event and forwards to the parts:
// veltrano_pdf.cpp has the document, its pages, fonts and state, veltrano_pdf_drawing.cpp what is drawn.

#include <string_view>

#include "base/trace.h"
#include "pdf/document_parts.h"
#include "veltrano/pdf.h"

namespace veltrano {

struct VeltranoPDF::Impl : DocumentParts {};

/// Names the member in the trace.
struct PdfMember : TracedMember {
  explicit PdfMember(const char* name) : TracedMember("VeltranoPDF", name) {}
};

/// Reports a rejected argument; the trace gets to know what is done instead. The handler may change the whole
/// object: hold nothing across this call.
void raise(const VeltranoPDF& pdf, std::string_view message, std::string_view instead);

}  // namespace veltrano

#endif
