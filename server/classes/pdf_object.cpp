#include "server/classes/pdf_object.h"

#include "server/com/conversions.h"

namespace veltrano::server {

namespace {

// The texts of this class end in an ANSI file.
void answer(BSTR* result, const std::string& text) {
  server::answer(result, text, TextForm::ansi);
}
void answer(VARIANT* result, const Value& value) {
  server::answer(result, value, TextForm::ansi);
}
Value value(const VARIANT* variant) {
  return server::value(variant, TextForm::ansi);
}
Value keptValue(const VARIANT* variant) {
  return server::valueAsItIs(variant, TextForm::ansi);
}
Value::List list(SAFEARRAY* const* array) {
  return server::list(array, TextForm::ansi);
}

constexpr const wchar_t* link = L"URLLink";
const KeptKind keptParameters[] = {{L"PDFSetZoomMode", L""},
                                   {L"PDFDrawRectangle", link},
                                   {L"PDFDrawEllipse", link},
                                   {L"PDFCell", link},
                                   {L"PDFImage", link}};

}  // namespace

std::span<const KeptKind> PdfObject::keptKinds() {
  return keptParameters;
}

PdfObject::PdfObject(const ClassEntry& entry)
    : AutomationObject(entry), events_(*static_cast<_VeltranoPDF*>(this), *entry.eventInterface) {
  pdf_.onError = [this](std::string_view message) { events_.fireError(message); };
}

void* PdfObject::find(REFIID iid) {
  return iid == IID_IConnectionPointContainer ? events_.container() : AutomationObject::find(iid);
}

Value PdfObject::takeLink(BSTR* text) {
  const VARIANT* kind = takeKeptKind();
  if (kind == nullptr) {
    return ansi(text);
  }
  Value given = keptValue(kind);
  // A variable that was never set stands for the empty text, as for every other text.
  return given.isEmpty() ? Value(std::string()) : given;
}

STDMETHODIMP PdfObject::put_PDFPathConfiguration(BSTR* newValue) {
  return run("PDFPathConfiguration", [&] { pdf_.PDFPathConfiguration(path(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFSetViewerPreferences(::PDFViewerCst* newValue) {
  return run("PDFSetViewerPreferences", [&] { pdf_.PDFSetViewerPreferences(number(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFFiligran(BSTR* newValue) {
  return run("PDFFiligran", [&] { pdf_.PDFFiligran(ansi(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFSetZoomMode(::PDFZoomMd* newValue) {
  return run("PDFSetZoomMode", [&] {
    const VARIANT* kept = takeKeptKind();
    pdf_.PDFSetZoomMode(kept != nullptr ? keptValue(kept) : Value(static_cast<int>(number(newValue))));
  });
}

STDMETHODIMP PdfObject::get_PDFGetZoomMode(VARIANT* result) {
  return run("PDFGetZoomMode", result, [&] { answer(result, pdf_.PDFGetZoomMode()); });
}

STDMETHODIMP PdfObject::put_PDFUseThumbs(VARIANT_BOOL* newValue) {
  return run("PDFUseThumbs", [&] { pdf_.PDFUseThumbs(flag(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFUseOutlines(VARIANT_BOOL* newValue) {
  return run("PDFUseOutlines", [&] { pdf_.PDFUseOutlines(flag(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFSetLayoutMode(::PDFLayoutMd* newValue) {
  return run("PDFSetLayoutMode", [&] { pdf_.PDFSetLayoutMode(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetLayoutMode(VARIANT* result) {
  return run("PDFGetLayoutMode", result, [&] { answer(result, pdf_.PDFGetLayoutMode()); });
}

STDMETHODIMP PdfObject::put_PDFSetUnit(::PDFUnitStr* newValue) {
  return run("PDFSetUnit", [&] { pdf_.PDFSetUnit(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetUnit(BSTR* result) {
  return run("PDFGetUnit", result, [&] { answer(result, pdf_.PDFGetUnit()); });
}

STDMETHODIMP PdfObject::put_PDFOrientation(::PDFOrientationStr* newValue) {
  return run("PDFOrientation", [&] { pdf_.PDFOrientation(number(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFFormatPage(VARIANT* newValue) {
  return run("PDFFormatPage", [&] { pdf_.PDFFormatPage(value(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFPageNumber(short* result) {
  return run("PDFPageNumber", result, [&] { answer(result, pdf_.PDFPageNumber()); });
}

STDMETHODIMP PdfObject::get_PDFNbPage(short* result) {
  return run("PDFNbPage", result, [&] { answer(result, pdf_.PDFNbPage()); });
}

STDMETHODIMP PdfObject::put_PDFProducer(BSTR* newValue) {
  return run("PDFProducer", [&] { pdf_.PDFProducer(ansi(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFSubject(BSTR* newValue) {
  return run("PDFSubject", [&] { pdf_.PDFSubject(ansi(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFKeywords(BSTR* newValue) {
  return run("PDFKeywords", [&] { pdf_.PDFKeywords(ansi(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFCreator(BSTR* newValue) {
  return run("PDFCreator", [&] { pdf_.PDFCreator(ansi(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFAuthor(BSTR* newValue) {
  return run("PDFAuthor", [&] { pdf_.PDFAuthor(ansi(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFTitle(BSTR* newValue) {
  return run("PDFTitle", [&] { pdf_.PDFTitle(ansi(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFFileName(BSTR* newValue) {
  return run("PDFFileName", [&] { pdf_.PDFFileName(path(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetFileName(BSTR* result) {
  return run("PDFGetFileName", result, [&] { answer(result, pdf_.PDFGetFileName()); });
}

STDMETHODIMP PdfObject::put_PDFConfirm(VARIANT_BOOL* newValue) {
  return run("PDFConfirm", [&] { pdf_.PDFConfirm(flag(newValue)); });
}

STDMETHODIMP PdfObject::put_JustPictures(VARIANT_BOOL* newValue) {
  return run("JustPictures", [&] { pdf_.JustPictures(flag(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFView(VARIANT_BOOL* newValue) {
  return run("PDFView", [&] { pdf_.PDFView(flag(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFPageHeight(double* newValue) {
  return run("PDFPageHeight", [&] { pdf_.PDFPageHeight(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetPageHeight(double* result) {
  return run("PDFGetPageHeight", result, [&] { answer(result, pdf_.PDFGetPageHeight()); });
}

STDMETHODIMP PdfObject::put_PDFPageWidth(double* newValue) {
  return run("PDFPageWidth", [&] { pdf_.PDFPageWidth(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetPageWidth(double* result) {
  return run("PDFGetPageWidth", result, [&] { answer(result, pdf_.PDFGetPageWidth()); });
}

STDMETHODIMP PdfObject::put_PDFSetLeftMargin(double* newValue) {
  return run("PDFSetLeftMargin", [&] { pdf_.PDFSetLeftMargin(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetLeftMargin(double* result) {
  return run("PDFGetLeftMargin", result, [&] { answer(result, pdf_.PDFGetLeftMargin()); });
}

STDMETHODIMP PdfObject::put_PDFSetRightMargin(double* newValue) {
  return run("PDFSetRightMargin", [&] { pdf_.PDFSetRightMargin(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetRightMargin(double* result) {
  return run("PDFGetRightMargin", result, [&] { answer(result, pdf_.PDFGetRightMargin()); });
}

STDMETHODIMP PdfObject::put_PDFSetTopMargin(double* newValue) {
  return run("PDFSetTopMargin", [&] { pdf_.PDFSetTopMargin(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetTopMargin(double* result) {
  return run("PDFGetTopMargin", result, [&] { answer(result, pdf_.PDFGetTopMargin()); });
}

STDMETHODIMP PdfObject::put_PDFSetBottomMargin(double* newValue) {
  return run("PDFSetBottomMargin", [&] { pdf_.PDFSetBottomMargin(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetBottomMargin(double* result) {
  return run("PDFGetBottomMargin", result, [&] { answer(result, pdf_.PDFGetBottomMargin()); });
}

STDMETHODIMP PdfObject::put_PDFSetCellMargin(double* newValue) {
  return run("PDFSetCellMargin", [&] { pdf_.PDFSetCellMargin(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetCellMargin(double* result) {
  return run("PDFGetCellMargin", result, [&] { answer(result, pdf_.PDFGetCellMargin()); });
}

STDMETHODIMP PdfObject::PDFSetMargins(short* in_left, short* in_top, short* in_right, short* in_bottom) {
  return run("PDFSetMargins", [&] {
    pdf_.PDFSetMargins(number(in_left), number(in_top), number(in_right, short{-1}),
                       number(in_bottom, short{-1}));
  });
}

STDMETHODIMP PdfObject::get_PDFGetX(short* result) {
  return run("PDFGetX", result, [&] { answer(result, pdf_.PDFGetX()); });
}

STDMETHODIMP PdfObject::get_PDFGetY(short* result) {
  return run("PDFGetY", result, [&] { answer(result, pdf_.PDFGetY()); });
}

STDMETHODIMP PdfObject::PDFBeginDoc() {
  return run("PDFBeginDoc", [&] { pdf_.PDFBeginDoc(); });
}

STDMETHODIMP PdfObject::PDFNewPage() {
  return run("PDFNewPage", [&] { pdf_.PDFNewPage(); });
}

STDMETHODIMP PdfObject::PDFEndPage() {
  return run("PDFEndPage", [&] { pdf_.PDFEndPage(); });
}

STDMETHODIMP PdfObject::PDFEndDoc() {
  return run("PDFEndDoc", [&] { pdf_.PDFEndDoc(); });
}

STDMETHODIMP PdfObject::PDFSetBookmark(BSTR* str_Text, short* iLevel, double* y, VARIANT* result) {
  return run("PDFSetBookmark", result,
             [&] { answer(result, pdf_.PDFSetBookmark(ansi(str_Text), number(iLevel), number(y, -1.0))); });
}

STDMETHODIMP PdfObject::put_PDFLoadAfm(BSTR* newValue) {
  return run("PDFLoadAfm", [&] { pdf_.PDFLoadAfm(path(newValue)); });
}

STDMETHODIMP PdfObject::PDFSetFont(::PDFFontNme* str_Fontname, short* in_FontSize, ::PDFFontStl* str_Style) {
  return run("PDFSetFont",
             [&] { pdf_.PDFSetFont(number(str_Fontname), number(in_FontSize), number(str_Style)); });
}

STDMETHODIMP PdfObject::PDFGetStringWidth(BSTR* str_Txt, BSTR* str_FName, short* in_FSize, double* result) {
  return run("PDFGetStringWidth", result, [&] {
    answer(result, pdf_.PDFGetStringWidth(ansi(str_Txt), ansi(str_FName), number(in_FSize)));
  });
}

STDMETHODIMP PdfObject::put_PDFSetTextColor(VARIANT* newValue) {
  return run("PDFSetTextColor", [&] { pdf_.PDFSetTextColor(value(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetTextColor(BSTR* result) {
  return run("PDFGetTextColor", result, [&] { answer(result, pdf_.PDFGetTextColor()); });
}

STDMETHODIMP PdfObject::put_PDFSetLineColor(VARIANT* newValue) {
  return run("PDFSetLineColor", [&] { pdf_.PDFSetLineColor(value(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetLineColor(BSTR* result) {
  return run("PDFGetLineColor", result, [&] { answer(result, pdf_.PDFGetLineColor()); });
}

STDMETHODIMP PdfObject::put_PDFSetDrawColor(VARIANT* newValue) {
  return run("PDFSetDrawColor", [&] { pdf_.PDFSetDrawColor(value(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetDrawColor(BSTR* result) {
  return run("PDFGetDrawColor", result, [&] { answer(result, pdf_.PDFGetDrawColor()); });
}

STDMETHODIMP PdfObject::put_PDFSetLineWidth(double* newValue) {
  return run("PDFSetLineWidth", [&] { pdf_.PDFSetLineWidth(number(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFSetLineStyle(::PDFStyleLgn* newValue) {
  return run("PDFSetLineStyle", [&] { pdf_.PDFSetLineStyle(number(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFSetDrawMode(::PDFDrawMd* newValue) {
  return run("PDFSetDrawMode", [&] { pdf_.PDFSetDrawMode(number(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFSetAlignement(::PDFAlignValue* newValue) {
  return run("PDFSetAlignement", [&] { pdf_.PDFSetAlignement(number(newValue)); });
}

STDMETHODIMP PdfObject::get_PDFGetAlignement(BSTR* result) {
  return run("PDFGetAlignement", result, [&] { answer(result, pdf_.PDFGetAlignement()); });
}

STDMETHODIMP PdfObject::put_PDFSetBorder(::PDFBorderValue* newValue) {
  return run("PDFSetBorder", [&] { pdf_.PDFSetBorder(number(newValue)); });
}

STDMETHODIMP PdfObject::put_PDFSetFill(VARIANT_BOOL* newValue) {
  return run("PDFSetFill", [&] { pdf_.PDFSetFill(flag(newValue)); });
}

STDMETHODIMP PdfObject::PDFDrawLineHor(double* X, double* y, double* w) {
  return run("PDFDrawLineHor", [&] { pdf_.PDFDrawLineHor(number(X), number(y), number(w)); });
}

STDMETHODIMP PdfObject::PDFDrawLineVer(double* X, double* y, double* h) {
  return run("PDFDrawLineVer", [&] { pdf_.PDFDrawLineVer(number(X), number(y), number(h)); });
}

STDMETHODIMP PdfObject::PDFDrawLine(double* x1, double* Y1, double* x2, double* Y2) {
  return run("PDFDrawLine", [&] { pdf_.PDFDrawLine(number(x1), number(Y1), number(x2), number(Y2)); });
}

STDMETHODIMP PdfObject::PDFDrawRectangle(double* X, double* y, double* w, double* h, BSTR* URLLink) {
  return run("PDFDrawRectangle",
             [&] { pdf_.PDFDrawRectangle(number(X), number(y), number(w), number(h), takeLink(URLLink)); });
}

STDMETHODIMP PdfObject::PDFDrawEllipse(double* X, double* y, double* rx, double* ry, BSTR* URLLink) {
  return run("PDFDrawEllipse",
             [&] { pdf_.PDFDrawEllipse(number(X), number(y), number(rx), number(ry), takeLink(URLLink)); });
}

STDMETHODIMP PdfObject::PDFDrawPolygon(SAFEARRAY** points) {
  return run("PDFDrawPolygon", [&] { pdf_.PDFDrawPolygon(list(points)); });
}

STDMETHODIMP PdfObject::PDFTextOut(BSTR* str_Text, double* X, double* y) {
  return run("PDFTextOut", [&] { pdf_.PDFTextOut(ansi(str_Text), number(X), number(y)); });
}

STDMETHODIMP PdfObject::PDFCell(BSTR* str_Text, double* X, double* y, double* w, double* h, BSTR* URLLink) {
  return run("PDFCell", [&] {
    pdf_.PDFCell(ansi(str_Text), number(X), number(y), number(w), number(h), takeLink(URLLink));
  });
}

STDMETHODIMP PdfObject::PDFLink(double* X, double* y, BSTR* str_Text, BSTR* str_Link) {
  return run("PDFLink", [&] { pdf_.PDFLink(number(X), number(y), ansi(str_Text), ansi(str_Link)); });
}

STDMETHODIMP PdfObject::get_PDFTextHeight(double* result) {
  return run("PDFTextHeight", result, [&] { answer(result, pdf_.PDFTextHeight()); });
}

STDMETHODIMP PdfObject::put_PDFSetRotation(double* newValue) {
  return run("PDFSetRotation", [&] { pdf_.PDFSetRotation(number(newValue)); });
}

STDMETHODIMP PdfObject::PDFImageWidth(BSTR* pFileName, double* result) {
  return run("PDFImageWidth", result, [&] { answer(result, pdf_.PDFImageWidth(path(pFileName))); });
}

STDMETHODIMP PdfObject::PDFImageHeight(BSTR* pFileName, double* result) {
  return run("PDFImageHeight", result, [&] { answer(result, pdf_.PDFImageHeight(path(pFileName))); });
}

STDMETHODIMP PdfObject::PDFInit() {
  return run("PDFInit", [&] { pdf_.PDFInit(); });
}

STDMETHODIMP PdfObject::PDFImage(BSTR* pFileName, double* X, double* y, double* w, double* h, BSTR* URLLink) {
  return run("PDFImage", [&] {
    // The host's variables get the computed size at once: an event handler may read them.
    double width = number(w);
    double height = number(h);
    pdf_.PDFImage(path(pFileName), number(X), number(y), width, height, takeLink(URLLink));
    answer(w, width);
    answer(h, height);
  });
}

}  // namespace veltrano::server
