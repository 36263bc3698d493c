#ifndef VELTRANO_DATABASE_ACCESS_PAGES_COLUMN_H
#define VELTRANO_DATABASE_ACCESS_PAGES_COLUMN_H

// A column of a table: what its values are and where a row has them. Definition pages say it
// (schema/table_definition.h).

#include <cstdint>
#include <string>

#include "database/access/storage/format.h"

namespace veltrano::access {

enum class ColumnType : std::uint8_t {
  boolean = 0x01,  ///< a bit of the row's null mask
  byte = 0x02,     ///< unsigned
  integer = 0x03,  ///< 16 bits
  longInteger = 0x04,
  currency = 0x05,  ///< 64 bits, ten-thousandths
  single = 0x06,
  real = 0x07,      ///< double precision
  dateTime = 0x08,  ///< double: days since 1899-12-30
  binary = 0x09,
  text = 0x0A,
  ole = 0x0B,   ///< long binary
  memo = 0x0C,  ///< long text
  guid = 0x0F,
  numeric = 0x10,  ///< 17 bytes: sign, four 32-bit groups, the most significant first
  complex = 0x12,  ///< 32-bit key into a hidden table
  bigInteger = 0x13,
  extendedDate = 0x14,  ///< 42 characters
};

/// Bytes of a value of a type that has one size in a row; 0 for booleans, which lie in the null mask, and for
/// types of varying size.
std::uint16_t sizeOfType(ColumnType type);

struct Column {
  std::string name;  ///< UTF-8
  ColumnType type{};
  std::uint16_t number = 0;         ///< bit in the row's null mask
  std::uint16_t variableIndex = 0;  ///< place among the variable columns
  std::uint16_t fixedOffset = 0;    ///< from the end of the row's column count
  std::uint16_t length = 0;         ///< bytes; 0 for long values
  std::uint8_t precision = 0;       ///< numeric
  std::uint8_t scale = 0;           ///< numeric
  std::uint16_t language = 0;       ///< text order: language, 0 for the file's default
  std::uint8_t orderVersion = 0;    ///< text order: 0 General Legacy, 1 General
  std::uint16_t codePage = 0;       ///< Jet 3: of the text
  bool fixed = false;
  bool autoNumber = false;  ///< long integer handed out by the engine
  bool autoGuid = false;
  bool compressed = false;  ///< text may be stored one byte a character
  bool calculated = false;  ///< its value comes from an expression
  RowPointer ownedPages{};  ///< long values: map of their pages, page 0 for none
  RowPointer freePages{};
  // Properties of the column, kept in the catalog.
  bool required = false;
  bool allowZeroLength = true;
  std::string defaultValue;    ///< an expression, UTF-8
  std::string validationRule;  ///< likewise

  [[nodiscard]] bool isLongValue() const { return type == ColumnType::memo || type == ColumnType::ole; }
  [[nodiscard]] bool isText() const { return type == ColumnType::text || type == ColumnType::memo; }
};

}  // namespace veltrano::access

#endif
