#include "database/access/schema/properties.h"

#include <optional>
#include <string>
#include <vector>

#include "base/text/lower_case.h"
#include "database/access/storage/text_codec.h"

namespace veltrano::access {

// "MR2\0" (Jet 4) or "KKD\0" (Jet 3), then chunks: u32 length (itself included), u16 kind.
//   kind 0x80: names of properties, each u16 length in bytes and the text
//   kind 0, of the table, and 1, of a column: u32 length of the name part (itself included), u16 length, name; then entries:
//     u16 length (itself included), u8, u8 type, u16 index of the name, u16 length of the value, value
//   other kinds: likewise, of other objects

namespace {

constexpr std::uint16_t kindNames = 0x80;
constexpr std::uint16_t kindTable = 0;
constexpr std::uint16_t kindColumn = 1;
constexpr std::uint8_t typeBoolean = 1;
constexpr std::uint8_t typeText = 10;
constexpr std::uint8_t typeMemo = 12;

std::string readText(Bytes bytes, const Pager& pager) {
  if (isJet3(pager.version())) {
    return codePageToUtf8(pager.codePage(), bytes).value_or(std::string());
  }
  std::string text;
  storedTextToUtf8(bytes, text);
  return text;
}

// Takes u16 length and as many bytes off the front. An empty pointer at the end.
Bytes takeCounted(Bytes& rest) {
  if (rest.size() < 2 || rest.size() - 2 < load16(rest.data())) {
    rest = {};
    return {};
  }
  const Bytes part = rest.subspan(2, load16(rest.data()));
  rest = rest.subspan(2 + part.size());
  return part;
}

struct Property {
  std::string_view name;
  std::uint8_t type = 0;
  Bytes value;
  [[nodiscard]] bool isFlag(std::string_view wanted) const {
    return type == typeBoolean && sameName(name, wanted);
  }
  [[nodiscard]] bool isText(std::string_view wanted) const {
    return (type == typeText || type == typeMemo) && sameName(name, wanted);
  }
};

void applyToColumn(const Property& property, Column& column, const Pager& pager) {
  const bool flag = !property.value.empty() && property.value[0] != 0;
  if (property.isFlag("Required")) {
    column.required = flag;
  } else if (property.isFlag("AllowZeroLength")) {
    column.allowZeroLength = flag;
  } else if (property.isText("DefaultValue")) {
    column.defaultValue = readText(property.value, pager);
  } else if (property.isText("ValidationRule")) {
    column.validationRule = readText(property.value, pager);
  }
}

void applyToTable(const Property& property, TableDefinition& table, const Pager& pager) {
  if (property.isText("ValidationRule")) {
    table.validationRule = readText(property.value, pager);
  }
}

// Takes the name of the object off the front of a chunk. Empty if the chunk is damaged.
std::optional<std::string> takeObjectName(Bytes& chunk, const Pager& pager) {
  if (chunk.size() < 6 || load32(chunk.data()) < 6 || load32(chunk.data()) > chunk.size()) {
    return std::nullopt;
  }
  Bytes namePart = chunk.subspan(4, load32(chunk.data()) - 4);
  chunk = chunk.subspan(load32(chunk.data()));
  return readText(takeCounted(namePart), pager);
}

// Calls apply(property) for each property in the rest of a chunk.
template <typename Apply>
void forEachProperty(Bytes rest, const std::vector<std::string>& names, Apply apply) {
  constexpr std::size_t entryHead = 8;
  while (rest.size() >= entryHead) {
    const std::size_t length = load16(rest.data());
    const std::size_t valueLength = load16(rest.data() + 6);
    if (length < entryHead || length > rest.size() || valueLength > length - entryHead) {
      return;
    }
    const std::size_t name = load16(rest.data() + 4);
    if (name < names.size()) {
      apply(Property{names[name], rest[3], rest.subspan(entryHead, valueLength)});
    }
    rest = rest.subspan(length);
  }
}

void applyChunk(std::uint16_t kind, Bytes chunk, const std::vector<std::string>& names, const Pager& pager,
                TableDefinition& table) {
  const auto object = takeObjectName(chunk, pager);
  if (!object) {
    return;
  }
  if (kind == kindTable) {
    forEachProperty(chunk, names, [&](const Property& property) { applyToTable(property, table, pager); });
    return;
  }
  for (Column& column : table.columns) {
    if (sameName(column.name, *object)) {
      forEachProperty(chunk, names,
                      [&](const Property& property) { applyToColumn(property, column, pager); });
    }
  }
}

}  // namespace

void applyProperties(Bytes properties, const Pager& pager, TableDefinition& table) {
  constexpr std::size_t head = 4;
  constexpr std::size_t chunkHead = 6;
  if (properties.size() < head) {
    return;
  }
  std::vector<std::string> names;
  for (Bytes rest = properties.subspan(head); rest.size() >= chunkHead;) {
    const std::size_t length = load32(rest.data());
    if (length < chunkHead || length > rest.size()) {
      return;
    }
    Bytes chunk = rest.subspan(chunkHead, length - chunkHead);
    const std::uint16_t kind = load16(rest.data() + 4);
    if (kind == kindNames) {
      while (chunk.size() >= 2) {
        names.push_back(readText(takeCounted(chunk), pager));
      }
    } else if (kind == kindTable || kind == kindColumn) {
      applyChunk(kind, chunk, names, pager, table);
    }
    rest = rest.subspan(length);
  }
}

}  // namespace veltrano::access
