#include "database/access/authoring/definition_builder.h"

#include <algorithm>
#include <array>

#include "base/text/lower_case.h"
#include "database/access/authoring/byte_writer.h"
#include "database/access/pages/index_page.h"
#include "database/access/storage/data_page.h"
#include "database/access/storage/space/allocator.h"
#include "database/access/storage/space/usage_map.h"
#include "database/values/field_conversion.h"

namespace veltrano::access {

namespace {

constexpr std::uint32_t definitionMark = 0x659;
constexpr std::uint32_t indexMark = 0x783;
constexpr std::uint32_t textOrder = 1033;
constexpr std::uint16_t noColumn = 0xFFFF;
constexpr std::size_t mostIndexColumns = 10;

bool isLongValue(ColumnType type) {
  return type == ColumnType::memo || type == ColumnType::ole;
}
bool isTextual(ColumnType type) {
  return type == ColumnType::text || type == ColumnType::memo;
}

// Bytes in the row, as the definition states them.
std::uint16_t lengthOf(const NewColumn& column) {
  switch (column.type) {
    case ColumnType::boolean:
      return 1;
    case ColumnType::text:
      return static_cast<std::uint16_t>(2 * column.size);
    case ColumnType::binary:
      return column.size;
    default:
      return sizeOfType(column.type);
  }
}

bool isFixed(ColumnType type) {
  return !isTextual(type) && type != ColumnType::binary && type != ColumnType::ole;
}

bool isCreatable(ColumnType type) {
  return (type >= ColumnType::boolean && type <= ColumnType::memo) || type == ColumnType::guid ||
         type == ColumnType::numeric;
}

bool validName(const std::string& name) {
  constexpr std::size_t mostCharacters = 64;
  const auto forbidden = [](char c) {
    return static_cast<unsigned char>(c) < 0x20 ||
           std::string_view(".!`[]").find(c) != std::string_view::npos;
  };
  return !name.empty() && name[0] != ' ' && utf16Length(name) <= mostCharacters &&
         std::none_of(name.begin(), name.end(), forbidden);
}

bool validColumn(const NewColumn& column) {
  constexpr int mostCharacters = 255;
  constexpr int mostBytes = 510;
  constexpr int mostDigits = 28;
  switch (column.type) {
    case ColumnType::text:
      return column.size >= 1 && column.size <= mostCharacters;
    case ColumnType::binary:
      return column.size >= 1 && column.size <= mostBytes;
    case ColumnType::numeric:
      return column.precision >= 1 && column.precision <= mostDigits && column.scale <= column.precision;
    default:
      return isCreatable(column.type) && (!column.autoNumber || column.type == ColumnType::longInteger ||
                                          column.type == ColumnType::guid);
  }
}

std::optional<std::uint16_t> columnNumber(const NewTable& table, const std::string& name) {
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    if (sameName(table.columns[i].name, name)) {
      return static_cast<std::uint16_t>(i);
    }
  }
  return std::nullopt;
}

bool validIndex(const NewTable& table, const NewIndex& index) {
  return validName(index.name) && !index.columns.empty() && index.columns.size() <= mostIndexColumns &&
         std::all_of(index.columns.begin(), index.columns.end(), [&](const NewIndexColumn& column) {
           const auto number = columnNumber(table, column.name);
           return number && table.columns[*number].type != ColumnType::ole;
         });
}

// --- The bytes of a definition; table_definition.cpp has their table

// What was allocated for the table.
struct Parts {
  RowPointer owned, free;
  struct IndexPart {
    RowPointer owned;
    PageNumber root = 0;
  };
  std::vector<IndexPart> indexes;
  struct LongValuePart {
    std::uint16_t column = 0;
    RowPointer owned, free;
  };
  std::vector<LongValuePart> longValues;
};

std::optional<Parts> allocateParts(Pager& pager, PageNumber definition, const NewTable& table,
                                   MapAllocator& maps) {
  Parts parts;
  bool complete = true;
  const auto map = [&] {
    const auto place = maps.allocate();
    complete = complete && place.has_value();
    return place.value_or(RowPointer{});
  };
  parts.owned = map();
  parts.free = map();
  for (std::size_t i = 0; i < table.indexes.size() && complete; ++i) {
    Parts::IndexPart part;
    part.owned = map();
    const auto root = allocatePage(pager);
    if (!complete || !root || !UsageMap(pager, part.owned).add(*root)) {
      return std::nullopt;
    }
    IndexPageEditor(pager.edit(*root)).create(true, 0, definition);
    part.root = *root;
    parts.indexes.push_back(part);
  }
  for (std::size_t i = 0; i < table.columns.size() && complete; ++i) {
    if (isLongValue(table.columns[i].type)) {
      const RowPointer owned = map();
      parts.longValues.push_back({static_cast<std::uint16_t>(i), owned, map()});
    }
  }
  return complete ? std::optional(std::move(parts)) : std::nullopt;
}

// The index of each variable column among them. Long values come last in user tables; in the system's tables
// the order is that of the columns.
std::vector<std::uint16_t> variableIndexes(const NewTable& table, TableKind kind) {
  std::vector<std::uint16_t> indexes(table.columns.size(), 0);
  std::uint16_t next = 0;
  for (const bool longValues : {false, true}) {
    for (std::size_t i = 0; i < indexes.size(); ++i) {
      const ColumnType type = table.columns[i].type;
      const bool late = isLongValue(type) && kind == TableKind::user;
      if (!isFixed(type) && late == longValues) {
        indexes[i] = next++;
      }
    }
  }
  return indexes;
}

void putColumn(ByteWriter& out, const NewColumn& column, std::size_t number, std::uint16_t variableIndex,
               std::uint16_t fixedOffset) {
  out.put8(static_cast<std::uint8_t>(column.type));
  out.put32(definitionMark);
  out.put16(static_cast<std::uint32_t>(number));
  out.put16(variableIndex);
  out.put16(static_cast<std::uint32_t>(number));
  if (isTextual(column.type)) {
    out.put16(textOrder);
    out.put16(0);
  } else if (column.type == ColumnType::numeric) {
    out.put8(column.precision);
    out.put8(column.scale);
    out.put16(0);
  } else {
    out.put32(0);
  }
  std::uint32_t flags = isFixed(column.type) ? 0x03 : 0x02;
  if (column.autoNumber) {
    flags |= column.type == ColumnType::guid ? 0x40 : 0x04;
  }
  out.put8(flags);
  out.put8(isTextual(column.type) && column.compressed ? 0x01 : 0);
  out.put32(0);
  out.put16(isFixed(column.type) ? fixedOffset : 0);
  out.put16(lengthOf(column));
}

void putColumns(ByteWriter& out, const NewTable& table, TableKind kind) {
  const auto variable = variableIndexes(table, kind);
  std::uint16_t variableBefore = 0;
  std::uint16_t fixedOffset = 0;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const NewColumn& column = table.columns[i];
    const bool fixed = isFixed(column.type);
    putColumn(out, column, i, fixed ? variableBefore : variable[i], fixedOffset);
    if (!fixed) {
      ++variableBefore;
    } else if (column.type != ColumnType::boolean) {
      fixedOffset = static_cast<std::uint16_t>(fixedOffset + lengthOf(column));
    }
  }
  for (const NewColumn& column : table.columns) {
    out.text(column.name);
  }
}

