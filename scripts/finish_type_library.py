#!/usr/bin/env python3
"""Adds to the type library what its compiler, widl, cannot write.

    scripts/finish_type_library.py veltrano.idl UNFINISHED.tlb FINISHED.tlb

 - Defaults of double parameters: widl stores the bits of a whole number, which hosts read as another double.
 - Help texts of enumeration values: in the IDL they are the comments after the values.

and takes out the time of its compilation, so that the same IDL makes the same file.

The file is little-endian and laid out as follows; the names are those of Wine's dlls/oleaut32/typelib.h.

  header        0x54 bytes: "MSFT", at 0x14 flags (0x100: a help DLL, one more number after the header), at 0x20 the
                number of type infos
  offsets       a number for each type info
  directory     15 entries of 16 bytes, each with offset (-1: no such segment) and length of a segment:
                  0  type infos, 0x64 bytes each: at 4 the file offset of the members (the next type info's if it has
                     none), at 0x18 the number of functions, at 0x1a that of variables
                  7  names: at 8 the length in one byte, at 12 the characters
                  8  strings: a 16-bit length, the characters, padded with "W" to a multiple of 4
                  11 data of defaults: a 16-bit VARTYPE, the value, padded likewise
  segments      in any order
  members       for each type info: the size of the records, the records, then for each record an id, the offset of
                its name in the names, and its own offset

A record starts with its size (16 bits) and its number (16 bits).
  function      at 16 flags (0x1000: has defaults), at 20 the number of its parameters. It ends with 12 bytes for each
                parameter, preceded, if it has defaults, by a number for each parameter: -1 for no default; with the
                highest bit set the VARTYPE in bits 26 to 30 and the value below; otherwise an offset in the data
  variable      20 bytes; then, if the size includes them, help context and help text (offset in the strings)
"""

import re
import struct
import sys

HEADER_SIZE, DIRECTORY_SIZE, TYPE_INFO_SIZE = 0x54, 15 * 16, 0x64
TYPE_INFOS, NAMES, STRINGS, DATA = 0, 7, 8, 11
NONE, IN_PLACE = 0xFFFFFFFF, 0x80000000
VT_R8 = 5
PLAIN_VARIABLE_SIZE = 20


def number(data, offset, form="<I"):
    return struct.unpack_from(form, data, offset)[0]


def append(segment, entry):
    """Appends the entry, padded to a multiple of 4 bytes, and returns its offset."""
    offset = len(segment)
    segment += entry + b"W" * (-len(entry) % 4)
    return offset


class Members:
    """The records of a type info's functions, then those of its variables."""

    def __init__(self, data, functions, variables):
        self.functions = functions
        count = functions + variables
        end = 4 + number(data, 0)
        self.ids_and_names = data[end : end + 8 * count]
        self.names = struct.unpack_from(f"<{count}I", data, end + 4 * count)
        offsets = struct.unpack_from(f"<{count}I", data, end + 8 * count)
        self.records = [bytearray(data[4 + o : 4 + o + number(data, 4 + o, "<H")]) for o in offsets]

    def data(self):
        offsets, size = [], 0
        for record in self.records:
            struct.pack_into("<H", record, 0, len(record))
            offsets.append(size)
            size += len(record)
        return b"".join([struct.pack("<I", size), *self.records, self.ids_and_names, struct.pack(f"<{len(offsets)}I", *offsets)])


class TypeLibrary:
    def __init__(self, data):
        if data[:4] != b"MSFT":
            sys.exit("finish_type_library: not a type library")
        self.directory = HEADER_SIZE + (4 if number(data, 0x14) & 0x100 else 0) + 4 * number(data, 0x20)
        self.head = bytearray(data[: self.directory + DIRECTORY_SIZE])
        places = {}
        for index in range(DIRECTORY_SIZE // 16):
            offset, length = struct.unpack_from("<2I", data, self.directory + 16 * index)
            if offset != NONE:
                places[index] = (offset, length)
        self.segments = {index: bytearray(data[offset : offset + length])
                         for index, (offset, length) in sorted(places.items(), key=lambda item: item[1])}
        self.members = {}
        types = self.segments[TYPE_INFOS]
        for info in range(0, len(types), TYPE_INFO_SIZE):
            functions, variables = struct.unpack_from("<2H", types, info + 0x18)
            if functions or variables:
                self.members[info] = Members(data[number(types, info + 4) :], functions, variables)

    def name(self, offset):
        length = self.segments[NAMES][offset + 8]
        return self.segments[NAMES][offset + 12 : offset + 12 + length].decode("ascii")

    def correct_defaults(self, record):
        parameters = number(record, 20, "<H")
        if not number(record, 16) & 0x1000:
            return
        data = self.segments[DATA]
        for at in range(len(record) - 16 * parameters, len(record) - 12 * parameters, 4):
            default = number(record, at)
            if default == NONE:
                continue
            if default & IN_PLACE:
                kind, value = default >> 26 & 0x1F, default & 0x3FFFFFF
            else:
                kind, value = struct.unpack_from("<Hi", data, default)
            if kind == VT_R8:
                struct.pack_into("<I", record, at, append(data, struct.pack("<Hd", VT_R8, value)))

    def add_help(self, record, text):
        encoded = text.encode("ascii")
        place = append(self.segments[STRINGS], struct.pack("<H", len(encoded)) + encoded)
        record[PLAIN_VARIABLE_SIZE:] = struct.pack("<2I", 0, place)

    def forget_time(self):
        """widl writes the time into two entries that name itself: as a text, and as a VT_UI4 after that."""
        data = self.segments[DATA]
        found = re.search(rb"by WIDL version [\d.]+ at (\w{3} \w{3} [ \d]\d [\d:]{8} \d{4})\nW*\x13\0(.{4})", data, re.S)
        if found:
            data[found.start(1) : found.end(1)] = b"Thu Jan  1 00:00:00 1970"
            data[found.start(2) : found.end(2)] = bytes(4)

    def data(self):
        types = self.segments[TYPE_INFOS]
        parts = [self.head, *self.segments.values()]
        position = sum(map(len, parts))
        for info in range(0, len(types), TYPE_INFO_SIZE):
            struct.pack_into("<I", types, info + 4, position)
            if info in self.members:
                parts.append(self.members[info].data())
                position += len(parts[-1])
        position = len(self.head)
        for index, segment in self.segments.items():
            struct.pack_into("<2I", self.head, self.directory + 16 * index, position, len(segment))
            position += len(segment)
        return b"".join(parts)


def main():
    idl, unfinished, finished = sys.argv[1:]
    with open(idl, encoding="utf-8") as file:
        helps = dict(re.findall(r"^ *(\w+) = \d+,? *// *(.*)$", file.read(), re.M))
    with open(unfinished, "rb") as file:
        library = TypeLibrary(file.read())
    for members in library.members.values():
        for index, (record, name) in enumerate(zip(members.records, members.names)):
            if index < members.functions:
                library.correct_defaults(record)
            else:
                library.add_help(record, helps[library.name(name)])
    library.forget_time()
    with open(finished, "wb") as file:
        file.write(library.data())


if __name__ == "__main__":
    main()
