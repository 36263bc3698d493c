#ifndef VELTRANO_SERVER_CLASSES_PDF_OBJECT_H
#define VELTRANO_SERVER_CLASSES_PDF_OBJECT_H

#include "server/com/automation_object.h"
#include "server/com/connection_point.h"
#include "veltrano/pdf.h"

namespace veltrano::server {

/// VeltranoPDF as hosts see it: converts and forwards, and turns rejected arguments into the Error event.
class PdfObject final : public AutomationObject<_VeltranoPDF> {
 public:
  /// Zoom and links are judged by their kind before anything is coerced.
  static std::span<const KeptKind> keptKinds();

  explicit PdfObject(const ClassEntry& entry);

  // The members of _VeltranoPDF, in interface order.
  STDMETHODIMP put_PDFPathConfiguration(BSTR* newValue) override;
  STDMETHODIMP put_PDFSetViewerPreferences(::PDFViewerCst* newValue) override;
  STDMETHODIMP put_PDFFiligran(BSTR* newValue) override;
  STDMETHODIMP put_PDFSetZoomMode(::PDFZoomMd* newValue) override;
  STDMETHODIMP get_PDFGetZoomMode(VARIANT* result) override;
  STDMETHODIMP put_PDFUseThumbs(VARIANT_BOOL* newValue) override;
  STDMETHODIMP put_PDFUseOutlines(VARIANT_BOOL* newValue) override;
  STDMETHODIMP put_PDFSetLayoutMode(::PDFLayoutMd* newValue) override;
  STDMETHODIMP get_PDFGetLayoutMode(VARIANT* result) override;
  STDMETHODIMP put_PDFSetUnit(::PDFUnitStr* newValue) override;
  STDMETHODIMP get_PDFGetUnit(BSTR* result) override;
  STDMETHODIMP put_PDFOrientation(::PDFOrientationStr* newValue) override;
  STDMETHODIMP put_PDFFormatPage(VARIANT* newValue) override;
  STDMETHODIMP get_PDFPageNumber(short* result) override;
  STDMETHODIMP get_PDFNbPage(short* result) override;
  STDMETHODIMP put_PDFProducer(BSTR* newValue) override;
  STDMETHODIMP put_PDFSubject(BSTR* newValue) override;
  STDMETHODIMP put_PDFKeywords(BSTR* newValue) override;
  STDMETHODIMP put_PDFCreator(BSTR* newValue) override;
  STDMETHODIMP put_PDFAuthor(BSTR* newValue) override;
  STDMETHODIMP put_PDFTitle(BSTR* newValue) override;
  STDMETHODIMP put_PDFFileName(BSTR* newValue) override;
  STDMETHODIMP get_PDFGetFileName(BSTR* result) override;
  STDMETHODIMP put_PDFConfirm(VARIANT_BOOL* newValue) override;
  STDMETHODIMP put_JustPictures(VARIANT_BOOL* newValue) override;
  STDMETHODIMP put_PDFView(VARIANT_BOOL* newValue) override;
  STDMETHODIMP put_PDFPageHeight(double* newValue) override;
  STDMETHODIMP get_PDFGetPageHeight(double* result) override;
  STDMETHODIMP put_PDFPageWidth(double* newValue) override;
  STDMETHODIMP get_PDFGetPageWidth(double* result) override;
  STDMETHODIMP put_PDFSetLeftMargin(double* newValue) override;
  STDMETHODIMP get_PDFGetLeftMargin(double* result) override;
  STDMETHODIMP put_PDFSetRightMargin(double* newValue) override;
  STDMETHODIMP get_PDFGetRightMargin(double* result) override;
  STDMETHODIMP put_PDFSetTopMargin(double* newValue) override;
  STDMETHODIMP get_PDFGetTopMargin(double* result) override;
  STDMETHODIMP put_PDFSetBottomMargin(double* newValue) override;
  STDMETHODIMP get_PDFGetBottomMargin(double* result) override;
  STDMETHODIMP put_PDFSetCellMargin(double* newValue) override;
  STDMETHODIMP get_PDFGetCellMargin(double* result) override;
  STDMETHODIMP PDFSetMargins(short* in_left, short* in_top, short* in_right, short* in_bottom) override;
  STDMETHODIMP get_PDFGetX(short* result) override;
  STDMETHODIMP get_PDFGetY(short* result) override;
  STDMETHODIMP PDFBeginDoc() override;
  STDMETHODIMP PDFNewPage() override;
  STDMETHODIMP PDFEndPage() override;
  STDMETHODIMP PDFEndDoc() override;
  STDMETHODIMP PDFSetBookmark(BSTR* str_Text, short* iLevel, double* y, VARIANT* result) override;
  STDMETHODIMP put_PDFLoadAfm(BSTR* newValue) override;
  STDMETHODIMP PDFSetFont(::PDFFontNme* str_Fontname, short* in_FontSize, ::PDFFontStl* str_Style) override;
  STDMETHODIMP PDFGetStringWidth(BSTR* str_Txt, BSTR* str_FName, short* in_FSize, double* result) override;
  STDMETHODIMP put_PDFSetTextColor(VARIANT* newValue) override;
  STDMETHODIMP get_PDFGetTextColor(BSTR* result) override;
  STDMETHODIMP put_PDFSetLineColor(VARIANT* newValue) override;
  STDMETHODIMP get_PDFGetLineColor(BSTR* result) override;
  STDMETHODIMP put_PDFSetDrawColor(VARIANT* newValue) override;
  STDMETHODIMP get_PDFGetDrawColor(BSTR* result) override;
  STDMETHODIMP put_PDFSetLineWidth(double* newValue) override;
  STDMETHODIMP put_PDFSetLineStyle(::PDFStyleLgn* newValue) override;
  STDMETHODIMP put_PDFSetDrawMode(::PDFDrawMd* newValue) override;
  STDMETHODIMP put_PDFSetAlignement(::PDFAlignValue* newValue) override;
  STDMETHODIMP get_PDFGetAlignement(BSTR* result) override;
  STDMETHODIMP put_PDFSetBorder(::PDFBorderValue* newValue) override;
  STDMETHODIMP put_PDFSetFill(VARIANT_BOOL* newValue) override;
  STDMETHODIMP PDFDrawLineHor(double* X, double* y, double* w) override;
  STDMETHODIMP PDFDrawLineVer(double* X, double* y, double* h) override;
  STDMETHODIMP PDFDrawLine(double* x1, double* Y1, double* x2, double* Y2) override;
  STDMETHODIMP PDFDrawRectangle(double* X, double* y, double* w, double* h, BSTR* URLLink) override;
  STDMETHODIMP PDFDrawEllipse(double* X, double* y, double* rx, double* ry, BSTR* URLLink) override;
  STDMETHODIMP PDFDrawPolygon(SAFEARRAY** points) override;
  STDMETHODIMP PDFTextOut(BSTR* str_Text, double* X, double* y) override;
  STDMETHODIMP PDFCell(BSTR* str_Text, double* X, double* y, double* w, double* h, BSTR* URLLink) override;
  STDMETHODIMP PDFLink(double* X, double* y, BSTR* str_Text, BSTR* str_Link) override;
  STDMETHODIMP get_PDFTextHeight(double* result) override;
  STDMETHODIMP put_PDFSetRotation(double* newValue) override;
  STDMETHODIMP PDFImageWidth(BSTR* pFileName, double* result) override;
  STDMETHODIMP PDFImageHeight(BSTR* pFileName, double* result) override;
  STDMETHODIMP PDFInit() override;
  STDMETHODIMP PDFImage(BSTR* pFileName, double* X, double* y, double* w, double* h, BSTR* URLLink) override;

 protected:
  void* otherInterface(REFIID iid) override;

 private:
  /// The kind-keeping link of this call, or the typed text of a caller of the vtable.
  Value takeLink(BSTR* text);

  EventSource events_;
  VeltranoPDF pdf_;
};

}  // namespace veltrano::server

#endif
