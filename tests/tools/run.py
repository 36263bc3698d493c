"""Runs the program as a user would, in a folder of its own, and compares what it prints and what it leaves.

    run.py PROGRAM FOLDER [--dll DLL --system FOLDER --wine WINE]

The options are for Windows: the DLL, the system's folder of its word size, and how to run the program.

Whatever a case is about, a run that fails must print nothing on standard output (but for findings) and leave every file
of the folder as it was, and a run that succeeds must leave no unfinished file.
"""

import argparse
import csv
import datetime
import io
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys

SCHEMA = """\
# every type, and names that need brackets
table Everything
  ID autonumber
  Name text(40) required
  [Żółw (born)] datetime
  Flag boolean
  Tiny byte
  Small integer
  Whole long default 7
  Cash currency
  Real4 single
  Real8 double
  Exact decimal(18,4)
  Raw binary(20)
  Picture ole
  Notes memo
  Guid guid
  primary PrimaryKey (ID)
  unique [By name] (Name, [Żółw (born)] desc)
  index ByCash (Cash) ignorenulls

table Code
  Key text(10) required nonempty
  primary PrimaryKey (Key)

"""
HEAD = "ID,Name,Żółw (born),Flag,Tiny,Small,Whole,Cash,Real4,Real8,Exact,Raw,Picture,Notes,Guid\n"
LONG = "Zażółć gęślą jaźń. " * 3000
# As export writes it; the memo of row 2 takes pages of its own.
ROWS = HEAD + f"""\
2,Lefèvre,2026-11-21 14:05:00,True,255,-32768,-2147483648,-922337203685477.5808,0.1,0.1,-12345678901234.5678,\
00FF7F,"",{LONG.strip()},{{00112233-4455-6677-8899-AABBCCDDEEFF}}
5,"a, ""quoted"" name",1999-12-31,False,0,0,0,0,3.4028235e+38,1.7976931348623157e+308,0,"",DEADBEEF,"line 1
line 2",{{FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF}}
7,"",,False,,,,,,,,,,"",
8," 日本 ",14:05:00,False,1,1,1,12.5,1e-05,1e-300,0.0001,41,42,";",
"""
FILES = {
    "schema.txt": SCHEMA,
    "Żółw.csv": ROWS,
    "defaults.csv": "\ufeffname;notes\r\nx;\r\ny;\"\"\r\n\r\n",
    "broken schema.txt": "table T\n  A text\n  B test\n",
    "no table.txt": "# nothing\n",
    "text.mdb": "not a database",
    "empty.csv": "",
    "bad number.csv": "Name,Tiny\nz1,1\nz2,256\n",
    "bad field.csv": "Name,Nonsense\nz1,1\n",
    "twice.csv": "Name,NAME\nz1,1\n",
    "short.csv": "Name,Tiny\nz1,1\nz2\n",
    "duplicate.csv": "ID,Name\n100,z\n5,zz\n",
    "open quote.csv": "Name,Notes\nz,\"never\nclosed\n",
    "no name.csv": "Tiny\n1\n",
    "latin.csv": b"Name\nLef\xe8vre\n",
    "bad bytes.csv": "Name,Raw\nz,0G\n",
    "letter.txt": "\ufeffÉté\n\n\tindented " + "word " * 60 + "\n" + "x" * 300 + "\n\fnext page\n",
    "wide.csv": "Name;Amount;Remarks\n" + "".join(f"Øre {i};{i * 1000.5};{'long remark ' * 40}\n" for i in range(60)),
}
# arguments, exit code, what standard output is (a pattern if compiled), a pattern for the error output
CASES = [
    (["--version"], 0, re.compile(r"veltrano \d+\.\d+\.\d+\n"), None),
    (["--help"], 0, re.compile(r"(?s).*Examples:.*veltrano doctor.*Exit codes"), None),
    (["mdb", "create", "--help"], 0, re.compile(r"(?s).*SCHEMA.*autonumber"), None),
    ([], 2, "", "subcommand"),
    (["nonsense"], 2, "", "subcommand"),
    (["mdb", "export", "a.mdb"], 2, "", "TABLE"),
    (["pdf", "letter.txt"], 2, "", "--output"),
    (["pdf", "letter.txt", "-o", "x.pdf", "--font", "gothic"], 2, "", "gothic"),
    (["mdb", "create", "b.mdb", "schema.txt", "--nonsense"], 2, "", "nonsense"),
    (["mdb", "create", "Zoë.mdb", "schema.txt"], 0, "", None),
    (["mdb", "create", "Zoë.mdb", "schema.txt"], 1, "", "Zoë.mdb: the file exists"),
    (["mdb", "create", "b.mdb", "broken schema.txt"], 1, "", 'broken schema.txt: line 3: "test" is not a type'),
    (["mdb", "create", "b.mdb", "no table.txt"], 1, "", "no table.txt: it describes no table"),
    (["mdb", "create", "b.mdb", "missing.txt"], 1, "", "missing.txt: cannot be read"),
    (["mdb", "tables", "Zoë.mdb"], 0, "Everything\nCode\n", None),
    (["mdb", "tables", "Zoë.mdb", "--schema"], 0, SCHEMA.split("\n", 1)[1], None),
    (["mdb", "tables", "text.mdb"], 1, "", "text.mdb: not an Access database"),
    (["mdb", "tables", "missing.mdb"], 1, "", "missing.mdb: "),
    (["mdb", "export", "Zoë.mdb", "everything"], 0, HEAD, None),
    (["mdb", "import", "Zoë.mdb", "Everything", "Żółw.csv"], 0, "", None),
    (["mdb", "export", "Zoë.mdb", "Everything"], 0, ROWS, None),
    (["mdb", "export", "Zoë.mdb", "Everything", "--rescue"], 0, ROWS, None),
    (["mdb", "export", "Zoë.mdb", "Everything", "-o", "copy.csv"], 0, "", None),
    (["mdb", "export", "Zoë.mdb", "Everything", "-o", "copy.csv"], 0, "", None),  # over the file
    (["mdb", "export", "Zoë.mdb", "Everything", "--json", "-o", "copy.json"], 0, "", None),
    (["mdb", "export", "Zoë.mdb", "Missing", "-o", "x.csv"], 1, "", "Zoë.mdb: Missing: no such table"),
    (["mdb", "export", "Zoë.mdb", "Code", "-o", "missing folder/x.csv"], 1, "", "missing folder/x.csv: "),
    *((["mdb", "import", "Zoë.mdb", "Everything", file], 1, "", pattern) for file, pattern in [
        ("empty.csv", "empty.csv.*no line names the fields"),
        ("missing.csv", "missing.csv: "),
        ("bad number.csv", "bad number.csv.*line 3: the value of Tiny"),
        ("bad field.csv", 'no field "Nonsense"'),
        ("twice.csv", '"NAME" is named twice'),
        ("short.csv", "line 3: there are 1 fields instead of 2"),
        ("duplicate.csv", "line 3: a duplicate"),
        ("open quote.csv", "line 2: a quote is not closed"),
        ("no name.csv", "line 2: a required field is null"),
        ("latin.csv", "line 2: the text is not UTF-8"),
        ("bad bytes.csv", "line 2: the value of Raw"),
    ]),
    (["mdb", "import", "Zoë.mdb", "Everything", "defaults.csv"], 0, "", None),
    (["mdb", "check", "Zoë.mdb"], 0, "Zoë.mdb: sound\n", None),
    (["mdb", "create", "secret.mdb", "schema.txt", "--password", "Zaq1é"], 0, "", None),
    (["mdb", "tables", "secret.mdb"], 1, "", "secret.mdb: the password is wrong"),
    (["mdb", "export", "Zoë.mdb", "Everything", "-o", "./Zoë.mdb"], 1, "", "is what is being read"),
    (["pdf", "letter.txt", "-o", "./letter.txt"], 1, "", "is what is being read"),
    (["mdb", "check", "secret.mdb", "--password", "Zaq1é"], 0, "secret.mdb: sound\n", None),
    (["pdf", "letter.txt", "-o", "letter.pdf", "--title", "A letter of Été"], 0, "", None),
    (["pdf", "letter.txt", "-o", "serif.pdf", "--font", "serif", "--letter"], 0, "", None),
    (["pdf", "wide.csv", "-o", "wide.pdf"], 0, "", None),
    (["pdf", "empty.csv", "-o", "x.pdf"], 1, "", "empty.csv: an empty table"),
    (["pdf", "missing.txt", "-o", "x.pdf"], 1, "", "missing.txt: cannot be read"),
    (["pdf", "letter.txt", "-o", "."], 1, "", ": not the name of a file"),
]

