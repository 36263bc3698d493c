// Writes a page with a greeting, bound early through the header that is made from the type library.
//   hello.exe C:\Temp\hello.pdf
// Build it with veltrano.h and veltrano_i.c from the include folder of the package:
//   i686-w64-mingw32-g++ -municode hello.cpp veltrano_i.c -o hello.exe -lole32 -loleaut32 -luuid
#include <windows.h>

#include <oleauto.h>

#include <cstdio>

#include "veltrano.h"

namespace {

/// A BSTR for the duration of a call.
class Text {
 public:
  explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  ~Text() { SysFreeString(text_); }
  BSTR* address() { return &text_; }

 private:
  BSTR text_;
};

void draw(_VeltranoPDF& pdf, const wchar_t* file) {
  pdf.put_PDFTitle(Text(L"Hello").address());
  pdf.put_PDFFileName(Text(file).address());
  PDFUnitStr unit = UNIT_MM;
  pdf.put_PDFSetUnit(&unit);
  pdf.PDFBeginDoc();

  PDFFontNme font = FONT_ARIAL;
  PDFFontStl style = FONT_BOLD;
  short size = 24;
  pdf.PDFSetFont(&font, &size, &style);
  Text greeting(L"Hello from C++");
  double x = 20;
  double y = 30;
  pdf.PDFTextOut(greeting.address(), &x, &y);

  double points = 0;
  Text currentFont(L"");
  pdf.PDFGetStringWidth(greeting.address(), currentFont.address(), &size, &points);
  double lineWidth = 0.5;
  pdf.put_PDFSetLineWidth(&lineWidth);
  double lineY = 33;
  double length = points * 25.4 / 72;
  pdf.PDFDrawLineHor(&x, &lineY, &length);
  pdf.PDFEndDoc();
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 2) {
    std::fputs("usage: hello OUTPUT.pdf\n", stderr);
    return 2;
  }
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  _VeltranoPDF* pdf = nullptr;
  const HRESULT made = CoCreateInstance(CLSID_VeltranoPDF, nullptr, CLSCTX_INPROC_SERVER, IID__VeltranoPDF,
                                        reinterpret_cast<void**>(&pdf));
  if (SUCCEEDED(made)) {
    draw(*pdf, arguments[1]);
    pdf->Release();
  }
  CoUninitialize();
  if (FAILED(made)) {
    std::fprintf(stderr, "the class cannot be created: %08lx\n", static_cast<unsigned long>(made));
    return 1;
  }
  std::puts("done");
  return 0;
}
