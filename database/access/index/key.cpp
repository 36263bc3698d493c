#include "database/access/index/key.h"

#include <algorithm>
#include <array>

// Each column adds a flag, then its value:
//
//                          ascending                            descending
//   null                   00                                   FF
//   flag of a value        7F                                   80
//   whole numbers          big-endian, first bit flipped        all bits flipped
//   unsigned bytes         as they are                          flipped
//   boolean                00 true, FF false                    FF true, 00 false
//   floats, dates          big-endian; first bit flipped, or    all bits of that flipped
//                          all bits if negative; minus zero
//                          is zero
//   binary, GUID,          blocks of 8 bytes, each followed     data and the last count flipped
//   extended dates         by 09; the last one padded with
//                          zeros, followed by its count
//   numeric                sign and 16 big-endian bytes, see appendNumeric
//   text                   collation.cpp

namespace veltrano::access {

namespace {

using Key = std::vector<std::uint8_t>;

constexpr std::size_t binaryBlock = 8;
constexpr std::uint8_t blockContinues = 0x09;

/// Big-endian from little-endian, each byte XORed with `mask`, the first one with `firstMask`.
void appendReversed(Key& key, Bytes value, std::uint8_t firstMask, std::uint8_t mask) {
  key.push_back(value.back() ^ firstMask);
  for (std::size_t i = value.size() - 1; i-- > 0;) {
    key.push_back(value[i] ^ mask);
  }
}

void appendSigned(Key& key, Bytes value, bool ascending) {
  appendReversed(key, value, ascending ? 0x80 : 0x7F, ascending ? 0x00 : 0xFF);
}

void appendFloat(Key& key, Bytes value, bool ascending) {
  // Minus zero equals zero, so it has the same key.
  if (value.back() == 0x80 &&
      std::all_of(value.begin(), value.end() - 1, [](std::uint8_t b) { return b == 0; })) {
    key.push_back(ascending ? 0x80 : 0x7F);
    key.insert(key.end(), value.size() - 1, ascending ? 0x00 : 0xFF);
    return;
  }
  const bool negative = (value.back() & 0x80) != 0;
  if (negative) {
    appendReversed(key, value, ascending ? 0xFF : 0x00, ascending ? 0xFF : 0x00);
  } else {
    appendSigned(key, value, ascending);
  }
}

void appendBlocks(Key& key, Bytes value, bool ascending) {
  const std::uint8_t mask = ascending ? 0x00 : 0xFF;
  while (!value.empty()) {
    const Bytes block = value.first(std::min(binaryBlock, value.size()));
    for (const std::uint8_t byte : block) {
      key.push_back(byte ^ mask);
    }
    key.insert(key.end(), binaryBlock - block.size(), mask);
    value = value.subspan(block.size());
    key.push_back(value.empty() ? static_cast<std::uint8_t>(block.size() ^ mask) : blockContinues);
  }
}

void appendGuid(Key& key, Bytes value, bool ascending) {
  // Stored as one 32-bit and two 16-bit numbers and 8 bytes; the key has the order of the written form.
  constexpr std::array<std::uint8_t, 16> written = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
  std::array<std::uint8_t, 16> canonical{};
  std::transform(written.begin(), written.end(), canonical.begin(),
                 [&](std::uint8_t at) { return value[at]; });
  appendBlocks(key, canonical, ascending);
}

/// Jet sets the first byte after the flip, so that it does not depend on the direction: descending decimals
/// of mixed signs sort wrongly in its indexes, and every program that shares them relies on that.
void appendNumeric(Key& key, Bytes value, bool ascending, bool jet) {
  std::array<std::uint8_t, 17> number{};
  const bool negative = (value[0] & 0x80) != 0;
  number[0] = jet ? 0x00 : 0xFF;
  for (std::size_t group = 0; group < 4; ++group) {
    for (std::size_t i = 0; i < 4; ++i) {
      number[1 + group * 4 + i] = value[1 + group * 4 + 3 - i];
    }
  }
  if (negative == ascending) {
    std::transform(number.begin(), number.end(), number.begin(),
                   [](std::uint8_t byte) { return static_cast<std::uint8_t>(~byte); });
  }
  if (jet) {
    number[0] = negative ? 0x00 : 0xFF;
  }
  key.insert(key.end(), number.begin(), number.end());
}

/// The bytes that a stored value of a type has at least; a boolean's is one byte here, as StoredValue has it.
std::size_t leastSize(ColumnType type) {
  return type == ColumnType::boolean ? 1 : sizeOfType(type);
}

bool hasKey(ColumnType type) {
  switch (type) {
    case ColumnType::binary:
    case ColumnType::text:
    case ColumnType::memo:
      return true;
    case ColumnType::complex:
      // Its rows are not written anyway: the values live in a hidden table.
    case ColumnType::ole:
      return false;
    default:
      return leastSize(type) != 0;  // nothing else is a known type
  }
}

}  // namespace

Result<IndexKeyMaker> IndexKeyMaker::create(Version version, std::uint32_t defaultTextOrder,
                                            const TableDefinition& table, const Index& index) {
  IndexKeyMaker maker;
  maker.jetNumerics_ = version <= Version::jet4;
  maker.ignoreNulls_ = index.ignoreNulls;
  maker.required_ = index.required || index.primary;
  for (const IndexColumn& indexed : index.columns) {
    const Column* column = table.byNumber(indexed.column);
    if (column == nullptr || !hasKey(column->type)) {
      return {Failure::other, "index " + index.name + " is on a column that has no index order"};
    }
    Part part{column->type, indexed.ascending, TextOrder::general};
    if (column->isText()) {
      const auto order = textOrder(version, column->language, column->orderVersion, defaultTextOrder);
      if (!order) {
        return {Failure::other,
                "index " + index.name + " is in the text order of a language that is not known"};
      }
      part.order = *order;
    }
    maker.parts_.push_back(part);
  }
  return maker;
}

KeyOutcome IndexKeyMaker::make(std::span<const StoredValue> values, std::vector<std::uint8_t>& key,
                               bool& allNull) const {
  key.clear();
  allNull = true;
  if (values.size() < parts_.size()) {
    return KeyOutcome::damaged;
  }
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    if (values[i].null && required_) {
      return KeyOutcome::refused;
    }
    allNull = allNull && values[i].null;
    if (!append(parts_[i], values[i], key)) {
      return KeyOutcome::damaged;
    }
  }
  return allNull && ignoreNulls_ ? KeyOutcome::leftOut : KeyOutcome::entry;
}