failures = []


def fail(what, *details):
    failures.append(what)
    print("FAILED:", what, *(str(detail)[:2000] for detail in details), sep="\n  ")


def content(folder):
    return {file.name: file.read_bytes() for file in folder.iterdir()}


class Runner:
    def __init__(self, options):
        self.command = ([options.wine] if options.wine else []) + [options.program]
        self.environment = {key: value for key, value in os.environ.items() if key != "VELTRANO_TRACE"}
        self.folder = pathlib.Path(options.folder)

    def run(self, arguments, **environment):
        done = subprocess.run(self.command + arguments, cwd=self.folder, env=self.environment | environment,
                              capture_output=True, check=False)
        # Wine's own processes may fail beside the program, and say so where it writes, too.
        errors = re.sub("wine: .*\n*", "", done.stderr.decode("utf-8", "replace").replace("\r", ""))
        return done.returncode, done.stdout.decode(), errors

    def check(self, arguments, code, output, errors, findings=False, **environment):
        before = content(self.folder)
        got = self.run(arguments, **environment)
        as_expected = output.match(got[1]) if isinstance(output, re.Pattern) else output == got[1]
        if got[0] != code or not as_expected or (re.search(errors, got[2]) is None if errors else got[2] != ""):
            fail(" ".join(arguments), f"exit code {got[0]} instead of {code}", got[1][:3000], got[2])
        after = content(self.folder)
        if code != 0 and (after != before or (got[1] and not findings)):
            fail(" ".join(arguments), "it fails, but leaves something")
        if any(name.endswith((".part", ".tmp", "-journal")) for name in after):
            fail(" ".join(arguments), "an unfinished file", *after)


