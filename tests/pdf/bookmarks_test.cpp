#include <gtest/gtest.h>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::holds;
using tests::objectText;
using tests::objectWith;

/// The tree in brackets, each item as its position: "0(1 2)3".
std::string treeOf(std::initializer_list<int> levels) {
  std::vector<Bookmark> bookmarks;
  for (const int level : levels) bookmarks.push_back({"", static_cast<std::int16_t>(level), 0, 1});
  const std::vector<OutlineLinks> items = linkOutline(bookmarks);
  const auto at = [&](int item) { return items.at(static_cast<std::size_t>(item)); };
  std::size_t visited = 0;
  const auto show = [&](const auto& self, int item, int parent) -> std::string {
    std::string text;
    for (int prev = -1; item >= 0; prev = item, item = at(item).next) {
      EXPECT_EQ(at(item).parent, parent);
      EXPECT_EQ(at(item).prev, prev);
      ++visited;
      if (prev >= 0) text += ' ';
      text.append(std::to_string(item));
      if (at(item).first >= 0) text.append("(").append(self(self, at(item).first, item)).append(")");
      EXPECT_TRUE(parent < 0 || at(item).next >= 0 || at(parent).last == item);
    }
    return text;
  };
  std::string text = show(show, items.empty() ? -1 : 0, -1);
  EXPECT_EQ(visited, items.size()) << "every item hangs in the tree";
  return text;
}

TEST(Outline, NestsByLevel) {
  EXPECT_EQ(treeOf({}), "");
  EXPECT_EQ(treeOf({0, 0, 0}), "0 1 2");
  EXPECT_EQ(treeOf({0, 1, 1, 0, 1}), "0(1 2) 3(4)");
  EXPECT_EQ(treeOf({0, 2, 1, 2, 0}), "0(1 2(3)) 4") << "a skipped level hangs on the nearest shallower item";
  EXPECT_EQ(treeOf({3, 2, 5, 0, -7}), "0 1(2) 3 4") << "nothing shallower before: at the top";
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
  document.pdf.PDFSetBookmark("second page", 0, 25.4);
  document.finish();
  document.pdf.PDFFileName(document.file());
  document.pdf.PDFBeginDoc();
  const std::string file = document.finish();
  const std::string page = std::to_string(objectWith(file, "/Type /Page\r\n"));
  for (const char* text : {"before any page", "second page"}) {
    const std::string item = objectText(file, objectWith(file, text));
    EXPECT_TRUE(holds(item, "/Dest [" + page + " 0 R /XYZ 0 769.89 null]"));
    EXPECT_FALSE(holds(item, "/First"));
  }
  EXPECT_FALSE(holds(file, "\r\n/Outlines ")) << "written, but not named unless asked for";
}

}  // namespace
}  // namespace veltrano
