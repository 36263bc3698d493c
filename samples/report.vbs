' Writes report.pdf: a cover with a photo and a watermark, a table of orders from a CSV file, a page that shows what can
' be drawn and written, and a small last page.
'   cscript //nologo report.vbs SAMPLES_FOLDER OUTPUT_FOLDER
Option Explicit

Const UNIT_MM = 1
Const ORIENT_PORTRAIT = 1, ORIENT_PAYSAGE = 0
Const FORMAT_A4 = 0, FORMAT_A5 = 2
Const FONT_ARIAL = 0, FONT_COURIER = 1, FONT_TIMES = 2, FONT_SYMBOL = 3, FONT_ZAPFDINGBATS = 4
Const FONT_NORMAL = 0, FONT_ITALIC = 1, FONT_BOLD = 2, FONT_UNDERLINE = 3
Const ALIGN_CENTER = 0, ALIGN_LEFT = 1, ALIGN_RIGHT = 2, ALIGN_FJUSTIFY = 3
Const BORDER_NONE = 0, BORDER_ALL = 1
Const ZOOM_FULLPAGE = 0, LAYOUT_SINGLE = 0
Const pPDF_SOLID = 0, pPDF_DASHDOTDOT = 3
Const COLOR_ROUGE = 255, COLOR_JAUNE = 65535, COLOR_CYAN = 16776960
Const DRAW_NORMAL = 0, DRAW_DRAW = 1, DRAW_DRAWBORDER = 2

Dim samples, output, pdf
If WScript.Arguments.Count < 2 Then
    WScript.Echo "usage: cscript //nologo report.vbs SAMPLES_FOLDER OUTPUT_FOLDER"
    WScript.Quit 1
End If
samples = WScript.Arguments(0)
output = WScript.Arguments(1)

Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFTitle = "Field survey: orders of the year"
pdf.PDFAuthor = "Veltrano samples"
pdf.PDFSubject = "What a script can print"
pdf.PDFKeywords = "report, table, drawing"
pdf.PDFCreator = "report.vbs"
pdf.PDFProducer = "VeltranoFrameWorkDLL"
pdf.PDFFileName = output & "\report.pdf"
pdf.PDFSetUnit = UNIT_MM
pdf.PDFFormatPage = FORMAT_A4
pdf.PDFOrientation = ORIENT_PORTRAIT
pdf.PDFSetMargins 15, 15
pdf.PDFSetCellMargin = 4                ' points, whatever the unit
pdf.PDFSetZoomMode = ZOOM_FULLPAGE
pdf.PDFSetLayoutMode = LAYOUT_SINGLE
pdf.PDFUseOutlines = True
pdf.PDFSetViewerPreferences = 46        ' fit the window, show the title: digits combine
pdf.PDFFiligran = "SAMPLE"

pdf.PDFBeginDoc
Cover
pdf.PDFEndPage                          ' draws the watermark over the cover
pdf.PDFFiligran = ""                    ' the other pages go without
pdf.PDFFormatPage = FORMAT_A4
pdf.PDFNewPage
Orders
pdf.PDFEndPage
pdf.PDFFormatPage = FORMAT_A4
pdf.PDFOrientation = ORIENT_PAYSAGE
pdf.PDFNewPage
Gallery
pdf.PDFEndPage
pdf.PDFFormatPage = FORMAT_A5
pdf.PDFOrientation = ORIENT_PORTRAIT
pdf.PDFNewPage
Colophon
pdf.PDFEndDoc

WScript.Echo "report.pdf has " & pdf.PDFNbPage & " pages"
WScript.Echo "done"

