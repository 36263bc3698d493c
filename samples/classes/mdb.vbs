' Adds a record and proves it: finds it again.
'   cscript //nologo mdb.vbs OUTPUT_FOLDER
' Copy contacts.mdb there first, from the folder samples.
Option Explicit

Dim mdb
Set mdb = CreateObject("VeltranoFrameWorkDLL.VeltranoMDB")
If Not mdb.OpenDB(WScript.Arguments(0) & "\contacts.mdb") Then
    WScript.Echo "the database does not open: missing, encrypted, or open elsewhere?"
ElseIf Not mdb.OpenTable("Contacts") Then
    WScript.Echo "there is no table Contacts"
Else
    mdb.AddNew
    mdb.WriteRecord "LastName", "Nowak"
    mdb.WriteRecord "City", "Gdynia"
    mdb.Update
    If mdb.FindRecord("LastName", "Nowak", True) Then
        WScript.Echo "found again, in " & mdb.ReadRecord_String("City")
        mdb.Delete
    Else
        WScript.Echo "not stored: is the table read only, does a required field lack a value?"
    End If
    mdb.CloseTable
    mdb.CloseDatabase
End If
WScript.Echo "done"
