// Calls that do less than they ask for.
var pdf = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoPDF");
pdf.PDFSetUnit = 9;
try {
    pdf.PDFSetFont("large", 12);
} catch (mismatch) {
    WScript.Echo("rejected");
}
