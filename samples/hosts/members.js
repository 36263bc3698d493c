// Lists the members of a club who get the newsletter: reads a database, draws a PDF page, keeps settings.
//   cscript //nologo members.js CONTACTS.mdb PHOTO.jpg OUTPUT_FOLDER
var UNIT_MM = 1, FONT_ARIAL = 0, FONT_NORMAL = 0, FONT_BOLD = 2;

if (WScript.Arguments.length < 3) {
    WScript.Echo("usage: cscript //nologo members.js CONTACTS.mdb PHOTO.jpg OUTPUT_FOLDER");
    WScript.Quit(1);
}
var database = WScript.Arguments(0), photo = WScript.Arguments(1), folder = WScript.Arguments(2);

var settings = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoXML");
settings.XML_Open(folder + "\\members.xml");
var title = settings.XML_GetSetting("List", "Title", "Members");
var runs = parseInt(settings.XML_GetSetting("List", "Runs", "0"), 10) + 1;
settings.XML_SaveSetting("List", "Title", title);
settings.XML_SaveSetting("List", "Runs", String(runs));
settings.XML_Save();
WScript.Echo("settings: " + new VBArray(settings.XML_EnumKeys("List")).toArray().join(" "));

var pdf = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoPDF");
pdf.PDFTitle = title;
pdf.PDFFileName = folder + "\\members.pdf";
pdf.PDFSetUnit = UNIT_MM;
pdf.PDFBeginDoc();
pdf.PDFSetFont(FONT_ARIAL, 20, FONT_BOLD);
pdf.PDFTextOut(title, 20, 25);
// JScript does not see what a member writes back, so the height is computed here.
var width = 60;
var height = width * pdf.PDFImageHeight(photo) / pdf.PDFImageWidth(photo);
pdf.PDFImage(photo, 20, 30, width, height);
WScript.Echo("picture: " + height + " mm high");

var mdb = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoMDB");
if (!mdb.OpenDB(database)) fail("the database does not open");
if (!mdb.OpenTable("Contacts")) fail("there is no table of contacts");
pdf.PDFSetFont(FONT_ARIAL, 11, FONT_NORMAL);
var y = 30 + height + 10, count = 0;
for (; !mdb.EOF(); mdb.MoveNext()) {
    if (mdb.ReadRecord_String("Newsletter") === "True") {
        pdf.PDFTextOut(mdb.ReadRecord_String("LastName") + ", " + mdb.ReadRecord_String("City"), 20, y);
        y += 7;
        count += 1;
    }
}
mdb.CloseTable();
mdb.CloseDatabase();
pdf.PDFEndDoc();
WScript.Echo("members.pdf: " + count + " members");
WScript.Echo("done");

function fail(reason) {
    WScript.Echo("members.js: " + reason);
    WScript.Quit(1);
}
