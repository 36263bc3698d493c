' Uses each of the other classes once.
Option Explicit
Dim folder, kml, xml, ini, mdb, names, wev, last
folder = WScript.Arguments(0)
Set kml = CreateObject("VeltranoFrameWorkDLL.VeltranoKML")
kml.CreateKML folder & "\places.kml", Empty
kml.CreatePlaceMark 51.5, 0.125, 10, "Here", ""
kml.CloseKML
Set xml = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
xml.XML_Open folder & "\settings.xml"
last = UBound(xml.XML_EnumFolders)
xml.XML_SaveSetting "Display", "Width", 800
xml.XML_SaveSetting "Display", "Height", "600"
xml.XML_Save
names = xml.XML_EnumKeys("Display")
Set ini = CreateObject("VeltranoFrameWorkDLL.VeltranoINI")
ini.SetIniValue folder & "\a.ini", "Key", "Value"
Set mdb = CreateObject("VeltranoFrameWorkDLL.VeltranoMDB")
Set wev = CreateObject("VeltranoFrameWorkDLL.VeltranoWEV")
wev.LogNTEvent "An entry", 4, 7
WScript.Echo names(0) & " " & names(1) & " " & UBound(names) & " " & last & " " & _
    ini.GetIniValue(folder & "\a.ini", "key", "none") & " " & mdb.OpenDB(folder & "\missing.mdb") & " " & _
    kml.CreatePathString(1, 2, 3)
