' Makes a document as VBScript does it: variables and literals, omitted arguments, arrays.
Option Explicit
Dim pdf, x, y, title
Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
title = "Quarterly report"
pdf.PDFTitle = title
pdf.PDFAuthor = "Jos" & Chr(233)
pdf.PDFFileName = WScript.Arguments(0) & "\script.pdf"
pdf.PDFUseOutlines = True
pdf.PDFBeginDoc
pdf.PDFFormatPage = Array(300.5, 400)
x = 3: y = 4.5
pdf.PDFTextOut title, x, y
pdf.PDFTextOut " (draft)"
pdf.PDFSetBookmark "First", 0, 5
pdf.PDFSetTextColor = Array(255, 128, 0)
pdf.PDFCell "cell", x, 6, 5, 1, "http://localhost/"
pdf.PDFSetLineColor = "#0000FF"
pdf.PDFDrawEllipse 10, 8, x
pdf.PDFDrawPolygon Array(1, 20), Array(x, 22), Array(5, "20")
pdf.PDFEndDoc
WScript.Echo "made " & pdf.PDFNbPage & " page, x is " & TypeName(x)
