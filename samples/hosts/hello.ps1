# Writes a page that greets. Not run by the project's tests: it needs Windows PowerShell.
#   powershell -File hello.ps1 C:\Temp\hello.pdf
param([Parameter(Mandatory = $true)][string]$Output)

$unitMm = 1; $fontArial = 0; $fontBold = 2

$pdf = New-Object -ComObject VeltranoFrameWorkDLL.VeltranoPDF
$pdf.PDFTitle = "Hello"
# The process's current folder is not PowerShell's: give the whole path.
$pdf.PDFFileName = $ExecutionContext.SessionState.Path.GetUnresolvedProviderPathFromPSPath($Output)
$pdf.PDFSetUnit = $unitMm
$pdf.PDFBeginDoc()
$pdf.PDFSetFont($fontArial, 24, $fontBold)
$pdf.PDFTextOut("Hello from PowerShell", 20, 30)
$pdf.PDFSetLineWidth = 0.5
$pdf.PDFDrawLineHor(20, 33, $pdf.PDFGetStringWidth("Hello from PowerShell", "", 24) * 25.4 / 72)
$pdf.PDFEndDoc()
[void][Runtime.InteropServices.Marshal]::ReleaseComObject($pdf)
"done"
