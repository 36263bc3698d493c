"""The examples in the pages for users.

  page_examples.py scripts FOLDER FILES    writes one script for each page and language into FOLDER, which works on the files in FILES
  page_examples.py compile COMPILER        compiles the programs of the page on Linux
  page_examples.py compare FOLDER          compares the logs of those scripts, and of the samples that pages show, with what the
                                           pages say that they print; exits 1 if a log differs

VBScript, JScript and Python blocks of a page run one after the other in one script, except those after a remark "not run: REASON" and those
of a sample's file, which is run by itself. A text block right after an example is what it prints; a block after a remark "in FILE"
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

# Extension, and how constants that a script does not know are declared.
HOSTS = {"vbscript": ("vbs", "'", "Const {name} = {value}"), "javascript": ("js", "//", "var {name} = {value};"), "python": ("py", None, None)}
DONE = {"vbs": 'WScript.Echo "done"', "js": 'WScript.Echo("done");', "py": 'print("done")'}
BLOCK = re.compile(r"(?:<!-- (file:|not run:|in) (.*?) -->\n)?^```(\w+)\n(.*?)^```\n(?:\n^```text\n(.*?)^```\n)?", re.M | re.S)


def pages():
    for path in [ROOT / "README.md", *sorted((ROOT / "docs").rglob("*.md"))]:
        if "reference" not in path.parts:
            yield path.stem, path.read_text()


def examples(text, language):
    """(code, what it prints or None) of the blocks that run within the page's script."""
    for mark, _, found, code, printed in BLOCK.findall(text):
        if found == language and not mark:
            yield code, printed


def write_scripts(folder, files):
    _, enumerations = read_library()
    for name, text in pages():
        for language, (extension, remark, line) in HOSTS.items():
            codes = [code for code, _ in examples(text, language)]
            if not codes:
                continue
            lines = "\n".join([*codes, DONE[extension]])
            declared = "\n".join(re.findall(r"^(?:Const|var) (?:\w+ = \d+(?:, )?)+;?$", lines, re.M))
            head = [row for row in (constants(enumerations, remark, line) if remark else [])
                    if not any(constant in declared for constant in re.findall(r"(?:Const|var) (\w+)", row))]
            doubled = extension == "js"
            lines = lines.replace("C:\\\\Temp" if doubled else "C:\\Temp", files.replace("\\", "\\\\") if doubled else files)
            (folder / f"page-{name}.{extension}").write_text("\n".join(head) + "\n" + lines + "\n", newline="\r\n")


def compare(folder):
    failures = 0
    for name, text in pages():
        expected = {f"page-{name}.{extension}": "".join(printed for _, printed in examples(text, language)) + "done\n"
                    for language, (extension, _, _) in HOSTS.items() if any(examples(text, language))}
        expected |= {Path(file).name: printed for mark, file, _, _, printed in BLOCK.findall(text) if mark == "file:" and printed}
        for script, printed in expected.items():
            log = folder / f"{script}.log"
            said = log.read_text() if log.exists() else "(was not run)\n"
            if said != printed:
                print(f"FAILED: {script} says\n{said}instead of\n{printed}", file=sys.stderr)
                failures += 1
        for mark, file, _, part, _ in BLOCK.findall(text):
            if mark == "in" and part not in (folder / "files" / file).read_text():
                print(f"FAILED: {file} lacks what {name}.md shows:\n{part}", file=sys.stderr)
                failures += 1
    sys.exit(failures > 0)


def compile_programs(compiler):
    programs = list(examples((ROOT / "docs/hosts/linux.md").read_text(), "cpp"))
    for code, _ in programs:
        subprocess.run([compiler, "-std=c++20", "-Wall", "-fsyntax-only", "-I", ROOT / "include", "-x", "c++", "-"],
                       input=code, text=True, check=True)
    sys.exit(not programs)


if sys.argv[1] == "scripts":
    write_scripts(Path(sys.argv[2]), sys.argv[3])
elif sys.argv[1] == "compile":
    compile_programs(sys.argv[2])
else:
    compare(Path(sys.argv[2]))
