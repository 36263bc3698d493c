#include "server/classes/jpg_object.h"

#include "server/com/conversions.h"
#include "server/com/pictures.h"

namespace veltrano::server {

namespace {

// JPEG bytes are one character a byte, by the ANSI conversion.
void answerBytes(BSTR* result, const std::string& bytes) {
  answer(result, bytes, TextForm::ansi);
}

std::uintptr_t address(const AddressNumber* value) {
  return static_cast<std::uintptr_t>(number(value));
}
long quality(const long* value) {
  return number(value, long{VeltranoJPG::defaultQuality});
}

}  // namespace

STDMETHODIMP JpgObject::get_JPEGWidth(long* result) {
  return run("JPEGWidth", result, [&] { answer(result, long{jpg_.JPEGWidth}); });
}

STDMETHODIMP JpgObject::put_JPEGWidth(long* newValue) {
  return run("JPEGWidth", [&] { jpg_.JPEGWidth = number(newValue); });
}

STDMETHODIMP JpgObject::get_JPEGHeight(long* result) {
  return run("JPEGHeight", result, [&] { answer(result, long{jpg_.JPEGHeight}); });
}

STDMETHODIMP JpgObject::put_JPEGHeight(long* newValue) {
  return run("JPEGHeight", [&] { jpg_.JPEGHeight = number(newValue); });
}

STDMETHODIMP JpgObject::SaveJPEG(IPictureDisp** ImageToSave, BSTR* xFilename, long* JPEGQuality,
                                 long* FixWidth, long* FixHeight) {
  return run("SaveJPEG", [&] {
    jpg_.SaveJPEG(picture(ImageToSave), path(xFilename), quality(JPEGQuality), number(FixWidth),
                  number(FixHeight));
  });
}

STDMETHODIMP JpgObject::SaveJPEGToMemory(IPictureDisp** ImageToSave, long* JPEGQuality, long* FixWidth,
                                         long* FixHeight, BSTR* result) {
  return run("SaveJPEGToMemory", result, [&] {
    answerBytes(result, jpg_.SaveJPEGToMemory(picture(ImageToSave), quality(JPEGQuality), number(FixWidth),
                                              number(FixHeight)));
  });
}

STDMETHODIMP JpgObject::LoadJPEGFromRAMToPicture(AddressNumber* ArrayPointer, long* ArraySize, long* X,
                                                 long* y, IPictureDisp** result) {
  return run("LoadJPEGFromRAMToPicture", result, [&] {
    // The result is never a picture.
    static_cast<void>(
        jpg_.LoadJPEGFromRAMToPicture(address(ArrayPointer), number(ArraySize), number(X), number(y)));
    answer(result, static_cast<IPictureDisp*>(nullptr));
  });
}

STDMETHODIMP JpgObject::LoadJPEGFromRAM2Picture(AddressNumber* Dest_hDC, AddressNumber* ArrayPointer,
                                                long* ArraySize, long* X, long* y, VARIANT_BOOL* result) {
  return run("LoadJPEGFromRAM2Picture", result, [&] {
    answer(result, jpg_.LoadJPEGFromRAM2Picture(address(Dest_hDC), address(ArrayPointer), number(ArraySize),
                                                number(X), number(y)));
  });
}

STDMETHODIMP JpgObject::LoadJPEGFromRAM2PictureXY(AddressNumber* Dest_hDC, AddressNumber* ArrayPointer,
                                                  long* ArraySize, long* x1, long* Y1, long* X, long* y,
                                                  VARIANT_BOOL* result) {
  return run("LoadJPEGFromRAM2PictureXY", result, [&] {
    answer(result, jpg_.LoadJPEGFromRAM2PictureXY(address(Dest_hDC), address(ArrayPointer), number(ArraySize),
                                                  number(x1), number(Y1), number(X), number(y)));
  });
}

STDMETHODIMP JpgObject::SaveJPEGFromRAMToMemoryResampled(BSTR* ImageToSave, long* JPEGQuality, long* FixWidth,
                                                         long* FixHeight, BSTR* result) {
  return run("SaveJPEGFromRAMToMemoryResampled", result, [&] {
    answerBytes(result, jpg_.SaveJPEGFromRAMToMemoryResampled(ansi(ImageToSave), quality(JPEGQuality),
                                                              number(FixWidth), number(FixHeight)));
  });
}

STDMETHODIMP JpgObject::SaveJPEGToMemoryResampled(BSTR* ImageToSave, long* JPEGQuality, long* FixWidth,
                                                  long* FixHeight, BSTR* result) {
  return run("SaveJPEGToMemoryResampled", result, [&] {
    answerBytes(result, jpg_.SaveJPEGToMemoryResampled(path(ImageToSave), quality(JPEGQuality),
                                                       number(FixWidth), number(FixHeight)));
  });
}

STDMETHODIMP JpgObject::SaveJPEGResampled(BSTR* ImageToSave, BSTR* TargetFile, long* JPEGQuality,
                                          long* FixWidth, long* FixHeight, VARIANT* result) {
  return run("SaveJPEGResampled", result, [&] {
    jpg_.SaveJPEGResampled(path(ImageToSave), path(TargetFile), quality(JPEGQuality), number(FixWidth),
                           number(FixHeight));
    answer(result, Value(), TextForm::ansi);
  });
}

}  // namespace veltrano::server
