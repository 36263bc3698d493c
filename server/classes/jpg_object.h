#ifndef VELTRANO_SERVER_CLASSES_JPG_OBJECT_H
#define VELTRANO_SERVER_CLASSES_JPG_OBJECT_H

#include <type_traits>

#include "server/com/automation_object.h"
#include "veltrano/jpg.h"

namespace veltrano::server {

/// An address or a handle as hosts pass it: as wide as a pointer, and signed.
using AddressNumber = std::conditional_t<sizeof(void*) == 8, hyper, long>;

/// VeltranoJPG as hosts see it.
class JpgObject final : public AutomationObject<_VeltranoJPG> {
 public:
  using AutomationObject::AutomationObject;

  // The members of _VeltranoJPG, in interface order.
  STDMETHODIMP get_JPEGWidth(long* result) override;
  STDMETHODIMP put_JPEGWidth(long* newValue) override;
  STDMETHODIMP get_JPEGHeight(long* result) override;
  STDMETHODIMP put_JPEGHeight(long* newValue) override;
  STDMETHODIMP SaveJPEG(IPictureDisp** ImageToSave, BSTR* xFilename, long* JPEGQuality, long* FixWidth,
                        long* FixHeight) override;
  STDMETHODIMP SaveJPEGToMemory(IPictureDisp** ImageToSave, long* JPEGQuality, long* FixWidth,
                                long* FixHeight, BSTR* result) override;
  STDMETHODIMP LoadJPEGFromRAMToPicture(AddressNumber* ArrayPointer, long* ArraySize, long* X, long* y,
                                        IPictureDisp** result) override;
  STDMETHODIMP LoadJPEGFromRAM2Picture(AddressNumber* Dest_hDC, AddressNumber* ArrayPointer, long* ArraySize,
                                       long* X, long* y, VARIANT_BOOL* result) override;
  STDMETHODIMP LoadJPEGFromRAM2PictureXY(AddressNumber* Dest_hDC, AddressNumber* ArrayPointer,
                                         long* ArraySize, long* x1, long* Y1, long* X, long* y,
                                         VARIANT_BOOL* result) override;
  STDMETHODIMP SaveJPEGFromRAMToMemoryResampled(BSTR* ImageToSave, long* JPEGQuality, long* FixWidth,
                                                long* FixHeight, BSTR* result) override;
  STDMETHODIMP SaveJPEGToMemoryResampled(BSTR* ImageToSave, long* JPEGQuality, long* FixWidth,
                                         long* FixHeight, BSTR* result) override;
  STDMETHODIMP SaveJPEGResampled(BSTR* ImageToSave, BSTR* TargetFile, long* JPEGQuality, long* FixWidth,
                                 long* FixHeight, VARIANT* result) override;

 private:
  VeltranoJPG jpg_;
};

}  // namespace veltrano::server

#endif
