#include "database/access/schema/table_definition.h"

#include <algorithm>

#include "base/text/lower_case.h"
#include "database/access/schema/text_codec.h"

namespace veltrano::access {

// A definition is one string of bytes: its first page whole, and of the pages that continue it what follows
// their first 8 bytes. Every page begins 02 01, two bytes, and the number of the next page (0 at the end).
//
// Jet 3  Jet 4  Size
//   8      8     4   length, from the start of the first page
//  12     16     4   rows
//  16     20     4   last autonumber
//   -     24     4   1
//   -     28     4   last number of complex columns
//  20     40     1   'N' user table, 'S' system table
//  21     41     2   columns ever made
//  23     43     2   variable columns ever made
//  25     45     2   columns
//  27     47     4   logical indexes
//  31     51     4   real indexes
//  35     55     4   row pointer: map of the table's data pages
//  39     59     4   row pointer: map of those with room
//  43     63        then, one array after another:
//     real indexes     8 / 12   0, u32 count of distinct entries, (Jet 4) 0
//     columns         18 / 25   below
//     columns          names: length in bytes (u8 / u16), text
//     real indexes    39 / 52   below
//     logical indexes 20 / 28   below
//     logical indexes  names
//     long values     10        u16 column number, row pointers of the maps of its pages and of those with
//     room; a
//                               column number of FFFF ends the list

namespace {

// Where things are, by version.
struct Offsets {
  std::size_t autoNumber, maxColumns, variable, columns, logicalIndexes, realIndexes, maps, arrays;
  std::size_t counterSize, columnSize, nameLengthSize, realIndexSize, logicalIndexSize;
  // In a column record.
  std::size_t number, variableIndex, language, orderVersion, precision, flags, extendedFlags, fixedOffset,
      length;
  // In a real index record: the list of columns, the map, the root, the flags. In a logical one: number of
  // the real index, other side, type.
  std::size_t indexColumns, indexMap, indexRoot, indexFlags, realNumber, otherIndex, indexType;
};

constexpr Offsets jet3 = {16, 21, 23, 25, 27, 31, 35, 43, 8,  18, 1,  39, 20, 1, 3,
                          9,  0,  11, 13, 0,  14, 16, 0,  30, 34, 38, 4,  9,  19};
constexpr Offsets jet4 = {20, 41, 43, 45, 47, 51, 55, 63, 12, 25, 2,  52, 28, 5, 7,
                          11, 14, 11, 15, 16, 21, 23, 4,  34, 38, 46, 8,  13, 23};

constexpr std::size_t mostColumns = 255;
constexpr std::size_t mostIndexes = 255;  // 32 by the rules; be lenient

// The bytes of a definition with a place in them; reading past the end makes it fail and give zeros.
class Cursor {
 public:
  explicit Cursor(Bytes bytes, std::size_t at) : bytes_(bytes), at_(at) {}

  Bytes take(std::size_t size) {
    if (failed_ || bytes_.size() < at_ || bytes_.size() - at_ < size) {
      failed_ = true;
      return {};
    }
    at_ += size;
    return bytes_.subspan(at_ - size, size);
  }
  std::uint32_t takeNumber(std::size_t size) {
    const Bytes bytes = take(size);
    return bytes.empty() ? 0 : size == 1 ? bytes[0] : size == 2 ? load16(bytes.data()) : load32(bytes.data());
  }
  [[nodiscard]] std::size_t at() const { return at_; }
  [[nodiscard]] bool failed() const { return failed_; }

