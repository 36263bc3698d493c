#ifndef VELTRANO_SERVER_CLASSES_KML_OBJECT_H
#define VELTRANO_SERVER_CLASSES_KML_OBJECT_H

#include "server/com/automation_object.h"
#include "veltrano/kml.h"

namespace veltrano::server {

/// VeltranoKML as hosts see it.
class KmlObject final : public AutomationObject<_VeltranoKML> {
 public:
  using AutomationObject::AutomationObject;

  // The members of _VeltranoKML, in interface order.
  STDMETHODIMP CreateKML(BSTR* filename, VARIANT* Description, BSTR* ExtendedData,
                         VARIANT_BOOL* IncludeGeneratedBy) override;
  STDMETHODIMP ClearPath() override;
  STDMETHODIMP CreatePathFromPlaceMarks(short* Size, BSTR* pColor) override;
  STDMETHODIMP CreatePathFromString(short* Size, BSTR* pColor, BSTR* PathData, BSTR* PathName,
                                    VARIANT_BOOL* Line3D) override;
  STDMETHODIMP CreateCameraOverlay(BSTR* filename, double* X, double* y, double* Altitude, BSTR* pName,
                                   BSTR* visibility, BSTR* shape) override;
  STDMETHODIMP CreateGroundOverlay(BSTR* filename, double* X, double* y, double* Altitude, BSTR* pName,
                                   BSTR* HTMLDescription, BSTR* shape, BSTR* Heading) override;
  STDMETHODIMP CreateStreetView(BSTR* filename, double* X, double* y, double* Altitude, BSTR* pName,
                                BSTR* HTMLDescription, BSTR* shape, BSTR* Heading) override;
  STDMETHODIMP CreatePlaceMark(double* X, double* y, double* Altitude, BSTR* pName, BSTR* pDescription,
                               BSTR* TimeStamp, BSTR* ExtendedData) override;
  STDMETHODIMP CreatePathPoint(double* X, double* y, double* Altitude) override;
  STDMETHODIMP CreatePathString(double* X, double* y, double* Altitude, BSTR* result) override;
  STDMETHODIMP CloseKML() override;

 private:
  VeltranoKML kml_;
};

}  // namespace veltrano::server

#endif
