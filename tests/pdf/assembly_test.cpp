#include <gtest/gtest.h>

#include <sstream>

#include "pdf/assembly/outline.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano::tests {
namespace {

using Assembly = PdfTest;

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
                  "/DisplayDocTitle true", "/CenterWindow true", "/FitWindow true", ">>"})},
  };
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

  const auto taken = folder / "a folder";
  std::filesystem::create_directory(taken);
  pdf.PDFFileName(taken);
  pdf.PDFBeginDoc();
  pdf.PDFEndDoc();
  EXPECT_TRUE(std::filesystem::is_empty(taken) && errors.empty());
}

TEST_F(Assembly, ADocumentGivenUpTakesItsUnfinishedPageWithIt) {
  pdf.PDFBeginDoc();
  pdf.PDFTextOut("abandoned", 1, 1);
  pdf.PDFLink(1, 1, "gone");
  begin();
  pdf.PDFDrawLine(0, 0, 0, 0);
  const std::string file = finish();
  EXPECT_TRUE(pageContent(file, 1).starts_with("%DEBUT_LN/%"));
  EXPECT_FALSE(holds(file, "/Annots"));
}

TEST_F(Assembly, NothingHappensWithoutAnOpenDocument) {
  pdf.PDFNewPage();
  EXPECT_EQ(finish(), "");
  pdf.PDFDrawLine(0, 0, 0, 0);
  pdf.PDFBeginDoc();
  const std::string file = finish();
  EXPECT_TRUE(holds(pageContent(file, 1), "%DEBUT_LN/%")) << "drawing before belongs to the first page";
  pdf.PDFNewPage();
  EXPECT_EQ(finish(), file) << "ended twice";
  EXPECT_EQ(pdf.PDFPageNumber(), 1);
}

TEST_F(Assembly, ManyPagesComeOutRight) {
  pdf.PDFBeginDoc();
  for (int page = 2; page <= 40000; ++page) {
    pdf.PDFEndPage();
    pdf.PDFNewPage();
  }
  EXPECT_EQ(pdf.PDFPageNumber(), 32767) << "as far as 16 bits go";
  EXPECT_EQ(pdf.PDFNbPage(), 32767);
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
                    "0.707 0.707 -0.707 0.707 185.16 385.45 Tm\r\n"
                    "/F13 50 Tf\r\n(DRAFT) Tj\r\n"),
            2U);
}

TEST_F(Assembly, OutlineNestsByLevel) {
  const std::pair<std::vector<std::int16_t>, const char*> rows[] = {
      // parent, prev, next, first, last
      {{}, ""},
      // A skipped level hangs on the nearest shallower item: 0(1 2(3)) 4.
      {{0, 2, 1, 2, 0}, "-1 -1 4 1 2, 0 -1 2 -1 -1, 0 1 -1 3 3, 2 -1 -1 -1 -1, -1 0 -1 -1 -1, "},
      // With nothing shallower before it, an item is at the top: 0 1(2) 3.
      {{3, 2, 5, -7}, "-1 -1 1 -1 -1, -1 0 3 2 2, 1 -1 -1 -1 -1, -1 1 -1 -1 -1, "},
  };
  for (const auto& [levels, expected] : rows) {
    std::vector<Bookmark> bookmarks;
    for (const std::int16_t level : levels) bookmarks.push_back({"", level, 0, 1});
    std::ostringstream found;
    for (const auto& [parent, prev, next, first, last] : linkOutline(bookmarks))
      found << parent << ' ' << prev << ' ' << next << ' ' << first << ' ' << last << ", ";
    EXPECT_EQ(found.str(), expected);
  }
}

TEST_F(Assembly, OutlineNeedsTwoBookmarks) {
  pdf.PDFUseOutlines(true);
  pdf.PDFBeginDoc();
  pdf.PDFSetBookmark("alone");
  const std::string file = finish();
  EXPECT_FALSE(holds(file, "/Type /Outlines"));
  EXPECT_TRUE(holds(file, "/Outlines 1 0 R\r\n"));
}

TEST_F(Assembly, OutlineOfAnEarlierDocumentPointIntoThisOne) {
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFSetBookmark("before any page", 70000, 25.4);  // a level beyond 16 bits is 0
  pdf.PDFBeginDoc();
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

}  // namespace
}  // namespace veltrano::tests
