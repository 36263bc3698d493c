#ifndef VELTRANO_PDF_H
#define VELTRANO_PDF_H

// A PDF document, built in memory page by page and written to a file at its end.
//
//   veltrano::VeltranoPDF pdf;
//   pdf.PDFFileName("report.pdf");
//   pdf.PDFBeginDoc();
//   pdf.PDFSetFont(veltrano::FONT_ARIAL, 12);
//   pdf.PDFTextOut("Hello", 2, 2);
//   pdf.PDFEndPage();  // formats and orientations set from here on are the next page's
//   pdf.PDFNewPage();
//   pdf.PDFEndDoc();
//
// Text is in the ANSI code page (veltrano/text.h), file names are paths. Positions and lengths are user
// units, from the top left of the page downwards, unless points are named. Properties are functions of the
// name that hosts see; a put takes the value, a get returns it. Where a member checks the kind of a value
// before it converts it, it takes a Value.
//
// Failure is reported through onError only. A rejected argument is replaced as the member says; any other
// fault inside a member (an overflow, a number that is not finite) skips that step, and the steps after it
// still run. Only memory exhaustion leaves a member as an exception. One object is for one thread at a time.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "veltrano/export.h"
#include "veltrano/value.h"
#ifdef VELTRANO_INSTALLED
#include "veltrano/installed.h"
#endif

namespace veltrano {

// The enumerations, under the names that hosts see. Members take plain 32-bit numbers, since hosts may pass
// any value; these convert to them by themselves.

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

class VELTRANO_API VeltranoPDF {
 public:
  VeltranoPDF();
  ~VeltranoPDF();
  VeltranoPDF(const VeltranoPDF&) = delete;
  VeltranoPDF& operator=(const VeltranoPDF&) = delete;
  VeltranoPDF(VeltranoPDF&&) = delete;
  VeltranoPDF& operator=(VeltranoPDF&&) = delete;

  /// Called with a fixed English message when an argument is rejected, before the fallback is applied. It may
  /// call any member of this object and replace itself; it must not destroy the object.
  std::function<void(std::string_view message)> onError;

  // Document settings

  /// Back to the state of a new object, except for the title, the file name, the bookmarks, the metrics
  /// folder, the viewer settings and the current font; an open document is given up. Loads the fonts of the
  /// metrics folder, which is the library's own folder when none was set.
  void PDFInit();
  /// The metrics folder. Loads nothing: PDFInit and PDFLoadAfm do.
  void PDFPathConfiguration(const std::filesystem::path& folder);

  void PDFProducer(std::string_view text);
  void PDFSubject(std::string_view text);
  void PDFKeywords(std::string_view text);
  void PDFCreator(std::string_view text);
  void PDFAuthor(std::string_view text);
  void PDFTitle(std::string_view text);

  /// Also empties the output: without it a second document is appended to the first, kept because hosts rely
  /// on it. To be set before PDFBeginDoc.
  void PDFFileName(const std::filesystem::path& file);
  /// Always empty: it reads a field that no member sets. Kept because hosts rely on it.
  [[nodiscard]] std::string PDFGetFileName() const;

  /// Accepted and without effect: the file is replaced without asking and is not opened afterwards.
  void PDFConfirm(bool confirm);
  void PDFView(bool view);
  void JustPictures(bool pictures);

  /// A text that is drawn diagonally across the pages.
  void PDFFiligran(std::string_view text);

  /// PDFZoomMd or a factor in per cent. "Zoom mode incorrect." and 0 for a value that is not a number.
  void PDFSetZoomMode(const Value& zoom);
  [[nodiscard]] Value PDFGetZoomMode() const;
  /// PDFLayoutMd. "Incorrect Layout" and LAYOUT_SINGLE for others.
  void PDFSetLayoutMode(std::int32_t layout);
  [[nodiscard]] Value PDFGetLayoutMode() const;
  void PDFUseThumbs(bool use);
  void PDFUseOutlines(bool use);
  /// PDFViewerCst; the digits of the number combine, so 12 is two preferences. The last set wins.
  void PDFSetViewerPreferences(std::int32_t preference);

