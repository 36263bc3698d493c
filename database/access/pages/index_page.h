#ifndef VELTRANO_DATABASE_ACCESS_PAGES_INDEX_PAGE_H
#define VELTRANO_DATABASE_ACCESS_PAGES_INDEX_PAGE_H

// The entries of one page of an index tree. index_page.cpp shows the bytes. An entry is addressed by the offset of its
// first byte in the page's entry area; the offset after the last entry stands for the end. Whatever a file's bytes
// say, everything here ends and stays inside the page.

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "database/access/storage/bytes.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

/// Index entries are ordered by the bytes of the key (a key comes before those that it is the beginning of), then by
/// the row.
struct IndexEntry {
  Bytes key;
  RowPointer row;
};

/// Negative, zero or positive as `left` comes before, is or comes after `right`.
int compareEntries(const IndexEntry& left, const IndexEntry& right);

/// The entry as leaves hold it: key, then the row.
void appendEntry(std::vector<std::uint8_t>& bytes, const IndexEntry& entry);
/// The entry as nodes hold it: with the page of the child below it, of which it is the greatest entry.
void appendEntry(std::vector<std::uint8_t>& bytes, const IndexEntry& entry, PageNumber child);

/// Where things lie in index pages of a version.
struct IndexLayout {
  std::size_t pageSize;
  std::size_t previousAt, nextAt, tailAt;
  std::size_t prefixAt, levelAt;
  std::size_t maskAt, areaAt;
  [[nodiscard]] std::size_t areaSize() const { return pageSize - areaAt; }
};
const IndexLayout& indexLayout(Version version);

/// An index page for reading; does not own the bytes.
class IndexPage {
 public:
  IndexPage(Bytes page, Version version) : page_(page), layout_(&indexLayout(version)) {}

  /// False for pages of other kinds and for those whose fields contradict each other.
  [[nodiscard]] bool valid() const;
  [[nodiscard]] bool isLeaf() const { return page_[0] == page_kind::indexLeaf; }
  /// Definition page of the table.
  [[nodiscard]] PageNumber owner() const { return load32(&page_[4]); }
  [[nodiscard]] PageNumber previous() const { return load32(&page_[layout_->previousAt]); }
  [[nodiscard]] PageNumber next() const { return load32(&page_[layout_->nextAt]); }
  /// Node: the child with the greatest entries, which has no entry of its own; 0 for none.
  [[nodiscard]] PageNumber tail() const { return load32(&page_[layout_->tailAt]); }
  [[nodiscard]] std::uint8_t level() const { return page_[layout_->levelAt]; }
  [[nodiscard]] std::size_t prefix() const;
  /// Offset after the last entry.
  [[nodiscard]] std::size_t end() const;
  [[nodiscard]] bool empty() const { return end() == 0; }

  /// Offset after the entry at `offset`; the offset itself if no entry starts there.
  [[nodiscard]] std::size_t after(std::size_t offset) const;
  /// Offset of the entry that ends at or covers the byte before `offset` (not 0).
  [[nodiscard]] std::size_t before(std::size_t offset) const { return boundary(offset - 1); }

  /// The entry at `offset`; its key lies in the page or in `scratch`. Empty if the bytes are not an entry.
  /// `child` is set for nodes.
  [[nodiscard]] std::optional<IndexEntry> entry(std::size_t offset, std::vector<std::uint8_t>& scratch,
                                                PageNumber* child = nullptr) const {
    return entry(offset, after(offset), scratch, child);
  }
  /// The same for a caller that knows where the entry ends.
  [[nodiscard]] std::optional<IndexEntry> entry(std::size_t offset, std::size_t stop,
                                                std::vector<std::uint8_t>& scratch,
                                                PageNumber* child = nullptr) const;
  /// Leaf: true if `entry`, seen earlier between these offsets, is still there.
  [[nodiscard]] bool holds(std::size_t offset, std::size_t stop, const IndexEntry& entry) const;
  /// The first entry that is not before `wanted`; end() if all are. `scratch` is working space.
  [[nodiscard]] std::size_t lowerBound(const IndexEntry& wanted, std::vector<std::uint8_t>& scratch) const;

