#ifndef VELTRANO_BASE_NUMBERS_NUMBER_TEXT_H
#define VELTRANO_BASE_NUMBERS_NUMBER_TEXT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace veltrano {

/// Text of a number, held in place. Long enough for every finite double with up to 15 decimals.
class NumberText {
 public:
  static constexpr std::size_t capacity = 352;

  [[nodiscard]] std::string_view view() const { return {digits_, length_}; }
  operator std::string_view() const { return view(); }  // NOLINT: stands for the text

  void push(char c) { digits_[length_++] = c; }
  void append(std::string_view text) {
    text.copy(digits_ + length_, text.size());
    length_ += text.size();
  }

 private:
  friend NumberText formatPdfNumber(double value, int decimals);
  friend NumberText integerText(std::int64_t value);

  std::size_t length_ = 0;
  char digits_[capacity];
};

}  // namespace veltrano

#endif
