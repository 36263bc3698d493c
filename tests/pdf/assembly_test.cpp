#include <gtest/gtest.h>

#include <regex>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::lines;
using tests::objectText;
using tests::objectWith;
using tests::pageContent;

constexpr std::string_view a4Box = "/MediaBox [ 0 0 595.28 841.89]\r\n";

TEST(Assembly, InformationAndFirstPageAreTheFirstThreeObjects) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  pdf.PDFProducer("p");
  pdf.PDFAuthor("a\xE9");
  pdf.PDFCreator("c");
  pdf.PDFKeywords("k");
  pdf.PDFSubject("s");
  pdf.PDFTitle("unescaped (");
  pdf.PDFBeginDoc();
  pdf.PDFSetLineWidth(1);
  pdf.PDFDrawLine(0, 0, 1, 1);
  const std::string file = document.finish();
  const std::string information = std::regex_replace(
      objectText(file, 1), std::regex(R"(\(D:\d{4}[01]\d[0-3]\d[0-2]\d[0-5]\d[0-5]\d\))"), "(now)");
  EXPECT_EQ(information,
            lines({"<<", "/Producer (p)", "/Author (a\xE9)", "/CreationDate (now)", "/Creator (c)",
                   "/Keywords (k)", "/Subject (s)", "/Title (unescaped ()", "/ModDate ()", ">>"}));
  const std::string content =
      lines({"%DEBUT_LN/%", "0.00 841.89 m", "1.00 840.89 l", "0 G", "1.00 w S", "%FIN_LN/%"});
  EXPECT_EQ(objectText(file, 2),
            lines({"<< /Length 3 0 R", " >>", "stream"}) + content + lines({"endstream"}));
  // From the line after " >>" to the end of the object, less 27: 8 + 69 + 11 + 8 + 12 - 27.
  ASSERT_EQ(content.size(), 69U);
  EXPECT_EQ(objectText(file, 3), lines({"81"}));
}

TEST(Assembly, PositionsAreTwoCharactersShortForEachObject) {
  Document document;
  document.pdf.PDFBeginDoc();
  for (int page = 0; page < 5; ++page) {
    document.pdf.PDFDrawLine(1, 2, 3, page);
    document.pdf.PDFNewPage();
  }
  const std::string file = document.finish();
  const auto table = file.find("xref\r\n");
  ASSERT_NE(table, std::string::npos);
  std::size_t objects = 0;
  std::string entries = "0000000000 65535 f\r\n";
  for (std::size_t at = file.find("%DEBUT_OBJ/%"); at != std::string::npos;
       at = file.find("%DEBUT_OBJ/%", at + 1)) {
    ++objects;
    const std::string digits = std::to_string(at - 2 * objects);
    entries += std::string(10 - digits.size(), '0') + digits + " 00000 n\r\n";
  }
  const int catalog = static_cast<int>(objects);
  EXPECT_NE(objectText(file, catalog).find("/Type /Catalog"), std::string::npos) << "the last object";
  const std::string size = std::to_string(objects + 1);
  EXPECT_EQ(file.substr(table), lines({"xref", "0 " + size}) + entries +
                                    lines({"trailer", "<< /Size " + size,
                                           "/Root " + std::to_string(catalog) + " 0 R", "/Info 1 0 R", ">>",
                                           "startxref", std::to_string(table - 2 * (objects + 1)), "%%EOF"}));
}

