#!/usr/bin/env python3
"""Packs the published index codes of Access's text orders into tables of runs.

Usage: scripts/make_collations.py FOLDER
FOLDER holds the published code lists (NOTICE says where they come from): index_codes_gen.txt and
index_codes_ext_gen.txt, the same two with genleg, and index_codes_gen_97.txt. Writes
database/access/collation/general.cpp, general_legacy.cpp and general_97.cpp.

A line of a list is one character: a letter for its class, then hexadecimal fields. collation_table.h says what the
classes mean and how runs stand for the characters.
"""
import pathlib
import sys

CLASSES = {"S": "simple", "G": "significant", "I": "accented", "U": "unprintable", "P": "modifier",
           "Z": "extended", "X": "ignored"}
ADVANCE = [(1, "each"), (0, "never"), (2, "second"), (4, "fourth")]


def parse(line):
    fields = line[1:].split(",")
    codes = [bytes.fromhex(f.zfill(len(f) + len(f) % 2)) for f in fields[:2]]
    inline = codes[0]
    extra = codes[1] if len(codes) > 1 else b""
    small = line[0] == "Z" and len(fields) > 2 and fields[2] == "1"
    return line[0], inline, extra, small


def advanced(code, count):
    """The code `count` places further on; the last byte counts from 02 to FF."""
    if count == 0:
        return code
    if len(code) == 0 or code[-1] < 2:
        return None
    low = code[-1] - 2 + count
    high = int.from_bytes(code[:-1], "big") + low // 254
    if len(code) == 1 and high:
        return None
    return high.to_bytes(len(code) - 1, "big") + bytes([low % 254 + 2]) if len(code) > 1 else bytes([low + 2])


def shape(record):
    return record[0], len(record[1]), record[2], record[3]


class Packer:
    def __init__(self):
        self.kinds = []
        self.groups = {}
        self.pool = b""
        self.runs = []

    def kind(self, records, advance):
        key = tuple(shape(r) for r in records), advance
        if key not in self.groups:
            self.groups[key] = len(self.kinds)
            self.kinds += [(*s, advance) for s in key[0]]
        return self.groups[key]

    def length(self, records, start, divisor):
        """How many records from `start` on one run with this divisor covers."""
        base = records[start][1]
        if divisor and len(base) > 4:
            return 0  # codes of that length are stored, not computed
        period = max(divisor, 1)
        head = records[start:start + period]
        if len(head) < period or len({len(r[1]) for r in head}) > 1 or records[start][0] == "X" and divisor:
            return 0
        count = 0
        while start + count < len(records):
            record = records[start + count]
            expected = advanced(base, count // divisor if divisor else 0)
            if shape(record) != shape(head[count % period]) or record[1] != expected:
                break
            count += 1
        # A group of kinds pays off in long runs only.
        return count if divisor < 2 or count >= 12 else 0

    def pack(self, first, records):
        start = 0
        while start < len(records):
            count, _, divisor, name = max((self.length(records, start, d), -d, d, n) for d, n in ADVANCE)
            head = [records[start + min(i, count - 1)] for i in range(max(divisor, 1))]
            code = records[start][1]
            value = int.from_bytes(code, "big")
            if len(code) > 4:
                value = len(self.pool)
                self.pool += code
            self.runs.append((first + start, self.kind(head, name), value))
            start += count


def emit(path, name, packer):
    out = ["// Written by scripts/make_collations.py; NOTICE names the origin of the figures.", "",
           '#include "database/access/collation/collation_table.h"', "", "namespace veltrano::access {", "", "namespace {", "",
           "// clang-format off", "using enum CharacterClass;", "using enum Advance;", "",
           "constexpr CollationKind kinds[] = {"]
    for letter, length, extra, small, advance in packer.kinds:
        bytes_text = ", ".join(f"0x{b:02X}" for b in extra)
        out.append(f"    {{{CLASSES[letter]}, {length}, {advance}, {len(extra)}, {{{bytes_text}}}, "
                   f"{'true' if small else 'false'}}},")
    out += ["};", "", "constexpr std::uint64_t runs[] = {"]
    words = [f"0x{first:04X}{kind:04X}{value:08X}," for first, kind, value in packer.runs]
    out += ["    " + " ".join(words[i:i + 5]) for i in range(0, len(words), 5)]
    out += ["};", "", "constexpr std::uint8_t longCodes[] = {"]
    pool = packer.pool or b"\0"
    out += ["    " + " ".join(f"0x{b:02X}," for b in pool[i:i + 18]) for i in range(0, len(pool), 18)]
    out += ["};", "// clang-format on", "", "}  // namespace", "",
            f"const CollationTable {name}{{kinds, runs, longCodes}};", "", "}  // namespace veltrano::access", ""]
    path.write_text("\n".join(out))
    print(f"{path}: {len(packer.runs)} runs, {len(packer.kinds)} kinds, {len(packer.pool)} bytes of long codes")


def main():
    source = pathlib.Path(sys.argv[1])
    target = pathlib.Path(__file__).resolve().parent.parent / "database" / "access"

    def lines(name):
        return [parse(line) for line in (source / name).read_text().splitlines()]

    for suffix, stem, name in (("gen", "general", "generalTable"),
                               ("genleg", "general_legacy", "generalLegacyTable")):
        records = lines(f"index_codes_{suffix}.txt") + lines(f"index_codes_ext_{suffix}.txt")
        packer = Packer()
        packer.pack(0, records[:0xD800])
        # Surrogates have no lines: their codes are computed from their numbers.
        packer.pack(0xE000, records[0xD800:])
        emit(target / f"{stem}.cpp", name, packer)
    packer = Packer()
    packer.pack(0, lines("index_codes_gen_97.txt"))
    emit(target / "general_97.cpp", "general97Table", packer)


main()
