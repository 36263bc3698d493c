#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using Errors = std::vector<std::string>;

TEST(Settings, OfANewObject) {
  VeltranoPDF pdf;
  EXPECT_EQ(pdf.PDFGetUnit(), "cm");
  for (const double margin :
       {pdf.PDFGetLeftMargin(), pdf.PDFGetTopMargin(), pdf.PDFGetRightMargin(), pdf.PDFGetBottomMargin()}) {
    EXPECT_EQ(margin, 1);
  }
  EXPECT_EQ(pdf.PDFGetCellMargin(), 3);
  EXPECT_EQ(pdf.PDFGetPageWidth(), 595.28);
  EXPECT_EQ(pdf.PDFGetPageHeight(), 841.89);
  EXPECT_EQ(pdf.PDFGetX(), 1);
  EXPECT_EQ(pdf.PDFGetY(), 1);
  EXPECT_TRUE(pdf.PDFGetZoomMode().isEmpty() && pdf.PDFGetLayoutMode().isEmpty());
  EXPECT_EQ(pdf.PDFNbPage(), 0);
}

TEST(Settings, MarginsRoundTiesToEvenAndRefuseWhatDoesNotFit) {
  VeltranoPDF pdf;
  const struct {
    double given;
    double stored;
  } rows[] = {{2.5, 2}, {1.5, 2}, {3.5, 4}, {-0.4, 0}, {-2.5, -2}, {32767.4, 32767}};
  for (const auto& row : rows) {
    pdf.PDFSetLeftMargin(row.given);
    pdf.PDFSetCellMargin(row.given);
    EXPECT_EQ(pdf.PDFGetLeftMargin(), row.stored) << row.given;
    EXPECT_EQ(pdf.PDFGetCellMargin(), row.stored) << row.given;
  }
  pdf.PDFSetRightMargin(7);
  for (const double wrong : {32767.5, -40000.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
    pdf.PDFSetRightMargin(wrong);
    EXPECT_EQ(pdf.PDFGetRightMargin(), 7) << wrong;
  }
}

TEST(Settings, OmittedMarginsFollowTheirOpposites) {
  VeltranoPDF pdf;
  pdf.PDFSetMargins(2, 3);
  EXPECT_EQ(pdf.PDFGetRightMargin(), 2);
  EXPECT_EQ(pdf.PDFGetBottomMargin(), 3);
  pdf.PDFSetMargins(2, 3, 4, 5);
  EXPECT_EQ(pdf.PDFGetRightMargin(), 4);
  EXPECT_EQ(pdf.PDFGetBottomMargin(), 5);
}

TEST(Settings, UnknownUnitIsReportedAndBecomesCentimetres) {
  Document document;
  const std::pair<int, const char*> rows[] = {{UNIT_PT, "pt"}, {UNIT_MM, "mm"}, {UNIT_CM, "cm"}};
  for (const auto& [unit, name] : rows) {
    document.pdf.PDFSetUnit(unit);
    EXPECT_EQ(document.pdf.PDFGetUnit(), name);
  }
  EXPECT_EQ(document.takeErrors(), Errors{});
  document.pdf.PDFSetUnit(UNIT_PT);
  document.pdf.PDFSetUnit(3);
  EXPECT_EQ(document.takeErrors(), Errors{"Incorrect Unit"});
  EXPECT_EQ(document.pdf.PDFGetUnit(), "cm");
}

TEST(PageFormatSetting, TakesCodesAndSizesAndReportsTheRest) {
  const struct {
    Value given;
    double width;
    double height;
    Errors errors;
  } rows[] = {
      {FORMAT_A4, 595.28, 841.89, {}},
      {FORMAT_A3, 841.89, 1190.55, {}},
      {FORMAT_A5, 420.94, 595.28, {}},
      {FORMAT_LETTER, 612, 792, {}},
      {FORMAT_LEGAL, 612, 1008, {}},
      {7, 595.28, 841.89, {"Invalid Page Code Format"}},
      {std::int64_t{1} << 40, 595.28, 841.89, {"Invalid Page Code Format"}},
      {Value::Doubles{300, 400}, 300, 400, {}},
      {Value::List{300, 400.5}, 300, 400.5, {}},
      {Value::Doubles{300}, 300, 10, {}},
      {Value::List{"300", "400"}, 595.28, 841.89, {"Incorrect Page Code"}},
      {1.0, 595.28, 841.89, {"Incorrect Page Code"}},
      {true, 595.28, 841.89, {"Incorrect Page Code"}},
      {Opaque(), 595.28, 841.89, {"Incorrect Page Code"}},
  };
  int number = 0;
  for (const auto& row : rows) {
    SCOPED_TRACE(number++);
    Document document;
    document.pdf.PDFPageWidth(10);
    document.pdf.PDFPageHeight(10);
    document.pdf.PDFFormatPage(row.given);
    EXPECT_EQ(document.pdf.PDFGetPageWidth(), row.width);
    EXPECT_EQ(document.pdf.PDFGetPageHeight(), row.height);
    EXPECT_EQ(document.takeErrors(), row.errors);
  }
}

TEST(Orientation, RoundsAndSwapsOnlyForLandscape) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  const auto size = [&] { return std::pair(pdf.PDFGetPageWidth(), pdf.PDFGetPageHeight()); };
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  EXPECT_EQ(size(), std::pair(842.0, 595.0));
  pdf.PDFOrientation(ORIENT_PORTRAIT);
  EXPECT_EQ(size(), std::pair(842.0, 595.0));
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  EXPECT_EQ(size(), std::pair(595.0, 842.0));
  pdf.PDFFormatPage(FORMAT_A5);
  pdf.PDFOrientation(2);
  EXPECT_EQ(document.takeErrors(), Errors{"Incorrect Page Orientation"});
  EXPECT_EQ(size(), std::pair(421.0, 595.0));
  pdf.PDFPageWidth(50000.5);
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  EXPECT_EQ(size(), std::pair(595.0, 50000.5)) << "a side beyond 16 bits keeps its value";
}

