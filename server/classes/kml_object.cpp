#include "server/classes/kml_object.h"

#include "server/com/conversions.h"

namespace veltrano::server {

namespace {

constexpr const char* defaultVisibility = "0";
constexpr const char* defaultShape = "rectangle";

}  // namespace

STDMETHODIMP KmlObject::CreateKML(BSTR* filename, VARIANT* /*Description*/, BSTR* ExtendedData,
                                  VARIANT_BOOL* IncludeGeneratedBy) {
  return run("CreateKML", [&] {
    // The description is not used: an object given for it is not asked for its value.
    kml_.CreateKML(path(filename), {}, ansi(ExtendedData), number(IncludeGeneratedBy));
  });
}

STDMETHODIMP KmlObject::ClearPath() {
  return run("ClearPath", [&] { kml_.ClearPath(); });
}

STDMETHODIMP KmlObject::CreatePathFromPlaceMarks(short* Size, BSTR* pColor) {
  return run("CreatePathFromPlaceMarks", [&] { kml_.CreatePathFromPlaceMarks(number(Size), ansi(pColor)); });
}

STDMETHODIMP KmlObject::CreatePathFromString(short* Size, BSTR* pColor, BSTR* PathData, BSTR* PathName,
                                             VARIANT_BOOL* Line3D) {
  return run("CreatePathFromString", [&] {
    kml_.CreatePathFromString(number(Size), ansi(pColor), ansi(PathData), ansi(PathName), number(Line3D));
  });
}

STDMETHODIMP KmlObject::CreateCameraOverlay(BSTR* filename, double* X, double* y, double* Altitude,
                                            BSTR* pName, BSTR* visibility, BSTR* shape) {
  return run("CreateCameraOverlay", [&] {
    kml_.CreateCameraOverlay(ansi(filename), number(X), number(y), number(Altitude), ansi(pName),
                             ansi(visibility, defaultVisibility), ansi(shape, defaultShape));
  });
}

STDMETHODIMP KmlObject::CreateGroundOverlay(BSTR* filename, double* X, double* y, double* Altitude,
                                            BSTR* pName, BSTR* HTMLDescription, BSTR* shape, BSTR* Heading) {
  return run("CreateGroundOverlay", [&] {
    kml_.CreateGroundOverlay(ansi(filename), number(X), number(y), number(Altitude), ansi(pName),
                             ansi(HTMLDescription), ansi(shape, defaultShape), ansi(Heading));
  });
}

STDMETHODIMP KmlObject::CreateStreetView(BSTR* filename, double* X, double* y, double* Altitude, BSTR* pName,
                                         BSTR* HTMLDescription, BSTR* shape, BSTR* Heading) {
  return run("CreateStreetView", [&] {
    kml_.CreateStreetView(ansi(filename), number(X), number(y), number(Altitude), ansi(pName),
                          ansi(HTMLDescription), ansi(shape, defaultShape), ansi(Heading));
  });
}

STDMETHODIMP KmlObject::CreatePlaceMark(double* X, double* y, double* Altitude, BSTR* pName,
                                        BSTR* pDescription, BSTR* TimeStamp, BSTR* ExtendedData) {
  return run("CreatePlaceMark", [&] {
    kml_.CreatePlaceMark(number(X), number(y), number(Altitude), ansi(pName), ansi(pDescription),
                         ansi(TimeStamp), ansi(ExtendedData));
  });
}

STDMETHODIMP KmlObject::CreatePathPoint(double* X, double* y, double* Altitude) {
  return run("CreatePathPoint", [&] { kml_.CreatePathPoint(number(X), number(y), number(Altitude)); });
}

STDMETHODIMP KmlObject::CreatePathString(double* X, double* y, double* Altitude, BSTR* result) {
  return run("CreatePathString", result, [&] {
    answer(result, kml_.CreatePathString(number(X), number(y), number(Altitude)), TextForm::ansi);
  });
}

STDMETHODIMP KmlObject::CloseKML() {
  return run("CloseKML", [&] { kml_.CloseKML(); });
}

}  // namespace veltrano::server
