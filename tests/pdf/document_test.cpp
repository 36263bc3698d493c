// Settings of a document, and what is put together when it ends.

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <sstream>
#include <tuple>

#include "pdf/assembly/outline.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano::tests {
namespace {

using Assembly = PdfTest;
using Size = std::pair<double, double>;
using Numbers = std::vector<double>;

class Settings : public PdfTest {
 protected:
  Numbers margins() {
    return {pdf.PDFGetLeftMargin(), pdf.PDFGetTopMargin(), pdf.PDFGetRightMargin(), pdf.PDFGetBottomMargin(),
            pdf.PDFGetCellMargin()};
  }
  Size size() { return {pdf.PDFGetPageWidth(), pdf.PDFGetPageHeight()}; }
};

TEST_F(Settings, MarginsRoundTiesToEvenAndRefuseWhatDoesNotFit) {
  constexpr Size rows[] = {{2.5, 2},         {1.5, 2},        {-2.5, -2},  {32767.4, 32767},
                           {32767.5, 32767}, {-40000, 32767}, {NAN, 32767}};
  for (const auto& [given, stored] : rows) {
    pdf.PDFSetLeftMargin(given);
    pdf.PDFSetCellMargin(given);
    EXPECT_EQ(margins(), (Numbers{stored, 1, 1, 1, stored})) << given;
  }
  pdf.PDFSetMargins(2, 3);  // omitted ones follow their opposites
  EXPECT_EQ(margins(), (Numbers{2, 3, 2, 3, 32767}));
  pdf.PDFSetMargins(2, 3, 4, 5);
  pdf.PDFSetTopMargin(11);
  EXPECT_EQ(margins(), (Numbers{2, 11, 4, 5, 32767}));
  pdf.PDFSetRightMargin(12);
  pdf.PDFSetBottomMargin(13);
  EXPECT_EQ(margins(), (Numbers{2, 11, 12, 13, 32767}));
}

TEST_F(Settings, UnitsAndViewerSettingsFallBack) {
  constexpr std::tuple<int, const char*, const char*> units[] = {
      {UNIT_MM, "mm", ""}, {UNIT_PT, "pt", ""}, {3, "cm", "Incorrect Unit|"}, {UNIT_CM, "cm", ""}};
  for (const auto& [unit, name, error] : units) {
    pdf.PDFSetUnit(unit);
    EXPECT_EQ(pdf.PDFGetUnit() + takeErrors(), std::string(name) + error);
  }
  for (const int layout : {1, 2, 3, 4, -1}) {
    const bool known = layout >= 1 && layout <= 3;
    pdf.PDFSetLayoutMode(layout);
    EXPECT_EQ(pdf.PDFGetLayoutMode(), Value(known ? layout : 0));
    EXPECT_EQ(takeErrors(), known ? "" : "Incorrect Layout|");
  }
  const std::pair<Value, bool> zooms[] = {{ZOOM_REAL, true}, {33.3, true},    {{}, true},
                                          {"150", false},    {Null(), false}, {Value::List{1}, false}};
  for (const auto& [zoom, known] : zooms) {
    pdf.PDFSetZoomMode(zoom);
    EXPECT_EQ(pdf.PDFGetZoomMode(), known ? zoom : Value(0));
    EXPECT_EQ(takeErrors(), known ? "" : "Zoom mode incorrect.|");
  }
}

TEST_F(Settings, PageFormatsAreCodesOrSizes) {
  const Size a4(595.28, 841.89);
  const std::string code = "Invalid Page Code Format|", type = "Incorrect Page Code|";
  const std::tuple<Value, Size, std::string> rows[] = {{FORMAT_A4, a4, ""},
                                                       {FORMAT_A3, {841.89, 1190.55}, ""},
                                                       {FORMAT_A5, {420.94, 595.28}, ""},
                                                       {FORMAT_LETTER, {612, 792}, ""},
                                                       {FORMAT_LEGAL, {612, 1008}, ""},
                                                       {Value::Doubles{300, 400}, {300, 400}, ""},
                                                       {Value::List{300, 400.5}, {300, 400.5}, ""},
                                                       {Value::Doubles{9}, {9, 400.5}, ""},
                                                       {5, a4, code},
                                                       {std::int64_t{1} << 40, a4, code},
                                                       {Value::List{300, "400"}, a4, type},
                                                       {1.0, a4, type}};
  for (const auto& [format, expected, messages] : rows) {
    if (!messages.empty()) pdf.PDFFormatPage(FORMAT_A3);
    pdf.PDFFormatPage(format);
    EXPECT_EQ(size(), expected);
    EXPECT_EQ(takeErrors(), messages);
  }
  pdf.PDFOrientation(ORIENT_PAYSAGE);  // rounds, and swaps for landscape only
  EXPECT_EQ(size(), Size(842, 595));
  pdf.PDFOrientation(ORIENT_PORTRAIT);
  EXPECT_EQ(size(), Size(842, 595));
  pdf.PDFPageWidth(50000.5);  // a side beyond 16 bits keeps its value
  pdf.PDFPageHeight(594.5);
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  EXPECT_EQ(size(), Size(594, 50000.5));
}

TEST_F(Settings, InitResetsWhatItResetsAndKeepsTheRest) {
  pdf.PDFTitle("kept");
  pdf.PDFAuthor("dropped");
  pdf.PDFSetMargins(5, 6, 7, 8);
  pdf.PDFFormatPage(FORMAT_A3);
  pdf.PDFSetLineColor(COLOR_ROUGE);
  pdf.PDFSetLayoutMode(LAYOUT_TWO);
  pdf.PDFBeginDoc();
  pdf.PDFDrawLine(0, 0, 9, 9);
  pdf.PDFInit();
  EXPECT_EQ(pdf.PDFGetUnit(), "cm");
  EXPECT_EQ(margins(), (Numbers{1, 1, 1, 1, 3}));
  EXPECT_EQ(size(), Size(595.28, 841.89));
  EXPECT_EQ(Size(pdf.PDFGetX(), pdf.PDFGetY()), Size(1, 1));
  EXPECT_EQ(pdf.PDFNbPage(), 0);
  EXPECT_EQ(pdf.PDFGetLayoutMode(), Value(2));
  EXPECT_EQ(finish(), "") << "the open document is given up";
  pdf.PDFBeginDoc();
  pdf.PDFDrawLine(0, 0, 0, 0);
  const std::string file = finish();
  EXPECT_EQ(countOf(file, "%PDF-1.0"), 1U) << "nothing of the first document is left";
  EXPECT_TRUE(holds(file, "/Title (kept)") && holds(file, "/Author ()"));
  EXPECT_TRUE(holds(pageContent(file, 1), "\r\n0 G\r\n16.07 w S\r\n"));
}

TEST_F(Assembly, CatalogFollowsTheViewerSettings) {
  const std::string fit = "/OpenAction [3 0 R /Fit]\r\n", single = "/PageLayout /SinglePage\r\n";
  const std::pair<Draw, std::string> rows[] = {
      {[](auto&) {}, fit + single},
      {[](auto& doc) { doc.PDFSetZoomMode(ZOOM_FULLWIDTH); }, "/OpenAction [3 0 R /FitH null]\r\n" + single},
      {[](auto& doc) { doc.PDFSetZoomMode(ZOOM_REAL); }, "/OpenAction [3 0 R /XYZ null null 1]\r\n" + single},
      {[](auto& doc) { doc.PDFSetZoomMode(ZOOM_DEFAULT); },
       "/OpenAction [3 0 R /XYZ null null 0.03]\r\n" + single},
      {[](auto& doc) { doc.PDFSetLayoutMode(LAYOUT_CONTINOUS); }, fit + "/PageLayout /OneColumn\r\n"},
      {[](auto& doc) { doc.PDFSetLayoutMode(LAYOUT_DEFAULT); }, fit},
      {[](auto& doc) { doc.PDFSetViewerPreferences(123456); },
       fit + single +
           lines({"/ViewerPreferences<<", "/HideMenubar true", "/HideToolbar true", "/HideWindowUI true",
                  "/DisplayDocTitle true", "/CenterWindow true", "/FitWindow true", ">>"})}};
  for (const auto& [set, expected] : rows)
    EXPECT_TRUE(holds(fileOf(set), " 0 R\r\n" + expected + ">>\r\nendobj"));
}

TEST_F(Assembly, SecondDocumentFollowsTheFirstUnlessTheFileNameIsSetAgain) {
  pdf.PDFBeginDoc();
  pdf.PDFNewPage();
  const std::string first = finish();
  pdf.PDFBeginDoc();
  EXPECT_EQ(readWholeFile(file()), first) << "untouched until the end";
  const std::string both = finish();
  ASSERT_TRUE(both.starts_with(first + "%PDF-1.0\r\n%DEBUT_OBJ/%\r\n1 0 obj"));
  EXPECT_TRUE(holds(both.substr(first.size()), "/Count 1\r\n")) << "its numbering starts anew";
  begin();
  EXPECT_EQ(countOf(finish(), "%PDF-1.0"), 1U);
  pdf.PDFFileName(folder.path());
  pdf.PDFBeginDoc();
  pdf.PDFEndDoc();
  EXPECT_EQ(errors, "");
}

TEST_F(Assembly, NothingHappensWithoutAnOpenDocument) {
  pdf.PDFNewPage();
  EXPECT_EQ(finish(), "");
  pdf.PDFDrawLine(0, 0, 0, 0);
  pdf.PDFBeginDoc();
  const std::string once = finish();
  EXPECT_TRUE(holds(pageContent(once, 1), "%DEBUT_LN/%")) << "drawing before belongs to the first page";
  pdf.PDFNewPage();
  EXPECT_EQ(finish(), once) << "ended twice";
  EXPECT_EQ(pdf.PDFPageNumber(), 1);
  pdf.PDFBeginDoc();
  pdf.PDFTextOut("given up", 1, 1);
  pdf.PDFLink(1, 1, "gone");
  begin();
  pdf.PDFDrawLine(0, 0, 0, 0);
  const std::string file = finish();
  EXPECT_TRUE(pageContent(file, 1).starts_with("%DEBUT_LN/%"));
  EXPECT_FALSE(holds(file, "/Annots"));
}

TEST_F(Assembly, ManyPagesComeOutRight) {
  pdf.PDFBeginDoc();
  for (int page = 2; page <= 40000; ++page) pdf.PDFNewPage();
  EXPECT_EQ(std::pair(pdf.PDFPageNumber(), pdf.PDFNbPage()),
            (std::pair<std::int16_t, std::int16_t>(32767, 32767)));
  const std::string file = finish();
  EXPECT_TRUE(holds(file, "/Count 40000\r\n") && holds(file, "/Contents 80000 0 R\r\n"));
}

TEST_F(Assembly, WatermarkIsDrawnOnEachFurtherPageAndAtTheEnd) {
  pdf.PDFFiligran("DRAFT");
  pdf.PDFSetUnit(UNIT_CM);
  pdf.PDFBeginDoc();
  pdf.PDFNewPage();
  const std::string file = finish();
  EXPECT_EQ(pageContent(file, 1), "");
  // 163.9 points wide; the place is computed with sine and cosine of 45 radians, 0.8509 and 0.5253.
  EXPECT_EQ(countOf(pageContent(file, 2),
                    "q 1.000 0.753 0.796 rg \r\n%DEBUT_TEXT/%\r\nBT\r\n"
                    "0.707 0.707 -0.707 0.707 185.16 385.45 Tm\r\n/F13 50 Tf\r\n(DRAFT) Tj\r\n"),
            2U);
}

TEST_F(Assembly, OutlineNestsByLevel) {
  const std::pair<std::vector<std::int16_t>, const char*> rows[] = {
      // A skipped level hangs on the nearest shallower item: 0(1 2(3)) 4. Parent, prev, next, first, last:
      {{0, 2, 1, 2, 0}, "-1 -1 4 1 2, 0 -1 2 -1 -1, 0 1 -1 3 3, 2 -1 -1 -1 -1, -1 0 -1 -1 -1, "},
      // With nothing shallower before it, an item is at the top: 0 1(2) 3.
      {{3, 2, 5, -7}, "-1 -1 1 -1 -1, -1 0 3 2 2, 1 -1 -1 -1 -1, -1 1 -1 -1 -1, "}};
  for (const auto& [levels, expected] : rows) {
    std::vector<Bookmark> bookmarks;
    for (const std::int16_t level : levels) bookmarks.push_back({"", level, 0, 1});
    std::ostringstream found;
    for (const auto& [parent, prev, next, first, last] : linkOutline(bookmarks))
      found << parent << ' ' << prev << ' ' << next << ' ' << first << ' ' << last << ", ";
    EXPECT_EQ(found.str(), expected);
  }
}

TEST_F(Assembly, OutlineOfAnEarlierDocumentPointsIntoThisOne) {
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFUseOutlines(true);
  pdf.PDFSetBookmark("before any page", 70000, 25.4);  // a level beyond 16 bits is 0
  pdf.PDFBeginDoc();
  const std::string alone = finish();
  EXPECT_FALSE(holds(alone, "/Type /Outlines")) << "an outline needs two bookmarks";
  EXPECT_TRUE(holds(alone, "/Outlines 1 0 R\r\n"));
  pdf.PDFUseOutlines(false);
  begin();
  pdf.PDFNewPage();
  pdf.PDFSetBookmark("second page", 1, 25.4);
  finish();
  begin();
  const std::string file = finish();
  const std::string page = std::to_string(objectWith(file, "/Type /Page\r\n"));
  const int item = objectWith(file, "before any page");
  for (const int object : {item, item + 1})
    EXPECT_TRUE(holds(objectText(file, object), "/Dest [" + page + " 0 R /XYZ 0 769.89 null]"));
  const std::string top = std::to_string(item) + " 0 R";
  EXPECT_TRUE(holds(file, "<</Type /Outlines /First " + top + "\r\n/Last " + top + ">>"));
  EXPECT_FALSE(holds(file, "\r\n/Outlines ")) << "written, but not named unless asked for";
}

/// Any order of calls with any numbers leads to nothing worse than an odd document.
TEST_F(Assembly, CallsInEveryOrder) {
  const double numbers[] = {0, -1, 1, 2.5, 1e6, -1e300, 1e308, std::nan(""), INFINITY, 32767.5};
  const Value nested = Value::List{1, "b", Value::List{1}}, none = Null(), object = Opaque();
  const Value values[] = {{}, none, object, 5, -70000, 1e300, "#12x", "text", nested, "#F0F0", true};
  const std::string longText = std::string(2000, 'x') + " some\r\ntext";
  std::mt19937 random(20261121);
  const auto any = [&](std::size_t count) { return static_cast<int>(random() % count); };
  const auto n = [&] { return numbers[any(std::size(numbers))]; };
  const auto value = [&] { return values[any(std::size(values))]; };
  const Draw calls[] = {[](auto& doc) { doc.PDFBeginDoc(); },
                        [](auto& doc) { doc.PDFNewPage(); },
                        [](auto& doc) { doc.PDFEndDoc(); },
                        [&](auto& doc) { doc.PDFOrientation(any(4)); },
                        [&](auto& doc) { doc.PDFSetUnit(any(4)); },
                        [&](auto& doc) { doc.PDFPageHeight(n()); },
                        [&](auto& doc) { doc.PDFSetBookmark("b", any(5) - 1, n()); },
                        [&](auto& doc) { doc.PDFSetLineWidth(n()); },
                        [&](auto& doc) { doc.PDFSetRotation(n()); },
                        [&](auto& doc) { doc.PDFSetDrawColor(value()); },
                        [&](auto& doc) { doc.PDFDrawRectangle(n(), n(), n(), n(), value()); },
                        [&](auto& doc) { doc.PDFDrawEllipse(n(), n(), n(), n(), value()); },
                        [&](auto& doc) {
                          doc.PDFDrawPolygon({nested, value()});
                        },
                        [&](auto& doc) { doc.PDFDrawLineHor(n(), n(), n()); },
                        [&](auto& doc) { doc.PDFTextOut("text", n(), n()); },
                        [&](auto& doc) { doc.PDFSetAlignement(any(4)); },
                        [&](auto& doc) { doc.PDFCell(longText, n(), n(), n(), n(), value()); },
                        [&](auto& doc) { doc.PDFLink(n(), n(), "here", "there"); }};
  for (int round = 0; round < 40; ++round) {
    pdf.PDFBeginDoc();
    for (int call = 0; call < 200; ++call) calls[any(std::size(calls))](pdf);
    const std::string file = finish();
    EXPECT_TRUE(file.starts_with("%PDF-1.0\r\n") && file.ends_with("%%EOF\r\n"));
    EXPECT_EQ(countOf(file, "nan") + countOf(file, "inf"), 0U);
  }
}

}  // namespace
}  // namespace veltrano::tests
