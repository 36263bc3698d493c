#include "database/access/storage/space/map_row.h"

#include <algorithm>
#include <bit>

#include "database/access/storage/data_page.h"

namespace veltrano::access {

namespace {

constexpr std::size_t bitmapBitsAt = 4;
// Row pointers have 24 bits for the page.
constexpr PageNumber greatestPage = 0xFFFFFF;

}  // namespace

std::optional<MapRow> MapRow::read(Pager& pager, RowPointer place) {
  PageView view = pager.read(place.page);
  if (!view) {
    return std::nullopt;
  }
  const DataPage page(view.bytes(), pager.version());
  const auto row = page.valid() ? page.row(place.row) : std::nullopt;
  if (!row || row->size() <= inlineBitsAt || (*row)[0] > kindReference) {
    return std::nullopt;
  }
  MapRow map(std::move(view), *row);
  return map.isInline() && map.first() > greatestPage ? std::nullopt : std::optional(std::move(map));
}

MutableBytes MapRow::edit(Pager& pager) const {
  const auto offset = static_cast<std::size_t>(bytes_.data() - page_.data());
  const MutableBytes page = pager.edit(page_.number());
  return page.empty() ? page : page.subspan(offset, bytes_.size());
}

std::vector<PageNumber> MapRow::pages() const {
  std::vector<PageNumber> pages;
  for (auto bit = nextBit(bits(), 0); bit; bit = nextBit(bits(), *bit + 1)) {
    pages.push_back(first() + static_cast<PageNumber>(*bit));
  }
  return pages;
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

void startInline(MutableBytes row, PageNumber first) {
  std::fill(row.begin(), row.end(), std::uint8_t{0});
  row[0] = MapRow::kindInline;
  store32(row.data() + MapRow::firstAt, first);
}

void startReference(MutableBytes row) {
  std::fill(row.begin(), row.end(), std::uint8_t{0});
  row[0] = MapRow::kindReference;
}

std::size_t bitsOfPage(const Pager& pager) {
  return (pager.pageSize() - bitmapBitsAt) * 8;
}

PageView readBitmap(Pager& pager, PageNumber number) {
  PageView page = number != 0 ? pager.read(number) : PageView();
  return page && page.data()[0] == page_kind::bitmap ? std::move(page) : PageView();
}

Bytes bitsOf(const PageView& bitmap) {
  return bitmap.bytes().subspan(bitmapBitsAt);
}

MutableBytes startBitmap(MutableBytes page, bool value) {
  page[0] = page_kind::bitmap;
  page[1] = 1;
  const MutableBytes bits = page.subspan(bitmapBitsAt);
  std::fill(bits.begin(), bits.end(), static_cast<std::uint8_t>(value ? 0xFF : 0));
  return bits;
}

bool putInBitmap(Pager& pager, const MapRow& row, PageNumber page, bool value) {
  const std::size_t index = page / bitsOfPage(pager);
  if (index >= row.entries() || !readBitmap(pager, row.entry(index))) {
    return false;
  }
  const MutableBytes bitmap = pager.edit(row.entry(index));
  if (bitmap.empty()) {
    return false;
  }
  putBit(bitmap.subspan(bitmapBitsAt), page % bitsOfPage(pager), value);
  return true;
}

}  // namespace veltrano::access
