#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_SPACE_MAP_ROW_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_SPACE_MAP_ROW_H

// The bytes of a usage map: a row of a data page, always of the same length (Jet 4: 69 bytes, Jet 3: 133).
//
// Kind 0, inline:
//    0   1  00
//    1   4  first page, a multiple of 8
//    5      bits: page first + 8*i + j is bit j of byte i
// Kind 1, reference:
//    0   1  01
//    1  4*n page numbers of bitmap pages, 0 for none: entry k stands for the pages from k * (bits of a page) on
// A bitmap page is 05 01 00 00 and then bits to its end.
//
// In the global map a set bit is a free page, in all others a page of the owner.

#include <optional>
#include <vector>

#include "database/access/storage/pager.h"

namespace veltrano::access {

/// The row of a map, held for reading.
class MapRow {
 public:
  /// Empty if there is no such map, or it is damaged.
  static std::optional<MapRow> read(Pager& pager, RowPointer place);

  [[nodiscard]] bool isInline() const { return bytes_[0] == kindInline; }
  /// The row for changing; empty if that is impossible.
  [[nodiscard]] MutableBytes edit(Pager& pager) const;

  // Inline maps.
  [[nodiscard]] PageNumber first() const { return load32(bytes_.data() + firstAt); }
  [[nodiscard]] Bytes bits() const { return bytes_.subspan(inlineBitsAt); }
  [[nodiscard]] bool inWindow(PageNumber page) const {
    return page >= first() && page - first() < bits().size() * 8;
  }
  [[nodiscard]] std::vector<PageNumber> pages() const;

  // References.
  [[nodiscard]] std::size_t entries() const { return (bytes_.size() - listAt) / 4; }
  /// The bitmap page of an entry; 0 for none.
  [[nodiscard]] PageNumber entry(std::size_t index) const {
    return load32(bytes_.data() + listAt + 4 * index);
  }

  static constexpr std::uint8_t kindInline = 0;
  static constexpr std::uint8_t kindReference = 1;
  static constexpr std::size_t firstAt = 1;
  static constexpr std::size_t inlineBitsAt = 5;
  static constexpr std::size_t listAt = 1;

 private:
  MapRow(PageView page, Bytes bytes) : page_(std::move(page)), bytes_(bytes) {}

  PageView page_;
  Bytes bytes_;
};

bool testBit(Bytes bits, std::size_t index);
void putBit(MutableBytes bits, std::size_t index, bool value);
/// The first set bit from `from` on.
std::optional<std::size_t> nextBit(Bytes bits, std::size_t from);
/// The last set bit up to `from`.
std::optional<std::size_t> previousBit(Bytes bits, std::size_t from);

/// Makes an inline map's row one that starts with this page, with its bits cleared.
void startInline(MutableBytes row, PageNumber first);
/// Makes a map's row a reference without entries.
void startReference(MutableBytes row);

/// How many pages a bitmap page stands for.
std::size_t bitsOfPage(const Pager& pager);
/// A bitmap page; an empty view if it is not one.
PageView readBitmap(Pager& pager, PageNumber number);
/// The bits of a bitmap page.
Bytes bitsOf(const PageView& bitmap);
/// Makes a page of zeros a bitmap page with all bits cleared, or set; returns its bits.
MutableBytes startBitmap(MutableBytes page, bool value);
/// Sets or clears the page's bit in a reference. False if its bitmap page is missing or damaged.
bool putInBitmap(Pager& pager, const MapRow& row, PageNumber page, bool value);

}  // namespace veltrano::access

#endif
