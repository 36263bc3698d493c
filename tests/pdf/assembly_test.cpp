#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "pdf/assembly/outline.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::countOf;
using tests::Document;
using tests::holds;
using tests::objectText;
using tests::objectWith;
using tests::pageContent;

TEST(Assembly, CatalogFollowsTheViewerSettings) {
  const auto zoom = [](const Value& mode) { return [mode](VeltranoPDF& pdf) { pdf.PDFSetZoomMode(mode); }; };
  const auto layout = [](int mode) { return [mode](VeltranoPDF& pdf) { pdf.PDFSetLayoutMode(mode); }; };
  const std::string fit = "/OpenAction [3 0 R /Fit]\r\n";
  const std::string single = "/PageLayout /SinglePage\r\n";
  const std::pair<std::function<void(VeltranoPDF&)>, std::string> rows[] = {
      {[](VeltranoPDF&) {}, fit + single},
      {zoom(ZOOM_FULLWIDTH), "/OpenAction [3 0 R /FitH null]\r\n" + single},
      {zoom(ZOOM_REAL), "/OpenAction [3 0 R /XYZ null null 1]\r\n" + single},
      {zoom(ZOOM_DEFAULT), "/OpenAction [3 0 R /XYZ null null 0.03]\r\n" + single},
      {layout(LAYOUT_CONTINOUS), fit + "/PageLayout /OneColumn\r\n"},
      {layout(LAYOUT_DEFAULT), fit},
      {[](VeltranoPDF& pdf) { pdf.PDFSetViewerPreferences(123456); },
       fit + single +
           tests::lines({"/ViewerPreferences<<", "/HideMenubar true", "/HideToolbar true",
                         "/HideWindowUI true", "/DisplayDocTitle true", "/CenterWindow true",
                         "/FitWindow true", ">>"})},
  };
  for (const auto& [set, expected] : rows) {
    EXPECT_TRUE(holds(tests::fileOf(set), " 0 R\r\n" + expected + ">>\r\nendobj"));
  }
}

TEST(Assembly, SecondDocumentFollowsTheFirstUnlessTheFileNameIsSetAgain) {
  Document document;
  document.pdf.PDFBeginDoc();
  document.pdf.PDFNewPage();
  const std::string first = document.finish();
  document.pdf.PDFBeginDoc();
  EXPECT_EQ(readWholeFile(document.file()), first) << "untouched until the end";
  const std::string both = document.finish();
  ASSERT_TRUE(both.starts_with(first + "%PDF-1.0\r\n%DEBUT_OBJ/%\r\n1 0 obj"));
  EXPECT_TRUE(holds(both.substr(first.size()), "/Count 1\r\n")) << "its numbering starts anew";

  document.pdf.PDFFileName(document.file());
  document.pdf.PDFBeginDoc();
  EXPECT_EQ(countOf(document.finish(), "%PDF-1.0"), 1U);

  const auto taken = document.folder / "a folder";
  std::filesystem::create_directory(taken);
  document.pdf.PDFFileName(taken);
  document.pdf.PDFBeginDoc();
  document.pdf.PDFEndDoc();
  EXPECT_TRUE(std::filesystem::is_empty(taken) && document.errors.empty());
}

TEST(Assembly, ADocumentGivenUpTakesItsUnfinishedPageWithIt) {
  Document document;
  document.pdf.PDFBeginDoc();
  document.pdf.PDFTextOut("abandoned", 1, 1);
  document.pdf.PDFLink(1, 1, "gone");
  document.pdf.PDFFileName(document.file());
  document.pdf.PDFBeginDoc();
  document.pdf.PDFDrawLine(0, 0, 0, 0);
  const std::string file = document.finish();
  EXPECT_TRUE(pageContent(file, 1).starts_with("%DEBUT_LN/%"));
  EXPECT_FALSE(holds(file, "/Annots"));
}

TEST(Assembly, NothingHappensWithoutAnOpenDocument) {
  Document document;
  document.pdf.PDFNewPage();
  EXPECT_EQ(document.finish(), "");
  document.pdf.PDFDrawLine(0, 0, 0, 0);
  document.pdf.PDFBeginDoc();
  const std::string file = document.finish();
  EXPECT_TRUE(holds(pageContent(file, 1), "%DEBUT_LN/%")) << "drawing before belongs to the first page";
  document.pdf.PDFNewPage();
  EXPECT_EQ(document.finish(), file) << "ended twice";
  EXPECT_EQ(document.pdf.PDFPageNumber(), 1);
}

