' Writes an entry to the event log. Nothing is answered: look for it in the Event Viewer, under Windows Logs, Application.
'   cscript //nologo wev.vbs
Option Explicit

Const EVENTLOG_INFORMATION_TYPE = 4

Dim wev
Set wev = CreateObject("VeltranoFrameWorkDLL.VeltranoWEV")
wev.LogNTEvent "Import finished, 312 records", EVENTLOG_INFORMATION_TYPE, 100, "Nightly import"
WScript.Echo "done"