def check_exports(runner):
    folder = runner.folder
    if (folder / "copy.csv").read_bytes() != ROWS.encode():
        fail("the exported file differs from standard output")
    records = [json.loads(line) for line in (folder / "copy.json").read_text("utf-8").splitlines()]
    rows = list(csv.DictReader(io.StringIO(ROWS)))
    for record, row in zip(records, rows, strict=True):
        for name, text in row.items():
            value = record[name]
            same = (value in (None, "")) if text == "" else str(value) == text
            if isinstance(value, float):
                same = value == float(text)
            if not same:
                fail("JSON", name, repr(value), repr(text[:80]))
    if [record["Name"] for record in records] != [row["Name"] for row in rows] or records[2]["Tiny"] is not None:
        fail("JSON does not distinguish nulls from empty texts")
    _, out, _ = runner.run(["mdb", "export", "Zoë.mdb", "Everything", "--json"])
    new = [json.loads(line) for line in out.splitlines()][4:]
    if [(r["ID"], r["Name"], r["Notes"], r["Whole"], r["Flag"]) for r in new] != \
            [(9, "x", None, 7, False), (10, "y", "", 7, False)]:
        fail("defaults, autonumbers and nulls of an import", out)


def check_damage(runner):
    """A page of the long memo is lost: nothing is exported, or everything else."""
    data = (runner.folder / "Zoë.mdb").read_bytes()
    page = data.index("Zażółć gęślą".encode("utf-16-le")) // 4096
    (runner.folder / "damaged.mdb").write_bytes(data[:page * 4096] + bytes([255] * 4096) + data[page * 4096 + 4096:])
    export = ["mdb", "export", "damaged.mdb", "Everything"]
    runner.check(["mdb", "check", "damaged.mdb"], 1, re.compile("damaged.mdb: Everything"), None, findings=True)
    runner.check([*export, "-o", "x.csv"], 1, "", "damaged.mdb: Everything: a record is damaged; --rescue")
    rescued = re.compile(re.escape(ROWS.replace(LONG.strip(), "")))
    runner.check([*export, "--rescue"], 0, rescued, "1 damaged records or values were left out")


def check_against_mdbtools(runner):
    """Another reader finds the same values in the file, apart from its way to write them."""
    if not shutil.which("mdb-export"):
        return
    formats = ["-b", "hex", "-T", "%Y-%m-%d %H:%M:%S", "-D", "%Y-%m-%d %H:%M:%S"]
    theirs = subprocess.run(["mdb-export", *formats, "Zoë.mdb", "Everything"], cwd=runner.folder,
                            capture_output=True, check=True).stdout.decode()

    def normal(name, text):
        if name == "Flag":
            return text in ("1", "True")
        if name == "Guid":  # its last hyphen is missing there, and the type is binary to it
            return re.sub("[^0-9A-F]", "", bytes.fromhex(text).decode() if text[:2] == "7B" else text)
        if name.startswith("Ż") and text:
            return datetime.datetime.fromisoformat(text if "-" in text else "1899-12-30 " + text)
        if name in ("Cash", "Real4", "Real8", "Exact") and text:
            return float(f"{min(float(text), 1.7e308):.6g}")  # the greatest double overflows there
        if name == "Raw" and text.startswith("00"):  # its bytes end at a zero there
            return ""
        return text

    for ours, other in zip(csv.DictReader(io.StringIO(ROWS)), csv.DictReader(io.StringIO(theirs))):
        for name in ours:
            if normal(name, ours[name]) != normal(name, other[name]):
                fail("mdb-export reads another value", name, ours[name][:80], other[name][:80])


