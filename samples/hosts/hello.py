"""Writes a page with a greeting.

  python hello.py C:\\Temp\\hello.pdf

Needs Windows and pywin32. The project's tests run it with a stand-in for pywin32, not with pywin32 itself.
"""

import os
import sys

from win32com.client import constants, gencache


def main():
    pdf = gencache.EnsureDispatch("VeltranoFrameWorkDLL.VeltranoPDF")
    pdf.PDFTitle = "Hello"
    pdf.PDFFileName = os.path.abspath(sys.argv[1])
    pdf.PDFSetUnit = constants.UNIT_MM
    pdf.PDFBeginDoc()
    pdf.PDFSetFont(constants.FONT_ARIAL, 24, constants.FONT_BOLD)
    pdf.PDFTextOut("Hello from Python", 20, 30)
    pdf.PDFSetLineWidth = 0.5
    # A tuple: the result, then the arguments.
    points, *_ = pdf.PDFGetStringWidth("Hello from Python", "", 24)
    pdf.PDFDrawLineHor(20, 33, points * 25.4 / 72)
    pdf.PDFEndDoc()
    print("done")


if __name__ == "__main__":
    main()