bool IndexKeyMaker::makeFirstPart(const StoredValue& value, Key& key) const {
  key.clear();
  return append(parts_.front(), value, key);
}

std::vector<Key> IndexKeyMaker::makeStartsInAnyCase(std::u16string_view lowered) const {
  const Part& part = parts_.front();
  std::vector<Key> starts = keyStartsInAnyCase(lowered, part.order, part.ascending);
  for (Key& start : starts) {
    start.insert(start.begin(), part.ascending ? 0x7F : 0x80);
  }
  return starts;
}

bool IndexKeyMaker::append(const Part& part, const StoredValue& value, Key& key) const {
  if (value.null) {
    key.push_back(part.ascending ? 0x00 : 0xFF);
    return true;
  }
  key.push_back(part.ascending ? 0x7F : 0x80);
  return appendValue(part, value.data, key);
}

bool IndexKeyMaker::appendValue(const Part& part, Bytes value, Key& key) const {
  const std::size_t size = leastSize(part.type);
  if (value.size() < size) {
    return false;
  }
  const Bytes exact = size == 0 ? value : value.first(size);
  const auto mask = static_cast<std::uint8_t>(part.ascending ? 0x00 : 0xFF);
  switch (part.type) {
    case ColumnType::boolean:
      key.push_back((exact[0] != 0 ? 0x00 : 0xFF) ^ mask);
      break;
    case ColumnType::byte:
      key.push_back(exact[0] ^ mask);
      break;
    case ColumnType::integer:
    case ColumnType::longInteger:
    case ColumnType::complex:
    case ColumnType::currency:
    case ColumnType::bigInteger:
      appendSigned(key, exact, part.ascending);
      break;
    case ColumnType::single:
    case ColumnType::real:
    case ColumnType::dateTime:
      appendFloat(key, exact, part.ascending);
      break;
    case ColumnType::guid:
      appendGuid(key, exact, part.ascending);
      break;
    case ColumnType::numeric:
      appendNumeric(key, exact, part.ascending, jetNumerics_);
      break;
    case ColumnType::binary:
    case ColumnType::extendedDate:
      appendBlocks(key, exact, part.ascending);
      break;
    case ColumnType::text:
    case ColumnType::memo:
      appendTextKey(key, exact, part.order, part.ascending);
      break;
    case ColumnType::ole:
      return false;
  }
  return true;
}

}  // namespace veltrano::access
