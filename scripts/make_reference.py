#!/usr/bin/env python3
"""Makes the reference pages in docs/reference from the type library's source and the hand-written notes, and puts the samples that
other pages show into them, after remarks like <!-- file: samples/classes/pdf.vbs -->.

  scripts/make_reference.py                 writes docs/reference/<class>.md
  scripts/make_reference.py --check         lists what is missing or out of date; exits 1 if anything is
  scripts/make_reference.py --examples FOLDER
                                            prints a VBScript that runs every example with its files in FOLDER

Names, types, order, defaults, enumerations and the first sentence of each member come from server/veltrano.idl,
everything else from docs/reference/notes/<class>.md. A note has one key
a line, continued by lines that start with two blanks:

  <parameter>: units, range and meaning, for every parameter ("value" for what a property is set to)
  result:      required if the member has one
  fallback:    what happens instead if something is wrong
  event:       "text" when ..., once for each message
  note:        anything else
  example:     VBScript; "example not run:" if a script host cannot run it

Before the members come "object:", the name of the object in the examples, "header:", the C++ header of the class, and
"texts:", the encoding of its strings there if it is not the ANSI code page; then the introduction of the class.
"""

import argparse
import re
import sys
from pathlib import Path

from make_stubs import constants
from type_library_source import ROOT, read_library

REFERENCE = ROOT / "docs" / "reference"
SHOWN_FILE = re.compile(r"(<!-- file: (\S+) -->\n```\w+\n)(.*?)(^```$)", re.M | re.S)

KEYS = ("result", "fallback", "event", "note", "example", "example not run")


class Notes:
    """A notes file: its introduction, and a list of (key, lines) for each member."""

    def __init__(self, path):
        head, *sections = re.split(r"^## (?=\w+$)", path.read_text(), flags=re.M)
        self.object = re.search(r"^object: (\w+)$", head, re.M).group(1)
        header = re.search(r"^header: (\S+)$", head, re.M).group(1)
        self.header = None if header == "-" else header
        texts = re.search(r"^texts: (\S+)$", head, re.M)
        self.texts = texts.group(1) if texts else "the ANSI code page (Windows-1252 unless `setCodePage` chose another)"
        self.introduction = re.sub(r"^(# .*|object: .*|header: .*|texts: .*)\n+", "", head, flags=re.M).strip()
        self.members = {}
        for section in sections:
            name, _, body = section.partition("\n")
            self.members[name.strip()] = self.entries(path, body)

    @staticmethod
    def entries(path, body):
        entries = []
        for line in body.splitlines():
            if line.startswith("  ") and entries:
                entries[-1][1].append(line[2:])
            elif found := re.match(r"([\w ]+): (.*)$", line):
                entries.append((found.group(1), [found.group(2)]))
            elif line.strip():
                sys.exit(f"{path}: neither a key nor the continuation of one: {line}")
        return entries


def problems_of(cls, notes):
    """What the notes lack, or have that the type library does not."""
    members = cls.members + cls.events
    for name in notes.members.keys() - {member.name for member in members}:
        yield f"{cls.name}: a note on {name}, which the type library does not have"
    for member in members:
        entries = notes.members.get(member.name)
        if entries is None:
            yield f"{cls.name}.{member.name}: no note"
            continue
        given = [key for key, _ in entries]
        wanted = {parameter.name for parameter in member.parameters} | ({"result"} if member.result else set())
        for key in sorted(wanted - set(given)):
            yield f"{cls.name}.{member.name}: nothing is said of {key}"
        for key in sorted(set(given) - wanted - set(KEYS) | ({"result"} & set(given) - wanted)):
            yield f"{cls.name}.{member.name}: there is no {key}"
        if not {"example", "example not run"} & set(given):
            yield f"{cls.name}.{member.name}: no example"
        if not member.help:
            yield f"{cls.name}.{member.name}: no help text in the type library"


def prose(lines):
    return " ".join(line.strip() for line in lines)


def fenced(language, lines):
    return [f"```{language}", *lines, "```", ""]


def member_section(member, entries):
    out = [f"### {member.name}", "", member.help, "", *fenced("vbnet", list(member.declarations()))]
    texts = {key: prose(lines) for key, lines in entries if key != "event"}
    if member.parameters:
        out += ["| argument | type | default | meaning |", "|---|---|---|---|"]
        for parameter in member.parameters:
            default = "" if parameter.default is None else f"`{parameter.default}`"
            out.append(f"| `{parameter.name}` | {parameter.kind} | {default} | {texts[parameter.name]} |")
        out.append("")
    if member.result:
        out += [f"**Result** ({member.result}): {texts['result']}", ""]
    if "fallback" in texts:
        out += [f"**Fallback:** {texts['fallback']}", ""]
    for key, lines in entries:
        if key == "event":
            text, when = re.match(r'"([^"]*)"\s*(.*)$', prose(lines)).groups()
            out += [f'**Event** `"{text}"` {when}.', ""]
    if "note" in texts:
        out += [texts["note"], ""]
    for key, lines in entries:
        if key == "example not run":
            out += ["The project's tests do not run this example: Wine's script host has no events, pictures or addresses.", ""]
        if key.startswith("example"):
            out += fenced("vbscript", lines)
    return out


