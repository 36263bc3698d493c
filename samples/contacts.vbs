' Adds, finds, edits and deletes people in a table of contacts.
'   cscript //nologo contacts.vbs OUTPUT_FOLDER
' Works on contacts.mdb in that folder: a fresh copy of the one beside this script, if there is one (packages bring it),
' otherwise the one that make_contacts has made there.
Option Explicit

' Accented letters by their codes, so that this file is plain ASCII.
Dim eAcute, eGrave, aDiaeresis, oDiaeresis, cCedilla
eAcute = Chr(233)
eGrave = Chr(232)
aDiaeresis = Chr(228)
oDiaeresis = Chr(246)
cCedilla = Chr(231)

If WScript.Arguments.Count < 1 Then
    WScript.Echo "usage: cscript //nologo contacts.vbs OUTPUT_FOLDER"
    WScript.Quit 1
End If
Dim files, original, database, mdb
Set files = CreateObject("Scripting.FileSystemObject")
original = files.GetParentFolderName(WScript.ScriptFullName) & "\contacts.mdb"
database = WScript.Arguments(0) & "\contacts.mdb"
If files.FileExists(original) Then files.CopyFile original, database, True
Set mdb = CreateObject("VeltranoFrameWorkDLL.VeltranoMDB")
If Not mdb.OpenDB(database) Then Fail "contacts.mdb does not open; make_contacts makes it"
If Not mdb.OpenTable("Contacts") Then Fail "there is no table of contacts"
WScript.Echo CountRecords() & " people are there"

Add "B" & eGrave & "gue", "Fran" & cCedilla & "ois", "Li" & eGrave & "ge", #9/23/1979#, 17.3, True
Add "J" & aDiaeresis & "rvinen", "P" & aDiaeresis & "ivi", "Sein" & aDiaeresis & "joki", #1/31/1985#, 240, False
Add "O'Neill", "Ren" & eAcute & "e", "Galway", Null, 0, False
Add "To be deleted", Null, Null, Null, 0, False

' A search ignores case, that of accented letters too, unless the third argument says otherwise.
Dim capitals
capitals = "J" & Chr(196) & "RVINEN"
If mdb.FindRecord("LastName", capitals, True) Then Fail "a search with case found the wrong record"
If Not mdb.FindRecord("LastName", capitals, False) Then Fail "a search without case found nothing"
WScript.Echo "Found " & mdb.ReadRecord_String("FirstName") & " " & mdb.ReadRecord_String("LastName")
mdb.Edit
mdb.WriteRecord "City", "Sein" & aDiaeresis & "joki-Malm" & oDiaeresis
mdb.WriteRecord "Balance", "199.95"
mdb.WriteRecord "Remarks", "Moved in " & Year(#5/1/2026#) & "." & vbCrLf & String(200, "*")
mdb.Update

If Not mdb.FindRecord("LastName", "To be deleted", True) Then Fail "the record to delete is missing"
mdb.Delete
If mdb.FindRecord("LastName", "To be deleted", True) Then Fail "a deleted record was found"

' LastName is required: without it nothing is added.
mdb.AddNew
mdb.WriteRecord "FirstName", "Nobody"
mdb.Update
If mdb.FindRecord("FirstName", "Nobody", False) Then Fail "a record without its required field was added"

WScript.Echo CountRecords() & " people are there now:"
mdb.MoveFirst
Do Until mdb.EOF
    WScript.Echo "  " & mdb.ReadRecord_String("ID") & "  " & mdb.ReadRecord_String("LastName") & ", " & _
                 mdb.ReadRecord_String("FirstName") & "; " & mdb.ReadRecord_String("City") & "; " & _
                 mdb.ReadRecord_String("Born") & "; " & mdb.ReadRecord_String("Balance") & "; " & _
                 mdb.ReadRecord_String("Newsletter")
    mdb.MoveNext
Loop
mdb.CloseTable
mdb.CloseDatabase
WScript.Echo "done"

Function CountRecords()
    CountRecords = 0
    mdb.MoveFirst
    Do Until mdb.EOF
        CountRecords = CountRecords + 1
        mdb.MoveNext
    Loop
End Function

Sub Add(lastName, firstName, city, born, balance, newsletter)
    mdb.AddNew
    mdb.WriteRecord "LastName", lastName
    mdb.WriteRecord "FirstName", firstName
    mdb.WriteRecord "City", city
    mdb.WriteRecord "Born", born
    mdb.WriteRecord "Balance", balance
    mdb.WriteRecord "Newsletter", newsletter
    mdb.Update
End Sub

Sub Fail(reason)
    WScript.Echo "contacts.vbs: " & reason
    WScript.Quit 1
End Sub
