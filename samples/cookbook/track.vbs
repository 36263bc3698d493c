' A track for map viewers from lines of "latitude;longitude;altitude;name".
'   cscript //nologo track.vbs OUTPUT_FOLDER
Option Explicit

Dim files, stream, kml, fields, points
Set files = CreateObject("Scripting.FileSystemObject")
Set stream = files.CreateTextFile(WScript.Arguments(0) & "\track.csv")
stream.WriteLine "45.899260;6.129520;448;Quay"
stream.WriteLine "45.900650;6.139210;447;"
stream.WriteLine "45.907820;6.139740;531;Viewpoint"
stream.WriteLine "45.911000;6.131000;-0.5;"
stream.Close

Set kml = CreateObject("VeltranoFrameWorkDLL.VeltranoKML")
kml.CreateKML WScript.Arguments(0) & "\track.kml", ""
points = 0
Set stream = files.OpenTextFile(WScript.Arguments(0) & "\track.csv")
Do Until stream.AtEndOfStream
    fields = Split(stream.ReadLine, ";")
    ' A point with a name becomes a place; all of them become the path.
    If fields(3) <> "" Then
        kml.CreatePlaceMark Number(fields(0)), Number(fields(1)), Number(fields(2)), fields(3), ""
    Else
        kml.CreatePathPoint Number(fields(0)), Number(fields(1)), Number(fields(2))
    End If
    points = points + 1
Loop
stream.Close
kml.CreatePathFromPlaceMarks 4, "ff1478ff"      ' 4 pixels wide; alpha, blue, green, red
kml.CloseKML
WScript.Echo "track.kml: " & points & " points"
WScript.Echo "done"

' A number with a decimal point, whatever the user's decimal separator is.
Function Number(text)
    Number = CDbl(Replace(text, ".", Mid(CStr(1.5), 2, 1)))
End Function
