#!/usr/bin/env python3
"""Checks the formatting (clang-format), the layers and the faults (clang-tidy) of the project's sources.

    scripts/lint.py [--since COMMIT] BUILD_FOLDER [WINDOWS_BUILD_FOLDER]

BUILD_FOLDER is a configured native preset that compiles each file alone, WINDOWS_BUILD_FOLDER one for Windows with the
generated headers, for the sources that are compiled only there. Their compile commands say how and with which headers. A file that was clean is not checked again until it, one of these headers or the checks themselves change. With
--since only files are searched for faults that changed after that commit, or whose headers did.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
# Tests and benchmarks are formatted but not searched for faults: their macros would flood the findings.
PORTABLE = ("base", "pdf", "kml", "settings", "imaging", "database", "eventlog")
TIDIED = (*PORTABLE, "server", "tools")
# The rooms of an area from the lowest up: none includes one after it. "." are the files on the area's own floor.
ROOMS = {
    "pdf": ("document", "images", "fonts", "graphics", "text", "assembly", ".", "sheets"),
    "imaging": ("bitmap", "jpeg", "."),
    "database/access": ("storage", "pages", "collation", "schema", "rules", "index", "rows", "search", "relations", ".",
                        "authoring", "check", "transfer"),
}


def tracked(*patterns):
    output = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--",
                             *patterns], check=True, capture_output=True, text=True).stdout
    return [ROOT / name for name in output.split("\0") if name and (ROOT / name).exists()]


def against_the_layers():
    """base/ includes no feature, features do not include each other, and only server/ and the files of a system include its headers."""
    wrong = False
    for source in tracked(*[f"{folder}/*.{ending}" for folder in (*PORTABLE, "include") for ending in ("cpp", "h")]):
        name = source.relative_to(ROOT)
        allowed = {"veltrano"} if name.parts[0] == "include" else {"base", "veltrano", name.parts[0]}
        of_a_system = "_windows" in source.stem or "_posix" in source.stem
        for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
            ours = re.match(r'#include "([a-z]+)/', line)
            system = re.match(r"#include <(windows|oleauto|objbase|unistd|fcntl|sys/[a-z]+)\.h>", line)
            if (ours and ours[1] not in allowed) or (system and not of_a_system):
                wrong = True
                print(f"{name}:{number}: against the layers: {line}")
    return wrong


def room_of(area, name):
    """The place of a file's room in its area; None if it is not in the area."""
    if not name.startswith(area + "/"):
        return None
    room = name[len(area) + 1:].split("/")
    return ROOMS[area].index(room[0] if len(room) > 1 else ".")


def against_the_rooms():
    wrong = False
    for area in ROOMS:
        for source in tracked(f"{area}/*.cpp", f"{area}/*.h"):
            name = source.relative_to(ROOT)
            here = room_of(area, str(name))
            for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
                included = re.match(r'#include "([^"]+)"', line)
                there = room_of(area, included[1]) if included else None
                if there is not None and there > here:
                    wrong = True
                    print(f"{name}:{number}: includes from a room above its own: {line}")
    return wrong


def badly_formatted():
    sources = tracked("*.cpp", "*.h")
    result = subprocess.run(["clang-format", "--dry-run", "--Werror", *sources], capture_output=True, text=True)
    for line in result.stderr.splitlines():
        if "error:" in line or "warning:" in line:
            print(line)
    return result.returncode != 0


def read_files(entry):
    """The project's own files that the compilation of an entry of the compile commands reads."""
    command = shlex.split(entry["command"])
    place = command.index("-o")
    output = subprocess.run([*command[:place], *command[place + 2:], "-MM"], cwd=entry["directory"], check=True,
                            capture_output=True, text=True).stdout
    # A rule of a makefile: blanks inside names are escaped, lines end in a backslash.
    names = shlex.split(output.replace("\\\n", " "))[1:]
    return {str(path) for path in (pathlib.Path(entry["directory"], name).resolve() for name in names)
            if path.is_relative_to(ROOT)}


