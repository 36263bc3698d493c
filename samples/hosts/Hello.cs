// Writes a page with a greeting. The project's tests do not run it: it needs .NET on Windows. Build it for the platform
// (x86, x64) of the registered DLL.
//   csc /platform:x86 Hello.cs && Hello.exe C:\Temp\hello.pdf
using System;
using System.IO;
using System.Runtime.InteropServices;

static class Hello
{
    const int UnitMm = 1, FontArial = 0, FontBold = 2;

    [STAThread]
    static void Main(string[] arguments)
    {
        dynamic pdf = Activator.CreateInstance(Type.GetTypeFromProgID("VeltranoFrameWorkDLL.VeltranoPDF", true));
        pdf.PDFTitle = "Hello";
        pdf.PDFFileName = Path.GetFullPath(arguments[0]);
        pdf.PDFSetUnit = UnitMm;
        pdf.PDFBeginDoc();
        pdf.PDFSetFont(FontArial, 24, FontBold);
        pdf.PDFTextOut("Hello from C#", 20, 30);
        pdf.PDFSetLineWidth = 0.5;
        pdf.PDFDrawLineHor(20, 33, pdf.PDFGetStringWidth("Hello from C#", "", 24) * 25.4 / 72);
        pdf.PDFEndDoc();
        Marshal.ReleaseComObject(pdf);
        Console.WriteLine("done");
    }
}
