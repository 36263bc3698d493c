' A photo, scaled so that it fits a box and keeps its proportions, and centred in it.
'   cscript //nologo photo.vbs OUTPUT_FOLDER
' Copy photo.jpg there first, from the folder samples.
Option Explicit

Const UNIT_MM = 1

Dim pdf
Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFFileName = WScript.Arguments(0) & "\photo.pdf"
pdf.PDFSetUnit = UNIT_MM
pdf.PDFSetLineWidth = 0.2
pdf.PDFBeginDoc
Fit WScript.Arguments(0) & "\photo.jpg", 20, 20, 80, 80
Fit WScript.Arguments(0) & "\photo.jpg", 110, 20, 80, 30
pdf.PDFEndDoc
WScript.Echo "done"

Sub Fit(file, x, y, width, height)
    Dim pixelWidth, pixelHeight, scale, w, h
    pdf.PDFDrawPolygon Array(x, y), Array(x + width, y), Array(x + width, y + height), Array(x, y + height)
    pixelWidth = pdf.PDFImageWidth(file)
    pixelHeight = pdf.PDFImageHeight(file)
    If pixelWidth = 0 Or pixelHeight = 0 Then
        WScript.Echo file & " is not a picture that can be placed"
        Exit Sub
    End If
    scale = width / pixelWidth
    If height / pixelHeight < scale Then scale = height / pixelHeight
    w = pixelWidth * scale
    h = pixelHeight * scale
    pdf.PDFImage file, x + (width - w) / 2, y + (height - h) / 2, w, h
    WScript.Echo FormatNumber(w, 1) & " x " & FormatNumber(h, 1) & " mm"
End Sub
