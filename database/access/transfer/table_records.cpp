#include "database/access/transfer/table_records.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "base/text/excerpt.h"
#include "database/access/pages/long_value.h"
#include "database/access/schema/catalog.h"
#include "database/access/schema/default_value.h"
#include "database/access/schema/field_codec.h"

namespace veltrano::access {

namespace {

constexpr std::size_t rowsAt = 16;  // in the definition's first page

bool holdsBytes(const Column& column) {
  return column.type == ColumnType::binary || column.type == ColumnType::ole;
}

void toHexadecimal(Bytes bytes, std::string& text) {
  constexpr char digits[] = "0123456789ABCDEF";
  text.resize(2 * bytes.size());
  char* target = text.data();
  for (const std::uint8_t byte : bytes) {
    *target++ = digits[byte >> 4];
    *target++ = digits[byte & 15];
  }
}

std::optional<Value::Bytes> fromHexadecimal(std::string_view text) {
  Value::Bytes bytes(text.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char* pair = text.data() + 2 * i;
    if (std::from_chars(pair, pair + 2, bytes[i], 16).ptr != pair + 2) {
      return std::nullopt;
    }
  }
  return text.size() % 2 == 0 ? std::optional(std::move(bytes)) : std::nullopt;
}

/// True, with the number, if the text is one in the form of toShortestText.
bool isAll(std::string_view text, float& number) {
  const char* const end = text.data() + text.size();
  return std::from_chars(text.data(), end, number).ptr == end && std::isfinite(number);
}

template <typename Number>
bool toShortestText(Bytes cell, std::string& text) {
  Number number;
  if (cell.size() < sizeof number) {
    return false;
  }
  std::memcpy(&number, cell.data(), sizeof number);
  char digits[32];
  char* const end = std::to_chars(digits, digits + sizeof digits, number + Number{0}).ptr;
  text.assign(digits, end);
  return true;
}

bool bytesToText(Pager& pager, const Column& column, Bytes cell, std::string& text) {
  if (column.type == ColumnType::binary) {
    toHexadecimal(cell, text);
    return true;
  }
  std::vector<std::uint8_t> buffer;
  const auto value = readLongValue(pager, cell, buffer);
  if (value) {
    toHexadecimal(*value, text);
  }
  return value.has_value();
}

}  // namespace

// --- Reading

Result<std::unique_ptr<TableReader>> TableReader::open(Pager& pager, std::string_view table, Walk walk) {
  auto definition = findTable(pager, table);
  if (!definition) {
    return definition.status();
  }
  std::unique_ptr<TableReader> reader(new TableReader(Table(pager, *std::move(definition))));
  const TableDefinition& found = reader->table_.definition();
  if (const Index* key = found.primaryKey(); key != nullptr && walk == Walk::keyOrder) {
    reader->order_.emplace(pager, found.page, *key);
    reader->cursor_.emplace(*reader->order_, pager);
  }
  return reader;
}

std::uint32_t TableReader::expectedRecords() const {
  const PageView page = table_.pager().read(table_.definition().page);
  return page ? load32(page.data() + rowsAt) : 0;
}

std::optional<RowPointer> TableReader::following() {
  const bool first = !std::exchange(begun_, true);
  if (cursor_) {
    return (first ? cursor_->first() : cursor_->next()) ? std::optional(cursor_->row()) : std::nullopt;
  }
  return first ? table_.from({}) : table_.next(*place_);
}

bool TableReader::next() {
  for (place_ = following(); place_; place_ = following()) {
    row_ = table_.fetch(*place_);
    if (row_) {
      view_ = table_.view(*row_);
      if (view_.valid()) {
        return true;
      }
    }
    ++damaged_;
  }
  return false;
}

TableReader::Field TableReader::read(std::size_t index, std::string& text) {
  text.clear();
  const Column& column = columns()[index];
  const auto cell = view_.cell(column);
  if (!cell || (column.isLongValue() && cell->empty())) {
    return Field::null;
  }
  bool readable = false;
  if (column.calculated) {
    readable = false;
  } else if (column.type == ColumnType::real) {
    readable = toShortestText<double>(*cell, text);
  } else if (column.type == ColumnType::single) {
    readable = toShortestText<float>(*cell, text);
  } else if (holdsBytes(column)) {
    readable = bytesToText(table_.pager(), column, *cell, text);
  } else {
    readable = cellToText(table_.pager(), column, *cell, text);
  }
  return readable ? Field::value : Field::damaged;
}

// --- Filling

Result<std::unique_ptr<TableFiller>> TableFiller::begin(Pager& pager, std::string_view table,
                                                        const std::vector<std::string>& fields) {
  auto definition = findTable(pager, table);
  if (!definition) {
    return definition.status();
  }
  const auto catalog = readCatalog(pager);
  const auto isThis = [&](const CatalogEntry& entry) {
    return entry.isSystem() && entry.kind == ObjectKind::table && entry.definitionPage() == definition->page;
  };
  if (!catalog || std::ranges::any_of(*catalog, isThis)) {
    return {Failure::notAllowed, "a system table"};
  }
  std::unique_ptr<TableFiller> filler(new TableFiller(Table(pager, *std::move(definition)), pager));
  auto writer = TableWriter::create(filler->table_);
  if (!writer) {
    return writer.status();
  }
  filler->writer_ = *std::move(writer);
  Status chosen = filler->transaction_.begun() ? filler->choose(fields) : filler->transaction_.begun();
  if (!chosen) {
    return chosen;
  }
  return filler;
}

Status TableFiller::choose(const std::vector<std::string>& fields) {
  const std::vector<Column>& columns = table_.definition().columns;
  for (const std::string& name : fields) {
    const Column* column = table_.definition().find(name);
    if (column == nullptr) {
      return {Failure::missing, "there is no field " + excerpt(name)};
    }
    const auto index = static_cast<std::size_t>(column - columns.data());
    if (std::ranges::find(fields_, index) != fields_.end()) {
      return {Failure::other, "the field " + excerpt(name) + " is named twice"};
    }
    fields_.push_back(index);
  }
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (std::ranges::find(fields_, i) == fields_.end()) {
      defaults_.push_back(i);
    }
  }
  drafts_.resize(columns.size());
  return {};
}

