#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_DATA_PAGE_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_DATA_PAGE_H

// The rows of one data page. data_page.cpp shows the bytes. Bytes from a file are never trusted: a slot that
// points outside the page, or into the slots, has no row.

#include <cstdint>
#include <optional>

#include "database/access/storage/bytes.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

namespace slot_flag {
inline constexpr std::uint16_t offset = 0x1FFF;
inline constexpr std::uint16_t pointer = 0x4000;  ///< the row's first four bytes say where the row really is
inline constexpr std::uint16_t hidden = 0x8000;   ///< deleted, or the row that a pointer leads to
}  // namespace slot_flag

inline constexpr std::size_t mostSlots = 255;

/// The longest row: 2012 bytes in Jet 3, 4060 later.
inline constexpr std::size_t maximumRowSize(Version version) {
  return isJet3(version) ? 2012 : 4060;
}

/// A data page for reading; does not own the bytes.
class DataPage {
 public:
  DataPage(Bytes page, Version version);

  /// False for pages of other kinds.
  [[nodiscard]] bool valid() const;
  /// The definition page of the table, or the four letters LVAL.
  [[nodiscard]] std::uint32_t owner() const { return load32(page_.data() + 4); }
  /// Never more than fit in the page.
  [[nodiscard]] std::uint32_t slotCount() const { return slots_; }
  /// The slot's word with its flags.
  [[nodiscard]] std::uint16_t slot(std::uint32_t index) const {
    return load16(page_.data() + slotsAt_ + std::size_t{2} * index);
  }
  [[nodiscard]] bool isHidden(std::uint32_t index) const { return (slot(index) & slot_flag::hidden) != 0; }
  /// The target of a pointer is only hidden.
  [[nodiscard]] bool isDeleted(std::uint32_t index) const { return isHidden(index) && isPointer(index); }
  /// True if all rows are deleted.
  [[nodiscard]] bool empty() const;
  [[nodiscard]] bool isPointer(std::uint32_t index) const { return (slot(index) & slot_flag::pointer) != 0; }
  /// The row's bytes, whatever its flags are. Empty if there is no such slot or it is damaged.
  [[nodiscard]] std::optional<Bytes> row(std::uint32_t index) const;
  /// Bytes that a new row, its slot included, may take.
  [[nodiscard]] std::size_t freeBytes() const;
  /// The slot that the next new row gets: that of a deleted row if there is one. Empty if
  /// all are in use.
  [[nodiscard]] std::optional<std::uint8_t> slotForInsert() const;
  /// True if slots and rows are in order, so that the page may be changed.
  [[nodiscard]] bool sound() const;

 private:
  friend class DataPageEditor;
  [[nodiscard]] std::size_t start(std::uint32_t index) const { return slot(index) & slot_flag::offset; }
  [[nodiscard]] std::size_t end(std::uint32_t index) const {
    return index == 0 ? page_.size() : start(index - 1);
  }

  Bytes page_;
  std::size_t slotsAt_;
  std::uint32_t slots_;
};

inline constexpr std::uint32_t longValueOwner = 0x4C41564C;  ///< "LVAL"

/// Changes a data page (Jet 4 and later) that is sound. Rows keep their slots; their bytes may move.
class DataPageEditor {
 public:
  explicit DataPageEditor(MutableBytes page) : page_(page) {}

  /// Makes an empty data page of zeroed bytes.
  void create(std::uint32_t owner);
  /// Adds a row; the number of its slot. Only if it fits (its length and 2 for the slot), and a slot is left.
  [[nodiscard]] std::optional<std::uint8_t> insert(Bytes row, std::uint16_t flags);
  /// Gives the row of a slot other bytes and flags. False if they do not fit.
  bool replace(std::uint8_t index, Bytes row, std::uint16_t flags);
  /// Deletes the row: its slot stays, with no bytes.
  void remove(std::uint8_t index);

 private:
  [[nodiscard]] DataPage view() const { return {page_, Version::jet4}; }
  void resizeRow(std::uint32_t index, std::size_t length);
  void setSlot(std::uint32_t index, std::size_t start, std::uint32_t flags);
  void storeFreeBytes();

  MutableBytes page_;
};

}  // namespace veltrano::access

#endif
