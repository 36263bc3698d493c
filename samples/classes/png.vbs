' Saves a picture as a PNG file; the result says whether it was written.
'   cscript //nologo png.vbs OUTPUT_FOLDER
' Copy photo.jpg there first, from the folder samples.
' The project's tests do not run it: Wine's script hosts have no LoadPicture.
Option Explicit

Dim png
Set png = CreateObject("VeltranoFrameWorkDLL.VeltranoPNG")
If png.SavePNG(LoadPicture(WScript.Arguments(0) & "\photo.jpg"), WScript.Arguments(0) & "\photo.png") Then
    WScript.Echo "photo.png is written"
Else
    WScript.Echo "photo.png was not written"
End If
WScript.Echo "done"
