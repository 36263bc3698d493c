' Fills a table of an Access database from a text file, and says which lines it refused.
'   cscript //nologo fill-database.vbs OUTPUT_FOLDER
' Copy contacts.mdb there first, from the folder samples.
Option Explicit

Dim files, stream, mdb, line, added
Set files = CreateObject("Scripting.FileSystemObject")
Set stream = files.CreateTextFile(WScript.Arguments(0) & "\people.csv")
stream.WriteLine "Martin;Lyon;1985-01-31;12.50"
stream.WriteLine "Dubois;Nantes;1990-07-01;tomorrow"
stream.WriteLine ";Paris;1979-09-23;0"
stream.Close

Set mdb = CreateObject("VeltranoFrameWorkDLL.VeltranoMDB")
If Not mdb.OpenDB(WScript.Arguments(0) & "\contacts.mdb") Then Fail "contacts.mdb does not open"
If Not mdb.OpenTable("Contacts") Then Fail "there is no table Contacts"
added = 0
Set stream = files.OpenTextFile(WScript.Arguments(0) & "\people.csv")
Do Until stream.AtEndOfStream
    line = stream.ReadLine
    If Add(Split(line, ";")) Then added = added + 1 Else WScript.Echo "refused: " & line
Loop
stream.Close
mdb.CloseTable
mdb.CloseDatabase
WScript.Echo added & " people added"
WScript.Echo "done"

' True if the new record is in the table: nothing else says so.
Function Add(fields)
    mdb.AddNew
    If fields(0) <> "" Then mdb.WriteRecord "LastName", fields(0)
    mdb.WriteRecord "City", fields(1)
    mdb.WriteRecord "Born", fields(2)
    mdb.WriteRecord "Balance", fields(3)
    mdb.Update
    Add = False
    If fields(0) = "" Then Exit Function
    If mdb.FindRecord("LastName", fields(0), True) Then
        Add = True
        ' A value that its field cannot take is left out, the rest is stored.
        If mdb.ReadRecord_String("Balance") = "" Then WScript.Echo fields(0) & ": no balance in '" & fields(3) & "'"
    End If
End Function

Sub Fail(reason)
    WScript.Echo "fill-database.vbs: " & reason
    WScript.Quit 1
End Sub
