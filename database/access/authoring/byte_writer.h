#ifndef VELTRANO_DATABASE_ACCESS_AUTHORING_BYTE_WRITER_H
#define VELTRANO_DATABASE_ACCESS_AUTHORING_BYTE_WRITER_H

// Bytes put together one number after another, little-endian.

#include <cstdint>
#include <string>
#include <vector>

#include "base/text/code_page.h"
#include "database/access/storage/bytes.h"

namespace veltrano::access {

struct ByteWriter {
  void put8(std::uint32_t value) { bytes.push_back(static_cast<std::uint8_t>(value)); }
  void put16(std::size_t value) {
    put8(static_cast<std::uint8_t>(value));
    put8(static_cast<std::uint8_t>(value >> 8));
  }
  void put32(std::size_t value) {
    put16(value);
    put16(value >> 16);
  }
  void put(Bytes all) { bytes.insert(bytes.end(), all.begin(), all.end()); }
  void zeros(std::size_t count) { bytes.resize(bytes.size() + count); }
  /// A text in UTF-16 after its length in bytes.
  void text(const std::string& utf8) {
    const std::u16string units = utf8ToUtf16(utf8);
    put16(2 * units.size());
    for (const char16_t unit : units) {
      put16(unit);
    }
  }

  std::vector<std::uint8_t> bytes;
};

}  // namespace veltrano::access

#endif
