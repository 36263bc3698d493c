#ifndef VELTRANO_PDF_VELTRANO_PDF_H
#define VELTRANO_PDF_VELTRANO_PDF_H

// A PDF document, built in memory page by page and written to a file at its end.
//
//   veltrano::VeltranoPDF pdf;
//   pdf.PDFFileName("report.pdf");
//   pdf.PDFBeginDoc();
//   pdf.PDFSetFont(veltrano::FONT_ARIAL, 12);
//   pdf.PDFTextOut("Hello", 2, 2);
//   pdf.PDFEndPage();  // the geometry moves on: formats and orientations set now are the next page's
//   pdf.PDFNewPage();
//   pdf.PDFEndDoc();
//
// Text is ANSI text (base/code_page.h), file names are paths. Positions and lengths are user units, from the
// top left of the page downwards, unless points are named. Properties are functions of the name that hosts
// see; a put takes the value, a get returns it. Where a member looks at the kind of a value before it
// converts it, it takes a Value.
//
// Nothing here reports failure except through onError. A rejected argument is replaced as the member says;
// any other fault inside a member (an overflow, a number that is not finite) skips that step, and the steps
// after it still run. Only memory exhaustion leaves a member as an exception. One object is for one thread at
// a time.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/value.h"
#include "pdf/assembly/bookmarks.h"
#include "pdf/assembly/document_assembly.h"
#include "pdf/document/page_geometry.h"
#include "pdf/document/settings.h"
#include "pdf/enumerations.h"
#include "pdf/fonts/fonts.h"
#include "pdf/graphics/graphics_state.h"
#include "pdf/images/images.h"
#include "pdf/text/line_breaking.h"
#include "pdf/text/links.h"
#ifdef VELTRANO_INSTALLED
#include "base/os/installed.h"
#endif

namespace veltrano {

class VeltranoPDF {
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

  /// Also empties the output: without it a second document is appended to the first, as hosts rely on. To be
  /// set before PDFBeginDoc.
  void PDFFileName(const std::filesystem::path& file);
  /// Always empty: it reads a field that no member sets. Kept as hosts know it.
  [[nodiscard]] std::string PDFGetFileName() const;

  /// Accepted and without effect: the file is replaced without asking and is not opened afterwards.
  void PDFConfirm(bool confirm);
  void PDFView(bool view);
  void JustPictures(bool pictures);

  /// A text that is drawn diagonally across the pages.
  void PDFFiligran(std::string_view text);

  /// PDFZoomMd or a factor in per cent. "Zoom mode incorrect." and 0 for what is no number.
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

  /// Starts a document and its first page.
  void PDFBeginDoc();
  /// Closes the page and begins the next one. Does nothing when no document is open.
  void PDFNewPage();
  /// Moves the geometry on to the next page, which takes the size of the one before.
  void PDFEndPage();
  /// Finishes the document and puts it in place of the file, whole or not at all. Does nothing when none is
  /// open.
  void PDFEndDoc();
  /// Number of the page being written, and of the pages begun. Documents may have more pages than 16 bits
  /// count: from page 32767 on both stay at 32767.
  [[nodiscard]] std::int16_t PDFPageNumber() const;
  [[nodiscard]] std::int16_t PDFNbPage() const;

  // Bookmarks

  /// Marks `y` on the page being written; -1 is the current position. Always returns an empty value.
  Value PDFSetBookmark(std::string_view text, std::int32_t level = 0, double y = -1);

  // Fonts

  /// Adds the fonts whose metrics `folder` holds and makes it the metrics folder when it holds any.
  void PDFLoadAfm(const std::filesystem::path& folder);
  /// PDFFontNme, size in points, digits of PDFFontStl. "Invalid Fort " and "TimesRoman" for other fonts.
  void PDFSetFont(std::int32_t font, std::int16_t size, std::int32_t style = FONT_NORMAL);
  /// Width in points at `size` points: 0 when the size is left out. An empty name is the current font.
  [[nodiscard]] double PDFGetStringWidth(std::string_view text, std::string_view fontName = {},
                                         std::int16_t size = 0);

  // Graphics state

  /// A colour is a number (PDFColorValue), "#RRGGBB" or a list of red, green and blue from 0 to 255. A text
  /// of another form is black and reported: "Invalid Text Color", "Invalid Line Color", "Invalide Draw
  /// Color".
  void PDFSetTextColor(const Value& color);
  void PDFSetLineColor(const Value& color);
  void PDFSetDrawColor(const Value& color);
  /// Always empty, as hosts know them.
  [[nodiscard]] std::string PDFGetTextColor() const;
  [[nodiscard]] std::string PDFGetLineColor() const;
  [[nodiscard]] std::string PDFGetDrawColor() const;
  void PDFSetLineWidth(double width);
  /// PDFStyleLgn, in the unit of now. "Incorrect Line Style" and no operator for others.
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

