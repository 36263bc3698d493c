#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "tests/pdf/pdf_testing.h"

namespace veltrano::tests {
namespace {

using Size = std::pair<double, double>;
using Numbers = std::vector<double>;

class Settings : public PdfTest {
 protected:
  Numbers margins() {
    return {pdf.PDFGetLeftMargin(), pdf.PDFGetTopMargin(), pdf.PDFGetRightMargin(), pdf.PDFGetBottomMargin(),
            pdf.PDFGetCellMargin()};
  }
  Size size() { return {pdf.PDFGetPageWidth(), pdf.PDFGetPageHeight()}; }
};

TEST_F(Settings, MarginsRoundTiesToEvenAndRefuseWhatDoesNotFit) {
  pdf.PDFSetTopMargin(11);
  pdf.PDFSetRightMargin(12);
  pdf.PDFSetBottomMargin(13);
  constexpr Size rows[] = {{2.5, 2},         {1.5, 2},        {-2.5, -2},  {32767.4, 32767},
                           {32767.5, 32767}, {-40000, 32767}, {NAN, 32767}};
  for (const auto& [given, stored] : rows) {
    pdf.PDFSetLeftMargin(given);
    pdf.PDFSetCellMargin(given);
    EXPECT_EQ(margins(), (Numbers{stored, 11, 12, 13, stored})) << given;
  }
  pdf.PDFSetMargins(2, 3);  // omitted ones follow their opposites
  EXPECT_EQ(margins(), (Numbers{2, 3, 2, 3, 32767}));
  pdf.PDFSetMargins(2, 3, 4, 5);
  EXPECT_EQ(margins(), (Numbers{2, 3, 4, 5, 32767}));
}

TEST_F(Settings, UnitsAndViewerSettingsFallBack) {
  constexpr std::tuple<int, const char*, const char*> units[] = {
      {UNIT_MM, "mm", ""}, {UNIT_PT, "pt", ""}, {3, "cm", "Incorrect Unit|"}, {UNIT_CM, "cm", ""}};
  for (const auto& [unit, name, error] : units) {
    pdf.PDFSetUnit(unit);
    EXPECT_EQ(pdf.PDFGetUnit() + takeErrors(), std::string(name) + error);
  }
  for (const int layout : {1, 2, 3, 4, -1}) {
    const bool known = layout >= 1 && layout <= 3;
    pdf.PDFSetLayoutMode(layout);
    EXPECT_EQ(pdf.PDFGetLayoutMode(), Value(known ? layout : 0));
    EXPECT_EQ(takeErrors(), known ? "" : "Incorrect Layout|");
  }
  const std::pair<Value, bool> zooms[] = {
      {ZOOM_REAL, true}, {150, true},     {33.3, true},      {{}, true},
      {"150", false},    {Null(), false}, {Opaque(), false}, {Value::List{1}, false}};
  for (const auto& [zoom, known] : zooms) {
    pdf.PDFSetZoomMode(zoom);
    EXPECT_EQ(pdf.PDFGetZoomMode(), known ? zoom : Value(0));
    EXPECT_EQ(takeErrors(), known ? "" : "Zoom mode incorrect.|");
  }
}

TEST_F(Settings, PageFormatsAreCodesOrSizes) {
  const Size a4(595.28, 841.89);
  const std::tuple<Value, Size, const char*> rows[] = {
      {FORMAT_A4, a4, ""},
      {FORMAT_A3, {841.89, 1190.55}, ""},
      {FORMAT_A5, {420.94, 595.28}, ""},
      {FORMAT_LETTER, {612, 792}, ""},
      {FORMAT_LEGAL, {612, 1008}, ""},
      {Value::Doubles{300, 400}, {300, 400}, ""},
      {Value::List{300, 400.5}, {300, 400.5}, ""},
      {Value::Doubles{9}, {9, 400.5}, ""},
      {5, a4, "Invalid Page Code Format|"},
      {-1, a4, "Invalid Page Code Format|"},
      {std::int64_t{1} << 40, a4, "Invalid Page Code Format|"},
      {Value::List{"300", 400}, a4, "Incorrect Page Code|"},
      {Value::List{300, "400"}, a4, "Incorrect Page Code|"},
      {1.0, a4, "Incorrect Page Code|"},
      {true, a4, "Incorrect Page Code|"}};
  for (const auto& [format, expected, messages] : rows) {
    if (*messages != 0) pdf.PDFFormatPage(FORMAT_A3);
    pdf.PDFFormatPage(format);
    EXPECT_EQ(size(), expected);
    EXPECT_EQ(takeErrors(), messages);
  }
}

TEST_F(Settings, OrientationRoundsAndSwapsOnlyForLandscape) {
  const std::pair<int, Size> rows[] = {{ORIENT_PAYSAGE, {842, 595}},
                                       {ORIENT_PORTRAIT, {842, 595}},
                                       {ORIENT_PAYSAGE, {595, 842}},
                                       {2, {595, 842}}};
  for (const auto& [orientation, expected] : rows) {
    pdf.PDFOrientation(orientation);
    EXPECT_EQ(size(), expected);
  }
  pdf.PDFPageWidth(50000.5);  // a side beyond 16 bits keeps its value
  pdf.PDFPageHeight(594.5);
  pdf.PDFOrientation(ORIENT_PAYSAGE);
  EXPECT_EQ(size(), Size(594, 50000.5));
}

TEST_F(Settings, InitResetsWhatItResetsAndKeepsTheRest) {
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
  EXPECT_EQ(margins(), (Numbers{1, 1, 1, 1, 3}));
  EXPECT_EQ(size(), Size(595.28, 841.89));
  EXPECT_EQ(std::pair(pdf.PDFGetX(), pdf.PDFGetY()), std::pair(std::int16_t{1}, std::int16_t{1}));
  EXPECT_EQ(pdf.PDFNbPage(), 0);
  EXPECT_EQ(pdf.PDFGetLayoutMode(), Value(2));
  EXPECT_EQ(finish(), "") << "the open document is given up";

  pdf.PDFBeginDoc();
  pdf.PDFDrawLine(0, 0, 0, 0);
  const std::string file = finish();
  EXPECT_EQ(countOf(file, "%PDF-1.0"), 1U) << "nothing of the first document is left";
  EXPECT_TRUE(holds(file, "/Title (kept)"));
  EXPECT_TRUE(holds(file, "/Author ()"));
  EXPECT_TRUE(holds(pageContent(file, 1), "\r\n0 G\r\n16.07 w S\r\n"));
}

}  // namespace
}  // namespace veltrano::tests
