#include "database/access/storage/space/allocator.h"

#include <algorithm>
#include <vector>

#include "database/access/storage/space/map_row.h"
#include "database/access/storage/space/usage_map.h"

namespace veltrano::access {

// What the global map does not reach counts as free as far as it lies after the file's end, as used inside it.

namespace {

// Free pages that one allocation looks at before it makes the file longer.
constexpr int mostFreePagesSeen = 16;

// Gives the global map, a reference, a bitmap page for `page` if it has none: what is inside the file counts as
// used, what comes after it as free. The bitmap page is itself one of the file.
bool ensureGlobalBitmap(Pager& pager, const MapRow& row, PageNumber page) {
  const std::size_t index = page / bitsOfPage(pager);
  if (index >= row.entries() || row.entry(index) != 0) {
    return index < row.entries();
  }
  const PageNumber number = pager.append();
  const MutableBytes bytes = number != noPage ? row.edit(pager) : MutableBytes();
  if (bytes.empty()) {
    return false;
  }
  const MutableBytes bits = startBitmap(pager.edit(number), true);
  const auto begin = static_cast<PageNumber>(index * bitsOfPage(pager));
  const auto end = static_cast<PageNumber>(begin + bitsOfPage(pager));
  for (PageNumber used = begin; used < std::min(end, pager.pageCount()); ++used) {
    putBit(bits, used - begin, false);
  }
  store32(bytes.data() + MapRow::listAt + 4 * index, number);
  return ensureGlobalBitmap(pager, row, number) && putInBitmap(pager, row, number, false);
}

// Turns the inline global map into a reference, with the free pages that it knows. False, with nothing changed,
// if the file is too full for the bitmap pages.
bool makeGlobalReference(Pager& pager, const MapRow& row) {
  const std::vector<PageNumber> freePages = row.pages();
  const PageNumber pages = pager.pageCount();
  const std::size_t bitmaps = pages / bitsOfPage(pager) + 2;
  const bool fits = std::uint64_t{pages + bitmaps} * pager.pageSize() <= maximumFileSize(pager.version());
  const MutableBytes bytes = fits ? row.edit(pager) : MutableBytes();
  if (bytes.empty()) {
    return false;
  }
  startReference(bytes);
  for (std::size_t page = 0; page < pages; page += bitsOfPage(pager)) {
    if (!ensureGlobalBitmap(pager, row, static_cast<PageNumber>(page))) {
      return false;
    }
  }
  return std::all_of(freePages.begin(), freePages.end(),
                     [&](PageNumber page) { return page >= pages || putInBitmap(pager, row, page, true); });
}

bool putInGlobalMap(Pager& pager, PageNumber page, bool free) {
  const auto row = MapRow::read(pager, globalMap);
  if (!row) {
    return false;
  }
  if (row->isInline() && row->inWindow(page)) {
    const MutableBytes bytes = row->edit(pager);
    if (bytes.empty()) {
      return false;
    }
    putBit(bytes.subspan(MapRow::inlineBitsAt), page - row->first(), free);
    return true;
  }
  // A page before the window is used anyway.
  if (row->isInline() && !free && page < row->first()) {
    return true;
  }
  return (!row->isInline() || makeGlobalReference(pager, *row)) && ensureGlobalBitmap(pager, *row, page) &&
         putInBitmap(pager, *row, page, free);
}

bool isReusable(Pager& pager, PageNumber page) {
  const PageView view = pager.read(page);
  return view &&
         std::all_of(view.bytes().begin(), view.bytes().end(), [](std::uint8_t b) { return b == 0; }) &&
         UsageMap(pager, globalMap).contains(page);
}

// A free page that this engine left: one of those given back since the file was opened, or else the next one
// that a search through the global map meets.
std::optional<PageNumber> reusablePage(Pager& pager) {
  SpaceHints& hints = pager.spaceHints();
  while (!hints.freedPages.empty()) {
    const PageNumber page = hints.freedPages.extract(hints.freedPages.begin()).value();
    if (isReusable(pager, page)) {
      return page;
    }
  }
  for (int i = 0; i < mostFreePagesSeen; ++i) {
    const auto page = UsageMap(pager, globalMap).next(hints.searchFrom);
    if (!page || *page >= pager.pageCount()) {
      break;
    }
    hints.searchFrom = *page + 1;
    if (isReusable(pager, *page)) {
      return page;
    }
  }
  return std::nullopt;
}

}  // namespace

std::optional<PageNumber> allocatePage(Pager& pager) {
  const auto reused = reusablePage(pager);
  const PageNumber page = reused ? *reused : pager.append();
  if (page == noPage || !putInGlobalMap(pager, page, false) || pager.edit(page).empty()) {
    return std::nullopt;
  }
  return page;
}

bool freePage(Pager& pager, PageNumber page) {
  const MutableBytes bytes = pager.edit(page);
  if (bytes.empty()) {
    return false;
  }
  std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
  // A full file may have no room to say that the page is free: it is only lost then.
  if (putInGlobalMap(pager, page, true)) {
    pager.spaceHints().freedPages.insert(page);
  }
  return true;
}

}  // namespace veltrano::access
