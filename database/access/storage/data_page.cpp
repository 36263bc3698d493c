#include "database/access/storage/data_page.h"

#include <algorithm>
#include <cstring>

namespace veltrano::access {

// Jet 3  Jet 4  Size
//   0      0     1   01
//   1      1     1   01
//   2      2     2   free bytes: between the end of the slots and the lowest row
//   4      4     4   owner: page of the table definition, or LVAL, or 0 or 1 for rows that are usage maps
//   -      8     4   0
//   8     12     2   number of slots, deleted ones included
//  10     14    2*n  slots: start of the row, with flags
//
// Rows fill the page from its end: row 0 ends at the page end, row i where row i-1 starts. A deleted row is
// slid shut: its slot has both flags, and the start of the row before it.

namespace {

constexpr std::size_t freeAt = 2;
constexpr std::size_t ownerAt = 4;
constexpr std::size_t countAt = 12;
constexpr std::size_t slotsAt = 14;
constexpr std::size_t slotSize = 2;

}  // namespace

DataPage::DataPage(Bytes page, Version version)
    : page_(page),
      slotsAt_(isJet3(version) ? 10 : slotsAt),
      slots_(std::min<std::uint32_t>(load16(page.data() + slotsAt_ - 2),
                                     static_cast<std::uint32_t>((page.size() - slotsAt_) / 2))) {}

bool DataPage::valid() const {
  return page_[0] == page_kind::data && page_[1] == 1;
}

bool DataPage::empty() const {
  std::uint32_t i = 0;
  while (i < slots_ && isDeleted(i)) {
    ++i;
  }
  return i == slots_;
}

std::optional<Bytes> DataPage::row(std::uint32_t index) const {
  if (index >= slots_) {
    return std::nullopt;
  }
  const std::size_t from = start(index);
  const std::size_t to = end(index);
  if (from > to || to > page_.size() || from < slotsAt_ + std::size_t{2} * slots_) {
    return std::nullopt;
  }
  return page_.subspan(from, to - from);
}

std::size_t DataPage::freeBytes() const {
  const std::size_t low = slots_ == 0 ? page_.size() : start(slots_ - 1);
  const std::size_t high = slotsAt_ + std::size_t{2} * slots_;
  return low > high && low <= page_.size() ? low - high : 0;
}

std::optional<std::uint8_t> DataPage::slotForInsert() const {
  for (std::uint32_t i = 0; i < slots_; ++i) {
    // One with bytes may be a pointer that another pointer leads to.
    if (isDeleted(i) && start(i) == end(i)) {
      return static_cast<std::uint8_t>(i);
    }
  }
  return slots_ < mostSlots ? std::optional(static_cast<std::uint8_t>(slots_)) : std::nullopt;
}

bool DataPage::sound() const {
  if (!valid() || load16(page_.data() + slotsAt_ - 2) > mostSlots) {
    return false;
  }
  std::size_t above = page_.size();
  for (std::uint32_t i = 0; i < slots_; ++i) {
    if (start(i) > above || start(i) < slotsAt_ + std::size_t{2} * slots_) {
      return false;
    }
    above = start(i);
  }
  return true;
}

void DataPageEditor::create(std::uint32_t owner) {
  page_[0] = page_kind::data;
  page_[1] = 1;
  store32(page_.data() + ownerAt, owner);
  storeFreeBytes();
}

void DataPageEditor::setSlot(std::uint32_t index, std::size_t start, std::uint32_t flags) {
  store16(page_.data() + slotsAt + std::size_t{2} * index, static_cast<std::uint32_t>(start) | flags);
}

void DataPageEditor::storeFreeBytes() {
  store16(page_.data() + freeAt, static_cast<std::uint32_t>(view().freeBytes()));
}

std::optional<std::uint8_t> DataPageEditor::insert(Bytes row, std::uint16_t flags) {
  const DataPage page = view();
  const auto slot = page.slotForInsert();
  if (!slot || page.freeBytes() < row.size() + slotSize) {
    return std::nullopt;
  }
  const std::uint32_t count = page.slotCount();
  if (*slot == count) {
    store16(page_.data() + countAt, count + 1);
    setSlot(count, count == 0 ? page_.size() : page.start(count - 1), 0);
  }
  replace(*slot, row, flags);
  return slot;
}

// Slides the rows after this one so that it has `length` bytes; it keeps its last ones. Bytes that become free
// are zeroed: deleted data should not stay readable in the file.
void DataPageEditor::resizeRow(std::uint32_t index, std::size_t length) {
  const DataPage page = view();
  const std::size_t last = page.start(page.slotCount() - 1);
  const std::size_t oldStart = page.start(index);
  const std::size_t newStart = page.end(index) - length;
  std::uint8_t* bytes = page_.data();
  const auto shift = static_cast<std::ptrdiff_t>(newStart) - static_cast<std::ptrdiff_t>(oldStart);
  std::memmove(bytes + static_cast<std::ptrdiff_t>(last) + shift, bytes + last, oldStart - last);
  if (shift > 0) {
    std::memset(bytes + last, 0, static_cast<std::size_t>(shift));
  }
  for (std::uint32_t i = index; i < page.slotCount(); ++i) {
    const std::uint16_t word = page.slot(i);
    const auto moved =
        static_cast<std::size_t>(static_cast<std::ptrdiff_t>(word & slot_flag::offset) + shift);
    setSlot(i, moved, word & (slot_flag::pointer | slot_flag::hidden));
  }
}

bool DataPageEditor::replace(std::uint8_t index, Bytes row, std::uint16_t flags) {
  const DataPage page = view();
  const std::size_t oldLength = page.end(index) - page.start(index);
  if (row.size() > oldLength + page.freeBytes()) {
    return false;
  }
  if (row.size() != oldLength) {
    resizeRow(index, row.size());
  }
  const std::size_t start = page.start(index);
  std::copy(row.begin(), row.end(), page_.begin() + static_cast<std::ptrdiff_t>(start));
  setSlot(index, start, flags);
  storeFreeBytes();
  return true;
}

void DataPageEditor::remove(std::uint8_t index) {
  resizeRow(index, 0);
  setSlot(index, view().start(index), slot_flag::pointer | slot_flag::hidden);
  storeFreeBytes();
}

}  // namespace veltrano::access
