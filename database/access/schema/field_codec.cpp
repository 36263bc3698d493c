#include "database/access/schema/field_codec.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "database/access/pages/long_value.h"
#include "database/access/storage/text_codec.h"
#include "database/values/field_conversion.h"

namespace veltrano::access {

namespace {

// GUIDs lie as u32, u16, u16, all little-endian, and 8 bytes: display order by swapping.
constexpr std::array<std::size_t, 16> guidOrder = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};

Guid guidOfCell(Bytes cell) {
  Guid guid = {};
  for (std::size_t i = 0; i < guid.size(); ++i) {
    guid[i] = cell[guidOrder[i]];
  }
  return guid;
}

// Numeric: u8 80 for minus, then four little-endian u32, the most significant first.
Decimal decimalOfCell(const Column& column, Bytes cell) {
  Decimal decimal;
  decimal.negative = (cell[0] & 0x80) != 0;
  decimal.scale = column.scale;
  for (std::size_t i = 0; i < 4; ++i) {
    decimal.magnitude[3 - i] = load32(cell.data() + 1 + 4 * i);
  }
  return decimal;
}

std::vector<std::uint8_t> cellOfDecimal(const Decimal& decimal) {
  std::vector<std::uint8_t> cell(17);
  cell[0] = decimal.negative ? 0x80 : 0;
  for (std::size_t i = 0; i < 4; ++i) {
    store32(cell.data() + 1 + 4 * i, decimal.magnitude[3 - i]);
  }
  return cell;
}

float singleOf(Bytes cell) {
  const std::uint32_t bits = load32(cell.data());
  float value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// Extended date: 19 digits of days since 0001-01-01, ':', 12 digits of seconds, 7 of 100 ns, ':', '7', NUL.
bool extendedDateToText(Bytes cell, std::string& text) {
  constexpr double epoch = 693593;  // 1899-12-30
  constexpr double daySeconds = 86400;
  const auto number = [cell](std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    const char* begin = reinterpret_cast<const char*>(cell.data()) + at;
    const auto result = std::from_chars(begin, begin + size, value);
    return result.ptr == begin + size && result.ec == std::errc() ? std::optional(value) : std::nullopt;
  };
  const auto days = number(0, 19);
  const auto seconds = number(20, 12);
  if (!days || !seconds || *days > 4'000'000 || *seconds >= 86400) {
    return false;
  }
  const double day = static_cast<double>(*days) - epoch;
  const double time = static_cast<double>(*seconds) / daySeconds;
  // The fraction is the time of day also of days before day 0.
  return dateToText(Date{day < 0 ? day - time : day + time}, text);
}

/// False for types whose values have a length of their own.
bool hasOneSize(ColumnType type) {
  return type != ColumnType::binary && type >= ColumnType::byte && type <= ColumnType::extendedDate;
}

bool otherCellToText(const Column& column, Bytes cell, std::string& text) {
  if (hasOneSize(column.type) && cell.size() < column.length) {
    return false;
  }
  const std::uint8_t* p = cell.data();
  switch (column.type) {
    case ColumnType::byte:
      integerToText(p[0], text);
      return true;
    case ColumnType::integer:
      integerToText(static_cast<std::int16_t>(load16(p)), text);
      return true;
    case ColumnType::longInteger:
    case ColumnType::complex:
      integerToText(static_cast<std::int32_t>(load32(p)), text);
      return true;
    case ColumnType::bigInteger:
      integerToText(static_cast<std::int64_t>(load64(p)), text);
      return true;
    case ColumnType::currency:
      currencyToText(Currency{static_cast<std::int64_t>(load64(p))}, text);
      return true;
    case ColumnType::single:
      singleToText(singleOf(cell), text);
      return true;
    case ColumnType::real:
      doubleToText(loadDouble(p), text);
      return true;
    case ColumnType::dateTime:
      return dateToText(Date{loadDouble(p)}, text);
    case ColumnType::guid:
      guidToText(guidOfCell(cell), text);
      return true;
    case ColumnType::numeric:
      decimalToText(decimalOfCell(column, cell), text);
      return true;
    case ColumnType::extendedDate:
      return extendedDateToText(cell, text);
    default:
      binaryToText(cell, text);
      return true;
  }
}

bool storedToText(const Pager& pager, const Column& column, Bytes stored, std::string& text) {
  if (!isJet3(pager.version())) {
    storedTextToUtf8(stored, text);
    return true;
  }
  auto converted = codePageToUtf8(column.codePage, stored);
  text = converted ? std::move(*converted) : std::string();
  return converted.has_value();
}

}  // namespace

bool cellToText(Pager& pager, const Column& column, Bytes cell, std::string& text) {
  text.clear();
  if (column.calculated) {
    return false;
  }
  switch (column.type) {
    case ColumnType::boolean:
      booleanToText(!cell.empty() && cell[0] != 0, text);
      return true;
    case ColumnType::text:
      return storedToText(pager, column, cell, text);
    case ColumnType::memo:
    case ColumnType::ole: {
      std::vector<std::uint8_t> buffer;
      const auto value = readLongValue(pager, cell, buffer);
      if (!value) {
        return false;
      }
      if (column.type == ColumnType::memo) {
        return storedToText(pager, column, *value, text);
      }
      binaryToText(*value, text);
      return true;
    }
    default:
      return otherCellToText(column, cell, text);
  }
}

bool cellMatches(Pager& pager, const Column& column, Bytes cell, const TextMatcher& matcher) {
  if (column.type == ColumnType::text && !isJet3(pager.version())) {
    if (!isCompressed(cell)) {
      return matcher.matchesUtf16(cell);
    }
    if (const Bytes latin1 = plainLatin1(cell); latin1.data() != nullptr) {
      return matcher.matchesLatin1(latin1);
    }
  }
  std::string text;
  return cellToText(pager, column, cell, text) && matcher.matchesUtf8(text);
}

std::optional<StoredValue> cellToStored(Pager& pager, const Column& column, std::optional<Bytes> cell,
                                        std::vector<std::uint8_t>& buffer) {
  if (!cell || (column.isLongValue() && cell->empty())) {
    return StoredValue{};
  }
  if (!column.isText()) {
    return cell->size() < column.length && hasOneSize(column.type) ? std::nullopt
                                                                   : std::optional(StoredValue{false, *cell});
  }
  if (column.type == ColumnType::text) {
    return StoredValue{false, isJet3(pager.version()) ? *cell : expandStoredText(*cell, buffer)};
  }
  std::vector<std::uint8_t> stored;
  const auto value = readLongValue(pager, *cell, stored);
  if (!value) {
    return std::nullopt;
  }
  if (isJet3(pager.version()) || !isCompressed(*value)) {
    buffer.assign(value->begin(), value->end());
    return StoredValue{false, buffer};
  }
  return StoredValue{false, expandStoredText(*value, buffer)};
}

namespace {

using OptionalCell = std::optional<std::vector<std::uint8_t>>;

OptionalCell integerCell(const Value& value, std::size_t size, std::int64_t least, std::int64_t most) {
  const auto number = toInteger(value, least, most);
  if (!number) {
    return std::nullopt;
  }
  std::array<std::uint8_t, 8> bytes = {};
  store64(bytes.data(), static_cast<std::uint64_t>(*number));
  return std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
}

template <typename Integer>
OptionalCell integerCell(const Value& value) {
  using Limits = std::numeric_limits<Integer>;
  return integerCell(value, sizeof(Integer), Limits::min(), Limits::max());
}

std::vector<std::uint8_t> cellOfDouble(double value) {
  std::vector<std::uint8_t> cell(8);
  storeDouble(cell.data(), value + 0.0);  // minus zero becomes zero
  return cell;
}

OptionalCell singleCell(const Value& value) {
  const auto number = toSingle(value);
  if (!number) {
    return std::nullopt;
  }
  const float positiveZero = *number + 0.0F;
  std::uint32_t bits;
  std::memcpy(&bits, &positiveZero, sizeof bits);
  std::vector<std::uint8_t> cell(4);
  store32(cell.data(), bits);
  return cell;
}

OptionalCell textCell(const Column& column, const Value& value) {
  const auto text = toFieldText(value);
  if (!text || (text->empty() && !column.allowZeroLength)) {
    return std::nullopt;
  }
  // In the file it would be the mark of compressed text, and the rest would be read as bytes.
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text->starts_with(byteOrderMark)) {
    return std::nullopt;
  }
  const std::size_t characters = utf16Length(*text);
  if (column.type == ColumnType::text && characters > column.length / 2U) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> cell;
  encodeStoredText(*text, column.compressed && !column.fixed, cell);
  if (column.fixed) {
    // Fixed text is filled up with blanks.
    for (std::size_t i = cell.size(); i + 2 <= column.length; i += 2) {
      cell.insert(cell.end(), {0x20, 0});
    }
  }
  return cell;
}

OptionalCell binaryCell(const Column& column, const Value& value) {
  auto bytes = toBinary(value);
  if (!bytes || (column.type == ColumnType::binary && bytes->size() > column.length)) {
    return std::nullopt;
  }
  if (column.fixed) {
    bytes->resize(column.length);
  }
  return bytes;
}

OptionalCell guidCell(const Value& value) {
  const auto guid = toGuid(value);
  if (!guid) {
    return std::nullopt;
  }
  std::vector<std::uint8_t> cell(16);
  for (std::size_t i = 0; i < cell.size(); ++i) {
    cell[guidOrder[i]] = (*guid)[i];
  }
  return cell;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> valueToCell(const Column& column, const Value& value) {
  switch (column.type) {
    case ColumnType::boolean: {
      const auto flag = toBoolean(value);
      return flag ? OptionalCell(std::vector<std::uint8_t>(1, *flag ? 1 : 0)) : std::nullopt;
    }
    case ColumnType::byte:
      return integerCell<std::uint8_t>(value);
    case ColumnType::integer:
      return integerCell<std::int16_t>(value);
    case ColumnType::longInteger:
      return integerCell<std::int32_t>(value);
    case ColumnType::bigInteger:
      return integerCell<std::int64_t>(value);
    case ColumnType::currency: {
      const auto amount = toCurrency(value);
      return amount ? integerCell<std::int64_t>(Value(amount->tenThousandths)) : std::nullopt;
    }
    case ColumnType::single:
      return singleCell(value);
    case ColumnType::real: {
      const auto number = toReal(value);
      return number ? OptionalCell(cellOfDouble(*number)) : std::nullopt;
    }
    case ColumnType::dateTime: {
      const auto date = toDate(value);
      return date ? OptionalCell(cellOfDouble(date->days)) : std::nullopt;
    }
    case ColumnType::text:
    case ColumnType::memo:
      return textCell(column, value);
    case ColumnType::binary:
    case ColumnType::ole:
      return binaryCell(column, value);
    case ColumnType::guid:
      return guidCell(value);
    case ColumnType::numeric: {
      const auto decimal = toDecimal(value, column.precision, column.scale);
      return decimal ? OptionalCell(cellOfDecimal(*decimal)) : std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

}  // namespace veltrano::access
