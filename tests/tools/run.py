"""Runs the program as a user would, in a folder of its own, and compares what it prints and what it leaves.

    run.py PROGRAM FOLDER [DLL SYSTEM WINE]

The last three are for Windows: the DLL, the system's folder of its word size, and how to run the program.

A run that fails must print nothing on standard output (but for findings) and leave every file of the folder as it was,
and no run may leave an unfinished file.
"""

import atexit
import csv
import io
import json
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import sys
import time

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
    "text.mdb": "not a database",
    "empty.csv": "",
    "bad number.csv": "Name,Tiny\nz1,1\nz2,256\n",
    "bad field.csv": "Name,Nonsense\x1b" + "x" * 9000 + "\nz1,1\n",
    "duplicate.csv": "ID,Name\n100,z\n5,zz\n",
    "latin.csv": b"Name\nLef\xe8vre\n",
    "letter.txt": "\ufeffÉté\n\n\tindented " + "word " * 60 + "\n" + "x" * 300 + "\n\fnext page\n",
    "wide.csv": "Name;Amount;Remarks\n" + "".join(f"Øre {i};{i * 1000.5};{'long remark ' * 40}\n" for i in range(60)),
}
PIPE = "../pipe"
# What a case's "-> NAME" prints; patterns if compiled.
OUTPUTS = {
    "rows": ROWS,
    "tables": "Everything\nCode\n",
    "schema": SCHEMA.split("\n", 1)[1],
    "version": re.compile(r"veltrano \d+\.\d+\.\d+\n"),
    "help": re.compile(r"(?s).*Examples:.*veltrano doctor.*Exit codes"),
}
# Command lines. One succeeds without a word, but for "-> NAME" or "-> the text"; it fails with "| pattern of the error
# output", and is refused as a wrong command line with "|| pattern".
# What may differ under Windows: names, the console's code page, line ends, failures of the system.
CASES = r"""
mdb create Zoë.mdb schema.txt
mdb create Zoë.mdb schema.txt | Zoë.mdb: the file exists already
mdb tables missing.mdb | missing.mdb:\s
mdb import Zoë.mdb Everything Żółw.csv
mdb export Zoë.mdb everything -> rows
mdb export Zoë.mdb Everything -o copy.csv
mdb export Zoë.mdb Everything -o ./Zoë.mdb | is what is being read
mdb check Zoë.mdb -> Zoë.mdb: sound
pdf letter.txt -o letter.pdf --title 'A letter of Été'
pdf letter.txt -o . | : a folder has this name
"""
NATIVE_CASES = rf"""
--version -> version
--help -> help
|| subcommand
pdf letter.txt -o x.pdf --font gothic || gothic
mdb create b.mdb 'broken schema.txt' | broken schema.txt: line 3: "test" is not a type
mdb create b.mdb latin.csv | latin.csv: the text is not UTF-8
mdb create b.mdb /dev/zero | /dev/zero: it has more than 256 MB
mdb create missing/b.mdb schema.txt | missing/b.mdb: its folder is missing
mdb create b.mdb schema.txt --password {"x" * 21} | the password is too long
mdb tables Zoë.mdb -> tables
mdb tables Zoë.mdb --schema -> schema
mdb tables text.mdb | text.mdb: not an Access database
mdb export Zoë.mdb Code -> Key
mdb export Zoë.mdb Everything -o copy.csv
mdb export Zoë.mdb Missing -o x.csv | Zoë.mdb: Missing: no such table
mdb export Zoë.mdb Code -o 'missing folder/x.csv' | missing folder/x.csv: No such file
mdb export Zoë.mdb Code -o {PIPE} | pipe: a device or pipe, not a file
mdb import Zoë.mdb Everything empty.csv | empty.csv.*no line names the fields
mdb import Zoë.mdb Everything 'bad number.csv' | bad number.csv.*line 3: the value of Tiny
mdb import Zoë.mdb Everything 'bad field.csv' | no field "Nonsense\?x{{31}}\.\.\."\n$
mdb import Zoë.mdb Everything duplicate.csv | line 3: a duplicate
mdb import Zoë.mdb MSysACEs defaults.csv | MSysACEs: a system table
mdb import Zoë.mdb Everything defaults.csv
mdb export Zoë.mdb Everything --json -o copy.json
mdb create secret.mdb schema.txt --password Zaq1é
mdb tables secret.mdb | secret.mdb: the password is wrong
mdb check secret.mdb --password Zaq1é -> secret.mdb: sound
pdf letter.txt -o ./letter.txt | is what is being read
pdf letter.txt -o serif.pdf --font serif --letter
pdf wide.csv -o wide.pdf
pdf empty.csv -o x.pdf | empty.csv: an empty table
pdf Zoë.mdb -o x.pdf | Zoë.mdb: UTF-16, or not a text
"""

