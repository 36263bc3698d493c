' A table of an Access database as a PDF file.
'   cscript //nologo database-to-pdf.vbs OUTPUT_FOLDER
' Copy contacts.mdb there first, from the folder samples.
Option Explicit

Const UNIT_MM = 1, FONT_ARIAL = 0, FONT_NORMAL = 0, FONT_BOLD = 2, ALIGN_LEFT = 1, ALIGN_RIGHT = 2, BORDER_BOTTOM = 3

Dim pdf, mdb, y, count
Set mdb = CreateObject("VeltranoFrameWorkDLL.VeltranoMDB")
If Not mdb.OpenDB(WScript.Arguments(0) & "\contacts.mdb") Then Fail "contacts.mdb does not open"
If Not mdb.OpenTable("Contacts") Then Fail "there is no table Contacts"

Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFFileName = WScript.Arguments(0) & "\contacts.pdf"
pdf.PDFSetUnit = UNIT_MM
pdf.PDFSetLineWidth = 0.2
pdf.PDFBeginDoc
y = 20
count = 0
pdf.PDFDrawLineHor 20, y, 170
pdf.PDFSetFont FONT_ARIAL, 10, FONT_BOLD
Row "Name", "City", "Born", "Balance"
pdf.PDFSetFont FONT_ARIAL, 10, FONT_NORMAL
Do Until mdb.EOF
    Row mdb.ReadRecord_String("LastName"), mdb.ReadRecord_String("City"), mdb.ReadRecord_String("Born"), _
        mdb.ReadRecord_String("Balance")
    count = count + 1
    mdb.MoveNext
Loop
mdb.CloseTable
mdb.CloseDatabase
pdf.PDFEndDoc
WScript.Echo "contacts.pdf: " & count & " people"
WScript.Echo "done"

Sub Row(name, city, born, balance)
    Cell name, 20, 60, ALIGN_LEFT
    Cell city, 80, 50, ALIGN_LEFT
    Cell born, 130, 30, ALIGN_LEFT
    Cell balance, 160, 30, ALIGN_RIGHT
    y = y + 7
End Sub

Sub Cell(text, x, width, alignment)
    pdf.PDFSetAlignement = alignment
    pdf.PDFSetBorder = BORDER_BOTTOM
    pdf.PDFCell text, x, y, width, 7
End Sub

Sub Fail(reason)
    WScript.Echo "database-to-pdf.vbs: " & reason
    WScript.Quit 1
End Sub
