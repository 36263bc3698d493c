#include "database/access/storage/space/usage_map.h"

#include <algorithm>
#include <vector>

#include "database/access/storage/space/allocator.h"
#include "database/access/storage/space/map_row.h"

namespace veltrano::access {

std::optional<PageNumber> UsageMap::next(PageNumber from) const {
  const auto row = MapRow::read(*pager_, place_);
  if (!row) {
    return std::nullopt;
  }
  if (row->isInline()) {
    const PageNumber first = row->first();
    const auto bit = nextBit(row->bits(), from > first ? from - first : 0);
    return bit ? std::optional(first + static_cast<PageNumber>(*bit)) : std::nullopt;
  }
  const std::size_t bits = bitsOfPage(*pager_);
  for (std::size_t index = from / bits; index < row->entries(); ++index) {
    const auto begin = static_cast<PageNumber>(index * bits);
    const PageView page = readBitmap(*pager_, row->entry(index));
    const auto bit = page ? nextBit(bitsOf(page), from > begin ? from - begin : 0) : std::nullopt;
    if (bit) {
      return begin + static_cast<PageNumber>(*bit);
    }
  }
  return std::nullopt;
}

std::optional<PageNumber> UsageMap::previous(PageNumber from) const {
  const auto row = MapRow::read(*pager_, place_);
  if (!row) {
    return std::nullopt;
  }
  if (row->isInline()) {
    const PageNumber first = row->first();
    const auto bit = from < first ? std::nullopt : previousBit(row->bits(), from - first);
    return bit ? std::optional(first + static_cast<PageNumber>(*bit)) : std::nullopt;
  }
  const std::size_t bits = bitsOfPage(*pager_);
  for (std::size_t index = std::min(from / bits + 1, row->entries()); index-- > 0;) {
    const auto begin = static_cast<PageNumber>(index * bits);
    const PageView page = readBitmap(*pager_, row->entry(index));
    const auto bit = page ? previousBit(bitsOf(page), from - begin) : std::nullopt;
    if (bit) {
      return begin + static_cast<PageNumber>(*bit);
    }
  }
  return std::nullopt;
}

bool UsageMap::contains(PageNumber page) const {
  const auto row = MapRow::read(*pager_, place_);
  if (!row) {
    return false;
  }
  if (row->isInline()) {
    return row->inWindow(page) && testBit(row->bits(), page - row->first());
  }
  const std::size_t index = page / bitsOfPage(*pager_);
  const PageView bitmap = index < row->entries() ? readBitmap(*pager_, row->entry(index)) : PageView();
  return bitmap && testBit(bitsOf(bitmap), page % bitsOfPage(*pager_));
}

namespace {

// Moves the window of an inline map so that `page` lies in it. False if it is too small for all pages.
bool shiftWindow(Pager& pager, const MapRow& row, PageNumber page) {
  const std::vector<PageNumber> pages = row.pages();
  const PageNumber lowest = pages.empty() ? page : std::min(pages.front(), page);
  const PageNumber highest = pages.empty() ? page : std::max(pages.back(), page);
  const PageNumber first = lowest & ~PageNumber{7};
  const MutableBytes bytes = highest - first < row.bits().size() * 8 ? row.edit(pager) : MutableBytes();
  if (bytes.empty()) {
    return false;
  }
  startInline(bytes, first);
  for (const PageNumber present : pages) {
    putBit(bytes.subspan(MapRow::inlineBitsAt), present - first, true);
  }
  return true;
}

// Gives a reference a bitmap page for `page` if it has none.
bool ensureBitmap(Pager& pager, const MapRow& row, PageNumber page) {
  const std::size_t index = page / bitsOfPage(pager);
  if (index >= row.entries() || row.entry(index) != 0) {
    return index < row.entries();
  }
  const auto number = allocatePage(pager);
  const MutableBytes bytes = number ? row.edit(pager) : MutableBytes();
  if (bytes.empty()) {
    return false;
  }
  startBitmap(pager.edit(*number), false);
  store32(bytes.data() + MapRow::listAt + 4 * index, *number);
  return true;
}

// Makes an inline map a reference. False, with the map as it was, if the file has no room for bitmap pages.
bool makeReference(Pager& pager, const MapRow& row, PageNumber page) {
  std::vector<PageNumber> pages = row.pages();
  const MutableBytes bytes = row.edit(pager);
  if (bytes.empty()) {
    return false;
  }
  const std::vector<std::uint8_t> before(bytes.begin(), bytes.end());
  startReference(bytes);
  pages.push_back(page);
  if (std::all_of(pages.begin(), pages.end(),
                  [&](PageNumber one) { return ensureBitmap(pager, row, one); })) {
    pages.pop_back();
    return std::all_of(pages.begin(), pages.end(),
                       [&](PageNumber one) { return putInBitmap(pager, row, one, true); });
  }
  for (std::size_t i = 0; i < row.entries(); ++i) {
    if (row.entry(i) != 0) {
      freePage(pager, row.entry(i));
    }
  }
  std::copy(before.begin(), before.end(), bytes.begin());
  return false;
}

}  // namespace

bool UsageMap::add(PageNumber page) {
  const auto row = MapRow::read(*pager_, place_);
  if (!row) {
    return false;
  }
  if (row->isInline() && (row->inWindow(page) || shiftWindow(*pager_, *row, page))) {
    const MutableBytes bytes = row->edit(*pager_);
    if (bytes.empty()) {
      return false;
    }
    putBit(bytes.subspan(MapRow::inlineBitsAt), page - row->first(), true);
    return true;
  }
  return (!row->isInline() || makeReference(*pager_, *row, page)) && ensureBitmap(*pager_, *row, page) &&
         putInBitmap(*pager_, *row, page, true);
}

bool UsageMap::remove(PageNumber page) {
  const auto row = MapRow::read(*pager_, place_);
  if (!row) {
    return false;
  }
  if (!row->isInline()) {
    return !contains(page) || putInBitmap(*pager_, *row, page, false);
  }
  if (!row->inWindow(page)) {
    return true;
  }
  const MutableBytes bytes = row->edit(*pager_);
  if (bytes.empty()) {
    return false;
  }
  putBit(bytes.subspan(MapRow::inlineBitsAt), page - row->first(), false);
  return true;
}

}  // namespace veltrano::access
