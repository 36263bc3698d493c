#include <gtest/gtest.h>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::lines;
using tests::pageContent;

struct Made {
  std::string content;
  std::string file;
  std::vector<std::string> errors;
};

Made make(const std::function<void(VeltranoPDF&)>& draw) {
  Document document;
  document.pdf.PDFBeginDoc();
  document.pdf.PDFSetFont(FONT_ARIAL, 12);
  draw(document.pdf);
  std::string file = document.finish();
  return {pageContent(file, 1), file, document.takeErrors()};
}

std::string annotation(const std::string& rectangle, const std::string& target) {
  return "<</Type /Annot /Subtype /Link /Rect [" + rectangle + "] /Border [0 0 0] /A <</S /URI /URI (" +
         target + ")>>>>\r\n";
}

TEST(Links, ATextIsUnderlinedAndCovered) {
  const Made made = make([](VeltranoPDF& pdf) { pdf.PDFLink(100, 200, "Hello", "http://x/a(b)\\\r\nc"); });
  EXPECT_EQ(made.content,
            lines({"%DEBUT_LINK/%", "q 0 g ", "%DEBUT_TEXT/%", "BT", "100.00 641.89 Td", "/F8 12 Tf",
                   "(Hello) Tj", "ET", "100.00 640.39 27.34 0.60 re f", "Q", "%FIN_TEXT/%", "%FIN_LINK/%"}));
  // As high as the size, from the descenders (207 thousandths) up.
  EXPECT_NE(made.file.find(annotation("100.00 639.41 127.34 651.41", "http://x/a\\(b\\)\\\\c")),
            std::string::npos);
}

TEST(Links, WithoutATargetTheTextIsIt) {
  const Made made = make([](VeltranoPDF& pdf) { pdf.PDFLink(100, 200, "x"); });
  EXPECT_NE(made.file.find("/URI (x)"), std::string::npos);
}

TEST(Links, ATurnedTextIsCoveredByItsBox) {
  const Made made = make([](VeltranoPDF& pdf) {
    pdf.PDFSetRotation(90);
    pdf.PDFLink(100, 200, "Hello", "t");
  });
  EXPECT_NE(made.file.find(annotation("90.48 641.89 102.48 669.23", "t")), std::string::npos) << made.file;
}

TEST(Links, AtTheCurrentPosition) {
  const Made made = make([](VeltranoPDF& pdf) {
    pdf.PDFTextOut("Hello", 100, 200);
    pdf.PDFLink(0, 0, "Hello", "t");  // x 127.336, y 212
  });
  EXPECT_NE(made.file.find(annotation("127.34 627.41 154.67 639.41", "t")), std::string::npos);
}

TEST(Links, ShapesAreCoveredWhole) {
  const Made made = make([](VeltranoPDF& pdf) {
    pdf.PDFSetUnit(UNIT_CM);
    pdf.PDFDrawRectangle(1, 2, 3.3, 4, "r");
    pdf.PDFDrawEllipse(1, 2, 3.3, 0, "e");
    pdf.PDFCell("cell", 10, 20, 5.5, 1.5, "c");
  });
  EXPECT_NE(made.file.find(annotation("28.35 671.81 121.89 785.20", "r") +
                           annotation("28.35 691.65 121.89 785.20", "e") +
                           annotation("283.46 232.44 439.37 274.96", "c")),
            std::string::npos)
      << made.file;
  EXPECT_EQ(made.content.find("(cell) Tj"), made.content.rfind("(cell) Tj"));
  EXPECT_EQ(made.content.find("(c) Tj"), std::string::npos);
}

TEST(Links, OnlyATextLeadsSomewhere) {
  for (const Value& link : {Value(7), Value(Opaque{}), Value(Value::List{})}) {
    const Made made = make([&](VeltranoPDF& pdf) {
      pdf.PDFDrawRectangle(1, 2, 3, 4, link);
      pdf.PDFDrawEllipse(1, 2, 3, 4, link);
      pdf.PDFCell("x", 1, 2, 3, 4, link);
    });
    EXPECT_EQ(made.errors, std::vector<std::string>(3, "Unable to include this link"));
    EXPECT_EQ(made.file.find("/Annots"), std::string::npos);
  }
  const Made none = make([](VeltranoPDF& pdf) { pdf.PDFCell("x", 1, 2, 3, 4, Value()); });
  EXPECT_TRUE(none.errors.empty());
  EXPECT_EQ(none.content.find("LINK"), std::string::npos);
}

TEST(Links, EachOnItsPageAndCountedIn16Bits) {
  const Made made = make([](VeltranoPDF& pdf) {
    pdf.PDFLink(1, 1, "first");
    pdf.PDFNewPage();
    for (int i = 0; i < 32767; ++i) pdf.PDFDrawRectangle(1, 1, 1, 1, "second");
    pdf.PDFLink(1, 1, "last");
  });
  const auto count = [&](std::string_view target) {
    std::size_t found = 0;
    for (auto at = made.file.find(target); at != std::string::npos; at = made.file.find(target, at + 1))
      ++found;
    return found;
  };
  EXPECT_EQ(count("/URI (first)"), 1U);
  EXPECT_EQ(count("/URI (second)"), 32765U);
  EXPECT_EQ(count("/URI (last)"), 1U);
}

}  // namespace
}  // namespace veltrano
