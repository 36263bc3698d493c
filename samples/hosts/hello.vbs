' Writes a page with a greeting.
'   cscript //nologo hello.vbs OUTPUT.pdf
Option Explicit

Const UNIT_MM = 1, FONT_ARIAL = 0, FONT_BOLD = 2

If WScript.Arguments.Count < 1 Then
    WScript.Echo "usage: cscript //nologo hello.vbs OUTPUT.pdf"
    WScript.Quit 1
End If
Dim pdf
Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFTitle = "Hello"
pdf.PDFFileName = WScript.Arguments(0)
pdf.PDFSetUnit = UNIT_MM
pdf.PDFBeginDoc
pdf.PDFSetFont FONT_ARIAL, 24, FONT_BOLD
pdf.PDFTextOut "Hello from VBScript", 20, 30
pdf.PDFSetLineWidth = 0.5
pdf.PDFDrawLineHor 20, 33, pdf.PDFGetStringWidth("Hello from VBScript", "", 24) * 25.4 / 72
pdf.PDFEndDoc
WScript.Echo "done"
