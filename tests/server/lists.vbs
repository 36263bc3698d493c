' What a script sees of the lists of settings: names with the extra empty one, an empty value, a list without elements.
Option Explicit
Dim xml, folder
folder = WScript.Arguments(0)
Set xml = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
xml.XML_Open folder & "\lists.xml"
Dim told
told = "new " & Shape(xml.XML_EnumFolders) & "; "
xml.XML_SaveSetting "A", "Key", "Value"
told = told & "folders " & Shape(xml.XML_EnumFolders) & "; keys " & Shape(xml.XML_EnumKeys("A")) & "; "
told = told & "missing " & Shape(xml.XML_EnumKeys("B")) & "; "
xml.XML_DeleteSetting "", "A", "Key"
told = told & "emptied " & Shape(xml.XML_EnumKeys("A"))
WScript.Echo told

' "array 1" with its upper bound, "empty" or what else it is.
Function Shape(list)
    If IsArray(list) Then
        Shape = "array " & UBound(list)
        If UBound(list) >= 0 Then Shape = Shape & " last [" & list(UBound(list)) & "]"
    ElseIf IsEmpty(list) Then
        Shape = "empty"
    Else
        Shape = TypeName(list)
    End If
End Function
