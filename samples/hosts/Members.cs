// Lists the members of a club who get the newsletter: reads a database, draws a PDF page, keeps settings.
//   csc /platform:x86 Members.cs ..\..\stubs\Veltrano.cs
//   Members.exe CONTACTS.mdb PHOTO.jpg OUTPUT_FOLDER
// The project's tests compile it and do not run it: it needs .NET on Windows. The platform is that of the registered DLL.
using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Runtime.InteropServices.ComTypes;
using Veltrano;

[ComVisible(true)]
public class Events : __VeltranoPDF
{
    public void Error(ref string message) { Console.WriteLine("PDF: " + message); }
}

static class Members
{
    [STAThread]
    static int Main(string[] arguments)
    {
        string database = Path.GetFullPath(arguments[0]), photo = Path.GetFullPath(arguments[1]);
        string folder = Path.GetFullPath(arguments[2]);

        var settings = new VeltranoXML();
        settings.XML_Open(Path.Combine(folder, "members.xml"));
        string title = settings.XML_GetSetting("List", "Title", "Members");
        int runs = int.Parse(settings.XML_GetSetting("List", "Runs", "0")) + 1;
        settings.XML_SaveSetting("List", "Title", title);
        settings.XML_SaveSetting("List", "Runs", runs.ToString());
        settings.XML_Save();
        Console.WriteLine("settings: " + string.Join(" ", (object[])settings.XML_EnumKeys("List")));

        var pdf = new VeltranoPDF();
        Listen(pdf);
        pdf.PDFTitle = title;
        pdf.PDFFileName = Path.Combine(folder, "members.pdf");
        pdf.PDFSetUnit = PDFUnitStr.UNIT_MM;
        pdf.PDFBeginDoc();
        pdf.PDFSetFont(PDFFontNme.FONT_ARIAL, 20, PDFFontStl.FONT_BOLD);
        pdf.PDFTextOut(title, 20, 25);
        double width = 60, height = 0; // the member computes the height and writes it back
        pdf.PDFImage(photo, 20, 30, ref width, ref height);
        Console.WriteLine("picture: " + height + " mm high");

        var mdb = new VeltranoMDB();
        if (!mdb.OpenDB(database)) return Fail("the database does not open");
        if (!mdb.OpenTable("Contacts")) return Fail("there is no table of contacts");
        pdf.PDFSetFont(PDFFontNme.FONT_ARIAL, 11, PDFFontStl.FONT_NORMAL);
        double y = 30 + height + 10;
        int count = 0;
        for (; !mdb.EOF(); mdb.MoveNext())
        {
            if (mdb.ReadRecord_String("Newsletter") == "True")
            {
                pdf.PDFTextOut(mdb.ReadRecord_String("LastName") + ", " + mdb.ReadRecord_String("City"), 20, y);
                y += 7;
                count += 1;
            }
        }
        mdb.CloseTable();
        mdb.CloseDatabase();
        pdf.PDFEndDoc();
        Console.WriteLine("members.pdf: " + count + " members");
        Console.WriteLine("done");
        return 0;
    }

    static void Listen(VeltranoPDF pdf)
    {
        IConnectionPoint point;
        Guid events = typeof(__VeltranoPDF).GUID;
        ((IConnectionPointContainer)pdf).FindConnectionPoint(ref events, out point);
        int cookie;
        point.Advise(new Events(), out cookie);
    }

    static int Fail(string reason)
    {
        Console.Error.WriteLine("Members.cs: " + reason);
        return 1;
    }
}
