#include "database/access/schema/table.h"

#include <algorithm>

#include "database/access/storage/data_page.h"
#include "database/access/storage/space/usage_map.h"

namespace veltrano::access {

// The page if it is a data page of this table: damaged maps name others.
PageView Table::readPage(PageNumber number) const {
  PageView view = pager_->read(number);
  if (!view) {
    return view;
  }
  const DataPage page(view.bytes(), pager_->version());
  return page.valid() && page.owner() == definition_.page ? std::move(view) : PageView();
}

std::optional<RowPointer> Table::firstFrom(PageNumber page, std::uint32_t slot) const {
  const UsageMap owned(*pager_, definition_.ownedPages);
  for (std::optional<PageNumber> number = page; number && *number < pager_->pageCount();
       number = owned.next(*number + 1), slot = 0) {
    const PageView view = readPage(*number);
    if (!view) {
      continue;
    }
    const DataPage data(view.bytes(), pager_->version());
    for (; slot < data.slotCount() && slot <= 0xFF; ++slot) {
      if (!data.isHidden(slot)) {
        return RowPointer{*number, static_cast<std::uint8_t>(slot)};
      }
    }
  }
  return std::nullopt;
}

std::optional<RowPointer> Table::last() const {
  const UsageMap owned(*pager_, definition_.ownedPages);
  for (auto number = owned.previous(pager_->pageCount()); number;
       number = *number == 0 ? std::nullopt : owned.previous(*number - 1)) {
    const PageView view = readPage(*number);
    if (!view) {
      continue;
    }
    const DataPage page(view.bytes(), pager_->version());
    for (std::uint32_t slot = std::min<std::uint32_t>(page.slotCount(), 256); slot-- > 0;) {
      if (!page.isHidden(slot)) {
        return RowPointer{*number, static_cast<std::uint8_t>(slot)};
      }
    }
  }
  return std::nullopt;
}

std::optional<Row> Table::fetch(RowPointer place) const {
  constexpr int mostHops = 8;
  for (int hop = 0; hop < mostHops; ++hop) {
    PageView view = readPage(place.page);
    if (!view) {
      return std::nullopt;
    }
    const DataPage page(view.bytes(), pager_->version());
    const auto bytes = page.row(place.row);
    // The target of a pointer is hidden, to keep walks from meeting it twice.
    if (!bytes || (hop == 0 && page.isHidden(place.row))) {
      return std::nullopt;
    }
    if (!page.isPointer(place.row)) {
      return Row{std::move(view), *bytes, place};
    }
    if (bytes->size() < 4 || page.isHidden(place.row)) {
      return std::nullopt;
    }
    place = RowPointer::fromDisk(load32(bytes->data()));
  }
  return std::nullopt;
}

}  // namespace veltrano::access
