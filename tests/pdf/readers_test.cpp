#include <gtest/gtest.h>

#include "tests/pdf/outside_readers.h"
#include "tests/pdf/pdf_testing.h"

// What readers that others wrote make of our files: native only, where they are programs of the system.

namespace veltrano {
namespace {

using tests::Document;
using tests::installed;
using tests::outputOf;

class Readers : public testing::Test {
 protected:
  void SetUp() override {
    VeltranoPDF& pdf = document_.pdf;
    pdf.PDFTitle("Journal d'\xE9t\xE9");
    pdf.PDFAuthor("A. Writer");
    pdf.PDFUseOutlines(true);
    pdf.PDFBeginDoc();
    pdf.PDFSetDrawMode(DRAW_DRAW);
    pdf.PDFSetDrawColor("#00FF00");
    pdf.PDFDrawRectangle(100, 200, 300, 50);
    pdf.PDFSetBookmark("First", 0, 0);
    pdf.PDFSetBookmark("Below", 1, 200);
    pdf.PDFEndPage();
    pdf.PDFOrientation(ORIENT_PAYSAGE);
    pdf.PDFNewPage();
    pdf.PDFSetBookmark("Second", 0, 0);
    pdf.PDFEndPage();
    pdf.PDFFormatPage(FORMAT_LETTER);
    pdf.PDFNewPage();
    document_.finish();
  }

  Document document_;
};

TEST_F(Readers, PopplerSeesPagesSizesAndInformation) {
  if (!installed("pdfinfo")) GTEST_SKIP() << "pdfinfo is not installed";
  const std::string info = outputOf("pdfinfo -l 3", document_.file());
  for (const char* line :
       {"Title:           Journal d'\xC3\xA9t\xC3\xA9\n", "Author:          A. Writer\n",
        "Pages:           3\n", "Page    1 size:  595.28 x 841.89 pts (A4)\n",
        "Page    2 size:  842 x 595 pts (A4)\n", "Page    3 size:  612 x 792 pts (letter)\n"}) {
    EXPECT_NE(info.find(line), std::string::npos) << line << "is not in\n" << info;
  }
}

TEST_F(Readers, PopplerPaintsTheRectangleWhereItIs) {
  if (!installed("pdftoppm")) GTEST_SKIP() << "pdftoppm is not installed";
  const tests::Picture page(document_.file());
  ASSERT_TRUE(page.valid());
  for (const int x : {102, 397})
    EXPECT_EQ(page.pixel(x, 202) + page.pixel(x, 247), std::string("\0\xFF\0\0\xFF\0", 6));
  for (const int y : {197, 253}) EXPECT_FALSE(page.hasInk(0, y, 595, y + 1)) << y;
  EXPECT_FALSE(page.hasInk(0, 0, 98, 841) || page.hasInk(402, 0, 595, 841));
}

TEST_F(Readers, MupdfSeesTheOutline) {
  if (!installed("mutool")) GTEST_SKIP() << "mutool is not installed";
  const std::string outline = outputOf("mutool show -b", document_.file().string() + "' 'outline");
  const auto first = outline.find("\"First\"\t#page=1");
  const auto below = outline.find("\t\"Below\"\t#page=1", first);
  const auto second = outline.find("\"Second\"\t#page=2", below);
  EXPECT_NE(second, std::string::npos) << outline;
}

TEST_F(Readers, QpdfFindsNoFaultBeyondTheKnownOnes) {
  if (!installed("qpdf")) GTEST_SKIP() << "qpdf is not installed";
  EXPECT_EQ(outputOf("qpdf --no-warn --show-npages", document_.file()), "3\n");
  const std::string json =
      outputOf("qpdf --no-warn --json --json-key=outlines --json-key=pages", document_.file());
  EXPECT_NE(json.find("\"title\": \"Below\""), std::string::npos) << json;
}

}  // namespace
}  // namespace veltrano