 private:
  Bytes bytes_;
  std::size_t at_;
  bool failed_ = false;
};

std::optional<std::vector<std::uint8_t>> readDefinitionBytes(Pager& pager, PageNumber page) {
  constexpr std::size_t pageHead = 8;
  constexpr std::size_t mostBytes = 1U << 20;
  std::vector<std::uint8_t> bytes;
  while (page != 0) {
    const PageView view = pager.read(page);
    if (!view || view.data()[0] != page_kind::definition || view.data()[1] != 1 || bytes.size() > mostBytes) {
      return std::nullopt;
    }
    const Bytes part = view.bytes().subspan(bytes.empty() ? 0 : pageHead);
    bytes.insert(bytes.end(), part.begin(), part.end());
    page = load32(view.data() + 4);
  }
  return bytes;
}

std::string readName(Cursor& cursor, const Pager& pager, const Offsets& offsets) {
  const Bytes bytes = cursor.take(cursor.takeNumber(offsets.nameLengthSize));
  std::string name;
  if (isJet3(pager.version())) {
    name = codePageToUtf8(pager.codePage(), bytes);
  } else {
    appendUtf16AsUtf8(bytes, name);
  }
  return name;
}

// Column record, Jet 3 and Jet 4:
//   0  0  1  type                               9 11  2  text: language of the order
//   1  5  2  number                             - 14  1  text: version of the order
//   3  7  2  index among the variable columns  11 11  1  numeric: precision, then scale
//  13 15  1  flags: 01 fixed, 04 autonumber,   14 21  2  fixed offset
//            40 autonumber GUID                16 23  2  length in bytes
//   - 16  1  01 compressed, C0 calculated
Column readColumn(Bytes record, const Pager& pager, const Offsets& offsets) {
  const std::uint8_t* p = record.data();
  Column column;
  column.type = static_cast<ColumnType>(p[0]);
  column.number = load16(p + offsets.number);
  column.variableIndex = load16(p + offsets.variableIndex);
  column.fixedOffset = load16(p + offsets.fixedOffset);
  const std::uint16_t size = sizeOfType(column.type);
  column.length = size != 0 ? size : load16(p + offsets.length);
  column.fixed = (p[offsets.flags] & 0x01) != 0;
  column.autoNumber = (p[offsets.flags] & 0x04) != 0;
  column.autoGuid = (p[offsets.flags] & 0x40) != 0 && column.type == ColumnType::guid;
  if (column.type == ColumnType::numeric) {
    column.precision = p[offsets.precision];
    column.scale = p[offsets.precision + 1];
  }
  if (!isJet3(pager.version())) {
    column.compressed = (p[offsets.extendedFlags] & 0x01) != 0;
    column.calculated = (p[offsets.extendedFlags] & 0xC0) != 0;
  }
  if (column.isText()) {
    column.language = load16(p + offsets.language);
    column.orderVersion = isJet3(pager.version()) ? std::uint8_t{0} : p[offsets.orderVersion];
    if (column.language == 0) {
      column.language = static_cast<std::uint16_t>(pager.defaultTextOrder());
      column.orderVersion = static_cast<std::uint8_t>(pager.defaultTextOrder() >> 24);
    }
  }
  return column;
}

// Real index record: ten times u16 column number (FFFF none), u8 order (1 ascending); then the row pointer of
// the map of its pages, the page number of the root, and the flags: 01 unique, 02 ignore nulls, 08 required.
Index readIndex(Bytes record, const Offsets& offsets) {
  constexpr int mostIndexColumns = 10;
  Index index;
  for (std::size_t i = 0; i < mostIndexColumns; ++i) {
    const std::uint8_t* p = record.data() + offsets.indexColumns + 3 * i;
    if (load16(p) != 0xFFFF) {
      index.columns.push_back({load16(p), p[2] == 1});
    }
  }
  index.ownedPages = RowPointer::fromDisk(load32(record.data() + offsets.indexMap));
  index.root = load32(record.data() + offsets.indexRoot);
  const std::uint8_t flags = record[offsets.indexFlags];
  index.unique = (flags & 0x01) != 0;
  index.ignoreNulls = (flags & 0x02) != 0;
  index.required = (flags & 0x08) != 0;
  return index;
}

struct LogicalIndex {
  std::uint32_t real = 0;
  bool primary = false;
};

// Logical index record: number of the index, number of the real one; the other side of a relation (FFFFFFFF
// none); type: 1 primary key, 2 relation.
LogicalIndex readLogicalIndex(Bytes record, const Offsets& offsets, TableDefinition& table) {
  const std::uint8_t type = record[offsets.indexType];
  if (type == 2 && load32(record.data() + offsets.otherIndex) != 0xFFFFFFFF) {
    table.enforcedRelations = true;
  }
  return {load32(record.data() + offsets.realNumber), type == 1};
}

void readColumns(Cursor& cursor, const Pager& pager, const Offsets& offsets, std::size_t count,
                 TableDefinition& table) {
  for (std::size_t i = 0; i < count; ++i) {
    const Bytes record = cursor.take(offsets.columnSize);
    if (!record.empty()) {
      table.columns.push_back(readColumn(record, pager, offsets));
    }
  }
  for (Column& column : table.columns) {
    column.name = readName(cursor, pager, offsets);
  }
  std::sort(table.columns.begin(), table.columns.end(),
            [](const Column& a, const Column& b) { return a.number < b.number; });
}

void readIndexes(Cursor& cursor, const Pager& pager, const Offsets& offsets, std::size_t realCount,
                 std::size_t logicalCount, TableDefinition& table) {
  for (std::size_t i = 0; i < realCount; ++i) {
    const Bytes record = cursor.take(offsets.realIndexSize);
    if (!record.empty()) {
      table.indexes.push_back(readIndex(record, offsets));
      table.indexes.back().uniqueCountOffset =
          static_cast<std::uint32_t>(offsets.arrays + i * offsets.counterSize + 4);
    }
  }
  std::vector<LogicalIndex> logical;
  for (std::size_t i = 0; i < logicalCount; ++i) {
    const Bytes record = cursor.take(offsets.logicalIndexSize);
    if (!record.empty()) {
      logical.push_back(readLogicalIndex(record, offsets, table));
    }
  }
  for (const LogicalIndex& one : logical) {
    const std::string name = readName(cursor, pager, offsets);
    if (one.real >= table.indexes.size()) {
      continue;
    }
    Index& index = table.indexes[one.real];
    if (index.name.empty()) {
      index.name = name;
    }
    if (one.primary) {
      index.primary = index.unique = index.required = true;
    }
  }
}

// Files of some programs lack entries, or the end mark.
void readLongValueMaps(Cursor& cursor, TableDefinition& table) {
  for (;;) {
    const Bytes entry = cursor.take(10);
    if (entry.empty() || load16(entry.data()) == 0xFFFF) {
      return;
    }
    for (Column& column : table.columns) {
      if (column.number == load16(entry.data()) && column.isLongValue()) {
        column.ownedPages = RowPointer::fromDisk(load32(entry.data() + 2));
        column.freePages = RowPointer::fromDisk(load32(entry.data() + 6));
      }
    }
  }
}

}  // namespace

std::uint16_t sizeOfType(ColumnType type) {
  switch (type) {
    case ColumnType::byte:
      return 1;
    case ColumnType::integer:
      return 2;
    case ColumnType::longInteger:
    case ColumnType::single:
    case ColumnType::complex:
      return 4;
    case ColumnType::currency:
    case ColumnType::real:
    case ColumnType::dateTime:
    case ColumnType::bigInteger:
      return 8;
    case ColumnType::guid:
      return 16;
    case ColumnType::numeric:
      return 17;
    case ColumnType::extendedDate:
      return 42;
    default:
      return 0;
  }
}

const Column* TableDefinition::find(std::string_view wanted) const {
  for (const Column& column : columns) {
    if (sameName(column.name, wanted)) {
      return &column;
    }
  }
  return nullptr;
}

const Column* TableDefinition::byNumber(std::uint16_t number) const {
  for (const Column& column : columns) {
    if (column.number == number) {
      return &column;
    }
  }
  return nullptr;
}

const Index* TableDefinition::primaryKey() const {
  for (const Index& index : indexes) {
    if (index.primary) {
      return &index;
    }
  }
  return nullptr;
}

std::optional<TableDefinition> readTableDefinition(Pager& pager, PageNumber page) {
  const Offsets& offsets = isJet3(pager.version()) ? jet3 : jet4;
  const auto bytes = readDefinitionBytes(pager, page);
  if (!bytes || bytes->size() < offsets.arrays) {
    return std::nullopt;
  }
  const std::uint8_t* head = bytes->data();
  const std::size_t length = std::min<std::size_t>(load32(head + 8), bytes->size());
  const std::size_t columns = load16(head + offsets.columns);
  const std::size_t logicalIndexes = load32(head + offsets.logicalIndexes);
  const std::size_t realIndexes = load32(head + offsets.realIndexes);
  if (columns > mostColumns || logicalIndexes > mostIndexes || realIndexes > mostIndexes) {
    return std::nullopt;
  }
  TableDefinition table;
  table.page = page;
  table.maxColumns = load16(head + offsets.maxColumns);
  table.variableColumns = load16(head + offsets.variable);
  table.ownedPages = RowPointer::fromDisk(load32(head + offsets.maps));
  table.freePages = RowPointer::fromDisk(load32(head + offsets.maps + 4));

  Cursor cursor(Bytes(*bytes).first(length), offsets.arrays);
  cursor.take(realIndexes * offsets.counterSize);
  readColumns(cursor, pager, offsets, columns, table);
  readIndexes(cursor, pager, offsets, realIndexes, logicalIndexes, table);
  if (cursor.failed()) {
    return std::nullopt;
  }
  readLongValueMaps(cursor, table);
  return table;
}

}  // namespace veltrano::access
