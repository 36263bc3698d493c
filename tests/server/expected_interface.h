#ifndef VELTRANO_TESTS_SERVER_EXPECTED_INTERFACE_H
#define VELTRANO_TESTS_SERVER_EXPECTED_INTERFACE_H

// What hosts are promised, typed in by hand and never made from the IDL: the members of each interface in their order,
// and the enumerations. Members are separated by ";":
//   put name: type; get name: type; name(parameters): result
// Parameters are by reference; one in brackets may be omitted and then has the value after "=", or is a null text.

namespace veltrano::tests {

/// An interface and its members, or an enumeration and its values. Line breaks count as blanks.
struct ExpectedType {
  const char* name;
  const char* members;
};

// clang-format off
inline const ExpectedType expectedInterfaces[] = {
    {"_VeltranoPDF", R"(
put PDFPathConfiguration: text; put PDFSetViewerPreferences: PDFViewerCst; put PDFFiligran: text;
put PDFSetZoomMode: PDFZoomMd; get PDFGetZoomMode: variant; put PDFUseThumbs: flag;
put PDFUseOutlines: flag; put PDFSetLayoutMode: PDFLayoutMd; get PDFGetLayoutMode: variant;
put PDFSetUnit: PDFUnitStr; get PDFGetUnit: text; put PDFOrientation: PDFOrientationStr;
put PDFFormatPage: variant; get PDFPageNumber: short; get PDFNbPage: short; put PDFProducer: text;
put PDFSubject: text; put PDFKeywords: text; put PDFCreator: text; put PDFAuthor: text; put PDFTitle: text;
put PDFFileName: text; get PDFGetFileName: text; put PDFConfirm: flag; put JustPictures: flag;
put PDFView: flag; put PDFPageHeight: double; get PDFGetPageHeight: double; put PDFPageWidth: double;
get PDFGetPageWidth: double; put PDFSetLeftMargin: double; get PDFGetLeftMargin: double;
put PDFSetRightMargin: double; get PDFGetRightMargin: double; put PDFSetTopMargin: double;
get PDFGetTopMargin: double; put PDFSetBottomMargin: double; get PDFGetBottomMargin: double;
put PDFSetCellMargin: double; get PDFGetCellMargin: double;
PDFSetMargins(in_left: short, in_top: short, [in_right: short = -1], [in_bottom: short = -1]);
get PDFGetX: short; get PDFGetY: short; PDFBeginDoc(); PDFNewPage(); PDFEndPage(); PDFEndDoc();
PDFSetBookmark(str_Text: text, [iLevel: short = 0], [y: double = -1]): variant; put PDFLoadAfm: text;
PDFSetFont(str_Fontname: PDFFontNme, in_FontSize: short, [str_Style: PDFFontStl = 0]);
PDFGetStringWidth(str_Txt: text, [str_FName: text], [in_FSize: short = 0]): double;
put PDFSetTextColor: variant; get PDFGetTextColor: text; put PDFSetLineColor: variant;
get PDFGetLineColor: text; put PDFSetDrawColor: variant; get PDFGetDrawColor: text;
put PDFSetLineWidth: double; put PDFSetLineStyle: PDFStyleLgn; put PDFSetDrawMode: PDFDrawMd;
put PDFSetAlignement: PDFAlignValue; get PDFGetAlignement: text; put PDFSetBorder: PDFBorderValue;
put PDFSetFill: flag; PDFDrawLineHor(X: double, y: double, w: double);
PDFDrawLineVer(X: double, y: double, h: double);
PDFDrawLine(x1: double, Y1: double, x2: double, Y2: double);
PDFDrawRectangle(X: double, y: double, w: double, h: double, [URLLink: text]);
PDFDrawEllipse(X: double, y: double, rx: double, [ry: double = 0], [URLLink: text]);
PDFDrawPolygon(points: any number); PDFTextOut(str_Text: text, [X: double = 0], [y: double = 0]);
PDFCell(str_Text: text, X: double, y: double, w: double, h: double, [URLLink: text]);
PDFLink(X: double, y: double, str_Text: text, [str_Link: text]); get PDFTextHeight: double;
put PDFSetRotation: double; PDFImageWidth(pFileName: text): double; PDFImageHeight(pFileName: text): double;
PDFInit();
PDFImage(pFileName: text, X: double, y: double, [w: double = 0], [h: double = 0], [URLLink: text])
)"},
    {"_VeltranoKML", R"(
CreateKML(filename: text, Description: variant, [ExtendedData: text], [IncludeGeneratedBy: flag = 0]);
ClearPath(); CreatePathFromPlaceMarks(Size: short, pColor: text);
CreatePathFromString(Size: short, pColor: text, PathData: text, PathName: text, [Line3D: flag = 0]);
CreateCameraOverlay(filename: text, X: double, y: double, Altitude: double, pName: text, [visibility: text], [shape: text]);
CreateGroundOverlay(filename: text, X: double, y: double, Altitude: double, pName: text, HTMLDescription:
  text, [shape: text], [Heading: text]);
CreateStreetView(filename: text, X: double, y: double, Altitude: double, pName: text, HTMLDescription:
  text, [shape: text], [Heading: text]);
CreatePlaceMark(X: double, y: double, Altitude: double, pName: text, pDescription: text, [TimeStamp: text], [ExtendedData: text]);
CreatePathPoint(X: double, y: double, Altitude: double);
CreatePathString(X: double, y: double, Altitude: double): text; CloseKML()
)"},
    {"_VeltranoXML", R"(
XML_Open(xFilename: text); XML_Save(); XML_SaveSetting(Folder: text, Key: text, Value: text);
XML_GetSetting(Folder: text, Key: text, [Default: text]): text; XML_EnumFolders(): variant;
XML_EnumKeys(Folder: text): variant; XML_DeleteSetting(xFilename: text, Folder: text, [Key: text])
)"},
    {"_VeltranoINI", R"(
GetIniValue(filename: text, Key: text, Default: text): text;
SetIniValue(filename: text, Key: text, Value: text);
ChangeValue(xFileBuffer: text, Key: text, Value: text): text;
GetValue(xFileBuffer: text, Key: text, [Default: text]): text; OpenFile(xFilename: text): text;
CloseFile(filename: text, xText: text)
)"},
    {"_VeltranoMDB", R"(
OpenDB(filename: text, [Username: text], [Password: text]): flag; OpenTable(Table: text): flag;
WriteRecord(Field: text, Value: variant): flag; ReadRecord_String(xField: text): text; Edit(); Delete();
MoveFirst(); MoveNext(); MoveLast(); AddNew(); EOF(): flag; Update();
FindRecord(Field: text, Value: text, CaseSensivite: flag): flag; CloseTable(); CloseDatabase()
)"},
    {"_VeltranoJPG", R"(
get JPEGWidth: long; put JPEGWidth: long; get JPEGHeight: long; put JPEGHeight: long;
SaveJPEG(ImageToSave: picture, xFilename: text, [JPEGQuality: long = 50], [FixWidth: long = 0], [FixHeight:
  long = 0]);
SaveJPEGToMemory(ImageToSave: picture, [JPEGQuality: long = 50], [FixWidth: long = 0], [FixHeight: long =
  0]): text;
LoadJPEGFromRAMToPicture(ArrayPointer: address, ArraySize: long, X: long, y: long): picture;
LoadJPEGFromRAM2Picture(Dest_hDC: address, ArrayPointer: address, ArraySize: long, X: long, y: long): flag;
LoadJPEGFromRAM2PictureXY(Dest_hDC: address, ArrayPointer: address, ArraySize: long, x1: long, Y1: long, X:
  long, y: long): flag;
SaveJPEGFromRAMToMemoryResampled(ImageToSave: text, [JPEGQuality: long = 50], [FixWidth: long = 0],
  [FixHeight: long = 0]): text;
SaveJPEGToMemoryResampled(ImageToSave: text, [JPEGQuality: long = 50], [FixWidth: long = 0], [FixHeight:
  long = 0]): text;
SaveJPEGResampled(ImageToSave: text, TargetFile: text, [JPEGQuality: long = 50], [FixWidth: long = 0],
  [FixHeight: long = 0]): variant
)"},
    {"_VeltranoPNG", R"(
Init(xInitString: text); SavePNG(pct: picture, sPNGFileName: text): flag
)"},
    {"_VeltranoWEV", R"(
LogNTEvent(sString: text, iLogType: EventTypes, iEventID: long, [AppSource: text])
)"},
    {"_VeltranoGIS", ""},
};

inline const ExpectedType expectedEnumerations[] = {
    {"PDFUnitStr", "UNIT_PT=0, UNIT_MM=1, UNIT_CM=2"},
    {"PDFOrientationStr", "ORIENT_PAYSAGE=0, ORIENT_PORTRAIT=1"},
    {"PDFFormatPgStr", "FORMAT_A4=0, FORMAT_A3=1, FORMAT_A5=2, FORMAT_LETTER=3, FORMAT_LEGAL=4"},
    {"PDFZoomMd", "ZOOM_FULLPAGE=0, ZOOM_FULLWIDTH=1, ZOOM_REAL=2, ZOOM_DEFAULT=3"},
    {"PDFLayoutMd", "LAYOUT_SINGLE=0, LAYOUT_CONTINOUS=1, LAYOUT_TWO=2, LAYOUT_DEFAULT=3"},
    {"PDFViewerCst", "VIEW_HIDETOOLBAR=1, VIEW_HIDEMENUBAR=2, VIEW_HIDEWINDOWUI=3, VIEW_FITWINDOW=4, "
     "VIEW_CENTERWINDOW=5, VIEW_DISPLAYDOCTITLE=6"},
    {"PDFStyleLgn", "pPDF_SOLID=0, pPDF_DASH=1, pPDF_DASHDOT=2, pPDF_DASHDOTDOT=3"},
    {"PDFFontNme", "FONT_ARIAL=0, FONT_COURIER=1, FONT_TIMES=2, FONT_SYMBOL=3, FONT_ZAPFDINGBATS=4"},
    {"PDFFontStl", "FONT_NORMAL=0, FONT_ITALIC=1, FONT_BOLD=2, FONT_UNDERLINE=3"},
    {"PDFDrawMd", "DRAW_NORMAL=0, DRAW_DRAW=1, DRAW_DRAWBORDER=2"},
    {"PDFColorValue", "COLOR_NONE=16777215, COLOR_NOIR=0, COLOR_BLEU=16711680, COLOR_VERT=65280, "
     "COLOR_CYAN=16776960, COLOR_ROUGE=255, COLOR_MAGENTA=16711935, COLOR_JAUNE=65535, COLOR_BLANC=16777215"},
    {"PDFAlignValue", "ALIGN_CENTER=0, ALIGN_LEFT=1, ALIGN_RIGHT=2, ALIGN_FJUSTIFY=3"},
    {"PDFBorderValue", "BORDER_NONE=0, BORDER_ALL=1, BORDER_TOP=2, BORDER_BOTTOM=3, BORDER_LEFT=4, "
     "BORDER_RIGHT=5"},
    {"EventTypes", "EVENTLOG_SUCCESS=0, EVENTLOG_ERROR_TYPE=1, EVENTLOG_WARNING_TYPE=2, "
     "EVENTLOG_INFORMATION_TYPE=4, EVENTLOG_AUDIT_SUCCESS=8, EVENTLOG_AUDIT_FAILURE=10"},
};
// clang-format on

}  // namespace veltrano::tests

#endif
