#include "pdf/assembly/output_text.h"

#include <utility>

namespace veltrano {

void OutputText::closePiece() {
  if (openPiece().empty()) {
    return;
  }
  closedPieces_.push_back(openPiece());
  closedSize_ += openPiece().size();
  open_ = next_;
}

void OutputText::appendInBlocks(std::string_view text) {
  while (!text.empty()) {
    if (next_ == end_) {
      closePiece();
      blocks_.push_back(
          allocateBlock(blockSize_, blocks_.size() < mostLargeBlocks ? Pages::large : Pages::small));
      open_ = next_ = blocks_.back().get();
      end_ = next_ + blockSize_;
      blockSize_ = std::min(blockSize_ * blockGrowth, largestBlockSize);
    }
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(end_ - next_));
    next_ = std::copy_n(text.data(), length, next_);
    text.remove_prefix(length);
  }
}

void OutputText::appendShared(std::shared_ptr<const std::string> bytes) {
  if (bytes == nullptr || bytes->empty()) {
    return;
  }
  closePiece();
  shared_.push_back(std::move(bytes));
  closedPieces_.emplace_back(*shared_.back());
  closedSize_ += shared_.back()->size();
}

std::vector<std::string_view> OutputText::pieces() const {
  std::vector<std::string_view> pieces = closedPieces_;
  if (!openPiece().empty()) {
    pieces.push_back(openPiece());
  }
  return pieces;
}

void OutputText::clear() {
  *this = OutputText();
}

}  // namespace veltrano
