#ifndef VELTRANO_PDF_OUTPUT_TEXT_H
#define VELTRANO_PDF_OUTPUT_TEXT_H

// The file's text while it grows: a list of blocks that are filled once and never moved, so that a document
// of any length costs its own size in memory and nothing is copied twice. Large byte strings (images) are
// referred to.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace veltrano {

class OutputText {
 public:
  void append(std::string_view text);
  /// Refers to `bytes` instead of copying them; keeps them alive.
  void appendShared(std::shared_ptr<const std::string> bytes);

  [[nodiscard]] std::uint64_t size() const { return size_; }
  /// The text in order. Valid until the next change.
  [[nodiscard]] std::vector<std::string_view> pieces() const;
  void clear();

 private:
  struct Block {
    std::string text;                           ///< reserved once, never grown beyond that
    std::shared_ptr<const std::string> shared;  ///< instead of `text` when set
  };
  std::vector<Block> blocks_;
  std::uint64_t size_ = 0;
};

}  // namespace veltrano

#endif
