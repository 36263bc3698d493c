#ifndef VELTRANO_PDF_ASSEMBLY_OUTPUT_TEXT_H
#define VELTRANO_PDF_ASSEMBLY_OUTPUT_TEXT_H

// The file's text while it grows: blocks that are filled once and never moved, so that a document of any
// length costs its own size in memory and nothing is copied twice. Large byte strings (images) are referred
// to.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/os/memory.h"

namespace veltrano {

class OutputText {
 public:
  void append(std::string_view text) {
    if (text.size() > static_cast<std::size_t>(end_ - next_)) [[unlikely]] {
      appendInBlocks(text);
      return;
    }
    next_ = std::copy_n(text.data(), text.size(), next_);
  }
  /// Refers to `bytes` instead of copying them; keeps them alive.
  void appendShared(std::shared_ptr<const std::string> bytes);

  [[nodiscard]] std::uint64_t size() const { return closedSize_ + openPiece().size(); }
  /// The text in order. The views are valid until the next change.
  [[nodiscard]] std::vector<std::string_view> pieces() const;
  void clear();

 private:
  void appendInBlocks(std::string_view text);
  /// What was appended to the newest block since something shared has come in between.
  [[nodiscard]] std::string_view openPiece() const {
    return {open_, static_cast<std::size_t>(next_ - open_)};
  }
  void closePiece();

  std::vector<MemoryBlock> blocks_;
  std::vector<std::shared_ptr<const std::string>> shared_;
  std::vector<std::string_view> closedPieces_;
  std::uint64_t closedSize_ = 0;
  char* open_ = nullptr;
  char* next_ = nullptr;  ///< where the newest block goes on
  char* end_ = nullptr;
  std::size_t blockSize_ = firstBlockSize;

  /// Blocks grow up to a size at which neither their number nor the unused rest of the last one matters. By
  /// more than doubling: a heap gives a document's memory back to the system, to be fetched anew for the next
  /// document, when more is freed at once than twice the largest block.
  static constexpr std::size_t firstBlockSize = std::size_t{64} << 10;
  static constexpr std::size_t blockGrowth = 4;
  static constexpr std::size_t largestBlockSize = std::size_t{16} << 20;
  /// Some 130 MB. Large pages make documents of this size half again as fast, but a virtual machine has to ask its
  /// host for many of them, which can double the time of larger ones.
  static constexpr std::size_t mostLargeBlocks = 12;
};

}  // namespace veltrano

#endif
