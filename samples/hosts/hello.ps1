# Writes a page with a greeting. The project's tests do not run it: it needs Windows PowerShell.
#   powershell -File hello.ps1 C:\Temp\hello.pdf
param([Parameter(Mandatory = $true)][string]$Output)

$UNIT_MM = 1; $FONT_ARIAL = 0; $FONT_BOLD = 2

$pdf = New-Object -ComObject VeltranoFrameWorkDLL.VeltranoPDF
$pdf.PDFTitle = "Hello"
# PowerShell's current folder is not that of the process: pass a full path.
$pdf.PDFFileName = $ExecutionContext.SessionState.Path.GetUnresolvedProviderPathFromPSPath($Output)
$pdf.PDFSetUnit = $UNIT_MM
$pdf.PDFBeginDoc()
$pdf.PDFSetFont($FONT_ARIAL, 24, $FONT_BOLD)
$pdf.PDFTextOut("Hello from PowerShell", 20, 30)
$pdf.PDFSetLineWidth = 0.5
$pdf.PDFDrawLineHor(20, 33, $pdf.PDFGetStringWidth("Hello from PowerShell", "", 24) * 25.4 / 72)
$pdf.PDFEndDoc()
[void][Runtime.InteropServices.Marshal]::ReleaseComObject($pdf)
"done"
