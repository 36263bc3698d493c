#ifndef VELTRANO_PDF_ENUMERATIONS_H
#define VELTRANO_PDF_ENUMERATIONS_H

// The enumerations of VeltranoPDF under the names that hosts see. Members take plain 32-bit numbers, since
// hosts may pass any value; these convert to them by themselves.

#include <cstdint>

namespace veltrano {

enum PDFUnitStr : std::int32_t { UNIT_PT = 0, UNIT_MM = 1, UNIT_CM = 2 };

enum PDFOrientationStr : std::int32_t { ORIENT_PAYSAGE = 0, ORIENT_PORTRAIT = 1 };

enum PDFFormatPgStr : std::int32_t {
  FORMAT_A4 = 0,
  FORMAT_A3 = 1,
  FORMAT_A5 = 2,
  FORMAT_LETTER = 3,
  FORMAT_LEGAL = 4
};

enum PDFZoomMd : std::int32_t { ZOOM_FULLPAGE = 0, ZOOM_FULLWIDTH = 1, ZOOM_REAL = 2, ZOOM_DEFAULT = 3 };

enum PDFLayoutMd : std::int32_t {
  LAYOUT_SINGLE = 0,
  LAYOUT_CONTINOUS = 1,
  LAYOUT_TWO = 2,
  LAYOUT_DEFAULT = 3
};

enum PDFViewerCst : std::int32_t {
  VIEW_HIDETOOLBAR = 1,
  VIEW_HIDEMENUBAR = 2,
  VIEW_HIDEWINDOWUI = 3,
  VIEW_FITWINDOW = 4,
  VIEW_CENTERWINDOW = 5,
  VIEW_DISPLAYDOCTITLE = 6
};

enum PDFStyleLgn : std::int32_t { pPDF_SOLID = 0, pPDF_DASH = 1, pPDF_DASHDOT = 2, pPDF_DASHDOTDOT = 3 };

enum PDFFontNme : std::int32_t {
  FONT_ARIAL = 0,
  FONT_COURIER = 1,
  FONT_TIMES = 2,
  FONT_SYMBOL = 3,
  FONT_ZAPFDINGBATS = 4
};

/// Styles combine by writing their digits together: 12 is bold italic.
enum PDFFontStl : std::int32_t { FONT_NORMAL = 0, FONT_ITALIC = 1, FONT_BOLD = 2, FONT_UNDERLINE = 3 };

enum PDFDrawMd : std::int32_t { DRAW_NORMAL = 0, DRAW_DRAW = 1, DRAW_DRAWBORDER = 2 };

/// Red in the lowest byte, green in the next, blue in the third.
enum PDFColorValue : std::int32_t {
  COLOR_NONE = 16777215,
  COLOR_NOIR = 0,
  COLOR_BLEU = 16711680,
  COLOR_VERT = 65280,
  COLOR_CYAN = 16776960,
  COLOR_ROUGE = 255,
  COLOR_MAGENTA = 16711935,
  COLOR_JAUNE = 65535,
  COLOR_BLANC = 16777215
};

enum PDFAlignValue : std::int32_t { ALIGN_CENTER = 0, ALIGN_LEFT = 1, ALIGN_RIGHT = 2, ALIGN_FJUSTIFY = 3 };

/// Borders combine by writing their digits together: 23 is top and bottom.
enum PDFBorderValue : std::int32_t {
  BORDER_NONE = 0,
  BORDER_ALL = 1,
  BORDER_TOP = 2,
  BORDER_BOTTOM = 3,
  BORDER_LEFT = 4,
  BORDER_RIGHT = 5
};

}  // namespace veltrano

#endif
