#!/usr/bin/env python3
"""Checks the formatting (clang-format), the layers and the faults (clang-tidy) of the project's sources.

    scripts/lint.py BUILD_FOLDER

BUILD_FOLDER is a configured and built native preset, which has the compile command and the headers of each file. A
clean file is not checked again until it, one of its headers or the checks change.
"""

import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
# Tests and benchmarks are only formatted: their macros would flood the findings.
TIDIED = ("base", "pdf", "kml", "settings", "imaging", "database", "eventlog")


def tracked(*patterns):
    output = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--",
                             *patterns], check=True, capture_output=True, text=True).stdout
    return [ROOT / name for name in output.split("\0") if name and (ROOT / name).exists()]


def against_the_layers():
    """base/ includes no feature, features do not include each other, and only server/ and the files of a system include its headers."""
    wrong = False
    for source in tracked(*[f"{folder}/*.{ending}" for folder in TIDIED for ending in ("cpp", "h")]):
        name = source.relative_to(ROOT)
        allowed = {"base", "veltrano", name.parts[0]}
        of_a_system = "_windows" in source.stem or "_posix" in source.stem
        for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
            ours = re.match(r'#include "([a-z]+)/', line)
            system = re.match(r"#include <(windows|oleauto|objbase|unistd|fcntl|sys/[a-z]+)\.h>", line)
            if (ours and ours[1] not in allowed) or (system and not of_a_system):
                wrong = True
                print(f"{name}:{number}: against the layers: {line}")
    return wrong


def badly_formatted():
    sources = tracked("*.cpp", "*.h")
    result = subprocess.run(["clang-format", "--dry-run", "--Werror", *sources], capture_output=True, text=True)
    for line in result.stderr.splitlines():
        if "error:" in line or "warning:" in line:
            print(line)
    return result.returncode != 0


def dependencies(build):
    """Object file -> the project's own files that its compilation read."""
    output = subprocess.run(["ninja", "-C", build, "-t", "deps"], check=True, capture_output=True, text=True).stdout
    table = {}
    current = None
    for line in output.splitlines():
        if line and not line.startswith(" "):
            current = table.setdefault(line.split(":")[0], [])
        elif current is not None and line.strip().startswith(str(ROOT)):
            current.append(line.strip())
    return table


def fingerprint(source, headers):
    digest = hashlib.sha256((ROOT / ".clang-tidy").read_bytes())
    for name in sorted({str(source), *headers}):
        digest.update(name.encode())
        digest.update(pathlib.Path(name).read_bytes())
    return digest.hexdigest()


def tidy(build, source):
    result = subprocess.run(["clang-tidy", "--quiet", "--extra-arg=-Wno-unknown-warning-option", "-p", build, source], capture_output=True, text=True)
    return result.returncode == 0, result.stdout


def faulty(build):
    cache_file = build / "lint-clean.json"
    clean = set(json.loads(cache_file.read_text())) if cache_file.exists() else set()
    known = dependencies(build)
    todo = []
    still_clean = set()
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = pathlib.Path(entry["file"])
        if source.relative_to(ROOT).parts[0] not in TIDIED if source.is_relative_to(ROOT) else True:
            continue
        mark = fingerprint(source, known.get(entry.get("output", ""), []))
        (still_clean.add(mark) if mark in clean else todo.append((source, mark)))
    failed = False
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for (source, mark), (good, text) in zip(todo, pool.map(lambda item: tidy(build, item[0]), todo)):
            if good:
                still_clean.add(mark)
            else:
                failed = True
                print(text)
    cache_file.write_text(json.dumps(sorted(still_clean)))
    return failed


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    failures = [badly_formatted(), against_the_layers(), faulty(build)]
    sys.exit(1 if any(failures) else 0)


if __name__ == "__main__":
    main()
