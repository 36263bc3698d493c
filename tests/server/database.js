// What a script host's own kinds become in a database, and how they come back.
var folder = WScript.Arguments(0);
var mdb = new ActiveXObject("VeltranoFrameWorkDLL.VeltranoMDB");
var opened = mdb.OpenDB(folder + "\\kinds.mdb") && mdb.OpenTable("Kinds");
mdb.AddNew();
mdb.WriteRecord("Moment", new Date(2026, 10, 21, 14, 5, 0));
mdb.WriteRecord("Words", "\uD83Dx\uDE00");
mdb.WriteRecord("Number", 0.1);
mdb.Update();
mdb.MoveFirst();
var words = mdb.ReadRecord_String("Words");
WScript.Echo(opened + " " + mdb.ReadRecord_String("Moment") + " " + (words == "\uD83Dx\uDE00") + " " +
             mdb.ReadRecord_String("Number") + " " + mdb.FindRecord("Words", words, false));
mdb.CloseTable();
mdb.CloseDatabase();
