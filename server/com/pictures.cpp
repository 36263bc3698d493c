#include "server/com/pictures.h"

#include <memory>

#include "base/os/floating_point_windows.h"

namespace veltrano::server {

namespace {

/// A whole-number property of the picture's dispatch interface; 0 when it has none.
LONG property(IPictureDisp& object, DISPID id) {
  const HostArithmetic host;
  DISPPARAMS none = {};
  OwnedVariant result;
  if (FAILED(object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &none, result.get(),
                           nullptr, nullptr)) ||
      FAILED(VariantChangeType(result.get(), result.get(), 0, VT_I4))) {
    return 0;
  }
  return result->lVal;
}

}  // namespace

Picture picture(IPictureDisp* const* object) {
  if (object == nullptr || *object == nullptr || property(**object, DISPID_PICT_TYPE) != PICTYPE_BITMAP) {
    return {};
  }
  // Handles have 32 significant bits; on a 64-bit system they are sign-extended.
  const auto handle = static_cast<std::intptr_t>(property(**object, DISPID_PICT_HANDLE));
  return Picture::ofBitmap(static_cast<GraphicsHandle>(handle),
                           std::make_shared<ComPointer<IPictureDisp>>(*object));
}

}  // namespace veltrano::server
