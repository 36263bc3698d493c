#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_FORMAT_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_FORMAT_H

// What differs between the versions of the file format, and the words that all layers share.
//
// A file is a sequence of pages of one size, numbered from 0; page 0 is the header. Numbers are
// little-endian, except in index entries.

#include <cstdint>

namespace veltrano::access {

/// The version byte of the header page.
enum class Version : std::uint8_t {
  jet3 = 0,   ///< Access 97: pages of 2048 bytes, text in a code page; read only here
  jet4 = 1,   ///< Access 2000 to 2003
  ace12 = 2,  ///< Access 2007; first version of .accdb
  ace14 = 3,  ///< Access 2010: other text order by default, calculated columns
  ace15 = 4,
  ace16 = 5,
  ace17 = 6,
};

using PageNumber = std::uint32_t;

/// Where a row lies: page, and number of its slot there. On disk the number is the low byte, the page the
/// three above.
struct RowPointer {
  PageNumber page = 0;
  std::uint8_t row = 0;

  static RowPointer fromDisk(std::uint32_t word) { return {word >> 8, static_cast<std::uint8_t>(word)}; }
  [[nodiscard]] std::uint32_t toDisk() const { return (page << 8) | row; }
  friend bool operator==(const RowPointer&, const RowPointer&) = default;
  friend bool operator<(const RowPointer& left, const RowPointer& right) {
    return left.page != right.page ? left.page < right.page : left.row < right.row;
  }
};

/// The first byte of a page; the second is 1.
namespace page_kind {
inline constexpr std::uint8_t data = 0x01;
inline constexpr std::uint8_t definition = 0x02;
inline constexpr std::uint8_t indexNode = 0x03;
inline constexpr std::uint8_t indexLeaf = 0x04;
inline constexpr std::uint8_t bitmap = 0x05;
}  // namespace page_kind

inline constexpr bool isJet3(Version version) {
  return version == Version::jet3;
}
inline constexpr std::uint32_t pageSizeOf(Version version) {
  return isJet3(version) ? 2048 : 4096;
}
/// Files may grow to this size: 1 GiB in Jet 3, 2 GiB later.
inline constexpr std::uint64_t maximumFileSize(Version version) {
  return isJet3(version) ? std::uint64_t{1} << 30 : std::uint64_t{1} << 31;
}

inline constexpr PageNumber catalogPage = 2;  ///< definition of MSysObjects

}  // namespace veltrano::access

#endif
