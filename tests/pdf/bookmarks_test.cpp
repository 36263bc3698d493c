#include <gtest/gtest.h>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::lines;
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
      if (parent >= 0 && at(item).next < 0) {
        EXPECT_EQ(at(parent).last, item);
      }
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

TEST(Outline, IsWrittenBetweenPagesAndCatalog) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  pdf.PDFUseOutlines(true);
  pdf.PDFBeginDoc();
  pdf.PDFDrawLineHor(0, 41.89, 1);
  EXPECT_TRUE(pdf.PDFSetBookmark("One (").isEmpty());  // at the current position
  pdf.PDFEndPage();
  pdf.PDFFormatPage(Value::Doubles{200, 100});
  pdf.PDFNewPage();
  pdf.PDFSetBookmark("Two", 1, 0);
  pdf.PDFSetBookmark("Three", 70000, 30);  // a level beyond 16 bits is 0
  const std::string file = document.finish();

  const int first = objectWith(file, "/Title (One");
  const int page = objectWith(file, "/Type /Page\r\n");
  const auto ref = [](int object) { return std::to_string(object) + " 0 R"; };
  EXPECT_EQ(first, page + 2);
  EXPECT_EQ(objectText(file, first),
            lines({"<</Title (One ()", "/Parent " + ref(first + 3), "/Next " + ref(first + 2),
                   "/First " + ref(first + 1), "/Last " + ref(first + 1),
                   "/Dest [" + ref(page) + " /XYZ 0 800.00 null]", "/Count 0>>"}));
  EXPECT_EQ(objectText(file, first + 1),
            lines({"<</Title (Two)", "/Parent " + ref(first),
                   "/Dest [" + ref(page + 1) + " /XYZ 0 100.00 null]", "/Count 0>>"}));
  EXPECT_EQ(objectText(file, first + 2),
            lines({"<</Title (Three)", "/Parent " + ref(first + 3), "/Prev " + ref(first),
                   "/Dest [" + ref(page + 1) + " /XYZ 0 70.00 null]", "/Count 0>>"}));
  EXPECT_EQ(objectText(file, first + 3),
            lines({"<</Type /Outlines /First " + ref(first), "/Last " + ref(first + 2) + ">>"}));
  EXPECT_EQ(objectWith(file, "/Type /Catalog"), first + 4);
  EXPECT_NE(
      objectText(file, first + 4).find("/Outlines " + ref(first + 3) + "\r\n/PageMode /UseOutlines\r\n"),
      std::string::npos);
}

TEST(Outline, NeedsTwoBookmarks) {
  Document document;
  document.pdf.PDFUseOutlines(true);
  document.pdf.PDFBeginDoc();
  document.pdf.PDFSetBookmark("alone");
  const std::string file = document.finish();
  EXPECT_EQ(file.find("/Type /Outlines"), std::string::npos);
  EXPECT_NE(file.find("/Outlines 1 0 R\r\n"), std::string::npos);
}

TEST(Outline, BookmarksOfAnEarlierDocumentPointIntoThisOne) {
  Document document;
  document.pdf.PDFSetBookmark("before any page");
  document.pdf.PDFBeginDoc();
  document.pdf.PDFNewPage();
  document.pdf.PDFNewPage();
  document.pdf.PDFSetBookmark("third page");
  document.finish();
  document.pdf.PDFFileName(document.file());
  document.pdf.PDFBeginDoc();
  const std::string file = document.finish();
  const std::string destination =
      "/Dest [" + std::to_string(objectWith(file, "/Type /Page\r\n")) + " 0 R /XYZ";
  EXPECT_NE(objectText(file, objectWith(file, "(before any page)")).find(destination), std::string::npos);
  EXPECT_NE(objectText(file, objectWith(file, "(third page)")).find(destination), std::string::npos);
  EXPECT_EQ(file.find("\r\n/Outlines "), std::string::npos) << "written, but not named unless asked for";
}

}  // namespace
}  // namespace veltrano
