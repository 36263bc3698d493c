#include <gtest/gtest.h>

#include "tests/pdf/jpeg_testing.h"
#include "tests/pdf/pdf_testing.h"

namespace veltrano {
namespace {

using tests::Document;
using tests::frame;
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
  double size = 0;
  for (const char* name : {"a.JPG", "a.png", "a.jpg.txt", "a.jpg "}) {
    EXPECT_EQ(pdf.PDFImageWidth(photo(name, picture)), 0);
    EXPECT_EQ(pdf.PDFImageHeight(photo(name, picture)), 0);
    pdf.PDFImage(photo(name, picture), 1, 1, size, size);
    EXPECT_EQ(messages(), "Error format not supported|Image format not supported.|Format not supported|")
        << name;
  }
  EXPECT_EQ(pdf.PDFImageWidth("jpg"), 0);
  EXPECT_EQ(pdf.PDFImageHeight("jpg"), 0);
  pdf.PDFImage("jpg", 1, 1);
  EXPECT_EQ(messages(), "Unable to include this image|Unable to include this image|Format not supported|");
}

TEST_F(Images, RefusedFilesPlaceNothing) {
  pdf.PDFBeginDoc();
  std::filesystem::create_directory(document.folder / "folder.jpg");
  pdf.PDFImage(document.folder / "folder.jpg", 1, 1);
  pdf.PDFImage(document.folder / "missing.jpg", 1, 1);
  pdf.PDFImage(photo("short.jpg", jpeg({frame(0xC0, 1, 1, 1)}, 249)), 1, 1);
  pdf.PDFImage(photo("trailing.jpg", picture + "\n"), 1, 1);
  pdf.PDFImage(photo("unit.jpg", jpeg({tests::app0(3)})), 1, 1);
  EXPECT_EQ(messages(),
            "JPEG format invalid|JPEG format invalid|JPEG format invalid|JPEG format invalid. Pass 2|"
            "JPEG format invalid. Pass 3|");
  const std::string file = document.finish();
  EXPECT_EQ(pageContent(file, 1), "");
  EXPECT_EQ(file.find("/ImgJPEG"), std::string::npos);
}

TEST_F(Images, PlacedInTheUnitWithTheMissingHeight) {
  pdf.PDFSetUnit(UNIT_MM);
  pdf.PDFBeginDoc();
  double width = 80;
  double height = 0;
  pdf.PDFImage(photo("a.jpg", picture), 10, 20, width, height);
  EXPECT_DOUBLE_EQ(height, 60);
  EXPECT_EQ(pdf.PDFGetX(), 255);  // (10 + 80) * 72 / 25.4
  EXPECT_EQ(pdf.PDFGetY(), 227);
  EXPECT_EQ(pageContent(document.finish(), 1),
            lines({"q", "226.77 0 0 170.08 28.35 615.12 cm /ImgJPEG1 Do Q"}));
}

struct Size {
  double width, height, expectedWidth, expectedHeight;
};

TEST_F(Images, MissingSizes) {
  const auto file = photo("a.jpg", picture);
  for (const Size& row :
       {Size{0, 0, 400, 300}, {100, 0, 100, 75}, {0, 75, 100, 75}, {10, 10, 10, 10}, {-8, 0, -8, -6}}) {
    double width = row.width;
    double height = row.height;
    pdf.PDFImage(file, 1, 1, width, height);
    EXPECT_DOUBLE_EQ(width, row.expectedWidth);
    EXPECT_DOUBLE_EQ(height, row.expectedHeight);
  }
  double width = 10;
  double height = 0;
  pdf.PDFImage(photo("frameless.jpg", jpeg({tests::app0(1)})), 1, 1, width, height);
  EXPECT_EQ(height, 0);  // a division by zero is skipped
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
  const auto object = [&](const char* size, const char* space, const char* bits, const std::string& data,
                          int number) {
    const std::string name = "/Name /ImgJPEG" + std::to_string(number) + ">>";
    return lines({"<</Type /XObject", "/Subtype /Image", "/Filter [/DCTDecode ]", size, space, bits,
                  "/Length 400", name, "stream", data, "endstream"});
  };
  const char* rgbSize = "/Width 400\r\n/Height 300";
  const int first = objectWith(file, "/ImgJPEG1>>");
  EXPECT_EQ(objectText(file, first),
            object(rgbSize, "/ColorSpace /DeviceRGB", "/BitsPerComponent 8", picture, 1));
  EXPECT_EQ(objectText(file, first + 1),
            object(rgbSize, "/ColorSpace /DeviceRGB", "/BitsPerComponent 8", picture, 2));
  EXPECT_EQ(objectText(file, first + 2),
            object("/Width 7\r\n/Height 5", "/ColorSpace /", "/BitsPerComponent 16", odd, 3));
  EXPECT_NE(file.find("/XObject << \r\n/ImgJPEG1 " + std::to_string(first) + " 0 R\r\n"), std::string::npos);
}

TEST_F(Images, ALinkCoversTheImage) {
  pdf.PDFBeginDoc();
  double width = 40;
  double height = 30;
  pdf.PDFImage(photo("a.jpg", picture), 100, 200, width, height, "t");
  pdf.PDFImage(photo("a.jpg", picture), 100, 200, width, height, 5);
  EXPECT_EQ(messages(), "Unable to include this link|");
  const std::string file = document.finish();
  EXPECT_NE(file.find("/Rect [100.00 611.89 140.00 641.89]"), std::string::npos);
  EXPECT_NE(pageContent(file, 1).find("Do Q\r\n%DEBUT_LINK/%\r\nq 0.000 0.000 1.000 rg \r\n"),
            std::string::npos);
}

TEST_F(Images, NumbersThatAreNoneLeaveNoHalfOfAPlacement) {
  pdf.PDFBeginDoc();
  pdf.PDFImage(photo("a.jpg", picture), std::numeric_limits<double>::infinity(), 1);
  EXPECT_EQ(pageContent(document.finish(), 1), "");
}

}  // namespace
}  // namespace veltrano
