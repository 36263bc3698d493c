' Turns a GPS track into a tour for map viewers (tour.kml), and keeps the settings of an imaginary viewer in an XML file
' (settings.xml) and in an INI file (settings.ini).
'   cscript //nologo tour.vbs SAMPLES_FOLDER OUTPUT_FOLDER
Option Explicit

Dim samples, output
If WScript.Arguments.Count < 2 Then
    WScript.Echo "usage: cscript //nologo tour.vbs SAMPLES_FOLDER OUTPUT_FOLDER"
    WScript.Quit 1
End If
samples = WScript.Arguments(0)
output = WScript.Arguments(1)

Tour
XmlSettings
IniSettings
WScript.Echo "done"

' The tour ------------------------------------------------------------------------------------------------------------

Sub Tour()
    Dim kml, style, track, line, points, flown, written, latitude, longitude, altitude
    Set kml = CreateObject("VeltranoFrameWorkDLL.VeltranoKML")
    ' Markup for which the class has no member: here the style of street views.
    style = "<Style id=""sn_camera""><IconStyle><scale>0.8</scale></IconStyle></Style>"
    kml.CreateKML output & "\tour.kml", "", style, True

    points = 0
    flown = ""
    Set track = CreateObject("Scripting.FileSystemObject").OpenTextFile(samples & "\track.gpx")
    Do Until track.AtEndOfStream
        line = track.ReadLine
        If InStr(line, "<wpt ") > 0 Or InStr(line, "<trkpt ") > 0 Then
            latitude = Number(Between(line, "lat=""", """"))
            longitude = Number(Between(line, "lon=""", """"))
            altitude = Number(Between(line, "<ele>", "</ele>"))
        End If
        If InStr(line, "<wpt ") > 0 Then
            ' Texts are written as they are, so markup of the track ("&amp;") is kept.
            kml.CreatePlaceMark latitude, longitude, altitude, Between(line, "<name>", "</name>"), _
                                Between(line, "<desc>", "</desc>")
        ElseIf InStr(line, "<trkpt ") > 0 Then
            If points = 0 Then
                ' Only the track belongs to the path, not the places before it.
                kml.ClearPath
                kml.CreatePlaceMark latitude, longitude, altitude, "Start", "", _
                                    Between(line, "<time>", "Z</time>")
            Else
                kml.CreatePathPoint latitude, longitude, altitude
            End If
            ' The same way 60 metres above the ground.
            flown = flown & kml.CreatePathString(latitude, longitude, 60)
            points = points + 1
        End If
    Loop
    track.Close

    kml.CreatePathFromPlaceMarks 4, "ff1478ff"
    ' Two styles made within two hundredths of a second could share their identifier.
    written = Timer
    Do While Abs(Timer - written) < 0.02
    Loop
    kml.CreatePathFromString 2, "7f00ff14", flown, "As a bird sees it", True
    kml.CreateStreetView "photo.jpg", 45.900650, 6.139210, 447.1, "Bathing beach", _
                         "<a href=""%streetview_id"">Look around</a>", "rectangle", "210"
    kml.CreateCameraOverlay "photo.jpg", 45.907820, 6.139740, 531.4, "From the viewpoint", "1"
    ' Only this member takes the longitude first.
    kml.CreateGroundOverlay "photo.jpg", 6.129520, 45.899260, 448.2, "Quay", ""
    kml.CloseKML
    ' The overlays name their picture without a folder, so it must be beside the file.
    CreateObject("Scripting.FileSystemObject").CopyFile samples & "\photo.jpg", output & "\photo.jpg"
    WScript.Echo "tour.kml: " & points & " points of the track"
End Sub

' A decimal number with a point, whatever the user's decimal separator is.
Function Number(text)
    Dim parts, magnitude
    parts = Split(text, ".")
    magnitude = Abs(CLng(parts(0)))
    If UBound(parts) = 1 Then magnitude = magnitude + CLng(parts(1)) / 10 ^ Len(parts(1))
    If Left(text, 1) = "-" Then Number = -magnitude Else Number = magnitude
End Function

Function Between(text, before, after)
    Dim first
    first = InStr(text, before) + Len(before)
    Between = Mid(text, first, InStr(first, text, after) - first)
End Function

' Settings in XML -----------------------------------------------------------------------------------------------------

Sub XmlSettings()
    Dim xml, names, i
    Set xml = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
    xml.XML_Open output & "\settings.xml"          ' there is none yet: it begins empty
    xml.XML_SaveSetting "Window", "Left", "120"
    xml.XML_SaveSetting "Window", "Top", "80"
    xml.XML_SaveSetting "Window", "Width", "1280"
    xml.XML_SaveSetting "Window", "Height", "800"
    xml.XML_SaveSetting "Map", "Layers", "roads; contours & heights; <none>"
    xml.XML_SaveSetting "Map", "Legend", "first line" & vbCrLf & "  second line"
    xml.XML_SaveSetting "Recent", "File1", output & "\tour.kml"
    xml.XML_SaveSetting "Recent", "File2", "to be forgotten"
    xml.XML_Save

    ' The next start of the program.
    Set xml = CreateObject("VeltranoFrameWorkDLL.VeltranoXML")
    xml.XML_Open output & "\settings.xml"
    xml.XML_SaveSetting "Window", "Width", "1600"
    xml.XML_DeleteSetting "", "Recent", "File2"
    xml.XML_Save
    ' The list has one more element than there are folders.
    names = xml.XML_EnumFolders()
    For i = 0 To UBound(names) - 1
        WScript.Echo "settings.xml: folder " & names(i) & " with " & UBound(xml.XML_EnumKeys(names(i))) & " keys"
    Next
    WScript.Echo "settings.xml: width " & xml.XML_GetSetting("Window", "Width", "?") & _
                 ", language " & xml.XML_GetSetting("User", "Language", "not set")
End Sub

' Settings in an INI file ---------------------------------------------------------------------------------------------

Sub IniSettings()
    Dim ini, file, text
    Set ini = CreateObject("VeltranoFrameWorkDLL.VeltranoINI")
    file = output & "\settings.ini"
    ini.CloseFile file, "; Settings of the track viewer" & vbCrLf & "[Viewer]" & vbCrLf & "Units=metric" & vbCrLf & _
                        "Zoom=12" & vbCrLf & "Title=Tracks = walks"
    ini.SetIniValue file, "zoom", "14"
    ini.SetIniValue file, "Proxy", ""
    text = ini.OpenFile(file)
    text = ini.ChangeValue(text, "Units", "imperial")
    ini.CloseFile file, text
    WScript.Echo "settings.ini: zoom " & ini.GetIniValue(file, "ZOOM", "?") & ", units " & ini.GetValue(text, "units") & _
                 ", title " & ini.GetIniValue(file, "Title", "?")
End Sub