 protected:
  /// Where the entry starts that holds the byte at `offset`.
  [[nodiscard]] std::size_t boundary(std::size_t offset) const;
  [[nodiscard]] std::uint64_t maskWord(std::size_t word) const;
  [[nodiscard]] Bytes area() const { return page_.subspan(layout_->areaAt); }
  [[nodiscard]] std::size_t referenceSize() const { return isLeaf() ? 4 : 8; }

  Bytes page_;
  const IndexLayout* layout_;
};

/// Whole entries, of a leaf or of a node, one after another in one buffer.
class EntryList {
 public:
  explicit EntryList(bool leaf) : referenceSize_(leaf ? 4 : 8) {}

  [[nodiscard]] std::size_t size() const { return ends_.size(); }
  [[nodiscard]] Bytes operator[](std::size_t i) const {
    const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
    return Bytes(bytes_).subspan(begin, ends_[i] - begin);
  }
  [[nodiscard]] IndexEntry entry(std::size_t i) const;
  /// Node: the child of entry i.
  [[nodiscard]] PageNumber child(std::size_t i) const;
  void add(Bytes entry);
  /// Bytes that the entries from `first` to before `last` take in a page, with the longest possible prefix.
  [[nodiscard]] std::size_t packedSize(std::size_t first, std::size_t last) const;
  [[nodiscard]] std::size_t commonPrefix(std::size_t first, std::size_t last) const;
  /// How many entries (of at least two) go to the left when a page that cannot hold them is divided, so that both
  /// parts take about the same room.
  [[nodiscard]] std::size_t bestCut() const;

 private:
  std::size_t referenceSize_;
  std::vector<std::uint8_t> bytes_;
  std::vector<std::size_t> ends_;
};

/// Changes an index page of Jet 4 and later.
class IndexPageEditor : public IndexPage {
 public:
  explicit IndexPageEditor(MutableBytes page) : IndexPage(page, Version::jet4), bytes_(page) {}

  /// Makes the page an empty one.
  void create(bool leaf, std::uint8_t level, PageNumber owner);
  void setPrevious(PageNumber page) { store32(&bytes_[layout_->previousAt], page); }
  void setNext(PageNumber page) { store32(&bytes_[layout_->nextAt], page); }
  void setTail(PageNumber page) { store32(&bytes_[layout_->tailAt], page); }

  /// Inserts a whole entry before the one at `offset` without touching the others. False, with nothing changed, if it
  /// does not fit or lacks the page's prefix: the page must then be rewritten.
  bool insert(std::size_t offset, Bytes entry);
  /// Removes the entry at `offset`.
  void remove(std::size_t offset);
  /// Node: makes the child with the greatest entries the tail, if there are several children. False if its entry is
  /// damaged.
  bool keepTail();
  /// The page's entries with `added` (unless empty) before the one at `offset`. Empty if an entry is damaged.
  [[nodiscard]] std::optional<EntryList> gather(std::size_t offset, Bytes added) const;
  /// Replaces all entries by the given ones, which must fit; in the shortest form.
  void write(const EntryList& entries, std::size_t first, std::size_t last);

 private:
  void replaceBytes(std::size_t at, std::size_t removed, Bytes inserted, std::size_t oldEnd);
  void setBit(std::size_t bit) {
    bytes_[layout_->maskAt + bit / 8] |= static_cast<std::uint8_t>(1U << bit % 8);
  }
  void clearBit(std::size_t bit) {
    bytes_[layout_->maskAt + bit / 8] &= static_cast<std::uint8_t>(~(1U << bit % 8));
  }
  void shiftBits(std::size_t bit, std::ptrdiff_t distance);
  void storeFreeBytes(std::size_t end);

  MutableBytes bytes_;
};

}  // namespace veltrano::access

#endif
