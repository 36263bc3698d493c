#include "database/access/storage/usage_map.h"

#include <algorithm>
#include <bit>
#include <vector>

#include "database/access/pages/data_page.h"

namespace veltrano::access {

// A map is a row of a data page, always of the same length (Jet 4: 69 bytes, Jet 3: 133). Kind 0:
//   0   1  00
//   1   4  first page, a multiple of 8
//   5      bits: page first + 8*i + j is bit j of byte i
// Kind 1:
//   0   1  01
//   1  4*n page numbers of bitmap pages, 0 for none: page k of the list stands for the pages from k * bits on
// A bitmap page is 05 01 00 00 and then bits to its end.
//
// In the global map (row 0 of page 1) a set bit is a free page, in all others a page that belongs to the
// owner. What the global map does not reach counts as free as far as it lies behind the file's end.

namespace {

constexpr std::size_t listAt = 1;
constexpr std::size_t inlineBitsAt = 5;
constexpr std::size_t bitmapBitsAt = 4;
constexpr std::uint8_t kindInline = 0;
constexpr std::uint8_t kindReference = 1;
constexpr RowPointer globalMap = {1, 0};

// The row of a map, held for reading.
struct MapRow {
  PageView page;
  Bytes bytes;
};

std::optional<MapRow> readRow(Pager& pager, RowPointer place) {
  PageView view = pager.read(place.page);
  if (!view) {
    return std::nullopt;
  }
  const DataPage page(view.bytes(), pager.version());
  const auto row = page.valid() ? page.row(place.row) : std::nullopt;
  if (!row || row->size() <= inlineBitsAt || (*row)[0] > kindReference) {
    return std::nullopt;
  }
  // Row pointers have 24 bits for the page.
  if ((*row)[0] == kindInline && load32(row->data() + 1) > 0xFFFFFF) {
    return std::nullopt;
  }
  return MapRow{std::move(view), *row};
}

// The same bytes for changing; empty when that is impossible.
MutableBytes editRow(Pager& pager, const MapRow& row) {
  const auto offset = static_cast<std::size_t>(row.bytes.data() - row.page.data());
  const MutableBytes page = pager.edit(row.page.number());
  return page.empty() ? page : page.subspan(offset, row.bytes.size());
}

std::size_t bitsOfPage(const Pager& pager) {
  return (pager.pageSize() - bitmapBitsAt) * 8;
}
std::size_t listLength(Bytes row) {
  return (row.size() - listAt) / 4;
}
PageNumber listEntry(Bytes row, std::size_t index) {
  return load32(row.data() + listAt + 4 * index);
}

bool testBit(Bytes bits, std::size_t index) {
  return (bits[index / 8] >> (index % 8) & 1U) != 0;
}
void putBit(MutableBytes bits, std::size_t index, bool value) {
  const auto mask = static_cast<std::uint8_t>(1U << (index % 8));
  bits[index / 8] = static_cast<std::uint8_t>(value ? bits[index / 8] | mask : bits[index / 8] & ~mask);
}

std::optional<std::size_t> nextBit(Bytes bits, std::size_t from) {
  for (std::size_t byte = from / 8; byte < bits.size(); ++byte) {
    unsigned value = bits[byte];
    if (byte == from / 8) {
      value &= 0xFFU << (from % 8);
    }
    if ((value & 0xFFU) != 0) {
      return byte * 8 + static_cast<std::size_t>(std::countr_zero(value));
    }
  }
  return std::nullopt;
}

std::optional<std::size_t> previousBit(Bytes bits, std::size_t from) {
  for (std::size_t byte = std::min(from / 8, bits.size() - 1) + 1; byte-- > 0;) {
    unsigned value = bits[byte];
    if (byte == from / 8) {
      value &= 0xFFU >> (7 - from % 8);
    }
    if (value != 0) {
      return byte * 8 + static_cast<std::size_t>(std::bit_width(value)) - 1;
    }
  }
  return std::nullopt;
}

// The bits of a bitmap page; an empty view when it is none.
PageView readBitmap(Pager& pager, PageNumber number) {
  PageView page = number != 0 ? pager.read(number) : PageView();
  return page && page.data()[0] == page_kind::bitmap ? std::move(page) : PageView();
}

Bytes bitsOf(const PageView& page) {
  return page.bytes().subspan(bitmapBitsAt);
}

// Makes the page just appended a bitmap page whose bits are all `value`.
void createBitmap(MutableBytes page, bool value) {
  page[0] = page_kind::bitmap;
  page[1] = 1;
  std::fill(page.begin() + bitmapBitsAt, page.end(), static_cast<std::uint8_t>(value ? 0xFF : 0));
}

// Sets a page's bit in a map of kind 1. False when its bitmap page is missing or damaged.
bool putInBitmap(Pager& pager, Bytes row, PageNumber page, bool value) {
  const std::size_t index = page / bitsOfPage(pager);
  if (index >= listLength(row) || !readBitmap(pager, listEntry(row, index))) {
    return false;
  }
  const MutableBytes bitmap = pager.edit(listEntry(row, index));
  if (bitmap.empty()) {
    return false;
  }
  putBit(bitmap.subspan(bitmapBitsAt), page % bitsOfPage(pager), value);
  return true;
}

bool inWindow(Bytes row, PageNumber page) {
  const PageNumber first = load32(row.data() + 1);
  return page >= first && page - first < (row.size() - inlineBitsAt) * 8;
}

std::vector<PageNumber> inlinePages(Bytes row) {
  std::vector<PageNumber> pages;
  const Bytes bits = row.subspan(inlineBitsAt);
  for (auto bit = nextBit(bits, 0); bit; bit = nextBit(bits, *bit + 1)) {
    pages.push_back(load32(row.data() + 1) + static_cast<PageNumber>(*bit));
  }
  return pages;
}

// --- The global map: a page that has just been appended is not free.

// Gives the global map, of kind 1, the bitmap page for `page`: everything inside the file counts as used.
bool extendGlobal(Pager& pager, MutableBytes row, PageNumber page) {
  const std::size_t index = page / bitsOfPage(pager);
  if (index >= listLength(row)) {
    return false;
  }
  if (listEntry(row, index) != 0) {
    return true;
  }
  const PageNumber number = pager.append();
  if (number == noPage) {
    return false;
  }
  const MutableBytes bitmap = pager.edit(number);
  createBitmap(bitmap, true);
  const auto begin = static_cast<PageNumber>(index * bitsOfPage(pager));
  const PageNumber end =
      std::min<PageNumber>(pager.pageCount(), begin + static_cast<PageNumber>(bitsOfPage(pager)));
  for (PageNumber used = begin; used < end; ++used) {
    putBit(bitmap.subspan(bitmapBitsAt), used - begin, false);
  }
  store32(row.data() + listAt + 4 * index, number);
  // The bitmap page itself may lie in the next range.
  return extendGlobal(pager, row, number);
}

// Turns the inline global map into kind 1, with the free pages that it knows.
bool convertGlobal(Pager& pager, MutableBytes row) {
  const std::vector<PageNumber> freePages = inlinePages(row);
  const PageNumber pagesBefore = pager.pageCount();
  std::fill(row.begin(), row.end(), std::uint8_t{0});
  row[0] = kindReference;
  for (PageNumber page = 0; page < pagesBefore; page += static_cast<PageNumber>(bitsOfPage(pager))) {
    if (!extendGlobal(pager, row, page)) {
      return false;
    }
  }
  for (const PageNumber page : freePages) {
    if (page < pagesBefore - 1 && !putInBitmap(pager, row, page, true)) {
      return false;
    }
  }
  return true;
}

bool markUsed(Pager& pager, PageNumber page) {
  const auto row = readRow(pager, globalMap);
  if (!row) {
    return false;
  }
  const MutableBytes bytes = editRow(pager, *row);
  if (bytes.empty()) {
    return false;
  }
  if (bytes[0] == kindReference) {
    return extendGlobal(pager, bytes, page) && putInBitmap(pager, bytes, page, false);
  }
  if (inWindow(bytes, page)) {
    putBit(bytes.subspan(inlineBitsAt), page - load32(bytes.data() + 1), false);
    return true;
  }
  // A page before the window is used anyway.
  return page < load32(bytes.data() + 1) || convertGlobal(pager, bytes);
}

// A free page inside the file that holds nothing but zeros, as this engine leaves them: no other program's
// idea of what is free is trusted with data that may still be somebody's.
std::optional<PageNumber> reusablePage(Pager& pager) {
  constexpr int mostTries = 4;
  PageNumber from = 0;
  for (int i = 0; i < mostTries; ++i) {
    const auto page = UsageMap(pager, globalMap).next(from);
    if (!page || *page >= pager.pageCount()) {
      break;
    }
    const PageView view = pager.read(*page);
    if (view &&
        std::all_of(view.bytes().begin(), view.bytes().end(), [](std::uint8_t b) { return b == 0; })) {
      return page;
    }
    from = *page + 1;
  }
  return std::nullopt;
}

}  // namespace

std::optional<PageNumber> UsageMap::next(PageNumber from) const {
  const auto row = readRow(*pager_, place_);
  if (!row) {
    return std::nullopt;
  }
  if (row->bytes[0] == kindInline) {
    const PageNumber first = load32(row->bytes.data() + 1);
    const auto bit = nextBit(row->bytes.subspan(inlineBitsAt), from > first ? from - first : 0);
    return bit ? std::optional(first + static_cast<PageNumber>(*bit)) : std::nullopt;
  }
  const std::size_t bits = bitsOfPage(*pager_);
  for (std::size_t index = from / bits; index < listLength(row->bytes); ++index) {
    const auto begin = static_cast<PageNumber>(index * bits);
    const PageView page = readBitmap(*pager_, listEntry(row->bytes, index));
    const auto bit = page ? nextBit(bitsOf(page), from > begin ? from - begin : 0) : std::nullopt;
    if (bit) {
      return begin + static_cast<PageNumber>(*bit);
    }
  }
  return std::nullopt;
}

std::optional<PageNumber> UsageMap::previous(PageNumber from) const {
  const auto row = readRow(*pager_, place_);
  if (!row) {
    return std::nullopt;
  }
  if (row->bytes[0] == kindInline) {
    const PageNumber first = load32(row->bytes.data() + 1);
    const auto bit =
        from < first ? std::nullopt : previousBit(row->bytes.subspan(inlineBitsAt), from - first);
    return bit ? std::optional(first + static_cast<PageNumber>(*bit)) : std::nullopt;
  }
  const std::size_t bits = bitsOfPage(*pager_);
  for (std::size_t index = std::min(from / bits + 1, listLength(row->bytes)); index-- > 0;) {
    const auto begin = static_cast<PageNumber>(index * bits);
    const PageView page = readBitmap(*pager_, listEntry(row->bytes, index));
    const auto bit = page ? previousBit(bitsOf(page), from - begin) : std::nullopt;
    if (bit) {
      return begin + static_cast<PageNumber>(*bit);
    }
  }
  return std::nullopt;
}

bool UsageMap::contains(PageNumber page) const {
  const auto row = readRow(*pager_, place_);
  if (!row) {
    return false;
  }
  if (row->bytes[0] == kindInline) {
    return inWindow(row->bytes, page) &&
           testBit(row->bytes.subspan(inlineBitsAt), page - load32(row->bytes.data() + 1));
  }
  const std::size_t index = page / bitsOfPage(*pager_);
  const PageView bitmap =
      index < listLength(row->bytes) ? readBitmap(*pager_, listEntry(row->bytes, index)) : PageView();
  return bitmap && testBit(bitsOf(bitmap), page % bitsOfPage(*pager_));
}

namespace {

// Moves the window of an inline map so that `page` lies in it. False when it is too small for all pages.
bool shiftWindow(MutableBytes row, PageNumber page) {
  const std::vector<PageNumber> pages = inlinePages(row);
  const PageNumber lowest = pages.empty() ? page : std::min(pages.front(), page);
  const PageNumber highest = pages.empty() ? page : std::max(pages.back(), page);
  const PageNumber first = lowest & ~PageNumber{7};
  if (highest - first >= (row.size() - inlineBitsAt) * 8) {
    return false;
  }
  store32(row.data() + 1, first);
  std::fill(row.begin() + inlineBitsAt, row.end(), std::uint8_t{0});
  for (const PageNumber present : pages) {
    putBit(row.subspan(inlineBitsAt), present - first, true);
  }
  return true;
}

// Sets the page's bit in an owner's map of kind 1, which gets another bitmap page if it needs one.
bool addToReference(Pager& pager, MutableBytes row, PageNumber page) {
  const std::size_t index = page / bitsOfPage(pager);
  if (index >= listLength(row)) {
    return false;
  }
  if (listEntry(row, index) == 0) {
    const auto number = allocatePage(pager);
    if (!number) {
      return false;
    }
    createBitmap(pager.edit(*number), false);
    store32(row.data() + listAt + 4 * index, *number);
  }
  return putInBitmap(pager, row, page, true);
}

}  // namespace

bool UsageMap::add(PageNumber page) {
  const auto row = readRow(*pager_, place_);
  const MutableBytes bytes = row ? editRow(*pager_, *row) : MutableBytes();
  if (bytes.empty()) {
    return false;
  }
  if (bytes[0] == kindReference) {
    return addToReference(*pager_, bytes, page);
  }
  if (inWindow(bytes, page) || shiftWindow(bytes, page)) {
    putBit(bytes.subspan(inlineBitsAt), page - load32(bytes.data() + 1), true);
    return true;
  }
  const std::vector<PageNumber> pages = inlinePages(bytes);
  std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
  bytes[0] = kindReference;
  return std::all_of(pages.begin(), pages.end(),
                     [&](PageNumber present) { return addToReference(*pager_, bytes, present); }) &&
         addToReference(*pager_, bytes, page);
}

bool UsageMap::remove(PageNumber page) {
  const auto row = readRow(*pager_, place_);
  if (!row) {
    return false;
  }
  if (row->bytes[0] == kindReference) {
    return !contains(page) || putInBitmap(*pager_, row->bytes, page, false);
  }
  if (!inWindow(row->bytes, page)) {
    return true;
  }
  const MutableBytes bytes = editRow(*pager_, *row);
  if (bytes.empty()) {
    return false;
  }
  putBit(bytes.subspan(inlineBitsAt), page - load32(bytes.data() + 1), false);
  return true;
}

std::optional<PageNumber> allocatePage(Pager& pager) {
  const auto reused = reusablePage(pager);
  const PageNumber page = reused ? *reused : pager.append();
  if (page == noPage || !markUsed(pager, page) || pager.edit(page).empty()) {
    return std::nullopt;
  }
  return page;
}

bool freePage(Pager& pager, PageNumber page) {
  const MutableBytes bytes = pager.edit(page);
  const auto row = readRow(pager, globalMap);
  if (bytes.empty() || !row) {
    return false;
  }
  std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
  if (row->bytes[0] == kindReference) {
    // Without a bitmap page for it the free page is only lost.
    putInBitmap(pager, row->bytes, page, true);
    return true;
  }
  if (inWindow(row->bytes, page)) {
    const MutableBytes map = editRow(pager, *row);
    if (map.empty()) {
      return false;
    }
    putBit(map.subspan(inlineBitsAt), page - load32(map.data() + 1), true);
  }
  return true;
}

}  // namespace veltrano::access
