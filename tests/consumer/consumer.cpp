// A program of somebody else: one page, and a width that only the font metrics tell.
#include <veltrano/pdf.h>
#include <veltrano/text.h>
#include <veltrano/version.h>

#include <cstdio>

int main() {
  veltrano::VeltranoPDF pdf;
  pdf.PDFFileName("consumer.pdf");
  pdf.PDFBeginDoc();
  pdf.PDFSetFont(veltrano::FONT_ARIAL, 24);
  pdf.PDFTextOut(veltrano::utf8ToAnsi("Caf\xC3\xA9 " VELTRANO_TEST_NAME), 2, 3);
  pdf.PDFEndDoc();
  std::printf("%s %.2f\n", veltrano::versionText, pdf.PDFGetStringWidth("Hello", "Helvetica", 10));
}
