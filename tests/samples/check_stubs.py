"""Compares the finished type library with its source, with what scripts/make_stubs.py makes, and with what samples say.

check_stubs.py TYPE_LIBRARY FOLDER_OF_STUBS: prints what differs and exits 1 if anything does. A constant that a sample defines
itself must have the value that it has in the type library, too. Also writes names.cpp into the folder, in which each name of the
type library stands after the system's headers, as #import puts it, with the renames that docs/hosts/cpp.md tells readers to use.
"""

import re
import struct
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "scripts"))
from finish_type_library import DATA, NAMES, NONE, TypeLibrary, number  # noqa: E402
from type_library_source import read_library  # noqa: E402

VALUE = 16  # offset of a constant's value in its record
SHORT, DOUBLE, RESULT, HAS_DEFAULTS = 2, 5, 8, 0x1000


def value_at(library, record, at):
    """A constant's value, or a default: in place, after its type, if the highest bit is set."""
    word, data = number(record, at), library.segments[DATA]
    if word >> 31:
        return (word & 0x3FFFFFF) - (0x10000 if word >> 26 & 31 == SHORT and word & 0x8000 else 0)
    return number(data, word + 2, "<d" if number(data, word, "<H") == DOUBLE else "<i")


def parameters(library, record):
    """(name, default) of each but the result and a property's value, which has no name."""
    size, count = len(record), number(record, 20, "<H")
    for i in range(count):
        _, name, flags = struct.unpack_from("<3I", record, size - 12 * (count - i))
        place = size - 16 * count + 4 * i
        has_default = number(record, 16) & HAS_DEFAULTS and number(record, place) != NONE
        if name != NONE and not flags & RESULT:
            yield library.name(name), value_at(library, record, place) if has_default else None


def expected_parameters(member):
    """As the source has them. A text has its default in its class alone."""
    for parameter in member.parameters if "method" in member.kinds else []:
        text = {None: '""', "False": "0"}.get(parameter.default, parameter.default)
        yield parameter.name, None if text.startswith('"') else float(text)


def read(path):
    """Constants by name, the (dispatch id, name) of all members, every name, and what differs from the source."""
    library = TypeLibrary(Path(path).read_bytes())
    constants, members, functions = {}, set(), set()
    for infos in library.members.values():
        for index, (record, name) in enumerate(zip(infos.records, map(library.name, infos.names))):
            if index < infos.functions:
                members.add((number(infos.ids_and_names, 4 * index) & 0xFFFF, name))
                functions.add((name, *parameters(library, record)))
            else:
                constants[name] = value_at(library, record, VALUE)
    source = {(member.name, *expected_parameters(member)) for cls in read_library()[0].values() for member in cls.members}
    names, position = [], 0
    while position < len(library.segments[NAMES]):
        names.append(library.name(position))
        position += 12 + (len(names[-1]) + 3) // 4 * 4
    return constants, members, names, [f"parameters of {function}" for function in source - functions]


def write_names(path, names):
    renames = dict(re.findall(r'rename\("(\w+)", *"(\w+)"\)', (ROOT / "docs/hosts/cpp.md").read_text()))
    lines = ["#include <windows.h>", "#include <oleauto.h>", "#include <cstdio>"]
    lines += [f"struct Name{index} {{ int {renames.get(name, name)}; }};" for index, name in enumerate(names)]
    path.write_text("\n".join(lines) + "\n")


def main():
    library, stubs = sys.argv[1:]
    constants, members, names, problems = read(library)
    write_names(Path(stubs) / "names.cpp", names)
    problems += [] if len(constants) > 50 and len(members) > 100 else ["the type library could not be read"]
    assignment = re.compile(r"\b([A-Za-z]+_[A-Z0-9_]+) = (\d+)")
    for path in sorted(Path(stubs).glob("*onstants.*")) + [Path(stubs) / "Veltrano.cs"]:
        found = {name: int(value) for name, value in assignment.findall(path.read_text())}
        problems += [f"{path.name}: {name}" for name, _ in found.items() ^ constants.items()]
    text = (Path(stubs) / "Veltrano.cs").read_text()
    found = {(int(number), name) for number, name in re.findall(r"\[DispId\((\d+)\)\].* (\w+)(?:\(| {)", text)}
    problems += [f"Veltrano.cs: {name}" for _, name in members ^ found if f"// {name} takes any number" not in text]
    text = (Path(stubs) / "veltrano.pyi").read_text()
    problems += [f"veltrano.pyi: {name}" for _, name in members if not re.search(rf"\b(On)?{name}\b", text)]
    for path in (ROOT / "samples").rglob("*.*"):
        if path.suffix in (".vbs", ".js", ".bas", ".ps1", ".py", ".wsf"):
            own = {name: int(value) for name, value in assignment.findall(path.read_text())}
            problems += [f"{path.name}: {name}" for name in own if own[name] != constants.get(name, own[name])]
    if problems:
        sys.exit("differs from the type library: " + ", ".join(problems))
    print(f"{len(constants)} constants, {len(members)} members")


if __name__ == "__main__":
    main()
