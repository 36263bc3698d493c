// What JScript alone does: lists are objects, texts are Unicode, and a function may be read without brackets.
var folder = WScript.Arguments(0);
var pdf = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoPDF");
var mdb = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoMDB");
pdf.PDFAuthor = "Jos\u00e9";
pdf.PDFFileName = folder + "\\script.pdf";
pdf.PDFBeginDoc();
pdf.PDFFormatPage = [300.5, 400];
pdf.PDFSetTextColor = [255, 128, 0];
pdf.PDFTextOut("text", 3, 4.5);
pdf.PDFDrawPolygon([1, 2], [3, 4], [5, "6"]);
pdf.PDFEndDoc();
WScript.Echo("end of file: " + mdb.EOF + ", " + typeof pdf.PDFNbPage);
