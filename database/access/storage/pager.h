#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_PAGER_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_PAGER_H

// The pages of one open file: a cache of bounded size for reading, transactions for writing.
//
// Invariants (cited by number in the code and its tests):
//  P1  Outside a commit no byte of the file changes. A changed page stays in memory until then.
//  P2  A commit makes a journal record with the old bytes of everything it is going to overwrite, and only
//  when that
//      is in the journal file does the first byte of the database change (journal.h).
//  P3  A valid record in the journal means: the file may hold part of that transaction; whoever opens the
//  file next
//      puts the old bytes back and cuts the file to its old length, before reading anything else.
//  P4  The file's length is always a whole number of pages when a transaction begins, otherwise nothing is
//  written. P5  A frame of the cache that is pinned by a view, or changed, keeps its place in memory. P6 Page
//  0 is never written, but by the creation of a file.
//
// States:
//   clean      --begin-->                transaction
//   transaction --commit, worked-->      clean
//   transaction --commit or any failure, old bytes put back--> clean (rolled back)
//   transaction --commit failed, and so did putting back-->    broken: nothing can be written or read any
//   more; the
//                                                            journal stays for the next open (P3)
// What survives: after commit returned true, the death of the process at any instant; after sync returned
// true, a power failure too.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "database/access/storage/bytes.h"
#include "database/access/storage/file.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

/// The number that no page has.
inline constexpr PageNumber noPage = 0xFFFFFFFF;

namespace pager_internal {
struct Frame;
}

/// A page held in memory as long as the view lives. Empty when the page could not be read. Bytes written by
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
  explicit PageView(pager_internal::Frame* frame) : frame_(frame) {}
  pager_internal::Frame* frame_ = nullptr;
};

/// Not to be shared between threads. Views must not outlive the pager.
class Pager {
 public:
  struct Options {
    bool readOnly = false;
    /// What the host gave, UTF-8; empty for none.
    std::string password = {};
    /// Pages kept in memory; more only while a transaction has changed more.
    std::uint32_t cachePages = 4096;
    /// Where the files are; the system's when null.
    FileSystem* files = nullptr;
  };

  /// Opens a file: takes its lock, puts back what a killed process left half done, checks header and
  /// password. Null when that is impossible; `reason` then says why. Falls back to reading only when the file
  /// cannot be written.
  static std::unique_ptr<Pager> open(const std::filesystem::path& file, const Options& options,
                                     std::string& reason);

  Pager(const Pager&) = delete;
  Pager& operator=(const Pager&) = delete;
  /// Rolls back an open transaction, syncs and closes.
  ~Pager();

  [[nodiscard]] Version version() const;
  [[nodiscard]] std::uint32_t pageSize() const;
  /// Pages of the file, those added by the current transaction included.
  [[nodiscard]] PageNumber pageCount() const;
  [[nodiscard]] bool readOnly() const;
  /// Code page of the texts of a Jet 3 file.
  [[nodiscard]] std::uint16_t codePage() const;
  /// Language and version word of the text order for columns that name none.
  [[nodiscard]] std::uint32_t defaultTextOrder() const;

  /// The page for reading; an empty view when there is no such page or the file cannot be read.
  PageView read(PageNumber page);

  /// Begins a transaction. False when the file is open for reading only, broken or already in one.
  bool begin();
  [[nodiscard]] bool inTransaction() const;
  /// The page for changing, in a transaction: its bytes may be changed until that ends. Empty when it cannot
  /// be read or there is no transaction; the transaction is then to be rolled back. The same memory as that
  /// of `read` views.
  MutableBytes edit(PageNumber page);
  /// A page of zeros behind the last one, for changing. `noPage` when the file would grow beyond its limit.
  /// To be used by allocatePage (usage_map.h), which keeps the free-page map.
  PageNumber append();
  /// Writes all changes so that they happen wholly or not at all. False: nothing has happened, and the
  /// transaction has ended.
  bool commit();
  void rollback();
  /// Makes everything committed survive a power failure.
  bool sync();

  /// Why the last step failed, for the trace.
  [[nodiscard]] std::string_view lastError() const;

 private:
  struct State;
  explicit Pager(std::unique_ptr<State> state);
  std::unique_ptr<State> state_;
};

/// A transaction that is rolled back unless it was committed.
class Transaction {
 public:
  explicit Transaction(Pager& pager) : pager_(pager), active_(pager.begin()) {}
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (active_) pager_.rollback();
  }
  /// False when it could not begin.
  explicit operator bool() const { return active_; }
  bool commit() { return std::exchange(active_, false) && pager_.commit(); }

 private:
  Pager& pager_;
  bool active_;
};

}  // namespace veltrano::access

#endif