void putRealIndexes(ByteWriter& out, const NewTable& table, const Parts& parts) {
  for (std::size_t i = 0; i < table.indexes.size(); ++i) {
    const NewIndex& index = table.indexes[i];
    out.put32(indexMark);
    for (std::size_t k = 0; k < mostIndexColumns; ++k) {
      const bool used = k < index.columns.size();
      out.put16(used ? *columnNumber(table, index.columns[k].name) : noColumn);
      out.put8(used && index.columns[k].ascending ? 1 : 0);
    }
    out.put32(parts.indexes[i].owned.toDisk());
    out.put32(parts.indexes[i].root);
    out.put32(0);
    out.put8(0x80U | (index.primary || index.unique ? 0x01U : 0U) | (index.ignoreNulls ? 0x02U : 0U) |
             (index.primary || index.required ? 0x08U : 0U));
    out.zeros(5);
  }
}

// The ordinary logical indexes, whose numbers are those of the real ones, as they come first; then the relations.
void putLogicalIndexes(ByteWriter& out, const NewTable& table, const std::vector<RelationSide>& relations) {
  constexpr std::uint32_t noOtherSide = 0xFFFFFFFF;
  constexpr std::uint8_t relation = 2;
  for (std::size_t i = 0; i < table.indexes.size(); ++i) {
    if (table.indexes[i].name.empty()) {
      continue;
    }
    out.put32(definitionMark);
    out.put32(static_cast<std::uint32_t>(i));
    out.put32(static_cast<std::uint32_t>(i));
    out.put8(0);
    out.put32(noOtherSide);
    out.put32(0);
    out.put16(0);
    out.put8(table.indexes[i].primary ? 1 : 0);
    out.put32(0);
  }
  for (const RelationSide& side : relations) {
    out.put32(definitionMark);
    out.put32(side.number);
    out.put32(static_cast<std::uint32_t>(side.index));
    out.put8(static_cast<std::uint8_t>(side.role));
    out.put32(side.otherNumber);
    out.put32(side.otherTable);
    out.put8(side.cascadesUpdates ? 1 : 0);
    out.put8(static_cast<std::uint8_t>(side.onDelete));
    out.put8(relation);
    out.put32(0);
  }
  for (const NewIndex& index : table.indexes) {
    if (!index.name.empty()) {
      out.text(index.name);
    }
  }
  for (const RelationSide& side : relations) {
    out.text(side.name);
  }
}

