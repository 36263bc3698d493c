#include "server/com/class_table.h"

#include "server/classes/gis_object.h"
#include "server/classes/ini_object.h"
#include "server/classes/jpg_object.h"
#include "server/classes/kml_object.h"
#include "server/classes/mdb_object.h"
#include "server/classes/pdf_object.h"
#include "server/classes/png_object.h"
#include "server/classes/wev_object.h"
#include "server/classes/xml_object.h"

namespace veltrano::server {

std::span<const ClassEntry> classTable() {
  constexpr std::span<const KeptKind> noKinds;
  static const ClassEntry classes[] = {
      {&CLSID_VeltranoPDF, &IID__VeltranoPDF, &DIID___VeltranoPDF, L"VeltranoPDF", L"Veltrano PDF documents",
       PdfObject::keptKinds(), createObject<PdfObject>},
      {&CLSID_VeltranoKML, &IID__VeltranoKML, nullptr, L"VeltranoKML", L"Veltrano KML files", noKinds,
       createObject<KmlObject>},
      {&CLSID_VeltranoXML, &IID__VeltranoXML, nullptr, L"VeltranoXML", L"Veltrano XML settings", noKinds,
       createObject<XmlObject>},
      {&CLSID_VeltranoINI, &IID__VeltranoINI, nullptr, L"VeltranoINI", L"Veltrano INI files", noKinds,
       createObject<IniObject>},
      {&CLSID_VeltranoMDB, &IID__VeltranoMDB, nullptr, L"VeltranoMDB", L"Veltrano Access databases", noKinds,
       createObject<MdbObject>},
      {&CLSID_VeltranoJPG, &IID__VeltranoJPG, nullptr, L"VeltranoJPG", L"Veltrano JPEG pictures", noKinds,
       createObject<JpgObject>},
      {&CLSID_VeltranoPNG, &IID__VeltranoPNG, nullptr, L"VeltranoPNG", L"Veltrano PNG pictures", noKinds,
       createObject<PngObject>},
      {&CLSID_VeltranoWEV, &IID__VeltranoWEV, nullptr, L"VeltranoWEV", L"Veltrano event log", noKinds,
       createObject<WevObject>},
      {&CLSID_VeltranoGIS, &IID__VeltranoGIS, nullptr, L"VeltranoGIS", L"Veltrano GIS", noKinds,
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