Sub Cover()
    Dim w, h
    pdf.PDFSetBookmark "Cover", 0, 0
    pdf.PDFSetDrawMode = DRAW_DRAW
    pdf.PDFSetDrawColor = "#17365D"
    pdf.PDFDrawRectangle 0.01, 0.01, 210, 34
    pdf.PDFSetTextColor = "#FFFFFF"
    pdf.PDFSetFont FONT_ARIAL, 26, FONT_BOLD
    pdf.PDFTextOut "Field survey", 15, 17
    pdf.PDFSetFont FONT_ARIAL, 13
    pdf.PDFTextOut "Orders of the year 2026", 15, 26
    w = 180
    h = 0                               ' computed from the photo's proportions and written back
    pdf.PDFImage samples & "\photo.jpg", 15, 50, w, h, "https://www.openstreetmap.org/"
    pdf.PDFSetTextColor = "#505050"
    pdf.PDFSetFont FONT_ARIAL, 10, FONT_ITALIC
    pdf.PDFTextOut "The photo is " & pdf.PDFImageWidth(samples & "\photo.jpg") & " pixels wide and leads to a map.", 15, 50 + h + 6
    pdf.PDFSetTextColor = "#000000"
    pdf.PDFSetFont FONT_TIMES, 12
    pdf.PDFSetAlignement = ALIGN_FJUSTIFY
    pdf.PDFSetCellMargin = 0            ' flush with the photo
    pdf.PDFCell "This report was written by a script of some three hundred lines. It sets the document's information, units, " & _
        "formats and margins, reads its orders from a text file, measures and aligns what it prints, draws shapes and " & _
        "leads to other places through links. Everything is text in a file that the script's author can read." & vbCrLf & _
        "Names with accents, such as Zo" & Chr(235) & " Lef" & Chr(232) & "vre, J" & Chr(252) & "rgen M" & Chr(252) & "ller and " & _
        "S" & Chr(248) & "ren " & Chr(197) & "ngstr" & Chr(246) & "m, are measured like any other.", 15, 190, 180, 32
    pdf.PDFSetCellMargin = 4
    pdf.PDFSetTextColor = "#17365D"
    pdf.PDFSetFont FONT_ARIAL, 10
    pdf.PDFLink 15, 280, "Read more on the format of these pages", "https://en.wikipedia.org/wiki/PDF"
End Sub

' Reads the orders and prints them, as many rows on a page as fit.
Sub Orders()
    Dim lines, i, fields, y, page, total, month, lastMonth
    lines = ReadLines(samples & "\orders.csv")
    page = 1
    total = 0
    lastMonth = ""
    pdf.PDFSetBookmark "Orders", 0, 0
    y = TableHead(page)
    For i = 1 To UBound(lines)
        If Len(lines(i)) > 0 Then
            If y > 270 Then
                pdf.PDFEndPage
                pdf.PDFNewPage
                page = page + 1
                y = TableHead(page)
            End If
            fields = Split(lines(i), ";")
            month = Mid(fields(0), 1, 7)
            If month <> lastMonth Then
                pdf.PDFSetBookmark month, 1, y
                lastMonth = month
            End If
            total = total + Row(fields, y, i)
            y = y + 6.5
        End If
    Next
    pdf.PDFSetFont FONT_ARIAL, 10, FONT_BOLD
    pdf.PDFSetFill = True
    pdf.PDFSetDrawColor = "#D9E2F0"
    TableCell "Total", 15, y, 150, ALIGN_LEFT
    TableCell Money(total), 165, y, 30, ALIGN_RIGHT
    pdf.PDFSetFill = False
End Sub

Function TableHead(page)
    pdf.PDFSetTextColor = "#17365D"
    pdf.PDFSetFont FONT_ARIAL, 16, FONT_BOLD
    pdf.PDFTextOut "Orders", 15, 20
    pdf.PDFSetFont FONT_ARIAL, 9
    ' The width is in points, the position in millimetres.
    pdf.PDFTextOut "page " & page, 195 - pdf.PDFGetStringWidth("page " & page, "", 9) * 25.4 / 72, 20
    pdf.PDFSetLineColor = "#17365D"
    pdf.PDFSetLineWidth = 0.4
    pdf.PDFDrawLineHor 15, 23, 180
    pdf.PDFSetLineWidth = 0.15          ' the boxes of cells keep the width that was stroked last
    pdf.PDFDrawLineHor 15, 24, 180
    pdf.PDFSetTextColor = "#FFFFFF"
    pdf.PDFSetFont FONT_ARIAL, 9, FONT_BOLD
    pdf.PDFSetFill = True
    pdf.PDFSetDrawColor = "#17365D"
    TableCell "Date", 15, 28, 24, ALIGN_LEFT
    TableCell "Customer", 39, 28, 42, ALIGN_LEFT
    TableCell "City", 81, 28, 34, ALIGN_LEFT
    TableCell "Article", 115, 28, 34, ALIGN_LEFT
    TableCell "Pieces", 149, 28, 16, ALIGN_RIGHT
    TableCell "Amount", 165, 28, 30, ALIGN_RIGHT
    pdf.PDFSetFill = False
    pdf.PDFSetTextColor = "#000000"
    pdf.PDFSetFont FONT_ARIAL, 9
    TableHead = 34.5
End Function

