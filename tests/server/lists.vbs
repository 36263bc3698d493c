' Shows what a script sees of the lists of settings: names with an extra empty one, an empty value for a folder without
' keys, a list without elements for a missing one.
Option Explicit
Dim xml, said, list, name
Set xml = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
xml.XML_SaveSetting "Display", "Width", 800
xml.XML_SaveSetting "Display", "Height", "600"
xml.XML_SaveSetting "Empty", "Key", "Value"
xml.XML_DeleteSetting "", "Empty", "Key"
For Each list In Array(xml.XML_EnumFolders, xml.XML_EnumKeys("Display"), xml.XML_EnumKeys("Empty"), xml.XML_EnumKeys("None"))
    If IsArray(list) Then
        For Each name In list
            said = said & "[" & name & "]"
        Next
        said = said & " array, "
    Else
        said = said & TypeName(list) & ", "
    End If
Next
WScript.Echo said & xml.XML_GetSetting("Display", "Width", "")
