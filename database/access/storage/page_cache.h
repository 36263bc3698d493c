#ifndef VELTRANO_DATABASE_ACCESS_STORAGE_PAGE_CACHE_H
#define VELTRANO_DATABASE_ACCESS_STORAGE_PAGE_CACHE_H

// Pages in memory: found by number, given up by the clock algorithm. It grows beyond its bound only while
// none of its frames may be given up.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "database/access/storage/bytes.h"
#include "database/access/storage/format.h"

namespace veltrano::access {

/// The number that no page has.
inline constexpr PageNumber noPage = 0xFFFFFFFF;

/// The place of one page in memory.
struct Frame {
  PageNumber number = noPage;
  std::uint32_t pins = 0;  ///< views of it
  bool recentlyUsed = false;
  bool unwritten = false;       ///< what was committed is not in the database file yet
  bool changed = false;         ///< by the current transaction
  bool unwrittenAfter = false;  ///< what `unwritten` becomes when the transaction is committed
  std::uint64_t editedAt = 0;   ///< the number of the last call that let its bytes be changed
  std::size_t changedAt = 0;    ///< its place in the list of changed frames
  std::uint32_t size = 0;
  std::unique_ptr<std::uint8_t[]> bytes;
  /// Of a changed page: its bytes before the transaction. Empty for a page that the transaction has added,
  /// and where the file has them.
  std::unique_ptr<std::uint8_t[]> before;

  [[nodiscard]] MutableBytes all() const { return {bytes.get(), size}; }
  [[nodiscard]] Bytes old() const { return {before.get(), size}; }
};

class PageCache {
 public:
  PageCache(std::uint32_t pageSize, std::size_t limit) : pageSize_(pageSize), limit_(limit), bound_(limit) {}

  Frame* find(PageNumber page);
  /// A frame without a page, for `enter`. `mayGiveUp(frame)` is asked about frames that nobody views.
  template <typename MayGiveUp>
  Frame* take(MayGiveUp mayGiveUp);
  Frame* enter(Frame* frame, PageNumber page);
  /// The frame holds no page then.
  void forget(Frame* frame);
  /// Forgets every page from `first` on.
  void forgetFrom(PageNumber first);
  /// Back to the limit, as far as frames that nobody views and that may be given up allow.
  template <typename MayGiveUp>
  void shrink(MayGiveUp mayGiveUp);

  [[nodiscard]] std::size_t limit() const { return limit_; }
  [[nodiscard]] const std::vector<std::unique_ptr<Frame>>& frames() const { return frames_; }

 private:
  Frame* add();

  std::uint32_t pageSize_;
  std::size_t limit_;
  std::size_t bound_;  // as the limit, or what it has grown to
  std::vector<std::unique_ptr<Frame>> frames_;
  std::unordered_map<PageNumber, Frame*> byNumber_;
  std::array<Frame*, 256> quick_ = {};  // by the low byte of the number; to be checked
  std::size_t hand_ = 0;
};

template <typename MayGiveUp>
Frame* PageCache::take(MayGiveUp mayGiveUp) {
  if (frames_.size() < bound_) {
    return add();
  }
  for (std::size_t tries = 2 * frames_.size(); tries > 0; --tries) {
    Frame* frame = frames_[hand_].get();
    hand_ = (hand_ + 1) % frames_.size();
    if (frame->pins != 0) {
      continue;
    }
    if (frame->recentlyUsed) {
      frame->recentlyUsed = false;
      continue;
    }
    if (frame->number == noPage || mayGiveUp(*frame)) {
      forget(frame);
      return frame;
    }
  }
  // By a part of itself, so that searches like this one do not add up.
  bound_ += bound_ / 4 + 1;
  return add();
}

template <typename MayGiveUp>
void PageCache::shrink(MayGiveUp mayGiveUp) {
  bound_ = limit_;
  if (frames_.size() <= limit_) {
    return;
  }
  while (frames_.size() > limit_ && frames_.back()->pins == 0 &&
         (frames_.back()->number == noPage || mayGiveUp(*frames_.back()))) {
    forget(frames_.back().get());
    frames_.pop_back();
  }
  quick_.fill(nullptr);
  hand_ = 0;
}

}  // namespace veltrano::access

#endif