' Prints one order; returns its amount in cents.
Function Row(fields, y, number)
    Dim price, amount
    price = Split(fields(5), ".")
    amount = CLng(fields(4)) * (CLng(price(0)) * 100 + CLng(price(1)))
    pdf.PDFSetFill = (number Mod 2 = 0)
    pdf.PDFSetDrawColor = "#EEF2F8"
    TableCell fields(0), 15, y, 24, ALIGN_LEFT
    TableCell fields(1), 39, y, 42, ALIGN_LEFT
    TableCell fields(2), 81, y, 34, ALIGN_LEFT
    TableCell fields(3), 115, y, 34, ALIGN_LEFT
    TableCell fields(4), 149, y, 16, ALIGN_RIGHT
    TableCell Money(amount), 165, y, 30, ALIGN_RIGHT
    pdf.PDFSetFill = False
    Row = amount
End Function

Sub TableCell(text, x, y, w, align)
    pdf.PDFSetAlignement = align
    pdf.PDFSetBorder = BORDER_ALL        ' a cell uses its border up
    pdf.PDFCell text, x, y, w, 6.5
End Sub

' 1234567 cents as 12 345.67
Function Money(cents)
    Dim whole, text
    whole = CStr(Int(cents / 100))
    text = "." & Right("0" & CStr(cents - Int(cents / 100) * 100), 2)
    Do While Len(whole) > 3
        text = " " & Right(whole, 3) & text
        whole = Left(whole, Len(whole) - 3)
    Loop
    Money = whole & text
End Function

' What can be drawn and written, on one landscape page of 297 by 210 millimetres.
Sub Gallery()
    pdf.PDFSetBookmark "Gallery", 0, 0
    pdf.PDFSetTextColor = "#17365D"
    pdf.PDFSetFont FONT_ARIAL, 16, FONT_BOLD
    pdf.PDFTextOut "Gallery", 15, 18
    Lines
    Shapes
    Fonts
    Cells
    Turned
End Sub

Sub Caption(text, x, y)
    pdf.PDFSetTextColor = "#606060"
    pdf.PDFSetFont FONT_ARIAL, 8, FONT_BOLD
    pdf.PDFTextOut text, x, y
    pdf.PDFSetTextColor = "#000000"
End Sub

Sub Lines()
    Dim style, names
    names = Array("solid", "dash", "dash dot", "dash dot dot")
    pdf.PDFSetBookmark "Lines", 1, 25
    Caption "Lines", 15, 28
    pdf.PDFSetLineColor = RGB(192, 0, 0)
    pdf.PDFSetLineWidth = 0.4
    For style = pPDF_SOLID To pPDF_DASHDOTDOT
        pdf.PDFSetLineStyle = style
        pdf.PDFDrawLineHor 15, 33 + style * 6, 45
        pdf.PDFSetFont FONT_ARIAL, 8
        pdf.PDFTextOut names(style), 63, 34 + style * 6
    Next
    pdf.PDFSetLineStyle = pPDF_SOLID
    pdf.PDFSetLineColor = Array(0, 96, 160)
    pdf.PDFDrawLineVer 95, 31, 22
    pdf.PDFSetLineWidth = 1
    pdf.PDFDrawLine 100, 53, 120, 31
End Sub

Sub Shapes()
    pdf.PDFSetBookmark "Shapes", 1, 60
    Caption "Shapes: outline, filled, both; the boxes and the ellipses lead somewhere", 15, 62
    pdf.PDFSetLineWidth = 0.5
    pdf.PDFSetLineColor = "#1F6F3D"
    Shape 15, DRAW_NORMAL
    Shape 55, DRAW_DRAW
    Shape 95, DRAW_DRAWBORDER
    pdf.PDFSetDrawMode = DRAW_NORMAL
End Sub

Sub Shape(x, mode)
    pdf.PDFSetDrawMode = mode
    pdf.PDFSetDrawColor = "#F6D58A"
    pdf.PDFDrawEllipse x, 87, 32, 16, "https://en.wikipedia.org/wiki/Ellipse"
    ' A rectangle writes its line width after its outline, which so has the width of the shape before.
    pdf.PDFSetDrawColor = "#BFE3C8"
    pdf.PDFDrawRectangle x, 66, 32, 16, "https://www.openstreetmap.org/"
    pdf.PDFSetDrawColor = "#C9D8F0"
    pdf.PDFDrawPolygon Array(x, 124), Array(x + 8, 108), Array(x + 24, 108), Array(x + 32, 124), Array(x + 16, 116)
End Sub