def check_pages(runner):
    def text_of(name, *options):
        return subprocess.run(["pdftotext", *options, name, "-"], cwd=runner.folder, capture_output=True,
                              check=True).stdout.decode()

    if not shutil.which("pdftotext"):
        return
    for name, title, head, body in [
            ("letter.pdf", "A letter of Été", "", FILES["letter.txt"].lstrip("\ufeff")),
            ("serif.pdf", "letter", "", FILES["letter.txt"].lstrip("\ufeff")),
            ("wide.pdf", "wide", "Remarks", "")]:
        pages = text_of(name, "-layout").removesuffix("\f").split("\f")
        drawn = "".join(pages).replace(" ", "")
        for number, page in enumerate(pages, 1):
            if f"{number}/{len(pages)}" not in page.replace(" ", "") or title not in page or head not in page:
                fail(f"page {number} of {name} lacks its number, title or head", page)
            drawn = drawn.replace(f"{number}/{len(pages)}", "").replace(title.replace(" ", ""), "")
        if len(pages) < 2 or (body and re.sub(r"\s", "", drawn) != re.sub(r"\s", "", body)):
            fail(f"the text of {name} is another one", drawn)
        boxes = text_of(name, "-bbox")
        width = float(re.search(r'page width="([\d.]+)"', boxes)[1])
        if max(float(x) for x in re.findall(r'xMax="([\d.]+)"', boxes)) > width - 49:
            fail(f"{name} has text beyond the right margin")
    words = re.findall(r'xMax="([\d.]+)" yMax="[\d.]+">\d+\.\d<', text_of("wide.pdf", "-bbox"))
    edges = {round(float(word), 1) for word in words}
    if len(words) < 40 or len(edges) != 1:
        fail("numbers are not aligned to the right", *edges)


def check_doctor(runner, options):
    well = re.compile(r"(?s)(ok     [^\n]*\n)+$")
    if options.wine:
        # Beside the folder, so that the prefix is made once: it may have the DLL of a run before.
        register = [options.wine, f"C:\\windows\\{options.system}\\regsvr32.exe", "/s", options.dll]
        subprocess.run([*register, "/u"], check=False, env=runner.environment)
        runner.check(["doctor"], 1, re.compile(r"(?s).*WRONG  DLL for 32-bit hosts: not registered\n +Register"), None,
                     findings=True)
        subprocess.run(register, check=True, env=runner.environment)
        well = re.compile(r"(?s)(ok     [^\n]*\n)*ok     DLL for \d\d-bit hosts: [^\n]*, version 1[^\n]*, loads\n")
    runner.check(["doctor"], 0, well, None)
    runner.check(["doctor"], 1, re.compile(r"(?s).*WRONG  Trace: on, to missing"), None, findings=True,
                 VELTRANO_TRACE="missing/trace.txt")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("folder")
    parser.add_argument("--dll")
    parser.add_argument("--system")
    parser.add_argument("--wine")
    options = parser.parse_args()
    runner = Runner(options)
    shutil.rmtree(runner.folder, ignore_errors=True)
    runner.folder.mkdir(parents=True)
    for name, text in FILES.items():
        (runner.folder / name).write_bytes(text if isinstance(text, bytes) else text.encode())
    if options.wine:
        runner.environment["WINEPREFIX"] = options.folder + ".wine"
        subprocess.run([options.wine, "--prepare"], env=runner.environment, check=True)
    try:
        for case in CASES:
            runner.check(*case)
        check_exports(runner)
        check_against_mdbtools(runner)
        check_damage(runner)
        check_pages(runner)
        check_doctor(runner, options)
    finally:
        if options.wine:
            subprocess.run(["wineserver", "-k"], env=runner.environment, check=False)
    print(f"{len(CASES)} cases, {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
