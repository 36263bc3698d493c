// Automation pictures into files and byte strings, and byte strings through addresses.

#include <gtest/gtest.h>

#include "host.h"

namespace veltrano::tests {

namespace {

constexpr int width = 40;
constexpr int height = 30;

/// A red picture, as LoadPicture gives hosts one.
ComPointer<IPictureDisp> redPicture() {
  const BITMAPINFO info = {{sizeof info.bmiHeader, width, height, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
  void* bits = nullptr;
  PICTDESC description = {};
  description.cbSizeofstruct = sizeof description;
  description.picType = PICTYPE_BITMAP;
  description.bmp.hbitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  std::fill_n(static_cast<DWORD*>(bits), width * height, DWORD{0x00FF0000});
  ComPointer<IPictureDisp> picture;
  OleCreatePictureIndirect(&description, IID_IPictureDisp, TRUE, reinterpret_cast<void**>(picture.out()));
  return picture;
}

class Pictures : public testing::Test {
 protected:
  Dll dll_;
  TemporaryFolder folder_;
  ComPointer<IPictureDisp> picture_ = redPicture();
  ComPointer<IDispatch> jpg_ = dll_.create(CLSID_VeltranoJPG);
  ComPointer<IDispatch> png_ = dll_.create(CLSID_VeltranoPNG);
};

TEST_F(Pictures, AreSavedAsFiles) {
  ASSERT_TRUE(picture_);
  const std::filesystem::path file = folder_ / L"\u4e00.png";
  EXPECT_EQ(L"True", callMethod(*png_.get(), L"SavePNG", {picture_.get(), file.c_str()}).result.text());
  const std::string png = readFile(file);
  EXPECT_EQ(std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x28\0\0\0\x1e", 24), png.substr(0, 24));
  for (const Argument& none : {Argument(), Argument::of(VT_NULL), Argument(static_cast<IUnknown*>(nullptr))})
    EXPECT_EQ(L"False", callMethod(*png_.get(), L"SavePNG", {none, file.c_str()}).result.text());
  EXPECT_EQ(DISP_E_TYPEMISMATCH, callMethod(*png_.get(), L"SavePNG", {L"text", file.c_str()}).status);
  EXPECT_EQ(png, readFile(file)) << "a refused picture must not touch the file";
  const std::filesystem::path jpeg = folder_ / L"a.jpg";
  EXPECT_EQ(S_OK, callMethod(*jpg_.get(), L"SaveJPEG", {picture_.get(), jpeg.c_str()}).status);
  EXPECT_EQ("\xFF\xD8\xFF", readFile(jpeg).substr(0, 3));
}

TEST_F(Pictures, BecomeByteStringsAndComeBackThroughAnAddress) {
  putProperty(*jpg_.get(), L"JPEGWidth", 1);
  const std::filesystem::path file = folder_ / L"a.jpg";
  callMethod(*jpg_.get(), L"SaveJPEG", {picture_.get(), file.c_str(), 90, 400, 300});
  const std::string jpeg = readFile(file);
  const Outcome encoded = callMethod(*jpg_.get(), L"SaveJPEGToMemoryResampled", {file.c_str(), 90});
  ASSERT_EQ(VT_BSTR, encoded.result->vt);
  EXPECT_EQ(0xFFU, encoded.result->bstrVal[0] & 0xFFFFU);
  const Outcome again = callMethod(*jpg_.get(), L"SaveJPEGFromRAMToMemoryResampled", {encoded.result});
  EXPECT_EQ(S_OK, again.status);
  EXPECT_EQ(L"400", getProperty(*jpg_.get(), L"JPEGWidth").result.text());
  EXPECT_EQ(L"300", getProperty(*jpg_.get(), L"JPEGHeight").result.text());

  const Argument address = Argument::of(sizeof(void*) == 8 ? VT_UI8 : VT_UI4, jpeg.data());
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP target = CreateCompatibleBitmap(screen, 10, 10);
  SelectObject(memory, target);
  const Argument context = Argument::of(sizeof(void*) == 8 ? VT_I8 : VT_I4, memory);
  const Outcome drawn = callMethod(*jpg_.get(), L"LoadJPEGFromRAM2Picture",
                                   {context, address, static_cast<int>(jpeg.size()), 10, 10});
  EXPECT_EQ(S_OK, drawn.status);
  EXPECT_EQ(L"False", drawn.result.text());
  const COLORREF pixel = GetPixel(memory, 5, 5);
  EXPECT_GT(GetRValue(pixel), 240);
  EXPECT_LT(GetGValue(pixel), 20);
  DeleteDC(memory);
  DeleteObject(target);
  ReleaseDC(nullptr, screen);
}

}  // namespace

}  // namespace veltrano::tests
