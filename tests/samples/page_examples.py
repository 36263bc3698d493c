"""The examples in the pages for users.

  page_examples.py scripts FOLDER FILES    writes one script for each page and language into FOLDER, which works on the files in FILES
  page_examples.py compare FOLDER          compares the logs of those scripts, and of the samples that pages show, with what the
                                           pages say that they print; exits 1 if a log differs
  page_examples.py compile COMPILER        compiles the programs of the page on Linux

VBScript, JScript and Python blocks of a page run one after the other in one script, except those after a remark "not run: REASON"
and those of a sample's file, which is run by itself. A text block right after an example is what it prints; a block after a remark "in FILE"
is a part of that file.
"""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts"))
from make_stubs import constants  # noqa: E402
from type_library_source import read_library  # noqa: E402

# Extension, how constants that a script does not know are declared, its last line, and its backslash.
HOSTS = {"vbscript": ("vbs", "'", "Const {name} = {value}", 'WScript.Echo "done"', "\\"),
         "javascript": ("js", "//", "var {name} = {value};", 'WScript.Echo("done");', "\\\\"),
         "python": ("py", None, None, 'print("done")', "\\")}
BLOCK = re.compile(r"(?:<!-- (file:|not run:|in) (.*?) -->\n)?^```(\w+)\n(.*?)^```\n(?:\n^```text\n(.*?)^```\n)?", re.M | re.S)
PAGES = {path.stem: BLOCK.findall(path.read_text()) for path in [ROOT / "README.md", *sorted((ROOT / "docs").rglob("*.md"))]
         if "reference" not in path.parts}


def examples(page, language):
    """(code, what it prints) of the blocks that run within the page's script."""
    return [(code, printed) for mark, _, found, code, printed in PAGES[page] if found == language and not mark]


def write_scripts(folder, files):
    _, enumerations = read_library()
    for language, (extension, remark, line, done, slash) in HOSTS.items():
        for page in PAGES:
            if codes := [code for code, _ in examples(page, language)]:
                script = "\n".join([*codes, done])
                own = set(re.findall(r"(\w+) = \d", " ".join(re.findall(r"^(?:Const|var) (?:\w+ = \d+(?:, )?)+;?$", script, re.M))))
                head = [row for row in (constants(enumerations, remark, line) if remark else []) if own.isdisjoint(re.findall(r"(\w+) = \d", row))]
                script = script.replace(f"C:{slash}Temp", files.replace("\\", slash))
                (folder / f"page-{page}.{extension}").write_text("\n".join([*head, script, ""]), newline="\r\n")


def compare(folder):
    expected = {file.rpartition("/")[2]: printed for blocks in PAGES.values() for mark, file, _, _, printed in blocks
                if mark == "file:" and printed}
    for language, host in HOSTS.items():
        expected |= {f"page-{page}.{host[0]}": "".join(printed for _, printed in examples(page, language)) + "done\n"
                     for page in PAGES if examples(page, language)}
    logs = {script: folder / f"{script}.log" for script in expected}
    said = {script: log.read_text() if log.exists() else "(was not run)\n" for script, log in logs.items()}
    wrong = [f"{script} says\n{said[script]}instead of\n{printed}" for script, printed in expected.items() if said[script] != printed]
    wrong += [f"{file} lacks what a page shows:\n{part}" for blocks in PAGES.values() for mark, file, _, part, _ in blocks
              if mark == "in" and part not in (folder / "files" / file).read_text()]
    sys.exit("\n".join(wrong) or None)


def compile_programs(compiler):
    for code, _ in examples("linux", "cpp"):
        subprocess.run([compiler, "-std=c++20", "-Wall", "-fsyntax-only", "-I", ROOT / "include", "-x", "c++", "-"],
                       input=code, text=True, check=True)
    sys.exit(not examples("linux", "cpp"))


if sys.argv[1] == "compile":
    compile_programs(sys.argv[2])
{"scripts": write_scripts, "compare": compare}[sys.argv[1]](Path(sys.argv[2]), *sys.argv[3:])
