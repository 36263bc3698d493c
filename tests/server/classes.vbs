' Uses each of the other classes, and shows what a script sees of the lists of settings: names with an extra empty one, an
' empty value for a folder without keys, a list without elements for a missing one.
Option Explicit
Dim folder, kml, xml, ini, wev, lists
folder = WScript.Arguments(0)
Set kml = CreateObject("VeltranoFrameWorkDLL.VeltranoKML")
kml.CreateKML folder & "\places.kml", Empty
kml.CreatePlaceMark 51.5, 0.125, 10, "Here", ""
kml.CloseKML
Set xml = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
xml.XML_Open folder & "\settings.xml"
lists = "new " & Shape(xml.XML_EnumFolders)
xml.XML_SaveSetting "Display", "Width", 800
xml.XML_SaveSetting "Display", "Height", "600"
xml.XML_SaveSetting "Empty", "Key", "Value"
xml.XML_Save
lists = lists & "; keys " & Shape(xml.XML_EnumKeys("Display")) & "; missing " & Shape(xml.XML_EnumKeys("None"))
xml.XML_DeleteSetting "", "Empty", "Key"
lists = lists & "; emptied " & Shape(xml.XML_EnumKeys("Empty"))
Set ini = CreateObject("VeltranoFrameWorkDLL.VeltranoINI")
ini.SetIniValue folder & "\a.ini", "Key", "Value"
Set wev = CreateObject("VeltranoFrameWorkDLL.VeltranoWEV")
wev.LogNTEvent "An entry", 4, 7
WScript.Echo lists & "; " & ini.GetIniValue(folder & "\a.ini", "key", "none") & " " & kml.CreatePathString(1, 2, 3)

Function Shape(list)
    Dim name
    Shape = TypeName(list)
    If Not IsArray(list) Then Exit Function
    Shape = "array"
    For Each name In list
        Shape = Shape & " [" & name & "]"
    Next
End Function
