// Pictures that are bitmaps of GDI.

#include <gtest/gtest.h>
#include <windows.h>

#include "images.h"
#include "veltrano/jpg.h"
#include "veltrano/png.h"

namespace veltrano::tests {
namespace {

// Black and white only, so that every depth can hold it; nothing about it is symmetric.
Image twoColours() {
  return paint(11, 5, [](int x, int y) { return (x * 3 + y * y) % 7 < 3 ? Rgb{255, 255, 255} : Rgb{}; });
}

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

TEST(BitmapPicture, IsReadAtEveryDepth) {
  const TemporaryFolder folder;
  const Image image = twoColours();
  constexpr std::tuple<int, bool, bool> depths[] = {
      {1, false, false}, {4, false, false},  {8, true, false},  {16, false, false}, {24, false, false},
      {24, true, false}, {32, false, false}, {32, true, false}, {1, false, true},   {32, false, true}};
  for (const auto& [bits, topDown, device] : depths) {
    HBITMAP bitmap = makeBitmap(bits, topDown, device);
    ASSERT_NE(bitmap, nullptr);
    HDC dc = CreateCompatibleDC(nullptr);
    HGDIOBJ previous = SelectObject(dc, bitmap);
    for (int y = 0; y < 5; ++y) {
      for (int x = 0; x < 11; ++x)
        SetPixelV(dc, x, y, image.at(x, y).red != 0 ? RGB(255, 255, 255) : RGB(0, 0, 0));
    }
    SelectObject(dc, previous);
    DeleteDC(dc);
    const Picture picture = Picture::ofBitmap(reinterpret_cast<GraphicsHandle>(bitmap));
    EXPECT_TRUE(VeltranoPNG().SavePNG(picture, folder / "a.png"));
    EXPECT_TRUE(readPng(folder / "a.png") == image) << bits << topDown << device;
    DeleteObject(bitmap);
    EXPECT_FALSE(VeltranoPNG().SavePNG(picture, folder / "b.png")) << "deleted";
  }
}

/// Saves with every member; the number of files afterwards.
int filesSaved(const TemporaryFolder& folder, GraphicsHandle handle) {
  const Picture picture = Picture::ofBitmap(handle);
  const bool saved = VeltranoPNG().SavePNG(picture, folder / "a.png");
  VeltranoJPG().SaveJPEG(picture, folder / "a.jpg");
  VeltranoJPG().SaveJPEG(picture, folder / "b.jpg", 50, 20, 20);
  EXPECT_EQ(saved, filesIn(folder) > 0);
  EXPECT_EQ(VeltranoJPG().SaveJPEGToMemory(picture).size(), saved ? 15U : 1U);
  return filesIn(folder);
}

TEST(BitmapPicture, SavesNothingThatCannotBeCopied) {
  const TemporaryFolder folder;
  HBITMAP bitmap = makeBitmap(24, false, false);
  HDC dc = CreateCompatibleDC(nullptr);
  HGDIOBJ previous = SelectObject(dc, bitmap);
  EXPECT_EQ(filesSaved(folder, reinterpret_cast<GraphicsHandle>(bitmap)), 0) << "selected elsewhere";
  SelectObject(dc, previous);
  HPEN pen = CreatePen(PS_SOLID, 1, 0);
  EXPECT_EQ(filesSaved(folder, reinterpret_cast<GraphicsHandle>(pen)), 0) << "not a bitmap";
  EXPECT_EQ(filesSaved(folder, reinterpret_cast<GraphicsHandle>(bitmap)), 3);
  DeleteObject(pen);
  DeleteDC(dc);
  DeleteObject(bitmap);
}

// GDI has some ten thousand handles: losing one a round ends in a failure.
TEST(BitmapPicture, LosesNoHandles) {
  HBITMAP bitmap = makeBitmap(24, false, false);
  const Picture picture = Picture::ofBitmap(reinterpret_cast<GraphicsHandle>(bitmap));
  HDC dc = CreateCompatibleDC(nullptr);
  for (int round = 0; round < 20'000; ++round) {
    cDIBSection dib;
    ASSERT_TRUE(dib.CreateFromPicture(picture)) << round;
    ASSERT_NE(dib.Resample2(5, 5).hDC(), 0U) << round;
    HGDIOBJ previous = SelectObject(dc, bitmap);
    ASSERT_FALSE(dib.CreateFromPicture(picture)) << round;
    SelectObject(dc, previous);
  }
  DeleteDC(dc);
  DeleteObject(bitmap);
}

TEST(BitmapPicture, GoesWhereADriveRelativeNameLeads) {
  const TemporaryFolder folder;
  const std::filesystem::path previous = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  const std::string drive = folder.path().root_name().string();
  EXPECT_TRUE(VeltranoPNG().SavePNG(picture(twoColours()), drive + "a.png"));
  VeltranoJPG().SaveJPEG(picture(twoColours()), drive + "a.jpg");
  EXPECT_TRUE(std::filesystem::exists(folder / "a.png") && std::filesystem::exists(folder / "a.jpg"));
  std::filesystem::current_path(previous);
}

}  // namespace
}  // namespace veltrano::tests
