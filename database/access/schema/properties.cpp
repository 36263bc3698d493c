#include "database/access/schema/properties.h"

#include <string>
#include <vector>

#include "base/text/lower_case.h"
#include "database/access/storage/text_codec.h"

namespace veltrano::access {

// "MR2\0" (Jet 4) or "KKD\0" (Jet 3), then chunks: u32 length (itself included), u16 kind.
//   kind 0x80: names of properties, each u16 length in bytes and the text
//   kind 1, of a column: u32 length of the name part (itself included), u16 length, name; then entries:
//     u16 length (itself included), u8, u8 type, u16 index of the name, u16 length of the value, value
//   other kinds: likewise, of other objects

namespace {

constexpr std::uint16_t kindNames = 0x80;
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

void applyEntry(Column& column, std::string_view name, std::uint8_t type, Bytes value, const Pager& pager) {
  const bool flag = !value.empty() && value[0] != 0;
  if (type == typeBoolean && sameName(name, "Required")) {
    column.required = flag;
  } else if (type == typeBoolean && sameName(name, "AllowZeroLength")) {
    column.allowZeroLength = flag;
  } else if ((type == typeText || type == typeMemo) && sameName(name, "DefaultValue")) {
    column.defaultValue = readText(value, pager);
  }
}

void applyColumnChunk(Bytes chunk, const std::vector<std::string>& names, const Pager& pager,
                      TableDefinition& table) {
  constexpr std::size_t entryHead = 8;
  if (chunk.size() < 6 || load32(chunk.data()) < 6 || load32(chunk.data()) > chunk.size()) {
    return;
  }
  Bytes namePart = chunk.subspan(4, load32(chunk.data()) - 4);
  const std::string columnName = readText(takeCounted(namePart), pager);
  Column* column = nullptr;
  for (Column& candidate : table.columns) {
    if (sameName(candidate.name, columnName)) {
      column = &candidate;
    }
  }
  for (Bytes rest = chunk.subspan(load32(chunk.data())); column != nullptr && rest.size() >= entryHead;) {
    const std::size_t length = load16(rest.data());
    const std::size_t valueLength = load16(rest.data() + 6);
    if (length < entryHead || length > rest.size() || valueLength > length - entryHead) {
      return;
    }
    const std::size_t name = load16(rest.data() + 4);
    if (name < names.size()) {
      applyEntry(*column, names[name], rest[3], rest.subspan(entryHead, valueLength), pager);
    }
    rest = rest.subspan(length);
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
    } else if (kind == kindColumn) {
      applyColumnChunk(chunk, names, pager, table);
    }
    rest = rest.subspan(length);
  }
}

}  // namespace veltrano::access
