' Makes a smaller copy of a photo and proves it: asks for the size of the new picture.
'   cscript //nologo jpg.vbs OUTPUT_FOLDER
' Copy photo.jpg there first, from the folder samples.
Option Explicit

Dim files, file, jpg, pdf
Set files = CreateObject("Scripting.FileSystemObject")
file = WScript.Arguments(0) & "\small.jpg"
If files.FileExists(file) Then files.DeleteFile file

Set jpg = CreateObject("VeltranoFrameWorkDLL.VeltranoJPG")
jpg.SaveJPEGResampled WScript.Arguments(0) & "\photo.jpg", file, 80, 300, 200

' The class for PDF files reads the size of a JPEG file.
Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
If files.FileExists(file) Then
    WScript.Echo "small.jpg: " & pdf.PDFImageWidth(file) & " x " & pdf.PDFImageHeight(file) & " pixels"
Else
    WScript.Echo "small.jpg was not written"
End If
WScript.Echo "done"
