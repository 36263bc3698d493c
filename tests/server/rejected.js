// Calls that do less than they ask for.
var pdf = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoPDF");
pdf.PDFSetUnit = 9;
pdf.PDFTitle = "\u4E2D";
pdf.PDFEndDoc();
try {
    pdf.PDFSetFont("large", 12);
} catch (mismatch) {
    WScript.Echo("rejected");
}
