"""Lists the members of a club who get the newsletter: reads a database, draws a PDF page, keeps settings.

  python members.py CONTACTS.mdb PHOTO.jpg OUTPUT_FOLDER

Needs Windows and pywin32. The project's tests run it with a stand-in for pywin32, not with pywin32 itself.
"""

import os
import sys

from win32com.client import DispatchWithEvents, constants, gencache


class Events:
    def OnError(self, message):
        print("PDF:", message)


def first(answer):
    """The result of a call: pywin32 answers a tuple of the result and all arguments."""
    return answer[0] if isinstance(answer, tuple) else answer


def main():
    database, photo, folder = (os.path.abspath(argument) for argument in sys.argv[1:])

    settings = gencache.EnsureDispatch("VeltranoFrameWorkDLL.VeltranoXML")
    settings.XML_Open(os.path.join(folder, "members.xml"))
    title = first(settings.XML_GetSetting("List", "Title", "Members"))
    runs = int(first(settings.XML_GetSetting("List", "Runs", "0"))) + 1
    settings.XML_SaveSetting("List", "Title", title)
    settings.XML_SaveSetting("List", "Runs", str(runs))
    settings.XML_Save()
    print("settings:", " ".join(first(settings.XML_EnumKeys("List"))))

    pdf = DispatchWithEvents("VeltranoFrameWorkDLL.VeltranoPDF", Events)
    pdf.PDFTitle = title
    pdf.PDFFileName = os.path.join(folder, "members.pdf")
    pdf.PDFSetUnit = constants.UNIT_MM
    pdf.PDFBeginDoc()
    pdf.PDFSetFont(constants.FONT_ARIAL, 20, constants.FONT_BOLD)
    pdf.PDFTextOut(title, 20, 25)
    # The arguments as they are afterwards: the member has computed the height.
    _, _, _, width, height, _ = pdf.PDFImage(photo, 20, 30, 60, 0)
    print(f"picture: {height:g} mm high")

    mdb = gencache.EnsureDispatch("VeltranoFrameWorkDLL.VeltranoMDB")
    if not first(mdb.OpenDB(database)):
        sys.exit("members.py: the database does not open")
    if not first(mdb.OpenTable("Contacts")):
        sys.exit("members.py: there is no table of contacts")
    pdf.PDFSetFont(constants.FONT_ARIAL, 11, constants.FONT_NORMAL)
    y = 30 + height + 10
    count = 0
    while not mdb.EOF():
        if first(mdb.ReadRecord_String("Newsletter")) == "True":
            pdf.PDFTextOut(first(mdb.ReadRecord_String("LastName")) + ", " + first(mdb.ReadRecord_String("City")), 20, y)
            y += 7
            count += 1
        mdb.MoveNext()
    mdb.CloseTable()
    mdb.CloseDatabase()
    pdf.PDFEndDoc()
    print(f"members.pdf: {count} members")
    print("done")


if __name__ == "__main__":
    main()
