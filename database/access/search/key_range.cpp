#include "database/access/search/key_range.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

#include "database/access/schema/field_codec.h"
#include "database/access/storage/bytes.h"

// Why the ranges hold all values that match:
//
//   whole numbers,    A text is the text of at most one value, which is also the one that the text becomes when it is
//   currency,         assigned. Zero is left out for decimals: minus zero has the same text and another key.
//   decimals, GUIDs,
//   booleans
//   single, double    A text of 7 or 15 digits is that of all numbers that round to it. They lie within one unit of
//                     the last digit. Numbers so small that they have fewer digits are left out.
//   dates             A text is that of all moments that round to its second. Days before 1900 are left out, since the
//                     time counts upwards there while the number falls, so that one text is in two places.
//   text, memo        Equal texts have equal keys. Texts that differ in case have keys that start alike, with exceptions
//                     that keyStartsInAnyCase knows. Left out in Access 97, for its code pages.
//   others            Left out: binary values by the code page, extended dates by parts of a second.

namespace veltrano::access {

namespace {

using CellBytes = std::vector<std::uint8_t>;
using CellRange = std::optional<std::pair<CellBytes, CellBytes>>;

CellBytes cellOf(float value) {
  std::uint32_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  CellBytes cell(sizeof value);
  store32(cell.data(), bits);
  return cell;
}
CellBytes cellOf(double value) {
  CellBytes cell(sizeof value);
  storeDouble(cell.data(), value);
  return cell;
}

template <typename Real>
CellRange around(Real value, Real lastDigit) {
  // Both zeros, whatever their keys.
  const Real margin = value == 0 ? std::numeric_limits<Real>::denorm_min() : std::fabs(value) * lastDigit;
  return value == 0 || std::isnormal(value)
             ? CellRange(std::pair(cellOf(value - margin), cellOf(value + margin)))
             : std::nullopt;
}

CellRange singles(const CellBytes& cell) {
  const std::uint32_t bits = load32(cell.data());
  float value;
  std::memcpy(&value, &bits, sizeof value);
  return around(value, 1e-6F);
}

CellRange reals(const CellBytes& cell) {
  return around(loadDouble(cell.data()), 1e-14);
}

CellRange dates(const CellBytes& cell) {
  constexpr double firstOrdinaryDay = 2;  // 1900-01-01
  constexpr double margin = 2.0 / 86400;  // two seconds
  const double value = loadDouble(cell.data());
  if (value < firstOrdinaryDay) {
    return std::nullopt;
  }
  return std::pair(cellOf(value - margin), cellOf(value + margin));
}

CellRange decimals(const CellBytes& cell) {
  const bool zero = std::all_of(cell.begin() + 1, cell.end(), [](std::uint8_t byte) { return byte == 0; });
  return zero ? std::nullopt : CellRange(std::pair(cell, cell));
}

CellRange valuesOfText(const Column& column, const std::string& text) {
  const auto cell = valueToCell(column, Value(text));
  if (!cell) {
    return std::nullopt;
  }
  switch (column.type) {
    case ColumnType::boolean:
    case ColumnType::byte:
    case ColumnType::integer:
    case ColumnType::longInteger:
    case ColumnType::bigInteger:
    case ColumnType::currency:
    case ColumnType::guid:
      return std::pair(*cell, *cell);
    case ColumnType::numeric:
      return decimals(*cell);
    case ColumnType::single:
      return singles(*cell);
    case ColumnType::real:
      return reals(*cell);
    case ColumnType::dateTime:
      return dates(*cell);
    default:
      return std::nullopt;
  }
}

std::vector<KeyRange> textsLike(const IndexKeyMaker& maker, const TextMatcher& matcher) {
  std::vector<KeyRange> ranges;
  if (matcher.rule() == CaseRule::lowered) {
    for (CellBytes& start : maker.makeStartsInAnyCase(matcher.units())) {
      ranges.push_back({start, start});
    }
    return ranges;
  }
  CellBytes text(2 * matcher.units().size());
  for (std::size_t i = 0; i < matcher.units().size(); ++i) {
    store16(&text[2 * i], matcher.units()[i]);
  }
  KeyRange range;
  if (maker.makeFirstPart({false, text}, range.first)) {
    range.last = range.first;
    ranges.push_back(std::move(range));
  }
  return ranges;
}

}  // namespace

std::vector<KeyRange> keysOfText(Version version, const Column& column, const IndexKeyMaker& maker,
                                 const TextMatcher& matcher) {
  if (column.calculated || (column.isText() && isJet3(version))) {
    return {};
  }
  if (column.isText()) {
    return textsLike(maker, matcher);
  }
  const CellRange cells = valuesOfText(column, matcher.wanted());
  KeyRange range;
  if (!cells || !maker.makeFirstPart({false, cells->first}, range.first) ||
      !maker.makeFirstPart({false, cells->second}, range.last)) {
    return {};
  }
  // In a descending index the greatest value comes first.
  if (range.last < range.first) {
    std::swap(range.first, range.last);
  }
  return {std::move(range)};
}

}  // namespace veltrano::access
