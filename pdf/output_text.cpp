#include "pdf/output_text.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace veltrano {

void OutputText::addBlock() {
  blocks_.push_back(allocateBlock(blockSize_));
  next_ = blocks_.back().get();
  room_ = blockSize_;
  blockSize_ = std::min(blockSize_ * blockGrowth, largestBlockSize);
}

void OutputText::append(std::string_view text) {
  while (!text.empty()) {
    if (room_ == 0) addBlock();
    const std::size_t length = std::min(text.size(), room_);
    // The newest piece grows as long as nothing shared has come in between.
    const bool adjacent = !pieces_.empty() && pieces_.back().data() + pieces_.back().size() == next_;
    if (adjacent) {
      pieces_.back() = {pieces_.back().data(), pieces_.back().size() + length};
    } else {
      pieces_.emplace_back(next_, length);
    }
    std::memcpy(next_, text.data(), length);
    next_ += length;
    room_ -= length;
    size_ += length;
    text.remove_prefix(length);
  }
}

void OutputText::appendShared(std::shared_ptr<const std::string> bytes) {
  if (bytes == nullptr || bytes->empty()) return;
  shared_.push_back(std::move(bytes));
  pieces_.emplace_back(*shared_.back());
  size_ += shared_.back()->size();
}

void OutputText::clear() {
  *this = OutputText();
}

}  // namespace veltrano
