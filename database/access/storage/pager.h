#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_PAGER_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_PAGER_H

// The pages of one open file: a cache of bounded size for reading, transactions for writing.
//
// What is committed goes to the journal beside the file. The pages that the file had at the last checkpoint
// are written over at the next one only: when a table or the file is closed, when the journal or the number
// of changed pages has grown large, or after a transaction that was larger than the cache.
//
// What survives:
//   after commit          the death of the process at any instant
//   after checkpoint      a power failure, too
//   in between            a power failure leaves the state of the last checkpoint, or of a later commit
//
// The process may die because the system keeps what was written; the next open brings it from the journal to
// the file. The power may fail because nothing that the last checkpoint needs is overwritten before all that
// the next one needs is on the disk. A commit waits for no disk; a checkpoint makes it sync three times: the
// journal, the file, the voided journal.
//
// Invariants (cited by number in the code and its tests):
//  P1  Outside a checkpoint no byte changes that the file had at the last checkpoint.
//  P2  Pages added since then may be written early, but first the journal states, on the disk, how long the
//      file may become: what comes after the stated length of the last record is cut off.
//  P3  Such a page is in the journal as a whole, unless its transaction was larger than the cache. Then it is
//      in the file, and synced, before the transaction's record is written, and counts as overwritable by the
//      next checkpoint only.
//  P4  Before a checkpoint writes to the file, the journal is on the disk. It becomes void, durably, only when
//      the file is on the disk.
//  P5  A journal with a valid record is applied by the next open before anything else is read (recovery.h).
//  P6  A file is read only if its length is not a whole number of pages, or no journal can be made.
//  P7  A frame of the cache that is pinned by a view keeps its place in memory; so does a changed one, unless
//      its page was added by the transaction and `editsInPlace` other calls of edit and append came since.
//  P8  Page 0 is never written, except by the creation of a file.
//
// States:
//   idle         --begin-->                     transaction
//   transaction  --commit, worked-->            idle
//   transaction  --rollback, commit failed-->   idle, as before it began

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

#include "base/files/random_access.h"
#include "database/access/storage/bytes.h"
#include "database/access/storage/format.h"
#include "database/access/storage/page_cache.h"
#include "database/access/storage/space_hints.h"

namespace veltrano::access {

/// A page held in memory as long as the view lives. Empty if the page could not be read. Bytes written by
/// the current transaction show in views made before.
class PageView {
 public:
  PageView() = default;
  PageView(PageView&& other) noexcept : frame_(std::exchange(other.frame_, nullptr)) {}
  PageView& operator=(PageView&& other) noexcept {
    std::swap(frame_, other.frame_);
    return *this;
  }
  PageView(const PageView&) = delete;
  PageView& operator=(const PageView&) = delete;
  ~PageView();

  explicit operator bool() const { return frame_ != nullptr; }
  /// The whole page; only of a view that is not empty.
  [[nodiscard]] Bytes bytes() const;
  [[nodiscard]] const std::uint8_t* data() const { return bytes().data(); }
  [[nodiscard]] PageNumber number() const;

 private:
  friend class Pager;
  explicit PageView(Frame* frame) : frame_(frame) {}
  Frame* frame_ = nullptr;
};

/// Not to be shared between threads. Views must not outlive the pager.
class Pager {
 public:
  struct Options {
    bool readOnly = false;
    /// What the host gave, UTF-8; empty for none.
    std::string_view password = {};
    /// Pages kept in memory; more only while a transaction changes more pages of the last checkpoint.
    std::uint32_t cachePages = 4096;
    /// Where the files are; the system's if null.
    FileSystem* files = nullptr;
  };

  static constexpr std::uint64_t editsInPlace = 64;

  /// Opens a file: takes its lock, applies the journal that a killed process left, checks header and
  /// password. Opens for reading only if the file cannot be written.
  static Result<std::unique_ptr<Pager>> open(const std::filesystem::path& file, const Options& options);

  Pager(const Pager&) = delete;
  Pager& operator=(const Pager&) = delete;
  /// Rolls back an open transaction, makes a checkpoint and closes.
  ~Pager();

  [[nodiscard]] Version version() const;
  [[nodiscard]] std::uint32_t pageSize() const;
  /// Pages of the file, those added by the current transaction included.
  [[nodiscard]] PageNumber pageCount() const;
  /// Success, or why the file is only read.
  [[nodiscard]] const Status& writable() const;
  /// Code page of the texts of a Jet 3 file.
  [[nodiscard]] std::uint16_t codePage() const;
  /// Language and version word of the text order, for columns without one of their own.
  [[nodiscard]] std::uint32_t defaultTextOrder() const;

  /// The page for reading; an empty view if there is no such page or the file cannot be read.
  PageView read(PageNumber page);

  /// Begins a transaction. Fails if the file is open for reading only, broken or already in one.
  Status begin();
  [[nodiscard]] bool inTransaction() const;
  /// The page for changing, in a transaction. Empty if it cannot be read or there is no transaction; the
  /// transaction is then to be rolled back. The same memory as that of `read` views. It stays the page's for
  /// the next `editsInPlace` calls of edit and append, and as long as a view of the page lives.
  MutableBytes edit(PageNumber page);
  /// A page of zeros after the last one, for changing. `noPage` if the file would grow beyond its limit.
  /// To be used by the allocator (allocator.h), which keeps the map of free pages.
  PageNumber append();
  /// Ends the transaction with all its changes; if it fails, with none of them.
  Status commit();
  void rollback();
  /// Writes everything committed to the file and makes it survive a power failure. Outside transactions. After
  /// a failure nothing is lost; the journal has it, and the next checkpoint or open tries again.
  Status checkpoint();

  [[nodiscard]] SpaceHints& spaceHints();

  /// Why a page could not be read, changed or appended: of the last time that `read`, `edit` or `append` gave
  /// nothing. Loops over many pages ask once at their end.
  [[nodiscard]] const Status& pageFailure() const;

 private:
  struct State;
  explicit Pager(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

/// A transaction that is rolled back unless it was committed.
class Transaction {
 public:
  explicit Transaction(Pager& pager) : pager_(pager), begun_(pager.begin()), active_(begun_) {}
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (active_) pager_.rollback();
  }
  /// Why it could not begin, or success.
  [[nodiscard]] const Status& begun() const { return begun_; }
  /// Once; fails if the transaction has not begun.
  Status commit() { return std::exchange(active_, false) ? pager_.commit() : begun_; }

 private:
  Pager& pager_;
  Status begun_;
  bool active_;
};

}  // namespace veltrano::access

#endif
