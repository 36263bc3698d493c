' A paragraph that is broken into lines, and a box that is as high as its text.
'   cscript //nologo wrapped-text.vbs OUTPUT_FOLDER
Option Explicit

Const UNIT_MM = 1, FONT_TIMES = 2, ALIGN_FJUSTIFY = 3, BORDER_ALL = 1
Const POINTS_IN_MM = 2.834645669

Dim pdf, text, lines
text = "A cell breaks its text at blanks wherever a line would be wider than the cell less two cell margins. " & _
       "A word is never cut, so a long name or an amount stays whole and runs over the edge instead." & vbCrLf & _
       "A line end in the text starts a new line."

Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFFileName = WScript.Arguments(0) & "\wrapped-text.pdf"
pdf.PDFSetUnit = UNIT_MM
pdf.PDFSetLineWidth = 0.2
pdf.PDFBeginDoc
pdf.PDFSetFont FONT_TIMES, 12
pdf.PDFSetAlignement = ALIGN_FJUSTIFY
pdf.PDFSetBorder = BORDER_ALL
pdf.PDFDrawLineHor 25, 30, 80           ' the box has the colour and the width of the last line
lines = CountLines(text, 80)
' Lines are 1.2 font sizes apart; one more line of height leaves room above and below.
pdf.PDFCell text, 25, 30, 80, (lines + 1) * 12 * 1.2 / POINTS_IN_MM
pdf.PDFEndDoc
WScript.Echo "wrapped-text.pdf: " & lines & " lines"
WScript.Echo "done"

' The lines that a cell of this width makes of the text.
Function CountLines(text, width)
    Dim paragraph, word, line, room
    room = width * POINTS_IN_MM - 2 * pdf.PDFGetCellMargin
    CountLines = 0
    For Each paragraph In Split(text, vbCrLf)
        line = ""
        For Each word In Split(paragraph, " ")
            If line <> "" And pdf.PDFGetStringWidth(line & " " & word, "", 12) > room Then
                CountLines = CountLines + 1
                line = word
            ElseIf line = "" Then
                line = word
            Else
                line = line & " " & word
            End If
        Next
        CountLines = CountLines + 1
    Next
End Function