Status TableFiller::assign(std::size_t index, const std::optional<std::string_view>& text) {
  const Column& column = table_.definition().columns[index];
  Draft& draft = drafts_[index];
  if (!text) {
    const bool flag = column.type == ColumnType::boolean;
    draft = flag ? Draft{{false, {0}}, true} : Draft{{}, !countsUp(column)};
    return {};
  }
  Value value(std::string{*text});
  if (holdsBytes(column)) {
    auto bytes = fromHexadecimal(*text);
    value = bytes ? Value(*std::move(bytes)) : Value(Opaque());
  } else if (float single = 0; column.type == ColumnType::single && isAll(*text, single)) {
    // As a double the shortest text of the greatest one would be out of range.
    value = Value(single);
  }
  auto cell = valueToCell(column, value);
  if (!cell) {
    return {Failure::other, "the value of " + column.name + " does not fit the field"};
  }
  draft = {{false, *std::move(cell)}, true};
  return {};
}

Status TableFiller::add(std::span<const std::optional<std::string_view>> values) {
  for (const std::size_t index : defaults_) {
    const Column& column = table_.definition().columns[index];
    auto cell = initialCell(column, std::nullopt);
    if (!cell && column.type == ColumnType::boolean) {
      cell.emplace(1, std::uint8_t{0});
    }
    drafts_[index] = cell ? Draft{{false, *std::move(cell)}, true} : Draft();
  }
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    if (Status assigned = assign(fields_[i], values[i]); !assigned) {
      return assigned;
    }
  }
  return writer_->insertInTransaction(drafts_).status();
}

Status TableFiller::commit() {
  Status done = transaction_.commit();
  return done ? table_.pager().checkpoint() : done;
}

}  // namespace veltrano::access
