#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::holds;
using Errors = std::vector<std::string>;
using Size = std::pair<double, double>;

std::vector<double> marginsOf(const VeltranoPDF& pdf) {
  return {pdf.PDFGetLeftMargin(), pdf.PDFGetTopMargin(), pdf.PDFGetRightMargin(), pdf.PDFGetBottomMargin(),
          pdf.PDFGetCellMargin()};
}

Size sizeOf(const VeltranoPDF& pdf) {
  return {pdf.PDFGetPageWidth(), pdf.PDFGetPageHeight()};
}

TEST(Settings, MarginsRoundTiesToEvenAndRefuseWhatDoesNotFit) {
  VeltranoPDF pdf;
  pdf.PDFSetTopMargin(11);
  pdf.PDFSetRightMargin(12);
  pdf.PDFSetBottomMargin(13);
  const double none = std::nan("");
  for (const auto& [given, stored] : std::vector<Size>{{2.5, 2},
                                                       {1.5, 2},
                                                       {-2.5, -2},
                                                       {32767.4, 32767},
                                                       {32767.5, 32767},
                                                       {-40000, 32767},
                                                       {none, 32767}}) {
    pdf.PDFSetLeftMargin(given);
    pdf.PDFSetCellMargin(given);
    EXPECT_EQ(marginsOf(pdf), (std::vector<double>{stored, 11, 12, 13, stored})) << given;
  }
  pdf.PDFSetMargins(2, 3);  // omitted ones follow their opposites
  EXPECT_EQ(marginsOf(pdf), (std::vector<double>{2, 3, 2, 3, 32767}));
  pdf.PDFSetMargins(2, 3, 4, 5);
  EXPECT_EQ(marginsOf(pdf), (std::vector<double>{2, 3, 4, 5, 32767}));
}

TEST(Settings, UnitsAndViewerSettingsFallBack) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  for (const auto& [unit, name] :
       {std::pair(UNIT_MM, "mm"), std::pair(UNIT_CM, "cm"), std::pair(UNIT_PT, "pt")}) {
    pdf.PDFSetUnit(unit);
    EXPECT_EQ(pdf.PDFGetUnit(), name);
  }
  constexpr std::pair<int, int> layouts[] = {{1, 1}, {2, 2}, {3, 3}, {4, 0}, {-1, 0}};
  for (const auto& [layout, stored] : layouts) {
    pdf.PDFSetLayoutMode(layout);
    EXPECT_EQ(pdf.PDFGetLayoutMode(), Value(stored));
  }
  EXPECT_EQ(document.takeErrors(), Errors(2, "Incorrect Layout"));
  pdf.PDFSetUnit(3);
  EXPECT_EQ(pdf.PDFGetUnit(), "cm");
  EXPECT_EQ(document.takeErrors(), Errors{"Incorrect Unit"});
  for (const Value& zoom : {Value(ZOOM_REAL), Value(150), Value(33.3), Value()}) {
    pdf.PDFSetZoomMode(zoom);
    EXPECT_EQ(pdf.PDFGetZoomMode(), zoom);
  }
  EXPECT_EQ(document.takeErrors(), Errors{});
  for (const Value& zoom : {Value("150"), Value(Null()), Value(Opaque()), Value(Value::List{1})}) {
    pdf.PDFSetZoomMode(zoom);
    EXPECT_EQ(pdf.PDFGetZoomMode(), Value(0));
  }
  EXPECT_EQ(document.takeErrors(), Errors(4, "Zoom mode incorrect."));
}

TEST(Settings, PageFormatsAreCodesOrSizes) {
  const Size a4(595.28, 841.89);
  const std::tuple<Value, Size, Errors> rows[] = {
      {FORMAT_A4, a4, {}},
      {FORMAT_A3, {841.89, 1190.55}, {}},
      {FORMAT_A5, {420.94, 595.28}, {}},
      {FORMAT_LETTER, {612, 792}, {}},
      {FORMAT_LEGAL, {612, 1008}, {}},
      {Value::Doubles{300, 400}, {300, 400}, {}},
      {Value::List{300, 400.5}, {300, 400.5}, {}},
      {Value::Doubles{9}, {9, 400.5}, {}},
      {5, a4, {"Invalid Page Code Format"}},
      {-1, a4, {"Invalid Page Code Format"}},
      {std::int64_t{1} << 40, a4, {"Invalid Page Code Format"}},
      {Value::List{"300", 400}, a4, {"Incorrect Page Code"}},
      {Value::List{300, "400"}, a4, {"Incorrect Page Code"}},
      {1.0, a4, {"Incorrect Page Code"}},
      {true, a4, {"Incorrect Page Code"}},
  };
  Document document;
  for (const auto& [format, size, errors] : rows) {
    if (!errors.empty()) document.pdf.PDFFormatPage(FORMAT_A3);
    document.pdf.PDFFormatPage(format);
    EXPECT_EQ(sizeOf(document.pdf), size);
    EXPECT_EQ(document.takeErrors(), errors);
  }
}

TEST(Settings, OrientationRoundsAndSwapsOnlyForLandscape) {
  VeltranoPDF pdf;
  for (const auto& [orientation, size] : std::vector<std::pair<int, Size>>{{ORIENT_PAYSAGE, {842, 595}},
                                                                           {ORIENT_PORTRAIT, {842, 595}},
                                                                           {ORIENT_PAYSAGE, {595, 842}},
                                                                           {2, {595, 842}}}) {
    pdf.PDFOrientation(orientation);
    EXPECT_EQ(sizeOf(pdf), size);
  }
  pdf.PDFPageWidth(50000.5);  // a side beyond 16 bits keeps its value
  pdf.PDFPageHeight(594.5);
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  EXPECT_EQ(sizeOf(pdf), Size(594, 50000.5));
}

TEST(Settings, InitResetsWhatItResetsAndKeepsTheRest) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
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
  EXPECT_EQ(marginsOf(pdf), (std::vector<double>{1, 1, 1, 1, 3}));
  EXPECT_EQ(sizeOf(pdf), Size(595.28, 841.89));
  EXPECT_EQ(std::pair(pdf.PDFGetX(), pdf.PDFGetY()), std::pair(std::int16_t{1}, std::int16_t{1}));
  EXPECT_EQ(pdf.PDFNbPage(), 0);
  EXPECT_EQ(pdf.PDFGetLayoutMode(), Value(2));
  EXPECT_EQ(document.finish(), "") << "the open document is given up";

  pdf.PDFBeginDoc();
  pdf.PDFDrawLine(0, 0, 0, 0);
  const std::string file = document.finish();
  EXPECT_EQ(tests::countOf(file, "%PDF-1.0"), 1U) << "nothing of the first document is left";
  EXPECT_TRUE(holds(file, "/Title (kept)"));
  EXPECT_TRUE(holds(file, "/Author ()"));
  EXPECT_TRUE(holds(tests::pageContent(file, 1), "\r\n0 G\r\n16.07 w S\r\n"));
}

}  // namespace
}  // namespace veltrano
