Attribute VB_Name = "MembersModule"
' Lists the members of a club who get the newsletter: reads a database, draws a PDF page, keeps settings. The project's tests
' do not run it: it needs Office. Import it into a VBA project, set the reference to "Veltrano FrameWork" under Tools,
' References, and run Members "...\contacts.mdb", "...\photo.jpg", "...\output folder".
Option Explicit

Public Sub Members(database As String, photo As String, folder As String)
    Dim settings As New VeltranoXML, pdf As New VeltranoPDF, mdb As New VeltranoMDB
    Dim title As String, runs As Long, key As Variant, keys As String
    settings.XML_Open folder & "\members.xml"
    title = settings.XML_GetSetting("List", "Title", "Members")
    runs = CLng(settings.XML_GetSetting("List", "Runs", "0")) + 1
    settings.XML_SaveSetting "List", "Title", title
    settings.XML_SaveSetting "List", "Runs", CStr(runs)
    settings.XML_Save
    For Each key In settings.XML_EnumKeys("List")
        keys = keys & " " & key
    Next
    Debug.Print "settings:" & keys

    ' Variables have exactly the types of the arguments, which are passed by reference.
    Dim width As Double, height As Double, y As Double, count As Long
    pdf.PDFTitle = title
    pdf.PDFFileName = folder & "\members.pdf"
    pdf.PDFSetUnit = UNIT_MM
    pdf.PDFBeginDoc
    pdf.PDFSetFont FONT_ARIAL, 20, FONT_BOLD
    pdf.PDFTextOut title, 20, 25
    width = 60
    height = 0                          ' the member computes it and writes it back
    pdf.PDFImage photo, 20, 30, width, height
    Debug.Print "picture: " & height & " mm high"

    If Not mdb.OpenDB(database) Then
        Debug.Print "the database does not open"
        Exit Sub
    End If
    If Not mdb.OpenTable("Contacts") Then
        Debug.Print "there is no table of contacts"
        Exit Sub
    End If
    pdf.PDFSetFont FONT_ARIAL, 11, FONT_NORMAL
    y = 30 + height + 10
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
    Debug.Print "members.pdf: " & count & " members"
    Debug.Print "done"
End Sub
