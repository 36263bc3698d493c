#include "database/access/schema/table_definition.h"

#include <algorithm>

#include "base/text/lower_case.h"
#include "database/access/storage/text_codec.h"

namespace veltrano::access {

// A definition is one string of bytes: its first page whole, and what follows the first 8 bytes of the pages that
// continue it. Every page starts 02 01, two bytes, and the number of the next page (0 at the end).
//
// Jet 3  Jet 4  Size
//   8      8     4    length, from the start of the first page
//  12     16     4    rows
//  16     20     4    last autonumber
//   -     24     4    1
//   -     28     4    last number of complex columns
//  20     40     1    'N' user table, 'S' system table
//  21     41     2    columns ever made
//  23     43     2    variable columns ever made
//  25     45     2    columns
//  27     47     4    logical indexes
//  31     51     4    real indexes
//  35     55     4    row pointer: map of the table's data pages
//  39     59     4    row pointer: map of those with room; 0 for none
//  43     63          then, one array after another:
//     real indexes      8, 12   0, u32 count of distinct entries, (Jet 4) 0
//     columns          18, 25   below
//     columns                   names: length in bytes (u8, u16), text
//     real indexes     39, 52   below
//     logical indexes  20, 28   below
//     logical indexes           names
//     long values      10       u16 column number, row pointers: map of its pages, map of those with room
//     end mark          2       FFFF

namespace {

// Where the fields lie, by version: in the head, and in each record of an array.
struct Layout {
  struct Head {
    std::size_t maxColumns, variableColumns, columns, logicalIndexes, realIndexes, ownedPages, freePages,
        arrays;
  } head;
  struct ColumnRecord {
    std::size_t size, number, variableIndex, language, precision, scale, flags, fixedOffset, length;
  } column;
  struct RealIndexRecord {
    std::size_t size, columns, ownedPages, root, flags;
  } realIndex;
  struct LogicalIndexRecord {
    std::size_t size, number, realIndex, role, otherNumber, otherTable, cascadesUpdates, onDelete, type;
  } logicalIndex;
  std::size_t counterSize;
  std::size_t nameLengthSize;
};

constexpr Layout jet3 = {.head = {.maxColumns = 21,
                                  .variableColumns = 23,
                                  .columns = 25,
                                  .logicalIndexes = 27,
                                  .realIndexes = 31,
                                  .ownedPages = 35,
                                  .freePages = 39,
                                  .arrays = 43},
                         .column = {.size = 18,
                                    .number = 1,
                                    .variableIndex = 3,
                                    .language = 9,
                                    .precision = 11,
                                    .scale = 12,
                                    .flags = 13,
                                    .fixedOffset = 14,
                                    .length = 16},
                         .realIndex = {.size = 39, .columns = 0, .ownedPages = 30, .root = 34, .flags = 38},
                         .logicalIndex = {.size = 20,
                                          .number = 0,
                                          .realIndex = 4,
                                          .role = 8,
                                          .otherNumber = 9,
                                          .otherTable = 13,
                                          .cascadesUpdates = 17,
                                          .onDelete = 18,
                                          .type = 19},
                         .counterSize = 8,
                         .nameLengthSize = 1};

constexpr Layout jet4 = {.head = {.maxColumns = 41,
                                  .variableColumns = 43,
                                  .columns = 45,
                                  .logicalIndexes = 47,
                                  .realIndexes = 51,
                                  .ownedPages = 55,
                                  .freePages = 59,
                                  .arrays = 63},
                         .column = {.size = 25,
                                    .number = 5,
                                    .variableIndex = 7,
                                    .language = 11,
                                    .precision = 11,
                                    .scale = 12,
                                    .flags = 15,
                                    .fixedOffset = 21,
                                    .length = 23},
                         .realIndex = {.size = 52, .columns = 4, .ownedPages = 34, .root = 38, .flags = 46},
                         .logicalIndex = {.size = 28,
                                          .number = 4,
                                          .realIndex = 8,
                                          .role = 12,
                                          .otherNumber = 13,
                                          .otherTable = 17,
                                          .cascadesUpdates = 21,
                                          .onDelete = 22,
                                          .type = 23},
                         .counterSize = 12,
                         .nameLengthSize = 2};

constexpr std::size_t definitionLengthAt = 8;
// Fields of column records that one version alone has.
constexpr std::size_t jet3CodePageAt = 11;
constexpr std::size_t jet4OrderVersionAt = 14;
constexpr std::size_t jet4ExtendedFlagsAt = 16;

constexpr std::size_t mostColumns = 255;
constexpr std::size_t mostIndexes = 255;  // 32 by the rules; be lenient

// Reads a definition's bytes in order. Past the end it fails, and gives zeros.
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

std::string readName(Cursor& cursor, const Pager& pager, const Layout& layout) {
  const Bytes bytes = cursor.take(cursor.takeNumber(layout.nameLengthSize));
  std::string name;
  if (isJet3(pager.version())) {
    name = codePageToUtf8(pager.codePage(), bytes).value_or(std::string());
  } else {
    appendUtf16AsUtf8(bytes, name);
  }
  return name;
}

// Column record:
// Jet 3  Jet 4  Size
//   0      0     1   type
//   1      5     2   number
//   3      7     2   index among the variable columns
//   9     11     2   text: language of the order
//  11      -     2   text: code page, 0 for the file's
//   -     14     1   text: version of the order
//  11     11     1   numeric: precision
//  12     12     1   numeric: scale
//  13     15     1   flags: 01 fixed, 04 autonumber, 40 autonumber GUID
//   -     16     1   flags: 01 compressed, C0 calculated
//  14     21     2   fixed offset
//  16     23     2   length in bytes
Column readColumn(Bytes record, const Pager& pager, const Layout::ColumnRecord& at) {
  const std::uint8_t* p = record.data();
  Column column;
  column.type = static_cast<ColumnType>(p[0]);
  column.number = load16(p + at.number);
  column.variableIndex = load16(p + at.variableIndex);
  column.fixedOffset = load16(p + at.fixedOffset);
  const std::uint16_t size = sizeOfType(column.type);
  column.length = size != 0 ? size : load16(p + at.length);
  column.fixed = (p[at.flags] & 0x01) != 0;
  column.autoNumber = (p[at.flags] & 0x04) != 0;
  column.autoGuid = (p[at.flags] & 0x40) != 0 && column.type == ColumnType::guid;
  if (column.type == ColumnType::numeric) {
    column.precision = p[at.precision];
    column.scale = p[at.scale];
  }
  const bool old = isJet3(pager.version());
  if (!old) {
    column.compressed = (p[jet4ExtendedFlagsAt] & 0x01) != 0;
    column.calculated = (p[jet4ExtendedFlagsAt] & 0xC0) != 0;
  }
  if (column.isText()) {
    column.language = load16(p + at.language);
    column.orderVersion = old ? std::uint8_t{0} : p[jet4OrderVersionAt];
    if (column.language == 0) {
      column.language = static_cast<std::uint16_t>(pager.defaultTextOrder());
      column.orderVersion = static_cast<std::uint8_t>(pager.defaultTextOrder() >> 24);
    }
    const std::uint16_t own = old ? load16(p + jet3CodePageAt) : std::uint16_t{0};
    column.codePage = own != 0 ? own : pager.codePage();
  }
  return column;
}

// Real index record: ten times u16 column number (FFFF none), u8 order (1 ascending); row pointer of the map of its
// pages; page number of the root; flags 01 unique, 02 ignore nulls, 08 required.
Index readIndex(Bytes record, const Layout::RealIndexRecord& at) {
  constexpr std::size_t mostIndexColumns = 10;
  constexpr std::size_t columnSize = 3;
  constexpr std::uint16_t noColumn = 0xFFFF;
  Index index;
  for (std::size_t i = 0; i < mostIndexColumns; ++i) {
    const std::uint8_t* p = record.data() + at.columns + columnSize * i;
    if (load16(p) != noColumn) {
      index.columns.push_back({load16(p), p[2] == 1});
    }
  }
  index.ownedPages = RowPointer::fromDisk(load32(record.data() + at.ownedPages));
  index.root = load32(record.data() + at.root);
  const std::uint8_t flags = record[at.flags];
  index.unique = (flags & 0x01) != 0;
  index.ignoreNulls = (flags & 0x02) != 0;
  index.required = (flags & 0x08) != 0;
  return index;
}

struct LogicalIndex {
  std::uint32_t real = 0;
  bool primary = false;
  std::optional<RelationSide> relation;
};

// Jet 3  Jet 4  Size  Of a relation:
//   8     12     1    role of this table: 1 parent, 2 child
//   9     13     4    number of the other table's logical index, FFFFFFFF for none
//  13     17     4    definition page of the other table
//  17     21     1    01 updates cascade; 04 is seen in tables of the system
//  18     22     1    01 deletes cascade, 02 they set null
RelationSide readRelationSide(const std::uint8_t* p, const Layout::LogicalIndexRecord& at) {
  constexpr std::uint8_t cascadeFlag = 0x01;
  constexpr std::uint8_t systemFlag = 0x04;
  const std::uint8_t role = p[at.role];
  const std::uint8_t updates = p[at.cascadesUpdates];
  const std::uint8_t deletes = p[at.onDelete];
  RelationSide side;
  side.role = static_cast<RelationSide::Role>(role);
  side.number = load32(p + at.number);
  side.index = load32(p + at.realIndex);
  side.otherTable = load32(p + at.otherTable);
  side.otherNumber = load32(p + at.otherNumber);
  side.cascadesUpdates = (updates & cascadeFlag) != 0;
  side.onDelete = static_cast<OnDelete>(deletes);
  side.known = (role == 1 || role == 2) && (updates & ~(cascadeFlag | systemFlag)) == 0 && deletes <= 2;
  return side;
}

// Logical index record: its number; number of the real one; the relation; type 0 ordinary, 1 primary key, 2 relation.
LogicalIndex readLogicalIndex(Bytes record, const Layout::LogicalIndexRecord& at) {
  constexpr std::uint8_t primaryKey = 1;
  constexpr std::uint8_t relation = 2;
  constexpr std::uint32_t noOtherSide = 0xFFFFFFFF;
  const std::uint8_t* p = record.data();
  LogicalIndex index{load32(p + at.realIndex), p[at.type] == primaryKey, std::nullopt};
  if (p[at.type] == relation && load32(p + at.otherNumber) != noOtherSide) {
    index.relation = readRelationSide(p, at);
  }
  return index;
}

void readColumns(Cursor& cursor, const Pager& pager, const Layout& layout, std::size_t count,
                 TableDefinition& table) {
  for (std::size_t i = 0; i < count; ++i) {
    const Bytes record = cursor.take(layout.column.size);
    if (!record.empty()) {
      table.columns.push_back(readColumn(record, pager, layout.column));
    }
  }
  for (Column& column : table.columns) {
    column.name = readName(cursor, pager, layout);
  }
  std::sort(table.columns.begin(), table.columns.end(),
            [](const Column& a, const Column& b) { return a.number < b.number; });
}

void readIndexes(Cursor& cursor, const Pager& pager, const Layout& layout, std::size_t realCount,
                 std::size_t logicalCount, TableDefinition& table) {
  for (std::size_t i = 0; i < realCount; ++i) {
    const Bytes record = cursor.take(layout.realIndex.size);
    if (!record.empty()) {
      table.indexes.push_back(readIndex(record, layout.realIndex));
      table.indexes.back().uniqueCountOffset =
          static_cast<std::uint32_t>(layout.head.arrays + i * layout.counterSize + 4);
    }
  }
  std::vector<LogicalIndex> logical;
  for (std::size_t i = 0; i < logicalCount; ++i) {
    const Bytes record = cursor.take(layout.logicalIndex.size);
    if (!record.empty()) {
      logical.push_back(readLogicalIndex(record, layout.logicalIndex));
    }
  }
  for (LogicalIndex& one : logical) {
    const std::string name = readName(cursor, pager, layout);
    if (one.relation) {
      one.relation->name = name;
      table.relations.push_back(*std::move(one.relation));
    }
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

// Some programs leave out entries, or the end mark.
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
  const Layout& layout = isJet3(pager.version()) ? jet3 : jet4;
  const Layout::Head& at = layout.head;
  const auto bytes = readDefinitionBytes(pager, page);
  if (!bytes || bytes->size() < at.arrays) {
    return std::nullopt;
  }
  const std::uint8_t* head = bytes->data();
  const std::size_t length = std::min<std::size_t>(load32(head + definitionLengthAt), bytes->size());
  const std::size_t columns = load16(head + at.columns);
  const std::size_t logicalIndexes = load32(head + at.logicalIndexes);
  const std::size_t realIndexes = load32(head + at.realIndexes);
  if (columns > mostColumns || logicalIndexes > mostIndexes || realIndexes > mostIndexes) {
    return std::nullopt;
  }
  TableDefinition table;
  table.page = page;
  table.maxColumns = load16(head + at.maxColumns);
  table.variableColumns = load16(head + at.variableColumns);
  table.ownedPages = RowPointer::fromDisk(load32(head + at.ownedPages));
  table.freePages = RowPointer::fromDisk(load32(head + at.freePages));

  Cursor cursor(Bytes(*bytes).first(length), at.arrays);
  cursor.take(realIndexes * layout.counterSize);
  readColumns(cursor, pager, layout, columns, table);
  readIndexes(cursor, pager, layout, realIndexes, logicalIndexes, table);
  if (cursor.failed()) {
    return std::nullopt;
  }
  readLongValueMaps(cursor, table);
  return table;
}

}  // namespace veltrano::access
