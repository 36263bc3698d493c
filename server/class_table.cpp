#include "server/class_table.h"

#include "server/gis_object.h"
#include "server/pdf_object.h"

namespace veltrano::server {

std::span<const ClassEntry> classTable() {
  static const ClassEntry classes[] = {
      {&CLSID_VeltranoPDF, &IID__VeltranoPDF, &DIID___VeltranoPDF, L"VeltranoPDF", L"Veltrano PDF documents",
       PdfObject::keptKinds(), createObject<PdfObject>},
      {&CLSID_VeltranoGIS, &IID__VeltranoGIS, nullptr, L"VeltranoGIS", L"Veltrano GIS", {},
       createObject<GisObject>},
  };
  return classes;
}

const ClassEntry* findClass(REFCLSID clsid) {
  for (const ClassEntry& entry : classTable()) {
    if (*entry.clsid == clsid) {
      return &entry;
    }
  }
  return nullptr;
}

}  // namespace veltrano::server
