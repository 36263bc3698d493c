#include "server/com/dispatch/defaults.h"

namespace veltrano::server {

namespace {

// Flags are false. The margins' default is the 16-bit pattern FFFF, which reads as -1.
const Default defaults[] = {
    {&IID__VeltranoPDF, L"PDFSetMargins", L"in_right", -1, nullptr},
    {&IID__VeltranoPDF, L"PDFSetMargins", L"in_bottom", -1, nullptr},
    {&IID__VeltranoPDF, L"PDFSetBookmark", L"iLevel", 0, nullptr},
    {&IID__VeltranoPDF, L"PDFSetBookmark", L"y", -1, nullptr},
    {&IID__VeltranoPDF, L"PDFSetFont", L"str_Style", 0, nullptr},
    {&IID__VeltranoPDF, L"PDFGetStringWidth", L"str_FName", 0, L""},
    {&IID__VeltranoPDF, L"PDFGetStringWidth", L"in_FSize", 0, nullptr},
    {&IID__VeltranoPDF, L"PDFDrawRectangle", L"URLLink", 0, L""},
    {&IID__VeltranoPDF, L"PDFDrawEllipse", L"ry", 0, nullptr},
    {&IID__VeltranoPDF, L"PDFDrawEllipse", L"URLLink", 0, L""},
    {&IID__VeltranoPDF, L"PDFTextOut", L"X", 0, nullptr},
    {&IID__VeltranoPDF, L"PDFTextOut", L"y", 0, nullptr},
    {&IID__VeltranoPDF, L"PDFCell", L"URLLink", 0, L""},
    {&IID__VeltranoPDF, L"PDFLink", L"str_Link", 0, L""},
    {&IID__VeltranoPDF, L"PDFImage", L"w", 0, nullptr},
    {&IID__VeltranoPDF, L"PDFImage", L"h", 0, nullptr},
    {&IID__VeltranoPDF, L"PDFImage", L"URLLink", 0, L""},
    {&IID__VeltranoKML, L"CreateKML", L"ExtendedData", 0, L""},
    {&IID__VeltranoKML, L"CreateKML", L"IncludeGeneratedBy", 0, nullptr},
    {&IID__VeltranoKML, L"CreatePathFromString", L"Line3D", 0, nullptr},
    {&IID__VeltranoKML, L"CreateCameraOverlay", L"visibility", 0, L"0"},
    {&IID__VeltranoKML, L"CreateCameraOverlay", L"shape", 0, L"rectangle"},
    {&IID__VeltranoKML, L"CreateGroundOverlay", L"shape", 0, L"rectangle"},
    {&IID__VeltranoKML, L"CreateGroundOverlay", L"Heading", 0, L""},
    {&IID__VeltranoKML, L"CreateStreetView", L"shape", 0, L"rectangle"},
    {&IID__VeltranoKML, L"CreateStreetView", L"Heading", 0, L""},
    {&IID__VeltranoKML, L"CreatePlaceMark", L"TimeStamp", 0, L""},
    {&IID__VeltranoKML, L"CreatePlaceMark", L"ExtendedData", 0, L""},
    {&IID__VeltranoXML, L"XML_GetSetting", L"Default", 0, L""},
    {&IID__VeltranoXML, L"XML_DeleteSetting", L"Key", 0, L""},
    {&IID__VeltranoINI, L"GetValue", L"Default", 0, L""},
    {&IID__VeltranoMDB, L"OpenDB", L"Username", 0, L""},
    {&IID__VeltranoMDB, L"OpenDB", L"Password", 0, L""},
    {&IID__VeltranoJPG, L"SaveJPEG", L"JPEGQuality", 50, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEG", L"FixWidth", 0, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEG", L"FixHeight", 0, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGToMemory", L"JPEGQuality", 50, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGToMemory", L"FixWidth", 0, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGToMemory", L"FixHeight", 0, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGFromRAMToMemoryResampled", L"JPEGQuality", 50, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGFromRAMToMemoryResampled", L"FixWidth", 0, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGFromRAMToMemoryResampled", L"FixHeight", 0, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGToMemoryResampled", L"JPEGQuality", 50, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGToMemoryResampled", L"FixWidth", 0, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGToMemoryResampled", L"FixHeight", 0, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGResampled", L"JPEGQuality", 50, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGResampled", L"FixWidth", 0, nullptr},
    {&IID__VeltranoJPG, L"SaveJPEGResampled", L"FixHeight", 0, nullptr},
    {&IID__VeltranoWEV, L"LogNTEvent", L"AppSource", 0, L""},
};

}  // namespace

std::span<const Default> defaultTable() {
  return defaults;
}

}  // namespace veltrano::server
