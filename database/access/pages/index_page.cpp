#include "database/access/pages/index_page.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

// Jet 3  Jet 4  size
//   0      0     1     03 node, 04 leaf
//   1      1     1     01
//   2      2     2     free bytes after the last entry
//   4      4     4     definition page of the table
//   8     12     4     previous page of this level, 0 for none (nodes: of this level and parent)
//  12     16     4     next page
//  16     20     4     node: tail child
//  20     24     1, 2  prefix length p: every entry but the first lacks its first p bytes, which are those of the first
//  21     26     1     level, 0 for leaves
//  22     27     226,  mask: bit k (least significant first) is set if an entry ends at byte k of the area
//                453
// 248    480           area of the entries: key, page (3 bytes, big-endian), row (1), in nodes child (4, big-endian)
//
// For example, the area of a leaf with p = 4 that has the long integers 1 and 2 in rows 0 and 1 of page 44 (bits 9 and
// 14 are set):   7F 80 00 00 01 | 00 00 2C 00   02 | 00 00 2C 01

namespace veltrano::access {

namespace {

constexpr IndexLayout jet3Layout{2048, 8, 12, 16, 20, 21, 22, 248};
constexpr IndexLayout jet4Layout{4096, 12, 16, 20, 24, 26, 27, 480};
constexpr std::size_t rowSize = 4;
constexpr std::size_t wordBits = 64;

RowPointer loadRow(const std::uint8_t* p) {
  return {loadBig24(p), p[3]};
}

}  // namespace

const IndexLayout& indexLayout(Version version) {
  return isJet3(version) ? jet3Layout : jet4Layout;
}

int compareEntries(const IndexEntry& left, const IndexEntry& right) {
  const std::size_t common = std::min(left.key.size(), right.key.size());
  if (common != 0) {
    const int difference = std::memcmp(left.key.data(), right.key.data(), common);
    if (difference != 0) {
      return difference;
    }
  }
  if (left.key.size() != right.key.size()) {
    return left.key.size() < right.key.size() ? -1 : 1;
  }
  return left.row == right.row ? 0 : left.row < right.row ? -1 : 1;
}

void appendEntry(std::vector<std::uint8_t>& bytes, const IndexEntry& entry) {
  bytes.insert(bytes.end(), entry.key.begin(), entry.key.end());
  std::array<std::uint8_t, rowSize> row{};
  storeBig24(row.data(), entry.row.page);
  row[3] = entry.row.row;
  bytes.insert(bytes.end(), row.begin(), row.end());
}

void appendEntry(std::vector<std::uint8_t>& bytes, const IndexEntry& entry, PageNumber child) {
  appendEntry(bytes, entry);
  std::array<std::uint8_t, 4> page{};
  storeBig32(page.data(), child);
  bytes.insert(bytes.end(), page.begin(), page.end());
}

// --- reading

std::size_t IndexPage::prefix() const {
  // One byte in Jet 3: the level follows at once.
  return layout_ == &jet3Layout ? page_[layout_->prefixAt] : load16(&page_[layout_->prefixAt]);
}

bool IndexPage::valid() const {
  if (page_.size() != layout_->pageSize || page_[1] != 1 ||
      (page_[0] != page_kind::indexLeaf && page_[0] != page_kind::indexNode)) {
    return false;
  }
  const std::size_t first = after(0);
  return first == 0 || (first >= referenceSize() && prefix() <= first);
}

std::uint64_t IndexPage::maskWord(std::size_t word) const {
  // The last word reaches into the entries; callers stop at the area's size.
  return load64(&page_[layout_->maskAt + word * 8]);
}

std::size_t IndexPage::after(std::size_t offset) const {
  const std::size_t limit = layout_->areaSize();
  std::size_t bit = offset + 1;
  for (std::size_t word = bit / wordBits; word * wordBits <= limit; ++word) {
    std::uint64_t bits = maskWord(word);
    if (word == bit / wordBits) {
      bits &= ~std::uint64_t{0} << (bit % wordBits);
    }
    if (bits != 0) {
      const std::size_t found = word * wordBits + static_cast<std::size_t>(std::countr_zero(bits));
      return found <= limit ? found : offset;
    }
  }
  return offset;
}

std::size_t IndexPage::boundary(std::size_t offset) const {
  offset = std::min(offset, layout_->areaSize());
  for (std::size_t word = offset / wordBits + 1; word-- > 0;) {
    std::uint64_t bits = maskWord(word);
    if (word == offset / wordBits && offset % wordBits != wordBits - 1) {
      bits &= (std::uint64_t{1} << (offset % wordBits + 1)) - 1;
    }
    if (bits != 0) {
      return word * wordBits + wordBits - 1 - static_cast<std::size_t>(std::countl_zero(bits));
    }
  }
  return 0;
}

std::size_t IndexPage::end() const {
  return boundary(layout_->areaSize());
}

std::optional<IndexEntry> IndexPage::entry(std::size_t offset, std::size_t stop,
                                           std::vector<std::uint8_t>& scratch, PageNumber* child) const {
  if (stop == offset) {
    return std::nullopt;
  }
  Bytes whole = area().subspan(offset, stop - offset);
  const std::size_t shared = offset == 0 ? 0 : prefix();
  if (shared != 0) {
    // The prefix may reach into the row of a short entry, so the parts are joined first.
    scratch.assign(area().begin(), area().begin() + static_cast<std::ptrdiff_t>(shared));
    scratch.insert(scratch.end(), whole.begin(), whole.end());
    whole = scratch;
  }
  if (whole.size() < referenceSize()) {
    return std::nullopt;
  }
  const std::size_t keySize = whole.size() - referenceSize();
  if (child != nullptr && !isLeaf()) {
    *child = loadBig32(&whole[keySize + rowSize]);
  }
  return IndexEntry{whole.first(keySize), loadRow(&whole[keySize])};
}

bool IndexPage::holds(std::size_t offset, std::size_t stop, const IndexEntry& entry) const {
  const std::size_t shared = offset == 0 ? 0 : prefix();
  const std::size_t size = stop - offset;
  if (stop > layout_->areaSize() || shared + size != entry.key.size() + rowSize ||
      shared > entry.key.size() || boundary(offset) != offset || after(offset) != stop) {
    return false;
  }
  const std::uint8_t* stored = area().data();
  return std::equal(entry.key.begin(), entry.key.begin() + static_cast<std::ptrdiff_t>(shared), stored) &&
         std::equal(entry.key.begin() + static_cast<std::ptrdiff_t>(shared), entry.key.end(),
                    stored + offset) &&
         loadRow(stored + stop - rowSize) == entry.row;
}

std::size_t IndexPage::lowerBound(const IndexEntry& wanted, std::vector<std::uint8_t>& scratch) const {
  std::size_t low = 0;
  std::size_t high = end();
  // All entries after the first share a prefix, so it is compared once.
  const std::size_t shared = prefix();
  const Bytes bytes = area();
  const bool follows =
      shared <= wanted.key.size() && shared != 0 && std::memcmp(bytes.data(), wanted.key.data(), shared) == 0;
  while (low < high) {
    const std::size_t start = std::max(boundary((low + high) / 2), low);
    const std::size_t stop = after(start);
    if (stop == start) {
      return high;
    }
    int order = -1;
    if (start != 0 && follows && stop - start >= referenceSize()) {
      const std::size_t keyEnd = stop - referenceSize();
      order = compareEntries({bytes.subspan(start, keyEnd - start), loadRow(&bytes[keyEnd])},
                             {wanted.key.subspan(shared), wanted.row});
    } else if (const auto found = entry(start, scratch)) {
      order = compareEntries(*found, wanted);
    }
    if (order < 0) {
      low = stop;
    } else {
      high = start;
    }
  }
  return low;
}

// --- lists of entries

IndexEntry EntryList::entry(std::size_t i) const {
  const Bytes whole = (*this)[i];
  const std::size_t keySize = whole.size() - referenceSize_;
  return {whole.first(keySize), loadRow(&whole[keySize])};
}

PageNumber EntryList::child(std::size_t i) const {
  const Bytes whole = (*this)[i];
  return loadBig32(&whole[whole.size() - 4]);
}

void EntryList::add(Bytes entry) {
  bytes_.insert(bytes_.end(), entry.begin(), entry.end());
  ends_.push_back(bytes_.size());
}

std::size_t EntryList::commonPrefix(std::size_t first, std::size_t last) const {
  if (last - first < 2) {
    return 0;
  }
  // The entries are in order, so what the outer two share all share.
  const Bytes low = entry(first).key;
  const Bytes high = entry(last - 1).key;
  const auto different = std::mismatch(low.begin(), low.end(), high.begin(), high.end());
  return static_cast<std::size_t>(different.first - low.begin());
}

std::size_t EntryList::packedSize(std::size_t first, std::size_t last) const {
  if (first == last) {
    return 0;
  }
  const std::size_t begin = first == 0 ? 0 : ends_[first - 1];
  return ends_[last - 1] - begin - commonPrefix(first, last) * (last - first - 1);
}

std::size_t EntryList::bestCut() const {
  // A part that loses the common beginning of its keys takes more room than its share, so packed sizes count. With
  // each entry that goes left the left part grows and the right one shrinks: the best cut is where they cross. Both
  // parts fit: an entry between others shares what they share, and one at an edge that does not can stand alone.
  std::size_t low = 1;
  std::size_t high = size() - 1;
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    if (packedSize(0, middle) < packedSize(middle, size())) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low > 1 && packedSize(low - 1, size()) < packedSize(0, low) ? low - 1 : low;
}

// --- changing

void IndexPageEditor::create(bool leaf, std::uint8_t level, PageNumber owner) {
  std::fill(bytes_.begin(), bytes_.end(), std::uint8_t{0});
  bytes_[0] = leaf ? page_kind::indexLeaf : page_kind::indexNode;
  bytes_[1] = 1;
  store32(&bytes_[4], owner);
  bytes_[layout_->levelAt] = level;
  storeFreeBytes(0);
}

void IndexPageEditor::storeFreeBytes(std::size_t end) {
  store16(&bytes_[2], static_cast<std::uint32_t>(layout_->areaSize() - end));
}

/// Moves all bits after bit `bit` up or down by `distance`. Those that a move down overwrites must be clear.
void IndexPageEditor::shiftBits(std::size_t bit, std::ptrdiff_t distance) {
  constexpr std::size_t words = (4096 - 480) / wordBits + 1;
  std::array<std::uint64_t, 3 * words> moved{};  // room on both sides, so that no index needs a test
  const std::size_t first = (bit + 1) / wordBits;
  const std::uint64_t kept = (std::uint64_t{1} << ((bit + 1) % wordBits)) - 1;
  const std::size_t limit = layout_->areaSize();
  std::array<std::uint64_t, words> mask{};
  for (std::size_t word = 0; word < words; ++word) {
    mask[word] = maskWord(word);
  }
  // The last word's upper bits belong to the entries.
  const std::uint64_t foreign = ~((std::uint64_t{2} << (limit % wordBits)) - 1);
  const std::uint64_t entries = mask[words - 1] & foreign;
  mask[words - 1] &= ~foreign;
  const std::size_t up = words * wordBits + static_cast<std::size_t>(distance);
  for (std::size_t word = first; word < words; ++word) {
    const std::uint64_t bits = word == first ? mask[word] & ~kept : mask[word];
    const std::size_t target = word * wordBits + up;
    moved[target / wordBits] |= bits << (target % wordBits);
    if (target % wordBits != 0) {
      moved[target / wordBits + 1] |= bits >> (wordBits - target % wordBits);
    }
    mask[word] = word == first ? mask[word] & kept : 0;
  }
  for (std::size_t word = 0; word < words; ++word) {
    mask[word] |= moved[words + word];
  }
  mask[words - 1] = (mask[words - 1] & ~foreign) | entries;
  for (std::size_t word = 0; word < words; ++word) {
    store64(&bytes_[layout_->maskAt + word * 8], mask[word]);
  }
}

void IndexPageEditor::replaceBytes(std::size_t at, std::size_t removed, Bytes inserted, std::size_t oldEnd) {
  std::uint8_t* base = bytes_.data() + layout_->areaAt;
  std::memmove(base + at + inserted.size(), base + at + removed, oldEnd - at - removed);
  if (!inserted.empty()) {
    std::memcpy(base + at, inserted.data(), inserted.size());
  }
}

bool IndexPageEditor::insert(std::size_t offset, Bytes entry) {
  const std::size_t oldEnd = end();
  const std::size_t shared = oldEnd == 0 ? 0 : prefix();
  if (shared != 0 &&
      (entry.size() < shared + referenceSize() || std::memcmp(area().data(), entry.data(), shared) != 0)) {
    return false;
  }
  const std::size_t growth = entry.size() - shared;
  if (oldEnd + growth > layout_->areaSize()) {
    return false;
  }
  if (offset == 0) {
    // What was first gives up the prefix, which the new first entry now carries.
    shiftBits(0, static_cast<std::ptrdiff_t>(growth));
    replaceBytes(0, shared, entry, oldEnd);
    setBit(entry.size());
  } else {
    shiftBits(offset, static_cast<std::ptrdiff_t>(growth));
    replaceBytes(offset, 0, entry.subspan(shared), oldEnd);
    setBit(offset + growth);
  }
  if (oldEnd == 0) {
    store16(&bytes_[layout_->prefixAt], 0);
  }
  storeFreeBytes(oldEnd + growth);
  return true;
}

void IndexPageEditor::remove(std::size_t offset) {
  const std::size_t stop = after(offset);
  const std::size_t oldEnd = end();
  if (stop == offset) {
    return;
  }
  // Behind the first entry its prefix stays, for the next one is whole only with it.
  const std::size_t at = offset == 0 && stop != oldEnd ? prefix() : offset;
  const std::size_t removed = stop - at;
  clearBit(stop);
  shiftBits(stop, -static_cast<std::ptrdiff_t>(removed));
  replaceBytes(at, removed, {}, oldEnd);
  const std::size_t newEnd = oldEnd - removed;
  std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(layout_->areaAt + newEnd), removed,
              std::uint8_t{0});
  if (newEnd == 0) {
    store16(&bytes_[layout_->prefixAt], 0);
  }
  storeFreeBytes(newEnd);
}

