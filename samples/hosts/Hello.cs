// Writes a page with a greeting.
//   csc /platform:x86 Hello.cs ..\..\stubs\Veltrano.cs && Hello.exe C:\Temp\hello.pdf
// The project's tests compile it and do not run it: it needs .NET on Windows. The platform is that of the registered DLL.
using System;
using System.IO;
using Veltrano;

static class Hello
{
    [STAThread]
    static void Main(string[] arguments)
    {
        var pdf = new VeltranoPDF();
        pdf.PDFTitle = "Hello";
        pdf.PDFFileName = Path.GetFullPath(arguments[0]);
        pdf.PDFSetUnit = PDFUnitStr.UNIT_MM;
        pdf.PDFBeginDoc();
        pdf.PDFSetFont(PDFFontNme.FONT_ARIAL, 24, PDFFontStl.FONT_BOLD);
        pdf.PDFTextOut("Hello from C#", 20, 30);
        pdf.PDFSetLineWidth = 0.5;
        pdf.PDFDrawLineHor(20, 33, pdf.PDFGetStringWidth("Hello from C#", "", 24) * 25.4 / 72);
        pdf.PDFEndDoc();
        Console.WriteLine("done");
    }
}