TEST(Viewer, ZoomTakesAnyNumberAndLayoutFourValues) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  for (const Value& zoom : {Value(ZOOM_REAL), Value(150), Value(33.3)}) {
    pdf.PDFSetZoomMode(zoom);
    EXPECT_EQ(pdf.PDFGetZoomMode(), zoom);
  }
  EXPECT_EQ(document.takeErrors(), Errors{});
  for (const Value& zoom :
       {Value("150"), Value("wide"), Value(Null()), Value(Opaque()), Value(Value::List{1})}) {
    pdf.PDFSetZoomMode(zoom);
    EXPECT_EQ(pdf.PDFGetZoomMode(), Value(0));
    EXPECT_EQ(document.takeErrors(), Errors{"Zoom mode incorrect."});
  }
  pdf.PDFSetLayoutMode(LAYOUT_TWO);
  EXPECT_EQ(pdf.PDFGetLayoutMode(), Value(2));
  for (const int layout : {4, -1}) {
    pdf.PDFSetLayoutMode(layout);
    EXPECT_EQ(document.takeErrors(), Errors{"Incorrect Layout"});
    EXPECT_EQ(pdf.PDFGetLayoutMode(), Value(0));
  }
}

TEST(Init, ResetsWhatItResetsAndKeepsTheRest) {
  Document document;
  VeltranoPDF& pdf = document.pdf;
  pdf.PDFTitle("kept");
  pdf.PDFAuthor("dropped");
  pdf.PDFSetMargins(5, 6);
  pdf.PDFFormatPage(FORMAT_A3);
  pdf.PDFSetLineColor(COLOR_ROUGE);
  pdf.PDFSetLayoutMode(LAYOUT_TWO);
  pdf.PDFBeginDoc();
  pdf.PDFDrawLine(0, 0, 9, 9);
  pdf.PDFInit();
  EXPECT_EQ(pdf.PDFGetUnit(), "cm");
  EXPECT_EQ(pdf.PDFGetTopMargin(), 1);
  EXPECT_EQ(pdf.PDFGetY(), 1);
  EXPECT_EQ(pdf.PDFGetPageWidth(), 595.28);
  EXPECT_EQ(pdf.PDFGetLayoutMode(), Value(2));
  EXPECT_EQ(document.finish(), "") << "the open document is given up";

  pdf.PDFBeginDoc();
  pdf.PDFDrawLine(0, 0, 0, 0);
  const std::string file = document.finish();
  EXPECT_EQ(file.find("%PDF-1.0", 1), std::string::npos) << "nothing of the first document is left";
  EXPECT_NE(file.find("/Title (kept)"), std::string::npos);
  EXPECT_NE(file.find("/Author ()"), std::string::npos);
  EXPECT_NE(tests::pageContent(file, 1).find("\r\n0 G\r\n16.07 w S\r\n"), std::string::npos);
}

}  // namespace
}  // namespace veltrano
