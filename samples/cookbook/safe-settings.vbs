' Settings that survive a file that cannot be written: they wait in a second file until it can.
'   cscript //nologo safe-settings.vbs OUTPUT_FOLDER
Option Explicit

Dim files, main, waiting
Set files = CreateObject("Scripting.FileSystemObject")
main = WScript.Arguments(0) & "\safe.xml"
waiting = WScript.Arguments(0) & "\safe-waiting.xml"

Save "Width", "800"
' A folder of the file's name stands for whatever keeps the file from being written.
files.DeleteFile main
files.CreateFolder main
Save "Width", "1280"
files.DeleteFolder main
WScript.Echo "read: " & Read("Width", "640")
Save "Height", "720"
WScript.Echo "read: " & Read("Width", "640") & " x " & Read("Height", "480")
WScript.Echo "done"

Function Opened(file)
    Set Opened = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
    Opened.XML_Open file
End Function

' The waiting value is the newer one.
Function Read(key, fallback)
    Read = Opened(main).XML_GetSetting("View", key, fallback)
    If files.FileExists(waiting) Then Read = Opened(waiting).XML_GetSetting("View", key, Read)
End Function

Sub Save(key, value)
    If files.FileExists(waiting) Then MoveWaiting
    If Stored(main, key, value) Then
        WScript.Echo key & " saved"
    ElseIf Stored(waiting, key, value) Then
        WScript.Echo key & " waits: safe.xml cannot be written"
    Else
        WScript.Echo key & " is NOT saved"
    End If
End Sub

' Saves, then reads the file again: the only proof that a setting is stored.
Function Stored(file, key, value)
    Dim xml
    Set xml = Opened(file)
    xml.XML_SaveSetting "View", key, value
    xml.XML_Save
    Stored = Opened(file).XML_GetSetting("View", key, "") = value
End Function

Sub MoveWaiting()
    Dim keys, i, xml, moved
    Set xml = Opened(waiting)
    keys = xml.XML_EnumKeys("View")
    moved = True
    For i = 0 To UBound(keys) - 1           ' the list has one empty element more
        If Not Stored(main, keys(i), xml.XML_GetSetting("View", keys(i))) Then moved = False
    Next
    If moved Then files.DeleteFile waiting
End Sub
