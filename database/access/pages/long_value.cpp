#include "database/access/pages/long_value.h"

#include <algorithm>

#include "database/access/pages/row_space.h"

namespace veltrano::access {

// The cell:
//   0   4  bits 0..29 length of the value; top bits 10 it follows, 01 one row holds it, 00 a chain of rows
//   4   4  row pointer to the (first) row
//   8   4  0
//  12      the value, when it follows
// The rows lie in data pages whose owner is LVAL. A row of a chain begins with the row pointer of the next
// one, 0 in the last.

namespace {

constexpr std::uint32_t lengthMask = 0x3FFFFFFF;
constexpr std::uint32_t kindMask = 0xC0000000;
constexpr std::uint32_t kindInline = 0x80000000;
constexpr std::uint32_t kindSingle = 0x40000000;
constexpr std::size_t chainHead = 4;
constexpr std::size_t mostRowBytes = 4076;

// A row of a long-value page, held for reading.
struct Piece {
  PageView page;
  Bytes bytes;
};

std::optional<Piece> readPiece(Pager& pager, RowPointer place) {
  PageView view = pager.read(place.page);
  if (!view) {
    return std::nullopt;
  }
  const DataPage page(view.bytes(), pager.version());
  const auto row = page.valid() && page.owner() == longValueOwner ? page.row(place.row) : std::nullopt;
  return row ? std::optional(Piece{std::move(view), *row}) : std::nullopt;
}

bool readChain(Pager& pager, RowPointer place, std::size_t length, std::vector<std::uint8_t>& buffer) {
  while (buffer.size() < length) {
    const auto piece = readPiece(pager, place);
    // A piece without data could lead round in a ring.
    if (!piece || piece->bytes.size() <= chainHead) {
      return false;
    }
    const Bytes data = piece->bytes.subspan(chainHead);
    const std::size_t size = std::min(data.size(), length - buffer.size());
    buffer.insert(buffer.end(), data.begin(), data.begin() + static_cast<std::ptrdiff_t>(size));
    place = RowPointer::fromDisk(load32(piece->bytes.data()));
  }
  return true;
}

RowSpace spaceOf(Pager& pager, const Column& column) {
  return {pager, longValueOwner, column.ownedPages, column.freePages};
}

}  // namespace

std::optional<Bytes> readLongValue(Pager& pager, Bytes cell, std::vector<std::uint8_t>& buffer) {
  if (cell.size() < longValueHead) {
    return std::nullopt;
  }
  const std::uint32_t word = load32(cell.data());
  const std::size_t length = word & lengthMask;
  const RowPointer place = RowPointer::fromDisk(load32(cell.data() + 4));
  if ((word & kindMask) == kindInline) {
    return cell.subspan(longValueHead, std::min(length, cell.size() - longValueHead));
  }
  // No value is longer than its file; so a chain that runs in a ring ends soon.
  if (length > std::uint64_t{pager.pageCount()} * pager.pageSize()) {
    return std::nullopt;
  }
  buffer.clear();
  if ((word & kindMask) == kindSingle) {
    const auto piece = readPiece(pager, place);
    if (!piece || piece->bytes.size() < length) {
      return std::nullopt;
    }
    buffer.assign(piece->bytes.begin(), piece->bytes.begin() + static_cast<std::ptrdiff_t>(length));
    return buffer;
  }
  if ((word & kindMask) != 0 || !readChain(pager, place, length, buffer)) {
    return std::nullopt;
  }
  return buffer;
}

bool liesInRow(Bytes cell) {
  return cell.size() > longValueHead && (load32(cell.data()) & kindMask) == kindInline;
}

void makeInlineCell(Bytes value, std::vector<std::uint8_t>& cell) {
  cell.assign(longValueHead, 0);
  store32(cell.data(), static_cast<std::uint32_t>(value.size()) | kindInline);
  cell.insert(cell.end(), value.begin(), value.end());
}

bool storeLongValue(Pager& pager, const Column& column, Bytes value, std::vector<std::uint8_t>& cell) {
  if (value.size() > lengthMask) {
    return false;
  }
  const bool single = value.size() <= mostRowBytes;
  std::optional<RowPointer> place;
  if (single) {
    place = spaceOf(pager, column).insert(value, 0);
  } else {
    // From the last piece to the first, since each one points to the next.
    constexpr std::size_t most = mostRowBytes - chainHead;
    place = RowPointer{};
    std::vector<std::uint8_t> row;
    for (std::size_t end = value.size(); end > 0 && place;) {
      const std::size_t begin = (end - 1) / most * most;
      row.resize(chainHead);
      store32(row.data(), place->toDisk());
      row.insert(row.end(), value.begin() + static_cast<std::ptrdiff_t>(begin),
                 value.begin() + static_cast<std::ptrdiff_t>(end));
      place = spaceOf(pager, column).insert(row, 0);
      end = begin;
    }
  }
  if (!place) {
    return false;
  }
  cell.assign(longValueHead, 0);
  store32(cell.data(), static_cast<std::uint32_t>(value.size()) | (single ? kindSingle : 0));
  store32(cell.data() + 4, place->toDisk());
  return true;
}

bool releaseLongValue(Pager& pager, const Column& column, Bytes cell) {
  if (cell.size() < longValueHead || (load32(cell.data()) & kindMask) == kindInline) {
    return true;
  }
  const bool single = (load32(cell.data()) & kindMask) == kindSingle;
  std::size_t left = load32(cell.data()) & lengthMask;
  RowPointer place = RowPointer::fromDisk(load32(cell.data() + 4));
  for (bool more = true; more;) {
    const auto piece = readPiece(pager, place);
    if (!piece) {
      return true;
    }
    const DataPage page(piece->page.bytes(), pager.version());
    const std::size_t head = single ? 0 : chainHead;
    if (!page.sound() || page.isDeleted(place.row) || piece->bytes.size() < head) {
      return true;
    }
    const RowPointer next = single ? RowPointer{} : RowPointer::fromDisk(load32(piece->bytes.data()));
    left -= std::min(left, piece->bytes.size() - head);
    more = !single && left > 0 && next.page != 0;
    if (!spaceOf(pager, column).remove(place)) {
      return false;
    }
    place = next;
  }
  return true;
}

}  // namespace veltrano::access
