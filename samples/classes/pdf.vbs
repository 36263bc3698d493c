' Writes a page and proves it: the file was deleted first and has to be there afterwards.
'   cscript //nologo pdf.vbs OUTPUT_FOLDER
Option Explicit

Const UNIT_MM = 1, FONT_ARIAL = 0

Dim files, file, pdf
Set files = CreateObject("Scripting.FileSystemObject")
file = WScript.Arguments(0) & "\page.pdf"
If files.FileExists(file) Then files.DeleteFile file

Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFFileName = file
pdf.PDFSetUnit = UNIT_MM
pdf.PDFBeginDoc
pdf.PDFSetFont FONT_ARIAL, 12
pdf.PDFTextOut "A page", 20, 30
' A text in a font without metrics has no width, and viewers may not show it.
If pdf.PDFGetStringWidth("A page", "", 12) = 0 Then WScript.Echo "the font has no metrics"
pdf.PDFEndDoc

If files.FileExists(file) Then
    WScript.Echo "page.pdf: " & pdf.PDFNbPage & " page"
Else
    WScript.Echo "page.pdf was not written: is there such a folder, and is the old file open in a viewer?"
End If
WScript.Echo "done"
