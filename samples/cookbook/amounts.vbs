' Amounts in a column, aligned at their right ends, with a total.
'   cscript //nologo amounts.vbs OUTPUT_FOLDER
Option Explicit

Const UNIT_MM = 1, FONT_ARIAL = 0, FONT_NORMAL = 0, FONT_BOLD = 2
Const RIGHT_EDGE = 120, POINTS_IN_MM = 2.834645669

Dim pdf, amounts, amount, total, y
amounts = Array(1234.5, 9.99, -250, 100000)

Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFFileName = WScript.Arguments(0) & "\amounts.pdf"
pdf.PDFSetUnit = UNIT_MM
pdf.PDFSetLineWidth = 0.2
pdf.PDFBeginDoc
pdf.PDFSetFont FONT_ARIAL, 11, FONT_NORMAL
y = 30
total = 0
For Each amount In amounts
    RightText FormatNumber(amount, 2), y
    total = total + amount
    y = y + 6
Next
pdf.PDFDrawLineHor RIGHT_EDGE - 30, y - 3.5, 30
pdf.PDFSetFont FONT_ARIAL, 11, FONT_BOLD
RightText FormatNumber(total, 2), y + 1
pdf.PDFEndDoc
WScript.Echo "amounts.pdf: total " & FormatNumber(total, 2)
WScript.Echo "done"

' A width is in points, a position in the user's unit.
Sub RightText(text, y)
    pdf.PDFTextOut text, RIGHT_EDGE - pdf.PDFGetStringWidth(text, "", 11) / POINTS_IN_MM, y
End Sub
