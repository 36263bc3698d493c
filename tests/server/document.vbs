' Makes a document as scripts do it: variables and literals, omitted arguments, arrays.
Option Explicit
Dim pdf, k, x, y, w, h, title, folder, fso
folder = WScript.Arguments(0)
Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
title = "Quarterly report"
pdf.PDFSetUnit = 1
pdf.PDFTitle = title
pdf.PDFAuthor = "Jos" & Chr(233)
pdf.PDFSetMargins 20, 25
pdf.PDFFileName = folder & "\script.pdf"
pdf.PDFUseOutlines = True
pdf.PDFBeginDoc
pdf.PDFSetFont 0, 14, 12
x = 30: y = 40.5
pdf.PDFTextOut title, x, y
pdf.PDFTextOut " (draft)"
pdf.PDFSetBookmark "First"
pdf.PDFSetTextColor = Array(255, 128, 0)
pdf.PDFSetBorder = 1
pdf.PDFCell "cell", x, 60, 50, 10, "http://localhost/"
pdf.PDFSetLineColor = "#0000FF"
pdf.PDFDrawRectangle 30, 80, 40, 20
w = 60: h = 0
pdf.PDFDrawEllipse 100, 80, w
pdf.PDFDrawPolygon Array(10, 200), Array(x, 220), Array(50, "200")
pdf.PDFEndPage
pdf.PDFOrientation = 0
pdf.PDFFormatPage = Array(300.5, 400)
pdf.PDFNewPage
pdf.PDFTextOut "second page", 20, 20
pdf.PDFSetBookmark "Second", 0, 5
pdf.PDFEndDoc
WScript.Echo "made " & pdf.PDFNbPage & " pages, margin " & pdf.PDFGetRightMargin & ", x is " & TypeName(x)
