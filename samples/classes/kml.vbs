' Writes a place and proves it: a complete file ends with the closing line.
'   cscript //nologo kml.vbs OUTPUT_FOLDER
Option Explicit

Dim files, file, kml
Set files = CreateObject("Scripting.FileSystemObject")
file = WScript.Arguments(0) & "\place.kml"
If files.FileExists(file) Then files.DeleteFile file

Set kml = CreateObject("VeltranoFrameWorkDLL.VeltranoKML")
kml.CreateKML file, ""
kml.CreatePlaceMark 48.8584, 2.2945, 330, "Tower", "Start of the walk"
kml.CloseKML

If Not files.FileExists(file) Then
    WScript.Echo "place.kml was not written: is there such a folder?"
ElseIf InStr(files.OpenTextFile(file).ReadAll, "</kml>") = 0 Then
    WScript.Echo "place.kml is incomplete"
Else
    WScript.Echo "place.kml is complete"
End If
WScript.Echo "done"
