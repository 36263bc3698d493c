#ifndef VELTRANO_TESTS_SERVER_EXPECTED_INTERFACE_H
#define VELTRANO_TESTS_SERVER_EXPECTED_INTERFACE_H

// What hosts are promised, typed in by hand and never made from the IDL: the members of each interface in
// their order, and the enumerations. One text a member:
//   "put name: type", "get name: type", "name(parameters): result"
// Parameters are by reference; one in brackets may be omitted and then has the value behind "=".

#include <initializer_list>
#include <string_view>
#include <vector>

namespace veltrano::tests {

struct ExpectedInterface {
  std::wstring_view name;
  std::vector<std::wstring_view> members;
};

struct ExpectedEnumeration {
  std::wstring_view name;
  std::vector<std::wstring_view> values;
};

inline const ExpectedInterface expectedInterfaces[] = {
    {L"_VeltranoPDF",
     {
         L"put PDFPathConfiguration: text",
         L"put PDFSetViewerPreferences: PDFViewerCst",
         L"put PDFFiligran: text",
         L"put PDFSetZoomMode: PDFZoomMd",
         L"get PDFGetZoomMode: variant",
         L"put PDFUseThumbs: flag",
         L"put PDFUseOutlines: flag",
         L"put PDFSetLayoutMode: PDFLayoutMd",
         L"get PDFGetLayoutMode: variant",
         L"put PDFSetUnit: PDFUnitStr",
         L"get PDFGetUnit: text",
         L"put PDFOrientation: PDFOrientationStr",
         L"put PDFFormatPage: variant",
         L"get PDFPageNumber: short",
         L"get PDFNbPage: short",
         L"put PDFProducer: text",
         L"put PDFSubject: text",
         L"put PDFKeywords: text",
         L"put PDFCreator: text",
         L"put PDFAuthor: text",
         L"put PDFTitle: text",
         L"put PDFFileName: text",
         L"get PDFGetFileName: text",
         L"put PDFConfirm: flag",
         L"put JustPictures: flag",
         L"put PDFView: flag",
         L"put PDFPageHeight: double",
         L"get PDFGetPageHeight: double",
         L"put PDFPageWidth: double",
         L"get PDFGetPageWidth: double",
         L"put PDFSetLeftMargin: double",
         L"get PDFGetLeftMargin: double",
         L"put PDFSetRightMargin: double",
         L"get PDFGetRightMargin: double",
         L"put PDFSetTopMargin: double",
         L"get PDFGetTopMargin: double",
         L"put PDFSetBottomMargin: double",
         L"get PDFGetBottomMargin: double",
         L"put PDFSetCellMargin: double",
         L"get PDFGetCellMargin: double",
         L"PDFSetMargins(in_left: short, in_top: short, [in_right: short = -1], [in_bottom: short = -1])",
         L"get PDFGetX: short",
         L"get PDFGetY: short",
         L"PDFBeginDoc()",
         L"PDFNewPage()",
         L"PDFEndPage()",
         L"PDFEndDoc()",
         L"PDFSetBookmark(str_Text: text, [iLevel: short = 0], [y: double = -1]): variant",
         L"put PDFLoadAfm: text",
         L"PDFSetFont(str_Fontname: PDFFontNme, in_FontSize: short, [str_Style: PDFFontStl = 0])",
         L"PDFGetStringWidth(str_Txt: text, [str_FName: text = ''], [in_FSize: short = 0]): double",
         L"put PDFSetTextColor: variant",
         L"get PDFGetTextColor: text",
         L"put PDFSetLineColor: variant",
         L"get PDFGetLineColor: text",
         L"put PDFSetDrawColor: variant",
         L"get PDFGetDrawColor: text",
         L"put PDFSetLineWidth: double",
         L"put PDFSetLineStyle: PDFStyleLgn",
         L"put PDFSetDrawMode: PDFDrawMd",
         L"put PDFSetAlignement: PDFAlignValue",
         L"get PDFGetAlignement: text",
         L"put PDFSetBorder: PDFBorderValue",
         L"put PDFSetFill: flag",
         L"PDFDrawLineHor(X: double, y: double, w: double)",
         L"PDFDrawLineVer(X: double, y: double, h: double)",
         L"PDFDrawLine(x1: double, Y1: double, x2: double, Y2: double)",
         L"PDFDrawRectangle(X: double, y: double, w: double, h: double, [URLLink: text = ''])",
         L"PDFDrawEllipse(X: double, y: double, rx: double, [ry: double = 0], [URLLink: text = ''])",
         L"PDFDrawPolygon(points: any number)",
         L"PDFTextOut(str_Text: text, [X: double = 0], [y: double = 0])",
         L"PDFCell(str_Text: text, X: double, y: double, w: double, h: double, [URLLink: text = ''])",
         L"PDFLink(X: double, y: double, str_Text: text, [str_Link: text = ''])",
         L"get PDFTextHeight: double",
         L"put PDFSetRotation: double",
         L"PDFImageWidth(pFileName: text): double",
         L"PDFImageHeight(pFileName: text): double",
         L"PDFInit()",
         L"PDFImage(pFileName: text, X: double, y: double, [w: double = 0], [h: double = 0], [URLLink: text "
         L"= ''])",
     }},
    {L"_VeltranoKML",
     {
         L"CreateKML(filename: text, Description: variant, [ExtendedData: text = ''], "
         L"[IncludeGeneratedBy: flag = 0])",
         L"ClearPath()",
         L"CreatePathFromPlaceMarks(Size: short, pColor: text)",
         L"CreatePathFromString(Size: short, pColor: text, PathData: text, PathName: text, [Line3D: flag = "
         L"0])",
         L"CreateCameraOverlay(filename: text, X: double, y: double, Altitude: double, pName: text, "
         L"[visibility: text = '0'], [shape: text = 'rectangle'])",
         L"CreateGroundOverlay(filename: text, X: double, y: double, Altitude: double, pName: text, "
         L"HTMLDescription: text, [shape: text = 'rectangle'], [Heading: text = ''])",
         L"CreateStreetView(filename: text, X: double, y: double, Altitude: double, pName: text, "
         L"HTMLDescription: text, [shape: text = 'rectangle'], [Heading: text = ''])",
         L"CreatePlaceMark(X: double, y: double, Altitude: double, pName: text, pDescription: text, "
         L"[TimeStamp: text = ''], [ExtendedData: text = ''])",
         L"CreatePathPoint(X: double, y: double, Altitude: double)",
         L"CreatePathString(X: double, y: double, Altitude: double): text",
         L"CloseKML()",
     }},
    {L"_VeltranoXML",
     {
         L"XML_Open(xFilename: text)",
         L"XML_Save()",
         L"XML_SaveSetting(Folder: text, Key: text, Value: text)",
         L"XML_GetSetting(Folder: text, Key: text, [Default: text = '']): text",
         L"XML_EnumFolders(): variant",
         L"XML_EnumKeys(Folder: text): variant",
         L"XML_DeleteSetting(xFilename: text, Folder: text, [Key: text = ''])",
     }},
    {L"_VeltranoINI",
     {
         L"GetIniValue(filename: text, Key: text, Default: text): text",
         L"SetIniValue(filename: text, Key: text, Value: text)",
         L"ChangeValue(xFileBuffer: text, Key: text, Value: text): text",
         L"GetValue(xFileBuffer: text, Key: text, [Default: text = '']): text",
         L"OpenFile(xFilename: text): text",
         L"CloseFile(filename: text, xText: text)",
     }},
    {L"_VeltranoMDB",
     {
         L"OpenDB(filename: text, [Username: text = ''], [Password: text = '']): flag",
         L"OpenTable(Table: text): flag",
         L"WriteRecord(Field: text, Value: variant): flag",
         L"ReadRecord_String(xField: text): text",
         L"Edit()",
         L"Delete()",
         L"MoveFirst()",
         L"MoveNext()",
         L"MoveLast()",
         L"AddNew()",
         L"EOF(): flag",
         L"Update()",
         L"FindRecord(Field: text, Value: text, CaseSensivite: flag): flag",
         L"CloseTable()",
         L"CloseDatabase()",
     }},
    {L"_VeltranoJPG",
     {
         L"get JPEGWidth: long",
         L"put JPEGWidth: long",
         L"get JPEGHeight: long",
         L"put JPEGHeight: long",
         L"SaveJPEG(ImageToSave: picture, xFilename: text, [JPEGQuality: long = 50], [FixWidth: long = 0], "
         L"[FixHeight: long = 0])",
         L"SaveJPEGToMemory(ImageToSave: picture, [JPEGQuality: long = 50], [FixWidth: long = 0], "
         L"[FixHeight: long = 0]): text",
         L"LoadJPEGFromRAMToPicture(ArrayPointer: address, ArraySize: long, X: long, y: long): picture",
         L"LoadJPEGFromRAM2Picture(Dest_hDC: address, ArrayPointer: address, ArraySize: long, X: long, y: "
         L"long): "
         L"flag",
         L"LoadJPEGFromRAM2PictureXY(Dest_hDC: address, ArrayPointer: address, ArraySize: long, x1: long, "
         L"Y1: long, X: long, y: long): flag",
         L"SaveJPEGFromRAMToMemoryResampled(ImageToSave: text, [JPEGQuality: long = 50], [FixWidth: long = "
         L"0], "
         L"[FixHeight: long = 0]): text",
         L"SaveJPEGToMemoryResampled(ImageToSave: text, [JPEGQuality: long = 50], [FixWidth: long = 0], "
         L"[FixHeight: long = 0]): text",
         L"SaveJPEGResampled(ImageToSave: text, TargetFile: text, [JPEGQuality: long = 50], [FixWidth: long "
         L"= 0], "
         L"[FixHeight: long = 0]): variant",
     }},
    {L"_VeltranoPNG",
     {
         L"Init(xInitString: text)",
         L"SavePNG(pct: picture, sPNGFileName: text): flag",
     }},
    {L"_VeltranoWEV",
     {
         L"LogNTEvent(sString: text, iLogType: EventTypes, iEventID: long, [AppSource: text = ''])",
     }},
    {L"_VeltranoGIS", {}},
};

inline const ExpectedEnumeration expectedEnumerations[] = {
    {L"PDFUnitStr", {L"UNIT_PT=0", L"UNIT_MM=1", L"UNIT_CM=2"}},
    {L"PDFOrientationStr", {L"ORIENT_PAYSAGE=0", L"ORIENT_PORTRAIT=1"}},
    {L"PDFFormatPgStr",
     {L"FORMAT_A4=0", L"FORMAT_A3=1", L"FORMAT_A5=2", L"FORMAT_LETTER=3", L"FORMAT_LEGAL=4"}},
    {L"PDFZoomMd", {L"ZOOM_FULLPAGE=0", L"ZOOM_FULLWIDTH=1", L"ZOOM_REAL=2", L"ZOOM_DEFAULT=3"}},
    {L"PDFLayoutMd", {L"LAYOUT_SINGLE=0", L"LAYOUT_CONTINOUS=1", L"LAYOUT_TWO=2", L"LAYOUT_DEFAULT=3"}},
    {L"PDFViewerCst",
     {L"VIEW_HIDETOOLBAR=1", L"VIEW_HIDEMENUBAR=2", L"VIEW_HIDEWINDOWUI=3", L"VIEW_FITWINDOW=4",
      L"VIEW_CENTERWINDOW=5", L"VIEW_DISPLAYDOCTITLE=6"}},
    {L"PDFStyleLgn", {L"pPDF_SOLID=0", L"pPDF_DASH=1", L"pPDF_DASHDOT=2", L"pPDF_DASHDOTDOT=3"}},
    {L"PDFFontNme",
     {L"FONT_ARIAL=0", L"FONT_COURIER=1", L"FONT_TIMES=2", L"FONT_SYMBOL=3", L"FONT_ZAPFDINGBATS=4"}},
    {L"PDFFontStl", {L"FONT_NORMAL=0", L"FONT_ITALIC=1", L"FONT_BOLD=2", L"FONT_UNDERLINE=3"}},
    {L"PDFDrawMd", {L"DRAW_NORMAL=0", L"DRAW_DRAW=1", L"DRAW_DRAWBORDER=2"}},
    {L"PDFColorValue",
     {L"COLOR_NONE=16777215", L"COLOR_NOIR=0", L"COLOR_BLEU=16711680", L"COLOR_VERT=65280",
      L"COLOR_CYAN=16776960", L"COLOR_ROUGE=255", L"COLOR_MAGENTA=16711935", L"COLOR_JAUNE=65535",
      L"COLOR_BLANC=16777215"}},
    {L"PDFAlignValue", {L"ALIGN_CENTER=0", L"ALIGN_LEFT=1", L"ALIGN_RIGHT=2", L"ALIGN_FJUSTIFY=3"}},
    {L"PDFBorderValue",
     {L"BORDER_NONE=0", L"BORDER_ALL=1", L"BORDER_TOP=2", L"BORDER_BOTTOM=3", L"BORDER_LEFT=4",
      L"BORDER_RIGHT=5"}},
    {L"EventTypes",
     {L"EVENTLOG_SUCCESS=0", L"EVENTLOG_ERROR_TYPE=1", L"EVENTLOG_WARNING_TYPE=2",
      L"EVENTLOG_INFORMATION_TYPE=4", L"EVENTLOG_AUDIT_SUCCESS=8", L"EVENTLOG_AUDIT_FAILURE=10"}},
};

}  // namespace veltrano::tests

#endif
