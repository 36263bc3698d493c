' A table over several pages whose head is repeated on each.
'   cscript //nologo long-table.vbs OUTPUT_FOLDER
Option Explicit

Const UNIT_MM = 1, FONT_ARIAL = 0, FONT_NORMAL = 0, FONT_BOLD = 2
Const ALIGN_LEFT = 1, ALIGN_RIGHT = 2, BORDER_ALL = 1
Const ROW_HEIGHT = 7, LAST_Y = 270

Dim pdf, y, i
Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFFileName = WScript.Arguments(0) & "\long-table.pdf"
pdf.PDFSetUnit = UNIT_MM
pdf.PDFSetLineWidth = 0.2
pdf.PDFBeginDoc
Head
For i = 1 To 60
    ' The row that no longer fits begins the next page.
    If y + ROW_HEIGHT > LAST_Y Then
        pdf.PDFEndPage
        pdf.PDFNewPage
        Head
    End If
    Row i, "Article " & i, FormatNumber(i * 1.25, 2)
Next
pdf.PDFEndDoc
WScript.Echo "long-table.pdf: " & pdf.PDFPageNumber & " pages"
WScript.Echo "done"

Sub Head()
    ' The box of a cell has the colour and the width of the last line; a line sets the fill colour, too.
    y = 20
    pdf.PDFDrawLineHor 20, y, 170
    pdf.PDFSetDrawColor = "#D9E2F0"
    pdf.PDFSetFill = True
    pdf.PDFSetFont FONT_ARIAL, 10, FONT_BOLD
    Row "No.", "Article", "Price"
    pdf.PDFSetFill = False
    pdf.PDFSetFont FONT_ARIAL, 10, FONT_NORMAL
End Sub

Sub Row(number, article, price)
    Cell number, 20, 20, ALIGN_RIGHT
    Cell article, 40, 120, ALIGN_LEFT
    Cell price, 160, 30, ALIGN_RIGHT
    y = y + ROW_HEIGHT
End Sub

Sub Cell(text, x, width, alignment)
    pdf.PDFSetAlignement = alignment
    pdf.PDFSetBorder = BORDER_ALL       ' for one cell only, so set it before each
    pdf.PDFCell text, x, y, width, ROW_HEIGHT
End Sub