failures = []


def fail(what, *details):
    failures.append(what)
    print("FAILED:", what, *(str(detail)[:2000] for detail in details), sep="\n  ")


class Runner:
    def __init__(self, program, folder, wine):
        self.command = [wine, program] if wine else [program]
        self.environment = {key: value for key, value in os.environ.items() if key != "VELTRANO_TRACE"}
        self.folder = pathlib.Path(folder)

    def files(self):
        return {file.name: file.read_bytes() for file in self.folder.iterdir()}

    def check(self, arguments, code, output, errors, findings=False, options=None, **environment):
        before = self.files()
        done = subprocess.run(self.command + arguments, cwd=self.folder, env=self.environment | environment,
                              check=False, **{"stdout": subprocess.PIPE, "stderr": subprocess.PIPE} | (options or {}))
        printed = (done.stdout or b"").decode()
        # Wine's own processes may fail beside the program, and say so where it writes, too.
        said = re.sub("wine: .*\n*", "", done.stderr.decode("utf-8", "replace").replace("\r", ""))
        as_expected = output.match(printed) if isinstance(output, re.Pattern) else output == printed
        if done.returncode != code or not as_expected or (re.search(errors, said) is None if errors else said != ""):
            fail(" ".join(arguments), f"exit code {done.returncode} instead of {code}", printed[:3000], said)
        after = self.files()
        if code != 0 and (after != before or (printed and not findings)):
            fail(" ".join(arguments), "it fails, but leaves something")
        if any(name.endswith((".part", ".new", ".tmp", "-journal")) for name in after):
            fail(" ".join(arguments), "an unfinished file", *after)

    def check_case(self, case):
        command, sign, expected = re.fullmatch(r"(.*?)(?: ?(->|\|\|?) (.*))?", case).groups()
        arguments = shlex.split(command)
        if sign in ("|", "||"):
            self.check(arguments, len(sign), "", expected)
        elif case:
            self.check(arguments, 0, OUTPUTS.get(expected, expected + "\n") if sign else "", None)


def check_exports(runner):
    if (runner.folder / "copy.csv").read_bytes() != ROWS.encode():
        fail("the exported file differs from standard output")
    # As JSON, with what defaults.csv has added.
    expected = csv.DictReader(io.StringIO(ROWS + "9,x,,False,,,7,,,,,,,,\n10,y,,False,,,7,,,,,,,\"\",\n"))
    records = [json.loads(line) for line in (runner.folder / "copy.json").read_text("utf-8").splitlines()]
    for record, row in zip(records, expected, strict=True):
        for name, text in row.items():
            value = record[name]
            if value != float(text) if isinstance(value, float) else ("" if value is None else str(value)) != text:
                fail("JSON", name, repr(value), repr(text[:80]))
    if [record["Notes"] for record in records[-3:]] != [";", None, ""]:
        fail("JSON does not distinguish nulls from empty texts")


def check_limits(runner):
    """No room, and files in use."""
    import fcntl
    import resource
    export = ["mdb", "export", "Zoë.mdb", "Everything"]
    for size, arguments in [(1000, [*export, "-o", "x.csv"]), (1000, ["pdf", "letter.txt", "-o", "x.pdf"]),
                            *((size, ["mdb", "create", "x.mdb", "schema.txt"]) for size in (0, 9000, 50000))]:
        full = {"preexec_fn": lambda size=size: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))}
        runner.check(arguments, 1, "", "x.*: (File too large|.*cannot be written)", options=full)
    with open("/dev/full", "wb") as full:
        runner.check(export, 1, "", "standard output: No space left", options={"stdout": full})
    with open(runner.folder / "Zoë.mdb", "rb") as held:
        fcntl.flock(held, fcntl.LOCK_EX)
        runner.check(export, 1, "", "Zoë.mdb.*: another program has the file open")