Sub Fonts()
    Dim style, y
    pdf.PDFSetBookmark "Fonts", 1, 25
    Caption "Fonts", 150, 28
    y = 34
    For Each style In Array(FONT_NORMAL, FONT_ITALIC, FONT_BOLD, 12, FONT_UNDERLINE)
        pdf.PDFSetFont FONT_ARIAL, 11, style
        pdf.PDFTextOut "Helvetica " & style, 150, y
        pdf.PDFSetFont FONT_TIMES, 11, style
        pdf.PDFTextOut "Times " & style, 200, y
        pdf.PDFSetFont FONT_COURIER, 11, style
        pdf.PDFTextOut "Courier " & style, 245, y
        y = y + 6
    Next
    pdf.PDFSetFont FONT_ARIAL, 8
    pdf.PDFTextOut "Symbol", 150, y
    pdf.PDFTextOut "ZapfDingbats", 200, y
    pdf.PDFSetFont FONT_SYMBOL, 11
    pdf.PDFTextOut "abcdefg", 166, y
    pdf.PDFSetFont FONT_ZAPFDINGBATS, 11
    pdf.PDFTextOut "abcdefg", 222, y
End Sub

Sub Cells()
    Dim i, text
    pdf.PDFSetBookmark "Cells", 1, 68
    Caption "Cells", 150, 72
    text = "Voil" & Chr(224) & " un texte"
    pdf.PDFSetFont FONT_ARIAL, 10
    pdf.PDFSetLineColor = "#404040"
    pdf.PDFSetLineWidth = 0.3
    pdf.PDFDrawLineHor 160, 71, 122     ' boxes and edges have the colour that was stroked last
    For i = 0 To 2
        pdf.PDFSetAlignement = i
        pdf.PDFSetBorder = BORDER_ALL
        pdf.PDFCell text, 150, 75 + i * 9, 40, 7
    Next
    Edges "4", 75
    Edges "5", 84
    Edges "23", 93
    Edges "2345", 102
    pdf.PDFSetFill = True
    pdf.PDFSetDrawColor = "#FCE4D6"
    pdf.PDFSetAlignement = ALIGN_CENTER
    pdf.PDFCell "filled", 150, 102, 40, 7
    pdf.PDFSetFill = False
    pdf.PDFSetAlignement = ALIGN_FJUSTIFY
    pdf.PDFCell "A longer text is broken at the blanks that fit, its lines are stretched to both margins, and its last " & _
        "line stays as it is. A word is never cut.", 150, 114, 132, 16
End Sub

Sub Edges(digits, y)
    pdf.PDFSetAlignement = ALIGN_LEFT
    pdf.PDFSetBorder = digits
    pdf.PDFCell "edges " & digits, 200, y, 82, 7
End Sub

Sub Turned()
    Dim angle
    pdf.PDFSetBookmark "Turned text", 1, 130
    Caption "Turned text", 15, 134
    pdf.PDFSetFont FONT_TIMES, 11
    For angle = 0 To 330 Step 30
        pdf.PDFSetRotation = angle
        pdf.PDFTextOut "          " & angle & " degrees", 60, 170
    Next
    pdf.PDFSetRotation = 0
    Caption "Colours: name, number, list", 150, 146
    Swatch 150, COLOR_ROUGE
    Swatch 174, "#008040"
    Swatch 198, Array(0, 64, 192)
    Swatch 222, COLOR_JAUNE
    Swatch 246, "#C000C0"
    Swatch 270, COLOR_CYAN
End Sub

Sub Swatch(x, color)
    pdf.PDFSetDrawMode = DRAW_DRAWBORDER
    pdf.PDFSetDrawColor = color
    pdf.PDFDrawRectangle x, 150, 12, 12
    pdf.PDFSetDrawMode = DRAW_NORMAL
End Sub

Sub Colophon()
    pdf.PDFSetBookmark "Colophon", 0, 0
    pdf.PDFSetTextColor = "#17365D"
    pdf.PDFSetFont FONT_TIMES, 18, FONT_BOLD
    pdf.PDFTextOut "Colophon", 15, 25
    pdf.PDFSetTextColor = "#000000"
    pdf.PDFSetFont FONT_TIMES, 11
    pdf.PDFSetAlignement = ALIGN_LEFT
    pdf.PDFSetCellMargin = 0
    pdf.PDFCell "This page is an A5. Page " & pdf.PDFPageNumber & " of " & pdf.PDFNbPage & "." & vbCrLf & _
        "Unit: " & pdf.PDFGetUnit & ", " & pdf.PDFGetPageWidth & " by " & pdf.PDFGetPageHeight & " points.", 15, 32, 118, 12
End Sub

Function ReadLines(file)
    Dim system, stream
    Set system = CreateObject("Scripting.FileSystemObject")
    Set stream = system.OpenTextFile(file, 1)
    ReadLines = Split(stream.ReadAll, vbCrLf)
    stream.Close
End Function