  // Page geometry

  /// PDFUnitStr. "Incorrect Unit" and centimetres for others. Converts nothing that is stored.
  void PDFSetUnit(std::int32_t unit);
  /// "pt", "mm", "cm" or "".
  [[nodiscard]] std::string PDFGetUnit() const;
  /// PDFOrientationStr for the current page, whose size is rounded to whole points. Landscape swaps, each
  /// time; portrait never swaps back. "Incorrect Page Orientation" for others.
  void PDFOrientation(std::int32_t orientation);
  /// The current page's size: a whole number is a PDFFormatPgStr, an array of numbers is width and height in
  /// points. "Invalid Page Code Format" or "Incorrect Page Code" and A4 for others.
  void PDFFormatPage(const Value& format);
  /// In points, of the current page.
  void PDFPageHeight(double height);
  [[nodiscard]] double PDFGetPageHeight() const;
  void PDFPageWidth(double width);
  [[nodiscard]] double PDFGetPageWidth() const;

  /// Margins are whole numbers: setters round, ties to even, and leave the margin alone when it does not fit
  /// 16 bits.
  void PDFSetLeftMargin(double margin);
  [[nodiscard]] double PDFGetLeftMargin() const;
  void PDFSetRightMargin(double margin);
  [[nodiscard]] double PDFGetRightMargin() const;
  void PDFSetTopMargin(double margin);
  [[nodiscard]] double PDFGetTopMargin() const;
  void PDFSetBottomMargin(double margin);
  [[nodiscard]] double PDFGetBottomMargin() const;
  void PDFSetCellMargin(double margin);
  [[nodiscard]] double PDFGetCellMargin() const;
  /// A right or bottom margin of -1 (omitted) is that of the left or top.
  void PDFSetMargins(std::int16_t left, std::int16_t top, std::int16_t right = -1, std::int16_t bottom = -1);
  /// The current position, rounded; 0 when it does not fit 16 bits.
  [[nodiscard]] std::int16_t PDFGetX() const;
  [[nodiscard]] std::int16_t PDFGetY() const;

  // Assembly

  /// Starts a document and its first page. An open document is given up, its unfinished page with it.
  void PDFBeginDoc();
  /// Closes the page and starts the next one. No-op if no document is open.
  void PDFNewPage();
  /// Moves the geometry on to the next page, which takes the size of the one before.
  void PDFEndPage();
  /// Finishes the document and replaces the file by it, whole or not at all. No-op if no document is open.
  void PDFEndDoc();
  /// Number of the page being written, and of the pages begun. Documents may have more pages than 16 bits
  /// count: from page 32767 on both stay at 32767.
  [[nodiscard]] std::int16_t PDFPageNumber() const;
  [[nodiscard]] std::int16_t PDFNbPage() const;

  // Bookmarks

  /// Marks `y` on the page being written; -1 is the current position. Always returns an empty value.
  Value PDFSetBookmark(std::string_view text, std::int32_t level = 0, double y = -1);

  // Fonts

  /// Overwrites the font table from its start with the fonts whose metrics `folder` holds, and makes it the
  /// metrics folder if it holds any.
  void PDFLoadAfm(const std::filesystem::path& folder);
  /// PDFFontNme, size in points, digits of PDFFontStl. "Invalid Fort " and "TimesRoman" for other fonts. The
  /// font's metrics are those of its file now; it is checked again when a page starts or a width is asked
  /// for.
  void PDFSetFont(std::int32_t font, std::int16_t size, std::int32_t style = FONT_NORMAL);
  /// Width in points at `size` points: 0 when the size is left out. An empty name is the current font.
  [[nodiscard]] double PDFGetStringWidth(std::string_view text, std::string_view fontName = {},
                                         std::int16_t size = 0);

