// Pictures that are bitmaps of GDI.

#include <windows.h>

#include "images.h"
#include "veltrano/jpg.h"
#include "veltrano/png.h"

namespace veltrano::tests {
namespace {

HBITMAP makeBitmap(int bits, bool topDown, bool device) {
  if (device) return CreateBitmap(11, 5, 1, static_cast<UINT>(bits), nullptr);
  struct {
    BITMAPINFOHEADER header;
    RGBQUAD colours[256];
  } info{};
  info.header = {sizeof info.header, 11, topDown ? -5 : 5, 1, static_cast<WORD>(bits), BI_RGB, 0, 0, 0, 0, 0};
  for (int i = 1; i < 256; ++i) info.colours[i] = {255, 255, 255, 0};
  void* memory = nullptr;
  return CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS, &memory, nullptr, 0);
}

Picture pictureOf(HGDIOBJ object) {
  return Picture::ofBitmap(reinterpret_cast<GraphicsHandle>(object));
}

TEST(BitmapPicture, IsReadAtEveryDepth) {
  // Black and white only, so that every depth can hold it; nothing about it is symmetric.
  constexpr Rgb white{255, 255, 255}, black{};
  const Image image = paint(11, 5, [=](int x, int y) { return (x * 3 + y * y) % 7 < 3 ? white : black; });
  constexpr std::tuple<int, bool, bool> depths[] = {
      {1, false, false}, {4, false, false},  {8, true, false},  {16, false, false}, {24, false, false},
      {24, true, false}, {32, false, false}, {32, true, false}, {1, false, true},   {32, false, true}};
  for (const auto& [bits, topDown, device] : depths) {
    HBITMAP bitmap = makeBitmap(bits, topDown, device);
    ASSERT_NE(bitmap, nullptr);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ previous = SelectObject(dc, bitmap);
    for (int i = 0; i < 11 * 5; ++i)
      SetPixelV(dc, i % 11, i / 11, image.at(i % 11, i / 11) == white ? RGB(255, 255, 255) : RGB(0, 0, 0));
    SelectObject(dc, previous);
    DeleteDC(dc);
    EXPECT_TRUE(contents(section(pictureOf(bitmap))) == image) << bits << topDown << device;
    DeleteObject(bitmap);
    EXPECT_FALSE(cDIBSection().CreateFromPicture(pictureOf(bitmap))) << "deleted";
  }
}

/// Saves with every member; the number of files afterwards.
int filesSaved(const TemporaryFolder& folder, HGDIOBJ object) {
  const Picture picture = pictureOf(object);
  const bool saved = VeltranoPNG().SavePNG(picture, folder / "a.png");
  VeltranoJPG().SaveJPEG(picture, folder / "a.jpg");
  VeltranoJPG().SaveJPEG(picture, folder / "b.jpg", 50, 20, 20);
  EXPECT_EQ(VeltranoJPG().SaveJPEGToMemory(picture).size(), saved ? 15U : 1U);
  return filesIn(folder);
}

TEST(BitmapPicture, SavesNothingThatCannotBeCopied) {
  const TemporaryFolder folder;
  HBITMAP bitmap = makeBitmap(24, false, false);
  HDC dc = CreateCompatibleDC(nullptr);
  HPEN pen = CreatePen(PS_SOLID, 1, 0);
  EXPECT_EQ(filesSaved(folder, pen), 0) << "not a bitmap";
  HGDIOBJ previous = SelectObject(dc, bitmap);
  EXPECT_EQ(filesSaved(folder, bitmap), 0) << "selected elsewhere";
  // GDI has some ten thousand handles: losing one a round ends in a failure.
  for (int round = 0; round < 20'000; ++round) {
    cDIBSection dib;
    SelectObject(dc, bitmap);
    ASSERT_FALSE(dib.CreateFromPicture(pictureOf(bitmap))) << round;
    SelectObject(dc, previous);
    ASSERT_TRUE(dib.CreateFromPicture(pictureOf(bitmap))) << round;
    ASSERT_NE(dib.Resample2(5, 5).hDC(), 0U) << round;
  }
  EXPECT_EQ(filesSaved(folder, bitmap), 3);
  DeleteObject(pen);
  DeleteDC(dc);
  DeleteObject(bitmap);
}

TEST(BitmapPicture, GoesWhereADriveRelativeNameLeads) {
  const TemporaryFolder folder;
  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  EXPECT_TRUE(VeltranoPNG().SavePNG(picture(noise(2, 2)), folder.path().root_name().string() + "a.png"));
  std::filesystem::current_path(previous);
  EXPECT_TRUE(std::filesystem::exists(folder / "a.png"));
}

}  // namespace
}  // namespace veltrano::tests
