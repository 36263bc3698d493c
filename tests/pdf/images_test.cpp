#include <gtest/gtest.h>

#include "tests/pdf/jpeg_testing.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::frame;
using tests::holds;
using tests::jpeg;
using tests::lines;
using tests::objectText;
using tests::objectWith;
using tests::pageContent;

class Images : public testing::Test {
 protected:
  std::filesystem::path photo(const char* name, const std::string& content) {
    replaceFile(document.folder / name, content);
    return document.folder / name;
  }
  std::string messages() {
    std::string all;
    for (const std::string& message : document.takeErrors()) all += message + "|";
    return all;
  }

  Document document;
  VeltranoPDF& pdf = document.pdf;
  const std::string picture = jpeg({frame(0xC0, 400, 300, 3)});
};

TEST_F(Images, NamesAreTakenByTheirLastLetters) {
  for (const char* name : {"a.jpg", "a.jpeg", "a.b.jpg", "a.xjpg"}) {
    EXPECT_EQ(pdf.PDFImageWidth(photo(name, picture)), 400) << name;
    EXPECT_EQ(pdf.PDFImageHeight(photo(name, picture)), 300) << name;
  }
  EXPECT_EQ(messages(), "");
  const auto queryAndPlace = [this](const std::filesystem::path& file) {
    EXPECT_EQ(pdf.PDFImageWidth(file), 0);
    EXPECT_EQ(pdf.PDFImageHeight(file), 0);
    pdf.PDFImage(file, 1, 1);
    return messages();
  };
  for (const char* name : {"a.JPG", "a.png", "a.jpg.txt", "a.jpg "}) {
    EXPECT_EQ(queryAndPlace(photo(name, picture)),
              "Error format not supported|Image format not supported.|Format not supported|")
        << name;
  }
  EXPECT_EQ(queryAndPlace("jpg"),
            "Unable to include this image|Unable to include this image|Format not supported|");
}

TEST_F(Images, RefusedFilesPlaceNothing) {
  pdf.PDFBeginDoc();
  std::filesystem::create_directory(document.folder / "folder.jpg");
  for (const auto& file :
       {document.folder / "folder.jpg", document.folder / "missing.jpg",
        photo("short.jpg", jpeg({frame(0xC0, 1, 1, 1)}, 249)), photo("trailing.jpg", picture + "\n"),
        photo("unit.jpg", jpeg({tests::app0(3)}))}) {
    pdf.PDFImage(file, 1, 1);
  }
  EXPECT_EQ(messages(),
            "JPEG format invalid|JPEG format invalid|JPEG format invalid|JPEG format invalid. Pass 2|"
            "JPEG format invalid. Pass 3|");
  EXPECT_FALSE(holds(document.finish(), "/ImgJPEG"));
}

TEST_F(Images, PlacedInTheUnitWithTheMissingHeight) {
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFBeginDoc();
  double width = 80;
  double height = 0;
  pdf.PDFImage(photo("a.jpg", picture), 10, 20, width, height, 5);
  EXPECT_EQ(messages(), "Unable to include this link|");
  EXPECT_DOUBLE_EQ(height, 60);
  EXPECT_EQ(pdf.PDFGetX(), 255);  // (10 + 80) * 72 / 25.4
  EXPECT_EQ(pdf.PDFGetY(), 227);
  pdf.PDFImage(photo("a.jpg", picture), std::numeric_limits<double>::infinity(),
               1);  // no half of a placement
  EXPECT_EQ(pageContent(document.finish(), 1),
            lines({"q", "226.77 0 0 170.08 28.35 615.12 cm /ImgJPEG1 Do Q"}));
}

TEST_F(Images, MissingSizes) {
  const auto whole = photo("a.jpg", picture);
  const auto frameless = photo("frameless.jpg", jpeg({tests::app0(1)}));
  const struct {
    std::filesystem::path file;
    std::pair<double, double> given;
    std::pair<double, double> size;
  } rows[] = {{whole, {0, 0}, {400, 300}},  {whole, {100, 0}, {100, 75}}, {whole, {0, 75}, {100, 75}},
              {whole, {10, 10}, {10, 10}},  {whole, {-8, 0}, {-8, -6}},   {frameless, {10, 0}, {10, 0}},
              {frameless, {0, 10}, {0, 10}}};
  for (const auto& row : rows) {
    auto size = row.given;
    pdf.PDFImage(row.file, 1, 1, size.first, size.second);
    EXPECT_EQ(size, row.size) << row.given.first << ' ' << row.given.second;
  }
}

TEST_F(Images, EachPlacementIsAnObjectWithTheWholeFile) {
  pdf.PDFBeginDoc();
  const auto rgb = photo("a.jpg", picture);
  const std::string odd = jpeg({frame(0xC1, 7, 5, 2)});
  pdf.PDFImage(rgb, 1, 1);
  EXPECT_EQ(pdf.PDFImageWidth(photo("odd.jpg", odd)), 7);
  pdf.PDFImage(rgb, 1, 1);
  pdf.PDFImage(document.folder / "odd.jpg", 1, 1);
  photo("a.jpg", "replaced meanwhile");
  const std::string file = document.finish();
  const int first = objectWith(file, "/ImgJPEG1>>");
  const std::string stream = "stream\r\n" + picture + "\r\nendstream\r\n";
  EXPECT_TRUE(objectText(file, first).ends_with("/Name /ImgJPEG1>>\r\n" + stream));
  EXPECT_TRUE(objectText(file, first + 1).ends_with("/Name /ImgJPEG2>>\r\n" + stream));
  EXPECT_TRUE(holds(objectText(file, first + 2),
                    "/Width 7\r\n/Height 5\r\n/ColorSpace /\r\n/BitsPerComponent 16\r\n"));
}

}  // namespace
}  // namespace veltrano
