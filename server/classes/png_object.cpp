#include "server/classes/png_object.h"

#include "server/com/conversions.h"
#include "server/com/pictures.h"

namespace veltrano::server {

STDMETHODIMP PngObject::Init(BSTR* xInitString) {
  return run("Init", [&] { png_.Init(ansi(xInitString)); });
}

STDMETHODIMP PngObject::SavePNG(IPictureDisp** pct, BSTR* sPNGFileName, VARIANT_BOOL* result) {
  return run("SavePNG", result, [&] { answer(result, png_.SavePNG(picture(pct), path(sPNGFileName))); });
}

}  // namespace veltrano::server
