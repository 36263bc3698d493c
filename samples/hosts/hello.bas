Attribute VB_Name = "HelloModule"
' Writes a page with a greeting. The project's tests do not run it: it needs Office. Import it into a VBA project, set the
' reference to "Veltrano FrameWork" under Tools, References, and run Hello.
Option Explicit

Public Sub Hello()
    Dim pdf As VeltranoPDF
    Set pdf = New VeltranoPDF
    pdf.PDFTitle = "Hello"
    pdf.PDFFileName = Environ$("TEMP") & "\hello.pdf"
    pdf.PDFSetUnit = UNIT_MM
    pdf.PDFBeginDoc
    pdf.PDFSetFont FONT_ARIAL, 24, FONT_BOLD
    pdf.PDFTextOut "Hello from VBA", 20, 30
    pdf.PDFSetLineWidth = 0.5
    pdf.PDFDrawLineHor 20, 33, pdf.PDFGetStringWidth("Hello from VBA", "", 24) * 25.4 / 72
    pdf.PDFEndDoc
    Debug.Print "done"
End Sub
