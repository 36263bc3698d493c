' Lists the members of a club who get the newsletter: reads a database, draws a PDF page, keeps settings.
'   cscript //nologo members.vbs CONTACTS.mdb PHOTO.jpg OUTPUT_FOLDER
Option Explicit

Const UNIT_MM = 1, FONT_ARIAL = 0, FONT_NORMAL = 0, FONT_BOLD = 2

Dim settings, title, runs, key, keys, pdf, width, height, mdb, y, count
If WScript.Arguments.Count < 3 Then
    WScript.Echo "usage: cscript //nologo members.vbs CONTACTS.mdb PHOTO.jpg OUTPUT_FOLDER"
    WScript.Quit 1
End If

Set settings = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
settings.XML_Open WScript.Arguments(2) & "\members.xml"
title = settings.XML_GetSetting("List", "Title", "Members")
runs = CInt(settings.XML_GetSetting("List", "Runs", "0")) + 1
settings.XML_SaveSetting "List", "Title", title
settings.XML_SaveSetting "List", "Runs", CStr(runs)
settings.XML_Save
For Each key In settings.XML_EnumKeys("List")
    keys = keys & " " & key
Next
WScript.Echo "settings:" & keys

Set pdf = CreateObject("VeltranoFrameWorkDLL.VeltranoPDF")
pdf.PDFTitle = title
pdf.PDFFileName = WScript.Arguments(2) & "\members.pdf"
pdf.PDFSetUnit = UNIT_MM
pdf.PDFBeginDoc
pdf.PDFSetFont FONT_ARIAL, 20, FONT_BOLD
pdf.PDFTextOut title, 20, 25
width = 60
height = 0                              ' the member computes it and writes it back
pdf.PDFImage WScript.Arguments(1), 20, 30, width, height
WScript.Echo "picture: " & height & " mm high"

Set mdb = CreateObject("VeltranoFrameWorkDLL.VeltranoMDB")
If Not mdb.OpenDB(WScript.Arguments(0)) Then Fail "the database does not open"
If Not mdb.OpenTable("Contacts") Then Fail "there is no table of contacts"
pdf.PDFSetFont FONT_ARIAL, 11, FONT_NORMAL
y = 30 + height + 10
count = 0
Do Until mdb.EOF
    If mdb.ReadRecord_String("Newsletter") = "True" Then
        pdf.PDFTextOut mdb.ReadRecord_String("LastName") & ", " & mdb.ReadRecord_String("City"), 20, y
        y = y + 7
        count = count + 1
    End If
    mdb.MoveNext
Loop
mdb.CloseTable
mdb.CloseDatabase
pdf.PDFEndDoc
WScript.Echo "members.pdf: " & count & " members"
WScript.Echo "done"

Sub Fail(reason)
    WScript.Echo "members.vbs: " & reason
    WScript.Quit 1
End Sub
