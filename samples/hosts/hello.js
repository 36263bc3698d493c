// Writes a page with a greeting.
//   cscript //nologo hello.js OUTPUT.pdf
var UNIT_MM = 1, FONT_ARIAL = 0, FONT_BOLD = 2;

if (WScript.Arguments.length < 1) {
    WScript.Echo("usage: cscript //nologo hello.js OUTPUT.pdf");
    WScript.Quit(1);
}

var pdf = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoPDF");
pdf.PDFTitle = "Hello";
pdf.PDFFileName = WScript.Arguments(0);
pdf.PDFSetUnit = UNIT_MM;
pdf.PDFBeginDoc();
pdf.PDFSetFont(FONT_ARIAL, 24, FONT_BOLD);
pdf.PDFTextOut("Hello from JScript", 20, 30);
pdf.PDFSetLineWidth = 0.5;
pdf.PDFDrawLineHor(20, 33, pdf.PDFGetStringWidth("Hello from JScript", "", 24) * 25.4 / 72);
pdf.PDFEndDoc();
WScript.Echo("done");
