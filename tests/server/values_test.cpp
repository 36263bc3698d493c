// What passes between hosts and the portable classes: values, byte strings, pictures and addresses.

#include <gtest/gtest.h>

#include "host.h"
#include "server/com/conversions.h"

namespace veltrano::tests {

namespace {

using server::TextForm;

TEST(Conversions, KeepTheKind) {
  Argument decimal;
  decimal->decVal.scale = 28;
  decimal->decVal.sign = DECIMAL_NEG;
  decimal->decVal.Hi32 = 1;
  decimal->decVal.Lo64 = 0xAB54A98CEB1F0AD2;
  decimal->vt = VT_DECIMAL;
  SAFEARRAYBOUND bounds[] = {{2, 1}, {3, 0}};
  const Argument matrix = Argument::of(VT_ARRAY | VT_I2, SafeArrayCreate(VT_I2, 2, bounds));
  // The leftmost dimension lies together.
  for (SHORT i = 0; i < 6; ++i) static_cast<SHORT*>(matrix->parray->pvData)[i] = i;
  Argument itself;
  itself->vt = VT_BYREF | VT_VARIANT;
  itself->pvarVal = itself.get();
  const std::pair<Value, Argument> rows[] = {
      {{}, {}},
      {Null{}, Argument::of(VT_NULL)},
      {true, true},
      {7, 7},
      {std::int64_t{4294967295}, Argument::of(VT_UI4, 0xFFFFFFFF)},
      {0.5, 0.5},
      {0.1F, Argument::of(VT_R4, 0.1F)},
      {Date{2.5}, Argument::of(VT_DATE, 2.5)},
      {Currency{123456789012}, Argument::of(VT_CY, std::int64_t{123456789012})},
      {Decimal{true, {0xEB1F0AD2, 0xAB54A98C, 0x1, 0}, 28}, decimal},
      {"\xE9", L"\u00e9"},
      {Value::Doubles{0, 0}, Argument::array(VT_R8, 2)},
      {Value::List{1, Value::List{"a"}}, Argument{1, Argument{L"a"}}},
      {Value::List{Value::List{0, 2, 4}, Value::List{1, 3, 5}}, matrix}};
  for (auto [expected, given] : rows) EXPECT_EQ(expected, server::value(given.get(), TextForm::ansi));
  EXPECT_EQ(Value(Opaque{}), server::value(itself.get(), TextForm::ansi));
  itself->vt = VT_EMPTY;
}

/// A red picture of 40 x 30 pixels, as LoadPicture gives hosts one.
ComPointer<IPictureDisp> redPicture() {
  const BITMAPINFO info = {{sizeof info.bmiHeader, 40, 30, 1, 32, BI_RGB, 0, 0, 0, 0, 0}, {}};
  void* bits = nullptr;
  PICTDESC description = {};
  description.cbSizeofstruct = sizeof description;
  description.picType = PICTYPE_BITMAP;
  description.bmp.hbitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  std::fill_n(static_cast<DWORD*>(bits), 40 * 30, DWORD{0x00FF0000});
  ComPointer<IPictureDisp> picture;
  OleCreatePictureIndirect(&description, IID_IPictureDisp, TRUE, reinterpret_cast<void**>(picture.out()));
  return picture;
}

TEST(Pictures, BecomeFilesAndByteStringsAndComeBackThroughAnAddress) {
  const Dll dll;
  const TemporaryFolder folder;
  const ComPointer<IPictureDisp> picture = redPicture();
  const auto png = dll.create(CLSID_VeltranoPNG);
  const auto save = [&, file = folder / L"\u4e00.png"](const Argument& source) {
    const Outcome saved = callMethod(*png.get(), L"SavePNG", {source, file.c_str()});
    EXPECT_EQ(std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x28\0\0\0\x1e", 24),
              readFile(file).substr(0, 24));
    return FAILED(saved.status) ? L"refused" : saved.result.text();
  };
  EXPECT_EQ(L"True", save(picture.get()));
  for (const Argument& none : {Argument(), Argument::of(VT_NULL), Argument(static_cast<IUnknown*>(nullptr))})
    EXPECT_EQ(L"False", save(none));
  EXPECT_EQ(L"refused", save(L"text"));

  const auto jpg = dll.create<_VeltranoJPG>(CLSID_VeltranoJPG, IID__VeltranoJPG);
  const std::filesystem::path file = folder / L"a.jpg";
  callMethod(*jpg.get(), L"SaveJPEG", {picture.get(), file.c_str(), 90, 400, 300});
  const std::string jpeg = readFile(file);
  const Outcome encoded = callMethod(*jpg.get(), L"SaveJPEGToMemoryResampled", {file.c_str(), 90});
  EXPECT_EQ(L'\u00ff', encoded.result.text()[0]);
  callMethod(*jpg.get(), L"SaveJPEGFromRAMToMemoryResampled", {encoded.result});
  // The quality that is left out, late bound and early bound.
  Argument name(file.c_str()), early = Argument::of(VT_BSTR);
  jpg->SaveJPEGToMemoryResampled(&name->bstrVal, nullptr, nullptr, nullptr, &early->bstrVal);
  for (const Argument& omitted : {callMethod(*jpg.get(), L"SaveJPEGToMemoryResampled", {name}).result, early})
    EXPECT_EQ(callMethod(*jpg.get(), L"SaveJPEGToMemoryResampled", {name, 50}).result.text(), omitted.text());
  EXPECT_EQ(L"400", getProperty(*jpg.get(), L"JPEGWidth"));
  EXPECT_EQ(L"300", getProperty(*jpg.get(), L"JPEGHeight"));

  const HDC memory = CreateCompatibleDC(nullptr);
  const HBITMAP target = CreateBitmap(10, 10, 1, 32, nullptr);
  SelectObject(memory, target);
  constexpr bool wide = sizeof(void*) == 8;
  const Outcome drawn =
      callMethod(*jpg.get(), L"LoadJPEGFromRAM2Picture",
                 {Argument::of(wide ? VT_I8 : VT_I4, memory),
                  Argument::of(wide ? VT_UI8 : VT_UI4, jpeg.data()), static_cast<int>(jpeg.size()), 10, 10});
  EXPECT_EQ(L"False", drawn.result.text());
  const COLORREF pixel = GetPixel(memory, 5, 5);
  EXPECT_TRUE(GetRValue(pixel) > 240 && GetGValue(pixel) < 20) << pixel;
  DeleteDC(memory);
  DeleteObject(target);
}

}  // namespace

}  // namespace veltrano::tests