std::vector<std::uint8_t> definitionBytes(const NewTable& table, TableKind kind, const Parts& parts,
                                          const std::vector<RelationSide>& relations) {
  const auto columns = static_cast<std::uint32_t>(table.columns.size());
  const auto indexes = static_cast<std::uint32_t>(table.indexes.size());
  const auto logicalIndexes =
      static_cast<std::uint32_t>(std::count_if(table.indexes.begin(), table.indexes.end(),
                                               [](const NewIndex& index) { return !index.name.empty(); }) +
                                 static_cast<std::ptrdiff_t>(relations.size()));
  const auto variable = static_cast<std::uint32_t>(
      std::count_if(table.columns.begin(), table.columns.end(),
                    [](const NewColumn& column) { return !isFixed(column.type); }));
  ByteWriter out;
  out.zeros(12);
  out.put32(definitionMark);
  out.put32(0);  // rows
  out.put32(0);  // last autonumber
  out.put32(1);
  out.zeros(12);
  out.put8(static_cast<std::uint8_t>(kind));
  out.put16(columns);
  out.put16(variable);
  out.put16(columns);
  out.put32(logicalIndexes);
  out.put32(indexes);
  out.put32(parts.owned.toDisk());
  out.put32(parts.free.toDisk());
  out.zeros(std::size_t{12} * indexes);
  putColumns(out, table, kind);
  putRealIndexes(out, table, parts);
  putLogicalIndexes(out, table, relations);
  for (const auto& part : parts.longValues) {
    out.put16(part.column);
    out.put32(part.owned.toDisk());
    out.put32(part.free.toDisk());
  }
  out.put16(0xFFFF);
  store32(out.bytes.data() + 8, static_cast<std::uint32_t>(out.bytes.size()));
  return std::move(out.bytes);
}

}  // namespace

std::optional<RowPointer> MapAllocator::allocate() {
  constexpr std::array<std::uint8_t, 69> emptyMap = {};
  if (page_ != 0) {
    if (const auto slot = DataPageEditor(pager_.edit(page_)).insert(emptyMap, 0)) {
      return RowPointer{page_, *slot};
    }
  }
  const auto page = allocatePage(pager_);
  if (!page) {
    return std::nullopt;
  }
  page_ = *page;
  DataPageEditor editor(pager_.edit(page_));
  editor.create(0);
  const auto slot = editor.insert(emptyMap, 0);
  return slot ? std::optional(RowPointer{page_, *slot}) : std::nullopt;
}

Status checkNewTable(const NewTable& table) {
  constexpr std::size_t mostColumns = 255;
  constexpr std::size_t mostIndexes = 32;
  const auto refuse = [](std::string why) { return Status(Failure::other, std::move(why)); };
  if (!validName(table.name)) {
    return refuse("not a valid table name");
  }
  if (table.columns.empty() || table.columns.size() > mostColumns || table.indexes.size() > mostIndexes) {
    return refuse("too few or too many columns or indexes");
  }
  std::size_t fixedBytes = 0;
  for (std::size_t i = 0; i < table.columns.size(); ++i) {
    const NewColumn& column = table.columns[i];
    if (!validName(column.name) || !validColumn(column) || columnNumber(table, column.name) != i) {
      return refuse("not a valid column: " + column.name);
    }
    fixedBytes += isFixed(column.type) ? lengthOf(column) : 2;
  }
  if (fixedBytes + 40 > maximumRowSize(Version::jet4)) {
    return refuse("the columns do not fit in a row");
  }
  std::size_t primary = 0;
  for (const NewIndex& index : table.indexes) {
    if (!validIndex(table, index)) {
      return refuse("not a valid index: " + index.name);
    }
    primary += index.primary ? 1 : 0;
  }
  return primary <= 1 ? Status() : refuse("more than one primary key");
}

bool writeDefinition(Pager& pager, PageNumber first, const NewTable& table, TableKind kind,
                     MapAllocator& maps, const std::vector<RelationSide>& relations) {
  constexpr std::size_t pageHead = 8;
  const auto parts = allocateParts(pager, first, table, maps);
  if (!parts) {
    return false;
  }
  const std::vector<std::uint8_t> bytes = definitionBytes(table, kind, *parts, relations);
  std::size_t done = 0;
  for (PageNumber number = first; number != 0;) {
    const MutableBytes page = pager.edit(number);
    if (page.empty()) {
      return false;
    }
    const std::size_t from = done == 0 ? 0 : pageHead;
    const std::size_t size = std::min(page.size() - from, bytes.size() - done);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(done), size,
                page.begin() + static_cast<std::ptrdiff_t>(from));
    done += size;
    page[0] = page_kind::definition;
    page[1] = 1;
    const std::size_t used = from + size;
    store16(page.data() + 2,
            static_cast<std::uint32_t>(std::max(page.size(), used + pageHead) - used - pageHead));
    const auto next = done < bytes.size() ? allocatePage(pager) : std::optional<PageNumber>(0);
    if (!next) {
      return false;
    }
    store32(page.data() + 4, *next);
    number = *next;
  }
  return true;
}

}  // namespace veltrano::access
