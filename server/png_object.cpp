#include "server/png_object.h"

#include "server/conversions.h"
#include "server/pictures.h"

namespace veltrano::server {

STDMETHODIMP PngObject::Init(BSTR* xInitString) {
  return run("Init", [&] { png_.Init(ansi(xInitString)); });
}

STDMETHODIMP PngObject::SavePNG(IPictureDisp** pct, BSTR* sPNGFileName, VARIANT_BOOL* result) {
  return run("SavePNG", result, [&] { answer(result, png_.SavePNG(picture(pct), path(sPNGFileName))); });
}

}  // namespace veltrano::server