def fingerprint(names):
    digest = hashlib.sha256((ROOT / ".clang-tidy").read_bytes())
    for name in sorted(names):
        digest.update(name.encode())
        digest.update(pathlib.Path(name).read_bytes())
    return digest.hexdigest()


def include_folders(compiler):
    """Those of the compiler's library and system, without the headers that belong to the compiler itself."""
    output = subprocess.run([compiler, "-E", "-v", "-x", "c++", os.devnull], capture_output=True, text=True).stderr
    listed = output.split("#include <...> search starts here:")[1].split("End of search list.")[0].split()
    return [folder for folder in map(os.path.realpath, listed) if os.path.basename(folder) != "include-fixed" and
            not os.path.exists(folder + "/mmintrin.h")]


def windows_arguments(build):
    """What clang needs in place of the cross compiler whose commands the build folder holds; empty for a native one."""
    compiler = re.search(r"/[^\s\"]*/(\w+)-w64-mingw32-g\+\+[^\s\"]*", (build / "compile_commands.json").read_text())
    if not compiler:
        return []
    # Windows' handles are numbers that are cast to pointers; the generated header names the coclasses as classes.
    return ["--checks=-performance-no-int-to-ptr,-bugprone-forward-declaration-namespace",
            f"--extra-arg-before=--target={compiler[1]}-w64-windows-gnu", "--extra-arg=-nostdinc++",
            *[f"--extra-arg=-isystem{folder}" for folder in include_folders(compiler[0])]]


def tidy(build, arguments, source):
    result = subprocess.run(["clang-tidy", "--quiet", "--extra-arg=-Wno-unknown-warning-option", *arguments, "-p", build,
                             source], capture_output=True, text=True)
    return result.returncode == 0, result.stdout


def is_tidied(source, for_windows):
    if not source.is_relative_to(ROOT):
        return False
    only_windows = "_windows" in source.stem or source.relative_to(ROOT).parts[0] == "server"
    return source.relative_to(ROOT).parts[0] in TIDIED and only_windows == for_windows


def changed_since(commit):
    """The files that differ from the commit, or None if all of them are to be checked."""
    if commit is None:
        return None
    output = subprocess.run(["git", "-C", ROOT, "diff", "--name-only", commit], check=True, capture_output=True, text=True).stdout
    names = set(output.splitlines())
    return None if ".clang-tidy" in names else {str(ROOT / name) for name in names}


def faulty(build, changed):
    arguments = windows_arguments(build)
    cache_file = build / "lint-clean.json"
    clean = set(json.loads(cache_file.read_text())) if cache_file.exists() else set()
    entries = [entry for entry in json.loads((build / "compile_commands.json").read_text())
               if is_tidied(pathlib.Path(entry["file"]), for_windows=bool(arguments))]
    todo = []
    still_clean = set() if changed is None else set(clean)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for entry, names in zip(entries, pool.map(read_files, entries)):
            if changed is not None and changed.isdisjoint(names):
                continue
            mark = fingerprint(names)
            (still_clean.add(mark) if mark in clean else todo.append((entry["file"], mark)))
    failed = False
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for (source, mark), (good, text) in zip(todo, pool.map(lambda item: tidy(build, arguments, item[0]), todo)):
            if good:
                still_clean.add(mark)
            else:
                failed = True
                print(text)
    cache_file.write_text(json.dumps(sorted(still_clean)))
    return failed


def main():
    arguments = argparse.ArgumentParser()
    arguments.add_argument("--since", metavar="COMMIT")
    arguments.add_argument("builds", metavar="BUILD_FOLDER", nargs="+", type=lambda name: pathlib.Path(name).resolve())
    options = arguments.parse_args()
    changed = changed_since(options.since)
    failures = [badly_formatted(), against_the_layers(), against_the_rooms(),
                *[faulty(build, changed) for build in options.builds]]
    sys.exit(1 if any(failures) else 0)


if __name__ == "__main__":
    main()
