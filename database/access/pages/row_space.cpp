#include "database/access/pages/row_space.h"

#include "database/access/storage/space/allocator.h"
#include "database/access/storage/space/usage_map.h"

namespace veltrano::access {

namespace {

// A page with less room leaves the map: the sixteenth part of a page.
constexpr std::size_t littleRoom = 256;

// Pages of the map that are searched before the owner gets a new one.
constexpr int mostPagesSearched = 32;

}  // namespace

// Bytes that a new row and its slot may take; 0 if the page is not one of the owner, or takes no more rows.
std::size_t RowSpace::roomIn(PageNumber number) const {
  const PageView view = pager_->read(number);
  if (!view) {
    return 0;
  }
  const DataPage page(view.bytes(), pager_->version());
  const bool usable = page.sound() && page.owner() == owner_ && page.slotForInsert() &&
                      UsageMap(*pager_, ownedPages_).contains(number);
  return usable ? page.freeBytes() : 0;
}

void RowSpace::remember(PageNumber page, std::size_t room) {
  RoomHints& known = hints();
  if (const auto old = known.rooms.find(page); old != known.rooms.end()) {
    known.byRoom.erase({old->second, page});
    known.rooms.erase(old);
  }
  if (room >= littleRoom) {
    known.byRoom.emplace(room, page);
    known.rooms.emplace(page, room);
  }
}

// The same for a page of the map, which it leaves if it has little room.
bool RowSpace::correct(PageNumber page, std::size_t room) {
  remember(page, room);
  return room >= littleRoom || UsageMap(*pager_, freePages_).remove(page);
}

std::optional<PageNumber> RowSpace::knownPage(std::size_t size) {
  RoomHints& known = hints();
  for (auto at = known.byRoom.lower_bound({size, 0}); at != known.byRoom.end();
       at = known.byRoom.lower_bound({size, 0})) {
    const PageNumber page = at->second;
    const std::size_t room = roomIn(page);
    if (room >= size) {
      return page;
    }
    if (!correct(page, room)) {
      break;
    }
  }
  return std::nullopt;
}

std::optional<PageNumber> RowSpace::searchPage(std::size_t size) {
  RoomHints& known = hints();
  for (int i = 0; i < mostPagesSearched && known.searchBelow != 0; ++i) {
    const auto page = UsageMap(*pager_, freePages_).previous(known.searchBelow - 1);
    known.searchBelow = page.value_or(0);
    if (!page) {
      break;
    }
    const std::size_t room = roomIn(*page);
    if (!correct(*page, room)) {
      break;
    }
    if (room >= size) {
      return page;
    }
  }
  return std::nullopt;
}

std::optional<PageNumber> RowSpace::newPage(std::size_t size) {
  const auto number = allocatePage(*pager_);
  if (!number) {
    return std::nullopt;
  }
  const MutableBytes bytes = pager_->edit(*number);
  DataPageEditor(bytes).create(owner_);
  const std::size_t room = DataPage(bytes, pager_->version()).freeBytes();
  const bool entered = ownedPages_.page == 0 || UsageMap(*pager_, ownedPages_).add(*number);
  if (!entered || !hasMaps() || size > room || room - size < littleRoom) {
    return entered ? number : std::nullopt;
  }
  remember(*number, room);
  return UsageMap(*pager_, freePages_).add(*number) ? number : std::nullopt;
}

std::optional<RowPointer> RowSpace::insert(Bytes row, std::uint16_t flags) {
  const std::size_t size = row.size() + 2;
  std::optional<PageNumber> number;
  if (hasMaps()) {
    number = knownPage(size);
    number = number ? number : searchPage(size);
  }
  number = number ? number : newPage(size);
  const MutableBytes page = number ? pager_->edit(*number) : MutableBytes();
  const auto slot = page.empty() ? std::nullopt : DataPageEditor(page).insert(row, flags);
  return slot ? std::optional(RowPointer{*number, *slot}) : std::nullopt;
}

bool RowSpace::remove(RowPointer place) {
  const MutableBytes bytes = pager_->edit(place.page);
  if (bytes.empty()) {
    return false;
  }
  DataPageEditor(bytes).remove(place.row);
  UsageMap owned(*pager_, ownedPages_);
  if (!hasMaps() || !owned.contains(place.page)) {
    return true;
  }
  if (!DataPage(bytes, pager_->version()).empty()) {
    noteRoom(place.page);
    return true;
  }
  remember(place.page, 0);
  return owned.remove(place.page) && UsageMap(*pager_, freePages_).remove(place.page) &&
         freePage(*pager_, place.page);
}

// The map of pages with room is a help for later rows: a full file, where it cannot grow, does without.
void RowSpace::noteRoom(PageNumber page) {
  const std::size_t room = hasMaps() ? roomIn(page) : 0;
  if (room >= littleRoom) {
    remember(page, room);
    UsageMap(*pager_, freePages_).add(page);
  }
}

}  // namespace veltrano::access
