#!/usr/bin/env python3
"""Writes base/text/lower_case_table.cpp: the simple lower-case forms of the Basic Multilingual Plane as runs.

Usage: scripts/make_lower_case.py > base/text/lower_case_table.cpp
The data is the Unicode character database of Python.
"""
import unicodedata


def simple_lower(code):
    # The only character whose full lower-case form is longer; its simple form is i.
    text = "i" if code == 0x130 else chr(code).lower()
    return ord(text) if len(text) == 1 and ord(text) < 0x10000 else code


def runs(shifts):
    codes = sorted(shifts)
    start = 0
    while start < len(codes):
        best = (1, 1)
        for step in (1, 2):
            last = start
            while (last + 1 < len(codes) and codes[last + 1] == codes[last] + step
                   and shifts[codes[last + 1]] == shifts[codes[start]]):
                last += 1
            best = max(best, (last - start + 1, step))
        count, step = best
        yield codes[start], codes[start + count - 1], shifts[codes[start]], step
        start += count


def main():
    shifts = {c: simple_lower(c) - c for c in range(0x80, 0x10000)
              if not 0xD800 <= c < 0xE000 and simple_lower(c) != c}
    print("// Written by scripts/make_lower_case.py from the Unicode character database, version "
          f"{unicodedata.unidata_version}.\n")
    print('#include "base/text/lower_case.h"\n\n#include <iterator>\n\nnamespace veltrano {\n')
    print("// clang-format off\nconst LowerCaseRun lowerCaseRuns[] = {")
    lines = [f"{{0x{a:04X}, 0x{b:04X}, {d}, {s}}}," for a, b, d, s in runs(shifts)]
    for i in range(0, len(lines), 4):
        print("    " + " ".join(lines[i:i + 4]))
    print("};\n// clang-format on\nconst std::size_t lowerCaseRunCount = std::size(lowerCaseRuns);\n")
    print("}  // namespace veltrano")


main()
