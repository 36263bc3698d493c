' Page numbers at the foot: "3 of 4", centred.
'   cscript //nologo page-numbers.vbs OUTPUT_FOLDER
Option Explicit

Const UNIT_MM = 1, FONT_TIMES = 2, ALIGN_CENTER = 0
Const LINES_ON_A_PAGE = 38

' The number of pages must be known before the first one is drawn, so count what will be printed first.
Dim pdf, total, pages, i
total = 130
pages = -Int(-total / LINES_ON_A_PAGE)

Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFFileName = WScript.Arguments(0) & "\page-numbers.pdf"
pdf.PDFSetUnit = UNIT_MM
pdf.PDFBeginDoc
For i = 0 To total - 1
    If i > 0 And i Mod LINES_ON_A_PAGE = 0 Then
        Foot
        pdf.PDFEndPage
        pdf.PDFNewPage
    End If
    pdf.PDFSetFont FONT_TIMES, 12
    pdf.PDFTextOut "Line " & i + 1, 25, 25 + (i Mod LINES_ON_A_PAGE) * 6.5
Next
Foot
pdf.PDFEndDoc
WScript.Echo "page-numbers.pdf: " & pdf.PDFPageNumber & " pages"
WScript.Echo "done"

' A cell as wide as the page centres its text.
Sub Foot()
    pdf.PDFSetFont FONT_TIMES, 9
    pdf.PDFSetAlignement = ALIGN_CENTER
    pdf.PDFCell pdf.PDFPageNumber & " of " & pages, 0, 280, 210, 6
End Sub
