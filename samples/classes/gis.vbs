' Creates an object of each class, which shows whether the library is registered for this script host.
'   cscript //nologo gis.vbs
Option Explicit

Dim name, made
For Each name In Array("PDF", "KML", "XML", "INI", "MDB", "JPG", "PNG", "WEV", "GIS")
    Set made = CreateObject("VeltranoFrameWorkDLL.Veltrano" & name)
Next
WScript.Echo "all classes can be created"
WScript.Echo "done"
