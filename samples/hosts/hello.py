"""Writes a page that greets. Not run by the project's tests: it needs Windows and pywin32.

  python hello.py C:\\Temp\\hello.pdf
"""

import os
import sys

import win32com.client

UNIT_MM, FONT_ARIAL, FONT_BOLD = 1, 0, 2


class Events:
    def OnError(self, message):
        print("PDF:", message, file=sys.stderr)


def main():
    pdf = win32com.client.DispatchWithEvents("VeltranoFrameWorkDLL.VeltranoPDF", Events)
    pdf.PDFTitle = "Hello"
    pdf.PDFFileName = os.path.abspath(sys.argv[1])
    pdf.PDFSetUnit = UNIT_MM
    pdf.PDFBeginDoc()
    pdf.PDFSetFont(FONT_ARIAL, 24, FONT_BOLD)
    pdf.PDFTextOut("Hello from Python", 20, 30)
    pdf.PDFSetLineWidth = 0.5
    pdf.PDFDrawLineHor(20, 33, pdf.PDFGetStringWidth("Hello from Python", "", 24) * 25.4 / 72)
    pdf.PDFEndDoc()
    print("done")


if __name__ == "__main__":
    main()
