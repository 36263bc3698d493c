' Changes a key of an INI file and proves it: reads it back from the file.
'   cscript //nologo ini.vbs OUTPUT_FOLDER
Option Explicit

Dim file, ini
file = WScript.Arguments(0) & "\class.ini"
Set ini = CreateObject("VeltranoFrameWorkDLL.VeltranoINI")
ini.SetIniValue file, "Tray", "2"
If ini.GetIniValue(file, "tray", "") = "2" Then
    WScript.Echo "class.ini has the value"
Else
    WScript.Echo "class.ini was not written"
End If
WScript.Echo "done"