  // Drawing. A link that is no text raises "Unable to include this link"; an empty one is none.

  /// Also turns the fill colour into the line colour, as hosts rely on; so does PDFDrawLineVer.
  void PDFDrawLineHor(double x, double y, double width);
  void PDFDrawLineVer(double x, double y, double height);
  void PDFDrawLine(double x1, double y1, double x2, double y2);
  /// Leaves the text colour white, as hosts rely on.
  void PDFDrawRectangle(double x, double y, double width, double height, const Value& link = std::string());
  /// The ellipse within the box at (x, y); a height of 0 is the width.
  void PDFDrawEllipse(double x, double y, double width, double height = 0, const Value& link = std::string());
  /// Closed; each point is a list of x and y.
  void PDFDrawPolygon(const Value::List& points);

  // Text, cells, links

  /// Writes one line of text with its baseline at y; 0 is the current position.
  void PDFTextOut(std::string_view text, double x = 0, double y = 0);
  /// Writes text into a box of the current border, fill and alignment, broken to its width.
  void PDFCell(std::string_view text, double x, double y, double width, double height,
               const Value& link = std::string());
  /// Writes underlined text that leads to `link`, or to itself when that is empty.
  void PDFLink(double x, double y, std::string_view text, std::string_view link = {});
  /// The font size times the points of a unit (not divided by them: kept as hosts know it).
  [[nodiscard]] double PDFTextHeight() const;
  /// Degrees, counter-clockwise.
  void PDFSetRotation(double angle);

  // Images. Names must end in "jpg" or "jpeg", exactly so; the path is looked at as it is given.

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
  /// Reports a rejected argument. The handler may change the whole object: nothing may be held across this
  /// call.
  void raise(std::string_view message);

  // Assembly (assembly.cpp, document_objects.cpp).
  void beginPage();
  void closePage();
  void drawWatermark();
  void writeInformation();
  std::vector<int> writeFonts();
  void writePagesTree();
  void writeResources(const std::vector<int>& fontObjects);
  void writeImages();
  void writePages();
  void writeOutline();
  void writeCatalog();
  /// Object number of a page of the document being finished.
  [[nodiscard]] int pageObject(int page) const;

  // Drawing (drawing.cpp).
  void copyLineColorToFill();
  /// A line that leaves its colour as the fill colour and the current position at its end; `marker` names it.
  void drawStraightLine(std::string_view marker, double x1, double y1, double x2, double y2);
  void appendEllipse(double x, double y, double width, double height);
  void appendPaintColors();
  void appendLineWidth(std::string_view operators);
  void placeShapeLink(const Value& link, const LinkShape& shape);

  // Fonts (fonts.cpp).
  void findFontNumber();

  // Text (text.cpp).
  /// Sets the current position. A coordinate that is not finite leaves the one of before.
  void moveTo(double x, double y);
  void appendColorStart();
  void appendColorEnd();
  /// Font, text and "ET": what follows the position of a text.
  void appendTextOperators(std::string_view text);

  // Cells (cells.cpp).
  struct CellFrame;
  [[nodiscard]] std::vector<TextLine> breakCellText(const CellFrame& frame, std::string_view text) const;
  void appendCellLine(const CellFrame& frame, const TextLine& line, std::size_t index);
  void appendCellBox(const CellFrame& frame, std::size_t index);
  void appendCellEdges(const CellFrame& frame);
  [[nodiscard]] double cellTextOffset(const CellFrame& frame, double textWidth) const;

  // Links (links.cpp).
  /// Places a link over `shape`, whose text position is (x, y).
  void placeLink(const Value& link, const LinkShape& shape, double x, double y);
  void recordLink(LinkEntry area, std::string_view target);

  // Images (images.cpp).
  std::optional<ImageRecord> parseJpegFile(const std::filesystem::path& file);
  std::optional<ImageRecord> scanForSize(const std::filesystem::path& file, std::string_view refusal);

  DocumentSettings settings_;
  PageGeometry geometry_;
  Assembly assembly_;
  BookmarkList bookmarks_;
  FontState fonts_;
  GraphicsState graphics_;
  LinkState links_;
  ImageTable images_;
};

}  // namespace veltrano

#endif