TEST(Assembly, EveryPageKeepsItsOwnSizeAndContent) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  pdf.PDFBeginDoc();
  EXPECT_EQ(pdf.PDFPageNumber(), 1);
  pdf.PDFEndPage();
  EXPECT_EQ(pdf.PDFGetPageHeight(), 841.89) << "the next page starts with this one's size";
  pdf.PDFOrientation(ORIENT_PAYSAGE);  // before the page is begun
  pdf.PDFNewPage();
  pdf.PDFEndPage();
  pdf.PDFNewPage();
  pdf.PDFFormatPage(FORMAT_LETTER);  // after it
  pdf.PDFNewPage();                  // without PDFEndPage
  pdf.PDFFormatPage(Value::Doubles{100, 50});
  EXPECT_EQ(pdf.PDFPageNumber(), 4);
  EXPECT_EQ(pdf.PDFNbPage(), 4);
  const std::string file = document.finish();

  const int tree = objectWith(file, "/Type /Pages");
  const auto object = [&](int offset) { return std::to_string(tree + offset) + " 0 R"; };
  EXPECT_EQ(objectText(file, tree), lines({"<< /Type /Pages", "/Kids [", object(2), object(3), object(4),
                                           object(5), "]", "/Count 4", ">>"}));
  const std::string_view boxes[] = {a4Box, "/MediaBox [ 0 0 842.00 595.00]\r\n",
                                    "/MediaBox [ 0 0 612.00 792.00]\r\n",
                                    "/MediaBox [ 0 0 100.00 50.00]\r\n"};
  for (int page = 1; page <= 4; ++page) {
    EXPECT_EQ(objectText(file, tree + 1 + page),
              lines({"<< /Type /Page", "/Parent " + object(0)}) + std::string(boxes[page - 1]) +
                  lines({"/Resources " + object(1), "/Contents " + std::to_string(2 * page) + " 0 R", ">>"}));
  }
}

TEST(Assembly, ResourcesNameEveryFontAndNoImage) {
  Document document;
  document.pdf.PDFBeginDoc();
  const std::string file = document.finish();
  const int tree = objectWith(file, "/Type /Pages");
  std::string expected = lines({"<< /ProcSet [ /PDF /Text /ImageC]", "/XObject << ", ">>", "/Font << "});
  for (int object = 4; object < tree; ++object) {  // the fonts lie between the first page and the tree
    const std::string name = "/F" + std::to_string(object - 3);
    EXPECT_NE(objectText(file, object)
                  .find("<< /Type /Font\r\n/Subtype /Type1\r\n/Name " + name + "\r\n/BaseFont /"),
              std::string::npos);
    expected += name + " " + std::to_string(object) + " 0 R \r\n";
  }
  EXPECT_EQ(objectText(file, tree + 1), expected + lines({">>", ">>"}));
}

std::string catalogOf(void (*set)(VeltranoPDF&)) {
  Document document;
  set(document.pdf);
  document.pdf.PDFBeginDoc();
  const std::string file = document.finish();
  const std::string text = objectText(file, objectWith(file, "/Type /Catalog"));
  const std::string pages = "/Pages " + std::to_string(objectWith(file, "/Type /Pages")) + " 0 R\r\n";
  return text.substr(text.find(pages) + pages.size());
}

TEST(Assembly, CatalogFollowsTheViewerSettings) {
  const std::string fit = "/OpenAction [3 0 R /Fit]\r\n";
  const std::string single = "/PageLayout /SinglePage\r\n";
  const std::string end = ">>\r\n";
  const struct {
    void (*set)(VeltranoPDF&);
    std::string expected;
  } rows[] = {
      {[](VeltranoPDF&) {}, fit + single + end},
      {[](VeltranoPDF& pdf) { pdf.PDFSetZoomMode(ZOOM_FULLWIDTH); },
       "/OpenAction [3 0 R /FitH null]\r\n" + single + end},
      {[](VeltranoPDF& pdf) { pdf.PDFSetZoomMode(ZOOM_REAL); },
       "/OpenAction [3 0 R /XYZ null null 1]\r\n" + single + end},
      {[](VeltranoPDF& pdf) { pdf.PDFSetZoomMode(ZOOM_DEFAULT); },
       "/OpenAction [3 0 R /XYZ null null 0.03]\r\n" + single + end},
      {[](VeltranoPDF& pdf) { pdf.PDFSetLayoutMode(LAYOUT_CONTINOUS); },
       fit + "/PageLayout /OneColumn\r\n" + end},
      {[](VeltranoPDF& pdf) { pdf.PDFSetLayoutMode(LAYOUT_TWO); },
       fit + "/PageLayout /TwoColumnLeft\r\n" + end},
      {[](VeltranoPDF& pdf) { pdf.PDFSetLayoutMode(LAYOUT_DEFAULT); }, fit + end},
      {[](VeltranoPDF& pdf) { pdf.PDFUseThumbs(true); }, fit + single + "/PageMode /UseThumbs\r\n" + end},
      {[](VeltranoPDF& pdf) { pdf.PDFSetViewerPreferences(12); },
       fit + single + lines({"/ViewerPreferences<<", "/HideMenubar true", "/HideToolbar true", ">>"}) + end},
      {[](VeltranoPDF& pdf) { pdf.PDFSetViewerPreferences(123456); },
       fit + single +
           lines({"/ViewerPreferences<<", "/HideMenubar true", "/HideToolbar true", "/HideWindowUI true",
                  "/DisplayDocTitle true", "/CenterWindow true", "/FitWindow true", ">>"}) +
           end},
  };
  for (const auto& row : rows) EXPECT_EQ(catalogOf(row.set), row.expected);
}