bool IndexPageEditor::keepTail() {
  const std::size_t last = empty() ? 0 : before(end());
  if (isLeaf() || tail() != 0 || last == 0) {
    return true;
  }
  std::vector<std::uint8_t> scratch;
  PageNumber child = 0;
  if (!entry(last, scratch, &child)) {
    return false;
  }
  remove(last);
  setTail(child);
  return true;
}

std::optional<EntryList> IndexPageEditor::gather(std::size_t offset, Bytes added) const {
  EntryList list(isLeaf());
  const std::size_t stop = end();
  const Bytes shared = area().first(prefix());
  std::vector<std::uint8_t> whole;
  for (std::size_t at = 0; at < stop; at = after(at)) {
    if (at == offset && !added.empty()) {
      list.add(added);
    }
    whole.clear();
    if (at != 0) {
      whole.assign(shared.begin(), shared.end());
    }
    const Bytes rest = area().subspan(at, after(at) - at);
    whole.insert(whole.end(), rest.begin(), rest.end());
    if (whole.size() < referenceSize()) {
      return std::nullopt;
    }
    list.add(whole);
  }
  if (offset >= stop && !added.empty()) {
    list.add(added);
  }
  return list;
}

void IndexPageEditor::write(const EntryList& entries, std::size_t first, std::size_t last) {
  const std::size_t shared = entries.commonPrefix(first, last);
  std::fill(bytes_.begin() + static_cast<std::ptrdiff_t>(layout_->maskAt), bytes_.end(), std::uint8_t{0});
  store16(&bytes_[layout_->prefixAt], static_cast<std::uint32_t>(shared));
  std::size_t at = 0;
  for (std::size_t i = first; i < last; ++i) {
    const Bytes part = i == first ? entries[i] : entries[i].subspan(shared);
    std::memcpy(&bytes_[layout_->areaAt + at], part.data(), part.size());
    at += part.size();
    setBit(at);
  }
  storeFreeBytes(at);
}

}  // namespace veltrano::access
