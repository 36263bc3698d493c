# Lists the members of a club who get the newsletter: reads a database, draws a PDF page, keeps settings.
#   powershell -File members.ps1 CONTACTS.mdb PHOTO.jpg OUTPUT_FOLDER
# The project's tests do not run it: it needs Windows PowerShell.
param([Parameter(Mandatory = $true)][string]$Database, [Parameter(Mandatory = $true)][string]$Photo,
      [Parameter(Mandatory = $true)][string]$Folder)

$UNIT_MM = 1; $FONT_ARIAL = 0; $FONT_NORMAL = 0; $FONT_BOLD = 2

# PowerShell's current folder is not that of the process: pass full paths.
$Database, $Photo, $Folder = $Database, $Photo, $Folder | ForEach-Object {
    $ExecutionContext.SessionState.Path.GetUnresolvedProviderPathFromPSPath($_)
}

$settings = New-Object -ComObject VeltranoFrameWorkDLL.VeltranoXML
$settings.XML_Open("$Folder\members.xml")
$title = $settings.XML_GetSetting("List", "Title", "Members")
$runs = [int]$settings.XML_GetSetting("List", "Runs", "0") + 1
$settings.XML_SaveSetting("List", "Title", $title)
$settings.XML_SaveSetting("List", "Runs", "$runs")
$settings.XML_Save()
"settings: " + ($settings.XML_EnumKeys("List") -join " ")

$pdf = New-Object -ComObject VeltranoFrameWorkDLL.VeltranoPDF
$pdf.PDFTitle = $title
$pdf.PDFFileName = "$Folder\members.pdf"
$pdf.PDFSetUnit = $UNIT_MM
$pdf.PDFBeginDoc()
$pdf.PDFSetFont($FONT_ARIAL, 20, $FONT_BOLD)
$pdf.PDFTextOut($title, 20, 25)
# Computed here, so that nothing depends on a result written back into an argument.
$width = 60.0
$height = $width * $pdf.PDFImageHeight($Photo) / $pdf.PDFImageWidth($Photo)
$pdf.PDFImage($Photo, 20, 30, $width, $height)
"picture: $height mm high"

$mdb = New-Object -ComObject VeltranoFrameWorkDLL.VeltranoMDB
if (-not $mdb.OpenDB($Database)) { throw "members.ps1: the database does not open" }
if (-not $mdb.OpenTable("Contacts")) { throw "members.ps1: there is no table of contacts" }
$pdf.PDFSetFont($FONT_ARIAL, 11, $FONT_NORMAL)
$y = 30 + $height + 10
$count = 0
while (-not $mdb.EOF()) {
    if ($mdb.ReadRecord_String("Newsletter") -eq "True") {
        $pdf.PDFTextOut($mdb.ReadRecord_String("LastName") + ", " + $mdb.ReadRecord_String("City"), 20, $y)
        $y += 7
        $count += 1
    }
    $mdb.MoveNext()
}
$mdb.CloseTable()
$mdb.CloseDatabase()
$pdf.PDFEndDoc()
"members.pdf: $count members"
$settings, $pdf, $mdb | ForEach-Object { [void][Runtime.InteropServices.Marshal]::ReleaseComObject($_) }
"done"