def check_interruptions(runner, windows):
    """A signal ends the program as it would any, but nothing unfinished is left."""
    # Wine takes a while to pass an interruption on.
    (runner.folder / "large.txt").write_text("a line\n" * (1000000 if windows else 300000))
    before = runner.files()

    def interrupt(arguments, ready, *signals):
        with subprocess.Popen(runner.command + arguments, cwd=runner.folder, env=runner.environment) as process:
            keep = ready()
            for number in signals:
                process.send_signal(number)
            if process.wait(60) != (130 if windows else -signals[0]):
                fail(" ".join(arguments), f"exit code {process.returncode} after the signal {signals[0]}")
            del keep
        if runner.files() != before:
            fail(" ".join(arguments), "it was interrupted, and left something")

    def drawing():
        while not any(runner.folder.glob("*.part")):
            time.sleep(0.01)

    def importing():
        pipe = open(runner.folder / PIPE, "w", encoding="utf-8")  # once the program reads
        print("Key\na\nb", file=pipe, flush=True)
        time.sleep(0.3)
        return pipe

    interrupt(["pdf", "large.txt", "-o", "x.pdf"], drawing, signal.SIGINT)  # Wine makes Ctrl-C of it
    if not windows:
        interrupt(["pdf", "large.txt", "-o", "x.pdf"], drawing, signal.SIGTERM, signal.SIGTERM)
        interrupt(["mdb", "import", "Zoë.mdb", "Code", PIPE], importing, signal.SIGHUP)


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


def check_pages(runner):
    shown = subprocess.run(["pdftotext", "letter.pdf", "-"], cwd=runner.folder, capture_output=True, check=True).stdout.decode()
    if not re.match(r"(?s)A letter of Été\n.*next page\n.*", shown):
        fail("letter.pdf shows another text", shown)


def check_doctor(runner, dll, system, wine):
    # First an installation without anything: the program alone.
    alone = runner.folder.parent / "alone" / pathlib.Path(runner.command[-1]).name
    alone.parent.mkdir(exist_ok=True)
    shutil.copy(runner.command[-1], alone)
    faults = (r"(?s).*WRONG  Font metrics: [^\n]*alone: missing are Courier, .*, ZapfDingbats\n +Put"
              r".*WRONG  Trace: on, to missing[^\n]*\n +Name a file")
    well = r"(ok     [^\n]*\n)*ok     Trace: off\n"
    register = [wine, f"C:\\windows\\{system}\\regsvr32.exe", "/s", dll]
    if wine:
        # The prefix is beside the folder and made once: it may have the DLL of a run before.
        subprocess.run([*register, "/u"], check=False, env=runner.environment)
        faults += r".*WRONG  DLL for 32-bit hosts: not registered\n +Register"
        well += r"(ok     [^\n]*\n)*ok     DLL for \d\d-bit hosts: [^\n]*, version 1[^\n]*, loads\n"
    installed, runner.command[-1] = runner.command[-1], str(alone)
    runner.check(["doctor"], 1, re.compile(faults), None, findings=True, VELTRANO_TRACE="missing/trace.txt")
    if wine:
        subprocess.run(register, check=True, env=runner.environment)
    runner.command[-1] = installed
    runner.check(["doctor"], 0, re.compile(well + r"(ok     [^\n]*\n)*$"), None, VELTRANO_TRACE="off")


def main(program, folder, dll=None, system=None, wine=None):
    runner = Runner(program, folder, wine)
    shutil.rmtree(runner.folder, ignore_errors=True)
    runner.folder.mkdir(parents=True)
    for name, text in FILES.items():
        (runner.folder / name).write_bytes(text if isinstance(text, bytes) else text.encode())
    pipe = runner.folder / PIPE
    pipe.unlink(missing_ok=True)
    os.mkfifo(pipe)
    if wine:
        runner.environment["WINEPREFIX"] = folder + ".wine"
        subprocess.run([wine, "--prepare"], env=runner.environment, check=True)
        atexit.register(subprocess.run, ["wineserver", "-k"], env=runner.environment, check=False)
    for case in (CASES if wine else CASES + NATIVE_CASES).splitlines():
        runner.check_case(case)
    # A 64-bit program is a child of the loader, which gets the signal.
    if system != "system32":
        check_interruptions(runner, wine)
    if not wine:
        for check in check_exports, check_damage, check_limits, check_pages:
            check(runner)
    check_doctor(runner, dll, system, wine)
    sys.exit(f"{len(failures)} failures" if failures else None)


main(*sys.argv[1:])
