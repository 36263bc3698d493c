// Makes the same document as JScript does it: lists are objects, texts are Unicode, and a function may be read without
// brackets. What is refused first changes nothing.
var pdf = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoPDF");
var caught = 0;
pdf.PDFSetUnit = 9;
try {
    pdf.PDFSetFont("large", 12);
} catch (mismatch) {
    ++caught;
}
pdf.PDFTitle = "Quarterly report";
pdf.PDFAuthor = "Jos\u00e9";
pdf.PDFFileName = WScript.Arguments(0) + "\\script.pdf";
pdf.PDFUseOutlines = true;
pdf.PDFBeginDoc();
pdf.PDFFormatPage = [300.5, 400];
pdf.PDFTextOut("Quarterly report", 3, 4.5);
pdf.PDFTextOut(" (draft)");
pdf.PDFSetBookmark("First", 0, 5);
pdf.PDFSetTextColor = [255, 128, 0];
pdf.PDFCell("cell", 3, 6, 5, 1, "http://localhost/");
pdf.PDFSetLineColor = "#0000FF";
pdf.PDFDrawEllipse(10, 8, 3);
pdf.PDFDrawPolygon([1, 20], [3, 22], [5, "20"]);
pdf.PDFEndDoc();
WScript.Echo("caught " + caught + ", end of file: " + new ActiveXObject("VeltranoFrameWorkDLL.VeltranoMDB").EOF);
