#include <gtest/gtest.h>

#include <array>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::holds;
using tests::objectText;
using tests::objectWith;

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
