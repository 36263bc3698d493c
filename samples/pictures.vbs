' Makes smaller copies of a photo: files of several sizes and qualities, and one in memory.
'   cscript //nologo pictures.vbs SAMPLES_FOLDER OUTPUT_FOLDER
Option Explicit

Dim samples, output, photo, jpg
If WScript.Arguments.Count < 2 Then
    WScript.Echo "usage: cscript //nologo pictures.vbs SAMPLES_FOLDER OUTPUT_FOLDER"
    WScript.Quit 1
End If
samples = WScript.Arguments(0)
output = WScript.Arguments(1)
photo = samples & "\photo.jpg"

Set jpg = CreateObject("VeltranoFrameWorkDLL.VeltranoJPG")

' Both sizes together resize; the proportions are the caller's choice.
Copy "photo-600x400.jpg", 80, 600, 400
Copy "photo-150x100.jpg", 70, 150, 100
Copy "photo-wide.jpg", 70, 600, 100
Copy "photo-low-quality.jpg", 5, 0, 0

' In memory: a text with one character a byte.
Dim bytes, again
bytes = jpg.SaveJPEGToMemoryResampled(photo, 60, 300, 200)
again = jpg.SaveJPEGFromRAMToMemoryResampled(bytes, 30)
WScript.Echo "In memory " & jpg.JPEGWidth & " x " & jpg.JPEGHeight & " pixels: " & Len(bytes) & " bytes, " & _
             Len(again) & " at lower quality"

WScript.Echo "done"

Sub Copy(name, quality, width, height)
    jpg.SaveJPEGResampled photo, output & "\" & name, quality, width, height
    Dim files
    Set files = CreateObject("Scripting.FileSystemObject")
    WScript.Echo name & ": " & files.GetFile(output & "\" & name).Size & " bytes"
End Sub