TEST(Assembly, ManyPagesComeOutRight) {
  Document document;
  document.pdf.PDFBeginDoc();
  for (int page = 2; page <= 40000; ++page) {
    document.pdf.PDFEndPage();
    document.pdf.PDFNewPage();
  }
  EXPECT_EQ(document.pdf.PDFPageNumber(), 32767) << "as far as 16 bits go";
  EXPECT_EQ(document.pdf.PDFNbPage(), 32767);
  const std::string file = document.finish();
  EXPECT_TRUE(holds(file, "/Count 40000\r\n"));
  EXPECT_TRUE(holds(file, "/Contents 80000 0 R\r\n"));
}

TEST(Watermark, IsDrawnOnEachFurtherPageAndAtTheEnd) {
  Document document;
  document.pdf.PDFFiligran("DRAFT");
  document.pdf.PDFSetUnit(UNIT_CM);
  document.pdf.PDFBeginDoc();
  document.pdf.PDFNewPage();
  const std::string file = document.finish();
  EXPECT_EQ(pageContent(file, 1), "");
  // 163.9 points wide; the place is computed with sine and cosine of 45 radians, 0.8509 and 0.5253.
  EXPECT_EQ(countOf(pageContent(file, 2),
                    "q 1.000 0.753 0.796 rg \r\n%DEBUT_TEXT/%\r\nBT\r\n"
                    "0.707 0.707 -0.707 0.707 185.16 385.45 Tm\r\n"
                    "/F13 50 Tf\r\n(DRAFT) Tj\r\n"),
            2U);
}

TEST(Outline, NestsByLevel) {
  using Links = std::array<int, 5>;  // parent, prev, next, first, last
  const std::pair<std::vector<std::int16_t>, std::vector<Links>> rows[] = {
      {{}, {}},
      // A skipped level hangs on the nearest shallower item: 0(1 2(3)) 4.
      {{0, 2, 1, 2, 0},
       {{-1, -1, 4, 1, 2}, {0, -1, 2, -1, -1}, {0, 1, -1, 3, 3}, {2, -1, -1, -1, -1}, {-1, 0, -1, -1, -1}}},
      // With nothing shallower before it, an item is at the top: 0 1(2) 3.
      {{3, 2, 5, -7}, {{-1, -1, 1, -1, -1}, {-1, 0, 3, 2, 2}, {1, -1, -1, -1, -1}, {-1, 1, -1, -1, -1}}},
  };
  for (const auto& [levels, expected] : rows) {
    std::vector<Bookmark> bookmarks;
    for (const std::int16_t level : levels) bookmarks.push_back({"", level, 0, 1});
    std::vector<Links> found;
    for (const OutlineLinks& item : linkOutline(bookmarks)) {
      found.push_back({item.parent, item.prev, item.next, item.first, item.last});
    }
    EXPECT_EQ(found, expected);
  }
}

TEST(Outline, NeedsTwoBookmarks) {
  const auto file = tests::fileOf([](VeltranoPDF& pdf) {
    pdf.PDFUseOutlines(true);
    pdf.PDFSetBookmark("alone");
  });
  EXPECT_FALSE(holds(file, "/Type /Outlines"));
  EXPECT_TRUE(holds(file, "/Outlines 1 0 R\r\n"));
}

TEST(Outline, BookmarksOfAnEarlierDocumentPointIntoThisOne) {
  Document document;
  document.pdf.PDFSetUnit(UNIT_MM);
  document.pdf.PDFSetBookmark("before any page", 70000, 25.4);  // a level beyond 16 bits is 0
  document.pdf.PDFBeginDoc();
  document.pdf.PDFNewPage();
  document.pdf.PDFSetBookmark("second page", 1, 25.4);
  document.finish();
  document.pdf.PDFFileName(document.file());
  document.pdf.PDFBeginDoc();
  const std::string file = document.finish();
  const std::string page = std::to_string(objectWith(file, "/Type /Page\r\n"));
  const int item = objectWith(file, "before any page");
  for (const int object : {item, item + 1}) {
    EXPECT_TRUE(holds(objectText(file, object), "/Dest [" + page + " 0 R /XYZ 0 769.89 null]"));
  }
  const std::string top = std::to_string(item) + " 0 R";
  EXPECT_TRUE(holds(file, "<</Type /Outlines /First " + top + "\r\n/Last " + top + ">>"));
  EXPECT_FALSE(holds(file, "\r\n/Outlines ")) << "written, but not named unless asked for";
}

}  // namespace
}  // namespace veltrano
