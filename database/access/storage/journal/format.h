#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_FORMAT_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_JOURNAL_FORMAT_H

// The bytes of the journal. Numbers are little-endian.
//
// Head:
//    0   8  "VMDBJNL2"; all of the head is zero in a journal that holds nothing
//    8   8  identity: hash of the database's header page
//   16   8  length of the database at the checkpoint
//   24   8  nonce: different for each head, so that records left over from an earlier one do not fit
//   32   8  hash of the bytes 8..31
//
// Records follow it without gaps. Each begins its hash with that of the record before, the first with that of
// the head; the first record that does not fit ends the journal:
//    0   8  hash of the changes, one by one, and then of the fields below
//    8   8  bytes of all changes
//   16   8  length of the database after the transaction
//   24   8  length that the database may have until the next record: never more
//   32      the changes, one after another
//
// A change, within one page:
//    0   8  offset in the database
//    8   4  length n; the top bit means that the old bytes are left out
//   12   n  the old bytes, of pages that the database had at the checkpoint; in encrypted files only the first time
//    .   n  the new bytes

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>

#include "database/access/storage/bytes.h"

namespace veltrano::access {

/// Not for secrets: it tells damaged or foreign bytes from good ones.
std::uint64_t hashBytes(Bytes bytes);
std::uint64_t mixHash(std::uint64_t hash, std::uint64_t word);

struct JournalHead {
  static constexpr std::size_t size = 40;
  using Stored = std::array<std::uint8_t, size>;

  std::uint64_t identity = 0;
  std::uint64_t length = 0;
  std::uint64_t nonce = 0;

  [[nodiscard]] std::uint64_t hash() const;
  void store(std::uint8_t* bytes) const;
  /// Empty if the bytes are not a head.
  static std::optional<JournalHead> load(const Stored& bytes);
};

struct RecordHead {
  static constexpr std::size_t size = 32;

  std::uint64_t hash = 0;
  std::uint64_t changesSize = 0;
  std::uint64_t length = 0;
  std::uint64_t mayReach = 0;

  /// The record's hash from that of its changes, which begins with the hash of the record before.
  [[nodiscard]] std::uint64_t hashWith(std::uint64_t changesHash) const;
  void store(std::uint8_t* bytes) const;
  static RecordHead load(const std::uint8_t* bytes);
};

struct Change {
  static constexpr std::size_t headSize = 12;
  static constexpr std::uint32_t withoutOldBytes = 0x80000000;

  std::uint64_t offset = 0;
  Bytes before;  ///< empty if left out
  Bytes after;

  /// Takes the first change off `rest`, and the bytes it consists of to `all`. Empty if it is damaged.
  static std::optional<Change> take(Bytes& rest, Bytes& all);
};

}  // namespace veltrano::access

#endif