  // Graphics state

  /// A colour is a number (PDFColorValue), "#RRGGBB", or a list or bytes of red, green and blue, 0 to 255.
  /// Other text is black and reported: "Invalid Text Color", "Invalid Line Color", "Invalide Draw
  /// Color".
  void PDFSetTextColor(const Value& color);
  void PDFSetLineColor(const Value& color);
  void PDFSetDrawColor(const Value& color);
  /// Always empty.
  [[nodiscard]] std::string PDFGetTextColor() const;
  [[nodiscard]] std::string PDFGetLineColor() const;
  [[nodiscard]] std::string PDFGetDrawColor() const;
  void PDFSetLineWidth(double width);
  /// PDFStyleLgn, in the current unit. "Incorrect Line Style" and no operator for others.
  void PDFSetLineStyle(std::int32_t style);
  /// PDFDrawMd. "Incorrect Draw line" and DRAW_NORMAL for others.
  void PDFSetDrawMode(std::int32_t mode);
  /// PDFAlignValue. "Invalid Alignment Code" and ALIGN_LEFT for others.
  void PDFSetAlignement(std::int32_t alignment);
  /// "Center", "Right" or "Left"; justified is "Left".
  [[nodiscard]] std::string PDFGetAlignement() const;
  /// PDFBorderValue or digits of it, for the next cell.
  void PDFSetBorder(std::int32_t border);
  /// Whether cells are filled.
  void PDFSetFill(bool fill);

  // Drawing. A link that is not text raises "Unable to include this link"; an empty one is no link.

  /// Also makes the line colour the fill colour, kept because hosts rely on it; so does PDFDrawLineVer.
  void PDFDrawLineHor(double x, double y, double width);
  void PDFDrawLineVer(double x, double y, double height);
  void PDFDrawLine(double x1, double y1, double x2, double y2);
  /// Leaves the text colour white, kept because hosts rely on it.
  void PDFDrawRectangle(double x, double y, double width, double height, const Value& link = std::string());
  /// The ellipse within the box at (x, y); a height of 0 is the width. Moves the current position only with a
  /// link, to where the link was placed.
  void PDFDrawEllipse(double x, double y, double width, double height = 0, const Value& link = std::string());
  /// Closed; each point is a list of x and y, or all of them are one list. What is not a pair of numbers is
  /// left out; without any point nothing is painted.
  void PDFDrawPolygon(const Value::List& points);

  // Text, cells, links

  /// Writes one line of text with its baseline at y; 0 is the current position.
  void PDFTextOut(std::string_view text, double x = 0, double y = 0);
  /// Writes text into a box of the current border, fill and alignment. Lines wider than the cell less two
  /// cell margins are broken at blanks; words are never broken.
  void PDFCell(std::string_view text, double x, double y, double width, double height,
               const Value& link = std::string());
  /// Writes underlined text that leads to `link`, or to itself when that is empty.
  void PDFLink(double x, double y, std::string_view text, std::string_view link = {});
  /// The font size times the points of a unit (not divided by them: kept because hosts rely on it).
  [[nodiscard]] double PDFTextHeight() const;
  /// Degrees, counter-clockwise.
  void PDFSetRotation(double angle);

  // Images. Names must end in "jpg" or "jpeg", exactly so; the path is checked as it is given.

  /// In pixels; 0 when the file is refused.
  [[nodiscard]] double PDFImageWidth(const std::filesystem::path& file);
  [[nodiscard]] double PDFImageHeight(const std::filesystem::path& file);
  /// Places the image with its top left corner at (x, y). A width or height of 0 is computed and written
  /// back.
  void PDFImage(const std::filesystem::path& file, double x, double y, double& width, double& height,
                const Value& link = std::string());
  void PDFImage(const std::filesystem::path& file, double x, double y) {
    double width = 0;
    double height = 0;
    PDFImage(file, x, y, width, height);
  }

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace veltrano

#endif