def anchor(name):
    return f"[`{name}`](#{name.lower()})"


def event_table(cls, notes):
    """Each message with the members that raise it, in the order of the members."""
    raised = {}
    for member in cls.members:
        for key, lines in notes.members[member.name]:
            if key == "event":
                raised.setdefault(re.match(r'"([^"]*)"', lines[0]).group(1), []).append(anchor(member.name))
    return ["| message | raised by |", "|---|---|",
            *(f'| `"{text}"` | {", ".join(members)} |' for text, members in raised.items()), ""]


def page(cls, notes, enumerations):
    out = [f"# {cls.name}", "", "<!-- Made by scripts/make_reference.py from server/veltrano.idl and "
           f"docs/reference/notes/{cls.name}.md: change those. -->", "", f"{cls.help}.", "",
           f"- automation: `CreateObject(\"VeltranoFrameWorkDLL.{cls.name}\")`"]
    if notes.header:
        text = "std::u16string" if notes.texts == "UTF-16" else "std::string"
        out.append(f"- C++ on Linux: `#include <{notes.header}>`, class `veltrano::{cls.name}`; strings are `{text}` "
                   f"in {notes.texts}, file names `std::filesystem::path`")
    out += ["", notes.introduction, ""]
    if cls.members:
        out += ["## Members", "", "| member | |", "|---|---|"]
        out += [f"| {anchor(member.name)} | {member.help} |" for member in cls.members]
        out.append("")
    used = {parameter.kind for member in cls.members for parameter in member.parameters}
    mentioned = set(re.findall(r"`(\w+)`", notes.introduction + str(notes.members)))
    names = [name for name in enumerations if name in used | mentioned]
    if cls.name == "VeltranoPDF":
        names = [name for name in enumerations if name != "EventTypes"]
    if names:
        out += ["## Enumerations", "", "Script hosts do not know the names: copy the lines that you need from the folder `stubs` of the package.", ""]
        for name in names:
            help_text, rows = enumerations[name]
            out += [f"### {name}", "", f"{help_text}.", "", "| name | value | |", "|---|---|---|"]
            out += [f"| `{constant}` | {value} | {meaning} |" for constant, value, meaning in rows]
            out.append("")
    if cls.events:
        out += ["## Events", ""]
        for member in cls.events:
            out += member_section(member, notes.members[member.name])
        out += event_table(cls, notes)
    if cls.members:
        out += ["## Each member", "", f"The examples use `{notes.object}`, the object created in the example at the top.", ""]
        for member in cls.members:
            out += member_section(member, notes.members[member.name])
    return "\n".join(out).rstrip() + "\n"


def examples_script(classes, enumerations, notes, folder):
    """Every example, announced by the name of its member and run on a new object, and "done" at the end, since script hosts
    hide errors. The constants come first."""
    out = list(constants(enumerations, "'", "Const {name} = {value}"))
    for name, cls in classes.items():
        for example in re.findall(r"^```vbscript\n(.*?)^```", notes[name].introduction, re.M | re.S):
            out += [f'WScript.Echo "{name}"', *example.splitlines()]
        for member in cls.members:
            for key, lines in notes[name].members[member.name]:
                if key == "example":
                    out += [f'WScript.Echo "{name}.{member.name}"',
                            f'Set {notes[name].object} = CreateObject("VeltranoFrameWorkDLL.{name}")', *lines]
    out.append('WScript.Echo "done"')
    return "\r\n".join(out).replace("C:\\Temp", folder) + "\r\n"


def with_files(text):
    """The page with the blocks after "file:" remarks filled with those files."""
    return SHOWN_FILE.sub(lambda found: found.group(1) + (ROOT / found.group(2)).read_text() + found.group(4), text)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--examples", metavar="FOLDER")
    options = parser.parse_args()
    classes, enumerations = read_library()
    notes = {name: Notes(REFERENCE / "notes" / f"{name}.md") for name in classes}
    problems = [problem for name, cls in classes.items() for problem in problems_of(cls, notes[name])]
    if problems:
        sys.exit("\n".join(problems))
    if options.examples:
        sys.stdout.write(examples_script(classes, enumerations, notes, options.examples))
        return
    stale = []
    pages = {REFERENCE / f"{name}.md": page(cls, notes[name], enumerations) for name, cls in classes.items()}
    for path in (ROOT / "docs").rglob("*.md"):
        if SHOWN_FILE.search(path.read_text()):
            pages[path] = with_files(path.read_text())
    for path, text in pages.items():
        if path.exists() and path.read_text() == text:
            continue
        stale.append(path.relative_to(ROOT))
        if not options.check:
            path.write_text(text)
    if options.check and stale:
        sys.exit("out of date, run scripts/make_reference.py: " + ", ".join(map(str, stale)))
    members = sum(len(cls.members) + len(cls.events) for cls in classes.values())
    print(f"{len(classes)} classes, {members} members" + (f"; written: {len(stale)} pages" if stale else ""))


if __name__ == "__main__":
    main()
