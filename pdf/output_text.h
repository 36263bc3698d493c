#ifndef VELTRANO_PDF_OUTPUT_TEXT_H
#define VELTRANO_PDF_OUTPUT_TEXT_H

// The file's text while it grows: blocks that are filled once and never moved, so that a document of any
// length costs its own size in memory and nothing is copied twice. Large byte strings (images) are referred
// to.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/memory.h"

namespace veltrano {

class OutputText {
 public:
  void append(std::string_view text);
  /// Refers to `bytes` instead of copying them; keeps them alive.
  void appendShared(std::shared_ptr<const std::string> bytes);

  [[nodiscard]] std::uint64_t size() const { return size_; }
  /// The text in order. Valid until the next change.
  [[nodiscard]] std::span<const std::string_view> pieces() const { return pieces_; }
  void clear();

 private:
  void addBlock();

  std::vector<MemoryBlock> blocks_;
  std::vector<std::shared_ptr<const std::string>> shared_;
  std::vector<std::string_view> pieces_;
  char* next_ = nullptr;  ///< where the newest block goes on
  std::size_t room_ = 0;  ///< and how much of it is left
  std::size_t blockSize_ = firstBlockSize;
  std::uint64_t size_ = 0;

  /// Blocks grow up to a size at which neither their number nor the unused rest of the last one matters. By
  /// more than doubling: a heap gives a document's memory back to the system, to be fetched anew for the next
  /// document, when more is freed at once than twice the largest block.
  static constexpr std::size_t firstBlockSize = std::size_t{64} << 10;
  static constexpr std::size_t blockGrowth = 4;
  static constexpr std::size_t largestBlockSize = std::size_t{16} << 20;
};

}  // namespace veltrano

#endif
