' Saves a setting and proves it: a second object reads it from the file.
'   cscript //nologo xml.vbs OUTPUT_FOLDER
Option Explicit

Dim file, xml, again
file = WScript.Arguments(0) & "\class.xml"

Set xml = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
xml.XML_Open file
xml.XML_SaveSetting "Display", "Width", "800"
xml.XML_Save

Set again = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
again.XML_Open file
If again.XML_GetSetting("Display", "Width", "") = "800" Then
    WScript.Echo "class.xml has the setting"
Else
    WScript.Echo "class.xml was not saved"
End If
WScript.Echo "done"