TEST(Assembly, SecondDocumentFollowsTheFirstUnlessTheFileNameIsSetAgain) {
  Document document;
  document.pdf.PDFBeginDoc();
  document.pdf.PDFNewPage();
  const std::string first = document.finish();
  document.pdf.PDFBeginDoc();
  const std::string both = document.finish();
  ASSERT_TRUE(both.starts_with(first));
  EXPECT_NE(both.find("%PDF-1.0", first.size()), std::string::npos);
  EXPECT_NE(both.find("/Count 1\r\n", first.size()), std::string::npos) << "its numbering starts anew";

  document.pdf.PDFFileName(document.file());
  document.pdf.PDFBeginDoc();
  const std::string fresh = document.finish();
  EXPECT_EQ(fresh.find("%PDF-1.0", 1), std::string::npos);
}

TEST(Assembly, ReplacesTheFileWholeOrNotAtAll) {
  Document document;
  ASSERT_TRUE(replaceFile(document.file(), "before"));
  document.pdf.PDFBeginDoc();
  EXPECT_EQ(readWholeFile(document.file()), "before") << "untouched until the end";
  EXPECT_TRUE(document.finish().starts_with("%PDF-1.0\r\n"));

  const auto taken = document.folder / "a folder";
  std::filesystem::create_directory(taken);
  document.pdf.PDFFileName(taken);
  document.pdf.PDFBeginDoc();
  document.pdf.PDFEndDoc();
  EXPECT_TRUE(std::filesystem::is_empty(taken));
  EXPECT_TRUE(document.errors.empty());
}

TEST(Assembly, NothingHappensWithoutAnOpenDocument) {
  Document document;
  document.pdf.PDFNewPage();
  EXPECT_EQ(document.finish(), "");
  document.pdf.PDFBeginDoc();
  const std::string file = document.finish();
  document.pdf.PDFNewPage();
  EXPECT_EQ(document.finish(), file) << "ended twice";
  EXPECT_EQ(document.pdf.PDFPageNumber(), 1);
}

TEST(Assembly, DrawingBeforeTheDocumentBelongsToItsFirstPage) {
  Document document;
  document.pdf.PDFDrawLine(0, 0, 0, 0);
  document.pdf.PDFBeginDoc();
  EXPECT_TRUE(pageContent(document.finish(), 1).starts_with("%DEBUT_LN/%\r\n"));
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
  EXPECT_NE(file.find("/Count 40000\r\n"), std::string::npos);
  EXPECT_NE(file.find("/Contents 80000 0 R\r\n"), std::string::npos);
}

TEST(Watermark, IsDrawnOnEachFurtherPageAndAtTheEnd) {
  Document document;
  document.pdf.PDFFiligran("DRAFT");
  document.pdf.PDFBeginDoc();
  document.pdf.PDFNewPage();
  const std::string file = document.finish();
  const auto marks = [&](int page) {
    const std::string content = pageContent(file, page);
    const std::regex mark(R"(\(DRAFT\) Tj)");
    return std::distance(std::sregex_iterator(content.begin(), content.end(), mark), std::sregex_iterator());
  };
  EXPECT_EQ(marks(1), 0);
  EXPECT_EQ(marks(2), 2);
}

}  // namespace
}  // namespace veltrano
