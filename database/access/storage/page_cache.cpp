#include "database/access/storage/page_cache.h"

namespace veltrano::access {

Frame* PageCache::find(PageNumber page) {
  Frame*& slot = quick_[page & 0xFF];
  if (slot != nullptr && slot->number == page) {
    return slot;
  }
  const auto found = byNumber_.find(page);
  if (found == byNumber_.end()) {
    return nullptr;
  }
  slot = found->second;
  return slot;
}

Frame* PageCache::add() {
  auto frame = std::make_unique<Frame>();
  frame->bytes = std::make_unique_for_overwrite<std::uint8_t[]>(pageSize_);
  frame->size = pageSize_;
  frames_.push_back(std::move(frame));
  return frames_.back().get();
}

Frame* PageCache::enter(Frame* frame, PageNumber page) {
  byNumber_.emplace(page, frame);
  frame->number = page;
  quick_[page & 0xFF] = frame;
  return frame;
}

void PageCache::forget(Frame* frame) {
  if (frame->number != noPage) {
    byNumber_.erase(frame->number);
    frame->number = noPage;
  }
}

void PageCache::forgetFrom(PageNumber first) {
  for (const auto& frame : frames_) {
    if (frame->number != noPage && frame->number >= first) {
      forget(frame.get());
    }
  }
}

}  // namespace veltrano::access
